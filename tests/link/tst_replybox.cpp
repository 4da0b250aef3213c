#include "link/replybox.h"

#include <QtTest>

#include <atomic>
#include <functional>
#include <thread>

namespace {

using Ending = std::function<void(ReplyBox&)>;

/// So long that a wait for it can not be taken for one that was ended.
constexpr int longWaitMs = 20000;

} // namespace

Q_DECLARE_METATYPE(Ending)

class TestReplyBox : public QObject
{
    Q_OBJECT

private slots:
    void newBoxAwaitsAndHasNothing();
    void replyIsTakenOnce();
    void emptyReplyIsAReply();
    void replyIsAppended();
    void laterReplyReplacesOneThatWasNotTaken();
    void expectingDropsAnEarlierReply();
    void givenUpReplyIsNotAwaited();
    void replyThatCameBeforeItWasGivenUpStays();
    void clearedReplyIsStillToBeTaken();
    void resetBoxIsANewOne();
    void waiterIsWoken_data();
    void waiterIsWoken();
    void waiterIsWokenWhenWaitingBecamePointless();
    void nobodyWaitsInABoxThatAwaitsNothing();
    void waitEndsWithItsDeadline();
};

void TestReplyBox::newBoxAwaitsAndHasNothing()
{
    ReplyBox box;
    QByteArray out;
    QVERIFY(!box.isAwaited());
    QVERIFY(!box.take(out));
}

void TestReplyBox::replyIsTakenOnce()
{
    ReplyBox box;
    box.expect();
    QVERIFY(box.isAwaited());
    box.put("ab");
    QVERIFY(!box.isAwaited());
    QByteArray out;
    QVERIFY(box.take(out));
    QCOMPARE(out, QByteArray("ab"));
    QVERIFY(!box.take(out));
}

void TestReplyBox::emptyReplyIsAReply()
{
    ReplyBox box;
    box.expect();
    box.put(QByteArray());
    QByteArray out;
    QVERIFY(box.take(out));
    QVERIFY(out.isEmpty());
}

void TestReplyBox::replyIsAppended()
{
    ReplyBox box;
    box.put("b");
    QByteArray out("a");
    QVERIFY(box.take(out));
    QCOMPARE(out, QByteArray("ab"));
}

void TestReplyBox::laterReplyReplacesOneThatWasNotTaken()
{
    ReplyBox box;
    box.put("early");
    box.put("late");
    QByteArray out;
    QVERIFY(box.take(out));
    QCOMPARE(out, QByteArray("late"));
}

void TestReplyBox::expectingDropsAnEarlierReply()
{
    ReplyBox box;
    box.put("late");
    box.expect();
    QByteArray out;
    QVERIFY(!box.take(out));
    QVERIFY(box.isAwaited());
}

void TestReplyBox::givenUpReplyIsNotAwaited()
{
    ReplyBox box;
    box.expect();
    box.giveUp();
    QVERIFY(!box.isAwaited());
    QByteArray out;
    QVERIFY(!box.take(out));
}

void TestReplyBox::replyThatCameBeforeItWasGivenUpStays()
{
    ReplyBox box;
    box.expect();
    box.put("ab");
    box.giveUp();
    QByteArray out;
    QVERIFY(box.take(out));
    QCOMPARE(out, QByteArray("ab"));
}

void TestReplyBox::clearedReplyIsStillToBeTaken()
{
    ReplyBox box;
    box.put("ab");
    box.clearBytes();
    QByteArray out;
    QVERIFY(box.take(out));
    QVERIFY(out.isEmpty());
}

void TestReplyBox::resetBoxIsANewOne()
{
    ReplyBox box;
    box.expect();
    box.reset();
    QVERIFY(!box.isAwaited());
    box.put("ab");
    box.reset();
    QByteArray out;
    QVERIFY(!box.take(out));
}

void TestReplyBox::waiterIsWoken_data()
{
    QTest::addColumn<Ending>("end");
    const auto row = [](const char* name, const Ending& end) { QTest::newRow(name) << end; };
    row("reply", [](ReplyBox& box) { box.put("ab"); });
    row("empty reply", [](ReplyBox& box) { box.put(QByteArray()); });
    row("given up", [](ReplyBox& box) { box.giveUp(); });
    row("reset", [](ReplyBox& box) { box.reset(); });
}

void TestReplyBox::waiterIsWoken()
{
    QFETCH(Ending, end);
    ReplyBox box;
    box.expect();
    const QDeadlineTimer deadline(longWaitMs);
    std::thread other([&] { end(box); });
    box.waitWhileAwaited(deadline, [] { return false; });
    other.join();
    QVERIFY(!deadline.hasExpired());
    QVERIFY(!box.isAwaited());
}

void TestReplyBox::waiterIsWokenWhenWaitingBecamePointless()
{
    ReplyBox box;
    box.expect();
    const QDeadlineTimer deadline(longWaitMs);
    std::atomic<bool> isLost{false};
    std::thread other([&] {
        isLost = true;
        box.wakeWaiter();
    });
    box.waitWhileAwaited(deadline, [&] { return isLost.load(); });
    other.join();
    QVERIFY(!deadline.hasExpired());
    QVERIFY(box.isAwaited());
}

void TestReplyBox::nobodyWaitsInABoxThatAwaitsNothing()
{
    ReplyBox box;
    const QDeadlineTimer deadline(longWaitMs);
    box.waitWhileAwaited(deadline, [] { return false; });
    QVERIFY(!deadline.hasExpired());
}

void TestReplyBox::waitEndsWithItsDeadline()
{
    ReplyBox box;
    box.expect();
    const QDeadlineTimer deadline(1);
    box.waitWhileAwaited(deadline, [] { return false; });
    QVERIFY(deadline.hasExpired());
    QVERIFY(box.isAwaited());
}

QTEST_GUILESS_MAIN(TestReplyBox)
#include "tst_replybox.moc"
