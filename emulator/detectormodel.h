#pragma once

namespace emulator {

/// Kind of the detector at the end of the beam path. The first two are general ones whose signal
/// is 50 mV per micrometre at the centre; the others have the signals of the types that the
/// application knows, so that the length it shows is where the beam is.
enum class DetectorKind {
    LateralEffect, ///< Linear over its active length.
    Quadrant,      ///< Four cells: the signal is the error function of the beam's place.
    FourQuadrant,  ///< "4QD": the error function, as a share of the present intensity.
    Psd,           ///< "PSD": 1.2 V per millimetre.
    Wid,           ///< "WID": 6.5 V per diameter of the spot.
    UvPsd4mm,      ///< "UV PSD (4mm)": 2.9 V per millimetre.
    UvPsd10mm,     ///< "UV PSD (10mm)": 1.1 V per millimetre.
};

/// Signal per micrometre at the centre of the two general kinds, at nominal sensitivity.
constexpr double signalMvPerMicrometre = 50.0;
/// Radius at 1/e² of the intensity of the beam on a `DetectorKind::Quadrant`. It also sets the full
/// signal, so that the slope at the centre is the one above.
constexpr double beamRadiusMicrometres = 160.0;
/// Half the active length of the two general kinds.
constexpr double activeHalfLengthMicrometres = 120.0;
/// Input range of the controller: a position signal is clipped to plus or minus this.
constexpr double positionRangeMv = 5000.0;
/// Input range of the controller's intensity signal, which is never negative.
constexpr double intensityRangeMv = 10000.0;

/// A detector of one kind under a spot of one size. What every step of the beam needs is computed
/// here once.
class DetectorModel final
{
public:
    /// `fullIntensityMv` is the intensity signal of the undimmed, centred beam at nominal
    /// sensitivity. The two general kinds have a spot of their own and do not use the diameter.
    DetectorModel(DetectorKind kind, double spotDiameterUm, double fullIntensityMv);

    /// Factor of all signals, 1 at nominal sensitivity.
    void setGain(double gain);
    double gain() const { return gainFactor; }
    double fullIntensityMv() const { return fullIntensity; }

    /// Position signal in mV, not yet clipped, of a beam `micrometres` off the centre while the
    /// intensity signal is `intensityMv`.
    double positionSignalMv(double micrometres, double intensityMv) const
    {
        return isLinear ? slopeMv * micrometres : quadrantSignalMv(micrometres, intensityMv);
    }
    /// Position signal per micrometre at the centre under the full intensity, mV.
    double centreSlopeMv() const { return slopeMv; }
    /// Half the active length.
    double halfLengthMicrometres() const { return activeHalfLength; }
    /// Fraction of the light that falls on the detector, along one axis, 0 to 1: a little less
    /// towards the edge, and none beyond it.
    double lightOnDetector(double micrometres) const;

private:
    double quadrantSignalMv(double micrometres, double intensityMv) const;

    double fullIntensity;
    bool isLinear = true;
    /// The error function scales a full signal of its own, not the intensity.
    bool hasFullSignal = false;
    double nominalSlopeMv = 0.0;
    double radius = 0.0;
    double activeHalfLength = 0.0;
    double edgeRadius = 0.0;
    double (*errorFunction)(double) = nullptr;
    double gainFactor = 1.0;
    double slopeMv = 0.0;
    double fullSignalMv = 0.0;
};

/// Clips a position signal to the input range.
double clippedToRange(double positionMv);

} // namespace emulator
