#pragma once

#include "plots/changedarea.h"

#include <QColor>
#include <QPointF>
#include <QSize>
#include <qwt_plot.h>

#include <memory>
#include <vector>

class CurveData;
class DotCurve;
class DotLayer;
class QwtPlotCanvas;
class QwtPlotCurve;

/// A plot of dot curves that are addressed by index and grow point by point. Appending paints
/// nothing: the owner calls `replotIfChanged()` when a batch of points is in. All axes are expected
/// to have explicit scales; curves stand on the lower and the left one. GUI thread only.
class IncrementalPlot : public QwtPlot
{
    Q_OBJECT

public:
    /// Samples that a curve holds at most while not all points are kept.
    static constexpr int maxPoints = 10;
    /// So many points that can not be seen are taken into the kept picture all the same, so that
    /// they do not fall due all at once when one can be seen again.
    static constexpr std::size_t mostUnpainted = 10000;

    explicit IncrementalPlot(QWidget* parent);
    ~IncrementalPlot() override;

    /// Inserts an empty curve at `index`, 0 to `curveCount()`; false for any other index.
    bool addCurve(int index);
    /// Appends `count` empty curves; false if `count` is negative.
    bool addCurves(int count);
    /// Takes the curve out of the index; those behind it move up. The curve item itself stays on
    /// the plot, so clear it first. False for an index that does not exist, true with nothing done
    /// for a negative one.
    bool removeCurve(int index);

    /// The colour that the curve takes on with its next appended point.
    void setCurveColor(const QColor& color, int index);
    /// The size in pixels that each curve's dots take on with its next appended point.
    void setSymbolSize(const QSize& size);

    /// Adds a point; an index without a curve is ignored. Nothing is repainted.
    void appendData(const int& index, const QPointF& point);
    /// `index` must exist.
    void clearCurve(int index);
    void clearAllCurves();
    /// False holds each curve to its newest `maxPoints` samples, and empties all curves first.
    void setKeepAllPoints(bool keep);

    /// As that of the library, which it hides; `replotIfChanged` draws the scales anew after it.
    void setAxisScale(int axis, double min, double max, double stepSize = 0.0);
    /// Replots if points, scales or items changed since the last replot: the canvas alone, unless
    /// scales did.
    /// Where nothing but points came, only the part of the canvas that they change is painted.
    void replotIfChanged();
    /// What is drawn with the points, such as a text, has changed.
    void setItemsChanged() { hasNewItems = true; }

    int curveCount() const { return int(curves.size()); }
    bool keepsAllPoints() const { return keepAllPoints; }
    const QwtPlotCurve& curve(int index) const;
    const CurveData& curveData(int index) const;
    QColor curveColor(int index) const { return curves.at(std::size_t(index)).color; }
    /// What the dots were painted to.
    const DotLayer& dotLayer() const { return *layer; }

    void drawItems(QPainter* painter, const QRectF& canvasRect,
                   const QwtScaleMap maps[axisCnt]) const override;

public slots:
    void replot() override;

signals:
    /// Emitted by every replot that was asked for, of the canvas alone, too.
    void replotted();

protected:
    /// For changes that `replotIfChanged` does not see by itself.
    void setChanged() { hasNewScales = true; }
    QwtPlotCanvas& plotCanvas();

private:
    struct IndexedCurve
    {
        /// Owned by the plot as an attached item.
        DotCurve* item;
        /// Those of the item.
        CurveData* samples;
        QColor color;
        /// Whether colour or size may have changed since the last point.
        bool mayLookOld;
    };

    bool hasCurve(int index) const { return index >= 0 && index < curveCount(); }
    void updateSymbol(IndexedCurve& curve);
    void replotCanvas();
    void replotPoints();
    void noteReplot();

    std::unique_ptr<DotLayer> layer;
    std::vector<IndexedCurve> curves;
    bool keepAllPoints = false;
    bool hasNewItems = false;
    bool hasNewScales = false;
    /// Since the last replot.
    std::size_t newPoints = 0;
    ChangedArea changedArea;
    /// Points of replots that painted nothing, since none of them can be seen.
    std::size_t unpaintedPoints = 0;
    QSize symbolSize = QSize(2, 2);
};
