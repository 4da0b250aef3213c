#include "link/replybox.h"

#include <chrono>

void ReplyBox::expect()
{
    const std::lock_guard<std::mutex> lock(mutex);
    state = State::Awaited;
    reply.clear();
}

void ReplyBox::clearBytes()
{
    const std::lock_guard<std::mutex> lock(mutex);
    reply.clear();
}

void ReplyBox::put(const QByteArray& bytes)
{
    const std::lock_guard<std::mutex> lock(mutex);
    reply = bytes;
    leave(State::Ready);
}

void ReplyBox::giveUp()
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (state == State::Awaited)
        leave(State::Idle);
}

bool ReplyBox::take(QByteArray& out)
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (state != State::Ready)
        return false;
    state = State::Idle;
    out.append(reply);
    return true;
}

bool ReplyBox::isAwaited() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return state == State::Awaited;
}

void ReplyBox::reset()
{
    const std::lock_guard<std::mutex> lock(mutex);
    reply.clear();
    leave(State::Idle);
}

void ReplyBox::waitWhileAwaited(const QDeadlineTimer& deadline,
                                const std::function<bool()>& isPointless)
{
    std::unique_lock<std::mutex> lock(mutex);
    const auto patience = std::chrono::milliseconds(deadline.remainingTime());
    changed.wait_for(lock, patience, [&] { return state != State::Awaited || isPointless(); });
}

void ReplyBox::wakeWaiter()
{
    // Whoever has just looked and is about to wait holds the lock until then.
    const std::lock_guard<std::mutex> lock(mutex);
    changed.notify_all();
}

/// Whoever calls holds the lock.
void ReplyBox::leave(State next)
{
    state = next;
    changed.notify_all();
}
