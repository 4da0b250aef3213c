#include "connectedsystems.h"

#include <benchmark/benchmark.h>
#include <chrono>
#include <ctime>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

/// 100 ticks a second.
constexpr std::chrono::milliseconds tickPeriod(10);
/// One sweep of the time plots, from empty to full.
constexpr int ticksPerSweep = 1000;
constexpr int idleTicks = 200;

double threadCpuSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) + double(time.tv_nsec) * 1e-9;
}

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
        const double cpuAtBegin = threadCpuSeconds();
        const Clock::time_point begin = Clock::now();
        screen.tick();
        const Clock::time_point ticked = Clock::now();
        screen.paint();
        const Seconds whole = Clock::now() - begin;
        state.SetIterationTime(whole.count());
        tickS += Seconds(ticked - begin).count();
        wholeS += whole.count();
        cpuS += threadCpuSeconds() - cpuAtBegin;
    }

    const double ticks = double(state.iterations());
    constexpr double msPerS = 1000.0;
    constexpr int plotCount = 6;
    if (screen.canvasesPainted() - paintedBefore < plotCount * ticks)
        state.SkipWithError("not all plots were painted");
    state.counters["tick_ms"] = tickS / ticks * msPerS;
    state.counters["paint_ms"] = (wholeS - tickS) / ticks * msPerS;
    state.counters["cpu_ms"] = cpuS / ticks * msPerS;
    state.counters["budget_share"] = wholeS / ticks / Seconds(tickPeriod).count();
    state.counters["samples_per_tick_and_system"] =
        (systems.samplesStored() - storedBefore) / ticks / double(state.range(0));
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
BENCHMARK(idleTick)
    ->ArgName("systems")
    ->Arg(1)
    ->Arg(8)
    ->Arg(50)
    ->Iterations(idleTicks)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace
