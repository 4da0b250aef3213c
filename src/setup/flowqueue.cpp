#include "setup/flowqueue.h"

#include <utility>

FlowQueue::FlowQueue(std::function<bool()> leaving)
    : isLeaving(std::move(leaving))
{}

void FlowQueue::run(Flow flow)
{
    flows.push_back(std::move(flow));
    if (flows.size() > 1)
        return;
    while (!flows.empty()) {
        if (!isLeaving())
            flows.front()();
        flows.pop_front();
    }
}
