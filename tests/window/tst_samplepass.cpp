// What a tick takes from the stores, and where its samples go.

#include "stagebench.h"
#include "systemsbench.h"
#include "window/samplepass.h"
#include "window/statistics.h"
#include "window/unitchoice.h"

#include <QtTest>

namespace {

constexpr quint64 originMs = 1700000000000;
/// At this rate the time plots of the bench take every tenth sample.
constexpr int rateHz = 500;

constexpr auto givenSamples =
    static_cast<SampleSource::Store>(&ScriptedConnection::takeGivenSamples);

/// Samples a millisecond apart, whose x of stage 1 counts in volts from 1.
std::vector<MeasureSample> countedSamples(int count)
{
    std::vector<MeasureSample> samples;
    for (int i = 0; i < count; ++i) {
        MeasureSample sample;
        sample.timeMs = originMs + quint64(i);
        sample.x1 = qint16(1000 * (i + 1));
        sample.y1 = qint16(100 * (i + 1));
        sample.intensity1 = 2000;
        sample.x2 = -5000;
        samples.push_back(sample);
    }
    return samples;
}

QList<double> ordinatesOf(const GenericPlot& plot, int curve)
{
    QList<double> list;
    for (const QPointF& point : pointsOf(plot, curve))
        list.append(point.y());
    return list;
}

} // namespace

class TestSamplePass final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { bench.reset(); }

    void drainTakesTheSamplesOfEachSystemInTheirOrder();
    void drainTakesAtMost501AndTheRestNextTime();
    void eachSystemHasTheCurveOfItsIndex();
    void curvesOfCommonDetectorsFollowEachOther();
    void displayedSystemsGiveTheirStreams();
    void timePlotsTakeEveryTenthAndPointingPlotsAll();
    void eachPassBeginsWithAPointOfEachSystem();
    void pulsedSystemsPlotEverySample();
    void valuesReachTheirPlotsInVolts();
    void blockSaysItsCurve();
    void singleSystemShowsItsReadouts();
    void twoSystemsLeaveReadoutsAndBarsAlone();
    void sweepWrapsByTheFirstSystemOnly();
    void sampleFromBeforeTheOriginBeginsANewSweep();
    void lastSampleOfABlockTellsTheState();
    void firmwareWithoutFlagsTellsNoState();
    void sampleThatEndsARunTellsNoStateAndLeavesOutTheRest();
    void sampleThatEndsARunIsTheLastOneInReadoutsAndBars();
    void theFirstSystemCountsAndTheLastOneEndsTheRun();
    void unitOfTheDetectorIsShownOnlyWhereAllAgree_data();
    void unitOfTheDetectorIsShownOnlyWhereAllAgree();

private:
    struct Bench : SystemsBench, StageBench
    {
        Statistics statistics{systems, stages};
    };

    void addSystems(int count);
    bool show(const std::vector<SampleBlock>& blocks);
    const StagePlots& plots() const { return bench->stages[0].plots(); }
    static SampleBlock block(int system, std::vector<MeasureSample> samples)
    {
        return {system, system, std::move(samples)};
    }

    std::unique_ptr<Bench> bench;
};

void TestSamplePass::init()
{
    bench = std::make_unique<Bench>();
    for (StageView& stage : bench->stages) {
        stage.plots().pointing().setKeepAllPoints(true);
        stage.plots().setOrigin(originMs);
    }
}

void TestSamplePass::addSystems(int count)
{
    for (int i = 0; i < count; ++i) {
        bench->add();
        for (StageView& stage : bench->stages)
            stage.plots().addCurves(i);
    }
}

bool TestSamplePass::show(const std::vector<SampleBlock>& blocks)
{
    return SamplePass(bench->systems, bench->stages, bench->statistics,
                      mannerOfDisplayed(bench->systems), rateHz)
        .show(blocks);
}

