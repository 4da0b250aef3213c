#pragma once

#include "plots/canvasplace.h"

#include <QBrush>
#include <QPen>
#include <QPoint>
#include <QRect>
#include <QRgb>
#include <QSize>
#include <QVector>

#include <array>

class QwtPlotCurve;

/// All that decides how a single dot of a curve looks. A dot is a mark, drawn with the curve's pen,
/// and an ellipse over it.
struct DotLook
{
    /// What the curve has now. `hasEllipse` is false for a curve without a symbol.
    static DotLook of(const QwtPlotCurve& curve);
    /// Whether all curves of this kind can be told by a look: dots without filling, and ellipses.
    static bool describes(const QwtPlotCurve& curve);
    /// Whether `of` would be equal to this one.
    bool isThatOf(const QwtPlotCurve& curve) const;

    QPen markPen;
    bool hasEllipse = false;
    QPen ellipsePen;
    QBrush ellipseBrush;
    QSize ellipseSize;
};

/// The device pixels that one dot covers, as the library paints them. Where the density of the
/// screen is not a whole number, dots differ by where they begin within a pixel (their phase).
class DotStamp final
{
public:
    struct Shape
    {
        /// Relative to the device pixel in which the dot's place begins.
        QVector<QPoint> pixels;
        QRect bounds;
        QRgb color = 0;
    };
    struct Shapes
    {
        /// Without the pixels that the ellipse covers: those can never be seen.
        Shape mark;
        Shape ellipse;
    };

    DotStamp(const DotLook& look, const PixelGrid& grid);

    const PixelGrid& grid() const { return pixelGrid; }
    /// False if a dot has translucent pixels, or an ellipse of several colours: then it matters
    /// which dot comes first.
    bool isPlain() const { return plain; }
    /// Phases in quarters of a pixel, 0 to 3. Without pixels for a phase that can not be.
    const Shapes& shapes(int phaseX, int phaseY) const { return phases[indexOf(phaseX, phaseY)]; }

private:
    static std::size_t indexOf(int phaseX, int phaseY)
    {
        return std::size_t(phaseY * PixelGrid::quarters + phaseX);
    }
    void addShapes(const DotLook& look, const QPoint& phase);

    PixelGrid pixelGrid;
    std::array<Shapes, PixelGrid::quarters * PixelGrid::quarters> phases;
    bool plain = true;
};
