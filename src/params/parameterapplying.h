#pragma once

#include "model/beamaxis.h"
#include "model/stage.h"
#include "params/axisvalues.h"

#include <QString>

#include <array>
#include <optional>
#include <vector>

class Connection;

/// What is wanted of one stage, millivolts. Nothing stands for the external input.
struct StageWishes
{
    std::optional<int> pFactorMv;
    std::optional<int> sensitivityMv;
    std::optional<AxisValues> adjustIn;
};

/// One value that a controller did not take.
struct ApplyFailure
{
    enum class What { PFactor, ExternalPFactor, Sensitivity, AdjustIn };

    What what;
    Stage stage;
    /// Of `AdjustIn` only.
    BeamAxis axis = BeamAxis::X;
};

bool operator==(const ApplyFailure& one, const ApplyFailure& other);

/// Tells the user what was not taken.
QString messageOf(const ApplyFailure& failure);

/// Volts as a controller takes them: cut, not rounded, so that a value that is stored a little
/// below a whole millivolt loses one.
qint16 toMillivolts(double volts);

/// Sets everything at a controller whose stream has to be stopped: P-factors, sensitivities,
/// adjust-in, stage 1 first. A failure of stage 1's P-factor sets that of stage 2 external,
/// whatever is wanted of it: the two have one source. A failure of adjust-in of x sets that of y
/// external. All other failures stand alone. Blocks for the exchanges. Returns the failures in
/// their order.
std::vector<ApplyFailure> applyParameters(Connection& connection,
                                          const std::array<StageWishes, 2>& wishes);
