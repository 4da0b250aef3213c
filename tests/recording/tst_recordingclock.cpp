#include "recording/recordingclock.h"

#include <QtTest>

class TestRecordingClock final : public QObject
{
    Q_OBJECT

private slots:
    void intervalIsCutTo32Bits_data();
    void intervalIsCutTo32Bits();
    void progressIsTheShareThatIsOver_data();
    void progressIsTheShareThatIsOver();
    void remainingTimeIsRoundedToSeconds_data();
    void remainingTimeIsRoundedToSeconds();
};

void TestRecordingClock::intervalIsCutTo32Bits_data()
{
    QTest::addColumn<int>("seconds");
    QTest::addColumn<quint64>("intervalMs");
    QTest::addColumn<bool>("isEndless");
    QTest::newRow("none") << 0 << quint64(0) << false;
    QTest::newRow("a minute") << 60 << quint64(60000) << false;
    QTest::newRow("the longest that ends") << 2147483 << quint64(2147483000) << false;
    QTest::newRow("the first that does not") << 2147484 << ~quint64(0) - 2147483295 << true;
    QTest::newRow("the longest that can be typed") << 3602439 << ~quint64(0) - 692528295 << true;
}

void TestRecordingClock::intervalIsCutTo32Bits()
{
    QFETCH(int, seconds);
    const quint64 intervalMs = recordingclock::intervalMs(seconds);
    QTEST(intervalMs, "intervalMs");
    QTEST(recordingclock::isEndless(intervalMs), "isEndless");
}

void TestRecordingClock::progressIsTheShareThatIsOver_data()
{
    QTest::addColumn<quint64>("remainingMs");
    QTest::addColumn<quint64>("intervalMs");
    QTest::addColumn<int>("percent");
    const quint64 minuteMs = 60000;
    QTest::newRow("no interval") << quint64(0) << quint64(0) << 0;
    QTest::newRow("no interval, time remains") << quint64(5) << quint64(0) << 0;
    QTest::newRow("the beginning") << minuteMs << minuteMs << 0;
    QTest::newRow("a quarter") << quint64(45000) << minuteMs << 25;
    QTest::newRow("rounded down") << quint64(59701) << minuteMs << 0;
    QTest::newRow("rounded up") << quint64(59699) << minuteMs << 1;
    QTest::newRow("the last moment") << quint64(1) << minuteMs << 100;
    QTest::newRow("the end") << quint64(0) << minuteMs << 100;
    QTest::newRow("the longest that ends") << quint64(1073741500) << quint64(2147483000) << 50;
    QTest::newRow("one that does not end")
        << ~quint64(0) - 692528295 - 3600000 << ~quint64(0) - 692528295 << 0;
}

void TestRecordingClock::progressIsTheShareThatIsOver()
{
    QFETCH(quint64, remainingMs);
    QFETCH(quint64, intervalMs);
    QTEST(recordingclock::percentDone(remainingMs, intervalMs), "percent");
}

void TestRecordingClock::remainingTimeIsRoundedToSeconds_data()
{
    QTest::addColumn<quint64>("remainingMs");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << quint64(0) << "000:00:00";
    QTest::newRow("rounded down") << quint64(499) << "000:00:00";
    QTest::newRow("rounded up") << quint64(500) << "000:00:01";
    QTest::newRow("a little late") << quint64(58997) << "000:00:59";
    QTest::newRow("a little early") << quint64(59003) << "000:00:59";
    QTest::newRow("the longest that ends") << quint64(2147483000) << "596:31:23";
    QTest::newRow("more than there is room for") << ~quint64(0) << "999:99:99";
}

void TestRecordingClock::remainingTimeIsRoundedToSeconds()
{
    QFETCH(quint64, remainingMs);
    QTEST(recordingclock::remainingText(remainingMs), "text");
}

QTEST_GUILESS_MAIN(TestRecordingClock)
#include "tst_recordingclock.moc"
