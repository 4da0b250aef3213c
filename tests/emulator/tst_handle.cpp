#include "emulator/emulatorhost.h"
#include "hostclient.h"
#include "wiretools.h"

#include <QtTest>

using namespace emulator;
using namespace wiretools;

namespace {

ControllerOptions stillOptions()
{
    ControllerOptions options;
    options.preset = Preset::Still;
    return options;
}

/// Sends commands that are accepted.
void order(HostClient& client, const QByteArrayList& commands)
{
    for (const QByteArray& command : commands)
        QCOMPARE(client.exchange(command, 2), accepted());
}

} // namespace

/// What a test can see and do at a controller without the wire.
class TestHandle final : public QObject
{
    Q_OBJECT

private slots:
    void stageTellsWhatItsSettingsAre();
    void stageTellsWhatItMeasures();
    void stageTellsWhereTheBeamIs();
    void switchesOfAStageAreTold_data();
    void switchesOfAStageAreTold();
    void stageThatCanNotReachItsTargetIsNotActive();
    void noOtherStageTellsAnything();
    void multiplexingIsSwitchedAtTheController();
    void inputsAreTurnedAtTheController();
    void inputDoesNotCountBesideASetting();
    void commandsAreCountedByTheirBeginning();
};

void TestHandle::stageTellsWhatItsSettingsAre()
{
    EmulatorHost host;
    const ControllerHandle controller = host.addTcp(stillOptions());
    HostClient client(controller);

    order(client, {"SPF" + hex("02 05dc 3b"), "SDS" + hex("02 07d0 3b"),
                   "SAI" + hex("02 78 0064 3b"), "SAI" + hex("02 79 ff9c 3b")});

    const StageState first = controller.stage(1);
    QCOMPARE(first.pFactorMv, 1000);
    QCOMPARE(first.sensitivityMv, 0);
    QCOMPARE(first.adjustInXMv, 0);
    QCOMPARE(first.adjustInYMv, 0);
    const StageState second = controller.stage(2);
    QCOMPARE(second.pFactorMv, 1500);
    QCOMPARE(second.sensitivityMv, 2000);
    QCOMPARE(second.adjustInXMv, 100);
    QCOMPARE(second.adjustInYMv, -100);
}

void TestHandle::stageTellsWhatItMeasures()
{
    ControllerOptions options = stillOptions();
    options.stages[0].offsetXUm = 20.0;
    options.stages[1].offsetYUm = -30.0;
    EmulatorHost host;
    const ControllerHandle controller = host.addTcp(options);
    HostClient client(controller);
    order(client, {"SDA" + hex("01 78 03e8 3b"), "SDA" + hex("02 79 fc18 3b")});

    const QByteArray packet = client.exchange("S1S;", packetBytes);

    const StageState first = controller.stage(1);
    QCOMPARE(first.positionXMv, wordAt(packet, 4));
    QCOMPARE(first.positionYMv, wordAt(packet, 6));
    QCOMPARE(first.intensityMv, wordAt(packet, 8));
    QCOMPARE(first.actuatorXMv, 6000);
    QCOMPARE(first.actuatorYMv, 5000);
    const StageState second = controller.stage(2);
    QCOMPARE(second.positionXMv, wordAt(packet, 10));
    QCOMPARE(second.positionYMv, wordAt(packet, 12));
    QCOMPARE(second.intensityMv, wordAt(packet, 14));
    QCOMPARE(second.actuatorXMv, 5000);
    QCOMPARE(second.actuatorYMv, 4000);
}

void TestHandle::stageTellsWhereTheBeamIs()
{
    ControllerOptions options = stillOptions();
    options.stages[0].offsetXUm = 20.5;
    options.stages[0].offsetYUm = -7.0;
    EmulatorHost host;
    const ControllerHandle controller = host.addTcp(options);

    QCOMPARE(controller.stage(1).beamXUm, 20.5);
    QCOMPARE(controller.stage(1).beamYUm, -7.0);
    QCOMPARE(controller.stage(2).beamXUm, 0.0);
}

void TestHandle::switchesOfAStageAreTold_data()
{
    QTest::addColumn<QByteArrayList>("commands");
    QTest::addColumn<QString>("told");

    QTest::newRow("none") << QByteArrayList() << QString();
    QTest::newRow("on") << QByteArrayList{"SEA" + hex("02 3b")} << QString("on active");
    QTest::newRow("held") << QByteArrayList{"SSH" + hex("02 3b")} << QString("on active held");
    QTest::newRow("held no more") << QByteArrayList{"SSH" + hex("02 3b"), "CSH" + hex("02 3b")}
                                  << QString("on active");
    QTest::newRow("held and off") << QByteArrayList{"SSH" + hex("02 3b"), "CEA" + hex("02 3b")}
                                  << QString("held");
    QTest::newRow("multiplexed") << QByteArrayList{"SMD" + hex("02 3b")} << QString("multiplexed");
    QTest::newRow("frozen") << QByteArrayList{"STF" + hex("02 3b")} << QString("frozen");
    QTest::newRow("the other stage")
        << QByteArrayList{"SSH" + hex("01 3b"), "SMD" + hex("01 3b"), "STF" + hex("01 3b")}
        << QString();
}

