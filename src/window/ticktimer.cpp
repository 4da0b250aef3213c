#include "window/ticktimer.h"

#include "window/monitortoolbar.h"

namespace {

constexpr double msPerS = 1000.0;

} // namespace

TickTimer::TickTimer(const MonitorToolBar& bar)
    : toolBar(bar)
{
    timer.setTimerType(Qt::PreciseTimer);
    connect(&timer, &QTimer::timeout, this, &TickTimer::timeout, Qt::DirectConnection);
    timer.start(firstTickMs);
}

void TickTimer::start()
{
    if (!ended)
        timer.start(int(msPerS / toolBar.updateRateHz()));
}

void TickTimer::stop()
{
    timer.stop();
}

void TickTimer::end()
{
    ended = true;
    timer.stop();
}
