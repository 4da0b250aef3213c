#include "demonstration.h"

#include "link/connection.h"
#include "window/mainwindow.h"

#include <QElapsedTimer>
#include <QtTest>

#include <cstdio>

namespace {

/// From the click until all streams run evenly.
constexpr int startUpMs = 1000;
constexpr int measureMs = 5000;
constexpr int pointingMs = 2000;
constexpr double msPerSecond = 1000.0;

} // namespace

Demonstration::Demonstration(MainWindow& mainWindow, const QString& pictures)
    : window(mainWindow)
    , hand(mainWindow, pictures)
{}

int Demonstration::run()
{
    hand.take(window, QStringLiteral("1-connected"));
    hand.click("startAction");
    QTest::qWait(startUpMs);

    const std::vector<Reading> before = readings();
    QElapsedTimer clock;
    clock.start();
    QTest::qWait(measureMs);
    const int delivering = report(before, clock.elapsed());

    hand.take(window, QStringLiteral("2-running"));
    hand.clickMark("pointingRadio");
    QTest::qWait(pointingMs);
    hand.take(window, QStringLiteral("3-pointing"));
    return delivering;
}

std::vector<Demonstration::Reading> Demonstration::readings() const
{
    std::vector<Reading> list;
    for (const auto& connection : window.liveConnections())
        list.push_back({connection, connection->samplesStored()});
    return list;
}

int Demonstration::report(const std::vector<Reading>& before, qint64 elapsedMs) const
{
    if (before.empty())
        std::puts("No system is set up here, so there is nothing to start.");
    int delivering = 0;
    for (const Reading& reading : before) {
        const Connection& connection = *reading.connection;
        const quint64 samples = connection.samplesStored();
        const double rateHz = double(samples - reading.samples) * msPerSecond / double(elapsedMs);
        std::printf("%-12s %-20s %6llu samples %7.1f Hz\n", qPrintable(connection.label()),
                    qPrintable(connection.address()), samples, rateHz);
        if (rateHz > 0.0)
            ++delivering;
    }
    std::fflush(stdout);
    return delivering;
}