void TestSamplePass::drainTakesTheSamplesOfEachSystemInTheirOrder()
{
    addSystems(3);
    bench->connection(0).given = countedSamples(1);
    bench->connection(2).given = countedSamples(3);
    const std::vector<SampleBlock> blocks =
        drain(bench->systems, {{2, 1}, givenSamples, std::nullopt});
    QCOMPARE(blocks.size(), std::size_t(2));
    QCOMPARE(blocks[0].system, 2);
    QCOMPARE(blocks[0].samples.size(), std::size_t(3));
    QCOMPARE(int(blocks[0].samples[2].x1), 3000);
    QCOMPARE(blocks[1].system, 1);
    QVERIFY(blocks[1].samples.empty());
    QCOMPARE(bench->connection(0).given.size(), std::size_t(1));
}

void TestSamplePass::drainTakesAtMost501AndTheRestNextTime()
{
    addSystems(2);
    std::vector<MeasureSample> many(600);
    many[501].x1 = 77;
    bench->connection(0).given = many;
    bench->connection(1).given = many;
    const SampleSource source{{0, 1}, givenSamples, std::nullopt};
    for (const SampleBlock& taken : drain(bench->systems, source))
        QCOMPARE(taken.samples.size(), std::size_t(501));
    for (const SampleBlock& taken : drain(bench->systems, source)) {
        QCOMPARE(taken.samples.size(), std::size_t(99));
        QCOMPARE(int(taken.samples.front().x1), 77);
    }
}

void TestSamplePass::eachSystemHasTheCurveOfItsIndex()
{
    addSystems(2);
    const std::vector<SampleBlock> blocks =
        drain(bench->systems, {{1, 0}, givenSamples, std::nullopt});
    QCOMPARE(blocks[0].curve, 1);
    QCOMPARE(blocks[1].curve, 0);
}

void TestSamplePass::curvesOfCommonDetectorsFollowEachOther()
{
    addSystems(2);
    const std::vector<SampleBlock> blocks = drain(bench->systems, {{1, 0}, givenSamples, 7});
    QCOMPARE(blocks[0].system, 1);
    QCOMPARE(blocks[0].curve, 7);
    QCOMPARE(blocks[1].curve, 8);
}

void TestSamplePass::displayedSystemsGiveTheirStreams()
{
    addSystems(2);
    const SampleSource source = sourceOfDisplayed(bench->systems);
    QCOMPARE(source.systems, QList<int>({0, 1}));
    QVERIFY(source.store == &Connection::takeLiveSamples);
    QVERIFY(!source.firstCurve);
}

void TestSamplePass::timePlotsTakeEveryTenthAndPointingPlotsAll()
{
    addSystems(1);
    QVERIFY(show({block(0, countedSamples(30))}));
    QCOMPARE(ordinatesOf(plots().position(), 0), QList<double>({1.0, 11.0, 21.0}));
    QCOMPARE(pointsOf(plots().intensity(), 0).size(), 3);
    QCOMPARE(pointsOf(plots().pointing(), 0).size(), 30);
    QCOMPARE(pointsOf(bench->stages[1].plots().position(), 0).size(), 3);
    QCOMPARE(pointsOf(bench->stages[1].plots().pointing(), 0).size(), 30);
}

void TestSamplePass::eachPassBeginsWithAPointOfEachSystem()
{
    addSystems(2);
    for (int tick = 0; tick < 2; ++tick)
        show({block(0, countedSamples(3)), block(1, countedSamples(4))});
    QCOMPARE(ordinatesOf(plots().position(), 0), QList<double>({1.0, 1.0}));
    QCOMPARE(ordinatesOf(plots().position(), 2), QList<double>({1.0, 1.0}));
}

void TestSamplePass::pulsedSystemsPlotEverySample()
{
    addSystems(2);
    bench->detectors[0].pulsedLaser = 1;
    show({block(0, countedSamples(30)), block(1, countedSamples(30))});
    QCOMPARE(pointsOf(plots().position(), 0).size(), 30);
    QCOMPARE(pointsOf(plots().intensity(), 0).size(), 30);
    QCOMPARE(pointsOf(plots().position(), 2).size(), 3);
}

