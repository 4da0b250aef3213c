#pragma once

#include "link/commandframe.h"

#include <QDeadlineTimer>

#include <condition_variable>
#include <memory>
#include <mutex>

class TriggerObject;

/// Tells when a posted send has been taken by the connection's thread, or can not be any more
/// because its receiver went away. Any thread may wait.
class SendDelivery
{
public:
    void finish();
    /// Waits at most until `deadline` and returns whether the delivery has finished.
    bool waitUntil(const QDeadlineTimer& deadline);
    bool isFinished() const;
    /// A send that was not begun yet is not made any more, since nobody would take its reply. One
    /// that is just being made is waited for.
    void giveUp();
    /// Whether the send is to be made; from now on it can not be given up.
    bool begin();

private:
    mutable std::mutex mutex;
    std::condition_variable changed;
    bool begun = false;
    bool finished = false;
    bool givenUp = false;
};

/// The call that carries a command through the event queue into the connection's thread. Its
/// delivery finishes when it ran, and also when the queue threw it away with its receiver.
class PostedSend
{
public:
    PostedSend(TriggerObject& receiver, CommandFrame frame, std::shared_ptr<SendDelivery> delivery);
    /// The queue keeps a copy, which its own thread reads and deletes.
    PostedSend(const PostedSend& other);
    PostedSend& operator=(const PostedSend&) = delete;
    ~PostedSend();

    void operator()();

private:
    struct Call;
    std::shared_ptr<Call> call;
};
