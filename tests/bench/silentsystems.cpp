#include "connectedsystems.h"
#include "plots/counter.h"

#include <QElapsedTimer>
#include <QSpinBox>
#include <QTimer>
#include <QtTest>

#include <algorithm>
#include <benchmark/benchmark.h>

namespace {

constexpr int systemCount = 8;
constexpr int updateRateHz = 100;
constexpr int watchedMs = 5000;
constexpr double msPerS = 1000.0;

/// Turns the event loop for a while and returns the longest time between two of its events. The
/// events are those of a timer that is due in every pass, so a pass that takes long shows.
double longestGapS(const BenchWindow& screen)
{
    constexpr double nsPerS = 1e9;
    auto* rate = screen.window().findChild<Counter*>("updateRateCounter");
    rate->spinBox->setValue(updateRateHz);
    QElapsedTimer sinceEvent;
    qint64 longestNs = 0;
    QTimer eachPass;
    QObject::connect(&eachPass, &QTimer::timeout, &eachPass, [&] {
        longestNs = std::max(longestNs, sinceEvent.nsecsElapsed());
        sinceEvent.start();
    });
    sinceEvent.start();
    eachPass.start(0);
    QTest::qWait(watchedMs);
    return double(longestNs) / nsPerS;
}

/// The longest time between two events of the GUI thread, with eight systems of which some keep
/// their links and say nothing.
void silentSystems(benchmark::State& state)
{
    const int silent = int(state.range(0));
    const bool streaming = state.range(1) != 0;
    ConnectedSystems systems(systemCount);
    if (!systems.areUp() || (streaming && !systems.start())) {
        state.SkipWithError("not all systems are connected or stream");
        return;
    }
    // One tick with the usual period, which then starts the next ones.
    systems.onScreen().tick();
    systems.silence(silent);
    double longestS = 0.0;
    for ([[maybe_unused]] auto _ : state) {
        longestS = longestGapS(systems.onScreen());
        state.SetIterationTime(longestS);
    }
    state.counters["longest_gap_ms"] = longestS * msPerS;
}

BENCHMARK(silentSystems)
    ->ArgNames({"silent", "streaming"})
    ->Args({0, 0})
    ->Args({4, 0})
    ->Args({0, 1})
    ->Args({4, 1})
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace
