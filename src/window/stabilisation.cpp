#include "window/stabilisation.h"

#include "controls/waitcursor.h"
#include "link/connection.h"
#include "link/packet.h"
#include "link/replyforms.h"
#include "link/streampause.h"
#include "window/livesystems.h"
#include "window/monitortoolbar.h"
#include "window/statusflags.h"

#include <QThread>

namespace {

/// Time that a controller without status in its stream takes to have switched.
constexpr unsigned long switchMs = 100;
constexpr uchar failedStatus = statusflag::lastPacket;
constexpr int statusReplyLength = 4;
constexpr int statusOffset = 2;
constexpr int maxFailures = 4;

bool hasFailed(uchar status)
{
    return (status & statusflag::lastPacket) != 0;
}

QByteArray sendSwitch(Connection& connection, Stage stage, bool on)
{
    if (on)
        connection.switchStabilisationOn(command::stageArgument(stage));
    else
        connection.switchStabilisationOff(command::stageArgument(stage));
    QByteArray reply;
    connection.fetchReply(reply);
    return reply;
}

bool isWholeStatus(const QByteArray& reply)
{
    return command::isAccepted(reply) && reply.size() >= statusReplyLength
           && reply.at(statusReplyLength - 1) == command::terminator;
}

} // namespace

Stabilisation::Stabilisation(LiveSystems& liveSystems, Stages& stageViews,
                             const MonitorToolBar& bar)
    : systems(liveSystems)
    , stages(stageViews)
    , toolBar(bar)
{}

void Stabilisation::switchAsClicked(StageView& stage)
{
    LiveSystem* system = systems.current();
    if (!system)
        return;
    const WaitCursor waiting;
    StageSwitch& button = stage.stabilisation();
    const bool hadFocus = button.hasFocus();
    button.setEnabled(false);
    StreamPause pause(*system->connection);

    const bool on = button.isWantedOn();
    QByteArray reply = sendSwitch(*system->connection, stage.stage(), on);
    if (!command::isAccepted(reply))
        reply = sendSwitch(*system->connection, stage.stage(), on);
    if (command::isAccepted(reply)) {
        button.showOn(on);
        statusflags::noteSwitch(system->status, stage.stage(), on);
        if (!on)
            button.showActive(false);
    }
    readStatusAfterSwitch(*system);

    if (hasFailed(pause.resume(toolBar.samplingRateHz())))
        emit streamFailed();
    button.setEnabled(true);
    // Disabled, it lost the keyboard to its neighbour.
    if (hadFocus)
        button.setFocus();
}

void Stabilisation::switchStage(const Connection* connection, Stage stage, bool on)
{
    const int index = systems.indexOf(connection);
    if (index < 0 || !connection->isConnected())
        return;
    const WaitCursor waiting;
    LiveSystem& system = systems.at(index);
    StreamPause pause(*system.connection);
    sendSwitch(*system.connection, stage, on);
    readStatusAfterSwitch(system);
    if (hasFailed(pause.resume(toolBar.samplingRateHz())))
        emit streamFailed();
}

void Stabilisation::readStatusAfterSwitch(LiveSystem& system)
{
    Connection& connection = *system.connection;
    if (packet::hasFlags(connection.firmwareVersion()))
        return;
    QThread::msleep(switchMs);
    connection.getStatusFlags();
    QByteArray reply;
    connection.fetchReply(reply);
    statusflags::takeReply(system.status, reply);
}

uchar Stabilisation::readStatus()
{
    LiveSystem* system = systems.current();
    if (!system)
        return failedStatus;
    QByteArray reply;
    system->connection->getStatusFlags();
    system->connection->fetchReply(reply);
    if (!isWholeStatus(reply))
        return failedStatus;
    failures = 0;
    return uchar(reply.at(statusOffset));
}

bool Stabilisation::readAndShow()
{
    const uchar status = readStatus();
    if (hasFailed(status)) {
        ++failures;
        if (failures >= maxFailures)
            emit linkFailed();
        return false;
    }
    stages[0].stabilisation().showOn((status & statusflag::stabilised1) != 0);
    stages[1].stabilisation().showOn((status & statusflag::stabilised2) != 0);
    return showActive(status);
}

bool Stabilisation::showActive(uchar flags)
{
    const uchar status = flags == failedStatus ? readStatus() : flags;
    if (flags == failedStatus && hasFailed(status))
        return false;
    stages[0].stabilisation().showActive((status & statusflag::active1) != 0);
    stages[1].stabilisation().showActive((status & statusflag::active2) != 0);
    return true;
}
