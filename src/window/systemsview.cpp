#include "window/systemsview.h"

#include "link/connection.h"
#include "window/livesystems.h"
#include "window/monitortoolbar.h"
#include "window/statistics.h"

#include <QAction>
#include <QWidget>

SystemsView::SystemsView(LiveSystems& liveSystems, Stages& stageViews, const MonitorToolBar& bar,
                         Statistics& runStatistics, QWidget& monitorWindow)
    : systems(liveSystems)
    , stages(stageViews)
    , toolBar(bar)
    , statistics(runStatistics)
    , window(monitorWindow)
{
    connect(&systems, &LiveSystems::added, this, &SystemsView::onAdded);
    connect(&systems, &LiveSystems::closed, this, &SystemsView::onClosed);
    connect(&systems, &LiveSystems::shown, this, &SystemsView::onShown);
    connect(&systems, &LiveSystems::hidden, this, &SystemsView::onHidden);
    connect(&systems, &LiveSystems::colored, this, &SystemsView::onColored);
    blackenAxisNames();
}

void SystemsView::onAdded(int index)
{
    for (StageView& stage : stages)
        stage.plots().addCurves(index);
    setCurveColors(index);
}

void SystemsView::onClosed(int index)
{
    for (StageView& stage : stages)
        stage.plots().removeCurves(index);
}

void SystemsView::onShown(int)
{
    const int displayed = systems.displayed().size();
    if (displayed == 1) {
        showSingleSystem();
        enableControls(true);
    } else if (displayed == 2) {
        hideSingleSystem();
    }
}

void SystemsView::onHidden(int index)
{
    const int displayed = systems.displayed().size();
    if (displayed == 1)
        showSingleSystem();
    if (displayed == 0) {
        enableControls(false);
        statistics.enable(false);
        blackenAxisNames();
    }
    for (StageView& stage : stages)
        stage.plots().clearCurves(index);
}

void SystemsView::onColored(int index)
{
    setCurveColors(index);
    if (systems.single())
        colorAxisNames();
}

void SystemsView::setCurveColors(int index)
{
    for (StageView& stage : stages)
        stage.plots().setCurveColors(index, systems.at(index).status);
}

void SystemsView::showSingleSystem()
{
    for (StageView& stage : stages) {
        stage.setSingleSystemVisible(true);
        stage.readouts().clearAverages();
    }
    if (toolBar.isPointing())
        statistics.enable(true);
    colorAxisNames();
}

void SystemsView::hideSingleSystem()
{
    for (StageView& stage : stages)
        stage.setSingleSystemVisible(false);
    statistics.enable(false);
    blackenAxisNames();
}

void SystemsView::enableControls(bool on)
{
    for (StageView& stage : stages)
        stage.stabilisation().setEnabled(on);
    toolBar.enableStart(on);
    emit controlsEnabled(on);
}

void SystemsView::colorAxisNames()
{
    const ConnectionStatus& status = systems.single()->status;
    for (StageView& stage : stages)
        stage.setAxisColors(status.colorX, status.colorY, status.colorI);
}

void SystemsView::blackenAxisNames()
{
    // On a dark desktop black could not be read.
    const QPalette& palette = window.palette();
    const bool darkDesktop = palette.color(QPalette::Window).lightnessF() < 0.5;
    const QColor text = darkDesktop ? palette.color(QPalette::WindowText) : QColor(Qt::black);
    for (StageView& stage : stages)
        stage.setAxisColors(text, text, text);
}
