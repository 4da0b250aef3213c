#include "plots/largetimer.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QSignalSpy>
#include <QTimer>
#include <QtTest>

namespace {

QTimer& chunkTimerOf(const LargeTimer& timer)
{
    return *timer.findChild<QTimer*>();
}

/// Ends the running chunk at once, so that no test waits for it.
void endChunk(const LargeTimer& timer)
{
    QVERIFY(QMetaObject::invokeMethod(const_cast<LargeTimer*>(&timer), "timerTimeout"));
}

int chunk(const LargeTimer& timer)
{
    return chunkTimerOf(timer).interval();
}

/// Whether no more is gone of `total` milliseconds than the clock saw, which was started before.
bool restFollows(const QElapsedTimer& clock, const LargeTimer& timer, quint64 total)
{
    constexpr quint64 roundingMs = 1;
    const quint64 rest = timer.remainingTime();
    return rest <= total && total - rest <= quint64(clock.elapsed()) + roundingMs;
}

} // namespace

class TestLargeTimer final : public QObject
{
    Q_OBJECT

private slots:
    void newTimerStandsStill();
    void intervalRunsInChunksAndEndsOnce();
    void repeatingTimerBeginsAgain();
    void singleShotStops();
    void realTimerRunsThroughItsChunks();
    void intervalOfZeroExpiresInTheNextPass();
    void intervalOfOneChunkIsNotSplit();
    void remainingTimeCountsAllChunks();
    void remainingTimeFallsWhileAChunkRuns();
    void newIntervalRestartsARunningTimer();
    void newIntervalLeavesAStandingTimerAlone();
    void startWithAnIntervalSetsIt();
    void stoppedTimerDoesNotEnd();
    void intervalsBeyondATimerAreKept_data();
    void intervalsBeyondATimerAreKept();
    void chunkIsHeldToWhatATimerTakes_data();
    void chunkIsHeldToWhatATimerTakes();
    void listenerMayDeleteTheTimer();
};

void TestLargeTimer::newTimerStandsStill()
{
    const LargeTimer timer(nullptr, 2500, 1000);
    QVERIFY(!timer.isRunning());
    QCOMPARE(timer.totalInterval(), quint64(2500));
    QCOMPARE(timer.remainingTime(), quint64(0));
}

void TestLargeTimer::intervalRunsInChunksAndEndsOnce()
{
    LargeTimer timer(nullptr, 2500, 1000);
    QSignalSpy ended(&timer, &LargeTimer::timeout);
    timer.start();
    QCOMPARE(chunk(timer), 1000);
    endChunk(timer);
    QCOMPARE(chunk(timer), 1000);
    endChunk(timer);
    QCOMPARE(chunk(timer), 500);
    QCOMPARE(ended.size(), 0);
    endChunk(timer);
    QCOMPARE(ended.size(), 1);
}

void TestLargeTimer::repeatingTimerBeginsAgain()
{
    LargeTimer timer(nullptr, 2500, 1000);
    timer.start();
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 3; ++i)
        endChunk(timer);
    QVERIFY(timer.isRunning());
    QCOMPARE(chunk(timer), 1000);
    QVERIFY(restFollows(clock, timer, 2500));
}

void TestLargeTimer::singleShotStops()
{
    LargeTimer timer(nullptr, 1500, 1000);
    timer.setSingleShot(true);
    QSignalSpy ended(&timer, &LargeTimer::timeout);
    timer.start();
    endChunk(timer);
    QVERIFY(timer.isRunning());
    endChunk(timer);
    QVERIFY(!timer.isRunning());
    QCOMPARE(timer.remainingTime(), quint64(0));
    QCOMPARE(ended.size(), 1);
}

void TestLargeTimer::realTimerRunsThroughItsChunks()
{
    LargeTimer timer(nullptr, 25, 10);
    timer.setSingleShot(true);
    QSignalSpy ended(&timer, &LargeTimer::timeout);
    QSignalSpy chunks(&chunkTimerOf(timer), &QTimer::timeout);
    QElapsedTimer clock;
    clock.start();
    timer.start();
    QTRY_COMPARE(ended.size(), 1);
    QVERIFY(clock.elapsed() >= 24);
    QCOMPARE(chunks.size(), 3);
    QVERIFY(!timer.isRunning());
}

