#pragma once

#include "plots/incrementalplot.h"

class QRectF;
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
    /// Attaches a dark grey line, given as a rectangle of no width or of no height. The plot owns
    /// the line and keeps it until the plot is deleted.
    void addMidLine(const QString& title, const QRectF& line);

    double maxRange() const { return rangeMax; }
    double minRange() const { return rangeMin; }

public slots:
    /// For the time of a measurement: the canvas keeps no backing store, which would be made anew
    /// as a whole with every batch of points.
    void start();
    /// For the time without new points: the canvas keeps a backing store.
    void stop();
    /// Empties the curve `index`, which must exist, or all curves for -1.
    void clear(int index);
    void clear();
    /// Adds the two mid-lines over the present range.
    void drawCrossHairs();
    /// From now on the user can not zoom, neither by mouse nor by keyboard.
    void disableZoomer();
    /// Hides the position tracker. In spite of its name it does not change the zoom stack.
    void zeroZoomStack();
    /// Sets the range of all four axes in plot units, makes it the zoom base and adds mid-lines for
    /// it. Earlier mid-lines stay.
    void setRange(double max, double min);

signals:
    /// Emitted by `setRange` when all axes have their new scales.
    void rangeChanged();

private:
    void attachGrid();
    void applyRange();

    double rangeMax = 5.0;
    double rangeMin = -5.0;
    /// Owned by the canvas.
    Zoomer* zoomer = nullptr;
};
