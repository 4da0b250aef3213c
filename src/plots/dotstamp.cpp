#include "plots/dotstamp.h"

#include <QImage>
#include <QtMath>
#include <qwt_plot_curve.h>
#include <qwt_scale_map.h>
#include <qwt_symbol.h>

#include <algorithm>
#include <memory>
#include <optional>

namespace {

/// Wider marks are clipped in ways of their own at the border of a canvas.
constexpr double widestMark = 1.0;

/// On denser screens the pixels of a mark differ from place to place.
constexpr int densestMarks = 2 * PixelGrid::quarters;

enum class Part { Mark, Ellipse };

/// The curve with one dot that is drawn to see what the library makes of it.
std::unique_ptr<QwtPlotCurve> curveOfOneDot(const DotLook& look, Part part, const QPoint& place)
{
    auto curve = std::make_unique<QwtPlotCurve>();
    curve->setSamples({QPointF(place)});
    curve->setPen(look.markPen);
    curve->setStyle(part == Part::Mark ? QwtPlotCurve::Dots : QwtPlotCurve::NoCurve);
    if (part == Part::Ellipse)
        curve->setSymbol(new QwtSymbol(QwtSymbol::Ellipse, look.ellipseBrush, look.ellipsePen,
                                       look.ellipseSize));
    return curve;
}

/// Places before and behind a dot that its ellipse may reach.
int reachOf(const DotLook& look)
{
    const int width = qCeil(look.ellipsePen.widthF());
    return qMax(look.ellipseSize.width(), look.ellipseSize.height()) + width + 2;
}

/// A place at or behind `reach` that has the phase, if there is one.
std::optional<int> placeWithPhase(int phase, int reach, int step)
{
    for (int place = reach; place < reach + PixelGrid::quarters; ++place) {
        if (place * step % PixelGrid::quarters == phase)
            return place;
    }
    return std::nullopt;
}

/// A picture that reaches as far behind the dot's place as before it.
QImage pictureOfOneDot(const QwtPlotCurve& curve, const QPoint& place, const PixelGrid& grid)
{
    const int places = 2 * qMax(place.x(), place.y());
    const double ratio = double(grid.step) / PixelGrid::quarters;
    QImage image(QSize(1, 1) * qCeil(places * ratio), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    QwtScaleMap map;
    map.setPaintInterval(0.0, places);
    map.setScaleInterval(0.0, places);
    QPainter painter(&image);
    painter.setRenderHints(painter.renderHints(), false);
    painter.setRenderHints(grid.hints);
    curve.drawSeries(&painter, map, map, QRectF(0.0, 0.0, places, places), 0, -1);
    return image;
}

/// Nothing if a pixel is translucent or of another colour than the rest.
std::optional<DotStamp::Shape> shapeIn(const QImage& image, const QPoint& origin)
{
    DotStamp::Shape shape;
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(line[x]) == 0)
                continue;
            if (qAlpha(line[x]) != 255 || (!shape.pixels.isEmpty() && line[x] != shape.color))
                return std::nullopt;
            const QPoint pixel = QPoint(x, y) - origin;
            shape.color = line[x];
            shape.pixels.append(pixel);
            shape.bounds |= QRect(pixel, QSize(1, 1));
        }
    }
    return shape;
}

std::optional<DotStamp::Shape> shapeOfOneDot(const DotLook& look, Part part, const QPoint& place,
                                             const PixelGrid& grid)
{
    const QPoint origin(place.x() * grid.step / PixelGrid::quarters,
                        place.y() * grid.step / PixelGrid::quarters);
    return shapeIn(pictureOfOneDot(*curveOfOneDot(look, part, place), place, grid), origin);
}

void removeCovered(DotStamp::Shape& mark, const DotStamp::Shape& ellipse)
{
    const auto isCovered = [&ellipse](const QPoint& pixel) {
        return ellipse.pixels.contains(pixel);
    };
    mark.pixels.erase(std::remove_if(mark.pixels.begin(), mark.pixels.end(), isCovered),
                      mark.pixels.end());
}

} // namespace

DotLook DotLook::of(const QwtPlotCurve& curve)
{
    DotLook look;
    look.markPen = curve.pen();
    if (const QwtSymbol* symbol = curve.symbol()) {
        look.hasEllipse = true;
        look.ellipsePen = symbol->pen();
        look.ellipseBrush = symbol->brush();
        look.ellipseSize = symbol->size();
    }
    return look;
}

bool DotLook::describes(const QwtPlotCurve& curve)
{
    const QwtSymbol* symbol = curve.symbol();
    const bool hasPlainSymbol =
        !symbol
        || (symbol->style() == QwtSymbol::Ellipse && !symbol->isPinPointEnabled()
            && symbol->cachePolicy() == QwtSymbol::AutoCache);
    return hasPlainSymbol && curve.style() == QwtPlotCurve::Dots
           && curve.brush().style() == Qt::NoBrush && curve.pen().widthF() <= widestMark
           && curve.testPaintAttribute(QwtPlotCurve::FilterPoints)
           && !curve.testPaintAttribute(QwtPlotCurve::ImageBuffer)
           && !curve.testPaintAttribute(QwtPlotCurve::MinimizeMemory);
}

// This runs for every curve and painting, so it copies nothing.
bool DotLook::isThatOf(const QwtPlotCurve& curve) const
{
    const QwtSymbol* symbol = curve.symbol();
    if (hasEllipse != (symbol != nullptr) || markPen != curve.pen())
        return false;
    return !symbol
           || (ellipsePen == symbol->pen() && ellipseBrush == symbol->brush()
               && ellipseSize == symbol->size());
}

DotStamp::DotStamp(const DotLook& look, const PixelGrid& grid)
    : pixelGrid(grid)
{
    for (int phaseY = 0; phaseY < PixelGrid::quarters && plain; ++phaseY) {
        for (int phaseX = 0; phaseX < PixelGrid::quarters && plain; ++phaseX)
            addShapes(look, QPoint(phaseX, phaseY));
    }
}

void DotStamp::addShapes(const DotLook& look, const QPoint& phase)
{
    const int reach = reachOf(look);
    const std::optional<int> x = placeWithPhase(phase.x(), reach, pixelGrid.step);
    const std::optional<int> y = placeWithPhase(phase.y(), reach, pixelGrid.step);
    if (!x || !y)
        return;
    const std::optional<Shape> mark = shapeOfOneDot(look, Part::Mark, {*x, *y}, pixelGrid);
    const std::optional<Shape> ellipse =
        look.hasEllipse ? shapeOfOneDot(look, Part::Ellipse, {*x, *y}, pixelGrid) : Shape();
    plain = mark && ellipse;
    if (!plain)
        return;
    Shapes& shapes = phases[indexOf(phase.x(), phase.y())];
    shapes = {*mark, *ellipse};
    removeCovered(shapes.mark, shapes.ellipse);
    plain = shapes.mark.pixels.isEmpty() || pixelGrid.step <= densestMarks;
}