void TestLargeTimer::intervalOfZeroExpiresInTheNextPass()
{
    LargeTimer timer(nullptr, 0, LargeTimer::longestChunkMs);
    timer.setSingleShot(true);
    QSignalSpy ended(&timer, &LargeTimer::timeout);
    timer.start();
    QCOMPARE(ended.size(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(ended.size(), 1);
}

void TestLargeTimer::intervalOfOneChunkIsNotSplit()
{
    LargeTimer timer(nullptr, 1000, 1000);
    QSignalSpy ended(&timer, &LargeTimer::timeout);
    timer.start();
    QCOMPARE(chunk(timer), 1000);
    endChunk(timer);
    QCOMPARE(ended.size(), 1);
}

void TestLargeTimer::remainingTimeCountsAllChunks()
{
    LargeTimer timer(nullptr, 2500, 1000);
    QElapsedTimer clock;
    clock.start();
    timer.start();
    QVERIFY(restFollows(clock, timer, 2500));
    endChunk(timer);
    clock.start();
    endChunk(timer);
    QVERIFY(restFollows(clock, timer, 500));
}

void TestLargeTimer::remainingTimeFallsWhileAChunkRuns()
{
    LargeTimer timer(nullptr, 2500, 1000);
    QElapsedTimer clock;
    clock.start();
    timer.start();
    QTRY_VERIFY(timer.remainingTime() <= 2400);
    QVERIFY(restFollows(clock, timer, 2500));
}

void TestLargeTimer::newIntervalRestartsARunningTimer()
{
    LargeTimer timer(nullptr, 2500, 1000);
    timer.start();
    endChunk(timer);
    timer.setInterval(700);
    QVERIFY(timer.isRunning());
    QCOMPARE(chunk(timer), 700);
    QVERIFY(timer.remainingTime() <= 700);
}

void TestLargeTimer::newIntervalLeavesAStandingTimerAlone()
{
    LargeTimer timer(nullptr, 2500, 1000);
    timer.setInterval(700);
    QCOMPARE(timer.totalInterval(), quint64(700));
    QVERIFY(!timer.isRunning());
}

void TestLargeTimer::startWithAnIntervalSetsIt()
{
    LargeTimer timer(nullptr, 0, 1000);
    timer.start(2500);
    QVERIFY(timer.isRunning());
    QCOMPARE(timer.totalInterval(), quint64(2500));
    QCOMPARE(chunk(timer), 1000);
}

void TestLargeTimer::stoppedTimerDoesNotEnd()
{
    LargeTimer timer(nullptr, 0, 1000);
    QSignalSpy ended(&timer, &LargeTimer::timeout);
    timer.start();
    timer.stop();
    QVERIFY(!timer.isRunning());
    // A pass in which the interval would have ended.
    QCoreApplication::processEvents();
    QCOMPARE(ended.size(), 0);
}

void TestLargeTimer::intervalsBeyondATimerAreKept_data()
{
    QTest::addColumn<quint64>("interval");
    QTest::newRow("one more than a chunk") << quint64(2147483648);
    QTest::newRow("a year") << quint64(31536000000);
    QTest::newRow("the largest") << ~quint64(0);
}

void TestLargeTimer::intervalsBeyondATimerAreKept()
{
    QFETCH(quint64, interval);
    LargeTimer timer(nullptr, 0, LargeTimer::longestChunkMs);
    QElapsedTimer clock;
    clock.start();
    timer.start(interval);
    QCOMPARE(chunk(timer), 2147483647);
    QVERIFY(restFollows(clock, timer, interval));
}

void TestLargeTimer::chunkIsHeldToWhatATimerTakes_data()
{
    QTest::addColumn<quint32>("maxChunk");
    QTest::addColumn<int>("firstChunk");
    QTest::newRow("none at all") << quint32(0) << 1;
    QTest::newRow("the longest") << quint32(2147483647) << 2147483647;
    QTest::newRow("too long") << quint32(4000000000u) << 2147483647;
}

void TestLargeTimer::chunkIsHeldToWhatATimerTakes()
{
    QFETCH(quint32, maxChunk);
    LargeTimer timer(nullptr, 5000000000u, maxChunk);
    timer.start();
    QTEST(chunk(timer), "firstChunk");
}

void TestLargeTimer::listenerMayDeleteTheTimer()
{
    auto* timer = new LargeTimer(this, 1, 1000);
    QPointer<LargeTimer> watched(timer);
    connect(timer, &LargeTimer::timeout, this, [timer] { delete timer; });
    timer->start();
    QTRY_VERIFY(!watched);
}

QTEST_GUILESS_MAIN(TestLargeTimer)
#include "tst_largetimer.moc"
