#include "window/statisticssums.h"

#include <cmath>

namespace {

/// Reach of the cross in radii of the circle.
constexpr double crossReach = 1.3;
constexpr double restingRadius = 0.5;
constexpr double restingReach = 0.75;

QPainterPath crossWithCircle(const QPointF& centre, double radius, double reach)
{
    QPainterPath path;
    path.addEllipse(centre.x() - radius, centre.y() - radius, 2.0 * radius, 2.0 * radius);
    path.addRect(centre.x() - reach, centre.y(), 2.0 * reach, 0.0);
    path.addRect(centre.x(), centre.y() - reach, 0.0, 2.0 * reach);
    return path;
}

} // namespace

QPointF StageSums::add(const QPointF& sample, int count)
{
    x += sample.x();
    y += sample.y();
    const QPointF mean(x / count, y / count);
    const double dx = mean.x() - sample.x();
    const double dy = mean.y() - sample.y();
    squares += dx * dx + dy * dy;
    return mean;
}

double StageSums::rms(int count) const
{
    return std::sqrt(squares / count);
}

QString statisticsText(const QPointF& mean, double rms, int count, const QString& unit)
{
    const QString unitText = QStringLiteral(" [") + unit + QLatin1Char(']');
    return QStringLiteral("\nx=") + QString::number(mean.x(), 'f', 3) + unitText
           + QStringLiteral("\ny=") + QString::number(mean.y(), 'f', 3) + unitText
           + QStringLiteral("\n#samples=") + QString::number(count) + QStringLiteral("\nRMS=")
           + QString::number(rms, 'f', 4) + unitText;
}

QString emptyStatisticsText()
{
    return QStringLiteral("\nx=\ny=\n#samples= 0\nRMS=");
}

QPainterPath targetCrossShape(const QPointF& centre, double rms)
{
    return crossWithCircle(centre, rms, crossReach * rms);
}

QPainterPath restingCrossShape()
{
    return crossWithCircle(QPointF(0.0, 0.0), restingRadius, restingReach);
}
