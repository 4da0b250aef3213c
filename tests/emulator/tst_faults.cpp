#include "emulator/emulatorhost.h"
#include "hostclient.h"
#include "wiretools.h"

#include <QtTest>

using namespace emulator;
using namespace wiretools;

namespace {

const char* const statusRequest = "GSF;";
constexpr int statusBytes = 4;

} // namespace

class TestFaults final : public QObject
{
    Q_OBJECT

private slots:
    void refusedCommandIsNamedAndHasNoEffect();
    void silentCommandIsSwallowed();
    void lateReplyComesAfterItsTime();
    void commandsBehindALateOneWait();
    void shortReplyIsCut_data();
    void shortReplyIsCut();
    void linkClosesOnACommand();
    void halfCloseByHandEndsTheHostsInput();
    void linkClosesByHand();
    void missingBytesMoveThroughThePacket();
    void strayBytesStandBeforeThePacket();
    void corruptBytesMoveThroughThePacket();
    void linkClosesBehindThePacket();
    void everythingIsNoise();
    void faultsMayChangeOnTheWay();
    void unsolicitedBytesArrive();
    void secondHostIsTurnedAway();
    void hostThatComesBackIsAnswered();
    void controllerThatIsOffTurnsEverybodyAway();
    void settingsSurviveThePowerCut();
    void anotherControllerMayStandBehindTheAddress();
    void portThatIsTakenGivesNoController();
    void hostMayEndDuringAStream();
};

void TestFaults::refusedCommandIsNamedAndHasNoEffect()
{
    ControllerOptions options;
    options.faults.refuse = {"SEA", "SLS"};
    EmulatorHost host;
    const ControllerHandle controller = host.addTcp(options);
    HostClient client(controller);

    QCOMPARE(client.exchange("SEA" + hex("01 3b"), 2), refused());
    QCOMPARE(client.exchange("GER;", 7), hex("00 3b 53 45 41 06 3b"));
    QVERIFY(!controller.stageOn(1));
    QCOMPARE(client.exchange(startAt(100), 2), refused());
    QVERIFY(!controller.isStreaming());
}

void TestFaults::silentCommandIsSwallowed()
{
    ControllerOptions options;
    options.faults.silent = {"SEA"};
    EmulatorHost host;
    const ControllerHandle controller = host.addTcp(options);
    HostClient client(controller);

    client.send("SEA" + hex("01 3b"));
    QCOMPARE(client.exchange(statusRequest, statusBytes), hex("00 3b 01 3b"));

    QCOMPARE(controller.commands().size(), 2);
    QVERIFY(!controller.stageOn(1));
}

void TestFaults::lateReplyComesAfterItsTime()
{
    constexpr int lateMs = 120;
    ControllerOptions options;
    options.faults.lateMs = {{"GSF", lateMs}};
    EmulatorHost host;
    const ControllerHandle controller = host.addTcp(options);
    HostClient client(controller);
    QElapsedTimer timer;

    timer.start();
    QCOMPARE(client.exchange(statusRequest, statusBytes).size(), statusBytes);

    // Timers may be early by a part of their interval, never by a tenth of it.
    QVERIFY(timer.elapsed() >= lateMs * 9 / 10);
}

void TestFaults::commandsBehindALateOneWait()
{
    ControllerOptions options;
    options.faults.lateMs = {{"GSF", 50}};
    EmulatorHost host;
    HostClient client(host.addTcp(options));

    const QByteArray replies = client.exchange("GSF;GAS;GSF;", 4 + 5 + 4);

    QCOMPARE(replies, hex("00 3b 01 3b 00 3b 00 00 3b 00 3b 01 3b"));
}

void TestFaults::shortReplyIsCut_data()
{
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<int>("bytes");

    QTest::newRow("none of 4") << QByteArray("GSF;") << 0;
    QTest::newRow("2 of 5") << QByteArray("GAS;") << 2;
    QTest::newRow("3 of 5") << QByteArray("GAS;") << 3;
    QTest::newRow("24 of 25") << QByteArray("S1S;") << 24;
    QTest::newRow("more than there is") << QByteArray("CLS;") << 9;
}

void TestFaults::shortReplyIsCut()
{
    QFETCH(QByteArray, command);
    QFETCH(int, bytes);
    EmulatorHost host;
    ControllerHandle controller = host.addTcp();
    HostClient client(controller);
    client.send(command);
    const QByteArray whole = client.readUntilQuiet();

    Faults faults;
    faults.shortBytes = {{command.left(3), bytes}};
    controller.setFaults(faults);
    client.send(command);

    QCOMPARE(client.readUntilQuiet().size(), qMin(whole.size(), bytes));
}

