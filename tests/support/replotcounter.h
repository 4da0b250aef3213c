#pragma once

#include <qwt_plot_item.h>

/// Counts how often a plot is replotted. It is an item of the plot that shows nothing and leaves it
/// when it is destroyed.
class ReplotCounter final : public QwtPlotItem
{
public:
    explicit ReplotCounter(QwtPlot& plot);

    /// Replots since construction.
    int count = 0;

    void updateScaleDiv(const QwtScaleDiv&, const QwtScaleDiv&) override { ++count; }
    void draw(QPainter*, const QwtScaleMap&, const QwtScaleMap&, const QRectF&) const override {}
};
