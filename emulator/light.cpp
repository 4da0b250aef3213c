#include "emulator/light.h"

#include "emulator/disturbance.h"

#include <cmath>

namespace emulator {

namespace {

/// Corner of the fluctuation's spectrum.
constexpr double cornerHz = 20.0;
constexpr double dipDepth = 0.3;
constexpr double leastInterruptionSeconds = 0.1;
constexpr double greatestInterruptionSeconds = 5.0;
constexpr int eventDrawsPerSecond = 100;
constexpr double secondsPerHour = 3600.0;

double smoothing()
{
    static const double share = lowPassSmoothing(cornerHz);
    return share;
}

} // namespace

Light::Light(const BeamPreset& preset, double intensityMv, quint64 seed)
    : noise(seed)
    , fullIntensityMv(intensityMv)
    , driveShare(preset.intensityRms * std::sqrt(smoothing() * (2.0 - smoothing())))
    , blocksPerHour(preset.blocksPerHour)
    , dipsPerHour(preset.dipsPerHour)
{}

double Light::nextMv()
{
    fluctuate();
    passOrInterrupt();
    return fullIntensityMv * passing * (1.0 + fluctuation);
}

void Light::fluctuate()
{
    constexpr double sqrt3 = 1.73205080756887729353;
    const double drive = sqrt3 * (2.0 * noise.uniform() - 1.0);
    fluctuation += driveShare * drive - smoothing() * fluctuation;
}

/// Ends an interruption that is over. A hundred times a second one can begin.
void Light::passOrInterrupt()
{
    if (stepsOfInterruption > 0 && --stepsOfInterruption == 0)
        passing = 1.0;
    if (stepsToEventDraw > 0) {
        --stepsToEventDraw;
        return;
    }
    stepsToEventDraw = beamStepsPerSecond / eventDrawsPerSecond - 1;
    if (stepsOfInterruption == 0)
        passing = interruption();
}

/// Draws whether the beam is blocked or weakened from now on; the share that passes.
double Light::interruption()
{
    constexpr double drawsPerHour = secondsPerHour * eventDrawsPerSecond;
    const double draw = noise.uniform() * drawsPerHour;
    if (draw >= blocksPerHour + dipsPerHour)
        return 1.0;
    const double seconds =
        leastInterruptionSeconds
        + (greatestInterruptionSeconds - leastInterruptionSeconds) * noise.uniform();
    stepsOfInterruption = static_cast<int>(seconds * beamStepsPerSecond);
    return draw < blocksPerHour ? 0.0 : 1.0 - dipDepth;
}

} // namespace emulator
