#pragma once

#include <QByteArray>

namespace emulator {

/// What one end of a serial line is set to.
struct SerialSettings
{
    /// Bits per second.
    int baudRate = 0;
    /// Sends only while the other end signals that it is ready (RTS/CTS).
    bool hardwareFlowControl = false;
};

/// Whether bytes pass between the two ends. An end with flow control waits for a signal that an end
/// without flow control never gives.
bool canTalk(const SerialSettings& one, const SerialSettings& other);

/// What an end that listens at one rate receives of bytes that were sent at another rate: the same
/// number of other bytes, none of which can be part of a command or of a reply's frame. The same
/// input always gives the same result. At equal rates the bytes are unchanged.
QByteArray heardAt(int hearingRate, const QByteArray& bytes, int sendingRate);

} // namespace emulator
