#include "link/connection.h"

#include "app/logging.h"
#include "link/talk.h"

#include <QIODevice>

#include <utility>
#include <vector>

namespace {

constexpr unsigned long endPollMs = 10;
constexpr int endPolls = 1500;

} // namespace

Connection::Connection() = default;

Connection::~Connection() = default;

int Connection::setSamplingRate(int rateHz)
{
    if (rateHz < 1 || rateHz > command::maxSamplingRateHz)
        return 0;
    condition.samplingRate = rateHz;
    return 1;
}

int Connection::setTimeoutMs(int timeoutMs)
{
    if (timeoutMs <= 0)
        return 0;
    condition.timeoutMs = timeoutMs;
    return 1;
}

QString Connection::label() const
{
    const std::lock_guard<std::mutex> lock(sharedMutex);
    return labelText;
}

void Connection::setLabel(const QString& label)
{
    const std::lock_guard<std::mutex> lock(sharedMutex);
    labelText = label;
}

int Connection::takeLiveSample(MeasureSample& out)
{
    return liveStore.takeSample(out);
}

int Connection::takeCommonSample(MeasureSample& out)
{
    return commonStore.takeSample(out);
}

void Connection::takeLiveSamples(std::vector<MeasureSample>& out, std::size_t most)
{
    liveStore.takeSamples(out, most);
}

void Connection::takeCommonSamples(std::vector<MeasureSample>& out, std::size_t most)
{
    commonStore.takeSamples(out, most);
}

bool Connection::fetchReply(QByteArray& out)
{
    out.clear();
    return exchange.fetchReply(out);
}

void Connection::pollStatus()
{
    if (isConnected() && !isStreaming())
        exchange.poll(command::statusRequest());
}

bool Connection::takePolledStatus(QByteArray& reply)
{
    reply.clear();
    return exchange.takePolled(reply);
}

void Connection::startStream(const QByteArray& argument)
{
    liveStore.clearSamples();
    if (vmFirmware()) {
        commonStore.clearSamples();
        startVmStream(argument);
    } else if (triggerMode()) {
        startPulsedStream(command::withoutRate(argument));
    } else {
        startRatedStream(argument);
    }
}

void Connection::stopStream()
{
    StopTalk talk(*this, 1, StopTalk::Unanswered::Repeated);
    finish(talk, *this);
    logLosses();
}

void Connection::logLosses()
{
    const quint64 samples = droppedSamples();
    const quint64 bytes = skippedBytes();
    if (samples > loggedSamples || bytes > loggedBytes)
        logMessage().info() << "Stream of" << qPrintable(address())
                            << "has lost samples:" << samples - loggedSamples
                            << "bytes:" << bytes - loggedBytes;
    loggedSamples = samples;
    loggedBytes = bytes;
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
    // Makes everything that the thread did to its objects visible to this thread.
    const std::lock_guard<std::mutex> lock(sharedMutex);
    return pollsLeft;
}

int Connection::disconnectController()
{
    logMessage().debug() << "Disconnecting";
    const int pollsLeft = endThread();
    condition.streaming = false;
    exchange.forget();
    condition.stream = StreamState::None;
    logMessage().debug() << "Finished disconnecting";

    condition.link = endConfirmed(pollsLeft) ? LinkState::Disconnected : LinkState::OpenOrEndFailed;
    return endConfirmed(pollsLeft) ? 1 : 0;
}

void Connection::release(const char* kind)
{
    if (released)
        return;
    released = true;
    logMessage().debug() << "Deleting" << kind << "connection";
    logMessage().debug() << "Deleting connection";
    const int pollsLeft = endThread();
    logLosses();
    liveStore.clearSamples();
    commonStore.clearSamples();
    logMessage().debug() << "Finished deleting connection" << pollsLeft;
}

// The connection's thread.

void Connection::makeEndpoint(std::unique_ptr<QIODevice> port)
{
    condition.link = LinkState::NotConnected;
    // Makes what the previous thread did at its end visible to this one.
    const std::lock_guard<std::mutex> lock(sharedMutex);
    endpoint.open(std::move(port));
    portLossReported = false;
    sendQueue.open(*this);
}

void Connection::deleteEndpoint()
{
    sendQueue.close();
    endpoint.close();
    // `endThread` and `makeEndpoint` lock this too, and so see all of the above.
    const std::lock_guard<std::mutex> lock(sharedMutex);
}

void Connection::publishConnected()
{
    condition.portOpen = true;
    condition.link = LinkState::Connected;
}

void Connection::publishOpenFailed()
{
    condition.link = LinkState::OpenOrEndFailed;
}

void Connection::watchInput()
{
    readyRead = connect(device(), &QIODevice::readyRead, this, &Connection::saveReply,
                        Qt::DirectConnection);
}

void Connection::ignoreInput()
{
    disconnect(readyRead);
}

void Connection::reportLostPort()
{
    if (portLossReported)
        return;
    portLossReported = true;
    condition.losePort();
    logMessage().debug() << "Controller disconnected";
    emit hostDisconnected(address());
    exit(0);
}

void Connection::sendMessage(QByteArray message, int answerLength)
{
    endpoint.write({message, answerLength});
}

void Connection::saveReply()
{
    // Taking the input takes events: without this it would be entered again from there.
    ignoreInput();
    endpoint.takeInput();
    watchInput();
}
