#include "app/switches.h"
#include "emulator/emulatorhost.h"
#include "link/connection.h"
#include "setup/settings.h"
#include "storedrecord.h"
#include "window/mainwindow.h"

#include <QElapsedTimer>
#include <QTemporaryDir>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <vector>

namespace {

constexpr double msPerS = 1000.0;
constexpr int firstHost = 11;

/// Controllers, and the setup file from which the window connects them when it is made.
class StoredSystems final
{
public:
    explicit StoredSystems(int count)
    {
        switches::configDir = QDir(home.path());
        switches::autoSerialSearch = false;
        QList<ConnectionSettings> records;
        for (int number = 0; number < count; ++number)
            records.append(recordOf(number));
        Settings settings;
        settings.setList(records);
        isStored = settings.save(QString());
    }

    bool areStored() const { return isStored; }

private:
    ConnectionSettings recordOf(int number)
    {
        controllers.push_back(
            host.addTcp({}, QStringLiteral("127.0.0.%1").arg(firstHost + number)));
        const emulator::ControllerHandle& controller = controllers.back();
        return storedRecord(number, {controller.address(), controller.port(), controller.id()});
    }

    QTemporaryDir home;
    emulator::EmulatorHost host;
    std::vector<emulator::ControllerHandle> controllers;
    bool isStored = false;
};

int connectedCount(const MainWindow& window)
{
    const std::vector<Connection*> all = window.liveConnections();
    return int(std::count_if(all.begin(), all.end(),
                             [](const Connection* each) { return each->isConnected(); }));
}

/// From the making of the window until all systems of its setup file are connected, and from its
/// close until all are gone.
void storedSystems(benchmark::State& state)
{
    const int count = int(state.range(0));
    const StoredSystems stored(count);
    if (!stored.areStored()) {
        state.SkipWithError("the setup file can not be written");
        return;
    }
    double leavingMs = 0.0;
    for ([[maybe_unused]] auto _ : state) {
        QElapsedTimer clock;
        clock.start();
        MainWindow window;
        state.SetIterationTime(double(clock.elapsed()) / msPerS);
        if (connectedCount(window) != count) {
            state.SkipWithError("not all systems are connected");
            return;
        }
        window.show();
        clock.start();
        window.close();
        leavingMs = double(clock.elapsed());
    }
    state.counters["leaving_ms"] = leavingMs;
}

BENCHMARK(storedSystems)
    ->ArgName("systems")
    ->Arg(0)
    ->Arg(1)
    ->Arg(50)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace
