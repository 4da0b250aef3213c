#include "plots/incrementalplot.h"

#include "plots/dotcurve.h"
#include "plots/dotlayer.h"

#include <QBrush>
#include <QPen>
#include <qwt_painter.h>
#include <qwt_plot_canvas.h>
#include <qwt_symbol.h>

#include <algorithm>

namespace {

const QColor initialColor(0, 0, 254);
/// Places around a dot's symbol that its line and rounding may reach.
constexpr int dotMargin = 2;

/// The visible curves from the lowest to the highest; none if something else is drawn between them.
std::vector<DotLayer::Member> adjoiningCurves(const QwtPlot& plot, const QwtScaleMap* maps)
{
    std::vector<DotLayer::Member> members;
    bool isInterrupted = false;
    for (const QwtPlotItem* item : plot.itemList()) {
        if (!item->isVisible())
            continue;
        const auto* curve = dynamic_cast<const DotCurve*>(item);
        if (curve && isInterrupted)
            return {};
        if (curve)
            members.push_back({curve, maps[curve->xAxis()], maps[curve->yAxis()]});
        else
            isInterrupted = !members.empty();
    }
    return members;
}

} // namespace

IncrementalPlot::IncrementalPlot(QWidget* parent)
    : QwtPlot(parent)
    , layer(std::make_unique<DotLayer>())
{
    if (QwtPainter::isX11GraphicsSystem())
        canvas()->setAttribute(Qt::WA_PaintOnScreen, true);
    setAutoReplot(false);
    // Behind all that waits already, so that a long history stops neither painting nor input.
    connect(layer.get(), &DotLayer::incomplete, this, &IncrementalPlot::replotCanvas,
            Qt::QueuedConnection);
}

IncrementalPlot::~IncrementalPlot() = default;

bool IncrementalPlot::addCurve(int index)
{
    if (index < 0 || index > curveCount())
        return false;

    auto curve = std::make_unique<DotCurve>(QString::number(curveCount()), *layer);
    curve->attach(this);
    CurveData& samples = curve->samples();
    curves.insert(curves.begin() + index, {curve.release(), &samples, initialColor, true});
    return true;
}

bool IncrementalPlot::addCurves(int count)
{
    if (count < 0)
        return false;
    for (int i = 0; i < count; ++i)
        addCurve(curveCount());
    return true;
}

bool IncrementalPlot::removeCurve(int index)
{
    if (index >= curveCount())
        return false;
    if (index < 0)
        return true;
    curves.erase(curves.begin() + index);
    return true;
}

void IncrementalPlot::setCurveColor(const QColor& color, int index)
{
    if (!hasCurve(index))
        return;
    IndexedCurve& curve = curves[std::size_t(index)];
    curve.color = color;
    curve.mayLookOld = true;
}

void IncrementalPlot::setSymbolSize(const QSize& size)
{
    symbolSize = size;
    for (IndexedCurve& curve : curves)
        curve.mayLookOld = true;
}

// This runs for every sample and each of its curves, so it stays short.
void IncrementalPlot::appendData(const int& index, const QPointF& point)
{
    if (!hasCurve(index))
        return;

    IndexedCurve& curve = curves[std::size_t(index)];
    CurveData& samples = *curve.samples;
    samples.append(point);
    changedArea.include(point);
    ++newPoints;
    if (curve.mayLookOld)
        updateSymbol(curve);
    if (!keepAllPoints && samples.size() > maxPoints) {
        changedArea.include(*samples.first());
        samples.removeOldest();
    }
}

// A new symbol is made only if size or colour differ: it costs as much as a hundred points.
void IncrementalPlot::updateSymbol(IndexedCurve& curve)
{
    curve.mayLookOld = false;
    const QwtSymbol* shown = curve.item->symbol();
    if (shown && shown->size() == symbolSize && shown->brush().color() == curve.color)
        return;
    setItemsChanged();
    curve.item->setSymbol(
        new QwtSymbol(QwtSymbol::Ellipse, QBrush(curve.color), QPen(curve.color), symbolSize));
}

void IncrementalPlot::clearCurve(int index)
{
    curves[std::size_t(index)].samples->clear();
    replot();
}

void IncrementalPlot::clearAllCurves()
{
    for (const IndexedCurve& curve : curves)
        curve.samples->clear();
    replot();
}

void IncrementalPlot::setKeepAllPoints(bool keep)
{
    if (!keep)
        clearAllCurves();
    keepAllPoints = keep;
    replot();
}

void IncrementalPlot::setAxisScale(int axis, double min, double max, double stepSize)
{
    QwtPlot::setAxisScale(axis, min, max, stepSize);
    hasNewScales = true;
}

void IncrementalPlot::replotIfChanged()
{
    if (hasNewScales) {
        replot();
    } else if (newPoints > 0 || hasNewItems) {
        replotPoints();
        noteReplot();
        emit replotted();
    }
}

/// The canvas paints all of itself where it keeps a picture of its own.
void IncrementalPlot::replotPoints()
{
    QwtPlotCanvas& shown = plotCanvas();
    const int reach = std::max(symbolSize.width(), symbolSize.height()) + dotMargin;
    const QRect part =
        changedArea.places(canvasMap(xBottom), canvasMap(yLeft), reach, shown.contentsRect());
    unpaintedPoints = part.isEmpty() ? unpaintedPoints + newPoints : 0;
    if (hasNewItems || unpaintedPoints > mostUnpainted
        || shown.testPaintAttribute(QwtPlotCanvas::BackingStore))
        replotCanvas();
    else
        shown.update(part);
}

void IncrementalPlot::noteReplot()
{
    newPoints = 0;
    hasNewItems = false;
    hasNewScales = false;
    changedArea.clear();
}

void IncrementalPlot::replot()
{
    noteReplot();
    QwtPlot::replot();
    emit replotted();
}

const QwtPlotCurve& IncrementalPlot::curve(int index) const
{
    return *curves.at(std::size_t(index)).item;
}

const CurveData& IncrementalPlot::curveData(int index) const
{
    return *curves.at(std::size_t(index)).samples;
}

void IncrementalPlot::drawItems(QPainter* painter, const QRectF& canvasRect,
                                const QwtScaleMap maps[axisCnt]) const
{
    layer->beginPicture(*painter, canvasRect, adjoiningCurves(*this, maps));
    QwtPlot::drawItems(painter, canvasRect, maps);
    layer->endPicture();
}

void IncrementalPlot::replotCanvas()
{
    unpaintedPoints = 0;
    plotCanvas().replot();
}

QwtPlotCanvas& IncrementalPlot::plotCanvas()
{
    return *static_cast<QwtPlotCanvas*>(canvas());
}
