#include "link/endpoint.h"

#include "app/logging.h"
#include "link/replyforms.h"

#include <QCoreApplication>
#include <QIODevice>
#include <QTimer>

#include <chrono>
#include <utility>

namespace {

/// Longer than the longest pause of a stream, so that a stop without end mark sees its last bytes.
constexpr double stopTimeoutFactor = 1.5;

} // namespace

Endpoint::Endpoint(LinkCondition& linkCondition, measureStore& liveStore)
    : condition(linkCondition)
    , streamDecoder(liveStore)
{}

Endpoint::~Endpoint() = default;

void Endpoint::open(std::unique_ptr<QIODevice> port)
{
    device = std::move(port);
}

void Endpoint::close()
{
    condition.losePort();
    device.reset();
}

bool Endpoint::isWritable(const CommandFrame& frame) const
{
    const StreamState stream = condition.stream;
    const bool isDeciding = stream == StreamState::StartSent || stream == StreamState::StopSent;
    return !condition.replies.isAwaited() && (!condition.streaming || frame.isStop()) && !isDeciding
           && device && condition.portOpen && condition.link == LinkState::Connected;
}

void Endpoint::write(const CommandFrame& frame)
{
    const bool dropUnread = condition.dropUnread.exchange(false);
    if (!isWritable(frame))
        return;
    if (dropUnread)
        takeRest();
    answerLength = frame.answerLength;
    condition.replies.expect();
    restartDeadline();
    device->write(frame.message);
    if (frame.startsStream())
        condition.stream = StreamState::StartSent;
    if (frame.isStop())
        condition.stream = StreamState::StopSent;
    if (answerLength == 0)
        condition.replies.giveUp();
}

void Endpoint::takeInput()
{
    if (condition.streaming)
        receiveStream();
    else if (condition.stream == StreamState::StopSent)
        finishStreamWithoutEndMark();
    else
        receiveReply();
}

void Endpoint::restartDeadline(double timeoutFactor)
{
    deadline.setRemainingTime(static_cast<qint64>(timeoutFactor * condition.timeoutMs));
}

bool Endpoint::isWaitOver() const
{
    return !condition.portOpen || deadline.hasExpired();
}

/// False if the deadline was over or the port was lost before.
bool Endpoint::waitUntil(const std::function<bool()>& isReached) const
{
    if (isReached())
        return true;
    QTimer alarm;
    alarm.setTimerType(Qt::PreciseTimer);
    while (!isReached() && !isWaitOver()) {
        // A command that is written from the events begins the wait anew.
        alarm.start(std::chrono::milliseconds(deadline.remainingTime()));
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return isReached();
}

/// The count can change meanwhile, with a command that is written from the events.
bool Endpoint::waitForBytes(const int& count) const
{
    return waitUntil([this, &count] { return device->bytesAvailable() >= count; });
}

/// A port that was lost meanwhile is closed and has nothing.
QByteArray Endpoint::takeRest()
{
    return device->isOpen() ? device->readAll() : QByteArray();
}

// Replies.

void Endpoint::receiveReply()
{
    condition.replies.clearBytes();
    restartDeadline();
    // A stray byte can lead here before a command is written. That command then sets the length.
    QByteArray bytes;
    if (waitForBytes(answerLength)) {
        bytes = device->read(answerLength);
        noteWholeReply(bytes);
    } else {
        bytes = takeShortReply();
    }
    condition.replies.put(bytes);
}

void Endpoint::noteWholeReply(const QByteArray& bytes)
{
    if (condition.stream == StreamState::StartSent) {
        if (command::isAccepted(bytes))
            condition.streaming = true;
        condition.stream = StreamState::StartAnsweredOrStopFailed;
    } else if (condition.stream == StreamState::StopSent) {
        condition.stream = StreamState::None;
    }
}

/// A refusal always has two bytes, however long the reply should be. Other short replies are
/// dropped.
QByteArray Endpoint::takeShortReply()
{
    if (condition.stream == StreamState::StartSent)
        condition.stream = StreamState::None;
    else if (condition.stream == StreamState::StopSent)
        condition.stream = StreamState::StartAnsweredOrStopFailed;
    const bool isRefusal = device->bytesAvailable() == command::statusReplyLength;
    const QByteArray rest = takeRest();
    return isRefusal ? rest : QByteArray();
}

// The stream.

bool Endpoint::stopsWithoutEndMark() const
{
    return !packet::hasFlags(condition.firmwareVersion)
           && condition.stream == StreamState::StopSent;
}

void Endpoint::receiveStream()
{
    while (device->bytesAvailable() > 0 && !stopsWithoutEndMark()) {
        restartDeadline();
        // Here a stop gets through while packets are flowing.
        const bool isWhole = waitForBytes(command::packetLength);
        if (stopsWithoutEndMark())
            break;
        if (!isWhole)
            return;
        if (streamDecoder.decode(*device, {condition.firmwareVersion, condition.vmFirmware})) {
            condition.streaming = false;
            // Without a stop of ours the controller ended the stream by itself.
            if (condition.stream == StreamState::StopSent)
                finishStreamWithEndMark();
            return;
        }
    }
    if (stopsWithoutEndMark())
        finishStreamWithoutEndMark();
}

void Endpoint::finishStreamWithEndMark()
{
    restartDeadline();
    QByteArray bytes;
    if (waitForBytes(command::statusReplyLength))
        bytes = device->read(command::statusReplyLength);
    condition.replies.put(bytes);
    condition.stream = StreamState::None;
}

void Endpoint::finishStreamWithoutEndMark()
{
    restartDeadline(stopTimeoutFactor);
    logMessage().debug() << "Saving reply";
    const auto never = [] { return false; };
    waitUntil(never);
    logMessage().debug() << "Finished saving reply";

    const QByteArray tail = takeRest().right(command::statusReplyLength);
    const bool isConfirmed = tail == QByteArray("\0;", command::statusReplyLength);
    if (isConfirmed)
        condition.streaming = false;
    condition.stream = isConfirmed ? StreamState::None : StreamState::StartAnsweredOrStopFailed;
    condition.replies.put(isConfirmed ? tail : QByteArray());
}
