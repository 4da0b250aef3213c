#pragma once

#include "link/packet.h"

class QIODevice;

/// Finds packets in a byte flow that may have lost or gained bytes.
namespace packetreader {

struct Result
{
    /// Whether `bytes` holds an aligned packet. If not, the input ended before one was found,
    /// and what had been read of it is gone.
    bool found = false;
    /// Bytes that were passed over to find the packet's marks.
    int skipped = 0;
    PacketBytes bytes{};
};

/// Reads one packet from a device that holds at least `command::packetLength` bytes. If the marks
/// are not at their places it slides on byte by byte for as long as there is input.
Result read(QIODevice& device);

} // namespace packetreader
