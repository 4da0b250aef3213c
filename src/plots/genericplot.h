#pragma once

#include "plots/incrementalplot.h"

class QRectF;
class QwtPlotCanvas;
class Zoomer;

/// One of the live plots of the monitoring window: a dotted grid, four equal axes over a symmetric
/// range at first, and a rubber-band zoomer.
class GenericPlot final : public IncrementalPlot
{
    Q_OBJECT

public:
    explicit GenericPlot(QWidget* parent);

    QSize sizeHint() const override;

    /// Back to the zoom base and to the full range on all four axes. Does not replot.
    void resetZoom();
    /// Attaches a dark grey line; a rectangle of no width or no height draws as one. The plot owns
    /// it for good.
    void addMidLine(const QString& title, const QRectF& line);

    double maxRange() const { return rangeMax; }
    double minRange() const { return rangeMin; }

public slots:
    /// Data are coming in: the canvas paints straight through, without a backing store.
    void start();
    /// The picture stands still: the canvas keeps a backing store.
    void stop();
    /// Empties the curve `index`, which must exist, or all curves for -1.
    void clear(int index);
    void clear();
    /// Adds the two mid-lines over the present range.
    void drawCrossHairs();
    /// Neither the mouse nor the keyboard zooms any more.
    void disableZoomer();
    /// Hides the position tracker. The zoom stack stays as it is, whatever the name says.
    void zeroZoomStack();
    /// Sets the range of all four axes in plot units, makes it the zoom base and adds mid-lines for
    /// it. Earlier mid-lines stay.
    void setRange(double max, double min);

signals:
    /// All axes have a new range, and scales for it.
    void rangeChanged();

private:
    void attachGrid();
    void applyRange();
    QwtPlotCanvas& plotCanvas();

    double rangeMax = 5.0;
    double rangeMin = -5.0;
    /// Owned by the canvas.
    Zoomer* zoomer;
};
