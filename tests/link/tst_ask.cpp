// One command and its reply, for those who look at the bytes alone.

#include "link/ask.h"
#include "support/emulatedlink.h"

#include <QtTest>

Q_DECLARE_METATYPE(emulator::Faults)

using emulator::Faults;

class TestAsk : public QObject
{
    Q_OBJECT

private slots:
    void aCommandIsSentAndItsReplyTaken();
    void aCommandTakesItsArgumentAlong();
    void theReplyToACommandThatWasSentBeforeIsTaken();
    void withoutACommandThereIsNoReply();
    void whatIsNoReplyIsEmpty_data();
    void whatIsNoReplyIsEmpty();
};

void TestAsk::aCommandIsSentAndItsReplyTaken()
{
    EmulatedLink link;
    QVERIFY(link.connect());
    QCOMPARE(ask(link.client, &Connection::getControllerId), link.controller.idReply());
}

void TestAsk::aCommandTakesItsArgumentAlong()
{
    EmulatedLink link;
    QVERIFY(link.connect());
    QCOMPARE(ask(link.client, &Connection::switchStabilisationOn, "\2;"), QByteArray("\0;", 2));
    QCOMPARE(link.controller.commands(), QByteArrayList{"SEA\2;"});
}

void TestAsk::theReplyToACommandThatWasSentBeforeIsTaken()
{
    EmulatedLink link;
    QVERIFY(link.connect());
    link.client.getControllerId();
    QCOMPARE(replyOf(link.client), link.controller.idReply());
}

void TestAsk::withoutACommandThereIsNoReply()
{
    EmulatedLink link;
    QVERIFY(link.connect());
    QCOMPARE(replyOf(link.client), QByteArray());
}

void TestAsk::whatIsNoReplyIsEmpty_data()
{
    QTest::addColumn<Faults>("faults");
    Faults silent;
    silent.silent = {"GSF"};
    QTest::newRow("silence") << silent;
    Faults cut;
    cut.shortBytes = {{"GSF", 3}};
    QTest::newRow("too short") << cut;
}

void TestAsk::whatIsNoReplyIsEmpty()
{
    QFETCH(Faults, faults);
    emulator::ControllerOptions options;
    options.faults = faults;
    EmulatedLink link(options);
    QVERIFY(link.connect());
    QCOMPARE(ask(link.client, &Connection::getStatusFlags), QByteArray());
    QCOMPARE(link.controller.commands(), QByteArrayList{"GSF;"});
}

QTEST_GUILESS_MAIN(TestAsk)
#include "tst_ask.moc"
