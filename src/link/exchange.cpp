#include "link/exchange.h"

#include "link/sendqueue.h"

namespace {

/// How long a send is waited for that the connection's thread is slow to take.
constexpr int takingMs = 1;
constexpr int callerTimeoutFactor = 2;

} // namespace

Exchange::Exchange(LinkCondition& linkCondition, SendQueue& sendQueue)
    : condition(linkCondition)
    , queue(sendQueue)
{}

void Exchange::send(const CommandFrame& frame)
{
    dispatch(frame);
    delivery->waitUntil(QDeadlineTimer(takingMs, Qt::PreciseTimer));
}

bool Exchange::trySend(const CommandFrame& frame)
{
    if (isPolling && !isSettled())
        return false;
    dispatch(frame);
    return true;
}

void Exchange::dispatch(const CommandFrame& frame)
{
    settlePoll();
    post(frame, Unread::Kept);
    if (frame.isStop())
        delivery->waitUntil(deadline);
}

void Exchange::post(const CommandFrame& frame, Unread unread)
{
    condition.dropUnread = unread == Unread::Dropped;
    deadline.setRemainingTime(callerTimeoutFactor * condition.timeoutMs, Qt::PreciseTimer);
    delivery = queue.post(frame);
}

bool Exchange::fetchReply(QByteArray& out)
{
    // The reply of a poll belongs to whoever polls.
    return !isPolling && awaitReply(out);
}

bool Exchange::awaitReply(QByteArray& out)
{
    // On a loaded machine the send can still lie in the queue: its outcome is not known before.
    if (delivery && !delivery->waitUntil(deadline))
        delivery->giveUp();
    waitUntilSettled();
    if (condition.replies.isAwaited())
        giveUpReply();
    return condition.replies.take(out);
}

bool Exchange::isSettled() const
{
    if (deadline.hasExpired())
        return true;
    const bool isSent = !delivery || delivery->isFinished();
    return isSent && !(condition.replies.isAwaited() && condition.portOpen);
}

void Exchange::waitUntilSettled() const
{
    if (delivery)
        delivery->waitUntil(deadline);
    condition.replies.waitWhileAwaited(deadline, [this] { return !condition.portOpen; });
}

/// A reply that comes at the very last moment is kept, not thrown away.
void Exchange::giveUpReply()
{
    StreamState stopSent = StreamState::StopSent;
    condition.stream.compare_exchange_strong(stopSent, StreamState::StartAnsweredOrStopFailed);
    condition.replies.giveUp();
}

void Exchange::poll(const CommandFrame& frame)
{
    if (isPolling || !isSettled())
        return;
    // What an earlier command has left behind must not be taken for the reply of the poll.
    QByteArray ignored;
    awaitReply(ignored);
    post(frame, Unread::Dropped);
    isPolling = true;
}

bool Exchange::takePolled(QByteArray& out)
{
    if (!isPolling || !isSettled())
        return false;
    isPolling = false;
    return awaitReply(out);
}

void Exchange::settlePoll()
{
    QByteArray ignored;
    if (isPolling)
        awaitReply(ignored);
    isPolling = false;
}

void Exchange::forget()
{
    isPolling = false;
    delivery.reset();
    condition.replies.reset();
}
