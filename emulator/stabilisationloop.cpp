#include "emulator/stabilisationloop.h"

#include "emulator/disturbance.h"
#include "emulator/portablemath.h"

#include <algorithm>

namespace emulator {

namespace {

constexpr double pi = 3.14159265358979323846;
/// Corner of the low pass as a multiple of the bandwidth. It moves with the bandwidth so that the
/// loop keeps its damping at every P-factor.
constexpr double cornerPerBandwidth = 0.9;

} // namespace

void StabilisationLoop::setBandwidth(double hz)
{
    const double bounded = std::clamp(hz, 0.0, greatestBandwidthHz);
    const double perStep = 2.0 * pi * bounded / beamStepsPerSecond;
    gain = perStep;
    smoothing = 1.0 - portable::exponential(-cornerPerBandwidth * perStep);
}

void StabilisationLoop::step(double errorMicrometres)
{
    smoothed += smoothing * (errorMicrometres - smoothed);
    position = std::clamp(position + gain * smoothed, -travelMicrometres, travelMicrometres);
}

void StabilisationLoop::park(double micrometres)
{
    smoothed = 0.0;
    position = std::clamp(micrometres, -travelMicrometres, travelMicrometres);
}

} // namespace emulator
