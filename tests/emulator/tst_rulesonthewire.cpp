#include "emulator/emulatorhost.h"
#include "hostclient.h"
#include "serialclient.h"
#include "wiretools.h"

#include <QtTest>

using namespace emulator;
using namespace wiretools;

namespace {

enum class Port { Tcp, Pty };

constexpr int pFactorBytes = 5;
const QByteArray setPFactor1 = "SPF" + hex("01 05dc 3b");
const QByteArray setPFactor2 = "SPF" + hex("02 05dc 3b");
const QByteArray getPFactor1 = "GPF" + hex("01 3b");
const QByteArray getPFactor2 = "GPF" + hex("02 3b");
const QByteArray good1500 = hex("00 3b 05dc 3b");
const QByteArray statusAtRest = hex("00 3b 01 3b");
const QByteArray foreignStatus = hex("00 3b 48 3b");

/// A controller behind one kind of port, and a host that is connected to it.
class Wire final
{
public:
    explicit Wire(Port port, const ControllerOptions& options = {})
        : controller(port == Port::Tcp ? host.addTcp(options) : host.addPty(options))
    {
        if (port == Port::Tcp)
            tcp = std::make_unique<HostClient>(controller);
        else
            serial = std::make_unique<SerialClient>(controller.path());
    }

    void send(const QByteArray& bytes) { tcp ? tcp->send(bytes) : serial->send(bytes); }
    QByteArray exchange(const QByteArray& command, int replyLength)
    {
        return tcp ? tcp->exchange(command, replyLength) : serial->exchange(command, replyLength);
    }
    QByteArray status() { return exchange("GSF;", statusAtRest.size()); }

    EmulatorHost host;
    ControllerHandle controller;

private:
    std::unique_ptr<HostClient> tcp;
    std::unique_ptr<SerialClient> serial;
};

/// A row for each kind of port.
void addPorts()
{
    QTest::addColumn<Port>("port");
    QTest::newRow("tcp") << Port::Tcp;
    QTest::newRow("pty") << Port::Pty;
}

} // namespace

Q_DECLARE_METATYPE(Port)
Q_DECLARE_METATYPE(emulator::Rule)

class TestRulesOnTheWire final : public QObject
{
    Q_OBJECT

private slots:
    void refusedStageIsNamedAndHasNoEffect_data() { addPorts(); }
    void refusedStageIsNamedAndHasNoEffect();
    void ignoredStageIsNotAnswered_data() { addPorts(); }
    void ignoredStageIsNotAnswered();
    void lateStageIsAnsweredLaterAndCommandsBehindItWait_data() { addPorts(); }
    void lateStageIsAnsweredLaterAndCommandsBehindItWait();
    void replyIsCut_data() { addPorts(); }
    void replyIsCut();
    void replyIsExactlyTheseBytes_data() { addPorts(); }
    void replyIsExactlyTheseBytes();
    void linkClosesOnOneStage_data() { addPorts(); }
    void linkClosesOnOneStage();
    void sendingSideClosesOnOneStage_data() { addPorts(); }
    void sendingSideClosesOnOneStage();
    void commandsBehindTheClosingOneAreDropped_data();
    void commandsBehindTheClosingOneAreDropped();
    void aRuleActsAsOftenAsTold_data() { addPorts(); }
    void aRuleActsAsOftenAsTold();
    void rulesOfOnePrefixFollowEachOther_data() { addPorts(); }
    void rulesOfOnePrefixFollowEachOther();
    void unknownCommandIsMatchedToo_data() { addPorts(); }
    void unknownCommandIsMatchedToo();

    void unfinishedCommandIsMatchedWhenItIsGivenUp();
    void lateCommandIsCountedOnce();
    void lateRefusalIsBothLateAndARefusal();
    void whatWasDecidedForALateCommandStays();
    void lateCommandKeepsItsRuleThroughAPause();
    void lateCommandOfALostHostDoesNotCount();
    void startOfAStreamMayBeAnsweredByARule();
    void rulesOfTheOptionsStandBeforeTheLists();
    void newRulesLeaveTheListsAsTheyAre();
    void newFaultsReplaceAllRules();
    void addedRuleStandsBehindTheOthers();
    void anotherControllerHasItsOwnRules();
    void noiseLeavesRepliesOfRulesAlone();
    void unplayedRulesAreNamed();
    void unplayedRuleIsToldWhenRulesAreReplaced();
    void unplayedRuleIsToldWhenTheControllerEnds_data() { addPorts(); }
    void unplayedRuleIsToldWhenTheControllerEnds();
    void playedRulesAreNotTold();
};

