#include "busythread.h"
#include "link/packet.h"
#include "support/emulatedlink.h"

#include <QtTest>

#include <optional>

namespace {

using emulator::ControllerOptions;

/// So long that a wait for it can not be taken for "at once".
constexpr int longTimeoutMs = 20000;
constexpr int statusReplyBytes = 4;
constexpr int pollLimitMs = 2 * EmulatedLink::shortTimeoutMs;

ControllerOptions silentController()
{
    ControllerOptions options;
    options.faults.silent = {"GSF"};
    return options;
}

ControllerOptions lateController(int lateMs)
{
    ControllerOptions options;
    options.faults.lateMs = {{"GSF", lateMs}};
    return options;
}

bool takeStatus(EmulatedLink& link)
{
    QByteArray reply;
    return link.client.takePolledStatus(reply) && reply.size() == statusReplyBytes;
}

bool awaitStatus(EmulatedLink& link)
{
    return QTest::qWaitFor([&link] { return takeStatus(link); });
}

/// Asks for as long as it takes until another poll is sent.
bool pollAgain(EmulatedLink& link)
{
    const int before = link.controller.commands().size();
    return QTest::qWaitFor([&] {
        QByteArray reply;
        link.client.takePolledStatus(reply);
        link.client.pollStatus();
        return link.controller.commands().size() > before;
    });
}

/// What the next poll says of stage 1; nothing without a reply.
std::optional<bool> polledStage1(EmulatedLink& link)
{
    link.client.pollStatus();
    QByteArray reply;
    if (!QTest::qWaitFor([&] { return link.client.takePolledStatus(reply) && !reply.isEmpty(); }))
        return std::nullopt;
    return statusflag::isStabilised(uchar(reply.at(command::payloadOffset)), Stage::One);
}

} // namespace

class TestStatusPoll : public QObject
{
    Q_OBJECT

private slots:
    void replyOfAPollIsTakenWhenItIsThere();
    void oneStatusIsAskedForPerTakenPoll();
    void silentControllerHoldsNobodyUp();
    void unansweredPollIsGivenUpAfterTwiceTheTimeout();
    void shortReplyOfAPollIsTakenEmpty();
    void commandAfterAPollGetsItsOwnReply();
    void commandWaitsForTheRestOfASilentPollOnly();
    void fetchReplyLeavesThePollAlone();
    void replyOfACommandIsNotTakenForAStatus();
    void pollWaitsForTheReplyOfACommand();
    void streamingConnectionIsNotPolled();
    void unconnectedConnectionIsNotPolled();
    void lateReplyOfAnAbandonedPollIsNobodys();
    void twoRepliesAtOnceDoNotShiftThoseOfThePolls();
    void replyOfARepeatedCommandIsNoStatus();
    void disconnectForgetsThePoll();
    void pollOfALostLinkIsSettledAtOnce();
    void pollOfABusyThreadIsGivenUpAndNeverSent();
};

void TestStatusPoll::replyOfAPollIsTakenWhenItIsThere()
{
    EmulatedLink link;
    QVERIFY(link.connect());
    QByteArray reply("left over");
    QVERIFY(!link.client.takePolledStatus(reply));
    QVERIFY(reply.isEmpty());

    link.client.pollStatus();
    QVERIFY(QTest::qWaitFor([&] { return link.client.takePolledStatus(reply); }));
    QCOMPARE(reply.size(), statusReplyBytes);
    QVERIFY(!link.client.takePolledStatus(reply));
    QCOMPARE(link.controller.commands(), QByteArrayList{"GSF;"});
}

void TestStatusPoll::oneStatusIsAskedForPerTakenPoll()
{
    constexpr int polls = 5;
    EmulatedLink link;
    QVERIFY(link.connect());
    for (int poll = 0; poll < polls; ++poll) {
        link.client.pollStatus();
        link.client.pollStatus();
        QTRY_COMPARE(link.controller.commands().size(), poll + 1);
        // It is not settled before its reply was taken, either.
        link.client.pollStatus();
        QVERIFY(awaitStatus(link));
    }
    QCOMPARE(link.exchange(&Connection::getControllerId), link.controller.idReply());
    QCOMPARE(link.controller.commands().count("GSF;"), polls);
}

