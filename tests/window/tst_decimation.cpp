#include "window/decimation.h"

#include <QtTest>

class TestDecimation final : public QObject
{
    Q_OBJECT

private slots:
    void aTimePlotGetsAboutOnePointPerPixel_data();
    void aTimePlotGetsAboutOnePointPerPixel();
    void secondsCountFromTheOrigin_data();
    void secondsCountFromTheOrigin();
    void wholeSecondsAreCut_data();
    void wholeSecondsAreCut();
    void takenSamplesOfABlock_data();
    void takenSamplesOfABlock();
    void eachBlockBeginsWithATakenSample();
};

void TestDecimation::aTimePlotGetsAboutOnePointPerPixel_data()
{
    QTest::addColumn<int>("rateHz");
    QTest::addColumn<double>("timeWindowMs");
    QTest::addColumn<int>("widthPx");
    QTest::addColumn<int>("every");

    QTest::newRow("two samples per pixel") << 100 << 10000.0 << 500 << 2;
    QTest::newRow("just below two") << 100 << 10000.0 << 501 << 1;
    QTest::newRow("as many pixels as samples") << 100 << 10000.0 << 1000 << 1;
    QTest::newRow("more pixels than samples") << 100 << 10000.0 << 1001 << 1;
    QTest::newRow("the fastest stream") << 500 << 10000.0 << 700 << 7;
    QTest::newRow("under the pulsed lock") << 1000 << 10000.0 << 500 << 20;
    QTest::newRow("a short sweep") << 500 << 1000.0 << 700 << 1;
    QTest::newRow("a fraction of a second") << 500 << 1500.0 << 250 << 3;
    QTest::newRow("the longest sweep at the slowest rate") << 1 << 3600000.0 << 600 << 6;
    QTest::newRow("a sweep of no time") << 100 << 0.0 << 500 << 1;
}

void TestDecimation::aTimePlotGetsAboutOnePointPerPixel()
{
    QFETCH(int, rateHz);
    QFETCH(double, timeWindowMs);
    QFETCH(int, widthPx);
    QTEST(plotDecimation(rateHz, timeWindowMs, widthPx), "every");
}

void TestDecimation::secondsCountFromTheOrigin_data()
{
    QTest::addColumn<quint64>("originMs");
    QTest::addColumn<quint64>("timeMs");
    QTest::addColumn<double>("seconds");

    const quint64 today = 1700000000000;
    QTest::newRow("at the origin") << today << today << 0.0;
    QTest::newRow("a millisecond later") << today << today + 1 << 0.001;
    QTest::newRow("ten seconds later") << today << today + 10000 << 10.0;
    QTest::newRow("no origin yet") << quint64(0) << today << 1700000000.0;
    // 2^64 - 1 ms: off every scale, and longer than every sweep.
    QTest::newRow("a millisecond before") << today << today - 1 << 18446744073709551.616;
}

void TestDecimation::secondsCountFromTheOrigin()
{
    QFETCH(quint64, originMs);
    QFETCH(quint64, timeMs);
    QTEST(secondsSince(originMs, timeMs), "seconds");
}

void TestDecimation::wholeSecondsAreCut_data()
{
    QTest::addColumn<quint64>("passedMs");
    QTest::addColumn<double>("seconds");
    QTest::newRow("at once") << quint64(0) << 0.0;
    QTest::newRow("just below a second") << quint64(999) << 0.0;
    QTest::newRow("a second") << quint64(1000) << 1.0;
    QTest::newRow("nearly ten") << quint64(9999) << 9.0;
    // As enormous as with milliseconds, and whole as well.
    QTest::newRow("before the origin") << ~quint64(0) << 18446744073709551.0;
}

void TestDecimation::wholeSecondsAreCut()
{
    QFETCH(quint64, passedMs);
    constexpr quint64 originMs = 1700000000000;
    QTEST(secondsSince(originMs, originMs + passedMs, TimeSteps::WholeSeconds), "seconds");
}

void TestDecimation::takenSamplesOfABlock_data()
{
    QTest::addColumn<int>("every");
    QTest::addColumn<int>("samples");
    QTest::addColumn<QList<int>>("taken");

    QTest::newRow("one of ten") << 10 << 30 << QList<int>{1, 11, 21};
    QTest::newRow("the thirty-first, too") << 10 << 31 << QList<int>{1, 11, 21, 31};
    QTest::newRow("all") << 1 << 3 << QList<int>{1, 2, 3};
    QTest::newRow("every second") << 2 << 5 << QList<int>{1, 3, 5};
    QTest::newRow("a block shorter than the distance") << 50 << 30 << QList<int>{1};
}

void TestDecimation::takenSamplesOfABlock()
{
    QFETCH(int, every);
    QFETCH(int, samples);
    Decimation decimation(every);
    QList<int> taken;
    for (int sample = 1; sample <= samples; ++sample) {
        if (decimation.takes())
            taken.append(sample);
    }
    QTEST(taken, "taken");
}

void TestDecimation::eachBlockBeginsWithATakenSample()
{
    Decimation first(10);
    first.takes();
    first.takes();
    QVERIFY(Decimation(10).takes());
}

QTEST_GUILESS_MAIN(TestDecimation)
#include "tst_decimation.moc"
