#pragma once

namespace emulator {

/// Kind of the detector at the end of the beam path.
enum class DetectorKind {
    LateralEffect, ///< Linear over its active length.
    Quadrant       ///< Four cells: the signal is the error function of the beam's place.
};

/// Signal per micrometre at the detector's centre, at nominal sensitivity.
constexpr double signalMvPerMicrometre = 50.0;
/// Radius at 1/e² of the intensity of the beam on the detector. On a quadrant detector it also
/// sets the full signal, so that the slope at the centre is the one above.
constexpr double beamRadiusMicrometres = 160.0;
/// Half the active length of the detector.
constexpr double activeHalfLengthMicrometres = 120.0;
/// Input range of the controller: a position signal is clipped to plus or minus this.
constexpr double positionRangeMv = 5000.0;
/// Input range of the controller's intensity signal, which is never negative.
constexpr double intensityRangeMv = 10000.0;

/// Normalised signal of a quadrant detector, -1 to 1, for a Gaussian beam whose centre is
/// `position` off the cells' centre and whose 1/e² radius is `radius`, both in one unit.
double quadrantSignal(double position, double radius);

/// Position signal in mV, not yet clipped, of a beam `micrometres` off the centre, at a `gain` of
/// 1 for nominal sensitivity.
double positionSignalMv(DetectorKind kind, double micrometres, double gain);

/// Signal per micrometre at the centre, mV.
inline double centreSlopeMv(double gain)
{
    return signalMvPerMicrometre * gain;
}

/// Clips a position signal to the input range.
double clippedToRange(double positionMv);

/// Fraction of the light that falls on the detector, along one axis, 0 to 1: a little less towards
/// the edge, and none beyond it.
double lightOnDetector(double micrometres);

} // namespace emulator
