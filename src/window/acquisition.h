#pragma once

#include "window/stageview.h"

#include <QObject>

class Connection;
class LiveSystems;
class MonitorToolBar;
class Statistics;
class TickTimer;

/// Starts and stops the streams of the displayed systems, and with them the drawing of the plots.
/// Systems whose common detector is shown are started with them, but not stopped. Whether it runs
/// is kept by the start button alone. Starts and stops block for the exchanges.
class Acquisition final : public QObject
{
    Q_OBJECT

public:
    Acquisition(LiveSystems& systems, Stages& stages, MonitorToolBar& toolBar,
                Statistics& statistics, TickTimer& timer);

    /// Starts or stops, as the start button says now.
    void startOrStop();
    /// Stops the streams of all displayed systems and lets the plots rest.
    void stop();
    /// Starts the stream of a system on the plots if the acquisition runs and it does not stream.
    void joinIfRunning(int index);
    void startDrawing();
    void showRunning(bool running);
    /// Empties plots, readouts and statistics, and begins at time 0.
    void reset();

    /// Limits the run to the wanted samples and counts from 0, or takes the limit away.
    void limitSamples(bool on);

    /// While the rate follows the pulses of the lasers it can not be chosen.
    void setRateLocked(bool locked) { rateLocked = locked; }

signals:
    void started();
    void aboutToStop();
    /// The streams are stopped next, whoever ended them.
    void stopping();
    /// A controller did not start its stream; the others go on.
    void streamFailed();

private:
    void start();
    void startStream(int index);
    void stopDrawing();

    LiveSystems& systems;
    Stages& stages;
    MonitorToolBar& toolBar;
    Statistics& statistics;
    TickTimer& timer;
    bool rateLocked = false;
};
