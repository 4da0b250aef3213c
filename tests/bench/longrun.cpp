// What the points of a long run cost the tick that takes longest: fifty systems in pointing mode
// have a hundred curves, which grow side by side.

#include "plots/incrementalplot.h"

#include <QElapsedTimer>
#include <QVector>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <vector>

namespace {

constexpr int curves = 100;
constexpr int pointsPerTick = 5;
constexpr int ticks = 200000;
constexpr double nsPerMs = 1e6;

/// Appends the points of each tick with `append(curve, point)`.
template <typename Append>
void runTicks(benchmark::State& state, Append append)
{
    // What earlier benchmarks have left would hide what new memory costs.
    malloc_trim(0);
    for ([[maybe_unused]] auto _ : state) {
        qint64 longestNs = 0;
        for (int tick = 0; tick < ticks; ++tick) {
            QElapsedTimer clock;
            clock.start();
            for (int curve = 0; curve < curves; ++curve) {
                for (int i = 0; i < pointsPerTick; ++i)
                    append(curve, QPointF(tick, i));
            }
            longestNs = std::max(longestNs, clock.nsecsElapsed());
        }
        state.counters["longest_ms"] = double(longestNs) / nsPerMs;
    }
    state.SetItemsProcessed(state.iterations() * ticks);
}

void ticksOfALongRun(benchmark::State& state)
{
    IncrementalPlot plot(nullptr);
    plot.addCurves(curves);
    plot.setKeepAllPoints(true);
    runTicks(state, [&plot](int curve, const QPointF& point) { plot.appendData(curve, point); });
}

/// What `ticksOfALongRun` is compared with: room that doubles when it is full.
void ticksOfALongRunWithVectors(benchmark::State& state)
{
    std::vector<QVector<QPointF>> points(curves);
    runTicks(state, [&points](int curve, const QPointF& point) {
        points[std::size_t(curve)].append(point);
    });
}

BENCHMARK(ticksOfALongRun)->Iterations(1)->Unit(benchmark::kSecond);
BENCHMARK(ticksOfALongRunWithVectors)->Iterations(1)->Unit(benchmark::kSecond);

} // namespace
