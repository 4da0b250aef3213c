#pragma once

#include <QPointF>
#include <QRectF>
#include <qwt_series_data.h>

/// The samples of one curve, which owns this object. Appending costs an amortised constant time.
/// The bounding rectangle is computed at the first query and does not follow points appended
/// later: every axis that shows such a curve has an explicit scale.
class CurveData final : public QwtArraySeriesData<QPointF>
{
public:
    QRectF boundingRect() const override;

    void append(const QPointF& point) { d_samples.append(point); }
    /// The store must not be empty.
    void removeOldest() { d_samples.removeFirst(); }
    /// Removes all samples, gives their memory back and forgets the bounding rectangle.
    void clear();
};
