#pragma once

#include <QPointF>
#include <QRectF>
#include <qwt_series_data.h>

/// The samples of one curve, which owns this object. Appending costs an amortised constant time.
/// The bounding rectangle is computed at the first query and does not follow points appended
/// later: every axis that shows such a curve has an explicit scale. GUI thread only.
class CurveData final : public QwtArraySeriesData<QPointF>
{
public:
    QRectF boundingRect() const override;

    void append(const QPointF& point) { d_samples.append(point); }
    /// The store must not be empty.
    void removeOldest();
    /// Removes all samples, gives their memory back and forgets the bounding rectangle.
    void clear();

    /// The oldest sample; valid until the store changes.
    const QPointF* first() const { return d_samples.constData(); }
    /// Stays the same while samples are appended only. No two stores ever share one, so that equal
    /// generations mean that the samples seen before still stand at their places.
    quint64 generation() const { return currentGeneration; }

private:
    static quint64 nextGeneration();

    quint64 currentGeneration = nextGeneration();
};
