#include "plots/curvedata.h"

QRectF CurveData::boundingRect() const
{
    if (d_boundingRect.width() < 0.0)
        d_boundingRect = qwtBoundingRect(*this);
    return d_boundingRect;
}

void CurveData::removeOldest()
{
    d_samples.removeFirst();
    currentGeneration = nextGeneration();
}

void CurveData::clear()
{
    // Assigning an empty vector frees the memory; clear() and resize() may keep it.
    d_samples = QVector<QPointF>();
    d_boundingRect = QRectF(0.0, 0.0, -1.0, -1.0);
    currentGeneration = nextGeneration();
}

quint64 CurveData::nextGeneration()
{
    static quint64 last = 0;
    return ++last;
}
