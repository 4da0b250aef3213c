#include "recording/recordingestimate.h"

#include <QtTest>

class TestRecordingEstimate final : public QObject
{
    Q_OBJECT

private slots:
    void blocksAndBytesAreCounted_data();
    void blocksAndBytesAreCounted();
    void sizeHasOneDecimalAndAPointEverywhere();
};

void TestRecordingEstimate::blocksAndBytesAreCounted_data()
{
    QTest::addColumn<int>("rateHz");
    QTest::addColumn<int>("seconds");
    QTest::addColumn<int>("blocks");
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<QString>("megabytes");
    QTest::addColumn<bool>("isLarge");
    QTest::newRow("a minute at 100 Hz") << 100 << 60 << 6000 << qint64(390000) << "0.4" << false;
    QTest::newRow("at 0 Hz") << 0 << 60 << 0 << qint64(0) << "0.0" << false;
    QTest::newRow("0 seconds") << 100 << 0 << 0 << qint64(0) << "0.0" << false;
    QTest::newRow("a megabyte") << 1 << 16132 << 16132 << qint64(1048580) << "1.0" << false;
    QTest::newRow("the last below 2 GB")
        << 179 << 184571 << 33038209 << qint64(2147483585) << "2048.0" << false;
    QTest::newRow("the first above 2 GB")
        << 205 << 161162 << 33038210 << qint64(2147483650) << "2048.0" << true;
    QTest::newRow("the most blocks of 32 bits")
        << 1 << 2147483647 << 2147483647 << qint64(139586437055) << "133120.0" << true;
    // One more than that.
    QTest::newRow("the count starts again negative")
        << 2 << 1073741824 << -2147483647 - 1 << qint64(-139586437120) << "-133120.0" << false;
    QTest::newRow("all that can be typed")
        << 1000 << 3602439 << -692528296 << qint64(-45014339240) << "-42929.0" << false;
}

void TestRecordingEstimate::blocksAndBytesAreCounted()
{
    QFETCH(int, rateHz);
    QFETCH(int, seconds);
    const RecordingEstimate estimate = estimateRecording(rateHz, seconds);
    QTEST(estimate.blocks, "blocks");
    QTEST(estimate.bytes, "bytes");
    QTEST(estimate.megabytesText(), "megabytes");
    QTEST(estimate.isLarge(), "isLarge");
}

void TestRecordingEstimate::sizeHasOneDecimalAndAPointEverywhere()
{
    QLocale::setDefault(QLocale(QLocale::German));
    QCOMPARE(estimateRecording(1000, 100000).megabytesText(), QString("6198.9"));
    QLocale::setDefault(QLocale::c());
}

QTEST_GUILESS_MAIN(TestRecordingEstimate)
#include "tst_recordingestimate.moc"
