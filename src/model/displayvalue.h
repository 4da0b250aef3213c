#pragma once

#include "model/detector.h"

// The controller sends millivolts; these give volts.
constexpr double positionScale = 0.001;
constexpr double intensityScale = 0.001;
constexpr double piezoScale = 0.001;

/// A position signal as the detector's unit says, or in volts: if the detector is not to show a
/// length, or if `unitsAgree` is false because the displayed systems share no unit.
inline double toDisplayValue(int rawMv, unsigned intensityMv, const Detector& detector,
                             bool unitsAgree)
{
    const double volts = rawMv * positionScale;
    if (!unitsAgree || detector.calculation == 0)
        return volts;
    return detector.calculatePosition(volts, intensityMv * intensityScale);
}
