#include "link/replybox.h"

#include <QtTest>

class TestReplyBox : public QObject
{
    Q_OBJECT

private slots:
    void newBoxAwaitsAndHasNothing();
    void replyIsTakenOnce();
    void emptyReplyIsAReply();
    void replyIsAppended();
    void expectingDropsAnEarlierReply();
    void givenUpReplyIsNotAwaited();
    void replyThatCameBeforeItWasGivenUpStays();
    void clearedReplyIsStillToBeTaken();
    void resetBoxIsANewOne();
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

QTEST_GUILESS_MAIN(TestReplyBox)
#include "tst_replybox.moc"
