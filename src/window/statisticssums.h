#pragma once

#include <QPainterPath>
#include <QPointF>
#include <QString>

#include <array>

/// Running sums of one stage over a run.
struct StageSums
{
    double x = 0.0;
    double y = 0.0;
    /// Sum of the squared distances of each sample from the mean at that sample's time.
    double squares = 0.0;

    /// Adds sample number `count` and returns the mean that includes it. The distance is taken
    /// from this running mean and not from the final one: that keeps the calculation to one pass
    /// without stored samples, and lets early samples count by the mean of their moment.
    QPointF add(const QPointF& sample, int count);
    /// Root of the mean squared radial distance.
    double rms(int count) const;
};

/// What a stage shows of a run.
struct StageFigures
{
    QPointF mean;
    double rms = 0.0;
};

/// The sums of both stages of one connection.
using StatisticsSums = std::array<StageSums, 2>;

/// What the corner of the pointing plot shows.
QString statisticsText(const QPointF& mean, double rms, int count, const QString& unit);
/// The same before the first sample.
QString emptyStatisticsText();

/// Cross and circle of radius `rms` around the mean.
QPainterPath targetCrossShape(const QPointF& centre, double rms);
/// The cross before the first sample.
QPainterPath restingCrossShape();
