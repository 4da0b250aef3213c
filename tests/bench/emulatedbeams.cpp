#include "emulator/command.h"
#include "emulator/device.h"
#include "emulator/disturbance.h"

#include <benchmark/benchmark.h>
#include <vector>

namespace {

constexpr int controllers = 50;
constexpr int samplingRateHz = 500;

emulator::Answer tell(emulator::Device& device, const char* frame, int length)
{
    return device.execute(emulator::parseCommand(QByteArray(frame, length)).command);
}

std::vector<emulator::Device> streamingDevices()
{
    std::vector<emulator::Device> devices;
    for (int number = 0; number < controllers; ++number) {
        emulator::ControllerOptions options;
        options.seed = quint64(number) + 1;
        emulator::Device device(options, QByteArray::number(number));
        tell(device, "SEA\x03;", 5);
        tell(device, "SLS\0\0\x01\xF4;", 8);
        devices.push_back(device);
    }
    return devices;
}

/// What fifty controllers compute in one second: both stages on, every step of the beam, every
/// packet of the stream, but no sockets. The time is the share of a processor that they keep busy.
void fiftyBeams(benchmark::State& state)
{
    std::vector<emulator::Device> devices = streamingDevices();
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

BENCHMARK(fiftyBeams)->Unit(benchmark::kMillisecond);

} // namespace
