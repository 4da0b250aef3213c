#include "benchwindow.h"
#include "plots/genericplot.h"

#include <benchmark/benchmark.h>
#include <random>

namespace {

constexpr int curve = 0;
constexpr double timeWindowS = 10.0;
/// One sweep of a time plot that gets a point with each of 100 ticks a second.
constexpr int pointsPerSweep = 1000;

/// Positions around the middle, in volts, like those of a beam that is not stabilised.
class Beam
{
public:
    double next() { return spread(generator); }

private:
    std::mt19937 generator{4711};
    std::normal_distribution<double> spread{0.0, 1.0};
};

void appendToKeptPoints(benchmark::State& state)
{
    IncrementalPlot plot(nullptr);
    plot.addCurves(1);
    plot.setKeepAllPoints(true);
    double t = 0.0;
    for ([[maybe_unused]] auto _ : state) {
        plot.appendData(curve, QPointF(t, t));
        t += 1.0;
    }
    state.SetItemsProcessed(state.iterations());
}

void appendToBoundedPoints(benchmark::State& state)
{
    IncrementalPlot plot(nullptr);
    plot.addCurves(1);
    double t = 0.0;
    for ([[maybe_unused]] auto _ : state) {
        plot.appendData(curve, QPointF(t, t));
        t += 1.0;
    }
    state.SetItemsProcessed(state.iterations());
}

/// Replots and paints a plot of the window as during an acquisition.
void replot(benchmark::State& state, BenchWindow& screen, GenericPlot& plot)
{
    plot.start();
    plot.replot();
    screen.paint();
    const int paintedBefore = screen.canvasesPainted();
    for ([[maybe_unused]] auto _ : state) {
        plot.replot();
        screen.paint();
    }
    if (screen.canvasesPainted() - paintedBefore < state.iterations())
        state.SkipWithError("the plot was not painted");
    state.counters["width"] = plot.canvas()->width();
    state.counters["height"] = plot.canvas()->height();
}

void replotPointing(benchmark::State& state)
{
    BenchWindow screen;
    GenericPlot& plot = screen.plot("osciPlot1");
    plot.setKeepAllPoints(state.range(0) > IncrementalPlot::maxPoints);
    plot.addCurves(1);
    Beam beam;
    for (int i = 0; i < state.range(0); ++i) {
        const double x = beam.next();
        plot.appendData(curve, QPointF(x, beam.next()));
    }
    replot(state, screen, plot);
}

void replotTimePlot(benchmark::State& state, const char* name, int curves)
{
    BenchWindow screen;
    GenericPlot& plot = screen.plot(name);
    plot.addCurves(curves);
    Beam beam;
    for (int i = 0; i < pointsPerSweep; ++i) {
        for (int index = 0; index < curves; ++index)
            plot.appendData(index, QPointF(i * timeWindowS / pointsPerSweep, beam.next() + index));
    }
    replot(state, screen, plot);
}

void replotPosition(benchmark::State& state)
{
    constexpr int xAndY = 2;
    replotTimePlot(state, "positionPlot1", xAndY);
}

void replotIntensity(benchmark::State& state)
{
    replotTimePlot(state, "intensityPlot1", 1);
}

BENCHMARK(appendToKeptPoints)->Iterations(1000000);
BENCHMARK(appendToBoundedPoints);
BENCHMARK(replotPointing)
    ->ArgName("points")
    ->Arg(10)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(replotPosition)->Unit(benchmark::kMicrosecond);
BENCHMARK(replotIntensity)->Unit(benchmark::kMicrosecond);

} // namespace
