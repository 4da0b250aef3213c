#pragma once

#include <QByteArray>
#include <QDeadlineTimer>

#include <condition_variable>
#include <functional>
#include <mutex>

/// Where the connection's thread leaves a reply for the GUI thread. It holds one reply; whether one
/// is awaited or there is its state. Any thread may call.
class ReplyBox final
{
public:
    /// A command was written: drops an earlier reply and awaits one.
    void expect();
    /// Empties a reply that is there; its state stays.
    void clearBytes();
    /// Leaves a reply, which can be an empty one, to be taken.
    void put(const QByteArray& bytes);
    /// No reply is awaited any more. One that is already there stays.
    void giveUp();
    /// Appends the reply to `out`. False if there is none.
    bool take(QByteArray& out);
    bool isAwaited() const;
    /// Waits until no reply is awaited any more, but not beyond the deadline or while
    /// `isPointless`.
    void waitWhileAwaited(const QDeadlineTimer& deadline, const std::function<bool()>& isPointless);
    /// Lets whoever waits look at once whether waiting has become pointless.
    void wakeWaiter();
    /// Neither awaits a reply nor has one.
    void reset();

private:
    enum class State { Idle, Awaited, Ready };

    void leave(State next);

    mutable std::mutex mutex;
    std::condition_variable changed;
    State state = State::Idle;
    QByteArray reply;
};
