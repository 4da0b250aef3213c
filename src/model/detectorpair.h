#pragma once

#include "model/detector.h"

#include <array>
#include <memory>

struct ConnectionSettings;

/// The detectors of a controller's two stages, one pair per connection. Copies are deep.
class DetectorPair
{
public:
    DetectorPair();
    DetectorPair(int type1, int calculation1, int type2, int calculation2, int pulsedLaser,
                 double beamDiameter1Um, double beamDiameter2Um);
    /// Records come from a file that anybody may edit: a type code outside 0 to 5 gives a plain
    /// detector, a beam diameter that is no positive number the default; the log tells.
    explicit DetectorPair(const ConnectionSettings& settings);
    DetectorPair(const DetectorPair& other);
    DetectorPair& operator=(const DetectorPair& other);
    DetectorPair(DetectorPair&&) = default;
    DetectorPair& operator=(DetectorPair&&) = default;
    ~DetectorPair() = default;

    /// The detector of a stage, 0 or 1. Null only after `setDetectorType` with a bad code.
    Detector* operator[](std::size_t stageIndex) const { return detectors[stageIndex].get(); }

    /// Replaces the detector of stage index 0 or 1 by one of another type, which keeps beam
    /// diameter and calculation flag. A code outside 0 to 5 leaves the stage without a detector.
    void setDetectorType(quint16 stageIndex, int typeCode);

    /// Copies types, flags, diameters and `pulsedLaser` into the stored record.
    void copyTo(ConnectionSettings& settings) const;

    /// 1 while packets of this connection follow trigger pulses of a pulsed laser.
    int pulsedLaser = 0;

private:
    std::array<std::unique_ptr<Detector>, 2> detectors;
};
