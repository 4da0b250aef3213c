// The whole tick over systems that tests make up: what it shows, what it asks and what it leaves.

#include "monitorbench.h"
#include "recording/recorder.h"
#include "support/replotcounter.h"
#include "window/displaytick.h"

#include <QtTest>

namespace {

using Link = SystemsBench::Link;
constexpr int slowBaudRate = 115200;

QByteArray packets(int count, quint8 flags = 0)
{
    QByteArray bytes;
    for (int i = 0; i < count; ++i)
        bytes += replies::packet(flags, 1000);
    return bytes;
}

} // namespace

class TestDisplayTick final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { bench.reset(); }

    void samplesAreShownWhileTheAcquisitionRuns_data();
    void samplesAreShownWhileTheAcquisitionRuns();
    void eachPlotIsPaintedOnceATick();
    void plotsWithoutNewPointsAreNotPainted();
    void endOfARunStopsTheAcquisition();
    void changedUnitIsTold();
    void changedUnitClearsTheStatisticsInPointingModeOnly_data();
    void changedUnitClearsTheStatisticsInPointingModeOnly();
    void oneSlowLineIsEnoughFor430();
    void pulsesTakeTheRateOverAndGiveItBack();
    void oneSystemWithoutPulsesIsEnoughForTheUsersRate();
    void lineThatComesMeanwhileLimitsTheRateBehindTheLock();
    void stateOfASingleSystemReachesTheSwitches();
    void stateOfTwoSystemsReachesNoSwitch();
    void idleSystemsAreAskedForTheirStatus();

private:
    struct Bench : MonitorBench
    {
        Recorder recorder;
        DisplayTick tick{systems, stages, toolBar, statistics, acquisition, recorder};
    };

    /// One that streams and has curves.
    ScriptedConnection& addShown();
    QVector<int> replotsOfATick();
    QString rate() const
    {
        return QStringLiteral("%1 of %2")
            .arg(bench->samplingRate().value())
            .arg(bench->samplingRate().maximum());
    }
    void setMillimetres(std::size_t system) const
    {
        bench->detectors[system] = DetectorPair(PsdDetector, 1, SelectDetector, 0, 0, 50.0, 50.0);
    }

    std::unique_ptr<Bench> bench;
};

void TestDisplayTick::init()
{
    bench = std::make_unique<Bench>();
}

ScriptedConnection& TestDisplayTick::addShown()
{
    ScriptedConnection& connection = bench->addStreaming();
    for (StageView& stage : bench->stages)
        stage.plots().addCurves(bench->systems.size() - 1);
    bench->acquisition.reset();
    return connection;
}

void TestDisplayTick::samplesAreShownWhileTheAcquisitionRuns_data()
{
    QTest::addColumn<bool>("running");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<int>("points");
    QTest::newRow("running") << true << true << 3;
    QTest::newRow("stopped") << false << true << 0;
    QTest::newRow("nothing to start") << true << false << 0;
}

void TestDisplayTick::samplesAreShownWhileTheAcquisitionRuns()
{
    QFETCH(bool, running);
    QFETCH(bool, enabled);
    ScriptedConnection& connection = addShown();
    bench->pressStart(running);
    bench->toolBar.enableStart(enabled);
    QVERIFY(connection.sendPackets(packets(3)));
    bench->tick.run();
    QTEST(pointsOf(bench->stages[0].plots().pointing(), 0).size(), "points");
}

QVector<int> TestDisplayTick::replotsOfATick()
{
    // A plot owns the items that stand on it.
    std::vector<ReplotCounter*> counters;
    for (StageView& stage : bench->stages) {
        for (GenericPlot* plot :
             {&stage.plots().pointing(), &stage.plots().position(), &stage.plots().intensity()})
            counters.push_back(new ReplotCounter(*plot));
    }
    bench->tick.run();
    QVector<int> replots;
    for (const ReplotCounter* counter : counters)
        replots.append(counter->count);
    return replots;
}

void TestDisplayTick::eachPlotIsPaintedOnceATick()
{
    ScriptedConnection& connection = addShown();
    bench->pressStart(true);
    bench->tick.run();
    QVERIFY(connection.sendPackets(packets(3)));
    QCOMPARE(replotsOfATick(), QVector<int>(6, 1));
}

void TestDisplayTick::plotsWithoutNewPointsAreNotPainted()
{
    ScriptedConnection& connection = addShown();
    bench->pressStart(true);
    QVERIFY(connection.sendPackets(packets(3)));
    bench->tick.run();
    QCOMPARE(replotsOfATick(), QVector<int>(6, 0));
}

void TestDisplayTick::endOfARunStopsTheAcquisition()
{
    ScriptedConnection& connection = addShown();
    bench->pressStart(true);
    bench->statistics.run().setLimit(2);
    QVERIFY(connection.sendPackets(packets(3)));
    bench->tick.run();
    QVERIFY(!bench->toolBar.isRunning());
    QVERIFY(!connection.isStreaming());
    QCOMPARE(pointsOf(bench->stages[0].plots().pointing(), 0).size(), 2);
}

