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

/// How finely a time plot tells the time of a sample. Whole seconds are cut, not rounded.
enum class TimeSteps { Milliseconds, WholeSeconds };

/// Seconds between a sweep's origin and a sample. A sample from before the origin lies enormously
/// far behind it, which makes the sweep begin anew.
inline double secondsSince(quint64 originMs, quint64 timeMs,
                           TimeSteps steps = TimeSteps::Milliseconds)
{
    const quint64 passedMs = timeMs - originMs;
    return steps == TimeSteps::WholeSeconds ? double(passedMs / 1000) : double(passedMs) / 1000.0;
}

/// Picks the samples that a time plot takes: the first one, and then every n-th.
class Decimation final
{
public:
    explicit Decimation(int everySamples)
        : every(everySamples)
        , counter(everySamples - 1)
    {}

    /// Whether the next sample is plotted.
    bool takes()
    {
        if (++counter < every)
            return false;
        counter = 0;
        return true;
    }

private:
    int every;
    int counter;
};
