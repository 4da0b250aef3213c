#include "plots/curvedata.h"

QRectF CurveData::boundingRect() const
{
    if (d_boundingRect.width() < 0.0)
        d_boundingRect = qwtBoundingRect(*this);
    return d_boundingRect;
}

void CurveData::clear()
{
    // An assigned empty vector is the one way that keeps no capacity, reserved or grown.
    d_samples = QVector<QPointF>();
    d_boundingRect = QRectF(0.0, 0.0, -1.0, -1.0);
}
