#pragma once

#include "emulator/beampreset.h"
#include "emulator/noisesource.h"

#include <array>

namespace emulator {

/// Steps of the emulated beam per second. All of the beam's time is counted in such steps.
constexpr int beamStepsPerSecond = 5000;

enum class BeamAxis { Horizontal, Vertical };

/// Share of the way to its input that a first-order low pass goes in one step.
double lowPassSmoothing(double cornerHz);

/// Second-order low pass without resonance.
class LowPass final
{
public:
    /// Starts in the state that a constant input of `start` leads to.
    LowPass(double cornerHz, double start);
    double next(double value)
    {
        // Transposed direct form.
        const double result = forward * value + delay1;
        delay1 = 2.0 * forward * value - feedback1 * result + delay2;
        delay2 = forward * value - feedback2 * result;
        return result;
    }

private:
    double forward = 0.0;
    double feedback1 = 0.0;
    double feedback2 = 0.0;
    double delay1 = 0.0;
    double delay2 = 0.0;
};

/// Motion of the air: a power spectrum of 1/f^b between 0.1 and 50 Hz. It is a sum of first-order
/// low passes of noise whose corners are spread evenly over the decades, and ends at 50 Hz by a
/// steeper low pass: without it, the rest above 50 Hz would be more than a loop can suppress.
class AirMotion final
{
public:
    static constexpr std::size_t corners = 7;

    AirMotion(double rmsInBand, NoiseSource& noise);
    /// Next value from `corners` drives of variance 1.
    double next(const double* drives)
    {
        double sum = 0.0;
        for (std::size_t i = 0; i < corners; ++i) {
            state[i] = pole[i] * state[i] + gain[i] * drives[i];
            sum += state[i];
        }
        return bandEnd.next(sum);
    }

private:
    double drawStates(double rmsInBand, NoiseSource& noise);

    std::array<double, corners> pole{};
    std::array<double, corners> gain{};
    std::array<double, corners> state{};
    LowPass bandEnd;
};

/// Lines of mounts, table and acoustics: resonators of two poles driven by noise.
class VibrationLines final
{
public:
    static constexpr std::size_t lines = 8;

    VibrationLines(double mountsRms, double acousticsRms, NoiseSource& noise);
    /// Next value from `lines` drives of variance 1.
    double next(const double* drives)
    {
        double sum = 0.0;
        for (std::size_t i = 0; i < lines; ++i) {
            const double value =
                feedback1[i] * last[i] + feedback2[i] * beforeLast[i] + gain[i] * drives[i];
            beforeLast[i] = last[i];
            last[i] = value;
            sum += value;
        }
        return sum;
    }

private:
    std::array<double, lines> feedback1{};
    std::array<double, lines> feedback2{};
    std::array<double, lines> gain{};
    std::array<double, lines> last{};
    std::array<double, lines> beforeLast{};
};

/// Drift over minutes to days, and the rare steps. Moves a hundred times a second.
class SlowDrift final
{
public:
    static constexpr int movesPerSecond = 100;

    SlowDrift(const BeamPreset& preset, BeamAxis axis, NoiseSource& noise);
    double next(NoiseSource& noise);

private:
    double walkPerMove = 0.0;
    double dailyAmplitude = 0.0;
    double dailyPhase = 0.0;
    double stepsPerMove = 0.0;
    double walked = 0.0;
};

/// Where one axis of the beam points when nothing holds it, microradians from its mean direction.
/// The same preset, axis and seed give the same values in the same order.
class Disturbance final
{
public:
    Disturbance(const BeamPreset& preset, BeamAxis axis, quint64 seed);

    /// Pointing at the next step.
    double next();

private:
    static constexpr int mainsPeriodSteps = beamStepsPerSecond / 50;
    static constexpr std::size_t drivesPerStep = 16;
    static_assert(AirMotion::corners + VibrationLines::lines <= drivesPerStep);

    NoiseSource noise;
    AirMotion air;
    VibrationLines vibration;
    SlowDrift drift;
    std::array<double, mainsPeriodSteps> mains{};
    double drifted = 0.0;
    int mainsStep = 0;
    int stepsToDrift = 0;
};

} // namespace emulator
