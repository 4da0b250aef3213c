#include "window/plotframe.h"

#include "plots/genericplot.h"

#include <QEvent>
#include <QScrollArea>
#include <qwt_scale_widget.h>

#include <optional>

namespace {

/// Share of the window's width that the pointing plots take at most.
constexpr double maxPointingShare = 0.42;

/// Room that a pointing plot needs for the scale of an axis. Those of the far sides keep the full
/// range while the plot is zoomed, so that their room is the same then.
int scaleThickness(const GenericPlot& plot, QwtPlot::Axis axis)
{
    const QwtScaleWidget& scale = *plot.axisWidget(axis);
    return scale.dimForLength(QWIDGETSIZE_MAX, scale.font());
}

void rescale(StagePlots& plots, AxisKind kind, double min, double max)
{
    if (kind == AxisKind::Position)
        plots.rescalePosition(min, max);
    else
        plots.rescaleIntensity(min, max);
}

} // namespace

PlotFrame::PlotFrame(Stages& stageViews, const Room& plotRoom)
    : stages(stageViews)
    , room(plotRoom)
{
    for (StageView& stage : stages)
        connect(&stage.plots().pointing(), &GenericPlot::rangeChanged, this,
                &PlotFrame::resizePlots);
    drawMidLine(stages[0].plots().timeWindowMs());
    room.box1.installEventFilter(this);
}

bool PlotFrame::eventFilter(QObject* object, QEvent* event)
{
    if (object == &room.box1 && event->type() == QEvent::Resize)
        resizePlots();
    return QObject::eventFilter(object, event);
}

QwtInterval PlotFrame::limits(int axisId) const
{
    const std::optional<StageAxis> axis = axisOfId(axisId);
    if (!axis)
        return {};
    const StagePlots& plots = stages[axis->stage].plots();
    switch (axis->kind) {
    case AxisKind::Position:
        return plots.position().axisInterval(QwtPlot::yLeft);
    case AxisKind::Time:
        return plots.position().axisInterval(QwtPlot::xBottom);
    case AxisKind::Intensity:
        break;
    }
    return plots.intensity().axisInterval(QwtPlot::yLeft);
}

void PlotFrame::rescaleAxis(int axisId, double min, double max, bool pairCheck)
{
    const std::optional<StageAxis> axis = axisOfId(axisId);
    if (!axis || axis->kind == AxisKind::Time)
        return;
    const bool sameUnit = stages[0].unitText() == stages[1].unitText();
    const bool bothFollow = pairCheck && (sameUnit || axis->kind == AxisKind::Intensity);
    for (std::size_t i = 0; i < stages.size(); ++i) {
        if (bothFollow || i == axis->stage)
            rescale(stages[i].plots(), axis->kind, min, max);
    }
}

void PlotFrame::rescaleTimeAxis(int axisId, int minS, int maxS, bool pairCheck)
{
    const std::optional<StageAxis> axis = axisOfId(axisId);
    if (!axis || axis->kind != AxisKind::Time)
        return;
    for (std::size_t i = 0; i < stages.size(); ++i) {
        if (!pairCheck && i != axis->stage)
            continue;
        stages[i].plots().rescaleTime(minS, maxS);
        drawMidLine(stages[i].plots().timeWindowMs());
        stages[i].plots().position().replot();
    }
}

void PlotFrame::resetTimePlots(StageView& stage)
{
    StagePlots& plots = stage.plots();
    plots.rescalePosition(plots.positionMin(), plots.positionMax());
    plots.rescaleTime(StagePlots::timeAxisMinS, StagePlots::timeAxisMaxS);
    plots.rescaleIntensity(StagePlots::intensityMinV, StagePlots::intensityMaxV);
    drawMidLine(plots.timeWindowMs());
    plots.position().replot();
}

void PlotFrame::dressPositionPlots()
{
    for (StageView& stage : stages)
        stage.plots().dressPositionPlot();
}

void PlotFrame::drawMidLine(double length)
{
    for (StageView& stage : stages)
        stage.plots().position().addMidLine(QStringLiteral("Horizontale Mittellinie"),
                                            QRectF(0.0, 0.0, length, 0.0));
}

void PlotFrame::resizePlots()
{
    // The stage with the shorter numbers gets the room of the longer ones, and so the same canvas.
    int numbersWidth = 0;
    for (const StageView& stage : stages)
        numbersWidth =
            qMax(numbersWidth, scaleThickness(stage.plots().pointing(), QwtPlot::yRight));
    for (StageView& stage : stages) {
        GenericPlot& plot = stage.plots().pointing();
        const int missing = numbersWidth - scaleThickness(plot, QwtPlot::yRight);
        plot.setContentsMargins(missing, 0, missing, 0);
    }
    // Numbers beside the canvas are wider than those above it are high.
    const int numbersHeight = scaleThickness(stages[0].plots().pointing(), QwtPlot::xTop);
    const int extraWidth = 2 * (numbersWidth - numbersHeight);

    const int widest = int(room.scrollArea.viewport()->width() * maxPointingShare);
    const int smallest = room.box1.minimumHeight();
    const int height = qBound(smallest, room.box1.height(), qMax(smallest, widest));
    for (QWidget* box : {&room.box1, &room.box2})
        box->setFixedWidth(height + extraWidth);
    for (StageView& stage : stages)
        stage.plots().pointing().setMaximumHeight(height);
}
