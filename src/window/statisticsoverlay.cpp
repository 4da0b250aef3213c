#include "window/statisticsoverlay.h"

#include "plots/genericplot.h"

#include <QCheckBox>

namespace {

constexpr int textSizePt = 8;
constexpr double crossWidth = 2.0;

QString crossName(Stage stage)
{
    return stage == Stage::One ? QStringLiteral("Zielkreuz mit Varianz-Kreis")
                               : QStringLiteral("Zielkreuz2 mit Varianz-Kreis");
}

} // namespace

StatisticsOverlay::StatisticsOverlay(Stage stage, GenericPlot& pointingPlot,
                                     QCheckBox& statisticsBox)
    : plot(pointingPlot)
    , box(statisticsBox)
    , cross(crossName(stage))
{
    text.setFont(QFont(QStringLiteral("Sans Serif"), textSizePt));
    text.setColor(Qt::red);
    text.setRenderFlags(Qt::AlignLeft | Qt::AlignTop);
    label.setText(text);
    cross.setPen(QPen(Qt::red, crossWidth));
    cross.setShape(restingCrossShape());
    // Over the points that it sums up.
    cross.setZ(label.z());
}

StatisticsOverlay::~StatisticsOverlay()
{
    label.detach();
    cross.detach();
}

void StatisticsOverlay::enable(bool on)
{
    box.setEnabled(on);
    if (!on)
        box.setChecked(false);
}

bool StatisticsOverlay::isWanted() const
{
    return box.isChecked();
}

void StatisticsOverlay::show(bool on)
{
    label.attach(on ? &plot : nullptr);
    cross.attach(on ? &plot : nullptr);
    plot.replot();
}

void StatisticsOverlay::setText(const QString& newText)
{
    text.setText(newText);
    label.setText(text);
    noteChange();
}

void StatisticsOverlay::moveCross(const StageFigures& figures)
{
    cross.setShape(targetCrossShape(figures.mean, figures.rms));
    noteChange();
}

void StatisticsOverlay::noteChange()
{
    if (label.plot())
        plot.setItemsChanged();
}

void StatisticsOverlay::clear()
{
    setText(emptyStatisticsText());
    cross.setShape(restingCrossShape());
    plot.replot();
}
