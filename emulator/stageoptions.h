#pragma once

#include "emulator/detectormodel.h"

namespace emulator {

/// Where the external inputs of a stage stand, mV. An input counts while its setting by software
/// is 0.
struct ExternalInputs
{
    /// 0 to 5000, as the sensitivity.
    int pFactorMv = 1000;
    int sensitivityMv = 1000;
    /// -5000 to 5000, as the other axis.
    int adjustInXMv = 0;
    int adjustInYMv = 0;
};

/// How one stage of a controller is set up.
struct StageOptions
{
    DetectorKind detector = DetectorKind::LateralEffect;
    /// Diameter at 1/e² of the intensity of the spot on the detector, 0.1 to 10000 µm.
    double spotDiameterUm = 50.0;
    /// Where the undisturbed beam stands, µm from the detector's centre.
    double offsetXUm = 0.0;
    double offsetYUm = 0.0;
    bool multiplexed = false;
    ExternalInputs inputs;
};

} // namespace emulator
