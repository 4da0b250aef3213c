#pragma once

#include "link/linkcondition.h"
#include "link/postedsend.h"

#include <QDeadlineTimer>

#include <memory>

class SendQueue;

/// The GUI thread's half of the talk with a controller: one command at a time, and its reply. All
/// functions are for the GUI thread.
///
/// Whoever waits for a reply waits twice the time-out in all, from the sending on: the way into the
/// connection's thread is part of it.
class Exchange final
{
public:
    Exchange(LinkCondition& condition, SendQueue& queue);

    /// Sends a command. Waits for the end of a poll, and for the way of a stop: whoever stops a
    /// stream knows that the stop was written when this returns, or that the time is over. Any
    /// other command is waited for until the connection's thread has taken it, for a millisecond at
    /// most.
    void send(const CommandFrame& frame);
    /// As `send`, but waits for the way of a stop only. False, and nothing is sent, while the end
    /// of a poll has to be waited for.
    bool trySend(const CommandFrame& frame);
    /// Whether the last command or poll has its reply or will get none, so that nobody waits who
    /// sends or fetches now.
    bool isSettled() const;
    /// Sleeps until that is so.
    void waitUntilSettled() const;
    /// Waits for the reply of the last command and appends it to `out`. False if nothing was sent
    /// or nothing came in time.
    bool fetchReply(QByteArray& out);

    /// Sends a command without waiting, unless the last command or poll is not settled yet. It
    /// meets an empty line: replies that came too late for others do not shift those of the polls.
    void poll(const CommandFrame& frame);
    /// Appends the reply of the last poll to `out` without waiting. False if it is not there. A
    /// poll whose time is over is given up here.
    bool takePolled(QByteArray& out);

    /// Drops the last command and its reply.
    void forget();

private:
    enum class Unread { Kept, Dropped };
    void post(const CommandFrame& frame, Unread unread);
    void dispatch(const CommandFrame& frame);
    bool awaitReply(QByteArray& out);
    void settlePoll();
    void giveUpReply();

    LinkCondition& condition;
    SendQueue& queue;
    QDeadlineTimer deadline;
    /// Of the last command; null before the first.
    std::shared_ptr<SendDelivery> delivery;
    /// Whether the last command was a poll whose reply was neither taken nor given up.
    bool isPolling = false;
};
