// Where the samples of common detectors go.

#include "commonbench.h"
#include "support/replotcounter.h"
#include "window/samplemanner.h"
#include "window/unitchoice.h"

#include <QtTest>
#include <qwt_plot_curve.h>

namespace {

using Points = QVector<QPointF>;

/// A sample this long behind the origin.
MeasureSample sampleAt(quint64 passedMs, qint16 x1 = 1000)
{
    MeasureSample sample;
    sample.timeMs = CommonBench::originMs + passedMs;
    sample.x1 = x1;
    sample.y1 = -2000;
    sample.intensity1 = 3000;
    sample.x2 = 4000;
    sample.y2 = -500;
    sample.intensity2 = 6000;
    sample.rx1 = 7000;
    sample.ry2 = 8000;
    return sample;
}

/// Of all curves that the plot paints, also of those that it does not number any more.
int pointsOnScreen(const GenericPlot& plot)
{
    std::size_t points = 0;
    const QwtPlotItemList items = plot.itemList(QwtPlotItem::Rtti_PlotCurve);
    for (const QwtPlotItem* item : items)
        points += static_cast<const QwtPlotCurve*>(item)->dataSize();
    return int(points);
}

} // namespace

class TestCommonSamples final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench = std::make_unique<CommonBench>(); }
    void cleanup() { bench.reset(); }

    void curvesFollowThoseOfAllSystems();
    void curvesMoveWithTheNumberOfSystems();
    void hiddenOneTakesItsCurvesAlong();
    void everySampleIsPlotted();
    void timeCountsInWholeSeconds();
    void readoutsAreShownWhileNoSystemIsDisplayed_data();
    void readoutsAreShownWhileNoSystemIsDisplayed();
    void singleDisplayedSystemIsReadOutBesideThem();
    void readoutsAreMeansOver21WithTwoDecimals();
    void statisticsAreInVolts();
    void firstOneBeginsNewSweepsWhileNoSystemIsDisplayed_data();
    void firstOneBeginsNewSweepsWhileNoSystemIsDisplayed();
    void lastOneEndsARunWhileNoSystemIsDisplayed_data();
    void lastOneEndsARunWhileNoSystemIsDisplayed();
    void samplesTellNoState();
    void samplesOfCommonDetectorsReplotNothing();
    void nothingIsShownWhileTheAcquisitionStands();
    void tickLeavesTheirSamples();

private:
    void showSamples() const { bench->tick.showCommonSamples(); }

    std::unique_ptr<CommonBench> bench;
};

void TestCommonSamples::curvesFollowThoseOfAllSystems()
{
    bench->addHidden();
    ScriptedConnection& second = bench->addHidden();
    ScriptedConnection& first = bench->connection(0);
    bench->showCommon(second);
    bench->showCommon(first);
    first.storeCommonSamples({sampleAt(0, 500)});
    second.storeCommonSamples({sampleAt(0)});
    showSamples();

    // Two systems: the common detectors have the curves 2 and 3, in the order of showing.
    QCOMPARE(pointsOf(bench->plots().pointing(), 2), Points{QPointF(1.0, -2.0)});
    QCOMPARE(pointsOf(bench->plots().pointing(), 3), Points{QPointF(0.5, -2.0)});
    QCOMPARE(pointsOf(bench->plots().intensity(), 2), Points{QPointF(0.0, 3.0)});
    QCOMPARE(pointsOf(bench->plots().position(), 4), Points{QPointF(0.0, 1.0)});
    QCOMPARE(pointsOf(bench->plots().position(), 5), Points{QPointF(0.0, -2.0)});
    QCOMPARE(pointsOf(bench->plots().position(), 6), Points{QPointF(0.0, 0.5)});
    QCOMPARE(pointsOf(bench->plots(2).pointing(), 2), Points{QPointF(4.0, -0.5)});
    QCOMPARE(pointsOf(bench->plots(2).intensity(), 3), Points{QPointF(0.0, 6.0)});
    QCOMPARE(pointsOf(bench->plots(2).position(), 7), Points{QPointF(0.0, -0.5)});
    for (const int system : {0, 1})
        QVERIFY(pointsOf(bench->plots().pointing(), system).isEmpty());
}

void TestCommonSamples::curvesMoveWithTheNumberOfSystems()
{
    bench->addHidden();
    ScriptedConnection& connection = bench->addCommon();
    connection.storeCommonSamples({sampleAt(0)});
    showSamples();
    bench->addHidden();
    connection.storeCommonSamples({sampleAt(0)});
    showSamples();
    QCOMPARE(pointsOf(bench->plots().pointing(), 3).size(), 2);

    bench->systems.close(&bench->connection(0));
    connection.storeCommonSamples({sampleAt(0)});
    showSamples();
    QCOMPARE(pointsOf(bench->plots().pointing(), 2).size(), 3);
    QCOMPARE(pointsOf(bench->plots(2).position(), 5).size(), 3);
    QCOMPARE(bench->plots().pointing().curveCount(), 3);
}

