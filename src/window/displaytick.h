#pragma once

#include "model/detector.h"
#include "window/ratelimits.h"
#include "window/stageview.h"

#include <QObject>

class Acquisition;
class LiveSystems;
class MonitorToolBar;
class Recorder;
class Statistics;
struct SampleManner;
struct SampleSource;

/// What runs at every display tick: units and rates follow the displayed systems, waiting samples
/// reach the stages while the acquisition runs, systems that do not stream are asked for their
/// status, and the switches follow it. Nothing here waits for a controller, except the stop at the
/// end of a counted run.
class DisplayTick final : public QObject
{
    Q_OBJECT

public:
    DisplayTick(LiveSystems& systems, Stages& stages, MonitorToolBar& toolBar,
                Statistics& statistics, Acquisition& acquisition, const Recorder& recorder);

    void run();
    /// Takes the waiting samples of the common detectors while the acquisition runs, without
    /// painting. The tick itself does not call it: nothing stores their samples yet.
    void showCommonSamples();

    /// Limits the rates to what the lines of the registered systems can carry.
    void limitRatesToLines();

signals:
    /// A stage changed the unit of its positions.
    void unitShown(PositionUnit unit, Stage stage);

private:
    void showUnits();
    void limitRates();
    bool allDisplayedArePulsed() const;
    bool isAcquiring() const;
    void showSamples();
    void show(const SampleSource& source, const SampleManner& manner);
    void pollStatuses();
    void showStageStates();

    LiveSystems& systems;
    Stages& stages;
    MonitorToolBar& toolBar;
    Statistics& statistics;
    Acquisition& acquisition;
    const Recorder& recorder;
    RateLimits rates;
};
