// Talks that never wait, over the wire of an emulated controller.

#include "link/talk.h"
#include "support/emulatedlink.h"

#include <QThread>
#include <QtTest>

#include <initializer_list>

using emulator::WireEvent;
using Unanswered = StopTalk::Unanswered;
Q_DECLARE_METATYPE(StopTalk::Unanswered)

namespace {

constexpr int briefTimeoutMs = 50;

emulator::ControllerOptions silentTo(const QByteArrayList& commands)
{
    emulator::ControllerOptions options;
    options.faults.silent = commands;
    return options;
}

} // namespace

class TestTalk final : public QObject
{
    Q_OBJECT

private slots:
    void stopsAreSentAsOftenAsAsked_data();
    void stopsAreSentAsOftenAsAsked();
    void stopFollowsTheReplyToTheOneBefore();
    void nobodyWaitsForAReply();
    void twoTalksAreUnderWayAtTheSameTime();
    void talkBeginsBehindAPoll();
    void talkThatIsOverSendsNothingMore();
    void turnGivesItsReplyAndCanBeTakenAgain();
    void whoeverFinishesATalkSleepsUntilThereAreNews();
};

void TestTalk::stopsAreSentAsOftenAsAsked_data()
{
    QTest::addColumn<int>("stops");
    QTest::addColumn<StopTalk::Unanswered>("unanswered");
    QTest::addColumn<bool>("isSilent");
    QTest::addColumn<int>("sent");
    QTest::newRow("one") << 1 << Unanswered::Left << false << 1;
    QTest::newRow("one, unanswered") << 1 << Unanswered::Left << true << 1;
    QTest::newRow("one or a repeat, answered") << 1 << Unanswered::Repeated << false << 1;
    QTest::newRow("one or a repeat, unanswered") << 1 << Unanswered::Repeated << true << 2;
    QTest::newRow("two, unanswered") << 2 << Unanswered::Left << true << 2;
    QTest::newRow("two or a repeat, answered") << 2 << Unanswered::Repeated << false << 2;
    QTest::newRow("two or a repeat, unanswered") << 2 << Unanswered::Repeated << true << 3;
}

void TestTalk::stopsAreSentAsOftenAsAsked()
{
    QFETCH(int, stops);
    QFETCH(StopTalk::Unanswered, unanswered);
    QFETCH(bool, isSilent);
    EmulatedLink link(isSilent ? silentTo({"CLS"}) : emulator::ControllerOptions(), briefTimeoutMs);
    QVERIFY(link.connect());
    StopTalk talk(link.client, stops, unanswered);
    finish(talk, link.client);
    QTEST(link.controller.count("CLS;"), "sent");
}

void TestTalk::stopFollowsTheReplyToTheOneBefore()
{
    EmulatedLink link({}, briefTimeoutMs);
    QVERIFY(link.connect());
    StopTalk talk(link.client, 2, Unanswered::Left);
    finish(talk, link.client);
    QList<WireEvent::Direction> directions;
    const QVector<WireEvent> wire = link.controller.wire();
    for (const WireEvent& event : wire)
        directions.append(event.direction);
    QCOMPARE(directions, QList<WireEvent::Direction>({WireEvent::FromHost, WireEvent::ToHost,
                                                      WireEvent::FromHost, WireEvent::ToHost}));
}

void TestTalk::nobodyWaitsForAReply()
{
    EmulatedLink link(silentTo({"CLS"}));
    QVERIFY(link.connect());
    StopTalk talk(link.client, 1, Unanswered::Left);
    QVERIFY(!talk.advance());
    QVERIFY(!link.client.isSettled());
    QTRY_COMPARE(link.controller.commands(), QByteArrayList{"CLS;"});
}

void TestTalk::twoTalksAreUnderWayAtTheSameTime()
{
    EmulatedLink first({}, Connection::defaultTimeoutMs);
    EmulatedLink second({}, Connection::defaultTimeoutMs);
    QVERIFY(first.connect() && second.connect());
    StopTalk firstTalk(first.client, 1, Unanswered::Left);
    StopTalk secondTalk(second.client, 1, Unanswered::Left);
    QVERIFY(!firstTalk.advance());
    QVERIFY(!secondTalk.advance());
    QTRY_COMPARE(second.controller.commands(), QByteArrayList{"CLS;"});
    QCOMPARE(first.controller.commands(), QByteArrayList{"CLS;"});
    QVERIFY(!firstTalk.advance());
    finish(firstTalk, first.client);
    finish(secondTalk, second.client);
}

void TestTalk::talkBeginsBehindAPoll()
{
    EmulatedLink link(silentTo({"GSF"}));
    QVERIFY(link.connect());
    link.client.pollStatus();
    QTRY_COMPARE(link.controller.commands(), QByteArrayList{"GSF;"});
    StopTalk talk(link.client, 1, Unanswered::Left);
    QVERIFY(!talk.advance());
    QCOMPARE(link.controller.commands(), QByteArrayList{"GSF;"});
    finish(talk, link.client);
    QCOMPARE(link.controller.commands(), QByteArrayList({"GSF;", "CLS;"}));
}

void TestTalk::talkThatIsOverSendsNothingMore()
{
    EmulatedLink link({}, briefTimeoutMs);
    QVERIFY(link.connect());
    StopTalk talk(link.client, 1, Unanswered::Repeated);
    finish(talk, link.client);
    QVERIFY(talk.advance());
    QVERIFY(link.client.isSettled());
    QCOMPARE(link.controller.count("CLS;"), 1);
}

void TestTalk::turnGivesItsReplyAndCanBeTakenAgain()
{
    EmulatedLink link;
    QVERIFY(link.connect());
    TalkTurn turn;
    for (int times = 1; times <= 2; ++times) {
        QByteArray reply;
        std::optional<bool> answered;
        while (!answered) {
            answered = turn.advance(link.client, command::identityRequest(), reply);
            QThread::msleep(talkPaceMs);
        }
        QVERIFY(*answered);
        QCOMPARE(reply, link.controller.idReply());
        QCOMPARE(link.controller.count("GID;"), times);
    }
}

void TestTalk::whoeverFinishesATalkSleepsUntilThereAreNews()
{
    /// A command without a reply, and how often it was advanced.
    struct CountedTalk
    {
        bool advance()
        {
            ++advances;
            QByteArray reply;
            return turn.advance(connection, command::statusRequest(), reply).has_value();
        }

        Connection& connection;
        TalkTurn turn;
        int advances = 0;
    };
    constexpr int fewAdvances = 5;
    EmulatedLink link(silentTo({"GSF"}));
    QVERIFY(link.connect());
    CountedTalk talk{link.client, {}};
    finish(talk, link.client);
    QCOMPARE(link.controller.count("GSF;"), 1);
    QVERIFY(talk.advances <= fewAdvances);
}

QTEST_GUILESS_MAIN(TestTalk)
#include "tst_talk.moc"
