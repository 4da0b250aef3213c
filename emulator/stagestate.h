#pragma once

#include "emulator/stageoptions.h"

namespace emulator {

/// Everything about one stage of a controller at one moment. Voltages are millivolts, as on the
/// wire.
struct StageState
{
    bool on = false;
    /// On, within the travel of the actuators, and with enough light.
    bool active = false;
    /// The target is the position that was held, not adjust-in.
    bool held = false;
    bool multiplexed = false;
    /// Trigger Freeze.
    bool frozen = false;

    /// As stored; 0 selects the external input.
    int pFactorMv = 0;
    int sensitivityMv = 0;
    int adjustInXMv = 0;
    int adjustInYMv = 0;

    /// What stands at the connectors, whether it counts or not.
    ExternalInputs inputs;

    int actuatorXMv = 0;
    int actuatorYMv = 0;
    /// What a packet would carry now, of the stage's own detector.
    int positionXMv = 0;
    int positionYMv = 0;
    int intensityMv = 0;

    /// Where the emulated beam is, micrometres from the centre of its own detector; also while
    /// samples of a script or a recording are sent in its place.
    double beamXUm = 0.0;
    double beamYUm = 0.0;
};

} // namespace emulator
