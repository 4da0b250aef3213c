#include "window/statistics.h"

#include "model/detectorpair.h"
#include "window/livesystems.h"

#include <utility>

Statistics::Statistics(LiveSystems& liveSystems, Stages& stageViews)
    : systems(liveSystems)
    , stages(stageViews)
{
    clock.start();
}

void Statistics::startClock()
{
    currentRun.startClock(clock.elapsed());
}

bool Statistics::take(LiveSystem& system, const StagePositions& positions, bool first, bool last)
{
    if (!currentRun.hasLimit())
        return true;
    if (currentRun.isCounting()) {
        if (first)
            currentRun.countSample();
        // The first system counts; until it has delivered there is nothing to divide by.
        if (currentRun.samplesTaken() > 0) {
            currentRun.add(system.sums, positions);
            unshown = &system;
        }
    }
    if (currentRun.isCounting() || !last)
        return true;
    unshown = nullptr;
    refresh(system, currentRun.samplesTaken());
    return false;
}

void Statistics::addLatest(LiveSystem& system, int count)
{
    currentRun.add(system.sums, currentRun.latest());
    showFigures(system, count);
}

void Statistics::showTaken()
{
    if (unshown)
        showFigures(*std::exchange(unshown, nullptr), currentRun.samplesTaken());
}

void Statistics::showFigures(const LiveSystem& system, int count)
{
    if (currentRun.isTextDue(clock.elapsed()))
        refresh(system, count);
    else
        moveCrosses();
}

void Statistics::refresh(const LiveSystem& system, int count)
{
    currentRun.refresh(system.sums, clock.elapsed());
    for (std::size_t i = 0; i < stages.size(); ++i) {
        const StageFigures& figures = currentRun.figures()[i];
        stages[i].statistics().setText(
            statisticsText(figures.mean, figures.rms, count, (*system.detectors)[i]->unit()));
    }
    moveCrosses();
}

void Statistics::moveCrosses()
{
    for (std::size_t i = 0; i < stages.size(); ++i)
        stages[i].statistics().moveCross(currentRun.figures()[i]);
}

void Statistics::clear()
{
    for (int i = 0; i < systems.size(); ++i)
        systems.at(i).sums = StatisticsSums();
    currentRun.clear();
    for (StageView& stage : stages)
        stage.statistics().clear();
}

void Statistics::enable(bool on)
{
    for (StageView& stage : stages) {
        stage.statistics().enable(on);
        show(stage, stage.statistics().isWanted());
    }
}

void Statistics::show(StageView& stage, bool on)
{
    const LiveSystem* system = systems.single();
    if (on && system && currentRun.samplesShown() != 0)
        refresh(*system, currentRun.samplesShown());
    stage.statistics().show(on);
}
