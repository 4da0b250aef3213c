#pragma once

#include <QObject>
#include <QThread>

#include <functional>
#include <memory>
#include <vector>

namespace emulator {

/// A thread with an event loop that carries out what other threads want done in it. The one way
/// into the thread is `run`, which orders all memory that both sides touch; the order is made
/// visible to the thread sanitizer, which does not see it in the event queue of the library.
class HostThread final
{
public:
    HostThread();
    /// Deletes what the thread owns, in the thread, and ends it.
    ~HostThread();
    HostThread(const HostThread&) = delete;
    HostThread& operator=(const HostThread&) = delete;

    /// Carries out `work` in the thread and returns when it is done. May be called in the thread.
    void run(const std::function<void()>& work);

    /// Hands an object made in the thread over to it; called in the thread.
    void own(std::unique_ptr<QObject> object);

private:
    class Worker;

    QThread thread;
    std::unique_ptr<Worker> worker;
    /// Touched in the thread only.
    std::vector<std::unique_ptr<QObject>> owned;
};

} // namespace emulator
