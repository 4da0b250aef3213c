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
    /// Monotonic, from an arbitrary zero that all controllers of a process share.
    qint64 timeNs = 0;
};

/// What passed the wire of one controller, in order. Stream packets are kept only up to a limit,
/// so that a long stream does not fill the memory. Not thread safe.
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
