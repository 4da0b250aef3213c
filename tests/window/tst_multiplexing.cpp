// Leading stages to the common detector and back. The controllers are scripts in memory.

#include "monitorbench.h"
#include "window/multiplexing.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

using Link = SystemsBench::Link;
using Messages = QList<QByteArray>;

const QString address = QStringLiteral("ttyUSB0");
const QByteArray stopCommand("CLS;");
const QByteArray startCommand("SLS\x00\x00\x00\x64;", 8);
const QByteArray refusal("\x01;", 2);

/// An unanswered command is given up after twice this.
constexpr int shortTimeoutMs = 30;

QByteArray commandOf(bool on, int stage)
{
    return QByteArray(on ? "SMD" : "CMD").append(char(stage)).append(';');
}

void addStages()
{
    QTest::addColumn<int>("stage");
    QTest::newRow("stage 1") << 1;
    QTest::newRow("stage 2") << 2;
}

void addDirections()
{
    QTest::addColumn<bool>("on");
    QTest::newRow("on") << true;
    QTest::newRow("off") << false;
}

} // namespace

class TestMultiplexing final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench = std::make_unique<Bench>(); }
    void cleanup() { bench.reset(); }

    void stageIsSwitchedOnAndOff_data() { addStages(); }
    void stageIsSwitchedOnAndOff();
    void directionThatIsSetSendsNothingAndLeavesTheStream_data() { addDirections(); }
    void directionThatIsSetSendsNothingAndLeavesTheStream();
    void streamIsStoppedForASwitchAndGoesOnAtItsRate_data() { addDirections(); }
    void streamIsStoppedForASwitchAndGoesOnAtItsRate();
    void streamWithoutARateOfItsOwnTakesThatOfTheToolBar();
    void noTickComesMeanwhile();
    void replyIsJudgedByItsFirstByte_data();
    void replyIsJudgedByItsFirstByte();
    void failureLeavesTheOppositeAndLetsTheStreamRun_data() { addDirections(); }
    void failureLeavesTheOppositeAndLetsTheStreamRun();
    void unansweredStopIsRepeatedOnce();
    void failedStartIsTold_data();
    void failedStartIsTold();
    void systemThatIsDownFailsWithoutACommand_data() { addDirections(); }
    void systemThatIsDownFailsWithoutACommand();
    void unknownAddressOrStageChangesNothing_data();
    void unknownAddressOrStageChangesNothing();
    void everyCallStartsTheTickAgain_data();
    void everyCallStartsTheTickAgain();
    void callMadeMeanwhileSendsNothing();
    void secondSystemOfAnAddressStaysAsItIs();

private:
    struct Bench : MonitorBench
    {
        Multiplexing multiplexing{systems, toolBar, timer};
    };

    void switchStage(int stage, bool on) const
    {
        bench->multiplexing.switchStage(address, on, stage);
    }
    void setFlags(bool on) const
    {
        bench->systems.at(0).status.multiplex1 = on;
        bench->systems.at(0).status.multiplex2 = on;
    }
    bool flag(int stage, int system = 0) const
    {
        const ConnectionStatus& status = bench->systems.at(system).status;
        return stage == 1 ? status.multiplex1 : status.multiplex2;
    }
    /// A system whose controller accepts switches.
    ScriptedConnection& add(bool streams = false) const
    {
        ScriptedConnection& connection =
            streams ? bench->addStreaming() : bench->add(Link::Running, address);
        connection.setTimeoutMs(shortTimeoutMs);
        for (const char* mnemonic : {"SMD", "CMD"})
            connection.controller().answer(mnemonic, replies::accepted());
        return connection;
    }

    std::unique_ptr<Bench> bench;
};

void TestMultiplexing::stageIsSwitchedOnAndOff()
{
    QFETCH(int, stage);
    ScriptedConnection& connection = add();
    switchStage(stage, true);
    QCOMPARE(connection.controller().messages(), Messages{commandOf(true, stage)});
    QVERIFY(flag(stage));
    QVERIFY(!flag(3 - stage));

    switchStage(stage, false);
    QCOMPARE(connection.controller().messages().last(), commandOf(false, stage));
    QVERIFY(!flag(stage));
}

