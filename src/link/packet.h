#pragma once

#include "link/commandframe.h"
#include "model/measuresample.h"

#include <array>

/// The bytes of one packet of the measurement stream.
using PacketBytes = std::array<char, command::packetLength>;

/// The status flags that a `GSF` reply and a stream packet share.
namespace statusflag {

/// By stage.
constexpr std::array<quint8, 2> stabilised{0x08, 0x10};
constexpr std::array<quint8, 2> active{0x20, 0x40};
/// In a packet: the last one of the stream. In a status that the host asked for: a failed read.
constexpr quint8 lastPacket = 0x80;

constexpr bool isStabilised(quint8 flags, Stage stage)
{
    return (flags & stabilised[indexOf(stage)]) != 0;
}

constexpr bool isActive(quint8 flags, Stage stage)
{
    return (flags & active[indexOf(stage)]) != 0;
}

} // namespace statusflag

namespace packet {

/// From the firmware version above this on a packet carries status flags and an end mark.
constexpr int lastFirmwareWithoutFlags = 10;

constexpr bool hasFlags(int firmwareVersion)
{
    return firmwareVersion > lastFirmwareWithoutFlags;
}

/// Where a packet has the values of a stage, two bytes each, the high byte first.
struct ValueOffsets
{
    int x;
    int y;
    int intensity;
    int rangeX;
    int rangeY;
};

constexpr ValueOffsets offsetsOf(Stage stage)
{
    return stage == Stage::One ? ValueOffsets{4, 6, 8, 16, 18} : ValueOffsets{10, 12, 14, 20, 22};
}

/// Whether a reply is long enough to be a packet.
inline bool isWhole(const QByteArray& reply)
{
    return reply.size() >= command::packetLength;
}

/// Whether status, separator and end mark stand at their places.
bool isAligned(const PacketBytes& bytes);
/// Whether this packet ends the stream; never with a firmware without flags.
bool isLast(const PacketBytes& bytes, int firmwareVersion);
/// Whether the packet is not to be stored.
bool isWithheld(const PacketBytes& bytes, int firmwareVersion, bool vmFirmware);
/// The packet as a sample that was read at `timeMs`, milliseconds since the epoch.
MeasureSample toSample(const PacketBytes& bytes, int firmwareVersion, quint64 timeMs);

} // namespace packet
