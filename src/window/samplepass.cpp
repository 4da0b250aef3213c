#include "window/samplepass.h"

#include "link/connection.h"
#include "link/packet.h"
#include "model/detectorpair.h"
#include "window/decimation.h"
#include "window/displayvalue.h"
#include "window/livesystems.h"
#include "window/statistics.h"
#include "window/statusflags.h"

namespace {

constexpr std::size_t maxSamplesPerTick = 501;

} // namespace

std::vector<SampleBlock> drain(const LiveSystems& systems, const SampleSource& source)
{
    std::vector<SampleBlock> blocks;
    blocks.reserve(std::size_t(source.systems.size()));
    for (const int index : source.systems) {
        SampleBlock block{index, source.curveOffset + index, {}};
        Connection& connection = systems.connectionAt(index);
        MeasureSample sample;
        while (block.samples.size() < maxSamplesPerTick && (connection.*source.store)(sample) != 0)
            block.samples.push_back(sample);
        blocks.push_back(std::move(block));
    }
    return blocks;
}

SamplePass::SamplePass(LiveSystems& liveSystems, Stages& stageViews, Statistics& runStatistics,
                       int samplingRateHz)
    : systems(liveSystems)
    , stages(stageViews)
    , statistics(runStatistics)
    , decimations{stages[0].plots().decimation(samplingRateHz),
                  stages[1].plots().decimation(samplingRateHz)}
{}

bool SamplePass::show(const std::vector<SampleBlock>& blocks)
{
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        const Place place{i == 0, i + 1 == blocks.size(), blocks.size() == 1};
        if (!showBlock(blocks[i], place))
            return false;
    }
    return true;
}

bool SamplePass::showBlock(const SampleBlock& block, const Place& place)
{
    LiveSystem& system = systems.at(block.system);
    const bool everySample = system.detectors->pulsedLaser == 1;
    // The first sample of a system in each tick is always plotted.
    std::array<Decimation, 2> passing{Decimation(decimations[0]), Decimation(decimations[1])};

    for (const MeasureSample& sample : block.samples) {
        const StagePositions positions = positionsOf(sample, system);
        for (std::size_t stage = 0; stage < stages.size(); ++stage) {
            if (passing[stage].takes() || everySample)
                stages[stage].plots().appendTimePoints(block.curve, sample.timeMs, positions[stage],
                                                       stageValues(sample, stage).intensity
                                                           * intensityScale);
            stages[stage].plots().appendPointingPoint(block.curve, positions[stage]);
        }
        if (place.single)
            showReadouts(sample, positions, system);
        if (place.first) {
            for (StageView& stage : stages)
                stage.plots().wrapSweep(sample.timeMs);
        }
        // The sample that ends a run tells no state: the controller is asked from now on.
        if (!statistics.take(system, positions, place.first, place.last))
            return false;
    }
    if (!block.samples.empty() && packet::hasFlags(system.connection->firmwareVersion()))
        statusflags::takeSample(system.status, block.samples.back());
    return true;
}

StagePositions SamplePass::positionsOf(const MeasureSample& sample, const LiveSystem& system) const
{
    StagePositions positions;
    for (std::size_t stage = 0; stage < stages.size(); ++stage) {
        const StageValues values = stageValues(sample, stage);
        const auto shown = [&](int raw) {
            return toDisplayValue(raw, values.intensity, *(*system.detectors)[stage],
                                  stages[stage].unitsAgree());
        };
        positions[stage] = QPointF(shown(values.x), shown(values.y));
    }
    return positions;
}

void SamplePass::showReadouts(const MeasureSample& sample, const StagePositions& positions,
                              const LiveSystem& system)
{
    for (std::size_t stage = 0; stage < stages.size(); ++stage)
        stages[stage].readouts().show(positions[stage], stageValues(sample, stage),
                                      (*system.detectors)[stage]->displayDecimals());
}
