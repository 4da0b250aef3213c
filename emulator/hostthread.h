#pragma once

#include <QObject>
#include <QThread>

#include <functional>
#include <memory>
#include <vector>

namespace emulator {

/// A thread with an event loop that executes functions for other threads. `run` is the only way
/// into it, and it orders the memory accesses of both threads. The thread sanitizer can not see
/// this order in the library's event queue, so `run` also marks it explicitly.
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

    /// Makes the thread the owner of an object that was created in it. To be called in the thread.
    void own(std::unique_ptr<QObject> object);

private:
    class Worker;

    QThread thread;
    std::unique_ptr<Worker> worker;
    /// Accessed only in the thread.
    std::vector<std::unique_ptr<QObject>> owned;
};

} // namespace emulator
