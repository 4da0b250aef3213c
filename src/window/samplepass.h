#pragma once

#include "model/measuresample.h"
#include "window/samplemanner.h"
#include "window/stageview.h"

#include <QList>

#include <array>
#include <optional>
#include <vector>

class Connection;
class LiveSystems;
class Statistics;
struct LiveSystem;

/// Which samples a tick takes: those of these systems, from one of the two stores of each
/// connection.
struct SampleSource
{
    /// Moves the oldest samples of a store, up to the number given, behind those of the vector.
    using Store = void (Connection::*)(std::vector<MeasureSample>&, std::size_t);

    /// Indices of the systems, in the order in which they are shown.
    QList<int> systems;
    Store store;
    /// The curve of the first system, which those of the others follow in their order. Unset, each
    /// has the curve of its own index.
    std::optional<int> firstCurve;
};

/// The streams of the displayed systems.
SampleSource sourceOfDisplayed(const LiveSystems& systems);
/// The common detectors that are shown.
SampleSource sourceOfCommon(const LiveSystems& systems);

/// The samples that one system gave to a tick.
struct SampleBlock
{
    int system = 0;
    int curve = 0;
    std::vector<MeasureSample> samples;
};

/// The samples that wait, at most 501 of each system, which bounds a tick even after a stall: what
/// is left is taken by the next one.
std::vector<SampleBlock> drain(const LiveSystems& systems, const SampleSource& source);

/// Brings the samples of one tick onto the stages in one manner: into the plots, the readouts,
/// the statistics and the status records. Nothing is painted.
class SamplePass final
{
public:
    SamplePass(LiveSystems& systems, Stages& stages, Statistics& statistics,
               const SampleManner& manner, int samplingRateHz);

    /// Shows the blocks in their order and gives what is recorded to the recorder. False if the run
    /// came to its end, which leaves out the rest of the last block.
    bool show(std::vector<SampleBlock> blocks);

private:
    struct Place
    {
        bool first;
        bool last;
    };

    /// Returns how many samples were taken before one ended the run, which is all of them where
    /// none did.
    std::size_t showBlock(const SampleBlock& block, const Place& place);
    std::size_t takeSamples(const SampleBlock& block, const Place& place);
    void giveToRecorder(SampleBlock block, std::size_t taken, const Place& place);
    StagePositions positionsOf(const MeasureSample& sample, const LiveSystem& system) const;
    void plot(const MeasureSample& sample, std::size_t stage, int curve, const QPointF& position,
              bool intoTimePlots);
    void takeReadouts(const MeasureSample& sample, const StagePositions& positions);
    void showReadouts(const LiveSystem& system);

    LiveSystems& systems;
    Stages& stages;
    Statistics& statistics;
    SampleManner manner;
    /// Every how many samples each stage's time plots take one.
    std::array<int, 2> decimations;
};
