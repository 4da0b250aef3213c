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
    status.stabilised1 = (flags & statusflag::stabilised1) != 0;
    status.stabilised2 = (flags & statusflag::stabilised2) != 0;
    status.active1 = (flags & statusflag::active1) != 0;
    status.active2 = (flags & statusflag::active2) != 0;
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
    (stage == Stage::One ? status.stabilised1 : status.stabilised2) = on;
    if (!on)
        (stage == Stage::One ? status.active1 : status.active2) = false;
}

void forget(ConnectionStatus& status)
{
    status.statusValid = false;
    status.stabilised1 = false;
    status.stabilised2 = false;
    status.active1 = false;
    status.active2 = false;
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
