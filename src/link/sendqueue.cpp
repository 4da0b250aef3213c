#include "link/sendqueue.h"

#include "link/triggerobject.h"

#include <utility>

SendQueue::SendQueue() = default;

SendQueue::~SendQueue() = default;

void SendQueue::open(Connection& receiver)
{
    auto opened = std::make_unique<TriggerObject>(receiver);
    const std::lock_guard<std::mutex> lock(mutex);
    trigger = std::move(opened);
}

void SendQueue::close()
{
    std::unique_ptr<TriggerObject> closed;
    const std::lock_guard<std::mutex> lock(mutex);
    closed = std::move(trigger);
}

std::shared_ptr<SendDelivery> SendQueue::post(const CommandFrame& frame)
{
    auto delivery = std::make_shared<SendDelivery>();
    const std::lock_guard<std::mutex> lock(mutex);
    if (trigger) {
        const PostedSend call(*trigger, frame, delivery);
        QMetaObject::invokeMethod(trigger.get(), call, Qt::QueuedConnection);
    } else {
        delivery->finish();
    }
    return delivery;
}
