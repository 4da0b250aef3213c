#include "window/samplemanner.h"

#include "window/livesystems.h"

namespace {

constexpr std::size_t commonAveragedSamples = 21;
constexpr int commonDecimals = 2;

} // namespace

SampleManner mannerOfDisplayed(const LiveSystems& systems, const Recorder* recorder)
{
    SampleManner manner;
    manner.readOut = systems.displayed().size() == 1;
    manner.recorder = recorder;
    return manner;
}

SampleManner mannerOfCommon(const LiveSystems& systems)
{
    const bool alone = systems.displayed().isEmpty();
    SampleManner manner;
    manner.decimated = false;
    manner.timeSteps = TimeSteps::WholeSeconds;
    manner.readOut = alone;
    manner.averagedSamples = commonAveragedSamples;
    manner.decimals = commonDecimals;
    manner.statisticsInVolts = true;
    manner.sweeps = alone;
    manner.endsRuns = alone;
    manner.tellsState = false;
    return manner;
}