void TestFaults::linkClosesOnACommand()
{
    ControllerOptions options;
    options.faults.closeOn = {"GSF"};
    EmulatorHost host;
    const ControllerHandle controller = host.addTcp(options);
    HostClient client(controller);

    client.send(statusRequest);

    QVERIFY(client.waitForDisconnected());
    QCOMPARE(client.socket.bytesAvailable(), 0);
    QTRY_VERIFY(!controller.isConnected());
}

void TestFaults::halfCloseByHandEndsTheHostsInput()
{
    EmulatorHost host;
    ControllerHandle controller = host.addTcp();
    HostClient client(controller);
    QCOMPARE(client.exchange("GAS;", 5).size(), 5);

    controller.halfCloseConnection();

    QVERIFY(client.waitForDisconnected());
}

void TestFaults::linkClosesByHand()
{
    EmulatorHost host;
    ControllerHandle controller = host.addTcp();
    HostClient client(controller);
    QTRY_VERIFY(controller.isConnected());

    controller.closeConnection();

    QVERIFY(client.waitForDisconnected());
    QTRY_VERIFY(!controller.isConnected());
}

void TestFaults::missingBytesMoveThroughThePacket()
{
    ControllerOptions options;
    options.script = countingScript(6);
    options.faults.dropByteEvery = 2;
    EmulatorHost host;
    HostClient client(host.addTcp(options));

    const QByteArray stream = client.exchange(startAt(1000), 6 * packetBytes - 3);

    QVERIFY(isFramed(stream.left(25)));
    // Packet 2 lacks byte 0, packet 4 byte 1.
    QCOMPARE(stream.mid(25, 24).left(5), hex("3b 0000 0002"));
    QVERIFY(isFramed(stream.mid(49, 25)));
    QCOMPARE(stream.mid(74, 24).left(5), hex("00 0000 0004"));
    QVERIFY(isFramed(stream.mid(98, 25)));
    QCOMPARE(client.readUntilQuiet(), QByteArray());
}

void TestFaults::strayBytesStandBeforeThePacket()
{
    ControllerOptions options;
    options.script = countingScript(4);
    options.faults.insertBytesEvery = 3;
    options.faults.insertCount = 3;
    EmulatorHost host;
    HostClient client(host.addTcp(options));

    const QByteArray stream = client.exchange(startAt(1000), 4 * packetBytes + 3);

    QVERIFY(isFramed(stream.left(25)));
    QVERIFY(isFramed(stream.mid(25, 25)));
    for (const char stray : stream.mid(50, 3))
        QVERIFY(static_cast<quint8>(stray) >= 0x80);
    QVERIFY(isFramed(stream.mid(53, 25)));
    QVERIFY(isFramed(stream.mid(78, 25)));
    QCOMPARE(wordAt(stream, 53 + 4), 3);
}

void TestFaults::corruptBytesMoveThroughThePacket()
{
    ControllerOptions options;
    options.script = countingScript(3);
    options.faults.corruptByteEvery = 1;
    EmulatorHost host;
    HostClient client(host.addTcp(options));

    const QByteArray stream = client.exchange(startAt(1000), 3 * packetBytes);

    QCOMPARE(stream.left(6), hex("ff 3b 0000 0001"));
    QCOMPARE(stream.mid(25, 6), hex("00 c4 0000 0002"));
    QCOMPARE(stream.mid(50, 6), hex("00 3b ff00 0003"));
}

void TestFaults::linkClosesBehindThePacket()
{
    ControllerOptions options;
    options.faults.closeAfterPackets = 4;
    EmulatorHost host;
    const ControllerHandle controller = host.addTcp(options);
    HostClient client(controller);

    client.send(startAt(1000));

    QVERIFY(client.waitForDisconnected());
    QCOMPARE(client.socket.readAll().size(), 4 * packetBytes);
    QCOMPARE(controller.packetsSent(), 4);
}

void TestFaults::everythingIsNoise()
{
    ControllerOptions options;
    options.faults.garbageReplies = true;
    EmulatorHost host;
    const ControllerHandle controller = host.addTcp(options);
    HostClient client(controller);

    const QByteArray noise = client.exchange("GID;", 50);
    QCOMPARE(noise.size(), 50);
    QVERIFY(!noise.contains('\0'));
    QVERIFY(!noise.contains(';'));
    QCOMPARE(client.exchange(startAt(10), packetBytes).size(), packetBytes);
    QVERIFY(!controller.isStreaming());
}

