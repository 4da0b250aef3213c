#include "emulator/detectormodel.h"

#include "emulator/portablemath.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace emulator {

namespace {

constexpr double sqrt2 = 1.41421356237309504880;
/// Slope of the quadrant signal at the centre times the beam's radius: 2 * sqrt(2 / pi).
constexpr double quadrantSlope = 1.59576912160573071176;
/// Radius with which the light fades over the edge of the two general kinds: the spot on them is
/// focused much smaller than the active length.
constexpr double edgeRadiusMicrometres = 15.0;
constexpr double edgeWidths = 3.0;
/// Share of the light that the optics lose at the detector's edge.
constexpr double vignetting = 0.1;

enum class Law {
    Linear,         ///< The signal is a straight line.
    Quadrant,       ///< The error function times a fixed full signal.
    IntensityShare, ///< The error function times the present intensity.
};

/// What differs from one kind to another. Figures per diameter are 0 where those per micrometre
/// count, and the other way round.
struct Figures
{
    DetectorKind kind;
    Law law;
    double mvPerMicrometre;
    double mvPerDiameter;
    double halfLengthMicrometres;
    double halfLengthDiameters;
    /// 0: the radius of the spot.
    double edgeRadius;
    /// The general kinds keep the slower function, so that a seed goes on giving the same beam.
    double (*errorFunction)(double);
};

// The position sensitive types are 9, 4 and 10 mm long: their signals reach the end of the input
// range before the beam reaches their edges. Where diameters count, the optics fit the spot to the
// detector.
constexpr Figures figures[] = {
    {DetectorKind::LateralEffect, Law::Linear, signalMvPerMicrometre, 0.0,
     activeHalfLengthMicrometres, 0.0, edgeRadiusMicrometres, portable::errorFunction},
    {DetectorKind::Quadrant, Law::Quadrant, signalMvPerMicrometre, 0.0, activeHalfLengthMicrometres,
     0.0, edgeRadiusMicrometres, portable::errorFunction},
    {DetectorKind::FourQuadrant, Law::IntensityShare, 0.0, 0.0, 0.0, 1.5, 0.0,
     portable::tabulatedErrorFunction},
    {DetectorKind::Psd, Law::Linear, 1.2, 0.0, 4500.0, 0.0, 0.0, portable::tabulatedErrorFunction},
    {DetectorKind::Wid, Law::Linear, 0.0, 6500.0, 0.0, 0.75, 0.0, portable::tabulatedErrorFunction},
    {DetectorKind::UvPsd4mm, Law::Linear, 2.9, 0.0, 2000.0, 0.0, 0.0,
     portable::tabulatedErrorFunction},
    {DetectorKind::UvPsd10mm, Law::Linear, 1.1, 0.0, 5000.0, 0.0, 0.0,
     portable::tabulatedErrorFunction},
};

const Figures& figuresOf(DetectorKind kind)
{
    return *std::find_if(std::begin(figures), std::end(figures),
                         [=](const Figures& entry) { return entry.kind == kind; });
}

/// A detector of a general kind, whose spot and intensity are fixed.
DetectorModel generalDetector(DetectorKind kind)
{
    constexpr double anyIntensityMv = 1.0;
    return DetectorModel(kind, 2.0 * beamRadiusMicrometres, anyIntensityMv);
}

} // namespace

DetectorModel::DetectorModel(DetectorKind kind, double spotDiameterUm, double fullIntensityMv)
    : fullIntensity(fullIntensityMv)
{
    const Figures& own = figuresOf(kind);
    isLinear = own.law == Law::Linear;
    radius = own.law == Law::Quadrant ? beamRadiusMicrometres : 0.5 * spotDiameterUm;
    nominalSlopeMv = own.law == Law::IntensityShare
                         ? quadrantSlope * fullIntensityMv / radius
                         : own.mvPerMicrometre + own.mvPerDiameter / spotDiameterUm;
    activeHalfLength = own.halfLengthMicrometres + own.halfLengthDiameters * spotDiameterUm;
    edgeRadius = own.edgeRadius > 0.0 ? own.edgeRadius : radius;
    hasFullSignal = own.law == Law::Quadrant;
    errorFunction = own.errorFunction;
    setGain(1.0);
}

void DetectorModel::setGain(double gain)
{
    gainFactor = gain;
    slopeMv = nominalSlopeMv * gain;
    fullSignalMv = hasFullSignal ? slopeMv * radius / quadrantSlope : 0.0;
}

double DetectorModel::quadrantSignalMv(double micrometres, double intensityMv) const
{
    const double full = hasFullSignal ? fullSignalMv : intensityMv;
    return full * errorFunction(sqrt2 * micrometres / radius);
}

double DetectorModel::lightOnDetector(double micrometres) const
{
    const double place = micrometres / activeHalfLength;
    const double passing = std::max(0.0, 1.0 - vignetting * place * place);
    const double beyondEdge = std::fabs(micrometres) - activeHalfLength;
    if (beyondEdge < -edgeWidths * edgeRadius)
        return passing;
    return passing * 0.5 * (1.0 - errorFunction(sqrt2 * beyondEdge / edgeRadius));
}

double quadrantSignal(double position, double radius)
{
    return portable::errorFunction(sqrt2 * position / radius);
}

double positionSignalMv(DetectorKind kind, double micrometres, double gain)
{
    DetectorModel detector = generalDetector(kind);
    detector.setGain(gain);
    return detector.positionSignalMv(micrometres, 0.0);
}

double clippedToRange(double positionMv)
{
    return std::clamp(positionMv, -positionRangeMv, positionRangeMv);
}

double lightOnDetector(double micrometres)
{
    return generalDetector(DetectorKind::LateralEffect).lightOnDetector(micrometres);
}

} // namespace emulator
