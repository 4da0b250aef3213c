#include "service/speedtest.h"

#include "link/ask.h"
#include "link/commandframe.h"
#include "link/connection.h"

#include <QThread>

namespace {

constexpr unsigned long measuredMs = 1000;

int takeAllSamples(Connection& connection)
{
    int count = 0;
    for (MeasureSample sample; connection.takeLiveSample(sample) != 0;)
        ++count;
    return count;
}

/// A refusal is a reply, too: of a stream that was refused no sample comes.
bool isAnswered(Connection& connection)
{
    return replyOf(connection).size() >= command::statusReplyLength;
}

} // namespace

SpeedResult measureSpeed(Connection& connection)
{
    using Outcome = SpeedResult::Outcome;
    takeAllSamples(connection);
    connection.startStream(command::streamArgument(command::maxSamplingRateHz));
    if (!isAnswered(connection))
        return {Outcome::NotStarted};
    QThread::msleep(measuredMs);
    connection.clearLiveStream();
    if (!isAnswered(connection))
        return {Outcome::NotStopped};
    return {Outcome::Counted, takeAllSamples(connection)};
}
