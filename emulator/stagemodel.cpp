#include "emulator/stagemodel.h"

#include "emulator/portablemath.h"

#include <algorithm>
#include <cmath>

namespace emulator {

namespace {

/// Long enough for the sampler's low pass to settle on the beam.
constexpr int settlingSteps = beamStepsPerSecond / 100;
/// Numbers of the random streams of a stage.
enum SeedStream : quint64 { XBeam, XNoise, YBeam, YNoise, LightNoise, CommonPlace };

/// How far the centre of a common detector is, along each axis, from where a beam meets its own
/// detector's centre: at most this, and this share of a small detector's half length.
constexpr double greatestCommonOffsetUm = 20.0;
constexpr double greatestCommonOffsetShare = 1.0 / 6.0;
// Shares of that greatest offset. A stage has one of its own, to which comes the shift of its
// group.
constexpr double leastOffsetOfStage = 0.65;
constexpr double greatestOffsetOfStage = 0.85;
constexpr double greatestShiftOfGroup = 0.15;

qint16 wholeMillivolts(double value, double least, double greatest)
{
    return static_cast<qint16>(std::lround(std::clamp(value, least, greatest)));
}

/// What counts: the setting by software, or the external input while that is 0.
int effectiveMv(int bySoftwareMv, int inputMv)
{
    return bySoftwareMv == 0 ? inputMv : bySoftwareMv;
}

/// Where the common detector of a group stands, -1 to 1 along each axis. The places of all groups
/// are spread evenly over the square, and those of neighbouring numbers lie far apart.
PerAxis placeOfGroup(int group)
{
    // The inverse of the number p that solves p³ = p + 1, and its square: multiples of this pair
    // keep clear of each other.
    constexpr PerAxis stride{0.75487766624669276, 0.56984029099805327};
    PerAxis place;
    for (std::size_t axis = 0; axis < place.size(); ++axis) {
        const double turns = stride[axis] * group;
        place[axis] = 2.0 * (turns - std::floor(turns)) - 1.0;
    }
    return place;
}

/// Where the common detector of a group is for a stage. No two stages agree on that, so that the
/// beams of a group do not lie on each other; and no two groups, so that a beam that is led to one
/// detector misses the centre of the other.
PerAxis commonCentreUm(const DetectorModel& detector, quint64 seed, int group)
{
    NoiseSource places(derivedSeed(seed, CommonPlace));
    const PerAxis shift = placeOfGroup(group);
    const double greatestUm = std::min(
        greatestCommonOffsetUm, greatestCommonOffsetShare * detector.halfLengthMicrometres());
    PerAxis centre;
    for (std::size_t axis = 0; axis < centre.size(); ++axis) {
        const double side = places.uniform() < 0.5 ? -1.0 : 1.0;
        const double ofStage =
            leastOffsetOfStage + (greatestOffsetOfStage - leastOffsetOfStage) * places.uniform();
        centre[axis] = greatestUm * (side * ofStage + greatestShiftOfGroup * shift[axis]);
    }
    return centre;
}

} // namespace

StageModel::AxisState::AxisState(const BeamPreset& preset, BeamAxis axis, quint64 seed)
    : disturbance(preset, axis, derivedSeed(seed, axis == BeamAxis::Horizontal ? XBeam : YBeam))
    , detectorNoise(derivedSeed(seed, axis == BeamAxis::Horizontal ? XNoise : YNoise))
{}

StageModel::StageModel(const BeamPreset& preset, const StageOptions& options, double intensity,
                       quint64 seed, int group)
    : undisturbed{options.offsetXUm, options.offsetYUm}
    , whiteMicrometres(preset.whiteDensity * std::sqrt(beamStepsPerSecond / 2.0))
    , own(DetectorModel(options.detector, options.spotDiameterUm, intensity), PerAxis{})
    , light(preset, intensity, derivedSeed(seed, LightNoise))
    , axisStates{AxisState(preset, BeamAxis::Horizontal, seed),
                 AxisState(preset, BeamAxis::Vertical, seed)}
    , onCommonPath(options.multiplexed)
    , external(options.inputs)
{
    if (group > 0) {
        const DetectorModel detector(options.detector, options.spotDiameterUm, intensity);
        common.emplace(detector, commonCentreUm(detector, seed, group));
    }
    updateGain();
    updateTargets();
    advance(settlingSteps);
}

void StageModel::advance(int steps)
{
    for (int i = 0; i < steps; ++i)
        step();
}

void StageModel::restart()
{
    on = false;
    clearHold();
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
    return on && inRange && watched().hasEnoughLight();
}

void StageModel::setInputs(const ExternalInputs& moved)
{
    external = moved;
    updateGain();
    updateTargets();
}

void StageModel::setPFactor(int millivolts)
{
    pFactorMv = millivolts;
    updateGain();
}

void StageModel::setSensitivity(int millivolts)
{
    sensitivityMv = millivolts;
    updateGain();
}

void StageModel::setAdjustIn(Axis axis, int millivolts)
{
    adjustInMv[axis] = millivolts;
    clearHold();
}

void StageModel::setHold()
{
    for (const Axis axis : {X, Y})
        ofAxis(axis).heldMv = watched().sampledMv(axis);
    held = true;
    updateTargets();
    setOn(true);
}

void StageModel::clearHold()
{
    held = false;
    updateTargets();
}

void StageModel::driveActuator(Axis axis, int millivolts)
{
    ofAxis(axis).loop.park(StabilisationLoop::travelMicrometres * millivolts / actuatorMiddleMv);
}

const DetectorReading& StageModel::seen(View view) const
{
    return view == View::Common && common ? *common : own;
}

qint16 StageModel::positionMv(Axis axis, View view) const
{
    return wholeMillivolts(seen(view).sampledMv(axis), -positionRangeMv, positionRangeMv);
}

quint16 StageModel::intensityMv(View view) const
{
    return static_cast<quint16>(wholeMillivolts(seen(view).intensityMv(), 0.0, intensityRangeMv));
}

qint16 StageModel::actuatorMv(Axis axis) const
{
    const double share = ofAxis(axis).loop.correction() / StabilisationLoop::travelMicrometres;
    return wholeMillivolts(actuatorMiddleMv * (1.0 + share), 0.0, 2.0 * actuatorMiddleMv);
}

void StageModel::updateGain()
{
    const double gain = static_cast<double>(effectiveMv(sensitivityMv, external.sensitivityMv))
                        / nominalSensitivityMv;
    own.setGain(gain);
    if (common)
        common->setGain(gain);
    const double pFactorVolts = effectiveMv(pFactorMv, external.pFactorMv) * 0.001;
    for (AxisState& state : axisStates)
        state.loop.setBandwidth(StabilisationLoop::bandwidthPerVoltHz * pFactorVolts * gain);
}

void StageModel::updateTargets()
{
    const std::array<int, axes> inputMv{external.adjustInXMv, external.adjustInYMv};
    for (const Axis axis : {X, Y}) {
        AxisState& state = ofAxis(axis);
        state.targetMv = held ? state.heldMv : effectiveMv(adjustInMv[axis], inputMv[axis]);
    }
}

void StageModel::step()
{
    // Too little light stops the loops one step later.
    const bool loopsWork = on && watched().hasEnoughLight();
    const double arrivingMv = light.nextMv();
    PerAxis noise;
    for (const Axis axis : {X, Y}) {
        AxisState& state = ofAxis(axis);
        beam[axis] = state.disturbance.next() + undisturbed[axis] + state.loop.correction();
        noise[axis] = whiteMicrometres * state.detectorNoise.gaussian();
    }
    own.step(beam, noise, arrivingMv);
    if (common)
        common->step(beam, noise, arrivingMv);
    if (loopsWork)
        stepLoops();
}

void StageModel::stepLoops()
{
    // The bandwidth holds the gain already: the error is taken back to the beam's micrometres.
    for (const Axis axis : {X, Y})
        ofAxis(axis).loop.step(watched().errorMicrometres(axis, ofAxis(axis).targetMv));
}

} // namespace emulator
