#include "link/connection.h"

#include "app/logging.h"
#include "link/packet.h"
#include "link/packetreader.h"
#include "link/triggerobject.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QIODevice>

namespace {

constexpr unsigned long pollMs = 1;
constexpr unsigned long endPollMs = 10;
constexpr int endPolls = 1500;
/// Longer than the longest pause of a stream, so that a stop without end mark sees its last bytes.
constexpr double stopTimeoutFactor = 1.5;
constexpr int callerTimeoutFactor = 2;

CommandFrame statusRequest()
{
    return command::frame("GSF", {}, command::statusFlagsReplyLength);
}

void takeEventsFor1Ms()
{
    QCoreApplication::processEvents();
    QThread::msleep(pollMs);
}

} // namespace

Connection::Connection() = default;

Connection::~Connection() = default;

int Connection::setSamplingRate(int rateHz)
{
    if (rateHz < 1 || rateHz > command::maxSamplingRateHz)
        return 0;
    samplingRate_ = rateHz;
    return 1;
}

int Connection::setTimeoutMs(int timeoutMs)
{
    if (timeoutMs <= 0)
        return 0;
    timeoutMs_ = timeoutMs;
    return 1;
}

QString Connection::label() const
{
    const std::lock_guard<std::mutex> lock(sharedMutex);
    return label_;
}

void Connection::setLabel(const QString& label)
{
    const std::lock_guard<std::mutex> lock(sharedMutex);
    label_ = label;
}

int Connection::takeLiveSample(MeasureSample& out)
{
    return liveStore.sampleCount() == 0 ? 0 : liveStore.takeSample(out);
}

int Connection::takeCommonSample(MeasureSample& out)
{
    return commonStore.sampleCount() == 0 ? 0 : commonStore.takeSample(out);
}

// The GUI thread's side of an exchange.

void Connection::send(const CommandFrame& frame)
{
    settlePoll();
    post(frame);
    // Whoever stops a stream knows that the stop was written when this returns.
    if (frame.isStop())
        delivery->waitUntil(replyDeadline);
    msleep(pollMs);
}

void Connection::post(const CommandFrame& frame)
{
    replyDeadline.setRemainingTime(callerTimeoutFactor * timeoutMs_, Qt::PreciseTimer);
    delivery = std::make_shared<SendDelivery>();
    // The lock keeps the trigger alive while the call is posted to it.
    const std::lock_guard<std::mutex> lock(sharedMutex);
    if (trigger_) {
        const PostedSend call(*trigger_, frame, delivery);
        QMetaObject::invokeMethod(trigger_.get(), call, Qt::QueuedConnection);
    } else {
        delivery->finish();
    }
}

bool Connection::fetchReply(QByteArray& out)
{
    out.clear();
    // The reply of a poll belongs to whoever polls.
    return !isPolling && awaitReply(out);
}

bool Connection::awaitReply(QByteArray& out)
{
    // On a loaded machine the send can still lie in the queue: its outcome is not known before.
    if (delivery && !delivery->waitUntil(replyDeadline))
        delivery->giveUp();
    while (requestState_ == RequestState::Pending && portOpen_ && !replyDeadline.hasExpired())
        msleep(pollMs);
    if (requestState_ == RequestState::Pending)
        giveUpReply();
    return takeReply(out);
}

/// A reply that comes at the very last moment is kept, not thrown away.
void Connection::giveUpReply()
{
    StreamState stopSent = StreamState::StopSent;
    streamState_.compare_exchange_strong(stopSent, StreamState::Answered);
    RequestState pending = RequestState::Pending;
    requestState_.compare_exchange_strong(pending, RequestState::Idle);
}

bool Connection::takeReply(QByteArray& out)
{
    if (requestState_ != RequestState::Ready)
        return false;
    {
        const std::lock_guard<std::mutex> lock(sharedMutex);
        out.append(reply_);
    }
    requestState_ = RequestState::Idle;
    return true;
}

void Connection::pollStatus()
{
    if (isPolling || !isConnected() || isStreaming())
        return;
    const bool isAwaited = !isSent() || requestState_ == RequestState::Pending;
    if (isAwaited && !replyDeadline.hasExpired())
        return;
    // Nobody fetches any more what an earlier command has left behind.
    QByteArray abandoned;
    awaitReply(abandoned);
    post(statusRequest());
    isPolling = true;
}

bool Connection::takePolledStatus(QByteArray& reply)
{
    reply.clear();
    if (!isPolling)
        return false;
    const bool isOpen = !isSent() || (requestState_ == RequestState::Pending && portOpen_);
    if (isOpen && !replyDeadline.hasExpired())
        return false;
    isPolling = false;
    return awaitReply(reply);
}

bool Connection::isSent() const
{
    return !delivery || delivery->isFinished();
}

