#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <chrono>

class MonitorToolBar;

/// The clock of the display tick. Each tick starts it anew, so that the next one comes a period
/// after the end of this one; whoever talks to controllers at length stops it meanwhile. It is a
/// timer of the system: those of an event loop come up to a millisecond late, which at the usual
/// rate would cost every twentieth tick.
class TickTimer final : public QObject
{
    Q_OBJECT

public:
    explicit TickTimer(const MonitorToolBar& toolBar);
    ~TickTimer() override;

    /// The first tick comes a second after this was made.
    static constexpr std::chrono::milliseconds firstPeriod{1000};

    /// Runs with the period of the update rate. Nothing after `end`.
    void start();
    void stop();
    /// Stops for good.
    void end();
    /// Of the last start; 0 while it is stopped.
    std::chrono::milliseconds period() const { return currentPeriod; }

signals:
    void timeout();

private:
    void set(std::chrono::milliseconds period);
    void takeExpiry();

    const MonitorToolBar& toolBar;
    const int descriptor;
    QSocketNotifier notifier;
    std::chrono::milliseconds currentPeriod{0};
    bool ended = false;
};
