#include "window/samplepass.h"

#include "link/connection.h"
#include "link/packet.h"
#include "model/detectorpair.h"
#include "model/displayvalue.h"
#include "recording/recorder.h"
#include "window/decimation.h"
#include "window/livesystems.h"
#include "window/statistics.h"
#include "window/statusflags.h"

#include <array>
#include <utility>

namespace {

constexpr std::size_t maxSamplesPerTick = 501;
/// Room for these is made before the store is locked.
constexpr std::size_t usualSamplesPerTick = 16;

bool isPulsed(const LiveSystem& system)
{
    return system.detectors->pulsedLaser == 1;
}

StagePositions voltsOf(const MeasureSample& sample)
{
    return {QPointF(sample.x1, sample.y1) * positionScale,
            QPointF(sample.x2, sample.y2) * positionScale};
}

} // namespace

SampleSource sourceOfDisplayed(const LiveSystems& systems)
{
    return {systems.displayed(), &Connection::takeLiveSamples, std::nullopt};
}

SampleSource sourceOfCommon(const LiveSystems& systems)
{
    return {systems.common(), &Connection::takeCommonSamples, systems.commonCurve(0)};
}

std::vector<SampleBlock> drain(const LiveSystems& systems, const SampleSource& source)
{
    std::vector<SampleBlock> blocks;
    blocks.reserve(std::size_t(source.systems.size()));
    for (const int index : source.systems) {
        const int curve = source.firstCurve ? *source.firstCurve + int(blocks.size()) : index;
        SampleBlock block{index, curve, {}};
        block.samples.reserve(usualSamplesPerTick);
        (systems.connectionAt(index).*source.store)(block.samples, maxSamplesPerTick);
        blocks.push_back(std::move(block));
    }
    return blocks;
}

SamplePass::SamplePass(LiveSystems& liveSystems, Stages& stageViews, Statistics& runStatistics,
                       const SampleManner& sampleManner, int samplingRateHz)
    : systems(liveSystems)
    , stages(stageViews)
    , statistics(runStatistics)
    , manner(sampleManner)
    , decimations{stages[0].plots().decimation(samplingRateHz),
                  stages[1].plots().decimation(samplingRateHz)}
{}

bool SamplePass::show(std::vector<SampleBlock> blocks)
{
    bool goesOn = true;
    for (std::size_t i = 0; i < blocks.size() && goesOn; ++i) {
        const Place place{i == 0, i + 1 == blocks.size()};
        const std::size_t taken = showBlock(blocks[i], place);
        goesOn = taken == blocks[i].samples.size();
        giveToRecorder(std::move(blocks[i]), taken, place);
    }
    statistics.showTaken();
    return goesOn;
}

/// The sample that ends a run tells no state and is not recorded: the controller is asked from now
/// on.
std::size_t SamplePass::showBlock(const SampleBlock& block, const Place& place)
{
    if (block.samples.empty())
        return 0;
    LiveSystem& system = systems.at(block.system);
    const std::size_t taken = takeSamples(block, place);
    if (manner.readOut)
        showReadouts(system);
    const bool goesOn = taken == block.samples.size();
    if (goesOn && manner.tellsState && packet::hasFlags(system.connection->firmwareVersion()))
        statusflags::takeSample(system.status, block.samples.back());
    return taken;
}

void SamplePass::giveToRecorder(SampleBlock block, std::size_t taken, const Place& place)
{
    const LiveSystem& system = systems.at(block.system);
    SystemRecord* record =
        manner.recorder ? manner.recorder->recordOf(system.connection.get()) : nullptr;
    if (!record)
        return;
    block.samples.resize(taken);
    record->take(std::move(block.samples), {place.last, isPulsed(system)});
}

std::size_t SamplePass::takeSamples(const SampleBlock& block, const Place& place)
{
    LiveSystem& system = systems.at(block.system);
    const bool everySample = !manner.decimated || isPulsed(system);
    // The first sample of a system in each tick is always plotted.
    std::array<Decimation, 2> passing{Decimation(decimations[0]), Decimation(decimations[1])};

    for (std::size_t i = 0; i < block.samples.size(); ++i) {
        const MeasureSample& sample = block.samples[i];
        const StagePositions positions = positionsOf(sample, system);
        for (std::size_t stage = 0; stage < stages.size(); ++stage) {
            const bool intoTimePlots = passing[stage].takes() || everySample;
            plot(sample, stage, block.curve, positions[stage], intoTimePlots);
        }
        if (manner.readOut)
            takeReadouts(sample, positions);
        if (place.first && manner.sweeps) {
            for (StageView& stage : stages)
                stage.plots().wrapSweep(sample.timeMs);
        }
        const StagePositions counted = manner.statisticsInVolts ? voltsOf(sample) : positions;
        if (!statistics.take(system, counted, place.first, place.last && manner.endsRuns))
            return i;
    }
    return block.samples.size();
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

void SamplePass::plot(const MeasureSample& sample, std::size_t stage, int curve,
                      const QPointF& position, bool intoTimePlots)
{
    StagePlots& plots = stages[stage].plots();
    const double intensityV = stageValues(sample, stage).intensity * intensityScale;
    if (intoTimePlots)
        plots.appendTimePoints(curve, sample.timeMs, position, intensityV, manner.timeSteps);
    plots.appendPointingPoint(curve, position);
}

void SamplePass::takeReadouts(const MeasureSample& sample, const StagePositions& positions)
{
    for (std::size_t stage = 0; stage < stages.size(); ++stage)
        stages[stage].readouts().take(positions[stage], stageValues(sample, stage),
                                      manner.averagedSamples);
}

void SamplePass::showReadouts(const LiveSystem& system)
{
    for (std::size_t stage = 0; stage < stages.size(); ++stage)
        stages[stage].readouts().show(
            manner.decimals.value_or((*system.detectors)[stage]->displayDecimals()));
}
