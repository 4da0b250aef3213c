#include "monitorbench.h"
#include "window/ratelimits.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

constexpr int fastestRateHz = 430;
/// Several periods of the fastest rate.
constexpr int severalPeriodsMs = 12;

} // namespace

class TestTickTimer final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench = std::make_unique<MonitorBench>(); }
    void cleanup() { bench.reset(); }

    void periodIsThatOfTheUpdateRate_data();
    void periodIsThatOfTheUpdateRate();
    void firstTickDoesNotComeEarly();
    void newRateActsWithTheNextStart();
    void ticksGoOnUntilTheStop();
    void stoppedTimerDoesNotTickAndCanBeStarted();
    void tickThatTakesEventsMeetsNoOther();
    void tickThatIsDueIsForgottenByAStop();
    void tickThatIsDueIsForgottenByAStart();
    void endedTimerNeverTicksAgain();

private:
    void setRate(int rateHz) const
    {
        bench->samplingRate().setValue(RateLimits::slowLineMaxHz);
        bench->updateRate().setValue(rateHz);
    }

    std::unique_ptr<MonitorBench> bench;
};

void TestTickTimer::periodIsThatOfTheUpdateRate_data()
{
    QTest::addColumn<int>("rateHz");
    QTest::addColumn<int>("periodMs");
    QTest::newRow("fastest") << 430 << 2;
    QTest::newRow("cut, not rounded") << 150 << 6;
    QTest::newRow("usual") << 100 << 10;
    QTest::newRow("slow") << 30 << 33;
    QTest::newRow("slowest") << 1 << 1000;
}

void TestTickTimer::periodIsThatOfTheUpdateRate()
{
    QFETCH(int, rateHz);
    setRate(rateHz);
    QFETCH(int, periodMs);
    QSignalSpy ticks(&bench->timer, &TickTimer::timeout);
    QElapsedTimer clock;
    // On a busy machine a tick can come late, but not each of so many.
    constexpr int attempts = 50;
    constexpr int muchTooLong = 5;
    bool isInTime = false;
    for (int i = 0; i < attempts && !isInTime; ++i) {
        clock.start();
        bench->timer.start();
        QCOMPARE(bench->timer.period().count(), periodMs);
        QVERIFY(ticks.wait());
        QVERIFY(clock.elapsed() >= periodMs);
        isInTime = clock.elapsed() < muchTooLong * periodMs;
    }
    QVERIFY(isInTime);
}

void TestTickTimer::firstTickDoesNotComeEarly()
{
    setRate(fastestRateHz);
    TickTimer timer(bench->toolBar);
    const QSignalSpy ticks(&timer, &TickTimer::timeout);
    QTest::qWait(severalPeriodsMs);
    QCOMPARE(ticks.count(), 0);
}

void TestTickTimer::newRateActsWithTheNextStart()
{
    setRate(fastestRateHz);
    bench->timer.start();
    setRate(100);
    QCOMPARE(bench->timer.period().count(), 2);
    bench->timer.start();
    QCOMPARE(bench->timer.period().count(), 10);
}

void TestTickTimer::ticksGoOnUntilTheStop()
{
    setRate(fastestRateHz);
    const QSignalSpy ticks(&bench->timer, &TickTimer::timeout);
    bench->timer.start();
    QTRY_VERIFY(ticks.count() >= 3);
}

void TestTickTimer::stoppedTimerDoesNotTickAndCanBeStarted()
{
    setRate(fastestRateHz);
    QSignalSpy ticks(&bench->timer, &TickTimer::timeout);
    bench->timer.start();
    bench->timer.stop();
    QTest::qWait(severalPeriodsMs);
    QCOMPARE(ticks.count(), 0);
    bench->timer.start();
    QVERIFY(ticks.wait());
}

void TestTickTimer::tickThatTakesEventsMeetsNoOther()
{
    setRate(fastestRateHz);
    int depth = 0;
    int greatestDepth = 0;
    int ticks = 0;
    connect(&bench->timer, &TickTimer::timeout, this, [&] {
        ++ticks;
        greatestDepth = qMax(greatestDepth, ++depth);
        QTest::qWait(severalPeriodsMs);
        --depth;
    });
    bench->timer.start();
    QTRY_VERIFY(ticks >= 2);
    QCOMPARE(greatestDepth, 1);
    disconnect(&bench->timer, nullptr, this, nullptr);
}

void TestTickTimer::tickThatIsDueIsForgottenByAStop()
{
    setRate(fastestRateHz);
    const QSignalSpy ticks(&bench->timer, &TickTimer::timeout);
    bench->timer.start();
    QThread::msleep(severalPeriodsMs);
    bench->timer.stop();
    QCoreApplication::processEvents();
    QCOMPARE(ticks.count(), 0);
    QCOMPARE(bench->timer.period().count(), 0);
}

/// So that a slow tick is not followed by the next one at once.
void TestTickTimer::tickThatIsDueIsForgottenByAStart()
{
    setRate(fastestRateHz);
    const QSignalSpy ticks(&bench->timer, &TickTimer::timeout);
    bench->timer.start();
    QThread::msleep(severalPeriodsMs);
    setRate(1);
    bench->timer.start();
    QCoreApplication::processEvents();
    QCOMPARE(ticks.count(), 0);
}

void TestTickTimer::endedTimerNeverTicksAgain()
{
    setRate(fastestRateHz);
    const QSignalSpy ticks(&bench->timer, &TickTimer::timeout);
    bench->timer.start();
    bench->timer.end();
    bench->timer.start();
    QTest::qWait(severalPeriodsMs);
    QCOMPARE(ticks.count(), 0);
}

QTEST_MAIN(TestTickTimer)
#include "tst_ticktimer.moc"
