#include "window/run.h"

#include <QtTest>

#include <cmath>

namespace {

StagePositions both(double x, double y)
{
    return {QPointF(x, y), QPointF(x, y)};
}

void addCounted(Run& run, StatisticsSums& sums, const StagePositions& positions)
{
    run.countSample();
    run.add(sums, positions);
}

} // namespace

class TestRun final : public QObject
{
    Q_OBJECT

private slots:
    void newRunHasNoLimitAndNoSample();
    void limitAndCountDecideWhetherSamplesAreTaken_data();
    void limitAndCountDecideWhetherSamplesAreTaken();
    void cutBelowTheCountARunIsOver();
    void clearingKeepsTheLimit();
    void figuresOfShortRuns_data();
    void figuresOfShortRuns();
    void stagesHaveFiguresOfTheirOwn();
    void systemsHaveSumsOfTheirOwnAndOneCount();
    void rmsWaitsForTheTextAndTheMeanDoesNot();
    void clearingForgetsTheRmsAndKeepsTheMean();
    void textIsDueElevenMsAfterTheLast_data();
    void textIsDueElevenMsAfterTheLast();
    void textTimeRunsFromItsStartAndFromEachText();
    void shownSamplesAreThoseOfTheText();
    void latestPositionsAreThoseAddedLast();
};

void TestRun::newRunHasNoLimitAndNoSample()
{
    const Run run;
    QVERIFY(!run.hasLimit());
    QVERIFY(!run.isCounting());
    QCOMPARE(run.samplesTaken(), 0);
    QCOMPARE(run.samplesShown(), 0);
}

void TestRun::limitAndCountDecideWhetherSamplesAreTaken_data()
{
    QTest::addColumn<int>("limit");
    QTest::addColumn<int>("taken");
    QTest::addColumn<bool>("hasLimit");
    QTest::addColumn<bool>("isCounting");

    QTest::newRow("none") << Run::noLimit << 5 << false << false;
    QTest::newRow("nothing wanted") << 0 << 0 << true << false;
    QTest::newRow("before the first") << 2 << 0 << true << true;
    QTest::newRow("before the last") << 2 << 1 << true << true;
    QTest::newRow("behind the last") << 2 << 2 << true << false;
    QTest::newRow("beyond") << 2 << 3 << true << false;
}

void TestRun::limitAndCountDecideWhetherSamplesAreTaken()
{
    QFETCH(int, limit);
    QFETCH(int, taken);
    Run run;
    run.setLimit(limit);
    for (int i = 0; i < taken; ++i)
        run.countSample();
    QTEST(run.hasLimit(), "hasLimit");
    QTEST(run.isCounting(), "isCounting");
    QTEST(run.samplesTaken(), "taken");
}

void TestRun::cutBelowTheCountARunIsOver()
{
    Run run;
    run.setLimit(100);
    for (int i = 0; i < 10; ++i)
        run.countSample();
    run.setLimit(10);
    QVERIFY(!run.isCounting());
    run.setLimit(11);
    QVERIFY(run.isCounting());
}

void TestRun::clearingKeepsTheLimit()
{
    Run run;
    run.setLimit(1);
    run.countSample();
    run.clear();
    QCOMPARE(run.samplesTaken(), 0);
    QVERIFY(run.isCounting());
}

void TestRun::figuresOfShortRuns_data()
{
    QTest::addColumn<QVector<QPointF>>("samples");
    QTest::addColumn<QPointF>("mean");
    QTest::addColumn<double>("rms");

    using Samples = QVector<QPointF>;
    QTest::newRow("two samples") << Samples{{1.0, 0.0}, {3.0, 0.0}} << QPointF(2.0, 0.0)
                                 << std::sqrt(0.5);
    QTest::newRow("a still beam") << Samples{{1.5, -2.0}, {1.5, -2.0}, {1.5, -2.0}}
                                  << QPointF(1.5, -2.0) << 0.0;
    QTest::newRow("one sample") << Samples{{4.0, 3.0}} << QPointF(4.0, 3.0) << 0.0;
}

void TestRun::figuresOfShortRuns()
{
    QFETCH(QVector<QPointF>, samples);
    QFETCH(QPointF, mean);
    Run run;
    StatisticsSums sums;
    for (const QPointF& sample : samples)
        addCounted(run, sums, both(sample.x(), sample.y()));
    run.refresh(sums, 0);
    for (const StageFigures& figures : run.figures()) {
        QCOMPARE(figures.mean, mean);
        QTEST(figures.rms, "rms");
    }
}

