#include "link/linkup.h"
#include "support/emulatedlink.h"

#include <QtTest>

Q_DECLARE_METATYPE(LinkWait::Manner)
Q_DECLARE_METATYPE(LinkOutcome)
Q_DECLARE_METATYPE(emulator::ControllerOptions)

namespace {

/// So long that a wait for it can not be taken for one that ended with the link.
constexpr int longLimitMs = 20000;

bool everyId(const QString&)
{
    return true;
}

/// Leaves an event in the queue and tells whether it was taken.
class WaitingEvent final
{
public:
    WaitingEvent()
    {
        QMetaObject::invokeMethod(
            &receiver, [this] { taken = true; }, Qt::QueuedConnection);
    }
    bool isTaken() const { return taken; }

private:
    bool taken = false;
    QObject receiver;
};

} // namespace

class TestLinkUp : public QObject
{
    Q_OBJECT

private slots:
    void waitEndsWhenTheLinkIsUp_data();
    void waitEndsWhenTheLinkIsUp();
    void waitInOneGoLastsForItsLimit();
    void waitEndsWithTheThread();
    void waitEndsAtItsLimit_data();
    void waitEndsAtItsLimit();
    void rateIsChangedOnlyIfTheControllerAccepts_data();
    void rateIsChangedOnlyIfTheControllerAccepts();
    void controllerIsIdentifiedAndLabelled();
    void expectedControllerIsAccepted();
    void anotherControllerThanTheExpectedIsNotLabelled();
    void unusableIdentificationIsNotLabelled();
    void foreignDeviceIsNotLabelled();
    void linkThatDoesNotComeUpIsToldSo();
    void linkThatIsLostByTheLabelIsNotUp();
    void arrivalHasTheOutcomeOfAWait_data();
    void arrivalHasTheOutcomeOfAWait();
    void arrivalEndsWithTheThread();
    void arrivalEndsAtItsLimit();
    void twoArrivalsAreUnderWayAtTheSameTime();
};

void TestLinkUp::waitEndsWhenTheLinkIsUp_data()
{
    QTest::addColumn<LinkWait::Manner>("manner");
    QTest::newRow("taking events") << LinkWait::Manner::TakingEvents;
    QTest::newRow("without events") << LinkWait::Manner::WithoutEvents;
}

void TestLinkUp::waitEndsWhenTheLinkIsUp()
{
    QFETCH(LinkWait::Manner, manner);
    EmulatedLink link;
    QElapsedTimer time;
    time.start();
    QVERIFY(bringUp(link.client, {longLimitMs, manner}));
    QVERIFY(link.client.isConnected());
    QVERIFY(time.elapsed() < longLimitMs);
}

void TestLinkUp::waitInOneGoLastsForItsLimit()
{
    constexpr int limitMs = 200;
    EmulatedLink link;
    const WaitingEvent event;
    QElapsedTimer time;
    time.start();
    QVERIFY(bringUp(link.client, {limitMs, LinkWait::Manner::InOneGo}));
    QVERIFY(time.elapsed() >= limitMs);
    QVERIFY(time.elapsed() < 5 * limitMs);
    QVERIFY(event.isTaken());
}

void TestLinkUp::waitEndsWithTheThread()
{
    EmulatedLink link;
    link.controller.stopListening();
    QElapsedTimer time;
    time.start();
    QVERIFY(!bringUp(link.client, {longLimitMs, LinkWait::Manner::WithoutEvents}));
    QVERIFY(!link.client.isRunning());
    QVERIFY(time.elapsed() < longLimitMs);
}

void TestLinkUp::waitEndsAtItsLimit_data()
{
    QTest::addColumn<LinkWait::Manner>("manner");
    QTest::addColumn<bool>("takesEvents");
    QTest::newRow("taking events") << LinkWait::Manner::TakingEvents << true;
    QTest::newRow("without events") << LinkWait::Manner::WithoutEvents << false;
}

