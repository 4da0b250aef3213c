#include "window/statusflags.h"

#include "link/connection.h"
#include "link/packet.h"
#include "window/livesystem.h"

namespace statusflags {

void takeReply(ConnectionStatus& status, const QByteArray& reply)
{
    if (reply.size() <= command::payloadOffset)
        return;
    const auto flags = uchar(reply.at(command::payloadOffset));
    for (const Stage stage : bothStages) {
        stabilisedFlag(status, stage) = statusflag::isStabilised(flags, stage);
        activeFlag(status, stage) = statusflag::isActive(flags, stage);
    }
    status.statusValid = true;
}

void takeSample(ConnectionStatus& status, const MeasureSample& sample)
{
    status.multiplex1 = sample.multiplex1 != 0;
    status.multiplex2 = sample.multiplex2 != 0;
    status.stabilised1 = sample.stabilised1 != 0;
    status.stabilised2 = sample.stabilised2 != 0;
    status.active1 = sample.active1 != 0;
    status.active2 = sample.active2 != 0;
    status.statusValid = true;
}

void noteSwitch(ConnectionStatus& status, Stage stage, bool on)
{
    stabilisedFlag(status, stage) = on;
    if (!on)
        activeFlag(status, stage) = false;
}

void forget(ConnectionStatus& status)
{
    status.statusValid = false;
    for (const Stage stage : bothStages) {
        stabilisedFlag(status, stage) = false;
        activeFlag(status, stage) = false;
    }
}

void poll(LiveSystem& system)
{
    Connection& connection = *system.connection;
    system.status.label = connection.label();
    system.status.address = connection.address();
    if (!connection.isConnected()) {
        forget(system.status);
        return;
    }
    if (connection.isStreaming())
        return;
    QByteArray reply;
    if (connection.takePolledStatus(reply))
        takeReply(system.status, reply);
    connection.pollStatus();
}

} // namespace statusflags
