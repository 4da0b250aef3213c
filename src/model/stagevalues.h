#pragma once

#include "model/measuresample.h"

#include <QPointF>

#include <array>
#include <cstddef>

/// The values of one stage in a sample, in millivolts.
struct StageValues
{
    int x = 0;
    int y = 0;
    unsigned intensity = 0;
    int rx = 0;
    int ry = 0;
};

/// Positions of stage 1 and 2, in the units that the stages show.
using StagePositions = std::array<QPointF, 2>;

/// `stageIndex` is 0 or 1.
inline StageValues stageValues(const MeasureSample& sample, std::size_t stageIndex)
{
    if (stageIndex == 0)
        return {sample.x1, sample.y1, sample.intensity1, sample.rx1, sample.ry1};
    return {sample.x2, sample.y2, sample.intensity2, sample.rx2, sample.ry2};
}
