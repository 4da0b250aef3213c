#pragma once

#include <QPointF>
#include <QRectF>
#include <qwt_series_data.h>

/// The samples of one curve, which owns this object. Appending costs the same at any length, up to
/// `longRun` samples. The bounding rectangle is computed at the first query and does not follow
/// points appended later: every axis that shows such a curve has an explicit scale. GUI thread
/// only.
class CurveData final : public QwtArraySeriesData<QPointF>
{
public:
    /// The most samples of a run that is counted, and some more.
    static constexpr int longRun = 1 << 20;

    QRectF boundingRect() const override;

    void append(const QPointF& point)
    {
        if (d_samples.size() == fewSamples)
            d_samples.reserve(longRun);
        d_samples.append(point);
    }
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
    /// A curve that grows beyond this gets room for a long run at once, which the system gives it
    /// page by page. Room that doubles would let one tick copy the points of all systems.
    static constexpr int fewSamples = 4096;

    static quint64 nextGeneration();

    quint64 currentGeneration = nextGeneration();
};
