#include "emulator/detectorreading.h"

#include "emulator/disturbance.h"
#include "emulator/portablemath.h"

namespace emulator {

namespace {

/// The loop does not work below this share of the full intensity.
constexpr double leastLightShare = 0.1;
/// Corner of the low pass in front of the sampler. It keeps the detector's noise above the
/// stream's rates out of the samples.
constexpr double samplerCornerHz = 200.0;

double samplerSmoothing()
{
    static const double smoothing = lowPassSmoothing(samplerCornerHz);
    return smoothing;
}

} // namespace

DetectorReading::DetectorReading(const DetectorModel& detector, const PerAxis& centreUm)
    : model(detector)
    , centre(centreUm)
{}

void DetectorReading::step(const PerAxis& beamUm, const PerAxis& noiseUm, double arrivingMv)
{
    const PerAxis place{beamUm[0] - centre[0], beamUm[1] - centre[1]};
    lightMv = arrivingMv * model.lightOnDetector(place[0]) * model.lightOnDetector(place[1]);
    const double smoothing = samplerSmoothing();
    for (std::size_t axis = 0; axis < place.size(); ++axis) {
        // Without light nothing but noise is left.
        const double seen = arrivingMv > 0.0 ? place[axis] : 0.0;
        rawMv[axis] = clippedToRange(model.positionSignalMv(seen, intensityMv())
                                     + model.centreSlopeMv() * noiseUm[axis]);
        lowPassedMv[axis] += smoothing * (rawMv[axis] - lowPassedMv[axis]);
    }
}

bool DetectorReading::hasEnoughLight() const
{
    return lightMv >= leastLightShare * model.fullIntensityMv() && model.gain() > 0.0;
}

} // namespace emulator
