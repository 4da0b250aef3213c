#pragma once

#include "emulator/detectormodel.h"

#include <array>
#include <cstddef>

namespace emulator {

/// One value for each axis, x first.
using PerAxis = std::array<double, 2>;

/// What a controller reads from one detector in the beam's path, mV: the position signals, before
/// and behind the low pass in front of the sampler, and the intensity.
class DetectorReading final
{
public:
    /// `centreUm` is where the detector's centre is.
    DetectorReading(const DetectorModel& detector, const PerAxis& centreUm);

    /// See `DetectorModel::setGain`.
    void setGain(double gain) { model.setGain(gain); }

    /// Next step of a beam at `beamUm` whose intensity signal at the centre would be `arrivingMv`
    /// at nominal sensitivity. `noiseUm` is the noise of the position signals.
    void step(const PerAxis& beamUm, const PerAxis& noiseUm, double arrivingMv);

    /// Position signal, -5000 to 5000.
    double signalMv(std::size_t axis) const { return rawMv[axis]; }
    /// The same behind the low pass.
    double sampledMv(std::size_t axis) const { return lowPassedMv[axis]; }
    double intensityMv() const { return lightMv * model.gain(); }
    /// Whether there is enough light for a loop to work with, and a gain that shows it.
    bool hasEnoughLight() const;
    /// How far the beam is from where it would give the signal `targetMv`, micrometres, by the
    /// slope at the centre. The gain must not be 0.
    double errorMicrometres(std::size_t axis, double targetMv) const
    {
        return (targetMv - rawMv[axis]) / model.centreSlopeMv();
    }

private:
    DetectorModel model;
    PerAxis centre;
    PerAxis rawMv{};
    PerAxis lowPassedMv{};
    double lightMv = 0.0;
};

} // namespace emulator
