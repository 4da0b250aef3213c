#pragma once

#include "plots/incrementalplot.h"

#include <QImage>
#include <QtMath>
#include <QtTest>
#include <qwt_plot_canvas.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_grid.h>
#include <qwt_symbol.h>

/// The library's own drawing of a plot's curves: a plot without any class of ours, with the same
/// scales, size and curves, whose points are all drawn anew with each picture.
class OrdinaryPlot final : public QwtPlot
{
public:
    explicit OrdinaryPlot(const QwtPlot& like)
    {
        setCanvasBackground(like.canvasBackground());
        // A backing store begins at a whole device pixel, a canvas in a window need not.
        canvasOf(*this).setPaintAttribute(
            QwtPlotCanvas::BackingStore,
            canvasOf(like).testPaintAttribute(QwtPlotCanvas::BackingStore));
        setContentsMargins(like.contentsMargins());
        for (int axis = 0; axis < axisCnt; ++axis) {
            enableAxis(axis, like.axisEnabled(axis));
            setAxisMaxMinor(axis, like.axisMaxMinor(axis));
            const QwtInterval scale = like.axisInterval(axis);
            setAxisScale(axis, scale.minValue(), scale.maxValue());
        }
        for (const QwtPlotItem* item : like.itemList(QwtPlotItem::Rtti_PlotGrid))
            copyGrid(static_cast<const QwtPlotGrid&>(*item));
        for (const QwtPlotItem* item : like.itemList(QwtPlotItem::Rtti_PlotCurve))
            copyCurve(static_cast<const QwtPlotCurve&>(*item));
        resize(like.size());
        replot();
    }

    /// Moves one point of a curve by a pixel.
    void movePoint(int curve)
    {
        auto& changed = static_cast<QwtPlotCurve&>(*itemList(QwtPlotItem::Rtti_PlotCurve)[curve]);
        QVector<QPointF> points = copyOfPoints(changed);
        const QwtScaleMap map = canvasMap(xBottom);
        points.last().rx() = map.invTransform(map.transform(points.last().x()) + 1.0);
        changed.setSamples(points);
    }

private:
    static QwtPlotCanvas& canvasOf(const QwtPlot& plot)
    {
        return *static_cast<QwtPlotCanvas*>(const_cast<QwtPlot&>(plot).canvas());
    }

    static QVector<QPointF> copyOfPoints(const QwtPlotCurve& curve)
    {
        QVector<QPointF> points;
        for (std::size_t i = 0; i < curve.dataSize(); ++i)
            points.append(curve.sample(int(i)));
        return points;
    }

    void copyGrid(const QwtPlotGrid& grid)
    {
        auto copy = std::make_unique<QwtPlotGrid>();
        copy->setMajorPen(grid.majorPen());
        copy->setMinorPen(grid.minorPen());
        copy->enableX(grid.xEnabled());
        copy->enableXMin(grid.xMinEnabled());
        copy->enableY(grid.yEnabled());
        copy->enableYMin(grid.yMinEnabled());
        copy->setVisible(grid.isVisible());
        copy->setRenderHint(RenderAntialiased, grid.testRenderHint(RenderAntialiased));
        copy.release()->attach(this);
    }

    void copyCurve(const QwtPlotCurve& curve)
    {
        auto copy = std::make_unique<QwtPlotCurve>();
        copy->setStyle(curve.style());
        copy->setPen(curve.pen());
        copy->setZ(curve.z());
        copy->setVisible(curve.isVisible());
        copy->setRenderHint(RenderAntialiased, curve.testRenderHint(RenderAntialiased));
        if (const QwtSymbol* symbol = curve.symbol())
            copy->setSymbol(
                new QwtSymbol(symbol->style(), symbol->brush(), symbol->pen(), symbol->size()));
        copy->setSamples(copyOfPoints(curve));
        copy.release()->attach(this);
    }

    static constexpr QwtPlotItem::RenderHint RenderAntialiased = QwtPlotItem::RenderAntialiased;
};

/// The canvas as it is on the screen, in device pixels. It is cut out of a picture of the whole
/// plot, where it lies at the place that it has in the window.
inline QImage pictureOf(QwtPlot& plot)
{
    const QImage picture = plot.grab().toImage().convertToFormat(QImage::Format_RGB32);
    const QRect canvas = plot.canvas()->geometry();
    const double ratio = plot.devicePixelRatioF();
    const QPoint topLeft(qCeil(canvas.x() * ratio), qCeil(canvas.y() * ratio));
    const QPoint end(qFloor((canvas.x() + canvas.width()) * ratio),
                     qFloor((canvas.y() + canvas.height()) * ratio));
    QImage cut = picture.copy(QRect(topLeft, end - QPoint(1, 1)));
    cut.setDevicePixelRatio(1.0);
    return cut;
}

inline QImage ordinaryPictureOf(const QwtPlot& plot)
{
    OrdinaryPlot ordinary(plot);
    return pictureOf(ordinary);
}

/// How many pixels differ; -1 for pictures of different sizes.
inline int differingPixels(const QImage& one, const QImage& other)
{
    if (one.size() != other.size())
        return -1;
    int count = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x)
            count += one.pixel(x, y) == other.pixel(x, y) ? 0 : 1;
    }
    return count;
}

/// Keeps both pictures of a test that fails in the folder LUMETRA_PICTURES, if one is named.
inline void keepPictures(const QImage& shown, const QImage& expected)
{
    const QString folder = qEnvironmentVariable("LUMETRA_PICTURES");
    if (folder.isEmpty())
        return;
    const QString name = folder + '/' + QTest::currentTestFunction();
    shown.save(name + "-shown.png");
    expected.save(name + "-expected.png");
}
