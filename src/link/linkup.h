#pragma once

#include "link/linkoutcome.h"

#include <QString>

#include <functional>
#include <optional>

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

/// A link that comes up without anybody waiting for it. Each call does what can be done now, and
/// gives the outcome once it is known; it is called about every millisecond until then.
using Arrival = std::function<std::optional<LinkOutcome>()>;

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
/// controller the label. `id` is the expected identification; an empty one expects any
/// controller, and becomes its identification if the result is `Up`. A controller whose
/// identification is not `isUsable` is refused before it gets the label. Blocks for the waits and
/// the exchanges. Unless the result is `Up`, the thread may still run.
LinkOutcome connectAndIdentify(Connection& connection, LinkWait wait, const QString& label,
                               QString& id, const std::function<bool(const QString&)>& isUsable);

/// As `connectAndIdentify`, for links that come up side by side: it starts the thread, and each
/// controller gets its commands while the arrival is called. The link has to be up within the
/// limit. `id` is the expected identification; an empty one expects any.
Arrival beginArrival(Connection& connection, int limitMs, const QString& label, const QString& id,
                     const std::function<bool(const QString&)>& isUsable);
