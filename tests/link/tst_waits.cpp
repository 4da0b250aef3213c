// Whoever waits for a reply waits twice the time-out in all, whatever the time is spent on.

#include "busythread.h"
#include "support/emulatedlink.h"

#include <QtTest>

#include <thread>

namespace {

using emulator::ControllerOptions;

/// Long enough to tell one time-out from two on a busy machine.
constexpr int timeoutMs = 300;
constexpr int fullWaitMs = 2 * timeoutMs;
/// What a busy machine may add; less than any other wait would add.
constexpr int slackMs = timeoutMs;

ControllerOptions silentTo(const QByteArray& mnemonic)
{
    ControllerOptions options;
    options.faults.silent = {mnemonic};
    return options;
}

bool isAbout(qint64 elapsedMs, int expectedMs)
{
    return elapsedMs >= expectedMs && elapsedMs < expectedMs + slackMs;
}

/// Keeps the thread of the link busy for some time.
class BusyWhile final
{
public:
    BusyWhile(BusyThread& busy, int busyMs)
        : later([&busy, busyMs] {
            QThread::msleep(static_cast<unsigned long>(busyMs));
            busy.release();
        })
    {}
    ~BusyWhile() { later.join(); }
    BusyWhile(const BusyWhile&) = delete;
    BusyWhile& operator=(const BusyWhile&) = delete;

private:
    std::thread later;
};

} // namespace

class TestWaits : public QObject
{
    Q_OBJECT

private slots:
    void silentControllerCostsTwiceTheTimeout();
    void shortReplyCostsOneTimeout();
    void stopWithoutEndMarkCostsOneAndAHalf();
    void busyThreadCostsTwiceTheTimeout();
    void busyThreadHoldsAStopForTwiceTheTimeout();
    void busyThreadHoldsARepeatedStopForTwiceThat();
    void slowDeliveryIsPartOfTheWait();
    void replyAfterASlowDeliveryIsTaken();
    void waitBeginsWithTheSending();
    void commandThatWasGivenUpIsNeverSent();
    void stopThatWasGivenUpIsNeverSent();
    void replyOfAGivenUpCommandMeetsNoOther();
};

void TestWaits::silentControllerCostsTwiceTheTimeout()
{
    EmulatedLink link(silentTo("GSF"), timeoutMs);
    QVERIFY(link.connect());
    QElapsedTimer time;
    time.start();
    QCOMPARE(link.exchange(&Connection::getStatusFlags), QByteArray());
    QVERIFY(isAbout(time.elapsed(), fullWaitMs));
}

void TestWaits::shortReplyCostsOneTimeout()
{
    ControllerOptions options;
    options.faults.shortBytes = {{"GSF", 3}};
    EmulatedLink link(options, timeoutMs);
    QVERIFY(link.connect());
    QElapsedTimer time;
    time.start();
    QCOMPARE(link.exchange(&Connection::getStatusFlags), QByteArray());
    QVERIFY(isAbout(time.elapsed(), timeoutMs));
}

void TestWaits::stopWithoutEndMarkCostsOneAndAHalf()
{
    EmulatedLink link({}, timeoutMs);
    QVERIFY(link.connect());
    QElapsedTimer time;
    time.start();
    QCOMPARE(link.exchange(&Connection::clearLiveStream), QByteArray("\0;", 2));
    QVERIFY(isAbout(time.elapsed(), timeoutMs + timeoutMs / 2));
}

void TestWaits::busyThreadCostsTwiceTheTimeout()
{
    EmulatedLink link({}, timeoutMs);
    BusyThread busy(link.client);
    QVERIFY(link.connect());
    QVERIFY(busy.hold());
    QElapsedTimer time;
    time.start();
    link.client.getStatusFlags();
    QVERIFY(time.elapsed() < slackMs);
    QByteArray reply;
    QVERIFY(!link.client.fetchReply(reply));
    QVERIFY(isAbout(time.elapsed(), fullWaitMs));
}

