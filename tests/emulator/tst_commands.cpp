#include "emulator/emulatorhost.h"
#include "hostclient.h"
#include "wiretools.h"

#include <QtTest>

using namespace emulator;
using namespace wiretools;

class TestCommands final : public QObject
{
    Q_OBJECT

private slots:
    void everyCommandIsAnsweredInItsForm_data();
    void everyCommandIsAnsweredInItsForm();
    void idTellsMakerKeyAndFirmware_data();
    void idTellsMakerKeyAndFirmware();
    void keysOfControllersDiffer();
    void stageThatDoesNotExistIsRefusedAndNamed_data();
    void stageThatDoesNotExistIsRefusedAndNamed();
    void unknownCommandIsRefusedAndTheNextOneUnderstood();
    void commandMayComeInPieces();
    void argumentByteMayBeATerminator();
    void unfinishedCommandIsGivenUp();
    void valuesThatWereSetAreToldAgain_data();
    void valuesThatWereSetAreToldAgain();
    void valueOutOfRangeIsRefused_data();
    void valueOutOfRangeIsRefused();
    void sensitivityNeedsFirmwareAbove30();
    void startOfStreamHasToSuitTheFirmwareKind_data();
    void startOfStreamHasToSuitTheFirmwareKind();
    void statusFollowsStagesAndSources();
    void labelIsStoredWholeAndTold();
    void memoryIsToldInOnePiece();
    void triggerFreezeShowsInTheMemory();
    void multiplexStateFollowsItsCommands();
    void commandsAndBytesAreRecorded();
};

void TestCommands::everyCommandIsAnsweredInItsForm_data()
{
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<int>("length");

    const auto row = [](const QByteArray& command, int length) {
        QTest::newRow(command.left(3).constData()) << command << length;
    };
    row("GID;", 50);
    row("SLA" + QByteArray(25, 'L') + ";", 2);
    row("GLA;", 29);
    row("SBR" + hex("01 3b"), 2);
    row("S1S;", 25);
    row("CLS;", 2);
    row("GSF;", 4);
    row("GAS;", 5);
    row("GIN" + hex("01 3b"), 5);
    row("SEA" + hex("01 3b"), 2);
    row("CEA" + hex("01 3b"), 2);
    row("SSH" + hex("02 3b"), 2);
    row("CSH" + hex("02 3b"), 2);
    row("SHS;", 2);
    row("CHS;", 2);
    row("STF" + hex("03 3b"), 2);
    row("CTF" + hex("03 3b"), 2);
    row("SPF" + hex("02 05dc 3b"), 2);
    row("GPF" + hex("02 3b"), 5);
    row("SAI" + hex("01 79 fc18 3b"), 2);
    row("GAI" + hex("01 79 3b"), 5);
    row("SDS" + hex("01 09c4 3b"), 2);
    row("GDS" + hex("01 3b"), 5);
    row("SDA" + hex("02 78 09c4 3b"), 2);
    row("GDA;", 11);
    row("SMD" + hex("01 3b"), 2);
    row("CMD" + hex("01 3b"), 2);
    row("GMF;", 4);
    row("SSE" + hex("02 3b"), 2);
    row("GCA;", 11);
    row("GER;", 7);
    row("RFR" + hex("0000 ff 3b"), 258);
}

void TestCommands::everyCommandIsAnsweredInItsForm()
{
    QFETCH(QByteArray, command);
    QFETCH(int, length);
    EmulatorHost host;
    const ControllerHandle controller = host.addTcp();
    HostClient client(controller);

    const QByteArray reply = client.exchange(command, length);

    QCOMPARE(reply.size(), length);
    QCOMPARE(reply.left(2), accepted());
    QCOMPARE(reply.right(1), QByteArray(";"));
    // A byte too many would stand in front of this.
    QCOMPARE(client.exchange("GID;", 50), controller.idReply());
}