void TestRulesOnTheWire::refusedStageIsNamedAndHasNoEffect()
{
    QFETCH(Port, port);
    Wire wire(port);
    const QByteArray before = wire.exchange(getPFactor1, pFactorBytes);
    wire.controller.setRules({on("SPF\1").refuse()});

    QCOMPARE(wire.exchange(setPFactor1, 2), refused());

    QCOMPARE(wire.exchange("GER;", 7), QByteArray(accepted() + "SPF" + hex("06 3b")));
    QCOMPARE(wire.exchange(setPFactor2, 2), accepted());
    QCOMPARE(wire.exchange(getPFactor1, pFactorBytes), before);
    QCOMPARE(wire.exchange(getPFactor2, pFactorBytes), good1500);
}

void TestRulesOnTheWire::ignoredStageIsNotAnswered()
{
    QFETCH(Port, port);
    Wire wire(port);
    wire.controller.setRules({on("SPF\1").ignore()});

    QCOMPARE(wire.exchange(setPFactor1 + setPFactor2 + getPFactor2, 2 + pFactorBytes),
             accepted() + good1500);
    QVERIFY(wire.exchange(getPFactor1, pFactorBytes) != good1500);
}

void TestRulesOnTheWire::lateStageIsAnsweredLaterAndCommandsBehindItWait()
{
    QFETCH(Port, port);
    constexpr int lateMs = 120;
    Wire wire(port);
    wire.controller.setRules({on("GPF\2").late(lateMs)});
    QCOMPARE(wire.exchange(setPFactor2, 2), accepted());
    QElapsedTimer timer;

    timer.start();
    QCOMPARE(wire.exchange(getPFactor2 + "GSF;", pFactorBytes + statusAtRest.size()),
             good1500 + statusAtRest);

    // Timers may be early by a part of their interval, never by a tenth of it.
    QVERIFY(timer.elapsed() >= lateMs * 9 / 10);
}

void TestRulesOnTheWire::replyIsCut()
{
    QFETCH(Port, port);
    Wire wire(port);
    QCOMPARE(wire.exchange(setPFactor1 + setPFactor2, 4), accepted() + accepted());
    wire.controller.setRules(
        {on("GPF\1").cutTo(3), on("GPF\2").cutTo(0), on("GAS").cutTo(2).reply("abcd")});

    // What is cut off would stand before the next reply.
    QCOMPARE(wire.exchange(getPFactor1 + getPFactor2 + "GAS;GSF;", 3 + 2 + statusAtRest.size()),
             good1500.left(3) + "ab" + statusAtRest);
}

void TestRulesOnTheWire::replyIsExactlyTheseBytes()
{
    QFETCH(Port, port);
    Wire wire(port);
    const QByteArray odd = "odd; " + hex("00 ff 13");
    wire.controller.setRules({on("SPF\1").reply(odd), on("GSF").reply(foreignStatus)});

    QCOMPARE(wire.exchange(setPFactor1, odd.size()), odd);
    QCOMPARE(wire.status(), foreignStatus);
    QVERIFY(wire.exchange(getPFactor1, pFactorBytes) != good1500);
}

void TestRulesOnTheWire::linkClosesOnOneStage()
{
    QFETCH(Port, port);
    Wire wire(port);
    wire.controller.setRules({on("SPF\2").close()});
    QCOMPARE(wire.exchange(setPFactor1, 2), accepted());

    wire.send(setPFactor2);

    QTRY_VERIFY(!wire.controller.isConnected());
    QCOMPARE(wire.controller.unplayedRules(), QStringList());
}

void TestRulesOnTheWire::sendingSideClosesOnOneStage()
{
    QFETCH(Port, port);
    Wire wire(port);
    wire.controller.setRules({on("SPF\2").halfClose()});
    QCOMPARE(wire.exchange(setPFactor1, 2), accepted());

    // A host whose input has ended closes its own side.
    QCOMPARE(wire.exchange(setPFactor2, 2), QByteArray());

    QTRY_VERIFY(!wire.controller.isConnected());
    QCOMPARE(wire.controller.unplayedRules(), QStringList());
}

