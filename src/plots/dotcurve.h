#pragma once

#include "plots/curvedata.h"

#include <qwt_plot_curve.h>

class DotLayer;

/// A curve of dots whose picture is kept in the layer of its plot. Where the layer can not stand in
/// for it, and for a part of its samples, the curve draws itself as any other does.
class DotCurve final : public QwtPlotCurve
{
public:
    /// The layer has to be there whenever the curve is drawn.
    DotCurve(const QString& title, DotLayer& layer);

    CurveData& samples() { return *curveData; }
    const CurveData& samples() const { return *curveData; }

    void drawSeries(QPainter* painter, const QwtScaleMap& xMap, const QwtScaleMap& yMap,
                    const QRectF& canvasRect, int from, int to) const override;

private:
    DotLayer& dotLayer;
    /// Owned by the curve as its data.
    CurveData* curveData;
};