void TestCommands::idTellsMakerKeyAndFirmware_data()
{
    QTest::addColumn<int>("firmware");
    QTest::addColumn<bool>("vm");
    QTest::addColumn<bool>("triggerCapable");
    QTest::addColumn<QByteArray>("version");
    QTest::addColumn<char>("byte10");

    QTest::newRow("old") << 9 << false << false << QByteArray("-V9-") << 'N';
    QTest::newRow("last without flags") << 10 << false << false << QByteArray("-V10-") << 'N';
    QTest::newRow("with flags") << 11 << false << false << QByteArray("-V11-") << 'N';
    QTest::newRow("with sensitivity") << 31 << false << false << QByteArray("-V31-") << 'N';
    QTest::newRow("VM") << 40 << true << false << QByteArray("-VM40-") << 'N';
    QTest::newRow("trigger capable") << 40 << false << true << QByteArray("-V40-") << 'A';
}

void TestCommands::idTellsMakerKeyAndFirmware()
{
    QFETCH(int, firmware);
    QFETCH(bool, vm);
    QFETCH(bool, triggerCapable);
    QFETCH(QByteArray, version);
    QFETCH(char, byte10);
    ControllerOptions options;
    options.firmware = firmware;
    options.vm = vm;
    options.triggerCapable = triggerCapable;
    options.key = "VM12345678Z";
    EmulatorHost host;
    const ControllerHandle controller = host.addTcp(options);
    HostClient client(controller);

    const QByteArray reply = client.exchange("GID;", 50);

    QCOMPARE(reply.size(), 50);
    QCOMPARE(reply, controller.idReply());
    QCOMPARE(reply.mid(2, 3), QByteArray("Zev"));
    QCOMPARE(reply[10], byte10);
    QCOMPARE(reply.mid(2).left(25).right(11), QByteArray("VM12345678Z"));
    QCOMPARE(reply.indexOf("-V"), reply.indexOf(version));
    QCOMPARE(reply.indexOf(';', 2), 49);
    QCOMPARE(controller.id(), QString::fromLatin1(reply.mid(2, 47)));
}

void TestCommands::keysOfControllersDiffer()
{
    EmulatorHost host;
    QSet<QByteArray> keys;
    for (int i = 0; i < 50; ++i) {
        const QByteArray key = host.addTcp().key();
        QCOMPARE(key.size(), 11);
        QVERIFY(QRegularExpression("^[A-Z0-9]{11}$").match(QString::fromLatin1(key)).hasMatch());
        keys.insert(key);
    }
    QCOMPARE(keys.size(), 50);
}

void TestCommands::stageThatDoesNotExistIsRefusedAndNamed_data()
{
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<int>("code");

    const int noSuchStage = 2;
    const int noSuchAxis = 3;
    QTest::newRow("stage 0") << QByteArray("SEA" + hex("00 3b")) << noSuchStage;
    QTest::newRow("stage 4") << QByteArray("CEA" + hex("04 3b")) << noSuchStage;
    QTest::newRow("both stages read at once") << QByteArray("GPF" + hex("03 3b")) << noSuchStage;
    QTest::newRow("intensity of stage 5") << QByteArray("GIN" + hex("05 3b")) << noSuchStage;
    QTest::newRow("multiplex of stage 9") << QByteArray("SMD" + hex("09 3b")) << noSuchStage;
    QTest::newRow("axis z") << QByteArray("SAI" + hex("01 7a 0064 3b")) << noSuchAxis;
    QTest::newRow("axis X in upper case") << QByteArray("GAI" + hex("01 58 3b")) << noSuchAxis;
    QTest::newRow("drive axis 0") << QByteArray("SDA" + hex("01 00 0064 3b")) << noSuchAxis;
    QTest::newRow("adjust stage 7") << QByteArray("SAI" + hex("07 78 0064 3b")) << noSuchStage;
    QTest::newRow("stage before axis") << QByteArray("SAI" + hex("07 7a 0064 3b")) << noSuchStage;
    QTest::newRow("stage before adjust-in")
        << QByteArray("SAI" + hex("00 78 1389 3b")) << noSuchStage;
    QTest::newRow("stage before P-factor") << QByteArray("SPF" + hex("04 ffff 3b")) << noSuchStage;
    QTest::newRow("stage before sensitivity")
        << QByteArray("SDS" + hex("04 1389 3b")) << noSuchStage;
    QTest::newRow("stage before driven axis")
        << QByteArray("SDA" + hex("ff 7a 0064 3b")) << noSuchStage;
    QTest::newRow("stage before drive") << QByteArray("SDA" + hex("04 78 ec77 3b")) << noSuchStage;
    QTest::newRow("axis before adjust-in")
        << QByteArray("SAI" + hex("01 7a 1389 3b")) << noSuchAxis;
}

