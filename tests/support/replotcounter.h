#pragma once

#include <QObject>
#include <qwt_plot_item.h>

class IncrementalPlot;

/// Counts how often a plot is replotted, with its scales or without. It is an item of the plot that
/// shows nothing and leaves it when it is destroyed.
class ReplotCounter final : public QwtPlotItem
{
public:
    explicit ReplotCounter(IncrementalPlot& plot);

    /// Replots since construction.
    int count = 0;

    void draw(QPainter*, const QwtScaleMap&, const QwtScaleMap&, const QRectF&) const override {}

private:
    /// Ends the connection to the plot.
    QObject context;
};
