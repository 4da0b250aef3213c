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

/// Whether anything passes between the two ends. An end with flow control waits for a signal that
/// an end without it never gives.
bool canTalk(const SerialSettings& one, const SerialSettings& other);

/// What bytes sent at one rate are to an end that listens at another: as many bytes, the same ones
/// each time, none of which can stand in a command or in the frame of a reply. At the same rate
/// they are what they are.
QByteArray heardAt(int hearingRate, const QByteArray& bytes, int sendingRate);

} // namespace emulator
