#include "emulator/controller.h"

#include "emulator/commandtable.h"
#include "emulator/identity.h"
#include "emulator/wirelog.h"

#include <atomic>

namespace emulator {

namespace {

/// An incomplete command is dropped if no further byte comes within this time.
constexpr int unfinishedCommandMs = 1000;

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
    connect(&lateTimer, &QTimer::timeout, this, &Controller::processInput);
    connect(&unfinishedTimer, &QTimer::timeout, this, &Controller::dropUnfinishedCommand);
    connect(&paceTimer, &QTimer::timeout, this, &Controller::sendDuePackets);
    setIdentity(options);
}

Controller::~Controller()
{
    forgetCommands();
    reportUnplayed(rules);
    reportUnplayed(rulesOfLists);
}

void Controller::setIdentity(const ControllerOptions& options)
{
    // Before its rules go, so that one whose command is not carried out has not acted.
    forgetCommands();
    controlled = std::make_unique<Device>(options, keyFor(options));
    lineBaudRate = controlled->baudRate();
    packetFaults = PacketFaults(options.seed);
    setFaults(options.faults);
    linkClosed();
}

void Controller::setFaults(const Faults& wanted)
{
    reportUnplayed(rulesOfLists);
    rulesOfLists = RuleBook(emulator::rulesOfLists(wanted));
    garbageReplies = wanted.garbageReplies;
    closeAfterPackets = wanted.closeAfterPackets;
    setRules(wanted.rules);
    packetFaults.set(wanted);
}

void Controller::setRules(const QList<Rule>& wanted)
{
    reportUnplayed(rules);
    rules = RuleBook(wanted);
}

void Controller::addRule(const Rule& rule)
{
    rules.add(rule);
}

QStringList Controller::unplayedRules() const
{
    return rules.unplayed() + rulesOfLists.unplayed();
}

void Controller::reportUnplayed(const RuleBook& book)
{
    for (const QString& rule : book.unplayed())
        emit ruleUnplayed(rule);
}

void Controller::linkOpened()
{
    input.clear();
}

void Controller::linkClosed()
{
    forgetCommands();
    paceTimer.stop();
    controlled->endStream();
}

/// The commands that have come and are not carried out never will be.
void Controller::forgetCommands()
{
    input.clear();
    lateTimer.stop();
    unfinishedTimer.stop();
    lateCommand.reset();
    rules.giveBack();
    rulesOfLists.giveBack();
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
    if (controlled->isStreaming())
        pacing.skipAll();
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

/// Deals with the command that was late, or takes one, or noise, from the input. False if nothing
/// is complete, or if the command is late.
bool Controller::takeCommand()
{
    if (lateCommand) {
        const LateCommand due = *lateCommand;
        lateCommand.reset();
        obey(due.rule, due.parsed);
        return true;
    }
    const ParseResult parsed = parseCommand(input);
    if (parsed.status == ParseStatus::Incomplete)
        return false;
    dropInput(parsed.consumed);
    if (parsed.command.mnemonic.isEmpty())
        return true;
    if (wireLog)
        wireLog->addCommand(parsed.command.frame);
    const Rule rule = takeRuleFor(parsed.command.frame);
    if (rule.lateMs > 0) {
        lateCommand = LateCommand{rule, parsed};
        lateTimer.start(rule.lateMs);
        return false;
    }
    obey(rule, parsed);
    return true;
}

void Controller::dropUnfinishedCommand()
{
    if (paused || lateTimer.isActive())
        return;
    ParseResult unfinished;
    unfinished.status = ParseStatus::Bad;
    unfinished.command.mnemonic = input.left(mnemonicLength);
    unfinished.command.frame = input;
    dropInput(input.size());
    // It has waited for long enough: a rule does not make it later.
    obey(takeRuleFor(unfinished.command.frame), unfinished);
}

void Controller::dropInput(int length)
{
    if (wireLog)
        wireLog->add(WireEvent::FromHost, input.left(length), false);
    input.remove(0, length);
}

/// The rule for a command, which is to be asked for once, since rules count.
Rule Controller::takeRuleFor(const QByteArray& frame)
{
    if (const std::optional<Rule> rule = rules.takeRuleFor(frame))
        return *rule;
    return rulesOfLists.takeRuleFor(frame).value_or(Rule());
}

void Controller::obey(const Rule& rule, const ParseResult& parsed)
{
    rules.settle();
    rulesOfLists.settle();
    switch (rule.deed) {
    case Deed::CarryOut:
    case Deed::Refuse:
        answer(rule, parsed);
        break;
    case Deed::Ignore:
        break;
    case Deed::Close:
        input.clear();
        link.close();
        break;
    case Deed::HalfClose:
        input.clear();
        link.halfClose();
        break;
    case Deed::Reply:
        write(rule.cut(rule.reply));
        break;
    }
}

void Controller::answer(const Rule& rule, const ParseResult& parsed)
{
    const QByteArray& mnemonic = parsed.command.mnemonic;
    const bool isKnown = parsed.status == ParseStatus::Complete;
    if (isKnown && garbageReplies)
        write(packetFaults.strayBytes(replyLength(mnemonic)));
    else if (rule.deed == Deed::Refuse)
        refuse(rule, mnemonic, RefusalCode::Rejected);
    else if (!isKnown)
        refuse(rule, mnemonic, RefusalCode::UnknownCommand);
    else
        carryOut(rule, parsed.command);
}

void Controller::refuse(const Rule& rule, const QByteArray& mnemonic, RefusalCode code)
{
    write(rule.cut(controlled->refuse(mnemonic, code)));
    emit refused(mnemonic);
}

void Controller::carryOut(const Rule& rule, const Command& command)
{
    const Answer given = controlled->execute(command);
    const QByteArray reply = rule.cut(given.reply);
    if (given.isRefused())
        emit refused(command.mnemonic);
    switch (given.stream) {
    case Answer::Stream::Unchanged:
        write(reply);
        break;
    case Answer::Stream::Started:
        streamPackets = 0;
        sendPacket(reply);
        startPacing();
        break;
    case Answer::Stream::StartedByTrigger:
        streamPackets = 0;
        write(reply);
        startPacing();
        break;
    case Answer::Stream::Stopped:
        paceTimer.stop();
        if (!given.lastPacket.isEmpty())
            sendPacket(given.lastPacket);
        write(reply);
        break;
    }
    lineBaudRate = controlled->baudRate();
}

void Controller::startPacing()
{
    pacing.start(controlled->rate());
    scheduleNextPacket();
}

void Controller::scheduleNextPacket()
{
    if (paused || !controlled->isStreaming())
        return;
    if (const std::optional<int> waitMs = pacing.msToNext())
        paceTimer.start(*waitMs);
}

void Controller::sendDuePackets()
{
    const qint64 due = pacing.due();
    lostPackets += pacing.skipBacklog(due);
    while (controlled->isStreaming() && pacing.takeOne(due))
        sendNextPacket();
    scheduleNextPacket();
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
    if (streamPackets == closeAfterPackets)
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