void TestSamplePass::valuesReachTheirPlotsInVolts()
{
    addSystems(1);
    MeasureSample sample;
    sample.timeMs = originMs + 500;
    sample.x1 = 1000;
    sample.y1 = -2000;
    sample.intensity1 = 3000;
    sample.x2 = 4000;
    sample.y2 = -4500;
    sample.intensity2 = 60000;
    show({block(0, {sample})});
    const StagePlots& two = bench->stages[1].plots();
    QCOMPARE(pointsOf(plots().pointing(), 0), QVector<QPointF>{QPointF(1.0, -2.0)});
    QCOMPARE(pointsOf(plots().position(), 0), QVector<QPointF>{QPointF(0.5, 1.0)});
    QCOMPARE(pointsOf(plots().position(), 1), QVector<QPointF>{QPointF(0.5, -2.0)});
    QCOMPARE(pointsOf(plots().intensity(), 0), QVector<QPointF>{QPointF(0.5, 3.0)});
    QCOMPARE(pointsOf(two.pointing(), 0), QVector<QPointF>{QPointF(4.0, -4.5)});
    QCOMPARE(pointsOf(two.intensity(), 0), QVector<QPointF>{QPointF(0.5, 60.0)});
}

void TestSamplePass::blockSaysItsCurve()
{
    addSystems(3);
    show({{0, 2, countedSamples(1)}});
    QCOMPARE(pointsOf(plots().pointing(), 2).size(), 1);
    QCOMPARE(ordinatesOf(plots().position(), 4), QList<double>{1.0});
    QCOMPARE(ordinatesOf(plots().position(), 5), QList<double>{0.1});
    QCOMPARE(pointsOf(plots().intensity(), 2).size(), 1);
    QVERIFY(pointsOf(plots().pointing(), 0).isEmpty());
    QVERIFY(pointsOf(plots().position(), 0).isEmpty());
}

void TestSamplePass::singleSystemShowsItsReadouts()
{
    addSystems(1);
    std::vector<MeasureSample> samples = countedSamples(2);
    samples[0].rx1 = 9000;
    samples[1].rx1 = 3000;
    samples[1].ry2 = 4000;
    show({block(0, samples)});
    QCOMPARE(bench->forms[0].lcdX.value(), 1.5);
    QCOMPARE(bench->forms[0].lcdY.value(), 0.15);
    QCOMPARE(bench->forms[0].lcdIntensity.value(), 2.0);
    QCOMPARE(bench->forms[1].lcdX.value(), -5.0);
    QCOMPARE(bench->bar("thermoRX1").value(), 3.0);
    QCOMPARE(bench->bar("thermoRY2").value(), 4.0);
}

void TestSamplePass::twoSystemsLeaveReadoutsAndBarsAlone()
{
    addSystems(2);
    bench->systems.show(&bench->connection(1), false);
    std::vector<MeasureSample> samples = countedSamples(1);
    samples[0].rx1 = 3000;
    show({block(0, samples)});
    bench->systems.show(&bench->connection(1), true);
    samples[0].x1 = 5000;
    samples[0].rx1 = 7000;
    show({block(0, samples), block(1, samples)});
    QCOMPARE(bench->forms[0].lcdX.value(), 1.0);
    QCOMPARE(bench->bar("thermoRX1").value(), 3.0);
}

void TestSamplePass::sweepWrapsByTheFirstSystemOnly()
{
    addSystems(2);
    std::vector<MeasureSample> late = countedSamples(1);
    late[0].timeMs = originMs + 10001;
    show({block(0, countedSamples(1)), block(1, late)});
    QCOMPARE(pointsOf(plots().position(), 0).size(), 1);
    QCOMPARE(pointsOf(plots().position(), 2).size(), 1);

    show({block(1, late), block(0, {})});
    QVERIFY(pointsOf(plots().position(), 0).isEmpty());
    QVERIFY(pointsOf(bench->stages[1].plots().position(), 0).isEmpty());
    QCOMPARE(pointsOf(plots().pointing(), 1).size(), 2);
}

void TestSamplePass::sampleFromBeforeTheOriginBeginsANewSweep()
{
    addSystems(1);
    std::vector<MeasureSample> samples = countedSamples(11);
    samples[0].timeMs = originMs - 1;
    show({block(0, samples)});
    // The first point went with the old sweep; its time is the origin of the new one.
    QCOMPARE(pointsOf(plots().position(), 0), QVector<QPointF>{QPointF(0.011, 11.0)});
}