void TestFaults::faultsMayChangeOnTheWay()
{
    EmulatorHost host;
    ControllerHandle controller = host.addTcp();
    HostClient client(controller);
    QCOMPARE(client.exchange("SHS;", 2), accepted());

    Faults faults;
    faults.refuse = {"SHS"};
    controller.setFaults(faults);
    QCOMPARE(client.exchange("SHS;", 2), refused());

    controller.setFaults({});
    QCOMPARE(client.exchange("SHS;", 2), accepted());
}

void TestFaults::unsolicitedBytesArrive()
{
    EmulatorHost host;
    ControllerHandle controller = host.addTcp();
    HostClient client(controller);
    QTRY_VERIFY(controller.isConnected());

    controller.sendRaw("hello");

    QCOMPARE(client.read(5), QByteArray("hello"));
    QCOMPARE(controller.wire().last().bytes, QByteArray("hello"));
}

void TestFaults::secondHostIsTurnedAway()
{
    EmulatorHost host;
    const ControllerHandle controller = host.addTcp();
    HostClient first(controller);
    QCOMPARE(first.exchange(statusRequest, statusBytes).size(), statusBytes);

    HostClient second(controller);

    QVERIFY(second.waitForDisconnected());
    QCOMPARE(first.exchange(statusRequest, statusBytes).size(), statusBytes);
}

void TestFaults::hostThatComesBackIsAnswered()
{
    EmulatorHost host;
    const ControllerHandle controller = host.addTcp();
    for (int i = 0; i < 50; ++i) {
        HostClient client(controller);
        QCOMPARE(client.exchange(statusRequest, statusBytes).size(), statusBytes);
    }
}

void TestFaults::controllerThatIsOffTurnsEverybodyAway()
{
    EmulatorHost host;
    ControllerHandle controller = host.addTcp();
    const quint16 port = controller.port();
    HostClient client(controller);
    QCOMPARE(client.exchange(statusRequest, statusBytes).size(), statusBytes);

    controller.stopListening();

    QVERIFY(client.waitForDisconnected());
    QVERIFY(!HostClient(controller).isConnected());

    controller.listenAgain();
    QCOMPARE(controller.port(), port);
    QCOMPARE(HostClient(controller).exchange(statusRequest, statusBytes).size(), statusBytes);
}

void TestFaults::settingsSurviveThePowerCut()
{
    EmulatorHost host;
    ControllerHandle controller = host.addTcp();
    {
        HostClient client(controller);
        QCOMPARE(client.exchange("SPF" + hex("01 05dc 3b"), 2), accepted());
        QCOMPARE(client.exchange("SEA" + hex("01 3b"), 2), accepted());
    }
    controller.stopListening();
    controller.listenAgain();

    HostClient client(controller);
    QCOMPARE(wordAt(client.exchange("GPF" + hex("01 3b"), 5), 2), 1500);
    QVERIFY(!controller.stageOn(1));
}

void TestFaults::anotherControllerMayStandBehindTheAddress()
{
    EmulatorHost host;
    ControllerHandle controller = host.addTcp();
    const QByteArray oldKey = controller.key();
    const quint16 port = controller.port();
    HostClient client(controller);
    QCOMPARE(client.exchange("GID;", 50), controller.idReply());

    ControllerOptions other;
    other.firmware = 9;
    controller.setIdentity(other);

    QVERIFY(controller.key() != oldKey);
    QCOMPARE(controller.port(), port);
    QVERIFY(client.exchange("GID;", 50).contains("-V9-"));
}

void TestFaults::portThatIsTakenGivesNoController()
{
    EmulatorHost host;
    const ControllerHandle first = host.addTcp();
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^emulator: can not listen: "));

    const ControllerHandle second = host.addTcp({}, "127.0.0.1", first.port());

    QVERIFY(first.isValid());
    QVERIFY(!second.isValid());
}

void TestFaults::hostMayEndDuringAStream()
{
    auto host = std::make_unique<EmulatorHost>();
    HostClient client(host->addTcp());
    QCOMPARE(client.exchange(startAt(1000), 10 * packetBytes).size(), 10 * packetBytes);

    host.reset();

    QVERIFY(client.waitForDisconnected());
}

QTEST_GUILESS_MAIN(TestFaults)
#include "tst_faults.moc"
