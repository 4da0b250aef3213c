// What the GUI thread does while it waits for the end of a connection's thread.

#include "busythread.h"
#include "support/emulatedlink.h"

#include <QtTest>

#include <thread>

namespace {

/// Counts the events that reach it.
class EventCounter final : public QObject
{
public:
    int count = 0;

    /// Leaves an event in the queue, as a click or a timer does.
    void post() { QCoreApplication::postEvent(this, new QEvent(QEvent::User)); }

    bool event(QEvent*) override
    {
        ++count;
        return true;
    }
};

} // namespace

class TestThreadEnd : public QObject
{
    Q_OBJECT

private slots:
    void disconnectTakesNoEvents();
    void deletionTakesNoEvents();
    void lossIsToldAfterTheDisconnect();
    void endWaitsForTheReplyThatIsBeingReadOnly();
    void endWaitsForABusyThread();
    void endBeforeTheThreadHasBegunIsAnEnd();
    void connectionCanBeStartedAgainAtOnce();
};

void TestThreadEnd::disconnectTakesNoEvents()
{
    EmulatedLink link;
    QVERIFY(link.connect());
    EventCounter events;
    events.post();
    QCOMPARE(link.client.disconnectController(), 1);
    QCOMPARE(events.count, 0);
    QCoreApplication::processEvents();
    QCOMPARE(events.count, 1);
}

void TestThreadEnd::deletionTakesNoEvents()
{
    EventCounter events;
    {
        EmulatedLink link;
        QVERIFY(link.connect());
        events.post();
        link.client.releaseInPlace();
        QVERIFY(!link.client.isRunning());
    }
    QCOMPARE(events.count, 0);
    QCoreApplication::processEvents();
    QCOMPARE(events.count, 1);
}

void TestThreadEnd::lossIsToldAfterTheDisconnect()
{
    EmulatedLink link;
    QVERIFY(link.connect());
    link.controller.closeConnection();
    QVERIFY(link.client.wait());
    QCOMPARE(link.client.disconnectController(), 1);
    QCOMPARE(link.lost.count(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(link.lost, QStringList{link.client.address()});
}

void TestThreadEnd::endWaitsForTheReplyThatIsBeingReadOnly()
{
    emulator::ControllerOptions options;
    options.faults.shortBytes = {{"GAS", 3}};
    EmulatedLink link(options);
    QVERIFY(link.connect());
    link.client.getActiveSignal();
    QTRY_COMPARE(link.controller.commands().size(), 1);

    QElapsedTimer time;
    time.start();
    QCOMPARE(link.client.disconnectController(), 1);
    QVERIFY(!link.client.isRunning());
    QVERIFY(time.elapsed() < 2 * EmulatedLink::shortTimeoutMs);
}

void TestThreadEnd::endWaitsForABusyThread()
{
    constexpr int busyMs = 200;
    EmulatedLink link;
    BusyThread busy(link.client);
    QVERIFY(link.connect());
    QVERIFY(busy.hold());
    QElapsedTimer time;
    time.start();
    std::thread later([&busy] {
        QThread::msleep(busyMs);
        busy.release();
    });
    QCOMPARE(link.client.disconnectController(), 1);
    QVERIFY(!link.client.isRunning());
    QVERIFY(time.elapsed() >= busyMs);
    QVERIFY(time.elapsed() < 10 * busyMs);
    later.join();
}

void TestThreadEnd::endBeforeTheThreadHasBegunIsAnEnd()
{
    EmulatedLink link({}, 20000);
    for (int round = 0; round < 20; ++round) {
        link.client.start(QThread::InheritPriority);
        QCOMPARE(link.client.disconnectController(), 1);
        QVERIFY(!link.client.isRunning());
        QCOMPARE(link.client.linkState(), LinkState::Disconnected);
    }
}

void TestThreadEnd::connectionCanBeStartedAgainAtOnce()
{
    EmulatedLink link;
    for (int round = 0; round < 20; ++round) {
        QVERIFY(link.connect());
        QCOMPARE(link.exchange(&Connection::getStatusFlags).size(), 4);
        QCOMPARE(link.client.disconnectController(), 1);
        QCOMPARE(link.exchange(&Connection::getStatusFlags).size(), 0);
    }
}

QTEST_GUILESS_MAIN(TestThreadEnd)
#include "tst_threadend.moc"