void TestLinkUp::waitEndsAtItsLimit()
{
    constexpr int limitMs = 50;
    QFETCH(LinkWait::Manner, manner);
    EmulatedLink link({}, longLimitMs);
    link.controller.stopListening();
    const WaitingEvent event;
    QElapsedTimer time;
    time.start();
    QVERIFY(!bringUp(link.client, {limitMs, manner}));
    QVERIFY(link.client.isRunning());
    QVERIFY(time.elapsed() >= limitMs);
    QVERIFY(time.elapsed() < 20 * limitMs);
    QTEST(event.isTaken(), "takesEvents");
}

void TestLinkUp::rateIsChangedOnlyIfTheControllerAccepts_data()
{
    QTest::addColumn<bool>("accepts");
    QTest::newRow("accepted") << true;
    QTest::newRow("refused") << false;
}

void TestLinkUp::rateIsChangedOnlyIfTheControllerAccepts()
{
    QFETCH(bool, accepts);
    emulator::ControllerOptions options;
    if (!accepts)
        options.faults.refuse = {"SBR"};
    EmulatedLink link(options);
    QCOMPARE(changeBaudRate(link.client, {longLimitMs}, 921600), accepts);
    QCOMPARE(link.controller.commands().last(), QByteArray("SBR\x09;"));
}

void TestLinkUp::controllerIsIdentifiedAndLabelled()
{
    EmulatedLink link;
    QString id;
    QCOMPARE(connectAndIdentify(link.client, {longLimitMs}, "left arm", id, everyId),
             LinkOutcome::Up);
    QCOMPARE(id, link.controller.id());
    QCOMPARE(link.client.label(), QStringLiteral("left arm"));
    QCOMPARE(link.controller.label().trimmed(), QByteArray("left arm"));
    QCOMPARE(link.client.firmwareVersion(), emulator::ControllerOptions().firmware);
}

void TestLinkUp::expectedControllerIsAccepted()
{
    EmulatedLink link;
    QString id = link.controller.id();
    QCOMPARE(connectAndIdentify(link.client, {longLimitMs}, "a", id, everyId), LinkOutcome::Up);
    QCOMPARE(id, link.controller.id());
}

void TestLinkUp::anotherControllerThanTheExpectedIsNotLabelled()
{
    EmulatedLink link;
    QString id("another");
    QCOMPARE(connectAndIdentify(link.client, {longLimitMs}, "a", id, everyId),
             LinkOutcome::NotIdentified);
    QCOMPARE(id, QStringLiteral("another"));
    QCOMPARE(link.controller.label().trimmed(), QByteArray());
}

void TestLinkUp::unusableIdentificationIsNotLabelled()
{
    EmulatedLink link;
    QString asked;
    const auto refuse = [&asked](const QString& id) {
        asked = id;
        return false;
    };
    QString id;
    QCOMPARE(connectAndIdentify(link.client, {longLimitMs}, "a", id, refuse),
             LinkOutcome::NotIdentified);
    QCOMPARE(asked, link.controller.id());
    QVERIFY(id.isEmpty());
    QCOMPARE(link.controller.label().trimmed(), QByteArray());
}

void TestLinkUp::foreignDeviceIsNotLabelled()
{
    emulator::ControllerOptions options;
    options.maker = "Abc";
    EmulatedLink link(options);
    QString id;
    QCOMPARE(connectAndIdentify(link.client, {longLimitMs}, "a", id, everyId),
             LinkOutcome::NotIdentified);
    QCOMPARE(link.controller.label().trimmed(), QByteArray());
}

void TestLinkUp::linkThatDoesNotComeUpIsToldSo()
{
    EmulatedLink link;
    link.controller.stopListening();
    QString id;
    QCOMPARE(connectAndIdentify(link.client, {longLimitMs}, "a", id, everyId), LinkOutcome::NoLink);
    QVERIFY(id.isEmpty());
}

void TestLinkUp::linkThatIsLostByTheLabelIsNotUp()
{
    emulator::ControllerOptions options;
    options.faults.closeOn = {"SLA"};
    EmulatedLink link(options);
    QString id;
    QCOMPARE(connectAndIdentify(link.client, {longLimitMs}, "a", id, everyId), LinkOutcome::NoLink);
}

