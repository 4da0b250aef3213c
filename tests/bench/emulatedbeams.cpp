#include "emulator/beampreset.h"
#include "emulator/command.h"
#include "emulator/detectormodel.h"
#include "emulator/device.h"
#include "emulator/disturbance.h"

#include <array>
#include <benchmark/benchmark.h>
#include <iterator>
#include <vector>

namespace {

constexpr int controllers = 50;
constexpr int samplingRateHz = 500;

emulator::Answer tell(emulator::Device& device, const char* frame, int length)
{
    return device.execute(emulator::parseCommand(QByteArray(frame, length)).command);
}

/// How the controllers of a benchmark are set up, from their numbers.
using Table = emulator::ControllerOptions (*)(int number);

emulator::ControllerOptions alike(int number)
{
    emulator::ControllerOptions options;
    options.seed = quint64(number) + 1;
    return options;
}

/// Detectors of all kinds, rooms of all kinds that move, spots and offsets: all options of the
/// controller that the beams are made of.
emulator::ControllerOptions mixed(int number)
{
    using emulator::DetectorKind;
    using emulator::Preset;
    constexpr DetectorKind kinds[] = {DetectorKind::LateralEffect, DetectorKind::Quadrant,
                                      DetectorKind::FourQuadrant,  DetectorKind::Psd,
                                      DetectorKind::Wid,           DetectorKind::UvPsd4mm,
                                      DetectorKind::UvPsd10mm};
    constexpr Preset presets[] = {Preset::Quiet, Preset::Typical, Preset::Noisy};
    emulator::ControllerOptions options = alike(number);
    options.preset = presets[std::size_t(number) % std::size(presets)];
    options.pFactorMv = 500 + 20 * number;
    for (std::size_t index = 0; index < options.stages.size(); ++index) {
        emulator::StageOptions& stage = options.stages[index];
        // The second stage of a controller has another detector than the first.
        stage.detector = kinds[(std::size_t(number) + 3 * index) % std::size(kinds)];
        stage.spotDiameterUm = 50.0 + 10.0 * number;
        stage.offsetXUm = 0.2 * number;
        stage.offsetYUm = -0.1 * number;
    }
    return options;
}

/// The same in groups of five, all beams led to the common detectors, which every second packet
/// shows.
emulator::ControllerOptions mixedInGroups(int number)
{
    constexpr int membersOfGroup = 5;
    emulator::ControllerOptions options = mixed(number);
    options.vm = true;
    options.group = 1 + number / membersOfGroup;
    for (emulator::StageOptions& stage : options.stages)
        stage.multiplexed = true;
    return options;
}

std::vector<emulator::Device> streamingDevices(Table table)
{
    std::vector<emulator::Device> devices;
    for (int number = 0; number < controllers; ++number) {
        const emulator::ControllerOptions options = table(number);
        emulator::Device device(options, QByteArray::number(number));
        tell(device, "SEA\x03;", 5);
        tell(device, options.vm ? "SGS\0\0\x01\xF4;" : "SLS\0\0\x01\xF4;", 8);
        devices.push_back(device);
    }
    return devices;
}

/// What fifty controllers compute in one second: both stages on, every step of the beam, every
/// packet of the stream, but no sockets. The time is the share of a processor that they keep busy.
void fiftyBeams(benchmark::State& state, Table table)
{
    std::vector<emulator::Device> devices = streamingDevices(table);
    for ([[maybe_unused]] auto _ : state) {
        for (emulator::Device& device : devices) {
            for (int packet = 0; packet < samplingRateHz; ++packet)
                benchmark::DoNotOptimize(device.nextPacket());
        }
    }
    const double steps = double(controllers) * emulator::beamStepsPerSecond;
    state.counters["steps"] =
        benchmark::Counter(steps, benchmark::Counter::kIsIterationInvariantRate);
}

BENCHMARK_CAPTURE(fiftyBeams, alike, alike)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(fiftyBeams, mixed, mixed)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(fiftyBeams, mixedInGroups, mixedInGroups)->Unit(benchmark::kMillisecond);

} // namespace
