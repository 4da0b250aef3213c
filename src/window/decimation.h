#pragma once

#include <QtGlobal>

#include <cmath>

/// Every how many samples a time plot takes one, so that it gets about one point per pixel column
/// of its sweep; at least 1.
inline int plotDecimation(int rateHz, double timeWindowMs, int plotWidthPx)
{
    const double samplesPerSweep = rateHz * (timeWindowMs / 1000.0);
    const int decimation = int(std::floor(samplesPerSweep / plotWidthPx));
    return decimation < 1 ? 1 : decimation;
}

/// Seconds between a sweep's origin and a sample. A sample from before the origin lies enormously
/// far behind it, which makes the sweep begin anew.
inline double secondsSince(quint64 originMs, quint64 timeMs)
{
    return double(timeMs - originMs) / 1000.0;
}
