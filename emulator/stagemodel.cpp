#include "emulator/stagemodel.h"

#include "emulator/portablemath.h"

#include <algorithm>
#include <cmath>

namespace emulator {

namespace {

constexpr double pi = 3.14159265358979323846;
/// Corner of the low pass in front of the sampler. It keeps the detector's noise above the
/// stream's rates out of the samples.
constexpr double samplerCornerHz = 200.0;
/// Corner of the intensity's noise.
constexpr double lightCornerHz = 20.0;
/// The loop does not work below this share of the full intensity.
constexpr double leastLightShare = 0.1;
constexpr double dipDepth = 0.3;
constexpr double leastInterruptionSeconds = 0.1;
constexpr double greatestInterruptionSeconds = 5.0;
constexpr int eventDrawsPerSecond = 100;
constexpr double secondsPerHour = 3600.0;
/// Numbers of the random streams of a stage.
enum SeedStream : quint64 { XBeam, XNoise, YBeam, YNoise, Light };

double smoothingFor(double cornerHz)
{
    return 1.0 - portable::exponential(-2.0 * pi * cornerHz / beamStepsPerSecond);
}

double samplerSmoothing()
{
    static const double smoothing = smoothingFor(samplerCornerHz);
    return smoothing;
}

double lightSmoothing()
{
    static const double smoothing = smoothingFor(lightCornerHz);
    return smoothing;
}

qint16 wholeMillivolts(double value, double least, double greatest)
{
    return static_cast<qint16>(std::lround(std::clamp(value, least, greatest)));
}

} // namespace

StageModel::AxisState::AxisState(const BeamPreset& preset, BeamAxis axis, quint64 seed)
    : disturbance(preset, axis, derivedSeed(seed, axis == BeamAxis::Horizontal ? XBeam : YBeam))
    , detectorNoise(derivedSeed(seed, axis == BeamAxis::Horizontal ? XNoise : YNoise))
{}

StageModel::StageModel(const BeamPreset& disturbances, DetectorKind kind, double intensity,
                       quint64 seed)
    : preset(disturbances)
    , detector(kind)
    , fullIntensityMv(intensity)
    , whiteMicrometres(preset.whiteDensity * std::sqrt(beamStepsPerSecond / 2.0))
    , lightNoise(derivedSeed(seed, Light))
    , axisStates{AxisState(preset, BeamAxis::Horizontal, seed),
                 AxisState(preset, BeamAxis::Vertical, seed)}
{
    updateBandwidth();
    // Long enough for the sampler's low pass to settle on the beam.
    advance(beamStepsPerSecond / eventDrawsPerSecond);
}

void StageModel::advance(int steps)
{
    for (int i = 0; i < steps; ++i)
        step();
}

void StageModel::restart()
{
    on = false;
    held = false;
    for (AxisState& state : axisStates)
        state.loop.park(0.0);
}

void StageModel::setOn(bool switchOn)
{
    if (on == switchOn)
        return;
    on = switchOn;
    // A stage that is switched on continues from the present places of its actuators. When it is
    // switched off, the actuators go back to the middle, and the beam to its undisturbed path.
    for (AxisState& state : axisStates)
        state.loop.park(on ? state.loop.correction() : 0.0);
}

bool StageModel::isActive() const
{
    const bool inRange = std::none_of(axisStates.begin(), axisStates.end(),
                                      [](const auto& state) { return state.loop.atEndOfTravel(); });
    return on && inRange && enoughLight();
}

void StageModel::setPFactor(int millivolts)
{
    pFactorMv = millivolts;
    updateBandwidth();
}

void StageModel::setSensitivity(int millivolts)
{
    sensitivityMv = millivolts;
    updateBandwidth();
}

void StageModel::setAdjustIn(Axis axis, int millivolts)
{
    adjustInMv[axis] = millivolts;
}

void StageModel::setHold()
{
    for (AxisState& state : axisStates)
        state.heldMv = state.sampledMv;
    held = true;
}

void StageModel::driveActuator(Axis axis, int millivolts)
{
    ofAxis(axis).loop.park(StabilisationLoop::travelMicrometres * millivolts / actuatorMiddleMv);
}

qint16 StageModel::positionMv(Axis axis) const
{
    return wholeMillivolts(ofAxis(axis).sampledMv, -positionRangeMv, positionRangeMv);
}

quint16 StageModel::intensityMv() const
{
    return static_cast<quint16>(wholeMillivolts(lightMv * gain(), 0.0, intensityRangeMv));
}

qint16 StageModel::actuatorMv(Axis axis) const
{
    const double share = ofAxis(axis).loop.correction() / StabilisationLoop::travelMicrometres;
    return wholeMillivolts(actuatorMiddleMv * (1.0 + share), 0.0, 2.0 * actuatorMiddleMv);
}

double StageModel::gain() const
{
    return sensitivityMv == 0 ? 1.0 : static_cast<double>(sensitivityMv) / nominalSensitivityMv;
}

void StageModel::updateBandwidth()
{
    const double pFactorVolts = (pFactorMv == 0 ? nominalPFactorMv : pFactorMv) * 0.001;
    for (AxisState& state : axisStates)
        state.loop.setBandwidth(StabilisationLoop::bandwidthPerVoltHz * pFactorVolts * gain());
}

void StageModel::step()
{
    stepLight();
    const double light = lightPassing;
    stepAxis(X, light);
    stepAxis(Y, light);
    lightMv = fullIntensityMv * lightPassing * (1.0 + lightFluctuation)
              * lightOnDetector(ofAxis(X).beam) * lightOnDetector(ofAxis(Y).beam);
}

void StageModel::stepAxis(Axis axis, double light)
{
    AxisState& state = ofAxis(axis);
    state.beam = state.disturbance.next() + state.loop.correction();
    const double noise = whiteMicrometres * state.detectorNoise.gaussian();
    // The controller divides by the intensity, so that a weaker beam shows no smaller signal;
    // without light nothing but noise is left.
    const double seen = light > 0.0 ? state.beam : 0.0;
    const double signal = positionSignalMv(detector, seen, gain()) + centreSlopeMv(gain()) * noise;
    state.signalMv = clippedToRange(signal);
    state.sampledMv += samplerSmoothing() * (state.signalMv - state.sampledMv);
    if (!on || !enoughLight())
        return;
    const double targetMv = held ? state.heldMv : adjustInMv[axis];
    // The bandwidth holds the gain already: the error is taken back to the beam's micrometres.
    state.loop.step((targetMv - state.signalMv) / centreSlopeMv(gain()));
}

void StageModel::stepLight()
{
    constexpr double sqrt3 = 1.73205080756887729353;
    const double smoothing = lightSmoothing();
    const double drive = sqrt3 * (2.0 * lightNoise.uniform() - 1.0);
    const double driveGain = preset.intensityRms * std::sqrt(smoothing * (2.0 - smoothing));
    lightFluctuation += driveGain * drive - smoothing * lightFluctuation;

    if (stepsOfInterruption > 0 && --stepsOfInterruption == 0)
        lightPassing = 1.0;
    if (stepsToEventDraw > 0) {
        --stepsToEventDraw;
        return;
    }
    stepsToEventDraw = beamStepsPerSecond / eventDrawsPerSecond - 1;
    if (stepsOfInterruption == 0)
        lightPassing = interruption();
}

/// Draws whether the beam is blocked or weakened from now on; the share that passes.
double StageModel::interruption()
{
    constexpr double drawsPerHour = secondsPerHour * eventDrawsPerSecond;
    const double draw = lightNoise.uniform() * drawsPerHour;
    if (draw >= preset.blocksPerHour + preset.dipsPerHour)
        return 1.0;
    const double seconds =
        leastInterruptionSeconds
        + (greatestInterruptionSeconds - leastInterruptionSeconds) * lightNoise.uniform();
    stepsOfInterruption = static_cast<int>(seconds * beamStepsPerSecond);
    return draw < preset.blocksPerHour ? 0.0 : 1.0 - dipDepth;
}

bool StageModel::enoughLight() const
{
    return lightMv >= leastLightShare * fullIntensityMv;
}

} // namespace emulator
