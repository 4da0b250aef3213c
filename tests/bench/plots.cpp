#include "benchwindow.h"
#include "plots/dotlayer.h"
#include "plots/genericplot.h"

#include <QElapsedTimer>
#include <qwt_plot_curve.h>
#include <qwt_symbol.h>

#include <algorithm>
#include <array>
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <memory>
#include <random>
#include <vector>

namespace {

constexpr int curve = 0;
constexpr double timeWindowS = 10.0;
/// One sweep of a time plot that gets a point with each of 100 ticks a second.
constexpr int pointsPerSweep = 1000;
constexpr QSize pointingDotSize(3, 3);
constexpr QSize timeDotSize(2, 2);

/// Positions around the middle, in volts, like those of a beam that is not stabilised.
class Beam
{
public:
    double next() { return spread(generator); }

private:
    std::mt19937 generator{4711};
    std::normal_distribution<double> spread{0.0, 1.0};
};

/// Positions of one system on a pointing plot.
QVector<QPointF> cloud(Beam& beam, int count)
{
    QVector<QPointF> points;
    for (int i = 0; i < count; ++i) {
        const double x = beam.next();
        points.append(QPointF(x, beam.next()));
    }
    return points;
}

void appendCloud(GenericPlot& plot, int count)
{
    Beam beam;
    for (const QPointF& point : cloud(beam, count))
        plot.appendData(curve, point);
}

constexpr int pointsOfShortRun = 4000;
constexpr int pointsOfLongRun = 1000000;

/// The memory of a long run comes from the operating system, whose pages then cost more than the
/// points. What earlier benchmarks have left would hide that, so it is given back.
void prepareMemory(benchmark::State& state)
{
    if (state.range(0) < pointsOfLongRun)
        return;
    state.PauseTiming();
    malloc_trim(0);
    state.ResumeTiming();
}

void appendToKeptPoints(benchmark::State& state)
{
    const int count = int(state.range(0));
    IncrementalPlot plot(nullptr);
    plot.addCurves(1);
    plot.setKeepAllPoints(true);
    for ([[maybe_unused]] auto _ : state) {
        plot.clearCurve(curve);
        prepareMemory(state);
        for (int i = 0; i < count; ++i)
            plot.appendData(curve, QPointF(i, i));
    }
    state.SetItemsProcessed(state.iterations() * count);
}

/// What `appendToKeptPoints` is compared with.
void appendToVector(benchmark::State& state)
{
    const int count = int(state.range(0));
    for ([[maybe_unused]] auto _ : state) {
        prepareMemory(state);
        QVector<QPointF> points;
        for (int i = 0; i < count; ++i)
            points.append(QPointF(i, i));
        benchmark::DoNotOptimize(points.constData());
    }
    state.SetItemsProcessed(state.iterations() * count);
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
    appendCloud(plot, int(state.range(0)));
    replot(state, screen, plot);
}

/// A curve of the library, which draws all its dots with each replot. It belongs to the plot.
void attachOrdinaryCurve(GenericPlot& plot, const QSize& dotSize, const QVector<QPointF>& points)
{
    auto ordinary = std::make_unique<QwtPlotCurve>();
    ordinary->setStyle(QwtPlotCurve::Dots);
    ordinary->setSymbol(
        new QwtSymbol(QwtSymbol::Ellipse, QBrush(Qt::blue), QPen(Qt::blue), dotSize));
    ordinary->setSamples(points);
    ordinary.release()->attach(&plot);
}

/// What `replotPointing` is compared with.
void replotPointingOrdinarily(benchmark::State& state)
{
    BenchWindow screen;
    GenericPlot& plot = screen.plot("osciPlot1");
    Beam beam;
    attachOrdinaryCurve(plot, pointingDotSize, cloud(beam, int(state.range(0))));
    replot(state, screen, plot);
}

/// Six plots as a tick leaves them behind: systems in the middle of a sweep, at 500 samples/s and
/// 100 ticks/s.
class SixPlots
{
public:
    SixPlots(int systemCount, int pointsInHistory)
        : systems(systemCount)
        , history(pointsInHistory)
    {
        for (int stage = 0; stage < 2; ++stage) {
            const QByteArray number = QByteArray::number(stage + 1);
            pointing[stage] = &screen.plot(("osciPlot" + number).constData());
            position[stage] = &screen.plot(("positionPlot" + number).constData());
            intensity[stage] = &screen.plot(("intensityPlot" + number).constData());
            pointing[stage]->setKeepAllPoints(history > 0);
        }
        for (GenericPlot* plot : all())
            plot->start();
    }

    void addCurves()
    {
        for (int stage = 0; stage < 2; ++stage) {
            pointing[stage]->addCurves(systems);
            position[stage]->addCurves(2 * systems);
            intensity[stage]->addCurves(systems);
        }
        for (int i = 0; i < history; ++i)
            appendPointingPoints();
    }
    void addOrdinaryCurves()
    {
        for (int stage = 0; stage < 2; ++stage) {
            for (int system = 0; system < systems; ++system) {
                attachOrdinaryCurve(
                    *pointing[stage], pointingDotSize,
                    cloud(beam, history > 0 ? history : IncrementalPlot::maxPoints));
                attachOrdinaryCurve(*position[stage], timeDotSize, halfASweep());
                attachOrdinaryCurve(*position[stage], timeDotSize, halfASweep());
                attachOrdinaryCurve(*intensity[stage], timeDotSize, halfASweep());
            }
        }
    }

