#include "emulator/disturbance.h"

#include "emulator/portablemath.h"

#include <cmath>

namespace emulator {

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr double secondsPerHour = 3600.0;
constexpr double secondsPerDay = 24.0 * secondsPerHour;
/// Table tops sag and mounts tilt under weight: the vertical drifts more.
constexpr double verticalDriftFactor = 3.0;

constexpr double airSlope = 1.2;
constexpr double airBandLowHz = 0.1;
constexpr double airBandHighHz = 50.0;
// Corners a little outside the band keep the slope constant up to both ends of the band.
constexpr double airCornerLowHz = 0.05;
constexpr double airCornerHighHz = 100.0;

constexpr double leastStep = 2.0;
constexpr double greatestStep = 10.0;
constexpr double mainsHz = 50.0;

struct Line
{
    double hz;
    double quality;
};

constexpr std::array<Line, 3> mountLines{{{12.0, 10.0}, {24.0, 20.0}, {37.0, 30.0}}};
constexpr std::array<Line, 5> acousticLines{
    {{85.0, 30.0}, {140.0, 40.0}, {210.0, 50.0}, {330.0, 65.0}, {480.0, 80.0}}};
static_assert(mountLines.size() + acousticLines.size() == VibrationLines::lines);

double airCornerHz(std::size_t index)
{
    const double span = portable::logarithm(airCornerHighHz / airCornerLowHz);
    return airCornerLowHz
           * portable::exponential(span * static_cast<double>(index) / (AirMotion::corners - 1));
}

/// Share of the power of a first-order low pass that lies in the air's band and passes the low
/// pass at its end, integrated over the logarithm of the frequency.
double shareInBand(double cornerHz)
{
    constexpr int intervals = 2000;
    const double span = portable::logarithm(airBandHighHz / airBandLowHz);
    double sum = 0.0;
    for (int i = 0; i < intervals; ++i) {
        const double hz = airBandLowHz * portable::exponential(span * (i + 0.5) / intervals);
        const double ratio = hz / airBandHighHz;
        const double bandEnd = 1.0 / (1.0 + ratio * ratio * ratio * ratio);
        sum += hz * cornerHz / (hz * hz + cornerHz * cornerHz) * bandEnd;
    }
    return sum * span / intervals * 2.0 / pi;
}

/// Variances of the low passes for a root mean square of 1 in the band.
std::array<double, AirMotion::corners> airVariances()
{
    std::array<double, AirMotion::corners> variances{};
    double inBand = 0.0;
    for (std::size_t i = 0; i < variances.size(); ++i) {
        variances[i] =
            portable::exponential((1.0 - airSlope) * portable::logarithm(airCornerHz(i)));
        inBand += variances[i] * shareInBand(airCornerHz(i));
    }
    for (double& variance : variances)
        variance /= inBand;
    return variances;
}

} // namespace

double lowPassSmoothing(double cornerHz)
{
    return 1.0 - portable::exponential(-2.0 * pi * cornerHz / beamStepsPerSecond);
}

LowPass::LowPass(double cornerHz, double start)
{
    const double angle = 2.0 * pi * cornerHz / beamStepsPerSecond;
    const double damping = portable::sine(angle) / std::sqrt(2.0);
    const double cosine = portable::cosine(angle);
    forward = 0.5 * (1.0 - cosine) / (1.0 + damping);
    feedback1 = -2.0 * cosine / (1.0 + damping);
    feedback2 = (1.0 - damping) / (1.0 + damping);
    delay1 = start * (1.0 - forward);
    delay2 = start * (forward - feedback2);
}

AirMotion::AirMotion(double rmsInBand, NoiseSource& noise)
    : bandEnd(airBandHighHz, drawStates(rmsInBand, noise))
{}