void TestCommands::stageThatDoesNotExistIsRefusedAndNamed()
{
    QFETCH(QByteArray, command);
    QFETCH(int, code);
    EmulatorHost host;
    HostClient client(host.addTcp());

    QCOMPARE(client.exchange(command, 2), refused());
    QCOMPARE(
        client.exchange("GER;", 7),
        QByteArray(accepted() + command.left(3) + QByteArray(1, static_cast<char>(code)) + ";"));
}

void TestCommands::unknownCommandIsRefusedAndTheNextOneUnderstood()
{
    EmulatorHost host;
    HostClient client(host.addTcp());

    QCOMPARE(client.exchange("XYZ;GER;", 9),
             QByteArray(refused() + accepted() + "XYZ" + hex("01 3b")));
}

void TestCommands::commandMayComeInPieces()
{
    EmulatorHost host;
    HostClient client(host.addTcp());

    client.send("S");
    client.send("A");
    client.send("I" + hex("01"));
    client.send(hex("78 03"));
    QCOMPARE(client.exchange(hex("e8 3b"), 2), accepted());
    QCOMPARE(client.exchange("GAI" + hex("01 78 3b"), 5), hex("00 3b 03e8 3b"));
}

void TestCommands::argumentByteMayBeATerminator()
{
    EmulatorHost host;
    HostClient client(host.addTcp());

    QCOMPARE(client.exchange("SPF" + hex("01 0b3b 3b"), 2), accepted());
    QCOMPARE(client.exchange("GPF" + hex("01 3b"), 5), hex("00 3b 0b3b 3b"));
}

void TestCommands::unfinishedCommandIsGivenUp()
{
    EmulatorHost host;
    HostClient client(host.addTcp());

    QCOMPARE(client.exchange("SEA;", 2), refused());
    QCOMPARE(client.exchange("GER;", 7).mid(2, 3), QByteArray("SEA"));
}

void TestCommands::valuesThatWereSetAreToldAgain_data()
{
    QTest::addColumn<QByteArray>("set");
    QTest::addColumn<QByteArray>("get");
    QTest::addColumn<int>("value");

    QTest::newRow("P-factor") << QByteArray("SPF" + hex("02 05dc 3b"))
                              << QByteArray("GPF" + hex("02 3b")) << 1500;
    QTest::newRow("P-factor of both")
        << QByteArray("SPF" + hex("03 0064 3b")) << QByteArray("GPF" + hex("01 3b")) << 100;
    QTest::newRow("adjust-in below zero")
        << QByteArray("SAI" + hex("01 79 fc18 3b")) << QByteArray("GAI" + hex("01 79 3b")) << -1000;
    QTest::newRow("sensitivity") << QByteArray("SDS" + hex("01 1388 3b"))
                                 << QByteArray("GDS" + hex("01 3b")) << 5000;
    QTest::newRow("external sensitivity")
        << QByteArray("SDS" + hex("02 0000 3b")) << QByteArray("GDS" + hex("02 3b")) << 0;
}

void TestCommands::valuesThatWereSetAreToldAgain()
{
    QFETCH(QByteArray, set);
    QFETCH(QByteArray, get);
    QFETCH(int, value);
    EmulatorHost host;
    HostClient client(host.addTcp());

    QCOMPARE(client.exchange(set, 2), accepted());
    const QByteArray reply = client.exchange(get, 5);
    QCOMPARE(reply.size(), 5);
    QCOMPARE(wordAt(reply, 2), value);
}

