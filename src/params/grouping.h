#pragma once

#include "model/stage.h"
#include "params/axisvalues.h"
#include "params/systemstate.h"

#include <QByteArray>

#include <array>
#include <optional>
#include <vector>

class Connection;

// Two systems of a group: their beams lead to a common detector.

/// The place of the other system of a group: of the first system in the list, beside `current`,
/// that has the same group number. Two systems that were never given a group have the same one, 0:
/// kept as it is. Nothing if there is none, or if its status is not valid.
std::optional<std::size_t> partnerOf(std::size_t current, const std::vector<SystemState>& systems);

/// Sends `SSE` for a stage, which leads it away from the common detector, to a controller whose
/// stream has to be stopped. Blocks for the exchange. Whether it was accepted.
bool leaveCommonPath(Connection& connection, Stage stage);

/// What came of an overlay.
enum class Overlay { Applied, PartnerSilent, ValuesMissing };

/// The positions that a reply to `GCA` tells: where the beams of a system are on its common
/// detector, by stage. Bytes that it does not have are 0x00. Nothing if the controller did not
/// accept.
std::optional<std::array<AxisValues, 2>> commonPositions(const QByteArray& reply);

/// Brings the beams of the partner onto those of the reference: leads the partner's stages to the
/// common detector (`SMD`) unless both are there, reads where the reference's beams are on it
/// (`GCA`), and makes these the partner's targets (`SAI`), without any conversion: both measure
/// with the same detector. The first target that is not accepted ends it, and those before it stay.
/// Notes in `isPartnerThere`, by stage, what the partner accepted. Both streams have to be stopped.
/// Blocks for the exchanges.
Overlay overlayPartner(Connection& reference, Connection& partner,
                       std::array<bool, 2>& isPartnerThere);