/// Sets the low passes to states of their steady motion. Returns the sum of these states.
double AirMotion::drawStates(double rmsInBand, NoiseSource& noise)
{
    static const std::array<double, corners> variances = airVariances();
    double sum = 0.0;
    for (std::size_t i = 0; i < corners; ++i) {
        const double sigma = rmsInBand * std::sqrt(variances[i]);
        pole[i] = portable::exponential(-2.0 * pi * airCornerHz(i) / beamStepsPerSecond);
        gain[i] = sigma * std::sqrt(1.0 - pole[i] * pole[i]);
        state[i] = sigma * noise.gaussian();
        sum += state[i];
    }
    return sum;
}

VibrationLines::VibrationLines(double mountsRms, double acousticsRms, NoiseSource& noise)
{
    for (std::size_t i = 0; i < lines; ++i) {
        const bool mount = i < mountLines.size();
        const Line& line = mount ? mountLines[i] : acousticLines[i - mountLines.size()];
        const double groupRms = mount ? mountsRms : acousticsRms;
        const auto groupSize =
            static_cast<double>(mount ? mountLines.size() : acousticLines.size());
        const double sigma = groupRms / std::sqrt(groupSize);
        const double radius =
            portable::exponential(-pi * line.hz / (line.quality * beamStepsPerSecond));
        const double square = radius * radius;
        feedback1[i] = 2.0 * radius * portable::cosine(2.0 * pi * line.hz / beamStepsPerSecond);
        feedback2[i] = -square;
        // Variance of a second-order autoregression, solved for the drive; and its correlation
        // over one step, so that the line starts in its steady motion.
        const double correlation = feedback1[i] / (1.0 + square);
        gain[i] = sigma
                  * std::sqrt((1.0 - square)
                              * ((1.0 + square) * (1.0 + square) - feedback1[i] * feedback1[i])
                              / (1.0 + square));
        last[i] = sigma * noise.gaussian();
        beforeLast[i] = correlation * last[i]
                        + sigma * std::sqrt(1.0 - correlation * correlation) * noise.gaussian();
    }
}

SlowDrift::SlowDrift(const BeamPreset& preset, BeamAxis axis, NoiseSource& noise)
    : stepsPerMove(preset.stepsPerHour / (secondsPerHour * movesPerSecond))
{
    const double factor = axis == BeamAxis::Vertical ? verticalDriftFactor : 1.0;
    walkPerMove = factor * preset.driftWalk / std::sqrt(secondsPerHour * movesPerSecond);
    dailyAmplitude = factor * preset.driftDaily;
    dailyPhase = 2.0 * pi * noise.uniform();
}

double SlowDrift::next(NoiseSource& noise)
{
    walked += walkPerMove * noise.gaussian();
    if (noise.uniform() < stepsPerMove) {
        const double size = leastStep + (greatestStep - leastStep) * noise.uniform();
        walked += noise.uniform() < 0.5 ? -size : size;
    }
    dailyPhase += 2.0 * pi / (secondsPerDay * movesPerSecond);
    return walked + dailyAmplitude * portable::sine(dailyPhase);
}

Disturbance::Disturbance(const BeamPreset& preset, BeamAxis axis, quint64 seed)
    : noise(seed)
    , air(preset.airRms, noise)
    , vibration(preset.mountsRms, preset.acousticsRms, noise)
    , drift(preset, axis, noise)
{
    for (std::size_t i = 0; i < mains.size(); ++i) {
        const double phase = 2.0 * pi * mainsHz * static_cast<double>(i) / beamStepsPerSecond;
        mains[i] = preset.mainsAmplitude * (portable::sine(phase) + portable::sine(2.0 * phase));
    }
}

double Disturbance::next()
{
    if (stepsToDrift == 0) {
        stepsToDrift = beamStepsPerSecond / SlowDrift::movesPerSecond;
        drifted = drift.next(noise);
    }
    --stepsToDrift;
    std::array<double, drivesPerStep> drives;
    noise.fillDrives(drives);
    const double hum = mains[static_cast<std::size_t>(mainsStep)];
    mainsStep = mainsStep + 1 < mainsPeriodSteps ? mainsStep + 1 : 0;
    return drifted + hum + air.next(drives.data())
           + vibration.next(drives.data() + AirMotion::corners);
}

} // namespace emulator
