#include "plots/scrollzoomer.h"

#include "plots/scrollbar.h"

#include <QChildEvent>
#include <QResizeEvent>
#include <qwt_plot_layout.h>
#include <qwt_scale_div.h>
#include <qwt_scale_widget.h>

ScrollZoomer::ScrollZoomer(QWidget* canvas)
    : QwtPlotZoomer(canvas, true)
{}

ScrollZoomer::~ScrollZoomer()
{
    // The canvas owns these widgets and may outlive this zoomer.
    delete corner;
    delete hScrollData.scrollBar;
    delete vScrollData.scrollBar;
}

ScrollBar* ScrollZoomer::horizontalScrollBar() const
{
    return hScrollData.scrollBar;
}

ScrollBar* ScrollZoomer::verticalScrollBar() const
{
    return vScrollData.scrollBar;
}

QWidget* ScrollZoomer::cornerWidget() const
{
    return corner;
}

ScrollZoomer::ScrollData& ScrollZoomer::scrollData(Qt::Orientation orientation)
{
    return orientation == Qt::Vertical ? vScrollData : hScrollData;
}

const ScrollZoomer::ScrollData& ScrollZoomer::scrollData(Qt::Orientation orientation) const
{
    return orientation == Qt::Vertical ? vScrollData : hScrollData;
}

void ScrollZoomer::setMode(Qt::Orientation orientation, Qt::ScrollBarPolicy mode)
{
    ScrollData& data = scrollData(orientation);
    if (data.mode == mode)
        return;
    data.mode = mode;
    updateScrollBars();
}

void ScrollZoomer::setPosition(Qt::Orientation orientation, ScrollBarPosition position)
{
    ScrollData& data = scrollData(orientation);
    if (data.position == position)
        return;
    // Hiding the bar removes the margin on the side that it leaves.
    hideScrollBar(orientation);
    data.position = position;
    updateScrollBars();
}

int ScrollZoomer::oppositeAxis(int axis)
{
    switch (axis) {
    case QwtPlot::yLeft:
        return QwtPlot::yRight;
    case QwtPlot::yRight:
        return QwtPlot::yLeft;
    case QwtPlot::xBottom:
        return QwtPlot::xTop;
    case QwtPlot::xTop:
        return QwtPlot::xBottom;
    default:
        return axis;
    }
}

int ScrollZoomer::zoomedAxis(Qt::Orientation orientation) const
{
    return orientation == Qt::Vertical ? yAxis() : xAxis();
}

int ScrollZoomer::scrollBarAxis(Qt::Orientation orientation) const
{
    const int axis = zoomedAxis(orientation);
    return scrollData(orientation).position == OppositeToScale ? oppositeAxis(axis) : axis;
}

QPalette ScrollZoomer::plotPalette() const
{
    QPalette palette = plot()->palette();
    // Setting the brush marks it as explicit; otherwise children of the canvas inherit the canvas's
    // background.
    palette.setBrush(QPalette::Window, palette.window());
    return palette;
}

bool ScrollZoomer::isShown(const ScrollBar* bar) const
{
    return bar && bar->isVisibleTo(canvas());
}

ScrollBar* ScrollZoomer::scrollBar(Qt::Orientation orientation)
{
    ScrollData& data = scrollData(orientation);
    if (!data.scrollBar) {
        data.scrollBar = new ScrollBar(orientation, canvas());
        data.scrollBar->hide();
        data.scrollBar->setCursor(Qt::ArrowCursor);
        connect(data.scrollBar.data(), &ScrollBar::valueChanged, this,
                &ScrollZoomer::scrollBarMoved);
    }
    return data.scrollBar;
}

void ScrollZoomer::scrollBarMoved(Qt::Orientation orientation, double min, double max)
{
    if (orientation == Qt::Horizontal)
        moveTo(QPointF(min, zoomRect().top()));
    else
        moveTo(QPointF(zoomRect().left(), max));
    emit zoomed(zoomRect());
}

bool ScrollZoomer::needScrollBar(Qt::Orientation orientation) const
{
    switch (scrollData(orientation).mode) {
    case Qt::ScrollBarAlwaysOff:
        return false;
    case Qt::ScrollBarAlwaysOn:
        return true;
    case Qt::ScrollBarAsNeeded:
        break;
    }
    const QRectF base = zoomBase();
    const QRectF rect = zoomRect();
    if (orientation == Qt::Vertical)
        return base.top() < rect.top() || base.bottom() > rect.bottom();
    return base.left() < rect.left() || base.right() > rect.right();
}

void ScrollZoomer::updateScrollBars()
{
    if (!canvas())
        return;
    updateScrollBar(Qt::Horizontal);
    updateScrollBar(Qt::Vertical);
    updateCorner();
    layoutScrollBars(canvas()->contentsRect());
    plot()->updateLayout();
}

void ScrollZoomer::updateScrollBar(Qt::Orientation orientation)
{
    if (!needScrollBar(orientation)) {
        hideScrollBar(orientation);
        return;
    }

    const QwtScaleDiv& scaleDiv = plot()->axisScaleDiv(zoomedAxis(orientation));
    const QRectF base = zoomBase();
    const QRectF rect = zoomRect();
    ScrollBar* bar = scrollBar(orientation);
    bar->setPalette(plotPalette());
    bar->setInverted(scaleDiv.lowerBound() > scaleDiv.upperBound());
    if (orientation == Qt::Vertical) {
        // From the largest y to the smallest: the top of the bar shows the top of the plot.
        bar->setBase(base.bottom(), base.top());
        bar->moveSlider(rect.bottom(), rect.top());
    } else {
        bar->setBase(base.left(), base.right());
        bar->moveSlider(rect.left(), rect.right());
    }
    showScrollBar(orientation);
}