void TestHandle::switchesOfAStageAreTold()
{
    QFETCH(QByteArrayList, commands);
    EmulatorHost host;
    const ControllerHandle controller = host.addTcp(stillOptions());
    HostClient client(controller);

    order(client, commands);

    const StageState state = controller.stage(2);
    QStringList words;
    const auto add = [&](bool is, const char* word) {
        if (is)
            words.append(word);
    };
    add(state.on, "on");
    add(state.active, "active");
    add(state.held, "held");
    add(state.multiplexed, "multiplexed");
    add(state.frozen, "frozen");
    QTEST(words.join(' '), "told");
}

void TestHandle::stageThatCanNotReachItsTargetIsNotActive()
{
    ControllerOptions options = stillOptions();
    options.stages[0].offsetXUm = 100.0;
    EmulatorHost host;
    ControllerHandle controller = host.addTcp(options);
    HostClient client(controller);

    controller.setStage(1, true);

    // The beam moves with each command.
    QTRY_VERIFY(client.exchange("GSF;", 4).size() == 4 && controller.stage(1).actuatorXMv == 0);
    QVERIFY(controller.stage(1).on);
    QVERIFY(!controller.stage(1).active);
}

void TestHandle::noOtherStageTellsAnything()
{
    EmulatorHost host;
    const ControllerHandle controller = host.addTcp();

    for (const int stage : {-1, 0, 3}) {
        QCOMPARE(controller.stage(stage).pFactorMv, 0);
        QCOMPARE(controller.stage(stage).intensityMv, 0);
    }
}

void TestHandle::multiplexingIsSwitchedAtTheController()
{
    EmulatorHost host;
    ControllerHandle controller = host.addTcp();
    HostClient client(controller);

    controller.setMultiplexed(2, true);
    QCOMPARE(client.exchange("GMF;", 4), hex("00 3b 02 3b"));
    QVERIFY(controller.stage(2).multiplexed);

    controller.setMultiplexed(2, false);
    QCOMPARE(client.exchange("GMF;", 4), hex("00 3b 00 3b"));
}

void TestHandle::inputsAreTurnedAtTheController()
{
    EmulatorHost host;
    ControllerHandle controller = host.addTcp(stillOptions());
    HostClient client(controller);
    controller.setStage(2, true);
    ExternalInputs inputs;
    inputs.pFactorMv = 1200;
    inputs.sensitivityMv = 1100;
    inputs.adjustInXMv = 300;
    inputs.adjustInYMv = -200;

    controller.setInputs(2, inputs);

    // The beam moves with each command.
    QTRY_VERIFY(client.exchange("GSF;", 4).size() == 4 && controller.stage(2).positionXMv == 300
                && controller.stage(2).positionYMv == -200);
    const StageState state = controller.stage(2);
    QCOMPARE(state.adjustInXMv, 0);
    QCOMPARE(state.inputs.pFactorMv, 1200);
    QCOMPARE(state.inputs.sensitivityMv, 1100);
    QCOMPARE(state.inputs.adjustInXMv, 300);
    QCOMPARE(state.inputs.adjustInYMv, -200);
    QCOMPARE(controller.stage(1).inputs.adjustInXMv, 0);
}

void TestHandle::inputDoesNotCountBesideASetting()
{
    EmulatorHost host;
    ControllerHandle controller = host.addTcp(stillOptions());
    HostClient client(controller);
    order(client, {"SAI" + hex("01 78 0064 3b"), "SEA" + hex("01 3b")});
    ExternalInputs inputs;
    inputs.adjustInXMv = 300;

    controller.setInputs(1, inputs);

    constexpr int commandsToSettle = 50;
    for (int i = 0; i < commandsToSettle; ++i)
        client.exchange("GSF;", 4);
    QCOMPARE(controller.stage(1).positionXMv, 100);
}

void TestHandle::commandsAreCountedByTheirBeginning()
{
    EmulatorHost host;
    ControllerHandle controller = host.addTcp();
    HostClient client(controller);
    client.exchange("GSF;", 4);
    controller.clearWire();

    order(client,
          {"SPF" + hex("01 03e8 3b"), "SPF" + hex("02 03e8 3b"), "SPF" + hex("01 03e8 3b")});
    client.exchange("GID;", 50);

    QCOMPARE(controller.count("SPF"), 3);
    QCOMPARE(controller.count("SPF\1"), 2);
    QCOMPARE(controller.count("GID"), 1);
    QCOMPARE(controller.count("GSF"), 0);
}

QTEST_GUILESS_MAIN(TestHandle)
#include "tst_handle.moc"
