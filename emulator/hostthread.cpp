#include "emulator/hostthread.h"

#include <QCoreApplication>
#include <QEvent>

#include <condition_variable>
#include <mutex>
#include <utility>

#ifdef LUMETRA_THREAD_SANITIZER
extern "C" {
void __tsan_acquire(void* address);
void __tsan_release(void* address);
}
#endif

namespace emulator {

namespace {

void announce([[maybe_unused]] void* place)
{
#ifdef LUMETRA_THREAD_SANITIZER
    __tsan_release(place);
#endif
}

void takeOver([[maybe_unused]] void* place)
{
#ifdef LUMETRA_THREAD_SANITIZER
    __tsan_acquire(place);
#endif
}

QEvent::Type callType()
{
    static const int type = QEvent::registerEventType();
    return static_cast<QEvent::Type>(type);
}

/// Lets one thread wait until another has finished a task.
class Completion final
{
public:
    void wait()
    {
        std::unique_lock<std::mutex> lock(mutex);
        condition.wait(lock, [this] { return done; });
    }
    void finish()
    {
        // Notified while the lock is held: the waiting thread destroys this object as soon as it
        // can take the lock.
        const std::lock_guard<std::mutex> lock(mutex);
        done = true;
        condition.notify_all();
    }

private:
    std::mutex mutex;
    std::condition_variable condition;
    bool done = false;
};

class Call final : public QEvent
{
public:
    Call(const std::function<void()>& wanted, Completion& end)
        : QEvent(callType())
        , work(wanted)
        , completion(end)
    {
        announce(this);
    }
    ~Call() override { takeOver(this); }

    void carryOut()
    {
        takeOver(this);
        work();
        completion.finish();
    }

private:
    const std::function<void()>& work;
    Completion& completion;
};

} // namespace

class HostThread::Worker final : public QObject
{
public:
    bool event(QEvent* event) override
    {
        if (event->type() != callType())
            return QObject::event(event);
        static_cast<Call*>(event)->carryOut();
        return true;
    }
};

HostThread::HostThread()
    : worker(std::make_unique<Worker>())
{
    worker->moveToThread(&thread);
    thread.setObjectName(QStringLiteral("emulator"));
    thread.start();
}

HostThread::~HostThread()
{
    run([this] { owned.clear(); });
    thread.quit();
    thread.wait();
}

void HostThread::run(const std::function<void()>& work)
{
    if (QThread::currentThread() == &thread) {
        work();
        return;
    }
    Completion completion;
    auto call = std::make_unique<Call>(work, completion);
    QCoreApplication::postEvent(worker.get(), call.release());
    completion.wait();
}

void HostThread::own(std::unique_ptr<QObject> object)
{
    owned.push_back(std::move(object));
}

} // namespace emulator
