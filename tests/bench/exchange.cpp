#include "support/emulatedlink.h"

#include <QTcpSocket>

#include <benchmark/benchmark.h>

namespace {

const QByteArray statusCommand("GSF;");
constexpr int statusReplyBytes = 4;

void exchangeOfTheApplication(benchmark::State& state)
{
    EmulatedLink link;
    if (!link.connectAndIdentify()) {
        state.SkipWithError("no link to the emulated controller");
        return;
    }
    for ([[maybe_unused]] auto _ : state) {
        if (link.exchange(&Connection::getStatusFlags).size() != statusReplyBytes) {
            state.SkipWithError("no reply");
            break;
        }
    }
}

/// The same bytes over a socket that does nothing else: what loopback and emulator cost.
void exchangeOfABareSocket(benchmark::State& state)
{
    constexpr int timeoutMs = 1000;
    emulator::EmulatorHost host;
    const emulator::ControllerHandle controller = host.addTcp();
    QTcpSocket socket;
    socket.connectToHost(controller.address(), controller.port());
    if (!socket.waitForConnected(timeoutMs)) {
        state.SkipWithError("no link to the emulated controller");
        return;
    }
    for ([[maybe_unused]] auto _ : state) {
        socket.write(statusCommand);
        while (socket.bytesAvailable() < statusReplyBytes && socket.waitForReadyRead(timeoutMs)) {}
        if (socket.readAll().size() != statusReplyBytes) {
            state.SkipWithError("no reply");
            break;
        }
    }
}

BENCHMARK(exchangeOfTheApplication)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(exchangeOfABareSocket)->UseRealTime()->Unit(benchmark::kMicrosecond);

} // namespace
