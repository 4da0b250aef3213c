// When a command or a poll counts as settled. There is no thread: the test is the other side.

#include "link/exchange.h"
#include "link/sendqueue.h"

#include <QtTest>

namespace {

constexpr int shortTimeoutMs = 20;
/// So long that a wait for it can not be taken for "at once".
constexpr int longTimeoutMs = 20000;

/// The queue is closed, so that every delivery is over at once. What the connection's thread would
/// do to the condition is done by the test.
struct ExchangeBench
{
    explicit ExchangeBench(int timeoutMs = longTimeoutMs)
    {
        condition.timeoutMs = timeoutMs;
        condition.portOpen = true;
    }
    void poll()
    {
        exchange.poll(command::statusRequest());
        condition.replies.expect();
    }
    void send()
    {
        exchange.send(command::frame("SHS", {}, command::statusReplyLength));
        condition.replies.expect();
    }
    bool take()
    {
        taken.clear();
        return exchange.takePolled(taken);
    }
    bool fetch()
    {
        taken.clear();
        return exchange.fetchReply(taken);
    }

    LinkCondition condition;
    SendQueue queue;
    Exchange exchange{condition, queue};
    QByteArray taken;
};

} // namespace

class TestSettling : public QObject
{
    Q_OBJECT

private slots:
    void nothingIsSettledFromTheBeginning();
    void pollIsOpenUntilItsReplyIsThere();
    void pollThatWasDroppedIsSettled();
    void pollOfALostPortIsSettled();
    void pollIsSettledWhenItsTimeIsOver();
    void fetchedReplyIsNeverThatOfAPoll();
    void sendThrowsTheReplyOfAPollAway();
    void sendWaitsForAPollWithoutReply();
    void commandIsNotTriedWhileAPollIsOpen();
    void commandIsTriedBehindASettledPoll();
    void pollLeavesAnAwaitedReplyAlone();
    void pollReplacesWhatNobodyFetched();
    void stopThatIsGivenUpHasFailed();
    void lostPortEndsTheWait();
    void replyOfAForgottenPollIsNotTaken();
};

void TestSettling::nothingIsSettledFromTheBeginning()
{
    ExchangeBench bench;
    QVERIFY(!bench.take());
    QVERIFY(!bench.fetch());
}

void TestSettling::pollIsOpenUntilItsReplyIsThere()
{
    ExchangeBench bench;
    bench.poll();
    QVERIFY(!bench.take());
    bench.condition.replies.put("status");
    QVERIFY(bench.take());
    QCOMPARE(bench.taken, QByteArray("status"));
    QVERIFY(!bench.take());
}

void TestSettling::pollThatWasDroppedIsSettled()
{
    ExchangeBench bench;
    bench.exchange.poll(command::statusRequest());
    QVERIFY(!bench.take());
    // It is no poll any more, whose reply this could be.
    bench.condition.replies.put("of nobody");
    QVERIFY(!bench.take());
    QVERIFY(bench.fetch());
}

void TestSettling::pollOfALostPortIsSettled()
{
    ExchangeBench bench;
    bench.poll();
    bench.condition.portOpen = false;
    QVERIFY(!bench.take());
    QVERIFY(!bench.condition.replies.isAwaited());
}

void TestSettling::pollIsSettledWhenItsTimeIsOver()
{
    ExchangeBench bench(shortTimeoutMs);
    bench.poll();
    QVERIFY(!bench.take());
    QVERIFY(bench.condition.replies.isAwaited());
    QTest::qWait(2 * shortTimeoutMs + 1);
    QVERIFY(!bench.take());
    QVERIFY(!bench.condition.replies.isAwaited());
}

void TestSettling::fetchedReplyIsNeverThatOfAPoll()
{
    ExchangeBench bench;
    bench.poll();
    bench.condition.replies.put("status");
    QVERIFY(!bench.fetch());
    QVERIFY(bench.take());
}

void TestSettling::sendThrowsTheReplyOfAPollAway()
{
    ExchangeBench bench;
    bench.poll();
    bench.condition.replies.put("status");
    bench.send();
    QVERIFY(!bench.take());
    bench.condition.replies.put("own");
    QVERIFY(bench.fetch());
    QCOMPARE(bench.taken, QByteArray("own"));
}

void TestSettling::sendWaitsForAPollWithoutReply()
{
    ExchangeBench bench(shortTimeoutMs);
    QElapsedTimer time;
    time.start();
    bench.poll();
    bench.send();
    QVERIFY(time.elapsed() >= 2 * shortTimeoutMs);
    bench.condition.replies.put("own");
    QVERIFY(bench.fetch());
}

void TestSettling::commandIsNotTriedWhileAPollIsOpen()
{
    ExchangeBench bench;
    bench.poll();
    QVERIFY(!bench.exchange.trySend(command::stop()));
    bench.condition.replies.put("reply");
    QVERIFY(bench.take());
    QCOMPARE(bench.taken, QByteArray("reply"));
}

void TestSettling::commandIsTriedBehindASettledPoll()
{
    ExchangeBench bench;
    bench.poll();
    bench.condition.replies.put("reply");
    QVERIFY(bench.exchange.trySend(command::stop()));
    // The reply of the poll is thrown away.
    QVERIFY(!bench.fetch());
}

void TestSettling::pollLeavesAnAwaitedReplyAlone()
{
    ExchangeBench bench;
    bench.send();
    bench.exchange.poll(command::statusRequest());
    bench.condition.replies.put("own");
    QVERIFY(!bench.take());
    QVERIFY(bench.fetch());
    QCOMPARE(bench.taken, QByteArray("own"));
}

void TestSettling::pollReplacesWhatNobodyFetched()
{
    ExchangeBench bench;
    bench.send();
    bench.condition.replies.put("late");
    bench.exchange.poll(command::statusRequest());
    QVERIFY(!bench.take());
    QVERIFY(!bench.fetch());
}

void TestSettling::stopThatIsGivenUpHasFailed()
{
    ExchangeBench bench(shortTimeoutMs);
    bench.send();
    bench.condition.stream = StreamState::StopSent;
    QVERIFY(!bench.fetch());
    QCOMPARE(bench.condition.stream.load(), StreamState::StartAnsweredOrStopFailed);
}

void TestSettling::lostPortEndsTheWait()
{
    ExchangeBench bench;
    bench.send();
    bench.condition.portOpen = false;
    QElapsedTimer time;
    time.start();
    QVERIFY(!bench.fetch());
    QVERIFY(time.elapsed() < longTimeoutMs);
}

void TestSettling::replyOfAForgottenPollIsNotTaken()
{
    ExchangeBench bench;
    bench.poll();
    bench.condition.replies.put("status");
    bench.exchange.forget();
    QVERIFY(!bench.take());
    QVERIFY(!bench.fetch());
}

QTEST_GUILESS_MAIN(TestSettling)
#include "tst_settling.moc"
