#pragma once

#include "emulator/packet.h"

#include <QVector>

#include <memory>
#include <optional>

namespace emulator {

class Replay;

/// Decides what the packets of a stream carry: the beam, a script sample by sample, or a
/// recording in its own time.
class SampleSource final
{
public:
    SampleSource(const QVector<PacketValues>& script, bool repeats,
                 std::shared_ptr<const Replay> replay);

    enum class Kind { Beam, Script, Replay };
    Kind kind() const;

    /// Goes back to the beginning, for a stream of `rate` packets per second.
    void rewind(double rate);
    /// Goes on by one packet.
    void advance();
    /// Number of the packet that comes next; the first one of a stream is 0.
    qint64 packetNumber() const { return packets; }
    /// Number of beam steps from the last packet to the next one. The numbers of all packets of a
    /// second add up to exactly the beam's steps per second. 0 at a rate of 0, where no packet
    /// comes.
    int beamSteps();
    /// The present sample of script or recording; nothing when the script has come to its end.
    std::optional<PacketValues> sample() const;
    /// The most recent sample; the last one of the script after its end.
    PacketValues lastSample() const;

private:
    QVector<PacketValues> script;
    bool repeats;
    std::shared_ptr<const Replay> replay;
    int scriptIndex = 0;
    double streamRate = 0;
    qint64 packets = 0;
    qint64 stepsDone = 0;
};

} // namespace emulator
