#include "link/postedsend.h"

#include "link/threadmarks.h"
#include "link/triggerobject.h"

#include <chrono>
#include <utility>

void SendDelivery::finish()
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        finished = true;
    }
    changed.notify_all();
}

bool SendDelivery::waitUntil(const QDeadlineTimer& deadline)
{
    std::unique_lock<std::mutex> lock(mutex);
    const auto patience = std::chrono::milliseconds(deadline.remainingTime());
    return changed.wait_for(lock, patience, [this] { return finished; });
}

bool SendDelivery::isFinished() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return finished;
}

void SendDelivery::giveUp()
{
    std::unique_lock<std::mutex> lock(mutex);
    givenUp = !begun;
    changed.wait(lock, [this] { return givenUp || finished; });
}

bool SendDelivery::begin()
{
    const std::lock_guard<std::mutex> lock(mutex);
    begun = !givenUp;
    return begun;
}

struct PostedSend::Call
{
    Call(TriggerObject& trigger, CommandFrame command, std::shared_ptr<SendDelivery> outcome)
        : receiver(trigger)
        , frame(std::move(command))
        , delivery(std::move(outcome))
    {}
    ~Call() { delivery->finish(); }
    Q_DISABLE_COPY(Call)

    TriggerObject& receiver;
    const CommandFrame frame;
    const std::shared_ptr<SendDelivery> delivery;
};

PostedSend::PostedSend(TriggerObject& receiver, CommandFrame frame,
                       std::shared_ptr<SendDelivery> delivery)
    : call(std::make_shared<Call>(receiver, std::move(frame), std::move(delivery)))
{}

PostedSend::PostedSend(const PostedSend& other)
    : call(other.call)
{
    threadmarks::handOver(this);
}

PostedSend::~PostedSend()
{
    threadmarks::takeOver(this);
}

void PostedSend::operator()()
{
    threadmarks::takeOver(this);
    if (call->delivery->begin())
        call->receiver.sendMessage(call->frame.message, call->frame.answerLength);
    call->delivery->finish();
}
