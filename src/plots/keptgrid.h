#pragma once

#include "plots/canvasplace.h"

#include <QImage>
#include <QPen>
#include <qwt_plot_grid.h>
#include <qwt_scale_div.h>
#include <qwt_scale_map.h>

/// A grid that keeps its picture: dotted lines take longer to draw than all else on a canvas. What
/// the picture depends on is compared with each drawing. On screens whose density is no whole
/// number, and for soft or translucent lines, the grid is drawn anew each time.
class KeptGrid final : public QwtPlotGrid
{
public:
    void draw(QPainter* painter, const QwtScaleMap& xMap, const QwtScaleMap& yMap,
              const QRectF& canvasRect) const override;

    /// How often the picture was made.
    int picturesMade() const { return made; }

private:
    /// All that the picture shows, but its place and its scales.
    struct Lines
    {
        QwtScaleDiv x;
        QwtScaleDiv y;
        QPen majorPen;
        QPen minorPen;
        bool hasX;
        bool hasXMin;
        bool hasY;
        bool hasYMin;
    };

    static bool isSame(const Lines& one, const Lines& other);
    Lines lines() const;
    bool canBeKept(const CanvasPlace& newPlace, const QwtScaleMap& xMap,
                   const QwtScaleMap& yMap) const;
    void makePicture(const QRectF& canvasRect) const;

    // Drawing changes nothing that can be seen.
    mutable CanvasPlace place;
    mutable QwtScaleMap shownX;
    mutable QwtScaleMap shownY;
    mutable Lines shownLines;
    mutable QImage picture;
    mutable int made = 0;
};