void TestLinkUp::arrivalHasTheOutcomeOfAWait_data()
{
    QTest::addColumn<emulator::ControllerOptions>("options");
    QTest::addColumn<bool>("isThere");
    QTest::addColumn<QString>("otherId");
    QTest::addColumn<LinkOutcome>("outcome");
    QTest::addColumn<QByteArrayList>("commands");
    const QByteArrayList asked{"CLS;", "CLS;", "GID;"};
    const QByteArrayList labelled =
        asked + QByteArrayList{"SLA" + QByteArray("a").leftJustified(25) + ';'};
    const emulator::ControllerOptions usual;
    emulator::ControllerOptions foreign;
    foreign.maker = "Abc";
    emulator::ControllerOptions leaving;
    leaving.faults.closeOn = {"SLA"};
    QTest::newRow("the expected") << usual << true << QString() << LinkOutcome::Up << labelled;
    QTest::newRow("another one") << usual << true << QString("another")
                                 << LinkOutcome::NotIdentified << asked;
    QTest::newRow("foreign") << foreign << true << QString() << LinkOutcome::NotIdentified << asked;
    QTest::newRow("lost by the label")
        << leaving << true << QString() << LinkOutcome::NoLink << labelled;
    QTest::newRow("missing") << usual << false << QString() << LinkOutcome::NoLink
                             << QByteArrayList();
}

void TestLinkUp::arrivalHasTheOutcomeOfAWait()
{
    QFETCH(emulator::ControllerOptions, options);
    QFETCH(bool, isThere);
    QFETCH(QString, otherId);
    EmulatedLink link(options);
    if (!isThere)
        link.controller.stopListening();
    const QString id = otherId.isEmpty() ? link.controller.id() : otherId;
    const Arrival arrival = beginArrival(link.client, longLimitMs, "a", id, everyId);
    std::optional<LinkOutcome> outcome;
    while (!outcome) {
        outcome = arrival();
        QThread::msleep(1);
    }
    QTEST(*outcome, "outcome");
    QTEST(link.controller.commands(), "commands");
}

void TestLinkUp::arrivalEndsWithTheThread()
{
    EmulatedLink link;
    link.controller.stopListening();
    const Arrival arrival =
        beginArrival(link.client, longLimitMs, "a", link.controller.id(), everyId);
    // Much earlier than at its limit.
    QTRY_COMPARE(arrival(), std::make_optional(LinkOutcome::NoLink));
    QVERIFY(!link.client.isRunning());
}

void TestLinkUp::arrivalEndsAtItsLimit()
{
    constexpr int briefLimitMs = 50;
    EmulatedLink link({}, longLimitMs);
    link.controller.stopListening();
    const Arrival arrival =
        beginArrival(link.client, briefLimitMs, "a", link.controller.id(), everyId);
    QTRY_COMPARE(arrival(), std::make_optional(LinkOutcome::NoLink));
    QVERIFY(link.client.isRunning());
}

void TestLinkUp::twoArrivalsAreUnderWayAtTheSameTime()
{
    EmulatedLink first({}, Connection::defaultTimeoutMs);
    EmulatedLink second({}, Connection::defaultTimeoutMs);
    const Arrival firstArrival =
        beginArrival(first.client, longLimitMs, "a", first.controller.id(), everyId);
    const Arrival secondArrival =
        beginArrival(second.client, longLimitMs, "b", second.controller.id(), everyId);
    QTRY_VERIFY(!firstArrival() && !secondArrival() && first.controller.count("CLS;") > 0
                && second.controller.count("CLS;") > 0);
    // One after the other, the first would be asked who it is before the second is spoken to.
    QCOMPARE(first.controller.count("GID;"), 0);
    QCOMPARE(second.controller.count("GID;"), 0);
}

QTEST_GUILESS_MAIN(TestLinkUp)
#include "tst_linkup.moc"
