#include "window/stageview.h"

#include "plots/genericplot.h"
#include "window/unitchoice.h"
#include "window/windowtext.h"

#include <QLabel>

namespace {

void setTextColor(QLabel& label, const QColor& color)
{
    QPalette palette = label.palette();
    palette.setColor(QPalette::WindowText, color);
    label.setPalette(palette);
}

} // namespace

StageView::StageView(Stage stage, QWidget& parent, const Widgets& formWidgets)
    : ownStage(stage)
    , widgets(formWidgets)
    , stagePlots(stage, parent, widgets.plots)
    , stageReadouts(stage, widgets.numbers, widgets.bars, parent)
    , stageSwitch(widgets.stabilisation, widgets.activeIcon, widgets.activeText)
    , overlay(stage, stagePlots.pointing(), widgets.statisticsBox)
{}

QString StageView::unitText() const
{
    return widgets.unitLabel.text();
}

bool StageView::showUnit(const UnitChoice& choice, bool anySystemDisplayed)
{
    agreement = choice.unitsAgree;
    const QString unit = choice.unit();
    const QString text = QStringLiteral(" [") + unit + QLatin1Char(']');
    const bool sameText = unitText() == text;
    if (sameText && stagePlots.positionMax() == choice.maxPosition())
        return false;
    if (!sameText && choice.unitsAgree && !anySystemDisplayed)
        return false;

    widgets.unitLabel.setText(text);
    widgets.xLabel.setText(WindowText::tr("X [%1]").arg(unit));
    widgets.yLabel.setText(WindowText::tr("Y [%1]").arg(unit));
    widgets.positionXLabel.setText(WindowText::tr("Position x [%1]").arg(unit));
    widgets.positionYLabel.setText(WindowText::tr("Position y [%1]").arg(unit));
    stagePlots.setPositionRange(choice.maxPosition(), choice.minPosition());
    stagePlots.clearAllCurves();
    stageReadouts.clearAverages();
    return true;
}

void StageView::setSingleSystemVisible(bool visible)
{
    for (QWidget* widget : qAsConst(widgets.singleSystemWidgets))
        widget->setVisible(visible);
}

void StageView::setAxisColors(const QColor& x, const QColor& y, const QColor& intensity)
{
    setTextColor(widgets.xAxisLabel, x);
    setTextColor(widgets.yAxisLabel, y);
    setTextColor(widgets.intensityAxisLabel, intensity);
}