void TestMultiplexing::directionThatIsSetSendsNothingAndLeavesTheStream()
{
    QFETCH(bool, on);
    ScriptedConnection& connection = add(true);
    setFlags(on);
    for (const int stage : {1, 2})
        switchStage(stage, on);
    QCOMPARE(connection.controller().messages(), Messages());
    QVERIFY(connection.isStreaming());
    QCOMPARE(flag(1), on);
    QCOMPARE(flag(2), on);
}

void TestMultiplexing::streamIsStoppedForASwitchAndGoesOnAtItsRate()
{
    QFETCH(bool, on);
    ScriptedConnection& connection = add(true);
    setFlags(!on);
    bench->samplingRate().setValue(50);
    const QSignalSpy failed(&bench->multiplexing, &Multiplexing::streamFailed);
    switchStage(2, on);
    QCOMPARE(connection.controller().messages(),
             Messages({stopCommand, commandOf(on, 2), startCommand}));
    QVERIFY(connection.isStreaming());
    QCOMPARE(flag(2), on);
    QCOMPARE(flag(1), !on);
    QCOMPARE(failed.count(), 0);
}

void TestMultiplexing::streamWithoutARateOfItsOwnTakesThatOfTheToolBar()
{
    ScriptedConnection& connection = add();
    // More than a connection keeps, as at the locked rate of pulsed lasers.
    QCOMPARE(startStreamAtRate(connection, 1000), StreamStart::Runs);
    bench->samplingRate().setValue(50);
    switchStage(1, true);
    QCOMPARE(connection.controller().messages().last(), QByteArray("SLS\x00\x00\x00\x32;", 8));
}

void TestMultiplexing::noTickComesMeanwhile()
{
    ScriptedConnection& connection = add(true);
    connection.controller().answer("SLS", refusal);
    bench->updateRate().setMaximum(500);
    bench->updateRate().setValue(500);
    bench->timer.start();
    const QSignalSpy ticks(&bench->timer, &TickTimer::timeout);
    // Takes events for much longer than a period.
    connect(&bench->multiplexing, &Multiplexing::streamFailed, this, [&ticks] {
        QEventLoop loop;
        QTimer::singleShot(50, &loop, &QEventLoop::quit);
        loop.exec();
        QCOMPARE(ticks.count(), 0);
    });
    switchStage(1, true);
    QCOMPARE(ticks.count(), 0);
}

void TestMultiplexing::replyIsJudgedByItsFirstByte_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("accepted") << QByteArray("\0;", 2) << true;
    QTest::newRow("without its end") << QByteArray("\0\0", 2) << true;
    QTest::newRow("refused") << refusal << false;
    QTest::newRow("unknown status") << QByteArray("\x02;", 2) << false;
    QTest::newRow("cut to one byte") << QByteArray("\0", 1) << false;
    QTest::newRow("no reply") << QByteArray() << false;
}

void TestMultiplexing::replyIsJudgedByItsFirstByte()
{
    QFETCH(QByteArray, reply);
    QFETCH(bool, accepted);
    ScriptedConnection& connection = add();
    connection.controller().answer("SMD", reply);
    connection.controller().answer("CMD", reply);
    switchStage(1, true);
    QCOMPARE(flag(1), accepted);
    setFlags(true);
    switchStage(1, false);
    QCOMPARE(flag(1), !accepted);
    // It is sent once, whatever the reply.
    QCOMPARE(connection.controller().messages(),
             Messages({commandOf(true, 1), commandOf(false, 1)}));
}

void TestMultiplexing::failureLeavesTheOppositeAndLetsTheStreamRun()
{
    QFETCH(bool, on);
    ScriptedConnection& connection = add(true);
    connection.controller().stayQuiet("SMD");
    connection.controller().stayQuiet("CMD");
    setFlags(!on);
    const QSignalSpy failed(&bench->multiplexing, &Multiplexing::streamFailed);
    // The second request is not ignored.
    for (int request = 0; request < 2; ++request) {
        switchStage(2, on);
        QCOMPARE(connection.controller().messages(),
                 Messages({stopCommand, commandOf(on, 2), startCommand}));
        QCOMPARE(flag(2), !on);
        QVERIFY(connection.isStreaming());
        connection.controller().forgetMessages();
    }
    QCOMPARE(failed.count(), 0);
}

