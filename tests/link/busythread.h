#pragma once

#include "support/emulatedlink.h"

#include <QSemaphore>

#include <atomic>
#include <memory>

/// Keeps the thread of a connection busy, once, so that nothing is delivered to it meanwhile. To be
/// made before the connection's thread is started.
class BusyThread final
{
public:
    explicit BusyThread(Connection& client)
        : shared(std::make_shared<Shared>())
    {
        onThreadOf(
            client, [state = shared] { return state->isWanted.load(); },
            [state = shared] {
                state->begun.release();
                state->ended.acquire();
            });
    }
    ~BusyThread() { release(); }
    BusyThread(const BusyThread&) = delete;
    BusyThread& operator=(const BusyThread&) = delete;

    /// Returns once the thread is busy; false if that never came.
    bool hold()
    {
        constexpr int limitMs = 10000;
        shared->isWanted = true;
        return shared->begun.tryAcquire(1, limitMs);
    }
    void release() { shared->ended.release(); }

private:
    /// The connection's thread can still ask for it when the test is over.
    struct Shared
    {
        std::atomic<bool> isWanted{false};
        QSemaphore begun;
        QSemaphore ended;
    };
    std::shared_ptr<Shared> shared;
};