void TestRulesOnTheWire::commandsBehindTheClosingOneAreDropped_data()
{
    QTest::addColumn<Port>("port");
    QTest::addColumn<Rule>("rule");

    QTest::newRow("tcp, close") << Port::Tcp << Rule(on("GSF").close());
    QTest::newRow("tcp, half-close") << Port::Tcp << Rule(on("GSF").halfClose());
    QTest::newRow("pty, close") << Port::Pty << Rule(on("GSF").close());
    QTest::newRow("pty, half-close") << Port::Pty << Rule(on("GSF").halfClose());
}

void TestRulesOnTheWire::commandsBehindTheClosingOneAreDropped()
{
    QFETCH(Port, port);
    QFETCH(Rule, rule);
    Wire wire(port);
    wire.controller.setRules({rule});

    // A host whose input has ended closes its own side.
    QCOMPARE(wire.exchange("GSF;SEA" + hex("01 3b"), 2), QByteArray());

    QTRY_VERIFY(!wire.controller.isConnected());
    QCOMPARE(wire.controller.commands(), QByteArrayList({"GSF;"}));
    QVERIFY(!wire.controller.stageOn(1));
}

void TestRulesOnTheWire::aRuleActsAsOftenAsTold()
{
    QFETCH(Port, port);
    Wire wire(port);
    wire.controller.setRules({on("SEA\1").after(2).times(3).refuse()});
    QByteArrayList replies;

    for (int i = 0; i < 7; ++i)
        replies.append(wire.exchange("SEA" + hex("01 3b"), 2));

    QCOMPARE(replies, QByteArrayList({accepted(), accepted(), refused(), refused(), refused(),
                                      accepted(), accepted()}));
}

void TestRulesOnTheWire::rulesOfOnePrefixFollowEachOther()
{
    QFETCH(Port, port);
    Wire wire(port);
    wire.controller.setRules(
        {on("GSF").once().reply(foreignStatus), on("GSF").once().reply(hex("00 3b 18 3b"))});

    QCOMPARE(wire.status(), foreignStatus);
    QCOMPARE(wire.status(), hex("00 3b 18 3b"));
    QCOMPARE(wire.status(), statusAtRest);
}

void TestRulesOnTheWire::unknownCommandIsMatchedToo()
{
    QFETCH(Port, port);
    Wire wire(port);
    wire.controller.setRules({on("ABC").ignore(), on("XYZ1").reply("yes;")});

    QCOMPARE(wire.exchange("ABCd;XYZ1;XYZ2;GSF;", 4 + 2 + statusAtRest.size()),
             "yes;" + refused() + statusAtRest);
    QCOMPARE(wire.controller.commands().size(), 4);
}

void TestRulesOnTheWire::unfinishedCommandIsMatchedWhenItIsGivenUp()
{
    Wire wire(Port::Tcp);
    wire.controller.setRules({on("SEA;").once().reply("what?")});

    QCOMPARE(wire.exchange("SEA;", 5), QByteArray("what?"));
    QCOMPARE(wire.exchange("SEA;", 2), refused());
}

void TestRulesOnTheWire::lateCommandIsCountedOnce()
{
    Wire wire(Port::Tcp);
    wire.controller.setRules({on("GSF").after(1).once().late(20).reply("first"),
                              on("GSF").after(2).once().late(20).reply("second")});

    QCOMPARE(wire.exchange("GSF;GSF;GSF;GSF;", 4 + 5 + 4 + 6),
             statusAtRest + "first" + statusAtRest + "second");
}

void TestRulesOnTheWire::lateRefusalIsBothLateAndARefusal()
{
    constexpr int lateMs = 60;
    Wire wire(Port::Tcp);
    wire.controller.setRules({on("SEA").late(lateMs).cutTo(1).refuse()});
    QElapsedTimer timer;

    timer.start();
    QCOMPARE(wire.exchange("SEA" + hex("01 3b") + "GSF;", 1 + statusAtRest.size()),
             hex("01") + statusAtRest);

    QVERIFY(timer.elapsed() >= lateMs * 9 / 10);
}