void TestMultiplexing::unansweredStopIsRepeatedOnce()
{
    ScriptedConnection& connection = add(true);
    connection.controller().stayQuiet("CLS");
    switchStage(1, true);
    const Messages messages = connection.controller().messages();
    QCOMPARE(messages.count(stopCommand), 2);
    QVERIFY(!flag(1));
}

void TestMultiplexing::failedStartIsTold_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<int>("told");
    QTest::newRow("refused") << refusal << 1;
    QTest::newRow("no reply") << QByteArray() << 1;
    // A stream can run behind it.
    QTest::newRow("cut") << QByteArray("\0;\0", 3) << 0;
}

void TestMultiplexing::failedStartIsTold()
{
    QFETCH(QByteArray, reply);
    ScriptedConnection& connection = add(true);
    connection.controller().answer("SLS", reply);
    const QSignalSpy failed(&bench->multiplexing, &Multiplexing::streamFailed);
    switchStage(1, true);
    QTEST(failed.count(), "told");
    QVERIFY(flag(1));
}

void TestMultiplexing::systemThatIsDownFailsWithoutACommand()
{
    QFETCH(bool, on);
    ScriptedConnection& connection = add();
    connection.disconnectController();
    for (const bool before : {on, !on}) {
        setFlags(before);
        switchStage(1, on);
        // A direction that is set already is left alone here, too.
        QCOMPARE(flag(1), before == on ? on : !on);
    }
    QCOMPARE(connection.controller().messages(), Messages());
}

void TestMultiplexing::unknownAddressOrStageChangesNothing_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("stage");
    QTest::newRow("address") << QStringLiteral("ttyUSB1") << 1;
    QTest::newRow("stage 0") << address << 0;
    QTest::newRow("both stages") << address << 3;
    QTest::newRow("stage -1") << address << -1;
}

void TestMultiplexing::unknownAddressOrStageChangesNothing()
{
    QFETCH(QString, name);
    QFETCH(int, stage);
    ScriptedConnection& connection = add(true);
    bench->multiplexing.switchStage(name, true, stage);
    QCOMPARE(connection.controller().messages(), Messages());
    QVERIFY(connection.isStreaming());
    QVERIFY(!flag(1) && !flag(2));
}

void TestMultiplexing::everyCallStartsTheTickAgain_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("on");
    QTest::addColumn<int>("stage");
    QTest::newRow("switched") << address << true << 1;
    QTest::newRow("already set") << address << false << 1;
    QTest::newRow("unknown address") << QStringLiteral("ttyUSB1") << true << 1;
    QTest::newRow("unknown stage") << address << true << 3;
}

void TestMultiplexing::everyCallStartsTheTickAgain()
{
    QFETCH(QString, name);
    QFETCH(bool, on);
    QFETCH(int, stage);
    add();
    QSignalSpy ticks(&bench->timer, &TickTimer::timeout);
    bench->timer.stop();
    bench->multiplexing.switchStage(name, on, stage);
    QVERIFY(ticks.wait());
}

void TestMultiplexing::callMadeMeanwhileSendsNothing()
{
    ScriptedConnection& connection = add(true);
    connection.controller().answer("SLS", refusal);
    connect(&bench->multiplexing, &Multiplexing::streamFailed, this,
            [this] { switchStage(2, true); });
    switchStage(1, true);
    QCOMPARE(connection.controller().messages(),
             Messages({stopCommand, commandOf(true, 1), startCommand}));
    QVERIFY(flag(1));
    QVERIFY(!flag(2));

    // Only meanwhile.
    switchStage(2, true);
    QVERIFY(flag(2));
}

void TestMultiplexing::secondSystemOfAnAddressStaysAsItIs()
{
    ScriptedConnection& first = add();
    ScriptedConnection& second = add();
    switchStage(1, true);
    QCOMPARE(first.controller().messages(), Messages{commandOf(true, 1)});
    QCOMPARE(second.controller().messages(), Messages());
    QVERIFY(flag(1, 0));
    QVERIFY(!flag(1, 1));

    // Nor is it reached while the first one has the direction.
    switchStage(1, true);
    QCOMPARE(second.controller().messages(), Messages());
}

QTEST_MAIN(TestMultiplexing)
#include "tst_multiplexing.moc"