void TestCommonSamples::hiddenOneTakesItsCurvesAlong()
{
    ScriptedConnection& first = bench->addCommon();
    ScriptedConnection& second = bench->addCommon();
    first.storeCommonSamples({sampleAt(0, 500)});
    second.storeCommonSamples({sampleAt(0)});
    showSamples();
    bench->showCommon(first, false);
    QCOMPARE(bench->plots().pointing().curveCount(), 3);
    QCOMPARE(bench->plots(2).position().curveCount(), 6);
    QCOMPARE(pointsOf(bench->plots().pointing(), 2), Points{QPointF(1.0, -2.0)});
    QCOMPARE(pointsOnScreen(bench->plots().pointing()), 1);
}

void TestCommonSamples::everySampleIsPlotted()
{
    ScriptedConnection& connection = bench->addCommon();
    connection.storeCommonSamples(std::vector<MeasureSample>(30, sampleAt(0)));
    showSamples();
    for (const int stage : {1, 2}) {
        QCOMPARE(pointsOf(bench->plots(stage).position(), 2).size(), 30);
        QCOMPARE(pointsOf(bench->plots(stage).position(), 3).size(), 30);
        QCOMPARE(pointsOf(bench->plots(stage).intensity(), 1).size(), 30);
        QCOMPARE(pointsOf(bench->plots(stage).pointing(), 1).size(), 30);
    }
}

void TestCommonSamples::timeCountsInWholeSeconds()
{
    ScriptedConnection& connection = bench->addCommon();
    connection.storeCommonSamples({sampleAt(999), sampleAt(1000), sampleAt(2999)});
    showSamples();
    QList<double> seconds;
    for (const QPointF& point : pointsOf(bench->plots().position(), 2))
        seconds.append(point.x());
    QCOMPARE(seconds, QList<double>({0.0, 1.0, 2.0}));
    QCOMPARE(pointsOf(bench->plots(2).intensity(), 1).last().x(), 2.0);
}

void TestCommonSamples::readoutsAreShownWhileNoSystemIsDisplayed_data()
{
    QTest::addColumn<int>("displayed");
    QTest::addColumn<int>("common");
    QTest::addColumn<bool>("shown");
    QTest::newRow("one alone") << 0 << 1 << true;
    QTest::newRow("two alone") << 0 << 2 << true;
    QTest::newRow("beside a system") << 1 << 1 << false;
    QTest::newRow("beside two") << 2 << 1 << false;
}

void TestCommonSamples::readoutsAreShownWhileNoSystemIsDisplayed()
{
    QFETCH(int, displayed);
    QFETCH(int, common);
    QFETCH(bool, shown);
    for (int i = 0; i < displayed; ++i)
        bench->add();
    for (int i = 0; i < common; ++i)
        bench->addCommon().storeCommonSamples({sampleAt(0)});
    showSamples();
    QCOMPARE(bench->forms[0].lcdX.value(), shown ? 1.0 : 0.0);
    QCOMPARE(bench->forms[1].lcdIntensity.value(), shown ? 6.0 : 0.0);
    QCOMPARE(bench->bar("thermoRX1").value(), shown ? 7.0 : 0.0);
    QCOMPARE(bench->bar("thermoRY2").value(), shown ? 8.0 : 0.0);
}

void TestCommonSamples::singleDisplayedSystemIsReadOutBesideThem()
{
    bench->addCommon();
    QVERIFY(!mannerOfDisplayed(bench->systems).readOut);
    bench->add();
    QVERIFY(mannerOfDisplayed(bench->systems).readOut);
    bench->add();
    QVERIFY(!mannerOfDisplayed(bench->systems).readOut);
}

void TestCommonSamples::readoutsAreMeansOver21WithTwoDecimals()
{
    ScriptedConnection& connection = bench->addCommon();
    bench->detectors[0] = DetectorPair(PsdDetector, 1, PsdDetector, 1, 0, 50.0, 50.0);
    QVERIFY(bench->detectors[0][0]->displayDecimals() != 2);
    // The first of 22 is not in the mean, the second one is.
    std::vector<MeasureSample> samples(22, sampleAt(0, 1000));
    samples[0].x1 = 9000;
    samples[1].x1 = 3130;
    bench->stages[0].showUnit({false, nullptr}, true);
    connection.storeCommonSamples(samples);
    showSamples();
    // 23.13 V / 21 is 1.1014 V.
    QCOMPARE(bench->forms[0].lcdX.value(), 1.1);
}

