#include "connectedsystems.h"
#include "processcost.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <chrono>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

/// 100 ticks a second.
constexpr std::chrono::milliseconds tickPeriod(10);
/// One sweep of the time plots, from empty to full.
constexpr int ticksPerSweep = 1000;
constexpr int idleTicks = 200;
/// Longer than the samples of one tick last, so that a tick takes as many as it ever does.
constexpr std::chrono::milliseconds stall(1050);
constexpr int stalledTicks = 10;
/// More than a recording of 50 systems needs for the samples of such a tick.
constexpr int catchUpTurns = 30;

/// The time is that of the tick and of the painting it leads to, averaged over one sweep. The
/// systems stream while the ticks run, each with its thread, on the same processors.
void displayTick(benchmark::State& state)
{
    ConnectedSystems systems(int(state.range(0)));
    if (!systems.start()) {
        state.SkipWithError("not all systems stream");
        return;
    }
    BenchWindow& screen = systems.onScreen();
    double tickS = 0.0;
    double wholeS = 0.0;
    double cpuS = 0.0;
    const double storedBefore = systems.samplesStored();
    const int paintedBefore = screen.canvasesPainted();
    Clock::time_point due = Clock::now();
    for ([[maybe_unused]] auto _ : state) {
        due += tickPeriod;
        std::this_thread::sleep_until(due);
        const double cpuAtBegin = processcost::threadCpuS();
        const Clock::time_point begin = Clock::now();
        screen.tick();
        const Clock::time_point ticked = Clock::now();
        screen.paint();
        const Seconds whole = Clock::now() - begin;
        state.SetIterationTime(whole.count());
        tickS += Seconds(ticked - begin).count();
        wholeS += whole.count();
        cpuS += processcost::threadCpuS() - cpuAtBegin;
    }

    const double ticks = double(state.iterations());
    constexpr double msPerS = 1000.0;
    constexpr int plotCount = 6;
    // On a busy machine samples come late, and a tick without any paints nothing.
    constexpr double fewestWithSamples = 0.9;
    const double painted = (screen.canvasesPainted() - paintedBefore) / (plotCount * ticks);
    if (painted < fewestWithSamples)
        state.SkipWithError("not all plots were painted");
    state.counters["painted"] = painted;
    state.counters["tick_ms"] = tickS / ticks * msPerS;
    state.counters["paint_ms"] = (wholeS - tickS) / ticks * msPerS;
    state.counters["cpu_ms"] = cpuS / ticks * msPerS;
    state.counters["budget_share"] = wholeS / ticks / Seconds(tickPeriod).count();
    state.counters["samples_per_tick_and_system"] =
        (systems.samplesStored() - storedBefore) / ticks / double(state.range(0));
}

/// The processor's time of a tick that comes late, of its painting, and of the events behind it, in
/// which a recording catches up: what it costs with a recording of every sample less what it costs
/// without is the recording's share.
void stalledTick(benchmark::State& state)
{
    const QTemporaryDir folder;
    ConnectedSystems systems(int(state.range(0)));
    if (!systems.start() || (state.range(1) != 0 && !systems.record(folder.path()))) {
        state.SkipWithError("not all systems stream or are recorded");
        return;
    }
    double tickS = 0.0;
    double paintS = 0.0;
    for ([[maybe_unused]] auto _ : state) {
        std::this_thread::sleep_for(stall);
        const double cpuAtBegin = processcost::threadCpuS();
        systems.onScreen().tick();
        const double cpuAtTick = processcost::threadCpuS();
        tickS += cpuAtTick - cpuAtBegin;
        systems.onScreen().paint();
        paintS += processcost::threadCpuS() - cpuAtTick;
        for (int turn = 0; turn < catchUpTurns; ++turn)
            systems.onScreen().paint();
        state.SetIterationTime(processcost::threadCpuS() - cpuAtBegin);
    }
    constexpr double msPerS = 1000.0;
    state.counters["paint_ms"] = paintS / double(state.iterations()) * msPerS;
    state.counters["tick_ms"] = tickS / double(state.iterations()) * msPerS;
}

/// Without an acquisition the tick asks every system for its status and takes what came of the last
/// request. The time is that of tick and painting; the pause between two ticks, in which the
/// controllers answer, does not count.
void idleTick(benchmark::State& state)
{
    ConnectedSystems systems(int(state.range(0)));
    if (!systems.areUp()) {
        state.SkipWithError("not all systems are connected");
        return;
    }
    Clock::time_point due = Clock::now();
    for ([[maybe_unused]] auto _ : state) {
        due += tickPeriod;
        std::this_thread::sleep_until(due);
        const Clock::time_point begin = Clock::now();
        systems.onScreen().tick();
        systems.onScreen().paint();
        state.SetIterationTime(Seconds(Clock::now() - begin).count());
    }
}

BENCHMARK(displayTick)
    ->ArgName("systems")
    ->Arg(1)
    ->Arg(8)
    ->Arg(50)
    ->Iterations(ticksPerSweep)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(stalledTick)
    ->ArgNames({"systems", "recorded"})
    ->Args({50, 0})
    ->Args({50, 1})
    ->Iterations(stalledTicks)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(idleTick)
    ->ArgName("systems")
    ->Arg(1)
    ->Arg(8)
    ->Arg(50)
    ->Iterations(idleTicks)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace
