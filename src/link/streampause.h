#pragma once

class Connection;

/// What came of the start of a stream.
enum class StreamStart {
    /// There was no stream to start again.
    NotNeeded,
    /// The reply, whatever is in it, is no refusal.
    Runs,
    NoReply,
    /// A reply came that is too short to be one.
    EmptyReply,
    Refused,
};

/// Whether the stream is to be told as failed. An empty reply is not: a stream can run behind it.
constexpr bool hasFailed(StreamStart start)
{
    return start == StreamStart::NoReply || start == StreamStart::Refused;
}

/// As `hasFailed`, and also after an empty reply: what speaks to one system alone rather tells once
/// too often.
constexpr bool isInDoubt(StreamStart start)
{
    return hasFailed(start) || start == StreamStart::EmptyReply;
}

/// Quiets a connection for an exchange and brings its stream back with the rate that it had.
/// Without a running stream it does nothing.
class StreamPause
{
public:
    /// Stops the stream. Blocks for the exchange.
    explicit StreamPause(Connection& connection);

    /// Starts the stream again if it ran. A connection that never accepted a rate gets
    /// `fallbackRateHz`, cut to what it accepts.
    StreamStart resume(int fallbackRateHz);

private:
    Connection& connection;
    bool wasStreaming;
    int rateHz;
};

/// "Stop the stream, talk, start it again": does `work` while the connection has no stream. The
/// stream comes back as by `StreamPause::resume`, and what came of its start is returned. Blocks
/// for all of it.
template <typename Work>
StreamStart onQuietLink(Connection& connection, int fallbackRateHz, const Work& work)
{
    StreamPause pause(connection);
    work();
    return pause.resume(fallbackRateHz);
}

/// The rate at which a stream is started that had `rateHz`: that, or the fallback, cut to what a
/// connection accepts, if the connection never accepted one.
int rateToStart(int rateHz, int fallbackRateHz);

/// Sets the rate, starts the stream and takes the reply. The command carries `rateHz` also where
/// the connection refuses to store it.
StreamStart startStreamAtRate(Connection& connection, int rateHz);