void Connection::settlePoll()
{
    if (!isPolling)
        return;
    isPolling = false;
    QByteArray ignored;
    awaitReply(ignored);
}

void Connection::startStream(const QByteArray& argument)
{
    liveStore.clearSamples();
    if (vmFirmware_) {
        commonStore.clearSamples();
        startVmStream(argument);
    } else if (triggerMode_) {
        startPulsedStream(command::withoutRate(argument));
    } else {
        startRatedStream(argument);
    }
}

void Connection::stopStream()
{
    QByteArray reply;
    clearLiveStream();
    if (fetchReply(reply))
        return;
    clearLiveStream();
    fetchReply(reply);
}

// The end of the thread.

int Connection::endThread()
{
    exit(0);
    int pollsLeft = endPolls;
    while (pollsLeft >= 0 && isRunning()) {
        --pollsLeft;
        wait(endPollMs);
    }
    // Orders what the thread did to its objects before whatever this thread does next.
    const std::lock_guard<std::mutex> lock(sharedMutex);
    return pollsLeft;
}

int Connection::disconnectController()
{
    logMessage().debug() << "Disconnecting";
    const int pollsLeft = endThread();
    isPolling = false;
    delivery.reset();
    streaming_ = 0;
    requestState_ = RequestState::Idle;
    streamState_ = StreamState::None;
    logMessage().debug() << "Finished disconnecting";

    linkState_ = endConfirmed(pollsLeft) ? LinkState::Disconnected : LinkState::OpenFailed;
    return endConfirmed(pollsLeft) ? 1 : 0;
}

void Connection::releaseCore()
{
    if (released)
        return;
    released = true;
    logMessage().debug() << "Deleting connection";
    const int pollsLeft = endThread();
    liveStore.clearSamples();
    commonStore.clearSamples();
    logMessage().debug() << "Finished deleting connection" << pollsLeft;
}

// The connection's thread.

void Connection::makeEndpoint(std::unique_ptr<QIODevice> port)
{
    auto trigger = std::make_unique<TriggerObject>(*this);
    // Orders what the previous thread did at its end before this, too.
    const std::lock_guard<std::mutex> lock(sharedMutex);
    device_ = std::move(port);
    portLossTold = false;
    trigger_ = std::move(trigger);
}

void Connection::deleteEndpoint()
{
    std::unique_ptr<TriggerObject> trigger;
    {
        const std::lock_guard<std::mutex> lock(sharedMutex);
        trigger = std::move(trigger_);
    }
    portOpen_ = false;
    trigger.reset();
    device_.reset();
    // Whoever sees the thread ended locks this once and thereby sees all of the above.
    const std::lock_guard<std::mutex> lock(sharedMutex);
}

void Connection::publishConnected()
{
    portOpen_ = true;
    linkState_ = LinkState::Connected;
}

void Connection::watchInput()
{
    readyRead = connect(device_.get(), &QIODevice::readyRead, this, &Connection::saveReply,
                        Qt::DirectConnection);
}

void Connection::ignoreInput()
{
    disconnect(readyRead);
}

void Connection::reportLostPort()
{
    if (portLossTold)
        return;
    portLossTold = true;
    portOpen_ = false;
    logMessage().debug() << "Controller disconnected";
    emit hostDisconnected(address());
    exit(0);
}

void Connection::sendMessage(QByteArray message, int answerLength)
{
    const CommandFrame frame{message, answerLength};
    const StreamState stream = streamState_;
    if (requestState_ == RequestState::Pending)
        return;
    if (streaming_ != 0 && !frame.isStop())
        return;
    if (stream == StreamState::StartSent || stream == StreamState::StopSent || !device_
        || !portOpen_ || linkState_ != LinkState::Connected)
        return;

    answerLength_ = answerLength;
    requestState_ = RequestState::Pending;
    deadline.setRemainingTime(timeoutMs_);
    clearReply();
    device_->write(message);
    if (frame.startsStream())
        streamState_ = StreamState::StartSent;
    if (frame.isStop())
        streamState_ = StreamState::StopSent;
    if (answerLength_ == 0)
        requestState_ = RequestState::Idle;
}

void Connection::saveReply()
{
    // The waits below take events: without this they would be entered again from there.
    ignoreInput();
    if (streaming_ != 0)
        receiveStream();
    else if (streamState_ == StreamState::StopSent)
        finishStreamWithoutEndMark();
    else
        receiveReply();
    watchInput();
}

bool Connection::isWaitOver() const
{
    return !portOpen_ || deadline.hasExpired();
}

bool Connection::awaitBytes(qint64 count)
{
    while (device_->bytesAvailable() < count && !isWaitOver())
        takeEventsFor1Ms();
    return device_->bytesAvailable() >= count;
}

bool Connection::awaitAnswer()
{
    // A stray byte has led here, too: the command that gets through meanwhile sets the length.
    while (device_->bytesAvailable() < answerLength_ && !isWaitOver())
        takeEventsFor1Ms();
    return device_->bytesAvailable() >= answerLength_;
}

