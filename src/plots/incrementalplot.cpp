#include "plots/incrementalplot.h"

#include "plots/curvedata.h"

#include <QBrush>
#include <QPen>
#include <qwt_painter.h>
#include <qwt_plot_curve.h>
#include <qwt_symbol.h>

#include <memory>

namespace {

const QColor initialColor(0, 0, 254);

/// Every curve of the plot was given a CurveData when it was made.
CurveData& dataOf(QwtPlotCurve& curve)
{
    return *static_cast<CurveData*>(curve.data());
}

} // namespace

IncrementalPlot::IncrementalPlot(QWidget* parent)
    : QwtPlot(parent)
{
    if (QwtPainter::isX11GraphicsSystem())
        canvas()->setAttribute(Qt::WA_PaintOnScreen, true);
    setAutoReplot(false);
}

bool IncrementalPlot::addCurve(int index)
{
    if (index < 0 || index > curves.size())
        return false;

    auto curve = std::make_unique<QwtPlotCurve>(QString::number(curves.size()));
    curve->setData(new CurveData); // owned by the curve
    curve->setStyle(QwtPlotCurve::Dots);
    curve->attach(this);
    curves.insert(index, curve.release());
    colors.insert(index, initialColor);
    return true;
}

bool IncrementalPlot::addCurves(int count)
{
    if (count < 0)
        return false;
    for (int i = 0; i < count; ++i)
        addCurve(curves.size());
    return true;
}

bool IncrementalPlot::removeCurve(int index)
{
    if (index >= curves.size())
        return false;
    if (index < 0)
        return true;
    curves.removeAt(index);
    colors.removeAt(index);
    return true;
}

void IncrementalPlot::setCurveColor(const QColor& color, int index)
{
    if (index < 0 || index >= colors.size())
        return;
    colors[index] = color;
}

void IncrementalPlot::appendData(const int& index, const QPointF& point)
{
    if (index < 0 || index >= curves.size())
        return;

    CurveData& samples = dataOf(*curves.at(index));
    samples.append(point);
    updateSymbol(index);
    if (!keepAllPoints && samples.size() > maxPoints)
        samples.removeOldest();
}

// This runs for every sample, so a new symbol is made only if size or colour differ.
void IncrementalPlot::updateSymbol(int index)
{
    QwtPlotCurve& curve = *curves.at(index);
    const QColor& color = colors.at(index);
    const QwtSymbol* shown = curve.symbol();
    if (shown && shown->size() == symbolSize && shown->brush().color() == color)
        return;
    curve.setSymbol(new QwtSymbol(QwtSymbol::Ellipse, QBrush(color), QPen(color), symbolSize));
}

void IncrementalPlot::clearCurve(int index)
{
    dataOf(*curves.at(index)).clear();
    replot();
}

void IncrementalPlot::clearAllCurves()
{
    for (QwtPlotCurve* curve : qAsConst(curves))
        dataOf(*curve).clear();
    replot();
}

void IncrementalPlot::setKeepAllPoints(bool keep)
{
    if (!keep)
        clearAllCurves();
    keepAllPoints = keep;
    replot();
}

const CurveData& IncrementalPlot::curveData(int index) const
{
    return dataOf(*curves.at(index));
}