void TestWaits::busyThreadHoldsAStopForTwiceTheTimeout()
{
    EmulatedLink link({}, timeoutMs);
    BusyThread busy(link.client);
    QVERIFY(link.connect());
    QVERIFY(busy.hold());
    QElapsedTimer time;
    time.start();
    link.client.clearLiveStream();
    QVERIFY(isAbout(time.elapsed(), fullWaitMs));
    QByteArray reply;
    QVERIFY(!link.client.fetchReply(reply));
    QVERIFY(isAbout(time.elapsed(), fullWaitMs));
}

void TestWaits::busyThreadHoldsARepeatedStopForTwiceThat()
{
    EmulatedLink link({}, timeoutMs);
    BusyThread busy(link.client);
    QVERIFY(link.connect());
    QVERIFY(busy.hold());
    QElapsedTimer time;
    time.start();
    link.client.stopStream();
    QVERIFY(isAbout(time.elapsed(), 2 * fullWaitMs));
}

void TestWaits::slowDeliveryIsPartOfTheWait()
{
    EmulatedLink link(silentTo("GSF"), timeoutMs);
    BusyThread busy(link.client);
    QVERIFY(link.connect());
    QVERIFY(busy.hold());
    QElapsedTimer time;
    time.start();
    const BusyWhile slow(busy, timeoutMs + timeoutMs / 2);
    QCOMPARE(link.exchange(&Connection::getStatusFlags), QByteArray());
    QVERIFY(isAbout(time.elapsed(), fullWaitMs));
    QTRY_COMPARE(link.controller.commands(), QByteArrayList{"GSF;"});
}

void TestWaits::replyAfterASlowDeliveryIsTaken()
{
    EmulatedLink link({}, timeoutMs);
    BusyThread busy(link.client);
    QVERIFY(link.connect());
    QVERIFY(busy.hold());
    const BusyWhile slow(busy, timeoutMs / 2);
    QCOMPARE(link.exchange(&Connection::getControllerId), link.controller.idReply());
}

void TestWaits::waitBeginsWithTheSending()
{
    EmulatedLink link(silentTo("GSF"), timeoutMs);
    QVERIFY(link.connect());
    QElapsedTimer time;
    time.start();
    link.client.getStatusFlags();
    QTest::qWait(timeoutMs);
    QByteArray reply;
    QVERIFY(!link.client.fetchReply(reply));
    QVERIFY(isAbout(time.elapsed(), fullWaitMs));
}

void TestWaits::commandThatWasGivenUpIsNeverSent()
{
    EmulatedLink link({}, timeoutMs);
    BusyThread busy(link.client);
    QVERIFY(link.connect());
    QVERIFY(busy.hold());
    QCOMPARE(link.exchange(&Connection::getStatusFlags), QByteArray());
    busy.release();
    QCOMPARE(link.exchange(&Connection::getControllerId), link.controller.idReply());
    QCOMPARE(link.controller.commands(), QByteArrayList{"GID;"});
}

void TestWaits::stopThatWasGivenUpIsNeverSent()
{
    EmulatedLink link({}, timeoutMs);
    BusyThread busy(link.client);
    QVERIFY(link.connect());
    QVERIFY(busy.hold());
    link.client.stopStream();
    busy.release();
    QCOMPARE(link.exchange(&Connection::getControllerId), link.controller.idReply());
    QCOMPARE(link.controller.commands(), QByteArrayList{"GID;"});
}

void TestWaits::replyOfAGivenUpCommandMeetsNoOther()
{
    EmulatedLink link({}, timeoutMs);
    QVERIFY(link.connect());
    link.controller.pause(true);
    QCOMPARE(link.exchange(&Connection::getStatusFlags), QByteArray());
    link.controller.pause(false);
    // It has come, and lies there.
    QTRY_COMPARE(link.controller.commands().size(), 1);
    QTest::qWait(slackMs);
    QCOMPARE(link.exchange(&Connection::getControllerId), link.controller.idReply());
}

QTEST_GUILESS_MAIN(TestWaits)
#include "tst_waits.moc"
