#include "window/stageview.h"

#include "plots/genericplot.h"

#include <QCoreApplication>
#include <QIcon>
#include <QLabel>
#include <qwt_plot_shapeitem.h>
#include <qwt_plot_textlabel.h>

namespace {

void setTextColor(QLabel& label, const QColor& color)
{
    QPalette palette = label.palette();
    palette.setColor(QPalette::WindowText, color);
    label.setPalette(palette);
}

QString activeName()
{
    return QCoreApplication::translate("MainWindow", "Active");
}

} // namespace

StageValues stageValues(const MeasureSample& sample, std::size_t stage)
{
    if (stage == 0)
        return {sample.x1, sample.y1, sample.intensity1, sample.rx1, sample.ry1};
    return {sample.x2, sample.y2, sample.intensity2, sample.rx2, sample.ry2};
}

StageView::StageView() = default;

StageView::~StageView() = default;

QString StageView::widgetName(const char* before, const char* after) const
{
    return QLatin1String(before) + QString::number(number) + QLatin1String(after);
}

void StageView::clearAverages()
{
    averageX.clear();
    averageY.clear();
    averageI.clear();
}

void StageView::clearCurves()
{
    osciPlot->clear();
    positionPlot->clear();
    intensityPlot->clear();
}

bool StageView::showsActive() const
{
    return activeText->text() == activeName();
}

void StageView::setActive(bool active)
{
    // Only an icon finds the picture for a screen of twice the density.
    const QIcon light(active ? QStringLiteral(":/images/green_light.png")
                             : QStringLiteral(":/images/red_light.png"));
    activeIcon->setPixmap(light.pixmap(activeIcon->maximumSize()));
    activeText->setText(active ? activeName()
                               : QCoreApplication::translate("MainWindow", "Inactive"));
}

void StageView::setAxisColors(const QColor& x, const QColor& y, const QColor& intensity)
{
    setTextColor(*xAxisLabel, x);
    setTextColor(*yAxisLabel, y);
    setTextColor(*iAxisLabel, intensity);
}
