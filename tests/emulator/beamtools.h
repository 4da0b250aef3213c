#pragma once

#include "emulator/stagemodel.h"

#include <cmath>
#include <vector>

/// What tests of the emulated beam share.
namespace beamtools {

using emulator::StageModel;

constexpr double pi = 3.14159265358979323846;
constexpr quint64 seed = 21;

inline bool isWithin(double value, double expected, double share)
{
    return std::fabs(value - expected) <= share * std::fabs(expected);
}

inline double rmsOf(const std::vector<double>& values)
{
    double sum = 0.0;
    double squares = 0.0;
    for (const double value : values) {
        sum += value;
        squares += value * value;
    }
    const auto count = static_cast<double>(values.size());
    return std::sqrt(squares / count - sum * sum / count / count);
}

inline double meanOf(const std::vector<double>& values)
{
    double sum = 0.0;
    for (const double value : values)
        sum += value;
    return sum / static_cast<double>(values.size());
}

/// The x positions of a stream of 500 samples per second.
inline std::vector<double> stream(StageModel& stage, double seconds,
                                  StageModel::Axis axis = StageModel::X)
{
    std::vector<double> values;
    for (int i = 0; i < seconds * 500; ++i) {
        stage.advance(emulator::beamStepsPerSecond / 500);
        values.push_back(stage.positionMv(axis));
    }
    return values;
}

/// A stage whose options are the usual ones but for the kind of its detector.
inline StageModel stageOn(emulator::DetectorKind detector, const emulator::BeamPreset& preset,
                          quint64 stageSeed = seed)
{
    emulator::StageOptions options;
    options.detector = detector;
    constexpr double intensityMv = 4000.0;
    return StageModel(preset, options, intensityMv, stageSeed);
}

inline StageModel typicalStage(quint64 stageSeed = seed)
{
    return stageOn(emulator::DetectorKind::LateralEffect,
                   emulator::beamPreset(emulator::Preset::Typical), stageSeed);
}

/// A stage whose beam stands still.
inline StageModel calmStage(emulator::DetectorKind detector = emulator::DetectorKind::LateralEffect)
{
    return stageOn(detector, emulator::BeamPreset());
}

} // namespace beamtools
