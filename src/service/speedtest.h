#pragma once

class Connection;

/// How many samples of a second of the fastest stream arrive.
struct SpeedResult
{
    enum class Outcome {
        NotStarted,
        NotStopped,
        Counted,
    };

    Outcome outcome = Outcome::NotStarted;
    /// Without the first packet of the stream where that is the reply to its start, as it is unless
    /// the stream follows triggers.
    int received = 0;
};

/// Streams for a second at the highest rate and stops. The link has to be quiet. What lies in the
/// store of samples is thrown away, the sampling rate of the connection stays as it is. Blocks for
/// that second and two exchanges. A start that nobody answers leaves the link deaf until it is
/// disconnected.
SpeedResult measureSpeed(Connection& connection);
