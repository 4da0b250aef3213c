#pragma once

#include "link/packet.h"
#include "model/measurestore.h"

#include <atomic>

class QIODevice;

/// Turns the bytes of a measurement stream into samples. The counts can be read on any thread.
class StreamDecoder final
{
public:
    /// What a packet means depends on the controller.
    struct Firmware
    {
        int version = 1;
        bool isVm = false;
    };

    explicit StreamDecoder(measureStore& samples);

    /// Decodes the whole packets that `device` holds, at most up to the last one of the stream.
    /// What stands behind that, or is no whole packet, stays in the device. Returns whether the
    /// last packet has come.
    bool decode(QIODevice& device, Firmware firmware);

    /// Bytes that belonged to no packet, since this object was made.
    quint64 skippedBytes() const { return skipped; }
    /// When the last packet was read, in milliseconds since the epoch; 0 before the first.
    qint64 lastPacketTime() const { return lastPacketMs; }

private:
    void store(const PacketBytes& bytes, Firmware firmware);

    measureStore& samples;
    std::atomic<quint64> skipped{0};
    std::atomic<qint64> lastPacketMs{0};
};
