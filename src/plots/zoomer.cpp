#include "plots/zoomer.h"

#include "plots/scrollbar.h"

#include <qwt_scale_draw.h>
#include <qwt_scale_widget.h>
#include <qwt_text.h>

namespace {

/// Codes that no key has, so that no key steps back in the zoom stack.
constexpr int noKeyForUndo = 1;
constexpr int noKeyForHome = 2;

QRect contentsOf(const ScrollBar* bar)
{
    return bar ? bar->contentsRect() : QRect();
}

} // namespace

QPoint limitBand(const QPoint& pos, const BandLimits& limits)
{
    int x = pos.x();
    int y = pos.y();

    const QRect& canvas = limits.canvas;
    if (!limits.hScrollBar.isEmpty() && x > limits.hScrollBar.right())
        x = limits.hScrollBar.right();
    else if (x > canvas.right())
        x = canvas.right();

    // The right edge of the vertical bar, in the bar's own coordinates, is its thickness. The
    // horizontal bar, which lies at the top, is as high as that.
    if (!limits.vScrollBar.isEmpty() && y < limits.vScrollBar.right())
        y = limits.vScrollBar.right();
    else if (y < canvas.top())
        y = canvas.top();

    return QPoint(qMax(x, canvas.left()), qMin(y, canvas.bottom()));
}

Zoomer::Zoomer(QWidget* canvas)
    : ScrollZoomer(canvas)
{}

void Zoomer::move(const QPoint& pos)
{
    BandLimits limits;
    limits.canvas = canvas()->contentsRect();
    if (needScrollBar(Qt::Horizontal))
        limits.hScrollBar = contentsOf(horizontalScrollBar());
    if (needScrollBar(Qt::Vertical))
        limits.vScrollBar = contentsOf(verticalScrollBar());
    QwtPlotPicker::move(limitBand(pos, limits));
}

double Zoomer::zoomedScaleExtent() const
{
    const QwtScaleWidget* scale = plot()->axisWidget(yAxis());
    const QwtScaleDraw* draw = scale->scaleDraw();
    return draw->spacing() + draw->maxTickLength() + 1.0
           + draw->labelSize(scale->font(), labelValue).width();
}

void Zoomer::rescale()
{
    if (!plot())
        return;
    const double extent = zoomRectIndex() == 0 ? 0.0 : zoomedScaleExtent();
    plot()->axisWidget(yAxis())->scaleDraw()->setMinimumExtent(extent);
    setKeyPattern(KeyUndo, noKeyForUndo);
    setKeyPattern(KeyHome, noKeyForHome);
    ScrollZoomer::rescale();
}