void TestSamplePass::lastSampleOfABlockTellsTheState()
{
    addSystems(2);
    std::vector<MeasureSample> samples = countedSamples(2);
    samples[0].stabilised1 = 1;
    samples[1].stabilised2 = 1;
    bench->systems.at(0).status.statusValid = false;
    bench->systems.at(1).status.stabilised1 = true;
    show({block(0, samples), block(1, {})});
    const ConnectionStatus& status = bench->systems.at(0).status;
    QVERIFY(status.statusValid && status.stabilised2 && !status.stabilised1);
    QVERIFY(bench->systems.at(1).status.stabilised1);
}

void TestSamplePass::firmwareWithoutFlagsTellsNoState()
{
    addSystems(2);
    bench->connection(0).setFirmwareVersion(10);
    bench->connection(1).setFirmwareVersion(11);
    std::vector<MeasureSample> samples = countedSamples(1);
    samples[0].active1 = 1;
    show({block(0, samples), block(1, samples)});
    QVERIFY(!bench->systems.at(0).status.active1);
    QVERIFY(bench->systems.at(1).status.active1);
}

void TestSamplePass::sampleThatEndsARunTellsNoStateAndLeavesOutTheRest()
{
    addSystems(1);
    bench->statistics.run().setLimit(2);
    std::vector<MeasureSample> samples = countedSamples(5);
    for (MeasureSample& sample : samples)
        sample.active1 = 1;
    QVERIFY(!show({block(0, samples)}));
    QVERIFY(!bench->systems.at(0).status.active1);
    QCOMPARE(pointsOf(plots().pointing(), 0).size(), 2);
    QCOMPARE(bench->statistics.run().samplesTaken(), 2);
}

void TestSamplePass::sampleThatEndsARunIsTheLastOneInReadoutsAndBars()
{
    addSystems(1);
    bench->statistics.run().setLimit(2);
    std::vector<MeasureSample> samples = countedSamples(5);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i].rx1 = qint16(1000 * (i + 1));
    QVERIFY(!show({block(0, samples)}));
    QCOMPARE(bench->forms[0].lcdX.value(), 1.5);
    QCOMPARE(bench->bar("thermoRX1").value(), 2.0);
}

void TestSamplePass::theFirstSystemCountsAndTheLastOneEndsTheRun()
{
    addSystems(3);
    bench->statistics.run().setLimit(2);
    const bool goesOn = show(
        {block(2, countedSamples(5)), block(0, countedSamples(5)), block(1, countedSamples(5))});
    QVERIFY(!goesOn);
    QCOMPARE(bench->statistics.run().samplesTaken(), 2);
    QCOMPARE(pointsOf(plots().pointing(), 2).size(), 5);
    QCOMPARE(pointsOf(plots().pointing(), 0).size(), 5);
    QCOMPARE(pointsOf(plots().pointing(), 1).size(), 1);
}

void TestSamplePass::unitOfTheDetectorIsShownOnlyWhereAllAgree_data()
{
    QTest::addColumn<bool>("agree");
    QTest::newRow("agree") << true;
    QTest::newRow("differ") << false;
}

void TestSamplePass::unitOfTheDetectorIsShownOnlyWhereAllAgree()
{
    QFETCH(bool, agree);
    addSystems(1);
    bench->detectors[0] = DetectorPair(PsdDetector, 1, PsdDetector, 1, 0, 50.0, 50.0);
    const double length = bench->detectors[0][0]->calculatePosition(1.0, 2.0);
    QVERIFY(length != 1.0);
    bench->stages[0].showUnit({agree, agree ? bench->detectors[0][0] : nullptr}, true);
    show({block(0, countedSamples(1))});
    QCOMPARE(pointsOf(plots().pointing(), 0).first().x(), agree ? length : 1.0);
}

QTEST_MAIN(TestSamplePass)
#include "tst_samplepass.moc"
