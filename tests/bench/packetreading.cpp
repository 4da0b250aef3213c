#include "link/packetreader.h"
#include "support/emulatedlink.h"

#include <QBuffer>

#include <benchmark/benchmark.h>

namespace {

constexpr int packetCount = 10000;
constexpr int noFaults = 0;

/// A stream in which every so many packets one has lost a byte, has a stray one before it or has
/// a broken end mark, in turn.
QByteArray streamBytes(int faultEvery)
{
    QByteArray stream;
    for (int number = 1; number <= packetCount; ++number) {
        QByteArray packet = rawPacket(number);
        if (faultEvery != noFaults && number % faultEvery == 0) {
            switch (number / faultEvery % 3) {
            case 0:
                packet.remove(8, 1);
                break;
            case 1:
                packet.prepend('\x80');
                break;
            default:
                packet[command::packetLength - 1] = 'x';
                break;
            }
        }
        stream += packet;
    }
    return stream;
}

/// The argument says every how many packets one is faulty.
void readPackets(benchmark::State& state)
{
    QBuffer device;
    device.setData(streamBytes(int(state.range(0))));
    device.open(QIODevice::ReadOnly);
    qint64 found = 0;
    qint64 skipped = 0;
    for ([[maybe_unused]] auto _ : state) {
        device.seek(0);
        while (device.bytesAvailable() >= command::packetLength) {
            const packetreader::Result result = packetreader::read(device);
            found += result.found ? 1 : 0;
            skipped += result.skipped;
            benchmark::DoNotOptimize(result);
        }
    }
    state.SetItemsProcessed(found);
    state.counters["bytes_skipped_per_packet"] = double(skipped) / double(found);
}

BENCHMARK(readPackets)->ArgName("faultEvery")->Arg(noFaults)->Arg(100);

} // namespace
