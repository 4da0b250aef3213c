#pragma once

#include "model/detector.h"
#include "window/ratelimits.h"
#include "window/stageview.h"

#include <QObject>

class Acquisition;
class LiveSystems;
class MonitorToolBar;
class Statistics;

/// What runs at every display tick: units and rates follow the displayed systems, waiting samples
/// reach the stages while the acquisition runs, systems that do not stream are asked for their
/// status, and the switches follow it. Nothing here waits for a controller, except the stop at the
/// end of a counted run.
class DisplayTick final : public QObject
{
    Q_OBJECT

public:
    DisplayTick(LiveSystems& systems, Stages& stages, MonitorToolBar& toolBar,
                Statistics& statistics, Acquisition& acquisition);

    void run();

    /// Limits the rates to what the lines of the registered systems can carry.
    void limitRatesToLines();

signals:
    /// A stage changed the unit of its positions.
    void unitShown(PositionUnit unit, Stage stage);

private:
    void showUnits();
    void limitRates();
    bool allDisplayedArePulsed() const;
    void showSamples();
    void pollStatuses();
    void showStageStates();

    LiveSystems& systems;
    Stages& stages;
    MonitorToolBar& toolBar;
    Statistics& statistics;
    Acquisition& acquisition;
    RateLimits rates;
};
