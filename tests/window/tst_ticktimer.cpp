#include "monitorbench.h"
#include "window/ratelimits.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

/// Notes the period of the timer that fired last.
class TimerWatch final : public QObject
{
public:
    TimerWatch() { qApp->installEventFilter(this); }
    int periodMs = 0;

protected:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        const auto* timer = qobject_cast<QTimer*>(object);
        if (timer && event->type() == QEvent::Timer)
            periodMs = timer->interval();
        return false;
    }
};

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
    void stoppedTimerDoesNotTickAndCanBeStarted();
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
}

void TestTickTimer::periodIsThatOfTheUpdateRate()
{
    QFETCH(int, rateHz);
    setRate(rateHz);
    const TimerWatch watch;
    QSignalSpy ticks(&bench->timer, &TickTimer::timeout);
    bench->timer.start();
    QVERIFY(ticks.wait());
    QTEST(watch.periodMs, "periodMs");
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
    const TimerWatch watch;
    QSignalSpy ticks(&bench->timer, &TickTimer::timeout);
    bench->timer.start();
    setRate(100);
    QVERIFY(ticks.wait());
    QCOMPARE(watch.periodMs, 2);
    bench->timer.start();
    QVERIFY(ticks.wait());
    QCOMPARE(watch.periodMs, 10);
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
