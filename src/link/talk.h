#pragma once

#include "link/commandframe.h"

#include <QByteArray>

#include <optional>

class Connection;

// Talks with a controller that never wait. `advance` does what can be done now, and says whether
// the talk is over. Whoever leads several talks advances one after the other, about every
// millisecond: each controller sees its own commands in their order, each behind the reply to the
// one before or the end of the wait for it, and the waits of all pass at the same time. GUI thread
// only.

/// How often a talk is advanced.
constexpr unsigned long talkPaceMs = 1;

/// One command of a talk, and the wait for its reply.
class TalkTurn final
{
public:
    /// Sends the command at the first call. As long as nothing is known of the reply, nothing;
    /// afterwards what `Connection::fetchReply` says, with the reply in `reply`. The next call
    /// sends again.
    std::optional<bool> advance(Connection& connection, const CommandFrame& frame,
                                QByteArray& reply);

private:
    bool isSent = false;
};

/// Stops a stream, or one that may have been left running, and drops what the controller answers.
class StopTalk final
{
public:
    /// Whether a stop that was not answered is sent once more.
    enum class Unanswered { Left, Repeated };

    /// `unanswered` applies to the last stop only. The connection has to live longer than this.
    StopTalk(Connection& connection, int stops, Unanswered unanswered);

    bool advance();

private:
    Connection& connection;
    int stopsLeft;
    bool repeats;
    TalkTurn turn;
};

/// Sleeps until the reply to the last command is there or will not come, or for a moment if that is
/// so already.
void awaitNews(const Connection& connection);

/// Advances a talk with a connection until it is over. Blocks for the waits; a reply ends them at
/// once.
template <typename Talk>
void finish(Talk& talk, const Connection& connection)
{
    while (!talk.advance())
        awaitNews(connection);
}
