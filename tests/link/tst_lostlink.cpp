#include "support/emulatedlink.h"
#include "support/logcapture.h"

#include <QtTest>

#include <thread>

/// The link goes away at any moment, also in the middle of a send: what the other thread may still
/// want to touch must be there or known to be gone. Meant to run under the thread sanitizer, too.
class TestLostLink : public QObject
{
    Q_OBJECT

private slots:
    void linkLostWhileCommandsAreSentIsToldOnce();
    void linkLostWhileStreamingIsToldOnceAndKeepsTheSamples();
    void linkLostBeforeAStopIsAnsweredEndsTheWait();
    void linkLostInTheMiddleOfAReplyEndsTheWait();
    void halfClosedLinkIsLost();
    void frozenControllerCostsOnlyTheWaits();
    void disconnectWhileAReplyIsAwaitedLeavesNothingBehind();
};

void TestLostLink::linkLostWhileCommandsAreSentIsToldOnce()
{
    constexpr int rounds = 40;
    EmulatedLink link;
    for (int round = 0; round < rounds; ++round) {
        QVERIFY(link.connect());
        // The controller goes away at a moment that differs from round to round.
        std::thread cut([&link, round] {
            QThread::usleep(static_cast<unsigned long>(round * 170));
            link.controller.closeConnection();
        });
        while (link.client.isRunning()) {
            link.exchange(&Connection::getStatusFlags);
            link.exchange(&Connection::clearLiveStream);
        }
        cut.join();
        link.client.disconnectController();
    }
    QTRY_COMPARE(link.lost.count(), rounds);
}

void TestLostLink::linkLostWhileStreamingIsToldOnceAndKeepsTheSamples()
{
    emulator::ControllerOptions options;
    options.faults.closeAfterPackets = 100;
    EmulatedLink link(options);
    QVERIFY(link.connectAndIdentify());
    QVERIFY(link.startStream());
    while (link.client.isRunning()) {
        link.takeSamples();
        QThread::msleep(1);
    }
    QTRY_COMPARE(link.lost.count(), 1);
    QCOMPARE(link.client.samplesStored(), quint64(99));

    link.client.disconnectController();
    QVERIFY(!link.client.isStreaming());
    QVERIFY(link.connectAndIdentify());
}

void TestLostLink::linkLostBeforeAStopIsAnsweredEndsTheWait()
{
    emulator::ControllerOptions options;
    options.faults.closeOn = {"CLS"};
    EmulatedLink link(options, 5000);
    QVERIFY(link.connect());
    QVERIFY(link.startStream());

    QElapsedTimer time;
    time.start();
    link.client.stopStream();
    QVERIFY(time.elapsed() < 5000);
    QVERIFY(link.client.wait());
    QCOMPARE(link.client.disconnectController(), 1);
}

void TestLostLink::linkLostInTheMiddleOfAReplyEndsTheWait()
{
    emulator::ControllerOptions options;
    options.faults.shortBytes = {{"GID", 20}};
    EmulatedLink link(options, 5000);
    QVERIFY(link.connect());

    QElapsedTimer time;
    time.start();
    link.client.getControllerId();
    QTRY_COMPARE(repliesOf(link.controller), 1);
    link.controller.closeConnection();
    QByteArray reply;
    link.client.fetchReply(reply);
    QVERIFY(reply.isEmpty());
    QVERIFY(time.elapsed() < 5000);
}

void TestLostLink::halfClosedLinkIsLost()
{
    EmulatedLink link;
    QVERIFY(link.connect());
    link.controller.halfCloseConnection();
    QTRY_COMPARE(link.lost.count(), 1);
    QVERIFY(link.client.wait());
}

void TestLostLink::frozenControllerCostsOnlyTheWaits()
{
    EmulatedLink link;
    QVERIFY(link.connect());
    link.controller.pause(true);

    QElapsedTimer time;
    time.start();
    QCOMPARE(link.exchange(&Connection::getStatusFlags), QByteArray());
    QVERIFY(time.elapsed() >= 2 * EmulatedLink::shortTimeoutMs);
    QVERIFY(time.elapsed() < 4 * EmulatedLink::shortTimeoutMs);
    QVERIFY(link.client.isConnected());

    // The late reply is taken for nobody's, and the next fetch without a send hands it over.
    link.controller.pause(false);
    QTest::qWait(2 * EmulatedLink::shortTimeoutMs);
    QByteArray reply;
    QVERIFY(link.client.fetchReply(reply));
    QCOMPARE(reply.size(), 4);
}

void TestLostLink::disconnectWhileAReplyIsAwaitedLeavesNothingBehind()
{
    constexpr int longTimeoutMs = 20000;
    emulator::ControllerOptions options;
    options.faults.lateMs = {{"GSF", 5}};
    EmulatedLink link(options, longTimeoutMs);
    QElapsedTimer time;
    time.start();
    for (int round = 0; round < 20; ++round) {
        QVERIFY(link.connect());
        link.client.getStatusFlags();
        QCOMPARE(link.client.disconnectController(), 1);
        QByteArray reply;
        QVERIFY(!link.client.fetchReply(reply));

        QVERIFY(link.connect());
        QCOMPARE(link.exchange(&Connection::getControllerId), link.controller.idReply());
        QCOMPARE(link.client.disconnectController(), 1);
    }
    QVERIFY(time.elapsed() < longTimeoutMs);
}

QTEST_GUILESS_MAIN(TestLostLink)
#include "tst_lostlink.moc"
