#include "plots/keptgrid.h"

#include <QPainter>

#include <optional>

namespace {

bool isOpaque(const QPen& pen)
{
    constexpr int full = 255;
    return pen.color().alpha() == full;
}

} // namespace

void KeptGrid::draw(QPainter* painter, const QwtScaleMap& xMap, const QwtScaleMap& yMap,
                    const QRectF& canvasRect) const
{
    const std::optional<CanvasPlace> newPlace = CanvasPlace::of(*painter, canvasRect);
    if (!newPlace || !canBeKept(*newPlace, xMap, yMap)) {
        QwtPlotGrid::draw(painter, xMap, yMap, canvasRect);
        return;
    }
    const Lines newLines = lines();
    const bool isShown = !picture.isNull() && newPlace->meetsPixelsAs(place)
                         && isSameScale(xMap, shownX) && isSameScale(yMap, shownY)
                         && isSame(newLines, shownLines);
    place = *newPlace;
    if (!isShown) {
        shownX = xMap;
        shownY = yMap;
        shownLines = newLines;
        makePicture(canvasRect);
    }
    place.drawPixels(*painter, picture);
}

KeptGrid::Lines KeptGrid::lines() const
{
    return {xScaleDiv(), yScaleDiv(),   majorPen(), minorPen(),
            xEnabled(),  xMinEnabled(), yEnabled(), yMinEnabled()};
}

bool KeptGrid::isSame(const Lines& one, const Lines& other)
{
    return one.x == other.x && one.y == other.y && one.majorPen == other.majorPen
           && one.minorPen == other.minorPen && one.hasX == other.hasX
           && one.hasXMin == other.hasXMin && one.hasY == other.hasY
           && one.hasYMin == other.hasYMin;
}

bool KeptGrid::canBeKept(const CanvasPlace& newPlace, const QwtScaleMap& xMap,
                         const QwtScaleMap& yMap) const
{
    return newPlace.grid.step % PixelGrid::quarters == 0 && !xMap.transformation()
           && !yMap.transformation() && !testRenderHint(RenderAntialiased) && isOpaque(majorPen())
           && isOpaque(minorPen());
}

void KeptGrid::makePicture(const QRectF& canvasRect) const
{
    picture = QImage(place.devicePixels, QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(double(place.grid.step) / PixelGrid::quarters);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHints(painter.renderHints(), false);
    painter.setRenderHints(place.grid.hints);
    painter.translate(-place.canvas.topLeft());
    painter.setClipRect(place.canvas);
    QwtPlotGrid::draw(&painter, shownX, shownY, canvasRect);
    painter.end();
    picture.setDevicePixelRatio(1.0);
    ++made;
}
