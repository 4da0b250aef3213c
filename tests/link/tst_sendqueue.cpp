// The way of a command into the connection's thread, up to its delivery.

#include "link/sendqueue.h"

#include <QThread>
#include <QtTest>

#include <thread>

class TestSendQueue : public QObject
{
    Q_OBJECT

private slots:
    void closedQueueFinishesEverySendAtOnce();
    void sendIsMadeUnlessItIsGivenUp();
    void sendThatIsGivenUpIsNotMade();
    void sendThatIsBeingMadeIsWaitedFor();
    void sendThatIsOverCanBeGivenUp();
    void waitEndsAtItsDeadline();
    void waitEndsWithTheDelivery();
};

void TestSendQueue::closedQueueFinishesEverySendAtOnce()
{
    SendQueue queue;
    QVERIFY(queue.post({"GSF;", command::statusFlagsReplyLength})->isFinished());
    queue.close();
    QVERIFY(queue.post({"GSF;", command::statusFlagsReplyLength})->isFinished());
}

void TestSendQueue::sendIsMadeUnlessItIsGivenUp()
{
    SendDelivery delivery;
    QVERIFY(!delivery.isFinished());
    QVERIFY(delivery.begin());
    delivery.finish();
    QVERIFY(delivery.isFinished());
}

void TestSendQueue::sendThatIsGivenUpIsNotMade()
{
    SendDelivery delivery;
    delivery.giveUp();
    QVERIFY(!delivery.begin());
}

void TestSendQueue::sendThatIsBeingMadeIsWaitedFor()
{
    SendDelivery delivery;
    QVERIFY(delivery.begin());
    std::thread sending([&delivery] {
        constexpr unsigned long sendMs = 20;
        QThread::msleep(sendMs);
        delivery.finish();
    });
    delivery.giveUp();
    QVERIFY(delivery.isFinished());
    sending.join();
}

void TestSendQueue::sendThatIsOverCanBeGivenUp()
{
    SendDelivery delivery;
    delivery.finish();
    delivery.giveUp();
    QVERIFY(delivery.isFinished());
}

void TestSendQueue::waitEndsAtItsDeadline()
{
    constexpr int limitMs = 20;
    SendDelivery delivery;
    QElapsedTimer time;
    time.start();
    QVERIFY(!delivery.waitUntil(QDeadlineTimer(limitMs, Qt::PreciseTimer)));
    // The wait is counted in whole milliseconds.
    QVERIFY(time.elapsed() >= limitMs - 1);
    QVERIFY(time.elapsed() < 50 * limitMs);
}

void TestSendQueue::waitEndsWithTheDelivery()
{
    constexpr int longMs = 20000;
    SendDelivery delivery;
    QElapsedTimer time;
    time.start();
    std::thread sending([&delivery] { delivery.finish(); });
    QVERIFY(delivery.waitUntil(QDeadlineTimer(longMs)));
    QVERIFY(time.elapsed() < longMs);
    sending.join();
}

QTEST_GUILESS_MAIN(TestSendQueue)
#include "tst_sendqueue.moc"
