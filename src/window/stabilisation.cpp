#include "window/stabilisation.h"

#include "controls/waitcursor.h"
#include "link/ask.h"
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
constexpr int maxFailures = 4;

bool hasFailed(uchar status)
{
    return (status & statusflag::lastPacket) != 0;
}

QByteArray sendSwitch(Connection& connection, Stage stage, bool on)
{
    return ask(connection,
               on ? &Connection::switchStabilisationOn : &Connection::switchStabilisationOff,
               command::stageArgument(stage));
}

bool isWholeStatus(const QByteArray& reply)
{
    return command::isAccepted(reply, command::statusFlagsReplyLength)
           && reply.at(command::statusFlagsReplyLength - 1) == command::terminator;
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
    onQuietLink(*system->connection, [&] {
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
    });
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
    onQuietLink(*system.connection, [&] {
        sendSwitch(*system.connection, stage, on);
        readStatusAfterSwitch(system);
    });
}

void Stabilisation::onQuietLink(Connection& connection, const std::function<void()>& work)
{
    if (hasFailed(::onQuietLink(connection, toolBar.samplingRateHz(), work)))
        emit streamFailed();
}

void Stabilisation::readStatusAfterSwitch(LiveSystem& system)
{
    Connection& connection = *system.connection;
    if (packet::hasFlags(connection.firmwareVersion()))
        return;
    QThread::msleep(switchMs);
    statusflags::takeReply(system.status, ask(connection, &Connection::getStatusFlags));
}

uchar Stabilisation::readStatus()
{
    LiveSystem* system = systems.current();
    if (!system)
        return failedStatus;
    const QByteArray reply = ask(*system->connection, &Connection::getStatusFlags);
    if (!isWholeStatus(reply))
        return failedStatus;
    failures = 0;
    return uchar(reply.at(command::payloadOffset));
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
    for (StageView& stage : stages)
        stage.stabilisation().showOn(statusflag::isStabilised(status, stage.stage()));
    return showActive(status);
}

bool Stabilisation::showActive(uchar flags)
{
    const uchar status = flags == failedStatus ? readStatus() : flags;
    if (flags == failedStatus && hasFailed(status))
        return false;
    for (StageView& stage : stages)
        stage.stabilisation().showActive(statusflag::isActive(status, stage.stage()));
    return true;
}
