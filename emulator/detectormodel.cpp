#include "emulator/detectormodel.h"

#include "emulator/portablemath.h"

#include <algorithm>
#include <cmath>

namespace emulator {

namespace {

constexpr double sqrt2 = 1.41421356237309504880;
/// Slope of the quadrant signal at the centre times the beam's radius: 2 * sqrt(2 / pi).
constexpr double quadrantSlope = 1.59576912160573071176;
/// Radius with which the light fades over the detector's edge: the spot of a lateral-effect
/// detector is focused much smaller than the active length.
constexpr double edgeRadiusMicrometres = 15.0;
constexpr double edgeWidths = 3.0;
/// Share of the light that the optics lose at the detector's edge.
constexpr double vignetting = 0.1;

} // namespace

double quadrantSignal(double position, double radius)
{
    return portable::errorFunction(sqrt2 * position / radius);
}

double positionSignalMv(DetectorKind kind, double micrometres, double gain)
{
    if (kind == DetectorKind::LateralEffect)
        return centreSlopeMv(gain) * micrometres;
    const double fullSignalMv = centreSlopeMv(gain) * beamRadiusMicrometres / quadrantSlope;
    return fullSignalMv * quadrantSignal(micrometres, beamRadiusMicrometres);
}

double clippedToRange(double positionMv)
{
    return std::clamp(positionMv, -positionRangeMv, positionRangeMv);
}

double lightOnDetector(double micrometres)
{
    const double place = micrometres / activeHalfLengthMicrometres;
    const double passing = std::max(0.0, 1.0 - vignetting * place * place);
    const double beyondEdge = std::fabs(micrometres) - activeHalfLengthMicrometres;
    if (beyondEdge < -edgeWidths * edgeRadiusMicrometres)
        return passing;
    return passing * 0.5
           * (1.0 - portable::errorFunction(sqrt2 * beyondEdge / edgeRadiusMicrometres));
}

} // namespace emulator
