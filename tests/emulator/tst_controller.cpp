#include "emulator/controller.h"
#include "emulator/wirelog.h"
#include "wiretools.h"

#include <QSignalSpy>
#include <QThread>
#include <QtTest>

#include <functional>

using namespace emulator;
using namespace wiretools;

Q_DECLARE_METATYPE(std::function<void(emulator::Controller&)>)

namespace {

/// A port that keeps what is sent.
class KeepingLink final : public Link
{
public:
    void write(const QByteArray& bytes) override { writes.append(bytes); }
    bool canSend() override { return !clogged; }
    void close() override { closed = true; }
    void halfClose() override { halfClosed = true; }

    QByteArrayList writes;
    bool clogged = false;
    bool closed = false;
    bool halfClosed = false;
};

} // namespace

class TestController final : public QObject
{
    Q_OBJECT

private slots:
    void controllerWorksOnAnyLink();
    void packetsAreLostWhileTheHostDoesNotRead();
    void stallIsCaughtUpOnlyInPart();
    void refusalIsTold();
    void lostLinkForgetsHalfACommand();
    void lateCommandIsForgottenWithTheLink();
    void ruleOfALateCommandIsForgottenWithTheLink();
    void lateCommandThatIsForgottenDoesNotCount_data();
    void lateCommandThatIsForgottenDoesNotCount();
    void ruleWhoseCommandIsForgottenHasNotActed();
    void lateCommandOutlivesNewFaults();
    void lateCommandIsRecordedWhenItComes();
    void longStreamDoesNotFillTheLog();
};

void TestController::controllerWorksOnAnyLink()
{
    KeepingLink link;
    Controller controller({}, link, nullptr);

    controller.receive("GSF;GI");
    controller.receive("D;");

    QCOMPARE(link.writes.size(), 2);
    QCOMPARE(link.writes[0], hex("00 3b 01 3b"));
    QCOMPARE(link.writes[1].size(), 50);
}

void TestController::packetsAreLostWhileTheHostDoesNotRead()
{
    ControllerOptions options;
    options.script = countingScript(10000);
    KeepingLink link;
    Controller controller(options, link, nullptr);
    controller.receive(startAt(1000));
    QTRY_VERIFY(link.writes.size() >= 5);

    link.clogged = true;
    const int written = link.writes.size();
    QTRY_VERIFY(controller.packetsLost() >= 5);
    QCOMPARE(link.writes.size(), written);

    link.clogged = false;
    QTRY_VERIFY(link.writes.size() > written);
    // The lost ones do not come again.
    QCOMPARE(wordAt(link.writes[written], 4),
             written + static_cast<int>(controller.packetsLost()) + 1);
}

void TestController::stallIsCaughtUpOnlyInPart()
{
    KeepingLink link;
    ControllerOptions options;
    options.script = countingScript(10000);
    Controller controller(options, link, nullptr);
    QElapsedTimer sinceStart;
    sinceStart.start();
    controller.receive(startAt(1000));
    QTRY_VERIFY(link.writes.size() >= 5);

    const int written = link.writes.size();
    constexpr unsigned long stallMs = 1500;
    QThread::msleep(stallMs);
    QCoreApplication::processEvents();

    // Of the packets that the stall owes, half a second's come late and the others not at all.
    const int late = link.writes.size() - written;
    QVERIFY2(late >= 501 && late < 1200, qPrintable(QString::number(late)));
    QCOMPARE(wordAt(link.writes.last(), 4), link.writes.size());
    // Nothing is forgotten: what was due, at one packet per millisecond, was sent or counted.
    QCOMPARE(controller.packetsSent(), qint64(link.writes.size()));
    const qint64 accounted = controller.packetsSent() + controller.packetsLost();
    QVERIFY2(accounted >= written + qint64(stallMs), qPrintable(QString::number(accounted)));
    QVERIFY2(accounted <= sinceStart.elapsed() + 2, qPrintable(QString::number(accounted)));
}

void TestController::refusalIsTold()
{
    KeepingLink link;
    Controller controller({}, link, nullptr);
    QSignalSpy refusals(&controller, &Controller::refused);

    controller.receive("GSF;" + QByteArray("SEA") + hex("09 3b") + "QQQ;");

    QCOMPARE(refusals.size(), 2);
    QCOMPARE(refusals[0][0].toByteArray(), QByteArray("SEA"));
    QCOMPARE(refusals[1][0].toByteArray(), QByteArray("QQQ"));
}

void TestController::lostLinkForgetsHalfACommand()
{
    KeepingLink link;
    Controller controller({}, link, nullptr);

    controller.receive("SEA");
    controller.linkClosed();
    controller.linkOpened();
    controller.receive("GSF;");

    QCOMPARE(link.writes, QByteArrayList({hex("00 3b 01 3b")}));
}