void TestRulesOnTheWire::whatWasDecidedForALateCommandStays()
{
    Wire wire(Port::Tcp);
    wire.controller.setRules({on("GSF").late(100).reply(foreignStatus)});
    wire.send("GSF;");
    QTRY_COMPARE(wire.controller.unplayedRules(), QStringList());

    wire.controller.setRules({});

    QCOMPARE(wire.exchange("GSF;", 8), foreignStatus + statusAtRest);
}

void TestRulesOnTheWire::lateCommandKeepsItsRuleThroughAPause()
{
    Wire wire(Port::Tcp);
    wire.controller.setRules({on("GSF").once().late(20).reply(foreignStatus)});
    wire.send("GSF;");
    QTRY_COMPARE(wire.controller.unplayedRules(), QStringList());

    // The time of the late command passes during the pause.
    wire.controller.pause(true);
    QTest::qWait(40);
    wire.controller.pause(false);

    QCOMPARE(wire.exchange("GSF;", 8), foreignStatus + statusAtRest);
}

void TestRulesOnTheWire::lateCommandOfALostHostDoesNotCount()
{
    constexpr int lateMs = 300;
    EmulatorHost host;
    ControllerHandle controller = host.addTcp();
    controller.setRules({on("GSF").once().late(lateMs)});
    {
        HostClient lost(controller);
        lost.send("GSF;");
        QTRY_COMPARE(controller.count("GSF"), 1);
    }
    QTRY_VERIFY(!controller.isConnected());
    HostClient client(controller);
    QElapsedTimer timer;

    timer.start();
    QCOMPARE(client.exchange("GSF;", statusAtRest.size()), statusAtRest);

    // Timers may be early by a part of their interval, never by a tenth of it.
    QVERIFY(timer.elapsed() >= lateMs * 9 / 10);
    QCOMPARE(controller.count("GSF"), 2);
}

void TestRulesOnTheWire::startOfAStreamMayBeAnsweredByARule()
{
    ControllerOptions options;
    options.script = countingScript(1);
    Wire wire(Port::Tcp, options);
    wire.controller.setRules({on("SLS").once().reply(accepted()), on("SLS").cutTo(10)});

    QCOMPARE(wire.exchange(startAt(10), 2), accepted());
    QVERIFY(!wire.controller.isStreaming());
    QCOMPARE(wire.exchange(startAt(10) + "GSF;", 10 + 4).right(4), statusAtRest);
    QVERIFY(wire.controller.isStreaming());
}

void TestRulesOnTheWire::rulesOfTheOptionsStandBeforeTheLists()
{
    ControllerOptions options;
    options.faults.rules = {on("GSF").once().reply(foreignStatus)};
    options.faults.refuse = {"GSF"};
    Wire wire(Port::Tcp, options);

    QCOMPARE(wire.status(), foreignStatus);
    QCOMPARE(wire.exchange("GSF;", 2), refused());
}

void TestRulesOnTheWire::newRulesLeaveTheListsAsTheyAre()
{
    ControllerOptions options;
    options.faults.rules = {on("GSF").refuse()};
    options.faults.refuse = {"SHS"};
    Wire wire(Port::Tcp, options);
    QCOMPARE(wire.exchange("SHS;GSF;", 4), refused() + refused());

    wire.controller.setRules({on("CHS").refuse()});

    QCOMPARE(wire.exchange("SHS;CHS;GSF;", 8), refused() + refused() + statusAtRest);
}

void TestRulesOnTheWire::newFaultsReplaceAllRules()
{
    Wire wire(Port::Tcp);
    wire.controller.setRules({on("GSF").refuse()});
    QCOMPARE(wire.exchange("GSF;", 2), refused());

    Faults faults;
    faults.rules = {on("SHS").once().refuse()};
    faults.refuse = {"CHS"};
    wire.controller.setFaults(faults);

    QCOMPARE(wire.exchange("GSF;SHS;SHS;CHS;", 10),
             statusAtRest + refused() + accepted() + refused());
    wire.controller.setFaults({});
    QCOMPARE(wire.exchange("CHS;", 2), accepted());
}

