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

enum class SignalShape {
    Linear,         ///< The signal is a straight line.
    Quadrant,       ///< The error function times a fixed full signal.
    IntensityShare, ///< The error function times the present intensity.
};

/// What differs from one kind to another. Figures per diameter are 0 where those per micrometre
/// count, and the other way round.
struct Figures
{
    DetectorKind kind;
    SignalShape shape;
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
    {DetectorKind::LateralEffect, SignalShape::Linear, signalMvPerMicrometre, 0.0,
     activeHalfLengthMicrometres, 0.0, edgeRadiusMicrometres, portable::errorFunction},
    {DetectorKind::Quadrant, SignalShape::Quadrant, signalMvPerMicrometre, 0.0,
     activeHalfLengthMicrometres, 0.0, edgeRadiusMicrometres, portable::errorFunction},
    {DetectorKind::FourQuadrant, SignalShape::IntensityShare, 0.0, 0.0, 0.0, 1.5, 0.0,
     portable::tabulatedErrorFunction},
    {DetectorKind::Psd, SignalShape::Linear, 1.2, 0.0, 4500.0, 0.0, 0.0,
     portable::tabulatedErrorFunction},
    {DetectorKind::Wid, SignalShape::Linear, 0.0, 6500.0, 0.0, 0.75, 0.0,
     portable::tabulatedErrorFunction},
    {DetectorKind::UvPsd4mm, SignalShape::Linear, 2.9, 0.0, 2000.0, 0.0, 0.0,
     portable::tabulatedErrorFunction},
    {DetectorKind::UvPsd10mm, SignalShape::Linear, 1.1, 0.0, 5000.0, 0.0, 0.0,
     portable::tabulatedErrorFunction},
};

const Figures& figuresOf(DetectorKind kind)
{
    return *std::find_if(std::begin(figures), std::end(figures),
                         [=](const Figures& entry) { return entry.kind == kind; });
}

} // namespace

DetectorModel::DetectorModel(DetectorKind kind, double spotDiameterUm, double fullIntensityMv)
    : fullIntensity(fullIntensityMv)
{
    const Figures& own = figuresOf(kind);
    isLinear = own.shape == SignalShape::Linear;
    radius = own.shape == SignalShape::Quadrant ? beamRadiusMicrometres : 0.5 * spotDiameterUm;
    nominalSlopeMv = own.shape == SignalShape::IntensityShare
                         ? quadrantSlope * fullIntensityMv / radius
                         : own.mvPerMicrometre + own.mvPerDiameter / spotDiameterUm;
    activeHalfLength = own.halfLengthMicrometres + own.halfLengthDiameters * spotDiameterUm;
    edgeRadius = own.edgeRadius > 0.0 ? own.edgeRadius : radius;
    hasFullSignal = own.shape == SignalShape::Quadrant;
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

double clippedToRange(double positionMv)
{
    return std::clamp(positionMv, -positionRangeMv, positionRangeMv);
}

} // namespace emulator
