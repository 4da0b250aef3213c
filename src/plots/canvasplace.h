#pragma once

#include <QPainter>
#include <QPoint>
#include <QRect>
#include <QSize>

#include <optional>

class QImage;
class QwtScaleMap;

/// How the pixels of a screen lie under the whole-numbered places of a canvas. Lengths are in
/// quarters of a device pixel, so that all usual densities are whole numbers.
struct PixelGrid
{
    /// The shift that divides by `quarters`.
    static constexpr int quarterBits = 2;
    static constexpr int quarters = 1 << quarterBits;

    /// Whole device pixels in a length, rounded down, also where it is negative.
    static constexpr int floorPixels(int length) { return length >> quarterBits; }
    static constexpr int ceilPixels(int length) { return floorPixels(length + quarters - 1); }
    /// What a length has beyond `floorPixels`, 0 to 3.
    static constexpr int phaseOf(int length) { return length & (quarters - 1); }

    /// Quarters of a device pixel per place.
    int step = quarters;
    /// Hints of the painter, without antialiasing.
    QPainter::RenderHints hints;
};

inline bool operator==(const PixelGrid& one, const PixelGrid& other)
{
    return one.step == other.step && one.hints == other.hints;
}

/// Where a canvas lies on the pixels that a painter paints to. A picture of device pixels that was
/// made for one place is right for all that meet the pixels alike.
struct CanvasPlace
{
    /// Nothing for a painter whose pixels can not be foretold: one that does more than move the
    /// picture, blends it, has another engine than the raster one or a density that is no multiple
    /// of a quarter.
    static std::optional<CanvasPlace> of(const QPainter& painter, const QRectF& canvasRect);

    /// Wherever the corners are.
    bool meetsPixelsAs(const CanvasPlace& other) const;
    /// Draws a picture of the place's device pixels.
    void drawPixels(QPainter& painter, const QImage& picture) const;

    /// In places, as the library sees it: what is rounded to a place beyond it is left out.
    QRect canvas;
    PixelGrid grid;
    /// Of the place (0, 0), from the corner, in quarters of a device pixel.
    QPoint origin;
    QSize devicePixels;
    /// In device pixels of the painter.
    QPoint corner;
};

/// Whether both, which have to be linear, take all values to the same places.
bool isSameScale(const QwtScaleMap& one, const QwtScaleMap& other);