void TestStatusPoll::silentControllerHoldsNobodyUp()
{
    EmulatedLink link(silentController(), longTimeoutMs);
    QVERIFY(link.connect());
    QElapsedTimer time;
    time.start();
    for (int tick = 0; tick < 100; ++tick) {
        QVERIFY(!takeStatus(link));
        link.client.pollStatus();
    }
    QVERIFY(time.elapsed() < longTimeoutMs);
    QTRY_COMPARE(link.controller.commands(), QByteArrayList{"GSF;"});
}

void TestStatusPoll::unansweredPollIsGivenUpAfterTwiceTheTimeout()
{
    EmulatedLink link(silentController());
    QVERIFY(link.connect());
    QVERIFY(pollAgain(link));
    QElapsedTimer time;
    time.start();
    QVERIFY(pollAgain(link));
    // The first poll was on its way for some time when the clock was started.
    constexpr int wayMs = EmulatedLink::shortTimeoutMs / 2;
    QVERIFY(time.elapsed() >= pollLimitMs - wayMs);
    QVERIFY(time.elapsed() < 2 * pollLimitMs);
}

void TestStatusPoll::shortReplyOfAPollIsTakenEmpty()
{
    ControllerOptions options;
    options.faults.shortBytes = {{"GSF", 3}};
    EmulatedLink link(options);
    QVERIFY(link.connect());
    link.client.pollStatus();
    QByteArray reply;
    QVERIFY(QTest::qWaitFor([&] { return link.client.takePolledStatus(reply); }));
    QVERIFY(reply.isEmpty());
}

void TestStatusPoll::commandAfterAPollGetsItsOwnReply()
{
    constexpr int lateMs = 50;
    EmulatedLink link(lateController(lateMs), longTimeoutMs);
    QVERIFY(link.connect());
    link.client.pollStatus();
    QCOMPARE(link.exchange(&Connection::getControllerId), link.controller.idReply());
    QVERIFY(!takeStatus(link));
    QCOMPARE(link.controller.commands(), QByteArrayList({"GSF;", "GID;"}));
}

void TestStatusPoll::commandWaitsForTheRestOfASilentPollOnly()
{
    EmulatedLink link(silentController());
    QVERIFY(link.connect());
    QElapsedTimer time;
    time.start();
    link.client.pollStatus();
    QCOMPARE(link.exchange(&Connection::getControllerId), link.controller.idReply());
    QVERIFY(time.elapsed() >= pollLimitMs);
    QVERIFY(time.elapsed() < 2 * pollLimitMs);
}

void TestStatusPoll::fetchReplyLeavesThePollAlone()
{
    EmulatedLink link({}, longTimeoutMs);
    QVERIFY(link.connect());
    link.client.pollStatus();
    QTRY_COMPARE(link.controller.commands().size(), 1);
    QByteArray reply;
    QVERIFY(!link.client.fetchReply(reply));
    QVERIFY(awaitStatus(link));
}

void TestStatusPoll::replyOfACommandIsNotTakenForAStatus()
{
    EmulatedLink link;
    QVERIFY(link.connect());
    link.client.getControllerId();
    QByteArray reply;
    QVERIFY(!link.client.takePolledStatus(reply));
    QVERIFY(link.client.fetchReply(reply));
    QCOMPARE(reply, link.controller.idReply());
}

void TestStatusPoll::pollWaitsForTheReplyOfACommand()
{
    ControllerOptions options;
    options.faults.silent = {"SHS"};
    EmulatedLink link(options);
    QVERIFY(link.connect());
    link.client.sendShs();
    link.client.pollStatus();
    QVERIFY(!takeStatus(link));
    QTRY_COMPARE(link.controller.commands(), QByteArrayList{"SHS;"});

    // Nobody fetches that reply, and nobody is kept from polling by it for longer than its time.
    QVERIFY(pollAgain(link));
    QVERIFY(awaitStatus(link));
}

void TestStatusPoll::streamingConnectionIsNotPolled()
{
    EmulatedLink link;
    QVERIFY(link.connectAndIdentify());
    QVERIFY(link.startStream());
    link.controller.clearWire();
    link.client.pollStatus();
    QVERIFY(!takeStatus(link));
    link.client.stopStream();
    QCOMPARE(link.controller.commands(), QByteArrayList{"CLS;"});
    QVERIFY(!takeStatus(link));
}

void TestStatusPoll::unconnectedConnectionIsNotPolled()
{
    EmulatedLink link({}, longTimeoutMs);
    QElapsedTimer time;
    time.start();
    link.client.pollStatus();
    QVERIFY(!takeStatus(link));
    QCOMPARE(link.exchange(&Connection::getStatusFlags), QByteArray());
    QVERIFY(time.elapsed() < longTimeoutMs);
}

