#include "link/packetreader.h"
#include "support/emulatedlink.h"

#include <QBuffer>

#include <benchmark/benchmark.h>

namespace {

constexpr int packetCount = 10000;
constexpr int faultEvery = 100;

/// What happens to a packet on its way. `number` counts the packets that are hurt.
using Fault = void (*)(QByteArray& packet, int number);

void nothing(QByteArray&, int) {}

void lostByte(QByteArray& packet, int)
{
    packet.remove(8, 1);
}

/// A lost byte, a stray one before the packet or a broken end mark, in turn.
void anything(QByteArray& packet, int number)
{
    switch (number % 3) {
    case 0:
        lostByte(packet, number);
        break;
    case 1:
        packet.prepend('\x80');
        break;
    default:
        packet[command::packetLength - 1] = 'x';
        break;
    }
}

QByteArray streamBytes(Fault fault)
{
    QByteArray stream;
    for (int number = 1; number <= packetCount; ++number) {
        QByteArray packet = rawPacket(number);
        if (number % faultEvery == 0)
            fault(packet, number / faultEvery);
        stream += packet;
    }
    return stream;
}

/// A stream of which one packet in a hundred is faulty.
void readPackets(benchmark::State& state, Fault fault)
{
    QBuffer device;
    device.setData(streamBytes(fault));
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

BENCHMARK_CAPTURE(readPackets, aligned, nothing);
BENCHMARK_CAPTURE(readPackets, lostBytes, lostByte);
BENCHMARK_CAPTURE(readPackets, mixedFaults, anything);

} // namespace
