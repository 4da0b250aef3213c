#pragma once

#include "emulator/beampreset.h"
#include "emulator/noisesource.h"

#include <QtGlobal>

namespace emulator {

/// The light that arrives at the detectors of a stage: its power fluctuates, and now and then
/// something blocks or weakens the beam. The same preset and seed give the same values in the same
/// order.
class Light final
{
public:
    /// `fullIntensityMv` is the intensity signal of the undimmed, centred beam.
    Light(const BeamPreset& preset, double fullIntensityMv, quint64 seed);

    /// Intensity signal of a centred beam at the next step, mV.
    double nextMv();

private:
    void fluctuate();
    void passOrInterrupt();
    double interruption();

    NoiseSource noise;
    double fullIntensityMv;
    /// What a drive of variance 1 adds to the fluctuation.
    double driveShare;
    double blocksPerHour;
    double dipsPerHour;
    /// Share of the full intensity, around 0.
    double fluctuation = 0.0;
    /// Share of the light that is neither blocked nor weakened.
    double passing = 1.0;
    int stepsToEventDraw = 0;
    int stepsOfInterruption = 0;
};

} // namespace emulator