void TestStatusPoll::lateReplyOfAnAbandonedPollIsNobodys()
{
    EmulatedLink link;
    QVERIFY(link.connect());
    link.controller.pause(true);
    link.client.pollStatus();
    QTest::qWait(pollLimitMs);
    QVERIFY(!takeStatus(link));

    link.controller.pause(false);
    QTRY_COMPARE(link.controller.commands().size(), 1);
    QTest::qWait(EmulatedLink::shortTimeoutMs);
    QVERIFY(!takeStatus(link));
    link.client.pollStatus();
    QCOMPARE(link.exchange(&Connection::getControllerId), link.controller.idReply());
    link.client.pollStatus();
    QVERIFY(awaitStatus(link));
    QCOMPARE(link.controller.commands(), QByteArrayList({"GSF;", "GSF;", "GID;", "GSF;"}));
}

void TestStatusPoll::twoRepliesAtOnceDoNotShiftThoseOfThePolls()
{
    EmulatedLink link(silentController());
    QVERIFY(link.connect());
    link.client.pollStatus();
    QTRY_COMPARE(link.controller.commands(), QByteArrayList{"GSF;"});
    const QByteArray stage1On("\0;\x08;", statusReplyBytes);
    link.controller.sendRaw(stage1On + stage1On);
    QVERIFY(awaitStatus(link));

    link.controller.setFaults({});
    QVERIFY(polledStage1(link) == false);
}

void TestStatusPoll::replyOfARepeatedCommandIsNoStatus()
{
    EmulatedLink link;
    QVERIFY(link.connect());
    link.controller.pause(true);
    const auto switchOn = [&link] {
        link.client.switchStabilisationOn(command::stageArgument(Stage::One));
        QByteArray reply;
        return link.client.fetchReply(reply);
    };
    QVERIFY(!switchOn());
    link.client.switchStabilisationOn(command::stageArgument(Stage::One));
    // Both are at the controller before it reads again, and it answers one behind the other.
    QTest::qWait(EmulatedLink::shortTimeoutMs / 2);
    link.controller.pause(false);
    QByteArray reply;
    QVERIFY(link.client.fetchReply(reply));
    // The second reply has come, too, and lies there.
    QTRY_COMPARE(repliesOf(link.controller), 2);
    QTest::qWait(EmulatedLink::shortTimeoutMs / 2);
    QCOMPARE(link.controller.commands().size(), 2);
    QVERIFY(polledStage1(link) == true);
}

void TestStatusPoll::disconnectForgetsThePoll()
{
    EmulatedLink link(silentController(), longTimeoutMs);
    QVERIFY(link.connect());
    link.client.pollStatus();
    QTRY_COMPARE(link.controller.commands(), QByteArrayList{"GSF;"});
    QCOMPARE(link.client.disconnectController(), 1);
    QVERIFY(!takeStatus(link));

    link.controller.setFaults({});
    QVERIFY(link.connect());
    link.client.pollStatus();
    QVERIFY(awaitStatus(link));
}

void TestStatusPoll::pollOfALostLinkIsSettledAtOnce()
{
    ControllerOptions options;
    options.faults.closeOn = {"GSF"};
    EmulatedLink link(options, longTimeoutMs);
    QVERIFY(link.connect());
    QElapsedTimer time;
    time.start();
    link.client.pollStatus();
    QTRY_VERIFY(!link.client.isRunning());
    QVERIFY(!takeStatus(link));
    QCOMPARE(link.exchange(&Connection::getControllerId), QByteArray());
    QVERIFY(time.elapsed() < longTimeoutMs);
}

void TestStatusPoll::pollOfABusyThreadIsGivenUpAndNeverSent()
{
    EmulatedLink link;
    BusyThread busy(link.client);
    QVERIFY(link.connect());
    QVERIFY(busy.hold());
    link.client.pollStatus();
    QTest::qWait(pollLimitMs);
    QVERIFY(!takeStatus(link));

    busy.release();
    QCOMPARE(link.exchange(&Connection::getControllerId), link.controller.idReply());
    QCOMPARE(link.controller.commands(), QByteArrayList{"GID;"});
}

QTEST_GUILESS_MAIN(TestStatusPoll)
#include "tst_statuspoll.moc"
