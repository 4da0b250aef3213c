#include "window/run.h"

void Run::clear()
{
    taken = 0;
    shown = 0;
    for (StageFigures& figures : stageFigures)
        figures.rms = 0.0;
}

void Run::add(StatisticsSums& sums, const StagePositions& positions)
{
    latestPositions = positions;
    for (std::size_t i = 0; i < sums.size(); ++i)
        stageFigures[i].mean = sums[i].add(positions[i], taken);
}

void Run::refresh(const StatisticsSums& sums, qint64 nowMs)
{
    for (std::size_t i = 0; i < sums.size(); ++i)
        stageFigures[i].rms = sums[i].rms(taken);
    textTimeMs = nowMs;
    shown = taken;
}
