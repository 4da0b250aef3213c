#include "window/axisdialogs.h"

#include "plots/rescaledialog.h"
#include "plots/rescaletimeaxisdlg.h"
#include "window/plotframe.h"
#include "window/showontop.h"

#include <optional>

AxisDialogs::AxisDialogs(const Stages& stageViews, const PlotFrame& plotFrame, QWidget& window)
    : stages(stageViews)
    , frame(plotFrame)
    , clicks(stageViews)
    , valueDialog(new RescaleDialog(&window))
    , timeDialog(new RescaleTimeAxisDlg(&window))
{
    connect(&clicks, &AxisClicks::clicked, this, &AxisDialogs::askFor);
    connect(valueDialog, &RescaleDialog::axisRescaled, this, &AxisDialogs::valuesChosen);
    connect(timeDialog, &RescaleTimeAxisDlg::axisRescaled, this, &AxisDialogs::timesChosen);
}

void AxisDialogs::askFor(int axisId)
{
    const QwtInterval limits = frame.limits(axisId);
    // One of the two knows the axis.
    askForValues(axisId, limits.maxValue(), limits.minValue());
    askForTimes(axisId, int(limits.minValue()), int(limits.maxValue()));
}

void AxisDialogs::askForValues(int axisId, double max, double min)
{
    const std::optional<StageAxis> axis = axisOfId(axisId);
    if (!axis || axis->kind == AxisKind::Time)
        return;
    const StageView& stage = stages[axis->stage];
    const bool isPosition = axis->kind == AxisKind::Position;
    const double highest = isPosition ? stage.plots().positionMax() : StagePlots::intensityMaxV;
    const double lowest = isPosition ? stage.plots().positionMin() : StagePlots::intensityMinV;
    const QString title =
        isPosition ? tr("Stage %1: Rescale x/y axis") : tr("Stage %1: Rescale i axis");
    valueDialog->setAxis(axisId);
    valueDialog->setWindowTitle(title.arg(numberOf(stage.stage())));
    valueDialog->setLimits(highest, lowest, highest, lowest);
    valueDialog->setUpperValue(max);
    valueDialog->setLowerValue(min);
    showOnTop(*valueDialog);
    valueDialog->startInput();
}

void AxisDialogs::askForTimes(int axisId, int minS, int maxS)
{
    const std::optional<StageAxis> axis = axisOfId(axisId);
    if (!axis || axis->kind != AxisKind::Time)
        return;
    const QString title = tr("Stage %1:  Rescale Time Axis");
    timeDialog->setAxis(axisId);
    timeDialog->setWindowTitle(title.arg(numberOf(stages[axis->stage].stage())));
    timeDialog->setLowerTime(minS);
    timeDialog->setUpperTime(maxS);
    showOnTop(*timeDialog);
    timeDialog->startInput();
}

void AxisDialogs::showUnit(PositionUnit unit, Stage stage)
{
    valueDialog->setUnit(int(unit), numberOf(stage));
}
