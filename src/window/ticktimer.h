#pragma once

#include <QTimer>

class MonitorToolBar;

/// The clock of the display tick. Each tick starts it anew, so that the next one comes a period
/// after the end of this one; whoever talks to controllers at length stops it meanwhile.
class TickTimer final : public QObject
{
    Q_OBJECT

public:
    explicit TickTimer(const MonitorToolBar& toolBar);

    /// The first tick comes a second after this was made.
    static constexpr int firstTickMs = 1000;

    /// Runs with the period of the update rate. Nothing after `end`.
    void start();
    void stop();
    /// Stops for good.
    void end();

signals:
    void timeout();

private:
    const MonitorToolBar& toolBar;
    QTimer timer;
    bool ended = false;
};
