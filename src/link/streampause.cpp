#include "link/streampause.h"

#include "link/connection.h"
#include "link/replyforms.h"

StreamPause::StreamPause(Connection& paused)
    : connection(paused)
    , wasStreaming(paused.isStreaming())
    , rateHz(paused.samplingRate())
{
    if (wasStreaming)
        connection.stopStream();
}

StreamStart StreamPause::resume(int fallbackRateHz)
{
    if (!wasStreaming)
        return StreamStart::NotNeeded;
    return startStreamAtRate(connection, rateToStart(rateHz, fallbackRateHz));
}

int rateToStart(int rateHz, int fallbackRateHz)
{
    const bool neverAccepted = rateHz < 1;
    return neverAccepted ? qMin(fallbackRateHz, command::maxSamplingRateHz) : rateHz;
}

StreamStart startStreamAtRate(Connection& connection, int rateHz)
{
    connection.setSamplingRate(rateHz);
    connection.startStream(command::streamArgument(static_cast<quint16>(rateHz)));
    QByteArray reply;
    if (!connection.fetchReply(reply))
        return StreamStart::NoReply;
    if (reply.isEmpty())
        return StreamStart::EmptyReply;
    return command::isRefused(reply) ? StreamStart::Refused : StreamStart::Runs;
}
