#include "window/stageplots.h"

#include "plots/genericplot.h"
#include "window/systemcolors.h"

#include <QBoxLayout>
#include <qwt_scale_draw.h>

namespace {

constexpr double msPerS = 1000.0;
constexpr int maxMajorTicks = 5;
constexpr int maxMinorTicks = 3;
constexpr int positionFontPt = 10;
/// Room for the widest numbers of the left axes, so that no canvas moves when they change and
/// those of one stage stand above each other.
constexpr double leftAxisExtentPx = 50.0;
constexpr QSize pointingDotSize(3, 3);
/// Below this the time axes could not be read; the window scrolls instead.
constexpr int minTimePlotWidthPx = 260;

GenericPlot* makePlot(const char* kind, Stage stage, QWidget& parent, QBoxLayout& layout)
{
    auto* plot = new GenericPlot(&parent);
    plot->setObjectName(QLatin1String(kind) + QString::number(numberOf(stage)));
    layout.addWidget(plot);
    return plot;
}

void dressTimePlot(GenericPlot& plot, const char* background, QwtPlot::Axis timeAxis,
                   QwtPlot::Axis hiddenTimeAxis)
{
    plot.setMinimumWidth(minTimePlotWidthPx);
    plot.setKeepAllPoints(true);
    plot.setCanvasBackground(QColor(QLatin1String(background)));
    plot.disableZoomer();
    plot.canvas()->setCursor(Qt::ArrowCursor);
    plot.enableAxis(timeAxis, true);
    plot.enableAxis(hiddenTimeAxis, false);
    plot.enableAxis(QwtPlot::yRight, false);
    plot.setAxisScale(QwtPlot::xBottom, StagePlots::timeAxisMinS, StagePlots::timeAxisMaxS);
    plot.setAxisMaxMajor(QwtPlot::yLeft, maxMajorTicks);
    plot.axisScaleDraw(QwtPlot::yLeft)->setMinimumExtent(leftAxisExtentPx);
}

GenericPlot* makePointingPlot(Stage stage, QWidget& parent, QBoxLayout& layout)
{
    GenericPlot* plot = makePlot("osciPlot", stage, parent, layout);
    plot->setKeepAllPoints(false);
    plot->drawCrossHairs();
    plot->setSymbolSize(pointingDotSize);
    return plot;
}

GenericPlot* makeIntensityPlot(Stage stage, QWidget& parent, QBoxLayout& layout)
{
    GenericPlot* plot = makePlot("intensityPlot", stage, parent, layout);
    dressTimePlot(*plot, "azure", QwtPlot::xBottom, QwtPlot::xTop);
    plot->setAxisScale(QwtPlot::yLeft, StagePlots::intensityMinV, StagePlots::intensityMaxV);
    plot->setAxisMaxMinor(QwtPlot::yLeft, maxMinorTicks);
    return plot;
}

/// The curves of the system `index` in the position plot.
int xCurve(int index)
{
    return 2 * index;
}

int yCurve(int index)
{
    return xCurve(index) + 1;
}

} // namespace

StagePlots::StagePlots(Stage stage, QWidget& parent, const Layouts& layouts)
    : pointingPlot(makePointingPlot(stage, parent, layouts.pointing))
    , positionPlot(makePlot("positionPlot", stage, parent, layouts.position))
    , intensityPlot(makeIntensityPlot(stage, parent, layouts.intensity))
{
    dressPositionPlot();
}

void StagePlots::dressPositionPlot()
{
    dressTimePlot(*positionPlot, "lightblue", QwtPlot::xTop, QwtPlot::xBottom);
    positionPlot->setAxisScale(QwtPlot::xTop, timeAxisMinS, timeAxisMaxS);
    positionPlot->setAxisScale(QwtPlot::yLeft, rangeMin, rangeMax);
    positionPlot->setFont(QFont(QStringLiteral("Sans Serif"), positionFontPt, QFont::Bold));
}

void StagePlots::addCurves(int index)
{
    pointingPlot->addCurve(index);
    // The second curve moves the first one on to y: so x is painted above y.
    positionPlot->addCurve(xCurve(index));
    positionPlot->addCurve(xCurve(index));
    intensityPlot->addCurve(index);
}

void StagePlots::removeCurves(int index)
{
    pointingPlot->removeCurve(index);
    intensityPlot->removeCurve(index);
    positionPlot->removeCurve(yCurve(index));
    positionPlot->removeCurve(xCurve(index));
}

void StagePlots::clearCurves(int index)
{
    positionPlot->clear(xCurve(index));
    positionPlot->clear(yCurve(index));
    pointingPlot->clear(index);
    intensityPlot->clear(index);
}

void StagePlots::clearAllCurves()
{
    pointingPlot->clear();
    positionPlot->clear();
    intensityPlot->clear();
}

void StagePlots::setCurveColors(int index, const SystemColors& colors)
{
    positionPlot->setCurveColor(colors.x, xCurve(index));
    positionPlot->setCurveColor(colors.y, yCurve(index));
    intensityPlot->setCurveColor(colors.intensity, index);
    pointingPlot->setCurveColor(colors.intensity, index);
}

void StagePlots::appendTimePoints(int index, quint64 timeMs, const QPointF& position,
                                  double intensityV, TimeSteps steps)
{
    const double t = secondsSince(originMs, timeMs, steps);
    positionPlot->appendData(xCurve(index), QPointF(t, position.x()));
    positionPlot->appendData(yCurve(index), QPointF(t, position.y()));
    intensityPlot->appendData(index, QPointF(t, intensityV));
}

void StagePlots::appendPointingPoint(int index, const QPointF& position)
{
    pointingPlot->appendData(index, position);
}

void StagePlots::wrapSweep(quint64 timeMs)
{
    // Unsigned: a sample from before the origin begins a new sweep, too.
    if (double(timeMs - originMs) <= sweepMs)
        return;
    positionPlot->clear();
    intensityPlot->clear();
    originMs = timeMs;
}

int StagePlots::decimation(int samplingRateHz) const
{
    return plotDecimation(samplingRateHz, sweepMs, positionPlot->width());
}

void StagePlots::setPositionRange(double max, double min)
{
    rangeMax = max;
    rangeMin = min;
    positionPlot->setAxisScale(QwtPlot::yLeft, min, max);
    pointingPlot->setRange(max, min);
    pointingPlot->resetZoom();
}

void StagePlots::rescalePosition(double min, double max)
{
    positionPlot->setAxisScale(QwtPlot::yLeft, min, max);
    positionPlot->replot();
}

void StagePlots::rescaleIntensity(double min, double max)
{
    intensityPlot->setAxisScale(QwtPlot::yLeft, min, max);
    intensityPlot->replot();
}

void StagePlots::rescaleTime(int minS, int maxS)
{
    sweepMs = maxS * msPerS;
    positionPlot->setAxisScale(QwtPlot::xBottom, minS, maxS);
    positionPlot->setAxisScale(QwtPlot::xTop, minS, maxS);
    intensityPlot->setAxisScale(QwtPlot::xBottom, minS, maxS);
    positionPlot->replot();
    intensityPlot->replot();
}

void StagePlots::resetPointingZoom()
{
    pointingPlot->resetZoom();
    pointingPlot->replot();
}

void StagePlots::replot()
{
    positionPlot->replotIfChanged();
    intensityPlot->replotIfChanged();
    pointingPlot->replotIfChanged();
}
