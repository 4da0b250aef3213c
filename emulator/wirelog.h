#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QVector>

namespace emulator {

/// Bytes that passed the wire in one piece.
struct WireEvent
{
    enum Direction { FromHost, ToHost };

    Direction direction = FromHost;
    QByteArray bytes;
    /// Nanoseconds on a monotonic clock whose arbitrary zero is the same for all controllers of the
    /// process.
    qint64 timeNs = 0;
};

/// All bytes that passed the wire of one controller, in order. Of the stream packets only the first
/// `mostPackets` are kept, so that a long stream does not fill the memory. Not thread safe.
class WireLog final
{
public:
    static constexpr int mostPackets = 5000;

    void add(WireEvent::Direction direction, const QByteArray& bytes, bool isPacket);
    void addCommand(const QByteArray& frame);
    void clear();

    const QVector<WireEvent>& events() const { return kept; }
    /// Complete commands, unknown ones included.
    const QByteArrayList& commands() const { return commandFrames; }

private:
    QVector<WireEvent> kept;
    QByteArrayList commandFrames;
    int packetEvents = 0;
};

} // namespace emulator
