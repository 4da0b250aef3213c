// What recording costs: the lines alone, and all that a tick does for many systems.

#include "model/displayvalue.h"
#include "recording/recorder.h"
#include "recording/recordtext.h"

#include <QBuffer>
#include <QDateTime>
#include <QTemporaryDir>
#include <QTextStream>

#include <array>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <random>

namespace {

/// As many as a tick takes of a system at most.
constexpr int linesPerTick = 501;

enum Units : int { Volts, Lengths };

DetectorPair detectorsOf(int units)
{
    return units == Volts ? DetectorPair()
                          : DetectorPair(QuadrantDetector, 1, PsdDetector, 1, 0, 50.0, 50.0);
}

/// A beam that moves over a good part of its detector; the same samples in every run.
std::vector<MeasureSample> beamSamples()
{
    std::mt19937 random(1);
    std::uniform_int_distribution<int> positions(-3000, 3000);
    std::uniform_int_distribution<int> intensities(3500, 4500);
    std::uniform_int_distribution<int> drives(0, 10000);
    std::vector<MeasureSample> samples(linesPerTick);
    quint64 timeMs = 60000;
    for (MeasureSample& sample : samples) {
        sample.timeMs = timeMs += 2;
        for (qint16* position : {&sample.x1, &sample.y1, &sample.x2, &sample.y2})
            *position = qint16(positions(random));
        for (quint16* intensity : {&sample.intensity1, &sample.intensity2})
            *intensity = quint16(intensities(random));
        for (qint16* drive : {&sample.rx1, &sample.ry1, &sample.rx2, &sample.ry2})
            *drive = qint16(drives(random));
    }
    return samples;
}

std::string formLines(const std::vector<MeasureSample>& samples, const DetectorPair& detectors)
{
    std::string text;
    for (const MeasureSample& sample : samples)
        recordtext::appendLine(text, sample.timeMs, sample, detectors);
    return text;
}

void countLines(benchmark::State& state, std::size_t bytes)
{
    state.SetItemsProcessed(state.iterations() * linesPerTick);
    state.SetBytesProcessed(state.iterations() * qint64(bytes));
}

void recordLines(benchmark::State& state)
{
    const std::vector<MeasureSample> samples = beamSamples();
    const DetectorPair detectors = detectorsOf(int(state.range(0)));
    std::string text;
    for ([[maybe_unused]] auto _ : state) {
        text.clear();
        for (const MeasureSample& sample : samples)
            recordtext::appendLine(text, sample.timeMs, sample, detectors);
        benchmark::DoNotOptimize(text.data());
    }
    countLines(state, text.size());
}

void printNumber(QTextStream& stream, double value, int decimals)
{
    std::array<char, recordtext::maxFieldLength + 1> field{};
    std::snprintf(field.data(), field.size(), "%.*f", decimals, value);
    stream << field.data();
}

void printLine(QTextStream& stream, const MeasureSample& sample, const DetectorPair& detectors)
{
    const auto position = [&](int raw, unsigned intensity, std::size_t stage) {
        const Detector& detector = *detectors[stage];
        printNumber(stream, toDisplayValue(raw, intensity, detector, true),
                    detector.recordDecimals());
        stream << '\t';
    };
    const auto volts = [&](int raw, char end) {
        printNumber(stream, raw * piezoScale, 2);
        stream << end;
    };
    stream << sample.timeMs << '\t';
    position(sample.x1, sample.intensity1, 0);
    position(sample.y1, sample.intensity1, 0);
    volts(sample.intensity1, '\t');
    position(sample.x2, sample.intensity2, 1);
    position(sample.y2, sample.intensity2, 1);
    volts(sample.intensity2, '\t');
    volts(sample.rx1, '\t');
    volts(sample.ry1, '\t');
    volts(sample.rx2, '\t');
    volts(sample.ry2, '\n');
}

/// The same lines by snprintf and a text stream.
void recordLinesPrinted(benchmark::State& state)
{
    const std::vector<MeasureSample> samples = beamSamples();
    const DetectorPair detectors = detectorsOf(int(state.range(0)));
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QTextStream stream(&buffer);
    for ([[maybe_unused]] auto _ : state) {
        buffer.seek(0);
        for (const MeasureSample& sample : samples)
            printLine(stream, sample, detectors);
        stream.flush();
        benchmark::DoNotOptimize(buffer.data().data());
    }
    if (buffer.data().toStdString() != formLines(samples, detectors))
        state.SkipWithError("not the same bytes");
    countLines(state, std::size_t(buffer.data().size()));
}

/// The same bytes only copied: what no writer can be faster than.
void recordLinesCopied(benchmark::State& state)
{
    const std::string text = formLines(beamSamples(), detectorsOf(int(state.range(0))));
    std::string copy(text.size(), '\0');
    for ([[maybe_unused]] auto _ : state) {
        std::memcpy(copy.data(), text.data(), text.size());
        benchmark::DoNotOptimize(copy.data());
        benchmark::ClobberMemory();
    }
    countLines(state, text.size());
}

/// All that is done for the recordings of a tick, the writing to files included, which comes only
/// every few ticks. The arguments are the number of systems and of the samples of each: 5 at
/// 500 Hz and 100 ticks a second, 501 after a stall. Of all this only the taking belongs to the
/// tick.
void recordTick(benchmark::State& state)
{
    std::vector<MeasureSample> samples = beamSamples();
    samples.resize(std::size_t(state.range(1)));
    const DetectorPair detectors = detectorsOf(Lengths);
    const QTemporaryDir folder;
    const std::vector<char> places(std::size_t(state.range(0)));
    RecordableSystems systems;
    for (const char& place : places)
        systems.append({reinterpret_cast<const Connection*>(&place), "A", &detectors});
    const RecordRates everySample{500, 500};
    qint64 nowMs = 0;
    Recorder recorder;
    const auto start = [&] {
        return !recorder.start(planForAll(folder.filePath("run.csv"), systems), systems,
                               everySample, QDateTime::currentDateTime());
    };
    bool good = start();
    std::vector<std::vector<MeasureSample>> blocks(places.size(), samples);
    std::chrono::duration<double, std::micro> taking{0.0};
    for ([[maybe_unused]] auto _ : state) {
        const auto begin = std::chrono::steady_clock::now();
        for (std::size_t i = 0; i < blocks.size(); ++i) {
            SystemRecord* record = recorder.recordOf(systems.at(int(i)).connection);
            record->take(std::move(blocks[i]), {true, false});
        }
        taking += std::chrono::steady_clock::now() - begin;
        do {
            nowMs += Recorder::flushPeriodMs;
            good = good && !recorder.flush(nowMs);
        } while (recorder.isBehind());
        // The files must not fill the disk.
        state.PauseTiming();
        good = good && start();
        blocks.assign(places.size(), samples);
        state.ResumeTiming();
    }
    if (!good)
        state.SkipWithError("the recording failed");
    state.counters["taking_us"] = taking.count() / double(state.iterations());
    state.SetItemsProcessed(state.iterations() * state.range(0) * state.range(1));
}

BENCHMARK(recordLines)->ArgName("lengths")->Arg(Volts)->Arg(Lengths);
BENCHMARK(recordLinesPrinted)->ArgName("lengths")->Arg(Volts)->Arg(Lengths);
BENCHMARK(recordLinesCopied)->ArgName("lengths")->Arg(Volts)->Arg(Lengths);
BENCHMARK(recordTick)
    ->ArgNames({"systems", "samples"})
    ->Args({50, 5})
    ->Args({8, linesPerTick})
    ->Args({50, linesPerTick})
    ->Unit(benchmark::kMillisecond);

} // namespace
