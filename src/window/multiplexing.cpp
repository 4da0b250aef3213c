#include "window/multiplexing.h"

#include "controls/waitcursor.h"
#include "link/ask.h"
#include "link/commandframe.h"
#include "link/connection.h"
#include "link/replyforms.h"
#include "link/streampause.h"
#include "window/livesystems.h"
#include "window/monitortoolbar.h"
#include "window/ticktimer.h"

#include <algorithm>

namespace {

bool isStage(int number)
{
    return std::any_of(bothStages.begin(), bothStages.end(),
                       [number](Stage stage) { return numberOf(stage) == number; });
}

} // namespace

Multiplexing::Multiplexing(LiveSystems& liveSystems, const MonitorToolBar& bar,
                           TickTimer& tickTimer)
    : systems(liveSystems)
    , toolBar(bar)
    , timer(tickTimer)
{}

void Multiplexing::switchStage(const QString& address, bool on, int stage)
{
    timer.stop();
    bool goesOn = isStage(stage);
    for (int i = 0; goesOn && i < systems.size(); ++i) {
        if (systems.connectionAt(i).address() == address)
            goesOn = switchSystem(systems.at(i), Stage(stage), on);
    }
    timer.start();
    multiplexBusy = false;
}

/// False if the call ends here, as it does at a second system with the address: the first one is
/// busy, and the second one stays as it is.
bool Multiplexing::switchSystem(LiveSystem& system, Stage stage, bool on)
{
    bool& direction = multiplexFlag(system.status, stage);
    if (direction == on || multiplexBusy)
        return false;
    multiplexBusy = true;
    // After a failure, too, the next request has to differ from the flag, or it would be ignored.
    direction = carryOut(*system.connection, stage, on) ? on : !on;
    return true;
}

/// Whether the controller accepted the command. A connection that is down sends none.
bool Multiplexing::carryOut(Connection& connection, Stage stage, bool on)
{
    const WaitCursor waiting;
    const auto wrapper =
        on ? &Connection::switchMultiplexingOn : &Connection::switchMultiplexingOff;
    QByteArray reply;
    const auto send = [&] { reply = ask(connection, wrapper, command::stageArgument(stage)); };
    if (hasFailed(onQuietLink(connection, toolBar.samplingRateHz(), send)))
        emit streamFailed();
    return command::isAcceptedByOne(reply);
}
