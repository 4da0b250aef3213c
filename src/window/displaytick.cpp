#include "window/displaytick.h"

#include "link/connection.h"
#include "model/detectorpair.h"
#include "window/acquisition.h"
#include "window/livesystems.h"
#include "window/monitortoolbar.h"
#include "window/samplepass.h"
#include "window/statistics.h"
#include "window/statusflags.h"
#include "window/unitchoice.h"

#include <QAction>

#include <algorithm>
#include <array>
#include <vector>

namespace {

std::array<UnitChoice, 2> unitsOf(LiveSystems& systems)
{
    std::vector<const DetectorPair*> displayed;
    displayed.reserve(std::size_t(systems.displayed().size()));
    for (const int index : systems.displayed())
        displayed.push_back(systems.at(index).detectors);
    const LiveSystem* current = systems.current();
    return chooseUnits(displayed, current ? current->detectors : nullptr);
}

} // namespace

DisplayTick::DisplayTick(LiveSystems& liveSystems, Stages& stageViews, MonitorToolBar& bar,
                         Statistics& runStatistics, Acquisition& streams, const Recorder& files)
    : systems(liveSystems)
    , stages(stageViews)
    , toolBar(bar)
    , statistics(runStatistics)
    , acquisition(streams)
    , recorder(files)
{}

void DisplayTick::run()
{
    showUnits();
    limitRates();
    if (isAcquiring())
        showSamples();
    pollStatuses();
    showStageStates();
}

bool DisplayTick::isAcquiring() const
{
    return toolBar.isRunning() && toolBar.startAction().isEnabled();
}

void DisplayTick::showUnits()
{
    const std::array<UnitChoice, 2> choices = unitsOf(systems);
    for (std::size_t i = 0; i < stages.size(); ++i) {
        if (!stages[i].showUnit(choices[i], !systems.displayed().isEmpty()))
            continue;
        emit unitShown(choices[i].unitCode(), stages[i].stage());
        if (toolBar.isPointing())
            statistics.clear();
    }
}

bool DisplayTick::allDisplayedArePulsed() const
{
    const QList<int>& displayed = systems.displayed();
    return !displayed.isEmpty()
           && std::all_of(displayed.begin(), displayed.end(), [this](int index) {
                  return systems.at(index).detectors->pulsedLaser == 1;
              });
}

void DisplayTick::limitRates()
{
    toolBar.showRateField(
        rates.next(toolBar.rateField(), allDisplayedArePulsed(), toolBar.isRunning()));
    acquisition.setRateLocked(rates.isLocked());
}

void DisplayTick::limitRatesToLines()
{
    bool anySlowLine = false;
    for (int i = 0; i < systems.size(); ++i)
        anySlowLine |= systems.connectionAt(i).baudRate() == RateLimits::slowBaudRate;
    const int maximumHz = RateLimits::maximumHz(anySlowLine);
    toolBar.setMaxRate(maximumHz);
    if (rates.isLocked())
        rates.keepMaximum(maximumHz);
}

void DisplayTick::showSamples()
{
    show(sourceOfDisplayed(systems), mannerOfDisplayed(systems, &recorder));
    for (StageView& stage : stages)
        stage.plots().replot();
}

void DisplayTick::showCommonSamples()
{
    if (isAcquiring())
        show(sourceOfCommon(systems), mannerOfCommon(systems));
}

void DisplayTick::show(const SampleSource& source, const SampleManner& manner)
{
    SamplePass pass(systems, stages, statistics, manner, toolBar.samplingRateHz());
    if (!pass.show(drain(systems, source)))
        acquisition.stop();
}

void DisplayTick::pollStatuses()
{
    for (int i = 0; i < systems.size(); ++i)
        statusflags::poll(systems.at(i));
}

void DisplayTick::showStageStates()
{
    const LiveSystem* system = systems.single();
    if (!system)
        return;
    const ConnectionStatus& status = system->status;
    stages[0].stabilisation().showState(status.stabilised1, status.active1);
    stages[1].stabilisation().showState(status.stabilised2, status.active2);
}