void TestRulesOnTheWire::addedRuleStandsBehindTheOthers()
{
    ControllerOptions options;
    options.faults.refuse = {"GSF"};
    Wire wire(Port::Tcp, options);
    wire.controller.setRules({on("GSF").once().reply("first")});

    wire.controller.addRule(on("GSF").once().reply("second"));

    QCOMPARE(wire.exchange("GSF;GSF;GSF;", 5 + 6 + 2), "firstsecond" + refused());
}

void TestRulesOnTheWire::anotherControllerHasItsOwnRules()
{
    Wire wire(Port::Tcp);
    wire.controller.setRules({on("GSF").refuse()});
    QCOMPARE(wire.exchange("GSF;", 2), refused());

    wire.controller.setIdentity({});

    QCOMPARE(wire.status(), statusAtRest);
}

void TestRulesOnTheWire::noiseLeavesRepliesOfRulesAlone()
{
    ControllerOptions options;
    options.faults.garbageReplies = true;
    options.faults.rules = {on("GSF").reply(foreignStatus), on("GAS").ignore()};
    options.faults.refuse = {"SHS"};
    Wire wire(Port::Tcp, options);

    QCOMPARE(wire.status(), foreignStatus);
    const QByteArray noise = wire.exchange("GAS;SHS;", 2);
    QCOMPARE(noise.size(), 2);
    QVERIFY(noise != refused());
    QCOMPARE(wire.exchange("ABC;", 2), refused());
}

void TestRulesOnTheWire::unplayedRulesAreNamed()
{
    Wire wire(Port::Tcp);
    wire.controller.setRules({on("GSF").refuse()});
    wire.controller.addRule(on("SAI\1x").after(1).ignore());
    QCOMPARE(wire.controller.unplayedRules(), QStringList({"refuse GSF", "silent SAI:01x:skip=1"}));

    QCOMPARE(wire.exchange("GSF;", 2), refused());
    QCOMPARE(wire.exchange("SAI" + hex("01 78 0064 3b"), 2), accepted());
    QCOMPARE(wire.controller.unplayedRules(), QStringList("silent SAI:01x:skip=1"));
    wire.send("SAI" + hex("01 78 0064 3b"));

    QTRY_COMPARE(wire.controller.unplayedRules(), QStringList());
}

void TestRulesOnTheWire::unplayedRuleIsToldWhenRulesAreReplaced()
{
    Faults faults;
    faults.refuse = {"SEA"};
    Wire wire(Port::Tcp);
    wire.controller.setRules({on("SPF\1").refuse()});

    QTest::ignoreMessage(QtWarningMsg, "emulator: refuse SPF:01 never acted");
    wire.controller.setRules({on("SPF\2").refuse()});
    QTest::ignoreMessage(QtWarningMsg, "emulator: refuse SPF:02 never acted");
    wire.controller.setFaults(faults);
    QTest::ignoreMessage(QtWarningMsg, "emulator: refuse SEA never acted");
    wire.controller.setIdentity({});
}

void TestRulesOnTheWire::unplayedRuleIsToldWhenTheControllerEnds()
{
    QFETCH(Port, port);
    Faults faults;
    faults.rules = {on("SPF\1").refuse(), on("GSF").refuse()};
    faults.lateMs = {{"SEA", 500}};
    ControllerOptions options;
    options.faults = faults;
    auto wire = std::make_unique<Wire>(port, options);
    QCOMPARE(wire->exchange("GSF;", 2), refused());

    QTest::ignoreMessage(QtWarningMsg, "emulator: refuse SPF:01 never acted");
    QTest::ignoreMessage(QtWarningMsg, "emulator: late SEA=500 never acted");
    wire.reset();
}

void TestRulesOnTheWire::playedRulesAreNotTold()
{
    static QStringList told;
    told.clear();
    const auto usual = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString& text) { told.append(text); });
    {
        Wire wire(Port::Tcp);
        wire.controller.setRules({on("GSF").once().refuse()});
        wire.exchange("GSF;", 2);
        wire.controller.setFaults({});
    }
    qInstallMessageHandler(usual);

    QCOMPARE(told, QStringList());
}

QTEST_GUILESS_MAIN(TestRulesOnTheWire)
#include "tst_rulesonthewire.moc"