void TestCommands::valueOutOfRangeIsRefused_data()
{
    QTest::addColumn<QByteArray>("command");

    QTest::newRow("P-factor below zero") << QByteArray("SPF" + hex("01 ffff 3b"));
    QTest::newRow("P-factor of 5.001 V") << QByteArray("SPF" + hex("01 1389 3b"));
    QTest::newRow("adjust-in of 5.001 V") << QByteArray("SAI" + hex("01 78 1389 3b"));
    QTest::newRow("drive to -5.001 V") << QByteArray("SDA" + hex("01 78 ec77 3b"));
    QTest::newRow("baud rate code 2") << QByteArray("SBR" + hex("02 3b"));
    QTest::newRow("stream of rate 0") << QByteArray("SLS" + hex("0000 0000 3b"));
    QTest::newRow("stream of rate 1001") << QByteArray("SLS" + hex("0000 03e9 3b"));
    QTest::newRow("other memory") << QByteArray("RFR" + hex("0100 ff 3b"));
}

void TestCommands::valueOutOfRangeIsRefused()
{
    QFETCH(QByteArray, command);
    EmulatorHost host;
    HostClient client(host.addTcp());

    QCOMPARE(client.exchange(command, 2), refused());
    QCOMPARE(client.exchange("GER;", 7), QByteArray(accepted() + command.left(3) + hex("04 3b")));
}

void TestCommands::sensitivityNeedsFirmwareAbove30()
{
    ControllerOptions options;
    options.firmware = 30;
    EmulatorHost host;
    HostClient client(host.addTcp(options));

    QCOMPARE(client.exchange("SDS" + hex("01 03e8 3b"), 2), refused());
    QCOMPARE(client.exchange("GDS" + hex("01 3b"), 2), refused());
    QCOMPARE(client.exchange("GER;", 7), QByteArray(accepted() + "GDS" + hex("05 3b")));
}

void TestCommands::startOfStreamHasToSuitTheFirmwareKind_data()
{
    QTest::addColumn<bool>("vm");
    QTest::addColumn<bool>("triggerCapable");
    QTest::addColumn<QByteArray>("start");
    QTest::addColumn<bool>("starts");

    const QByteArray arguments = hex("0000 0064 3b");
    QTest::newRow("SLS") << false << false << QByteArray("SLS" + arguments) << true;
    QTest::newRow("SGS without VM") << false << false << QByteArray("SGS" + arguments) << false;
    QTest::newRow("SGS") << true << false << QByteArray("SGS" + arguments) << true;
    QTest::newRow("SLS with VM") << true << false << QByteArray("SLS" + arguments) << false;
    QTest::newRow("SPS") << false << true << QByteArray("SPS" + hex("0000 3b")) << true;
    QTest::newRow("SPS untriggered")
        << false << false << QByteArray("SPS" + hex("0000 3b")) << false;
}

void TestCommands::startOfStreamHasToSuitTheFirmwareKind()
{
    QFETCH(bool, vm);
    QFETCH(bool, triggerCapable);
    QFETCH(QByteArray, start);
    QFETCH(bool, starts);
    ControllerOptions options;
    options.vm = vm;
    options.triggerCapable = triggerCapable;
    EmulatorHost host;
    const ControllerHandle controller = host.addTcp(options);
    HostClient client(controller);

    QCOMPARE(client.exchange(start, 2), starts ? accepted() : refused());
    QCOMPARE(controller.isStreaming(), starts);
}

void TestCommands::statusFollowsStagesAndSources()
{
    EmulatorHost host;
    const ControllerHandle controller = host.addTcp();
    HostClient client(controller);
    const auto status = [&] { return client.exchange("GSF;", 4).mid(2, 1); };

    QCOMPARE(status(), hex("01"));
    QCOMPARE(client.exchange("SEA" + hex("01 3b"), 2), accepted());
    QCOMPARE(status(), hex("29"));
    QVERIFY(controller.stageOn(1));
    QVERIFY(!controller.stageOn(2));
    QCOMPARE(client.exchange("GAS;", 5), hex("00 3b 01 00 3b"));
    QCOMPARE(client.exchange("SEA" + hex("03 3b"), 2), accepted());
    QCOMPARE(status(), hex("79"));
    QCOMPARE(client.exchange("CEA" + hex("01 3b"), 2), accepted());
    QCOMPARE(client.exchange("SAI" + hex("02 79 0064 3b"), 2), accepted());
    QCOMPARE(client.exchange("SPF" + hex("01 0000 3b"), 2), accepted());
    QCOMPARE(status(), hex("54"));
    QCOMPARE(client.exchange("SAI" + hex("01 78 0064 3b"), 2), accepted());
    QCOMPARE(status(), hex("56"));
}

