#pragma once

#include "window/decimation.h"
#include "window/readoutaverage.h"

#include <cstddef>
#include <optional>

class LiveSystems;
class Recorder;

/// How a tick shows samples: in this, displayed systems and common detectors differ.
struct SampleManner
{
    /// Whether the time plots take about one point per pixel, or every sample.
    bool decimated = true;
    TimeSteps timeSteps = TimeSteps::Milliseconds;

    /// Whether the samples are read out.
    bool readOut = true;
    std::size_t averagedSamples = ReadoutAverage::usualLength;
    /// Of positions that are read out; unset, the detector says how many.
    std::optional<int> decimals;

    /// Whether the statistics are of volts, or of what the plots show.
    bool statisticsInVolts = false;
    /// Whether the first system begins new sweeps.
    bool sweeps = true;
    /// Whether the last system ends a counted run.
    bool endsRuns = true;
    /// Takes the samples of the systems that are recorded; null where none is.
    const Recorder* recorder = nullptr;
    /// Whether the samples tell the state of the stages.
    bool tellsState = true;
};

SampleManner mannerOfDisplayed(const LiveSystems& systems, const Recorder* recorder = nullptr);
/// Where systems are displayed, the sweeps, the runs and the readouts are theirs.
SampleManner mannerOfCommon(const LiveSystems& systems);