void ScrollZoomer::showScrollBar(Qt::Orientation orientation)
{
    ScrollBar* bar = scrollBar(orientation);
    if (isShown(bar))
        return;
    bar->show();
    growCanvasMargin(scrollBarAxis(orientation), bar->extent());
}

void ScrollZoomer::hideScrollBar(Qt::Orientation orientation)
{
    ScrollBar* bar = scrollData(orientation).scrollBar;
    if (!isShown(bar))
        return;
    bar->hide();
    growCanvasMargin(scrollBarAxis(orientation), -bar->extent());
}

void ScrollZoomer::growCanvasMargin(int axis, int pixels)
{
    QwtPlotLayout* layout = plot()->plotLayout();
    layout->setCanvasMargin(layout->canvasMargin(axis) + pixels, axis);
}

void ScrollZoomer::updateCorner()
{
    if (!needScrollBar(Qt::Horizontal) || !needScrollBar(Qt::Vertical)) {
        if (corner)
            corner->hide();
        return;
    }
    if (!corner) {
        corner = new QWidget(canvas());
        corner->setAutoFillBackground(true);
        corner->setPalette(plotPalette());
    }
    corner->show();
}

void ScrollZoomer::layoutScrollBars(const QRect& rect)
{
    ScrollBar* hBar = horizontalScrollBar();
    ScrollBar* vBar = verticalScrollBar();
    const bool both = isShown(hBar) && isShown(vBar);
    const int hDim = hBar ? hBar->extent() : 0;
    const int vDim = vBar ? vBar->extent() : 0;
    const bool atTop = scrollBarAxis(Qt::Horizontal) == QwtPlot::xTop;
    const bool atLeft = scrollBarAxis(Qt::Vertical) == QwtPlot::yLeft;

    // The two bars lie along two sides of the canvas and leave the corner between them free.
    QRect hRect(rect.left(), atTop ? rect.top() : rect.bottom() - hDim + 1, rect.width(), hDim);
    QRect vRect(atLeft ? rect.left() : rect.right() - vDim + 1, rect.top(), vDim, rect.height());
    const QRect cornerRect(vRect.x(), hRect.y(), vDim, hDim);
    if (both) {
        hRect.adjust(atLeft ? vDim : 0, 0, atLeft ? 0 : -vDim, 0);
        vRect.adjust(0, atTop ? hDim : 0, 0, atTop ? 0 : -hDim);
    }

    if (isShown(hBar))
        hBar->setGeometry(hRect);
    if (isShown(vBar))
        vBar->setGeometry(vRect);
    if (both && corner)
        corner->setGeometry(cornerRect);
}

bool ScrollZoomer::eventFilter(QObject* object, QEvent* event)
{
    if (object == canvas() && event->type() == QEvent::Resize) {
        const QSize size = static_cast<QResizeEvent*>(event)->size();
        layoutScrollBars(QRect(QPoint(0, 0), size).marginsRemoved(canvas()->contentsMargins()));
    } else if (object == canvas() && event->type() == QEvent::ChildRemoved) {
        const QObject* child = static_cast<QChildEvent*>(event)->child();
        if (child == corner)
            corner = nullptr;
        else if (child == hScrollData.scrollBar)
            hScrollData.scrollBar = nullptr;
        else if (child == vScrollData.scrollBar)
            vScrollData.scrollBar = nullptr;
    }
    return QwtPlotZoomer::eventFilter(object, event);
}

void ScrollZoomer::setCornerWidget(QWidget* widget)
{
    if (widget == corner || !canvas())
        return;
    delete corner;
    corner = widget;
    if (widget && widget->parent() != canvas())
        widget->setParent(canvas());
    updateScrollBars();
}

void ScrollZoomer::rescale()
{
    if (!plot())
        return;
    const bool zoomed = zoomRectIndex() > 0;
    if (zoomed && !inZoom)
        enterZoom();
    else if (!zoomed && inZoom)
        leaveZoom();
    QwtPlotZoomer::rescale();
    updateScrollBars();
}

void ScrollZoomer::enterZoom()
{
    plot()->enableAxis(QwtPlot::xTop, false);
    plot()->enableAxis(QwtPlot::yRight, false);
    // A fixed distance at the ends of the scales keeps the canvas size steady while scrolling.
    for (int axis : {xAxis(), yAxis()}) {
        QwtScaleWidget* scale = plot()->axisWidget(axis);
        int start = 0;
        int end = 0;
        scale->getBorderDistHint(start, end);
        scale->setMinBorderDist(start, end);
    }
    QwtPlotLayout* layout = plot()->plotLayout();
    for (int axis = 0; axis < QwtPlot::axisCnt; ++axis)
        alignCanvasToScales[axis] = layout->alignCanvasToScale(axis);
    layout->setAlignCanvasToScales(false);
    inZoom = true;
}

void ScrollZoomer::leaveZoom()
{
    plot()->enableAxis(QwtPlot::xTop, true);
    plot()->enableAxis(QwtPlot::yRight, true);
    for (int axis : {xAxis(), yAxis()})
        plot()->axisWidget(axis)->setMinBorderDist(0, 0);
    QwtPlotLayout* layout = plot()->plotLayout();
    for (int axis = 0; axis < QwtPlot::axisCnt; ++axis)
        layout->setAlignCanvasToScale(axis, alignCanvasToScales[axis]);
    inZoom = false;
}
