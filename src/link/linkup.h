#pragma once

#include <QString>

#include <functional>

class Connection;

/// How long one waits for a link to come up, and how.
struct LinkWait
{
    enum class Manner {
        /// Takes the events of timers and sockets. What the user does meanwhile is taken
        /// afterwards.
        TakingEvents,
        /// Blocks the calling thread.
        WithoutEvents,
        /// As `TakingEvents`, but these are taken before and after one sleep that always lasts for
        /// the limit.
        InOneGo,
    };

    int limitMs = 0;
    Manner manner = Manner::TakingEvents;
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

/// Waits until the link of a started connection is up or has failed, at most for the limit. Returns
/// whether it is up.
bool waitForLink(const Connection& connection, LinkWait wait);

/// Starts the connection's thread and waits for the link. Returns whether it is up.
bool bringUp(Connection& connection, LinkWait wait);

/// Brings a new link to a controller at the wrong baud rate and lets the controller change to
/// `baudRate`. Blocks for the wait and the exchanges. False if it did not agree; otherwise it is to
/// be reached at the new rate only. Either way the thread may still run.
bool changeBaudRate(Connection& connection, LinkWait wait, int baudRate);

/// Starts the connection's thread, waits for the link, finds out who answers and gives that
/// controller the label. `id` is the expected identification, or becomes the one that was found
/// if it is empty. A controller whose identification is not `isUsable` is refused before it gets
/// the label. Blocks for the waits and the exchanges. Unless the result is `Up`, the thread may
/// still run.
LinkOutcome connectAndIdentify(Connection& connection, LinkWait wait, const QString& label,
                               QString& id, const std::function<bool(const QString&)>& isUsable);
