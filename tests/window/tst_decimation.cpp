#include "window/decimation.h"

#include <QtTest>

class tst_Decimation final : public QObject
{
    Q_OBJECT

private slots:
    void aTimePlotGetsAboutOnePointPerPixel_data();
    void aTimePlotGetsAboutOnePointPerPixel();
    void oneOfSoManySamplesIsTakenBeginningWithTheFirst_data();
    void oneOfSoManySamplesIsTakenBeginningWithTheFirst();
    void secondsCountFromTheOrigin_data();
    void secondsCountFromTheOrigin();
};

void tst_Decimation::aTimePlotGetsAboutOnePointPerPixel_data()
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

void tst_Decimation::aTimePlotGetsAboutOnePointPerPixel()
{
    QFETCH(int, rateHz);
    QFETCH(double, timeWindowMs);
    QFETCH(int, widthPx);
    QTEST(plotDecimation(rateHz, timeWindowMs, widthPx), "every");
}

void tst_Decimation::oneOfSoManySamplesIsTakenBeginningWithTheFirst_data()
{
    QTest::addColumn<int>("every");
    QTest::addColumn<QString>("taken");

    QTest::newRow("all") << 1 << "++++++++";
    QTest::newRow("every second") << 2 << "+-+-+-+-";
    QTest::newRow("every third") << 3 << "+--+--+-";
    QTest::newRow("only the first") << 9 << "+-------";
}

void tst_Decimation::oneOfSoManySamplesIsTakenBeginningWithTheFirst()
{
    QFETCH(int, every);
    QFETCH(QString, taken);
    Decimation decimation(every);
    QString seen;
    while (seen.size() < taken.size())
        seen += decimation.takes() ? '+' : '-';
    QCOMPARE(seen, taken);
}

void tst_Decimation::secondsCountFromTheOrigin_data()
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

void tst_Decimation::secondsCountFromTheOrigin()
{
    QFETCH(quint64, originMs);
    QFETCH(quint64, timeMs);
    QTEST(secondsSince(originMs, timeMs), "seconds");
}

QTEST_GUILESS_MAIN(tst_Decimation)
#include "tst_decimation.moc"
