#pragma once

#include "plots/genericplot.h"
#include "support/windowfixture.h"

#include <QString>
#include <QStringList>

/// What the axes of the window's plots show, as "-5..5".
namespace axisranges {

inline QString range(const GenericPlot& plot, QwtPlot::Axis axis)
{
    const QwtInterval interval = plot.axisInterval(axis);
    return QStringLiteral("%1..%2").arg(interval.minValue()).arg(interval.maxValue());
}

/// Ranges of the position and intensity axes of stage 1 and 2.
inline QStringList valueRanges(const WindowFixture& fixture)
{
    return {range(fixture.positionPlot(1), QwtPlot::yLeft),
            range(fixture.positionPlot(2), QwtPlot::yLeft),
            range(fixture.intensityPlot(1), QwtPlot::yLeft),
            range(fixture.intensityPlot(2), QwtPlot::yLeft)};
}

/// Range of a stage's time axis; "differ" if its plots do not all have the same.
inline QString timeRange(const WindowFixture& fixture, int stage)
{
    const QString shown = range(fixture.positionPlot(stage), QwtPlot::xTop);
    const bool same = range(fixture.positionPlot(stage), QwtPlot::xBottom) == shown
                      && range(fixture.intensityPlot(stage), QwtPlot::xBottom) == shown;
    return same ? shown : QStringLiteral("differ");
}

} // namespace axisranges
