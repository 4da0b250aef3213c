#pragma once

#include "plots/scrollzoomer.h"

/// What limits a rubber band on the canvas, in pixels. An empty rectangle limits nothing.
struct BandLimits
{
    /// The canvas's contents, in canvas coordinates.
    QRect canvas;
    /// The contents of a needed scroll bar, in the bar's own coordinates.
    QRect hScrollBar;
    QRect vScrollBar;
};

/// The point next to `pos` that the rubber band may reach.
QPoint limitBand(const QPoint& pos, const BandLimits& limits);

/// The zoomer of the live plots. The user can only zoom in. While the plot is zoomed, the y scale
/// keeps its width, and the rubber band stops at the scroll bars.
class Zoomer final : public ScrollZoomer
{
    Q_OBJECT

public:
    explicit Zoomer(QWidget* canvas);

    /// The value whose label sets the width of the zoomed y scale, in plot units.
    void setLabelValue(double value) { labelValue = value; }

protected:
    void move(const QPoint& pos) override;
    void rescale() override;

private:
    double zoomedScaleExtent() const;

    double labelValue = 5.0;
};