void TestController::lateCommandIsForgottenWithTheLink()
{
    KeepingLink link;
    ControllerOptions options;
    options.faults.lateMs = {{"GAS", 20}};
    Controller controller(options, link, nullptr);

    controller.receive("GAS;");
    controller.linkClosed();
    controller.receive("GSF;");
    QTest::qWait(60);

    QCOMPARE(link.writes, QByteArrayList({hex("00 3b 01 3b")}));
}

void TestController::ruleOfALateCommandIsForgottenWithTheLink()
{
    KeepingLink link;
    ControllerOptions options;
    options.faults.rules = {on("GAS").once().late(20).reply("late")};
    Controller controller(options, link, nullptr);

    controller.receive("GAS;");
    controller.linkClosed();
    controller.linkOpened();
    controller.receive("GSF;");

    QCOMPARE(link.writes, QByteArrayList({hex("00 3b 01 3b")}));
}

void TestController::lateCommandThatIsForgottenDoesNotCount_data()
{
    QTest::addColumn<std::function<void(Controller&)>>("forget");

    using Forget = std::function<void(Controller&)>;
    QTest::newRow("link closed") << Forget([](Controller& c) { c.linkClosed(); });
    QTest::newRow("restart") << Forget([](Controller& c) { c.restart(); });
}

void TestController::lateCommandThatIsForgottenDoesNotCount()
{
    QFETCH(std::function<void(Controller&)>, forget);
    constexpr int lateMs = 20;
    KeepingLink link;
    ControllerOptions options;
    options.faults.rules = {on("GSF").once().late(lateMs)};
    options.faults.refuse = {"GAS"};
    Controller controller(options, link, nullptr);
    controller.receive("GAS;GSF;");
    QCOMPARE(controller.unplayedRules(), QStringList());

    forget(controller);
    QCOMPARE(controller.unplayedRules(), QStringList("late GSF:times=1=20"));
    controller.linkOpened();
    controller.receive("GSF;");

    // This one is late in its place.
    QCOMPARE(link.writes, QByteArrayList({refused()}));
    QTRY_COMPARE(link.writes, QByteArrayList({refused(), hex("00 3b 01 3b")}));
}

void TestController::ruleWhoseCommandIsForgottenHasNotActed()
{
    constexpr int lateMs = 20;
    KeepingLink link;
    ControllerOptions options;
    options.faults.rules = {on("GSF").late(lateMs)};
    Controller controller(options, link, nullptr);
    QSignalSpy unplayed(&controller, &Controller::ruleUnplayed);
    controller.receive("GSF;");

    controller.setIdentity({});

    QCOMPARE(unplayed.size(), 1);
    QCOMPARE(unplayed[0][0].toString(), QString("late GSF=20"));
    QTest::qWait(3 * lateMs);
    QCOMPARE(link.writes, QByteArrayList());
    controller.receive("GSF;");
    QCOMPARE(link.writes, QByteArrayList({hex("00 3b 01 3b")}));
}

void TestController::lateCommandOutlivesNewFaults()
{
    KeepingLink link;
    ControllerOptions options;
    options.faults.rules = {on("GSF").late(20).reply("late")};
    Controller controller(options, link, nullptr);
    QSignalSpy unplayed(&controller, &Controller::ruleUnplayed);
    controller.receive("GSF;GSF;");

    Faults faults;
    faults.rules = {on("GSF").once().reply("new")};
    controller.setFaults(faults);

    QTRY_COMPARE(link.writes, QByteArrayList({"late", "new"}));
    QCOMPARE(unplayed.size(), 0);
}

void TestController::lateCommandIsRecordedWhenItComes()
{
    constexpr int lateMs = 40;
    constexpr qint64 nsPerMs = 1000000;
    KeepingLink link;
    WireLog log;
    ControllerOptions options;
    options.faults.rules = {on("GSF").late(lateMs)};
    Controller controller(options, link, &log);

    controller.receive("GSF;");
    QCOMPARE(log.commands(), QByteArrayList({"GSF;"}));
    QCOMPARE(log.events().size(), 1);

    QTRY_COMPARE(log.events().size(), 2);
    QCOMPARE(log.commands().size(), 1);
    const qint64 waited = log.events()[1].timeNs - log.events()[0].timeNs;
    // Timers may be early by a part of their interval, never by a tenth of it.
    QVERIFY(waited >= lateMs * nsPerMs * 9 / 10);
}

void TestController::longStreamDoesNotFillTheLog()
{
    WireLog log;
    for (int i = 0; i < 2 * WireLog::mostPackets; ++i)
        log.add(WireEvent::ToHost, "packet", true);
    log.add(WireEvent::ToHost, "reply", false);

    QCOMPARE(log.events().size(), WireLog::mostPackets + 1);
    QCOMPARE(log.events().last().bytes, QByteArray("reply"));
}

QTEST_GUILESS_MAIN(TestController)
#include "tst_controller.moc"
