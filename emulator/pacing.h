#pragma once

#include <QElapsedTimer>

#include <optional>

namespace emulator {

/// Tells at which times the packets of a stream are to be sent, and counts those that were due.
class Pacing final
{
public:
    /// Time zero of a stream. The packet that answers the start is due now and not counted; a
    /// triggered stream has no pulse at time zero. At a rate of 0 no packet is ever due.
    void start(double packetsPerSecond);

    /// Packets that should have been sent since time zero.
    qint64 due() const;
    /// Counts the next one of them; false if all have been counted.
    bool takeOne(qint64 dueSoFar);
    /// After a stall only a part of the stream is sent late. Counts the rest and returns its
    /// number.
    qint64 skipBacklog(qint64 dueSoFar);
    /// Counts everything that is due by now.
    void skipAll() { taken = due(); }

    /// Time until the next packet can be sent, in ms; nothing if none will be due.
    std::optional<int> msToNext() const;

private:
    QElapsedTimer clock;
    double rate = 0;
    qint64 taken = 0;
};

} // namespace emulator
