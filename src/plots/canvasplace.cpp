#include "plots/canvasplace.h"

#include <QImage>
#include <QPaintEngine>
#include <qwt_painter.h>
#include <qwt_scale_map.h>

#include <cmath>
#include <numeric>

namespace {

constexpr int quarters = PixelGrid::quarters;

bool isPlainPainter(const QPainter& painter)
{
    return painter.paintEngine()->type() == QPaintEngine::Raster
           && painter.worldTransform().type() <= QTransform::TxTranslate
           && !painter.viewTransformEnabled() && QwtPainter::roundingAlignment()
           && painter.opacity() == 1.0
           && painter.compositionMode() == QPainter::CompositionMode_SourceOver;
}

/// The length in quarters of a pixel, if it is a whole number of them.
std::optional<int> inQuarters(double pixels)
{
    constexpr double tolerance = 1e-6;
    const double exact = pixels * quarters;
    const int rounded = qRound(exact);
    return std::abs(exact - rounded) < tolerance ? std::optional<int>(rounded) : std::nullopt;
}

} // namespace

std::optional<CanvasPlace> CanvasPlace::of(const QPainter& painter, const QRectF& canvasRect)
{
    if (!isPlainPainter(painter))
        return std::nullopt;
    const QTransform& device = painter.deviceTransform();
    const std::optional<int> step = inQuarters(device.m11());
    const std::optional<int> x = inQuarters(device.dx());
    const std::optional<int> y = inQuarters(device.dy());
    if (!step || *step <= 0 || device.m22() != device.m11() || !x || !y)
        return std::nullopt;
    const int pixelsMeetEvery = std::gcd(*step, quarters);
    if (*x % pixelsMeetEvery != 0 || *y % pixelsMeetEvery != 0)
        return std::nullopt;

    CanvasPlace place;
    place.canvas = canvasRect.toAlignedRect();
    place.grid.step = *step;
    place.grid.hints = painter.renderHints() & ~QPainter::Antialiasing;
    place.corner = QPoint(PixelGrid::floorPixels(*x + place.canvas.left() * *step),
                          PixelGrid::floorPixels(*y + place.canvas.top() * *step));
    const QPoint end(PixelGrid::ceilPixels(*x + (place.canvas.right() + 1) * *step),
                     PixelGrid::ceilPixels(*y + (place.canvas.bottom() + 1) * *step));
    place.origin = QPoint(*x, *y) - place.corner * quarters;
    place.devicePixels = QSize(end.x() - place.corner.x(), end.y() - place.corner.y());
    if (place.devicePixels.isEmpty())
        return std::nullopt;
    return place;
}

bool CanvasPlace::meetsPixelsAs(const CanvasPlace& other) const
{
    return canvas == other.canvas && grid == other.grid && origin == other.origin
           && devicePixels == other.devicePixels;
}

// The painter's own density is taken out, as the picture has it already.
void CanvasPlace::drawPixels(QPainter& painter, const QImage& picture) const
{
    const QTransform toCorner = QTransform::fromTranslate(corner.x(), corner.y());
    painter.save();
    painter.setWorldTransform(toCorner * painter.deviceTransform().inverted()
                              * painter.worldTransform());
    painter.drawImage(0, 0, picture);
    painter.restore();
}

bool isSameScale(const QwtScaleMap& one, const QwtScaleMap& other)
{
    return one.p1() == other.p1() && one.p2() == other.p2() && one.s1() == other.s1()
           && one.s2() == other.s2();
}
