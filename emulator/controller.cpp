#include "emulator/controller.h"

#include "emulator/identity.h"
#include "emulator/wirelog.h"

#include <algorithm>
#include <atomic>
#include <chrono>

namespace emulator {

namespace {

constexpr qint64 nsPerMs = 1000000;
constexpr double nsPerSecond = 1e9;
/// An incomplete command is dropped if no further byte comes within this time.
constexpr int unfinishedCommandMs = 1000;
/// Controllers wake on a common grid, so that many of them share a wake-up.
constexpr qint64 wakeGridNs = 2 * nsPerMs;
/// After a stall at most this much of the stream is sent late; the rest is skipped.
constexpr double greatestBacklogSeconds = 0.5;

QByteArray keyFor(const ControllerOptions& options)
{
    static std::atomic<quint64> controllers{0};
    return options.key.isEmpty() ? derivedKey(options.seed, controllers.fetch_add(1)) : options.key;
}

} // namespace

Controller::Controller(const ControllerOptions& options, Link& port, WireLog* log)
    : link(port)
    , wireLog(log)
    , packetFaults(options.seed)
{
    lateTimer.setSingleShot(true);
    unfinishedTimer.setSingleShot(true);
    unfinishedTimer.setInterval(unfinishedCommandMs);
    paceTimer.setSingleShot(true);
    paceTimer.setTimerType(Qt::PreciseTimer);
    connect(&lateTimer, &QTimer::timeout, this, [this] {
        lateCommandDue = true;
        processInput();
    });
    connect(&unfinishedTimer, &QTimer::timeout, this, &Controller::dropUnfinishedCommand);
    connect(&paceTimer, &QTimer::timeout, this, &Controller::sendDuePackets);
    setIdentity(options);
}

Controller::~Controller() = default;

void Controller::setIdentity(const ControllerOptions& options)
{
    controlled = std::make_unique<Device>(options, keyFor(options));
    lineBaudRate = controlled->baudRate();
    packetFaults = PacketFaults(options.seed);
    setFaults(options.faults);
    linkClosed();
}

void Controller::setFaults(const Faults& wanted)
{
    faults = wanted;
    packetFaults.set(wanted);
}

void Controller::linkOpened()
{
    input.clear();
}

void Controller::linkClosed()
{
    input.clear();
    lateTimer.stop();
    unfinishedTimer.stop();
    paceTimer.stop();
    lateCommandDue = false;
    controlled->endStream();
}

void Controller::restart()
{
    linkClosed();
    controlled->restart();
}

void Controller::setPaused(bool wanted)
{
    if (paused == wanted)
        return;
    paused = wanted;
    if (paused) {
        paceTimer.stop();
        return;
    }
    // Packets that were due during the pause are not sent later.
    forgetBacklog();
    processInput();
    scheduleNextPacket();
}

void Controller::sendRaw(const QByteArray& bytes)
{
    write(bytes);
}

void Controller::receive(const QByteArray& bytes)
{
    input += bytes;
    processInput();
}

void Controller::processInput()
{
    while (!paused && !lateTimer.isActive() && takeCommand()) {}
    if (input.isEmpty())
        unfinishedTimer.stop();
    else
        unfinishedTimer.start();
}

/// Takes one command from the input. False if none is complete, or if an earlier one still waits.
bool Controller::takeCommand()
{
    const ParseResult parsed = parseCommand(input);
    if (parsed.status == ParseStatus::Incomplete)
        return false;
    const int lateMs = faults.lateMs.value(parsed.command.mnemonic, 0);
    if (lateMs > 0 && !lateCommandDue) {
        lateTimer.start(lateMs);
        return false;
    }
    lateCommandDue = false;
    input.remove(0, parsed.consumed);
    if (wireLog)
        wireLog->add(WireEvent::FromHost, parsed.command.frame, false);
    if (parsed.command.mnemonic.isEmpty())
        return true;
    if (wireLog)
        wireLog->addCommand(parsed.command.frame);
    if (parsed.status == ParseStatus::Bad) {
        sendReply(parsed.command.mnemonic,
                  controlled->refuse(parsed.command.mnemonic, RefusalCode::UnknownCommand));
        emit refused(parsed.command.mnemonic);
        return true;
    }
    carryOut(parsed.command);
    return true;
}

void Controller::dropUnfinishedCommand()
{
    if (paused || lateTimer.isActive())
        return;
    if (wireLog)
        wireLog->add(WireEvent::FromHost, input, false);
    const QByteArray mnemonic = input.left(3);
    input.clear();
    sendReply(mnemonic, controlled->refuse(mnemonic, RefusalCode::UnknownCommand));
    emit refused(mnemonic);
}

void Controller::carryOut(const Command& command)
{
    const QByteArray& mnemonic = command.mnemonic;
    if (closesLinkOn(mnemonic) || faults.silent.contains(mnemonic))
        return;
    if (faults.garbageReplies) {
        write(packetFaults.strayBytes(replyLength(mnemonic)));
        return;
    }
    if (faults.refuse.contains(mnemonic)) {
        sendReply(mnemonic, controlled->refuse(mnemonic, RefusalCode::Rejected));
        emit refused(mnemonic);
        return;
    }
    answer(command);
}

bool Controller::closesLinkOn(const QByteArray& mnemonic)
{
    if (faults.closeOn.contains(mnemonic)) {
        link.close();
        return true;
    }
    if (faults.halfCloseOn.contains(mnemonic)) {
        link.halfClose();
        return true;
    }
    return false;
}

void Controller::answer(const Command& command)
{
    const Answer given = controlled->execute(command);
    if (given.isRefused())
        emit refused(command.mnemonic);
    switch (given.stream) {
    case Answer::Stream::Unchanged:
        sendReply(command.mnemonic, given.reply);
        break;
    case Answer::Stream::Started:
        streamPackets = 0;
        sendPacket(shortened(command.mnemonic, given.reply));
        startPacing();
        break;
    case Answer::Stream::StartedByTrigger:
        streamPackets = 0;
        sendReply(command.mnemonic, given.reply);
        startPacing();
        break;
    case Answer::Stream::Stopped:
        paceTimer.stop();
        if (!given.lastPacket.isEmpty())
            sendPacket(given.lastPacket);
        sendReply(command.mnemonic, given.reply);
        break;
    }
    lineBaudRate = controlled->baudRate();
}

void Controller::sendReply(const QByteArray& mnemonic, const QByteArray& reply)
{
    write(shortened(mnemonic, reply));
}

QByteArray Controller::shortened(const QByteArray& mnemonic, const QByteArray& reply) const
{
    return reply.left(faults.shortBytes.value(mnemonic, reply.size()));
}

void Controller::startPacing()
{
    streamClock.start();
    paced = 0;
    scheduleNextPacket();
}

/// Packets that should have been sent since the stream's time zero. The packet that answers the
/// start is due at time zero and not counted; a triggered stream has no pulse at time zero.
qint64 Controller::packetsDue() const
{
    const double elapsed = static_cast<double>(streamClock.nsecsElapsed()) / nsPerSecond;
    return static_cast<qint64>(elapsed * controlled->rate());
}

void Controller::scheduleNextPacket()
{
    const double rate = controlled->rate();
    if (paused || !controlled->isStreaming() || rate <= 0.0)
        return;
    const auto dueNs = static_cast<qint64>(static_cast<double>(paced + 1) * nsPerSecond / rate);
    const qint64 nowNs =
        std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
    const qint64 wakeNs = nowNs + std::max<qint64>(0, dueNs - streamClock.nsecsElapsed());
    const qint64 onGridNs = (wakeNs / wakeGridNs + 1) * wakeGridNs;
    paceTimer.start(static_cast<int>((onGridNs - nowNs + nsPerMs - 1) / nsPerMs));
}

void Controller::sendDuePackets()
{
    const qint64 due = packetsDue();
    const auto most = static_cast<qint64>(controlled->rate() * greatestBacklogSeconds) + 1;
    const qint64 leftOut = std::max<qint64>(0, due - most - paced);
    lostPackets += leftOut;
    paced += leftOut;
    while (paced < due && controlled->isStreaming()) {
        ++paced;
        sendNextPacket();
    }
    scheduleNextPacket();
}

void Controller::forgetBacklog()
{
    if (controlled->isStreaming())
        paced = packetsDue();
}

void Controller::sendNextPacket()
{
    const QByteArray packet = controlled->nextPacket();
    if (!packet.isEmpty())
        sendPacket(packet);
}

void Controller::sendPacket(const QByteArray& packet)
{
    if (!link.canSend()) {
        ++lostPackets;
        return;
    }
    ++packetCount;
    ++streamPackets;
    write(packetFaults.applyTo(packet, streamPackets), true);
    if (streamPackets == faults.closeAfterPackets)
        link.close();
}

void Controller::write(const QByteArray& bytes, bool isPacket)
{
    if (bytes.isEmpty())
        return;
    if (wireLog)
        wireLog->add(WireEvent::ToHost, bytes, isPacket);
    link.write(bytes);
}

} // namespace emulator
