#include "window/systemsview.h"

#include "link/connection.h"
#include "window/livesystems.h"
#include "window/monitortoolbar.h"
#include "window/statistics.h"
#include "window/systemcolors.h"

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
    connect(&systems, &LiveSystems::commonShown, this, &SystemsView::onCommonShown);
    connect(&systems, &LiveSystems::commonHidden, this, &SystemsView::onCommonHidden);
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

void SystemsView::onShown()
{
    const int shown = systems.shownCount();
    if (shown == 1) {
        showSingleSystem();
        enableControls(true);
    } else if (shown == 2) {
        hideSingleSystem();
    }
}

void SystemsView::onHidden(int index)
{
    showWhatIsLeft();
    for (StageView& stage : stages)
        stage.plots().clearCurves(index);
}

void SystemsView::onCommonShown(int index)
{
    const int curve = systems.commonCurve(systems.common().indexOf(index));
    for (StageView& stage : stages) {
        stage.plots().addCurves(curve);
        stage.plots().setCurveColors(curve, commonColorsOf(systems.at(index).status));
    }
    onShown();
}

void SystemsView::onCommonHidden(int place)
{
    showWhatIsLeft();
    for (StageView& stage : stages) {
        stage.plots().clearCurves(systems.commonCurve(place));
        stage.plots().removeCurves(systems.commonCurve(place));
    }
}

void SystemsView::showWhatIsLeft()
{
    const int shown = systems.shownCount();
    if (shown == 1)
        showSingleSystem();
    if (shown == 0) {
        enableControls(false);
        statistics.enable(false);
        blackenAxisNames();
    }
}

void SystemsView::onColored(int index)
{
    setCurveColors(index);
    if (systems.shownCount() == 1)
        colorAxisNames();
}

void SystemsView::setCurveColors(int index)
{
    for (StageView& stage : stages)
        stage.plots().setCurveColors(index, colorsOf(systems.at(index).status));
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
    const SystemColors colors =
        systems.displayed().isEmpty() ? commonColorsOf(status) : colorsOf(status);
    for (StageView& stage : stages)
        stage.setAxisColors(colors.x, colors.y, colors.intensity);
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
