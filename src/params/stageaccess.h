#pragma once

/// Which fields of a stage can be changed.
struct StageAccess
{
    /// The choice between volts and length.
    bool unit = false;
    bool beamDiameter = false;
    /// The choice between software and external adjust-in.
    bool adjustSource = false;
    bool adjustValues = false;
};

/// Only a known detector can show a length, only a quadrant detector has a diameter to convert
/// with, and only a position sensitive one can have its target moved.
StageAccess stageAccess(int typeCode, bool showsLength, bool adjustsBySoftware);
