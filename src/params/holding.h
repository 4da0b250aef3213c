#pragma once

#include "model/stage.h"

#include <QByteArray>
#include <QPointF>

#include <optional>

class Connection;

/// What came of asking a controller to hold the present position of a stage.
struct HoldResult
{
    /// Whether the controller accepted it. Whether the stage holds is told by its status only.
    bool isTaken = false;
    /// What the two fields of the position show; nothing if it was not read.
    std::optional<QPointF> shownPosition;
};

/// Makes the present position of a stage's beam its target, `SSH`, at a controller whose stream has
/// to be stopped, and reads the position with `S1S`. Stage 1 reads it before and in any case, stage
/// 2 behind an accepted `SSH` only: kept as it is. Blocks for the exchanges.
HoldResult holdPosition(Connection& connection, Stage stage);

/// The position of a stage in a packet as the fields show it until they are read anew. Only the low
/// byte is divided, so that what is shown is rarely the position in volts: kept as it is, since it
/// lasts no longer than the exchange.
QPointF shownHoldPosition(const QByteArray& packetBytes, Stage stage);
