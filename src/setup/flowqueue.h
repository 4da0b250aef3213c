#pragma once

#include <deque>
#include <functional>

/// Runs flows one after another. Flows take events while they wait, and what comes with these must
/// not find another flow half done: a flow that is asked for inside another one waits for its end,
/// as it would in the queue of events. GUI thread only.
class FlowQueue final
{
public:
    using Flow = std::function<void()>;

    /// Flows that wait are dropped once `isLeaving` is true.
    explicit FlowQueue(std::function<bool()> isLeaving);

    void run(Flow flow);

private:
    std::function<bool()> isLeaving;
    /// The flow that runs, and those that wait for its end.
    std::deque<Flow> flows;
};
