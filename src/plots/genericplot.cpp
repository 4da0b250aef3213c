#include "plots/genericplot.h"

#include "plots/keptgrid.h"
#include "plots/zoomer.h"

#include <QFont>
#include <QPainterPath>
#include <QPen>
#include <qwt_plot_canvas.h>
#include <qwt_plot_layout.h>
#include <qwt_plot_shapeitem.h>

#include <memory>

namespace {

constexpr QwtPlot::Axis axesInRangeOrder[] = {QwtPlot::xBottom, QwtPlot::yLeft, QwtPlot::xTop,
                                              QwtPlot::yRight};
constexpr QwtPlot::Axis axesInFontOrder[] = {QwtPlot::xBottom, QwtPlot::xTop, QwtPlot::yLeft,
                                             QwtPlot::yRight};

} // namespace

GenericPlot::GenericPlot(QWidget* parent)
    : IncrementalPlot(parent)
{
    setFrameStyle(QFrame::NoFrame);
    setLineWidth(0);
    plotLayout()->setAlignCanvasToScales(true);
    attachGrid();
    setCanvasBackground(QBrush(QColor("lightblue")));

    enableAxis(xTop, true);
    enableAxis(yRight, true);
    applyRange();
    // Weight and style are given explicitly; otherwise they come from the plot's own font.
    const QFont axisFont(QStringLiteral("Sans Serif"), 8, QFont::Normal, false);
    for (int axis : axesInFontOrder)
        setAxisFont(axis, axisFont);
    replot();

    zoomer = new Zoomer(canvas());
    zoomer->setLabelValue(rangeMax);
    zoomer->setRubberBandPen(QPen(Qt::red, 1.0));
    // Only the left button zooms, and only in. The window has buttons to zoom out.
    for (auto pattern : {QwtEventPattern::MouseSelect3, QwtEventPattern::MouseSelect2,
                         QwtEventPattern::MouseSelect6})
        zoomer->setMousePattern(pattern, Qt::NoButton);
}

QSize GenericPlot::sizeHint() const
{
    return QSize(10, 10);
}

void GenericPlot::attachGrid()
{
    auto grid = std::make_unique<KeptGrid>();
    const QPen pen(Qt::gray, 0.0, Qt::DotLine);
    grid->setMajorPen(pen);
    grid->setMinorPen(pen);
    grid->enableX(true);
    grid->enableXMin(true);
    grid->enableY(true);
    grid->enableYMin(true);
    grid.release()->attach(this);
}

void GenericPlot::applyRange()
{
    for (int axis : axesInRangeOrder)
        setAxisScale(axis, rangeMin, rangeMax, 0.0);
}

void GenericPlot::start()
{
    plotCanvas().setPaintAttribute(QwtPlotCanvas::BackingStore, false);
}

void GenericPlot::stop()
{
    plotCanvas().setPaintAttribute(QwtPlotCanvas::BackingStore, true);
}

void GenericPlot::clear(int index)
{
    if (index == -1)
        clearAllCurves();
    else
        clearCurve(index);
    replot();
}

void GenericPlot::clear()
{
    clear(-1);
}

void GenericPlot::drawCrossHairs()
{
    addMidLine(QStringLiteral("Vertikale Mittellinie"), QRectF(0.0, rangeMin, 0.0, 2.0 * rangeMax));
    addMidLine(QStringLiteral("Horizontale Mittellinie"),
               QRectF(rangeMin, 0.0, 2.0 * rangeMax, 0.0));
}

void GenericPlot::addMidLine(const QString& title, const QRectF& line)
{
    QPainterPath path;
    path.addRect(line);
    auto item = std::make_unique<QwtPlotShapeItem>(title);
    item->setShape(path);
    item->setPen(Qt::darkGray, 1.0);
    item.release()->attach(this);
    setChanged();
}

void GenericPlot::disableZoomer()
{
    for (int select = 0; select < QwtEventPattern::MousePatternCount; ++select)
        zoomer->setMousePattern(static_cast<QwtEventPattern::MousePatternCode>(select),
                                Qt::NoButton);
    // Undo and redo are disabled as well: a step in the zoom stack sets the axes to the zoomer's
    // base.
    for (auto key :
         {QwtEventPattern::KeySelect1, QwtEventPattern::KeySelect2, QwtEventPattern::KeyAbort,
          QwtEventPattern::KeyUndo, QwtEventPattern::KeyRedo, QwtEventPattern::KeyHome})
        zoomer->setKeyPattern(key, 0);
}

void GenericPlot::zeroZoomStack()
{
    zoomer->setTrackerMode(QwtPicker::AlwaysOff);
}

void GenericPlot::resetZoom()
{
    zoomer->zoom(0);
    applyRange();
}

void GenericPlot::setRange(double max, double min)
{
    rangeMax = max;
    rangeMin = min;
    applyRange();
    zoomer->setLabelValue(rangeMax);
    // Lines of earlier ranges stay: they lie on the same axes, and a shorter line only covers the
    // middle of a longer one.
    drawCrossHairs();
    zoomer->setZoomBase(true);
    emit rangeChanged();
}
