#include "benchwindow.h"
#include "emulator/emulatorhost.h"
#include "link/identification.h"
#include "link/tcpclient.h"
#include "plots/counter.h"

#include <QAction>
#include <QSpinBox>
#include <QtTest>

#include <benchmark/benchmark.h>
#include <chrono>
#include <ctime>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

constexpr int samplingRateHz = 500;
/// 100 ticks a second.
constexpr std::chrono::milliseconds tickPeriod(10);
/// One sweep of the time plots, from empty to full.
constexpr int ticksPerSweep = 1000;

/// One second of a beam that runs on a circle. What fifty computed beams cost is the matter of
/// `fiftyBeams`, and does not belong to a tick.
QVector<emulator::PacketValues> circle()
{
    constexpr double radiusMv = 2000.0;
    QVector<emulator::PacketValues> samples;
    for (int i = 0; i < samplingRateHz; ++i) {
        const double angle = 2.0 * M_PI * i / samplingRateHz;
        emulator::PacketValues values;
        values.x1 = values.x2 = qint16(radiusMv * std::cos(angle));
        values.y1 = values.y2 = qint16(radiusMv * std::sin(angle));
        values.i1 = values.i2 = quint16(2.0 * radiusMv);
        values.rx1 = values.rx2 = values.x1;
        values.ry1 = values.ry2 = values.y1;
        samples.append(values);
    }
    return samples;
}

/// The window with connected systems, each with lateral-effect detectors shown as length.
class ConnectedSystems
{
public:
    explicit ConnectedSystems(int count)
    {
        for (int number = 0; number < count; ++number)
            allUp = addSystem(number) && allUp;
    }

    /// The window stops every system when it goes, and a stop without a stream waits out its
    /// time.
    ~ConnectedSystems()
    {
        for (const auto& connection : screen.window().liveConnections()) {
            if (!connection->isStreaming())
                connection->setTimeoutMs(1);
        }
    }
    ConnectedSystems(const ConnectedSystems&) = delete;
    ConnectedSystems& operator=(const ConnectedSystems&) = delete;

    bool areUp() const { return allUp; }

    /// Begins an acquisition. False if not all systems stream.
    bool start()
    {
        const MainWindow& window = screen.window();
        window.findChild<Counter*>("samplingRateCounter")->spinBox->setValue(samplingRateHz);
        window.findChild<QAction*>("startAction")->trigger();
        bool streaming = allUp;
        for (const auto& connection : window.liveConnections())
            streaming = streaming && connection->isStreaming();
        return streaming;
    }

    BenchWindow& onScreen() { return screen; }

    double samplesStored() const
    {
        double count = 0.0;
        for (const auto& connection : screen.window().liveConnections())
            count += double(connection->samplesStored());
        return count;
    }

private:
    bool addSystem(int number)
    {
        emulator::ControllerOptions options;
        options.script = circle();
        options.scriptRepeats = true;
        const QString address = QStringLiteral("127.0.0.%1").arg(11 + number);
        const emulator::ControllerHandle controller = host.addTcp(options, address);

        auto client = std::make_unique<TcpClient>();
        client->init(controller.address(), controller.port());
        client->start(QThread::InheritPriority);
        if (!QTest::qWaitFor([&client] { return client->isConnected(); }))
            return false;
        QByteArray reply;
        client->getControllerId();
        client->fetchReply(reply);
        const ControllerIdentity identity = readIdentity(reply);
        if (!identity.isController)
            return false;
        client->setFirmwareVersion(identity.firmwareVersion);

        ConnectionSettings record;
        record.type = ConnectionType::Tcp;
        record.colorX = QStringLiteral("#ff0000");
        record.colorY = QStringLiteral("#008000");
        record.colorI = QStringLiteral("#0000ff");
        record.model = {PsdDetector, PsdDetector};
        record.calculation = {1, 1};
        screen.window().newConnection(std::move(client), record);
        return true;
    }

    emulator::EmulatorHost host;
    bool allUp = true;
    BenchWindow screen;
};

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

/// Without an acquisition the tick asks every system for its status.
void idleTick(benchmark::State& state)
{
    ConnectedSystems systems(int(state.range(0)));
    if (!systems.areUp()) {
        state.SkipWithError("not all systems are connected");
        return;
    }
    for ([[maybe_unused]] auto _ : state) {
        systems.onScreen().tick();
        systems.onScreen().paint();
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
BENCHMARK(idleTick)->ArgName("systems")->Arg(1)->Arg(8)->Arg(50)->UseRealTime()->Unit(
    benchmark::kMillisecond);

} // namespace