void TestRun::stagesHaveFiguresOfTheirOwn()
{
    Run run;
    StatisticsSums sums;
    addCounted(run, sums, {QPointF(1.0, 0.0), QPointF(0.0, 7.0)});
    addCounted(run, sums, {QPointF(3.0, 0.0), QPointF(0.0, 7.0)});
    run.refresh(sums, 0);
    QCOMPARE(run.figures()[0].mean, QPointF(2.0, 0.0));
    QCOMPARE(run.figures()[0].rms, std::sqrt(0.5));
    QCOMPARE(run.figures()[1].mean, QPointF(0.0, 7.0));
    QCOMPARE(run.figures()[1].rms, 0.0);
}

void TestRun::systemsHaveSumsOfTheirOwnAndOneCount()
{
    Run run;
    StatisticsSums first;
    StatisticsSums second;
    addCounted(run, first, both(1.0, 0.0));
    run.add(second, both(10.0, 0.0));
    addCounted(run, first, both(3.0, 0.0));
    QCOMPARE(run.figures()[0].mean, QPointF(2.0, 0.0));
    run.add(second, both(20.0, 0.0));
    QCOMPARE(run.figures()[0].mean, QPointF(15.0, 0.0));
    QCOMPARE(run.samplesTaken(), 2);
}

void TestRun::rmsWaitsForTheTextAndTheMeanDoesNot()
{
    Run run;
    StatisticsSums sums;
    addCounted(run, sums, both(1.0, 0.0));
    run.refresh(sums, 0);
    addCounted(run, sums, both(3.0, 0.0));
    QCOMPARE(run.figures()[0].mean, QPointF(2.0, 0.0));
    QCOMPARE(run.figures()[0].rms, 0.0);
}

void TestRun::clearingForgetsTheRmsAndKeepsTheMean()
{
    // The cross rests after a clear whatever the mean is; the next sample gives a new one.
    Run run;
    StatisticsSums sums;
    addCounted(run, sums, both(1.0, 0.0));
    addCounted(run, sums, both(3.0, 0.0));
    run.refresh(sums, 0);
    run.clear();
    QCOMPARE(run.figures()[0].rms, 0.0);
    QCOMPARE(run.figures()[0].mean, QPointF(2.0, 0.0));
    QCOMPARE(run.samplesShown(), 0);
}

void TestRun::textIsDueElevenMsAfterTheLast_data()
{
    QTest::addColumn<int>("passedMs");
    QTest::addColumn<bool>("isDue");
    QTest::newRow("at once") << 0 << false;
    QTest::newRow("10 ms") << 10 << false;
    QTest::newRow("11 ms") << 11 << true;
    QTest::newRow("much later") << 5000 << true;
}

void TestRun::textIsDueElevenMsAfterTheLast()
{
    QFETCH(int, passedMs);
    constexpr qint64 textMs = 123456;
    Run run;
    StatisticsSums sums;
    addCounted(run, sums, both(1.0, 0.0));
    run.refresh(sums, textMs);
    QTEST(run.isTextDue(textMs + passedMs), "isDue");
}

void TestRun::textTimeRunsFromItsStartAndFromEachText()
{
    Run run;
    StatisticsSums sums;
    run.startClock(1000);
    QVERIFY(!run.isTextDue(1010));
    QVERIFY(run.isTextDue(1011));
    addCounted(run, sums, both(1.0, 0.0));
    run.refresh(sums, 1011);
    QVERIFY(!run.isTextDue(1021));
    QVERIFY(run.isTextDue(1022));
}

void TestRun::shownSamplesAreThoseOfTheText()
{
    Run run;
    StatisticsSums sums;
    addCounted(run, sums, both(1.0, 0.0));
    addCounted(run, sums, both(1.0, 0.0));
    QCOMPARE(run.samplesShown(), 0);
    run.refresh(sums, 0);
    addCounted(run, sums, both(1.0, 0.0));
    QCOMPARE(run.samplesShown(), 2);
}

void TestRun::latestPositionsAreThoseAddedLast()
{
    Run run;
    StatisticsSums sums;
    addCounted(run, sums, both(1.0, 2.0));
    addCounted(run, sums, {QPointF(3.0, 4.0), QPointF(5.0, 6.0)});
    QCOMPARE(run.latest()[0], QPointF(3.0, 4.0));
    QCOMPARE(run.latest()[1], QPointF(5.0, 6.0));
}

QTEST_GUILESS_MAIN(TestRun)
#include "tst_run.moc"