    void appendTick()
    {
        constexpr int samplesPerTick = 5;
        appendTimePoints();
        for (int i = 0; i < samplesPerTick; ++i)
            appendPointingPoints();
    }
    void replotChanged()
    {
        for (GenericPlot* plot : all())
            plot->replotIfChanged();
        screen.paint();
    }
    void replotAll()
    {
        for (GenericPlot* plot : all())
            plot->replot();
        screen.paint();
    }
    /// Paints until all dots are there.
    void settle()
    {
        const auto isComplete = [](const GenericPlot* plot) {
            return plot->dotLayer().isComplete();
        };
        const auto plots = all();
        do {
            screen.paint();
        } while (!std::all_of(plots.begin(), plots.end(), isComplete));
    }
    int canvasesPainted() const { return screen.canvasesPainted(); }

private:
    std::array<GenericPlot*, 6> all() const
    {
        return {position[0], intensity[0], pointing[0], position[1], intensity[1], pointing[1]};
    }
    void appendTimePoints()
    {
        seconds += timeWindowS / pointsPerSweep;
        if (seconds > timeWindowS)
            beginSweep();
        for (int stage = 0; stage < 2; ++stage) {
            for (int index = 0; index < 2 * systems; ++index)
                position[stage]->appendData(index, QPointF(seconds, beam.next()));
            for (int index = 0; index < systems; ++index)
                intensity[stage]->appendData(index, QPointF(seconds, 4.0 + beam.next()));
        }
    }
    void beginSweep()
    {
        seconds = 0.0;
        for (GenericPlot* plot : {position[0], intensity[0], position[1], intensity[1]})
            plot->clear();
    }
    void appendPointingPoints()
    {
        for (int stage = 0; stage < 2; ++stage) {
            for (int index = 0; index < systems; ++index) {
                const double x = beam.next();
                pointing[stage]->appendData(index, QPointF(x, beam.next()));
            }
        }
    }
    /// On average a sweep has come half of its way.
    QVector<QPointF> halfASweep()
    {
        QVector<QPointF> points;
        for (int i = 0; i < pointsPerSweep / 2; ++i)
            points.append(QPointF(i * timeWindowS / pointsPerSweep, beam.next()));
        return points;
    }

    BenchWindow screen;
    const int systems;
    /// Of each pointing curve; 0 in oscilloscope mode.
    const int history;
    std::array<GenericPlot*, 2> pointing;
    std::array<GenericPlot*, 2> position;
    std::array<GenericPlot*, 2> intensity;
    Beam beam;
    double seconds = 0.0;
};

void countPaintings(benchmark::State& state, int painted)
{
    constexpr int plots = 6;
    if (painted < plots * state.iterations())
        state.SkipWithError("the plots were not painted");
}

/// Points that come with a tick, their replot and their painting.
void tickOfSixPlots(benchmark::State& state)
{
    SixPlots plots(int(state.range(0)), int(state.range(1)));
    plots.addCurves();
    plots.replotAll();
    plots.settle();
    const int paintedBefore = plots.canvasesPainted();
    for ([[maybe_unused]] auto _ : state) {
        plots.appendTick();
        plots.replotChanged();
    }
    countPaintings(state, plots.canvasesPainted() - paintedBefore);
}

/// What `tickOfSixPlots` is compared with: the same dots, all drawn by the library.
void ordinaryTickOfSixPlots(benchmark::State& state)
{
    SixPlots plots(int(state.range(0)), int(state.range(1)));
    plots.addOrdinaryCurves();
    plots.replotAll();
    const int paintedBefore = plots.canvasesPainted();
    for ([[maybe_unused]] auto _ : state)
        plots.replotAll();
    countPaintings(state, plots.canvasesPainted() - paintedBefore);
}

/// A long run whose picture has to be made anew, piece by piece: all of it, and the longest piece.
void picturesAfterAResize(benchmark::State& state)
{
    BenchWindow screen;
    GenericPlot& plot = screen.plot("osciPlot1");
    plot.setKeepAllPoints(true);
    plot.addCurves(1);
    appendCloud(plot, int(state.range(0)));
    plot.start();
    double longestMs = 0.0;
    double range = plot.maxRange();
    for ([[maybe_unused]] auto _ : state) {
        range += 0.1;
        plot.setAxisScale(QwtPlot::xBottom, -range, range);
        plot.replot();
        do {
            QElapsedTimer piece;
            piece.start();
            screen.paint();
            longestMs = qMax(longestMs, double(piece.nsecsElapsed()) / 1e6);
        } while (!plot.dotLayer().isComplete());
    }
    state.counters["longest_ms"] = longestMs;
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

/// Systems, and points of each in its pointing plots; none for those that keep few points.
void systemsAndHistory(benchmark::internal::Benchmark* bench)
{
    bench->ArgNames({"systems", "history"});
    for (const std::vector<int64_t>& row :
         {std::vector<int64_t>{1, 0}, {1, 1000000}, {8, 0}, {50, 0}, {50, 20000}})
        bench->Args(row);
    bench->Unit(benchmark::kMicrosecond);
}

BENCHMARK(appendToKeptPoints)
    ->ArgName("points")
    ->Arg(pointsOfShortRun)
    ->Arg(pointsOfLongRun)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(appendToVector)
    ->ArgName("points")
    ->Arg(pointsOfShortRun)
    ->Arg(pointsOfLongRun)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(appendToBoundedPoints);
BENCHMARK(replotPointing)
    ->ArgName("points")
    ->Arg(10)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(replotPointingOrdinarily)
    ->ArgName("points")
    ->Arg(10)
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(tickOfSixPlots)->Apply(systemsAndHistory);
BENCHMARK(ordinaryTickOfSixPlots)->Apply(systemsAndHistory);
BENCHMARK(picturesAfterAResize)
    ->ArgName("points")
    ->Arg(1000000)
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(replotPosition)->Unit(benchmark::kMicrosecond);
BENCHMARK(replotIntensity)->Unit(benchmark::kMicrosecond);

} // namespace
