#include "link/streampause.h"

#include "link/connection.h"

StreamPause::StreamPause(Connection& paused)
    : connection(paused)
    , wasStreaming(paused.isStreaming())
    , rateHz(paused.samplingRate())
{
    if (wasStreaming)
        connection.stopStream();
}

bool StreamPause::resume(int fallbackRateHz)
{
    if (!wasStreaming)
        return true;
    const bool neverAccepted = rateHz < 1;
    const int rate = neverAccepted ? qMin(fallbackRateHz, command::maxSamplingRateHz) : rateHz;
    return startStreamAtRate(connection, rate);
}

bool startStreamAtRate(Connection& connection, int rateHz)
{
    connection.setSamplingRate(rateHz);
    connection.startStream(command::streamArgument(static_cast<quint16>(rateHz)));
    QByteArray reply;
    return connection.fetchReply(reply) && !command::isRefused(reply);
}
