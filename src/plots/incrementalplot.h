#pragma once

#include <QColor>
#include <QList>
#include <QPointF>
#include <QSize>
#include <qwt_plot.h>

class CurveData;
class QwtPlotCurve;

/// A plot of dot curves that are addressed by index and grow point by point. Appending paints
/// nothing: the owner calls `replot()` when a batch of points is in. All axes are expected to have
/// explicit scales. GUI thread only.
class IncrementalPlot : public QwtPlot
{
    Q_OBJECT

public:
    /// Samples that a curve holds at most while not all points are kept.
    static constexpr int maxPoints = 10;

    explicit IncrementalPlot(QWidget* parent);

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
    void setSymbolSize(const QSize& size) { symbolSize = size; }

    /// Adds a point; an index without a curve is ignored. Nothing is repainted.
    void appendData(const int& index, const QPointF& point);
    /// `index` must exist.
    void clearCurve(int index);
    void clearAllCurves();
    /// False holds each curve to its newest `maxPoints` samples, and empties all curves first.
    void setKeepAllPoints(bool keep);

    int curveCount() const { return curves.size(); }
    bool keepsAllPoints() const { return keepAllPoints; }
    const QwtPlotCurve& curve(int index) const { return *curves.at(index); }
    const CurveData& curveData(int index) const;
    QColor curveColor(int index) const { return colors.at(index); }

private:
    void updateSymbol(int index);

    /// Owned by the plot as attached items.
    QList<QwtPlotCurve*> curves;
    QList<QColor> colors;
    bool keepAllPoints = false;
    QSize symbolSize = QSize(2, 2);
};
