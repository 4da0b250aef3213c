#include "params/parameterreading.h"
#include "support/emulatedlink.h"

#include <QDeadlineTimer>
#include <QTcpSocket>
#include <QThread>

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

/// Everything that the parameter dialog asks, ten exchanges.
void readingOfAllParameters(benchmark::State& state)
{
    EmulatedLink link;
    if (!link.connectAndIdentify()) {
        state.SkipWithError("no link to the emulated controller");
        return;
    }
    for ([[maybe_unused]] auto _ : state) {
        if (!readParameters(link.client).unread.isEmpty()) {
            state.SkipWithError("no reply");
            break;
        }
    }
}

/// What a tick pays for the status of a controller that answers: sending the poll and taking the
/// reply, which is waited for in between.
void statusPollOfAnAnsweringController(benchmark::State& state)
{
    EmulatedLink link;
    if (!link.connectAndIdentify()) {
        state.SkipWithError("no link to the emulated controller");
        return;
    }
    QByteArray reply;
    for ([[maybe_unused]] auto _ : state) {
        link.client.pollStatus();
        state.PauseTiming();
        constexpr int wayMs = 5;
        QThread::msleep(wayMs);
        state.ResumeTiming();
        // On a loaded machine the reply takes longer, which then shows in the time.
        const QDeadlineTimer limit(EmulatedLink::shortTimeoutMs);
        bool isTaken = false;
        while (!isTaken && !limit.hasExpired())
            isTaken = link.client.takePolledStatus(reply);
        if (!isTaken) {
            state.SkipWithError("no reply");
            break;
        }
    }
}

/// What a tick pays while a controller does not answer.
void statusPollOfASilentController(benchmark::State& state)
{
    emulator::ControllerOptions options;
    options.faults.silent = {"GSF"};
    EmulatedLink link(options);
    if (!link.connectAndIdentify()) {
        state.SkipWithError("no link to the emulated controller");
        return;
    }
    QByteArray reply;
    for ([[maybe_unused]] auto _ : state) {
        if (link.client.takePolledStatus(reply)) {
            state.SkipWithError("the controller is not silent");
            break;
        }
        link.client.pollStatus();
    }
}

/// How long the window waits for the end of an idle connection.
void endOfAConnection(benchmark::State& state)
{
    EmulatedLink link;
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        const bool isUp = link.connect();
        state.ResumeTiming();
        if (!isUp || link.client.disconnectController() != 1) {
            state.SkipWithError("no link to the emulated controller, or no end of it");
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
BENCHMARK(readingOfAllParameters)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(statusPollOfAnAnsweringController)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(statusPollOfASilentController)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(endOfAConnection)->UseRealTime()->Unit(benchmark::kMicrosecond)->Iterations(50);
BENCHMARK(exchangeOfABareSocket)->UseRealTime()->Unit(benchmark::kMicrosecond);

} // namespace
