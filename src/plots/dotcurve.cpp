#include "plots/dotcurve.h"

#include "plots/dotlayer.h"

DotCurve::DotCurve(const QString& title, DotLayer& layer)
    : QwtPlotCurve(title)
    , dotLayer(layer)
    , curveData(new CurveData)
{
    setData(curveData);
    setStyle(QwtPlotCurve::Dots);
}

void DotCurve::drawSeries(QPainter* painter, const QwtScaleMap& xMap, const QwtScaleMap& yMap,
                          const QRectF& canvasRect, int from, int to) const
{
    const bool isWhole = from == 0 && to < 0;
    if (isWhole && dotLayer.standsInFor(*this, *painter))
        return;
    QwtPlotCurve::drawSeries(painter, xMap, yMap, canvasRect, from, to);
}