void TestCommonSamples::statisticsAreInVolts()
{
    ScriptedConnection& connection = bench->addCommon();
    bench->detectors[0] = DetectorPair(PsdDetector, 1, PsdDetector, 1, 0, 50.0, 50.0);
    const double length = bench->detectors[0][0]->calculatePosition(1.0, 3.0);
    QVERIFY(length != 1.0);
    bench->statistics.run().setLimit(10);
    connection.storeCommonSamples({sampleAt(0), sampleAt(0)});
    showSamples();
    QCOMPARE(pointsOf(bench->plots().pointing(), 1).first().x(), length);
    QCOMPARE(bench->statistics.run().samplesTaken(), 2);
    QCOMPARE(bench->statistics.run().figures()[0].mean, QPointF(1.0, -2.0));
    QCOMPARE(bench->statistics.run().figures()[1].mean, QPointF(4.0, -0.5));
}

void TestCommonSamples::firstOneBeginsNewSweepsWhileNoSystemIsDisplayed_data()
{
    QTest::addColumn<bool>("displayed");
    QTest::addColumn<int>("late");
    QTest::addColumn<bool>("begins");
    QTest::newRow("the first") << false << 0 << true;
    QTest::newRow("the second") << false << 1 << false;
    QTest::newRow("beside a system") << true << 0 << false;
}

void TestCommonSamples::firstOneBeginsNewSweepsWhileNoSystemIsDisplayed()
{
    QFETCH(bool, displayed);
    QFETCH(int, late);
    QFETCH(bool, begins);
    for (int i = 0; i < 2; ++i)
        bench->addCommon().storeCommonSamples({sampleAt(late == i ? 10001 : 0)});
    if (displayed)
        bench->add();
    showSamples();
    const int curve = 2 * bench->systems.commonCurve(0);
    QCOMPARE(pointsOf(bench->plots().position(), curve).isEmpty(), begins);
    QCOMPARE(pointsOf(bench->plots(2).position(), curve).isEmpty(), begins);
}

void TestCommonSamples::lastOneEndsARunWhileNoSystemIsDisplayed_data()
{
    QTest::addColumn<bool>("displayed");
    QTest::newRow("alone") << false;
    QTest::newRow("beside a system") << true;
}

void TestCommonSamples::lastOneEndsARunWhileNoSystemIsDisplayed()
{
    QFETCH(bool, displayed);
    for (int i = 0; i < 2; ++i)
        bench->addCommon().storeCommonSamples(std::vector<MeasureSample>(5, sampleAt(0)));
    if (displayed)
        bench->add();
    bench->statistics.run().setLimit(2);
    bench->statistics.startClock();
    showSamples();
    QCOMPARE(bench->toolBar.isRunning(), displayed);
    // The first one counts, and the rest of the last one is left out.
    QCOMPARE(bench->statistics.run().samplesTaken(), 2);
    const int first = bench->systems.commonCurve(0);
    QCOMPARE(pointsOf(bench->plots().pointing(), first).size(), 5);
    QCOMPARE(pointsOf(bench->plots().pointing(), first + 1).size(), displayed ? 5 : 1);
    if (!displayed)
        QCOMPARE(bench->statistics.run().samplesShown(), 2);
}

void TestCommonSamples::samplesTellNoState()
{
    ScriptedConnection& connection = bench->addCommon();
    MeasureSample sample = sampleAt(0);
    sample.stabilised1 = 1;
    sample.multiplex2 = 1;
    connection.storeCommonSamples({sample});
    showSamples();
    QVERIFY(!bench->systems.at(0).status.stabilised1);
    QVERIFY(!bench->systems.at(0).status.multiplex2);
}

void TestCommonSamples::samplesOfCommonDetectorsReplotNothing()
{
    ScriptedConnection& connection = bench->addCommon();
    // A plot owns the items that stand on it.
    std::vector<ReplotCounter*> counters;
    for (StageView& stage : bench->stages) {
        for (GenericPlot* plot :
             {&stage.plots().pointing(), &stage.plots().position(), &stage.plots().intensity()})
            counters.push_back(new ReplotCounter(*plot));
    }
    for (ReplotCounter* counter : counters)
        counter->count = 0;
    connection.storeCommonSamples({sampleAt(0)});
    showSamples();
    QCOMPARE(pointsOf(bench->plots().pointing(), 1).size(), 1);
    for (const ReplotCounter* counter : counters)
        QCOMPARE(counter->count, 0);
}

void TestCommonSamples::nothingIsShownWhileTheAcquisitionStands()
{
    ScriptedConnection& connection = bench->addCommon();
    connection.storeCommonSamples({sampleAt(0)});
    bench->pressStart(false);
    showSamples();
    QVERIFY(pointsOf(bench->plots().pointing(), 1).isEmpty());
    bench->pressStart(true);
    showSamples();
    QCOMPARE(pointsOf(bench->plots().pointing(), 1).size(), 1);
}

void TestCommonSamples::tickLeavesTheirSamples()
{
    ScriptedConnection& connection = bench->addCommon();
    connection.storeCommonSamples({sampleAt(0)});
    bench->tick.run();
    QVERIFY(pointsOf(bench->plots().pointing(), 1).isEmpty());
    MeasureSample left;
    QCOMPARE(connection.takeCommonSample(left), 1);
}

QTEST_MAIN(TestCommonSamples)
#include "tst_commonsamples.moc"