void TestDisplayTick::changedUnitIsTold()
{
    bench->add();
    std::vector<std::pair<PositionUnit, Stage>> shown;
    connect(&bench->tick, &DisplayTick::unitShown, this,
            [&shown](PositionUnit unit, Stage stage) { shown.emplace_back(unit, stage); });
    bench->tick.run();
    QVERIFY(shown.empty());
    setMillimetres(0);
    bench->tick.run();
    bench->tick.run();
    QVERIFY(shown == decltype(shown)({{PositionUnit::Millimetre, Stage::One}}));
    QCOMPARE(bench->stages[0].unitText(), QStringLiteral(" [mm]"));
}

void TestDisplayTick::changedUnitClearsTheStatisticsInPointingModeOnly_data()
{
    QTest::addColumn<bool>("pointing");
    QTest::addColumn<int>("taken");
    QTest::newRow("oscilloscope") << false << 1;
    QTest::newRow("pointing") << true << 0;
}

void TestDisplayTick::changedUnitClearsTheStatisticsInPointingModeOnly()
{
    QFETCH(bool, pointing);
    bench->add();
    bench->toolBar.pointingRadio().setChecked(pointing);
    bench->statistics.run().countSample();
    setMillimetres(0);
    bench->tick.run();
    QTEST(bench->statistics.run().samplesTaken(), "taken");
}

void TestDisplayTick::oneSlowLineIsEnoughFor430()
{
    bench->add();
    bench->tick.limitRatesToLines();
    bench->samplingRate().setValue(490);
    QCOMPARE(rate(), QStringLiteral("490 of 500"));
    ScriptedConnection& slow = bench->add(Link::Down, QStringLiteral("ttyUSB1"), {}, slowBaudRate);
    bench->tick.limitRatesToLines();
    QCOMPARE(rate(), QStringLiteral("430 of 430"));
    QCOMPARE(bench->updateRate().maximum(), 430);
    bench->systems.close(&slow);
    bench->tick.limitRatesToLines();
    QCOMPARE(rate(), QStringLiteral("430 of 500"));
}

void TestDisplayTick::pulsesTakeTheRateOverAndGiveItBack()
{
    bench->add();
    bench->tick.limitRatesToLines();
    bench->samplingRate().setValue(120);
    bench->detectors[0].pulsedLaser = 1;
    bench->tick.run();
    QCOMPARE(rate(), QStringLiteral("1000 of 1000"));
    QVERIFY(!bench->samplingRate().isEnabled());
    bench->detectors[0].pulsedLaser = 0;
    bench->tick.run();
    QCOMPARE(rate(), QStringLiteral("120 of 500"));
    QVERIFY(bench->samplingRate().isEnabled());
}

void TestDisplayTick::oneSystemWithoutPulsesIsEnoughForTheUsersRate()
{
    bench->add();
    bench->add();
    bench->detectors[0].pulsedLaser = 1;
    bench->tick.run();
    QCOMPARE(bench->samplingRate().value(), 100);
    bench->systems.show(&bench->connection(1), false);
    bench->tick.run();
    QCOMPARE(bench->samplingRate().value(), 1000);
    bench->systems.show(&bench->connection(0), false);
    bench->tick.run();
    QCOMPARE(bench->samplingRate().value(), 100);
}

void TestDisplayTick::lineThatComesMeanwhileLimitsTheRateBehindTheLock()
{
    bench->add();
    bench->tick.limitRatesToLines();
    bench->samplingRate().setValue(490);
    bench->detectors[0].pulsedLaser = 1;
    bench->tick.run();
    bench->add(Link::Down, QStringLiteral("ttyUSB1"), {}, slowBaudRate);
    bench->tick.limitRatesToLines();
    bench->tick.run();
    QCOMPARE(rate(), QStringLiteral("1000 of 1000"));
    bench->detectors[0].pulsedLaser = 0;
    bench->tick.run();
    QCOMPARE(rate(), QStringLiteral("430 of 430"));
}

void TestDisplayTick::stateOfASingleSystemReachesTheSwitches()
{
    ScriptedConnection& connection = addShown();
    bench->pressStart(true);
    QVERIFY(connection.sendPackets(packets(1, 0x48)));
    bench->tick.run();
    QCOMPARE(bench->forms[0].stabilisation.text(), QStringLiteral("ON"));
    QCOMPARE(bench->forms[0].activeText.text(), QStringLiteral("Inactive"));
    QCOMPARE(bench->forms[1].stabilisation.text(), QStringLiteral("OFF"));
    QCOMPARE(bench->forms[1].activeText.text(), QStringLiteral("Active"));
}

void TestDisplayTick::stateOfTwoSystemsReachesNoSwitch()
{
    ScriptedConnection& connection = addShown();
    addShown();
    bench->pressStart(true);
    QVERIFY(connection.sendPackets(packets(1, 0x48)));
    bench->tick.run();
    QVERIFY(bench->systems.at(0).status.stabilised1);
    QCOMPARE(bench->forms[0].stabilisation.text(), QStringLiteral("OFF"));
    QCOMPARE(bench->forms[1].activeText.text(), QStringLiteral("Inactive"));
}

void TestDisplayTick::idleSystemsAreAskedForTheirStatus()
{
    ScriptedConnection& connection = bench->add(Link::Running);
    connection.controller().answer("GSF", replies::status(0x08));
    QVERIFY(QTest::qWaitFor([this] {
        bench->tick.run();
        return bench->systems.at(0).status.stabilised1;
    }));
    QCOMPARE(bench->forms[0].stabilisation.text(), QStringLiteral("ON"));
}

QTEST_MAIN(TestDisplayTick)
#include "tst_displaytick.moc"
