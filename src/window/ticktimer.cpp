#include "window/ticktimer.h"

#include "window/monitortoolbar.h"

#include <cerrno>
#include <ctime>
#include <sys/timerfd.h>
#include <unistd.h>

namespace {

constexpr double msPerS = 1000.0;

int openTimer()
{
    const int descriptor = timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC);
    if (descriptor < 0)
        qFatal("There is no timer for the display: %s", qPrintable(qt_error_string(errno)));
    return descriptor;
}

timespec timeOf(std::chrono::milliseconds period)
{
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(period);
    return {seconds.count(), std::chrono::nanoseconds(period - seconds).count()};
}

} // namespace

TickTimer::TickTimer(const MonitorToolBar& bar)
    : toolBar(bar)
    , descriptor(openTimer())
    , notifier(descriptor, QSocketNotifier::Read, this)
{
    connect(&notifier, &QSocketNotifier::activated, this, &TickTimer::takeExpiry);
    set(firstPeriod);
}

TickTimer::~TickTimer()
{
    notifier.setEnabled(false);
    close(descriptor);
}

void TickTimer::start()
{
    if (!ended)
        set(std::chrono::milliseconds(int(msPerS / toolBar.updateRateHz())));
}

void TickTimer::stop()
{
    set(std::chrono::milliseconds(0));
}

void TickTimer::end()
{
    ended = true;
    stop();
}

/// Forgets an expiry that was not taken yet. A period of 0 stops the timer.
void TickTimer::set(std::chrono::milliseconds period)
{
    currentPeriod = period;
    const itimerspec times{timeOf(period), timeOf(period)};
    timerfd_settime(descriptor, 0, &times, nullptr);
}

/// There is none if the timer was set anew since it woke the event loop. A tick that takes events
/// meets no other one in them.
void TickTimer::takeExpiry()
{
    quint64 expiries = 0;
    if (read(descriptor, &expiries, sizeof expiries) != sizeof expiries)
        return;
    notifier.setEnabled(false);
    emit timeout();
    notifier.setEnabled(true);
}
