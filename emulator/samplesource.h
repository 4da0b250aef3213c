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
    /// Beam steps from the last packet to the next at this rate. Over each second they add up to
    /// the beam's steps of a second exactly. None while the rate is 0: no pulse comes that a step
    /// could lead to.
    int beamSteps();
    /// The present sample of script or recording; nothing when the script has come to its end.
    std::optional<PacketValues> sample() const;
    /// The last sample that there was.
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