void TestCommands::labelIsStoredWholeAndTold()
{
    EmulatorHost host;
    const ControllerHandle controller = host.addTcp();
    HostClient client(controller);
    const QByteArray label = "Left; GID; table         ";

    QCOMPARE(label.size(), 25);
    QCOMPARE(client.exchange("SLA" + label + ";", 2), accepted());
    QCOMPARE(controller.label(), label);
    QCOMPARE(client.exchange("GLA;", 29).mid(2, 25), label);
}

void TestCommands::memoryIsToldInOnePiece()
{
    ControllerOptions options;
    options.key = "K1234567890";
    EmulatorHost host;
    HostClient client(host.addTcp(options));

    const QByteArray memory = client.exchange("RFR" + hex("0000 ff 3b"), 258);
    QCOMPARE(memory.size(), 258);
    QVERIFY(memory.mid(2).startsWith("K1234567890"));
    QCOMPARE(client.exchange("RFR" + hex("0000 ff 3b"), 258), memory);
}

void TestCommands::triggerFreezeShowsInTheMemory()
{
    EmulatorHost host;
    HostClient client(host.addTcp());
    const auto memory = [&] { return client.exchange("RFR" + hex("0000 ff 3b"), 258); };
    const QByteArray before = memory();

    QCOMPARE(client.exchange("STF" + hex("02 3b"), 2), accepted());
    QVERIFY(memory() != before);
    QCOMPARE(client.exchange("CTF" + hex("02 3b"), 2), accepted());
    QCOMPARE(memory(), before);
}

void TestCommands::multiplexStateFollowsItsCommands()
{
    EmulatorHost host;
    HostClient client(host.addTcp());
    const auto flags = [&] { return client.exchange("GMF;", 4).mid(2, 1); };
    const auto packetFlags = [&] { return client.exchange("S1S;", 25).mid(3, 1); };

    QCOMPARE(client.exchange("SMD" + hex("03 3b"), 2), accepted());
    QCOMPARE(flags(), hex("03"));
    QCOMPARE(packetFlags(), hex("03"));
    QCOMPARE(client.exchange("CMD" + hex("01 3b"), 2), accepted());
    QCOMPARE(packetFlags(), hex("02"));
    QCOMPARE(client.exchange("SSE" + hex("02 3b"), 2), accepted());
    QCOMPARE(packetFlags(), hex("00"));
}

void TestCommands::commandsAndBytesAreRecorded()
{
    EmulatorHost host;
    ControllerHandle controller = host.addTcp();
    HostClient client(controller);

    QCOMPARE(client.exchange("GSF;GAS;", 9).size(), 9);

    QCOMPARE(controller.commands(), QByteArrayList({"GSF;", "GAS;"}));
    const QVector<WireEvent> wire = controller.wire();
    QCOMPARE(wire.size(), 4);
    QCOMPARE(wire[0].direction, WireEvent::FromHost);
    QCOMPARE(wire[0].bytes, QByteArray("GSF;"));
    QCOMPARE(wire[1].direction, WireEvent::ToHost);
    QCOMPARE(wire[1].bytes.size(), 4);
    QCOMPARE(wire[2].bytes, QByteArray("GAS;"));
    QCOMPARE(wire[3].bytes.size(), 5);
    QVERIFY(wire[0].timeNs <= wire[3].timeNs);
    controller.clearWire();
    QVERIFY(controller.wire().isEmpty());
    QVERIFY(controller.commands().isEmpty());
}

QTEST_GUILESS_MAIN(TestCommands)
#include "tst_commands.moc"
