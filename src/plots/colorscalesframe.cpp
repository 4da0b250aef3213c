#include "plots/colorscalesframe.h"

#include <QPainter>

namespace {

constexpr int stripLeft = 5;
constexpr int stripRight = 9;
constexpr int upperBandTop = 5;

QRect band(int top, int bottom)
{
    return QRect(QPoint(stripLeft, top), QPoint(stripRight, bottom));
}

void drawBand(QPainter& painter, const QRect& rect, const QColor& color)
{
    if (rect.isEmpty())
        return;
    painter.setBrush(color);
    // The outline runs through the centres of the border pixels: it is sharp and stays in the band.
    painter.drawRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5));
}

} // namespace

ColorScaleBands colorScaleBands(int height)
{
    const int eighth = height / 8;
    // The upper red band starts 5 pixels down and is drawn last, so it covers the first 5 rows of
    // the green band.
    return {band(eighth, 7 * eighth - 1), band(upperBandTop, eighth + upperBandTop - 1),
            band(7 * eighth, 8 * eighth - 1)};
}

void ColorScalesFrame::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::gray);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);

    const ColorScaleBands bands = colorScaleBands(height());
    drawBand(painter, bands.good, QColor("lightgreen"));
    drawBand(painter, bands.upperLimit, QColor("red"));
    drawBand(painter, bands.lowerLimit, QColor("red"));
}
