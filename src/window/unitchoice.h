#pragma once

#include "model/detectorpair.h"

#include <array>
#include <vector>

/// Which detector gives a stage's axis its unit and range.
struct UnitChoice
{
    /// Whether all displayed connections show the stage in the same length unit. True without any
    /// displayed connection.
    bool unitsAgree = true;
    /// Null for a stage in volts.
    const Detector* detector = nullptr;

    QString unit() const;
    PositionUnit unitCode() const;
    double maxPosition() const;
    double minPosition() const;
};

/// Finds the unit of both stages for the detectors of the displayed systems, in their order. Where
/// the units agree, the stage takes the detector of `current`, or of the first displayed system if
/// that one is hidden; if a beam diameter matters on any stage, that of the largest diameter, of
/// equal ones the first displayed. The choices hold for as long as the pairs live.
std::array<UnitChoice, 2> chooseUnits(const std::vector<const DetectorPair*>& displayed,
                                      const DetectorPair* current);
