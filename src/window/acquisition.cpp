#include "window/acquisition.h"

#include "controls/waitcursor.h"
#include "link/connection.h"
#include "link/streampause.h"
#include "plots/genericplot.h"
#include "window/livesystems.h"
#include "window/monitortoolbar.h"
#include "window/statistics.h"
#include "window/ticktimer.h"

#include <QAction>
#include <QDateTime>

#include <array>

namespace {

/// The clock of `MeasureSample::timeMs`.
quint64 wallClockMs()
{
    return quint64(QDateTime::currentMSecsSinceEpoch());
}

/// The order in which the plots go over to live painting and back.
std::array<GenericPlot*, 6> drawingOrder(const Stages& stages)
{
    const StagePlots& one = stages[0].plots();
    const StagePlots& two = stages[1].plots();
    return {&one.pointing(),  &one.position(),  &two.position(),
            &one.intensity(), &two.intensity(), &two.pointing()};
}

} // namespace

Acquisition::Acquisition(LiveSystems& liveSystems, Stages& stageViews, MonitorToolBar& bar,
                         Statistics& runStatistics, TickTimer& tickTimer)
    : systems(liveSystems)
    , stages(stageViews)
    , toolBar(bar)
    , statistics(runStatistics)
    , timer(tickTimer)
{}

void Acquisition::startOrStop()
{
    const WaitCursor waiting;
    if (toolBar.isRunning()) {
        start();
        return;
    }
    emit aboutToStop();
    stop();
    showRunning(false);
}

void Acquisition::start()
{
    timer.stop();
    for (const int index : systems.displayed())
        startStream(index);
    for (const int index : systems.common())
        joinIfRunning(index);
    emit started();
    reset();
    statistics.startClock();
    statistics.run().setLimit(toolBar.isPointing() ? toolBar.wantedSamples() : Run::noLimit);
    startDrawing();
    showRunning(true);
}

void Acquisition::joinIfRunning(int index)
{
    if (toolBar.isRunning() && !systems.connectionAt(index).isStreaming())
        startStream(index);
}

void Acquisition::startStream(int index)
{
    if (hasFailed(startStreamAtRate(systems.connectionAt(index), toolBar.samplingRateHz())))
        emit streamFailed();
}

void Acquisition::startDrawing()
{
    for (GenericPlot* plot : drawingOrder(stages))
        plot->start();
}

void Acquisition::stop()
{
    const WaitCursor waiting;
    emit stopping();
    for (const int index : systems.displayed())
        systems.connectionAt(index).stopStream();
    toolBar.startAction().setChecked(false);
    showRunning(false);
    stopDrawing();
}

void Acquisition::stopDrawing()
{
    const auto isPointing = [this](const GenericPlot* plot) {
        return plot == &stages[0].plots().pointing() || plot == &stages[1].plots().pointing();
    };
    for (GenericPlot* plot : drawingOrder(stages)) {
        plot->stop();
        if (isPointing(plot))
            plot->replot();
    }
}

void Acquisition::showRunning(bool running)
{
    toolBar.showRunning(running, rateLocked);
}

void Acquisition::reset()
{
    timer.stop();
    for (StageView& stage : stages) {
        stage.plots().clearAllCurves();
        stage.plots().setOrigin(wallClockMs());
        stage.readouts().reset();
    }
    statistics.clear();
    timer.start();
}

void Acquisition::limitSamples(bool on)
{
    toolBar.enableSamplesToTake(on);
    if (!toolBar.isRunning())
        return;
    if (on) {
        statistics.run().setLimit(toolBar.wantedSamples());
        statistics.clear();
    } else {
        statistics.run().setLimit(Run::noLimit);
    }
}
