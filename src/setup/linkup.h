#pragma once

#include <QString>

class Connection;

/// How long a flow waits for a link to come up, and how.
struct LinkWait
{
    int limitMs = 0;
    /// Whether the limit is waited out in one go; otherwise the wait ends as soon as the link is
    /// up or has failed.
    bool inOneGo = false;
};

enum class LinkOutcome {
    /// The link did not come up, or was lost again.
    NoLink,
    /// Somebody answers, but not the controller that was expected.
    NotIdentified,
    Up,
};

/// Takes the events of timers and sockets. What the user does meanwhile is taken afterwards, so
/// that no flow runs inside another one.
void takeEvents();

/// Starts the connection's thread, waits for the link, finds out who answers and gives that
/// controller the label. `id` is the expected identification, or becomes the one that was found
/// if it is empty. Blocks for the waits and the exchanges. Unless the result is `Up`, the thread
/// may still run.
LinkOutcome connectAndIdentify(Connection& connection, LinkWait wait, const QString& label,
                               QString& id);
