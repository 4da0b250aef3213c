#pragma once

#include "window/run.h"
#include "window/stageview.h"

#include <QElapsedTimer>

class LiveSystems;
struct LiveSystem;

/// The pointing statistics of the displayed systems: counts the samples of a run and shows mean
/// and RMS on the pointing plots. GUI thread only.
class Statistics final
{
public:
    Statistics(LiveSystems& systems, Stages& stages);
    Statistics(const Statistics&) = delete;
    Statistics& operator=(const Statistics&) = delete;

    Run& run() { return currentRun; }
    const Run& run() const { return currentRun; }

    /// Begins the time that passes between two texts.
    void startClock();
    /// Takes a sample of a system into the run. `first` and `last` tell the place of the system
    /// among those that are shown together: the first one counts, and the run ends at the last one.
    /// The text has the unit of the system's own detector, also for volts of a common one: kept.
    /// False if the run has come to its end, whose figures are shown then; other figures wait for
    /// `showTaken`.
    bool take(LiveSystem& system, const StagePositions& positions, bool first, bool last);
    /// Shows the figures behind the last sample that was taken: the text if it is due, the crosses
    /// in any case. Does nothing if none was taken since.
    void showTaken();
    /// Adds the latest sample to the sums of a system once more and shows the figures if they are
    /// due.
    void addLatest(LiveSystem& system, int count);
    /// Shows the figures of a system now. `count` is the number of samples that the text tells.
    void refresh(const LiveSystem& system, int count);
    /// Forgets all sums and shows a run without a sample.
    void clear();

    /// Lets the user show the statistics, or hides them and does not.
    void enable(bool on);
    void show(StageView& stage, bool on);

private:
    void showFigures(const LiveSystem& system, int count);
    void moveCrosses();

    LiveSystems& systems;
    Stages& stages;
    Run currentRun;
    QElapsedTimer clock;
    /// The system of the last sample that was taken and not shown yet.
    const LiveSystem* unshown = nullptr;
};
