#pragma once

#include "link/replyforms.h"
#include "model/stage.h"

// Where the packet that answers `S1S` has the positions of the beams.

/// Whether a reply is long enough to be a packet.
inline bool isPacket(const QByteArray& reply)
{
    constexpr int lastByte = 24;
    return command::isLongerThan(reply, lastByte);
}

/// Of x, two bytes; y stands behind it.
constexpr int positionOffset(Stage stage)
{
    return stage == Stage::One ? 4 : 10;
}
