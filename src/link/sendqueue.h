#pragma once

#include "link/postedsend.h"

#include <memory>
#include <mutex>

class Connection;
class TriggerObject;

/// The way of a command into the connection's thread. It is open while that thread has a port.
class SendQueue final
{
public:
    SendQueue();
    ~SendQueue();
    SendQueue(const SendQueue&) = delete;
    SendQueue& operator=(const SendQueue&) = delete;

    /// Lets the calling thread, which is that of `receiver`, take what is posted.
    void open(Connection& receiver);
    /// On the thread that opened it. Commands that were not taken yet are finished without being
    /// sent, and so are those that are posted from now on.
    void close();

    /// Posts a command, on any thread, without waiting. The result is never null.
    std::shared_ptr<SendDelivery> post(const CommandFrame& frame);

private:
    /// Keeps the trigger alive while something is posted to it.
    std::mutex mutex;
    std::unique_ptr<TriggerObject> trigger;
};