/// A port that was lost meanwhile is closed and has nothing.
QByteArray Connection::takeRest()
{
    return device_->isOpen() ? device_->readAll() : QByteArray();
}

void Connection::receiveReply()
{
    clearReply();
    deadline.setRemainingTime(timeoutMs_);
    const bool whole = awaitAnswer();

    QByteArray bytes;
    if (whole) {
        bytes = device_->read(answerLength_);
        if (streamState_ == StreamState::StartSent) {
            if (command::isAccepted(bytes))
                streaming_ = 1;
            streamState_ = StreamState::Answered;
        } else if (streamState_ == StreamState::StopSent) {
            streamState_ = StreamState::None;
        }
    } else {
        if (streamState_ == StreamState::StartSent)
            streamState_ = StreamState::None;
        else if (streamState_ == StreamState::StopSent)
            streamState_ = StreamState::Answered;
        // A refusal is short whatever was asked for. Anything else is of no use.
        const bool refusal = device_->bytesAvailable() == command::statusReplyLength;
        const QByteArray rest = takeRest();
        if (refusal)
            bytes = rest;
    }
    publishReply(bytes);
}

void Connection::publishReply(const QByteArray& bytes)
{
    {
        const std::lock_guard<std::mutex> lock(sharedMutex);
        reply_ = bytes;
    }
    requestState_ = RequestState::Ready;
}

void Connection::clearReply()
{
    const std::lock_guard<std::mutex> lock(sharedMutex);
    reply_.clear();
}

bool Connection::stopsWithoutEndMark() const
{
    return !packet::hasFlags(firmwareVersion_) && streamState_ == StreamState::StopSent;
}

void Connection::receiveStream()
{
    deadline.setRemainingTime(timeoutMs_);
    while (device_->bytesAvailable() > 0 && !deadline.hasExpired() && !stopsWithoutEndMark()) {
        deadline.setRemainingTime(timeoutMs_);
        // Here a stop gets through while packets are flowing.
        const bool whole = awaitBytes(command::packetLength);
        if (stopsWithoutEndMark())
            break;
        if (!whole)
            return;

        switch (drainPackets()) {
        case DrainEnd::Misaligned:
            return;
        case DrainEnd::LastPacket:
            // Without a stop of ours the controller ended the stream by itself.
            if (streamState_ == StreamState::StopSent)
                finishStreamWithEndMark();
            return;
        case DrainEnd::StopOfOldKind:
        case DrainEnd::InputUsedUp:
            break;
        }
        deadline.setRemainingTime(timeoutMs_);
    }
    if (stopsWithoutEndMark())
        finishStreamWithoutEndMark();
}

Connection::DrainEnd Connection::drainPackets()
{
    while (device_->bytesAvailable() >= command::packetLength) {
        const qint64 timeMs = QDateTime::currentMSecsSinceEpoch();
        if (stopsWithoutEndMark())
            return DrainEnd::StopOfOldKind;

        const packetreader::Result result = packetreader::read(*device_);
        if (result.skipped > 0)
            logMessage().debug() << "Incomplete stream message. Bytes skipped:" << result.skipped;
        if (!result.found)
            return DrainEnd::Misaligned;

        lastPacketTime_ = timeMs;
        storePacket(result.bytes, static_cast<quint64>(timeMs));
        if (packet::isLast(result.bytes, firmwareVersion_)) {
            streaming_ = 0;
            return DrainEnd::LastPacket;
        }
    }
    return DrainEnd::InputUsedUp;
}

void Connection::storePacket(const PacketBytes& bytes, quint64 timeMs)
{
    if (packet::isWithheld(bytes, firmwareVersion_, vmFirmware_))
        return;
    liveStore.storeSample(packet::toSample(bytes, firmwareVersion_, timeMs));
    ++samplesStored_;
}

void Connection::finishStreamWithEndMark()
{
    deadline.setRemainingTime(timeoutMs_);
    QByteArray bytes;
    if (awaitBytes(command::statusReplyLength))
        bytes = device_->read(command::statusReplyLength);
    publishReply(bytes);
    streamState_ = StreamState::None;
}

void Connection::finishStreamWithoutEndMark()
{
    deadline.setRemainingTime(static_cast<qint64>(stopTimeoutFactor * timeoutMs_));
    logMessage().debug() << "Saving reply";
    while (!isWaitOver())
        takeEventsFor1Ms();
    logMessage().debug() << "Finished saving reply";

    const QByteArray tail = takeRest().right(command::statusReplyLength);
    const bool confirmed = tail == QByteArray("\0;", command::statusReplyLength);
    if (confirmed)
        streaming_ = 0;
    streamState_ = confirmed ? StreamState::None : StreamState::Answered;
    publishReply(confirmed ? tail : QByteArray());
}
