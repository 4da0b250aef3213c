#include "link/replybox.h"

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
    state = State::Ready;
    reply = bytes;
}

void ReplyBox::giveUp()
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (state == State::Awaited)
        state = State::Idle;
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
    state = State::Idle;
    reply.clear();
}
