#pragma once

class Connection;

/// "Stop the stream, talk, start it again": quiets a connection for an exchange and brings its
/// stream back with the rate that it had. Without a running stream it does nothing.
class StreamPause
{
public:
    /// Stops the stream. Blocks for the exchange.
    explicit StreamPause(Connection& connection);

    /// Starts the stream again if it ran. A connection that never accepted a rate gets
    /// `fallbackRateHz`, cut to what it accepts. False if the controller did not answer the start
    /// or refused it.
    bool resume(int fallbackRateHz);

private:
    Connection& connection;
    bool wasStreaming;
    int rateHz;
};

/// Sets the rate, starts the stream and takes the reply. The command carries `rateHz` also where
/// the connection refuses to store it. False if no reply came or it was a refusal.
bool startStreamAtRate(Connection& connection, int rateHz);
