#include "emulator/emulatorhost.h"
#include "emulator/serialline.h"
#include "serialclient.h"
#include "support/pseudoterminals.h"
#include "wiretools.h"

#include <QtTest>

#include <fcntl.h>
#include <optional>
#include <termios.h>
#include <unistd.h>

using namespace emulator;
using namespace wiretools;

namespace {

const char* const statusRequest = "GSF;";
constexpr int statusBytes = 4;
const char* const bothOff = "00 3b 01 3b";
constexpr int idBytes = 50;

QByteArray baudRateCommand(int code)
{
    return QByteArray("SBR") + static_cast<char>(code) + ';';
}

} // namespace

class TestPty final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void everyFirmwareAnswersAndStreams_data();
    void everyFirmwareAnswersAndStreams();
    void bytesAtTheSameRateAreUnchanged();
    void bytesAtAnotherRateAreTheSameGarbageEachTime();
    void otherRateIsGarbageBothWays_data();
    void otherRateIsGarbageBothWays();
    void baudRateChangesBehindTheAcknowledgment_data();
    void baudRateChangesBehindTheAcknowledgment();
    void unknownBaudRateCodeChangesNothing();
    void flowControlHasToAgree_data();
    void flowControlHasToAgree();
    void searchFindsAControllerAtItsOwnSettingsOnly_data();
    void searchFindsAControllerAtItsOwnSettingsOnly();
    void reopenedPortFindsTheControllerAsItWas();
    void halfACommandMayComeThroughAReopenedPort();
    void lastWordBeforeClosingIsHeardAtTheRateOfTheDialogue();
    void lastWordAtAnotherRateStaysGarbage();
    void hostIsSeenWhileItHasThePortOpen();
    void pausedControllerNeitherReadsNorSends();
    void anotherControllerBringsItsOwnRate();
    void controllersSpeakForThemselves();
    void tcpControllerHasNoPath();
};

void TestPty::initTestCase()
{
    if (!pseudoTerminalProblem().isEmpty())
        QSKIP(qPrintable(pseudoTerminalProblem()));
}

void TestPty::everyFirmwareAnswersAndStreams_data()
{
    QTest::addColumn<int>("firmware");
    QTest::addColumn<bool>("vm");

    QTest::newRow("without flags") << 10 << false;
    QTest::newRow("with flags") << 30 << false;
    QTest::newRow("with sensitivity") << 40 << false;
    QTest::newRow("VM") << 40 << true;
}

void TestPty::everyFirmwareAnswersAndStreams()
{
    QFETCH(int, firmware);
    QFETCH(bool, vm);
    ControllerOptions options;
    options.firmware = firmware;
    options.vm = vm;
    EmulatorHost host;
    const ControllerHandle controller = host.addPty(options);
    SerialClient client(controller.path());
    QVERIFY(client.isOpen());

    QCOMPARE(client.exchange("GID;", idBytes), controller.idReply());
    client.send(startAt(100, vm ? "SGS" : "SLS"));
    for (int packet = 0; packet < 5; ++packet)
        QCOMPARE(client.read(packetBytes).left(2), accepted());
    client.send("CLS;");
    waitUntilHeard(controller);
    QVERIFY(client.readUntilQuiet().endsWith(accepted()));
    QVERIFY(!controller.isStreaming());
    QCOMPARE(client.exchange(statusRequest, statusBytes), hex(bothOff));
}

void TestPty::bytesAtTheSameRateAreUnchanged()
{
    QCOMPARE(heardAt(115200, statusRequest, 115200), QByteArray(statusRequest));
}

void TestPty::bytesAtAnotherRateAreTheSameGarbageEachTime()
{
    QByteArray all;
    for (int byte = 0; byte < 256; ++byte)
        all.append(static_cast<char>(byte));

    const QByteArray garbage = heardAt(115200, all, 921600);

    QCOMPARE(garbage.size(), all.size());
    QCOMPARE(heardAt(115200, all, 921600), garbage);
    // Neither letters nor marks of a frame.
    for (const char byte : garbage)
        QVERIFY(static_cast<quint8>(byte) >= 0x80);
    QVERIFY(garbage.count(garbage[0]) < garbage.size() / 4);
}

void TestPty::otherRateIsGarbageBothWays_data()
{
    QTest::addColumn<int>("own");
    QTest::addColumn<int>("hosts");

    QTest::newRow("115200, 921600") << 115200 << 921600;
    QTest::newRow("921600, 115200") << 921600 << 115200;
    QTest::newRow("460800, 115200") << 460800 << 115200;
    QTest::newRow("115200, 9600") << 115200 << 9600;
}

void TestPty::otherRateIsGarbageBothWays()
{
    QFETCH(int, own);
    QFETCH(int, hosts);
    ControllerOptions options;
    options.baudRate = own;
    EmulatorHost host;
    ControllerHandle controller = host.addPty(options);
    SerialClient client(controller.path(), hosts);

    client.send(statusRequest);
    waitUntilHeard(controller);
    QVERIFY(!client.readUntilQuiet().contains(accepted()));
    QCOMPARE(controller.commands(), QByteArrayList());
    QVERIFY(!controller.wire().isEmpty());

    const QByteArray said = "a message of some length";
    controller.sendRaw(said);
    const QByteArray heard = client.readUntilQuiet();
    QCOMPARE(heard.size(), said.size());
    QVERIFY(heard != said);

    client.setBaudRate(own);
    QCOMPARE(client.exchange(statusRequest, statusBytes), hex(bothOff));
}

void TestPty::baudRateChangesBehindTheAcknowledgment_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("after");

    QTest::newRow("code 1") << 921600 << 1 << 115200;
    QTest::newRow("code 4") << 115200 << 4 << 460800;
    QTest::newRow("code 9") << 115200 << 9 << 921600;
    QTest::newRow("same rate") << 115200 << 1 << 115200;
}

void TestPty::baudRateChangesBehindTheAcknowledgment()
{
    QFETCH(int, before);
    QFETCH(int, code);
    QFETCH(int, after);
    ControllerOptions options;
    options.baudRate = before;
    EmulatorHost host;
    const ControllerHandle controller = host.addPty(options);
    SerialClient client(controller.path(), before);
    QCOMPARE(controller.baudRate(), before);

    QCOMPARE(client.exchange(baudRateCommand(code), 2), accepted());

    QCOMPARE(controller.baudRate(), after);
    client.send(statusRequest);
    waitUntilHeard(controller);
    QCOMPARE(client.readUntilQuiet() == hex(bothOff), before == after);
    client.setBaudRate(after);
    QCOMPARE(client.exchange(statusRequest, statusBytes), hex(bothOff));
}

void TestPty::unknownBaudRateCodeChangesNothing()
{
    EmulatorHost host;
    const ControllerHandle controller = host.addPty();
    SerialClient client(controller.path());

    QCOMPARE(client.exchange(baudRateCommand(2), 2), refused());

    QCOMPARE(controller.baudRate(), 115200);
    QCOMPARE(client.exchange(statusRequest, statusBytes), hex(bothOff));
}

void TestPty::flowControlHasToAgree_data()
{
    QTest::addColumn<bool>("own");
    QTest::addColumn<bool>("hosts");

    QTest::newRow("on, on") << true << true;
    QTest::newRow("on, off") << true << false;
    QTest::newRow("off, on") << false << true;
    QTest::newRow("off, off") << false << false;
}

void TestPty::flowControlHasToAgree()
{
    QFETCH(bool, own);
    QFETCH(bool, hosts);
    ControllerOptions options;
    options.hardwareFlowControl = own;
    EmulatorHost host;
    ControllerHandle controller = host.addPty(options);
    SerialClient client(controller.path(), 115200, hosts);

    client.send(statusRequest);
    waitUntilHeard(controller);
    const QByteArray reply = client.readUntilQuiet();
    controller.sendRaw("hello");
    const QByteArray greeting = client.readUntilQuiet();

    const bool agree = own == hosts;
    QCOMPARE(reply, agree ? hex(bothOff) : QByteArray());
    QCOMPARE(greeting, agree ? QByteArray("hello") : QByteArray());
    QCOMPARE(controller.commands().size(), agree ? 1 : 0);
}

void TestPty::searchFindsAControllerAtItsOwnSettingsOnly_data()
{
    QTest::addColumn<int>("baudRate");
    QTest::addColumn<bool>("flowControl");

    for (const int baudRate : {115200, 460800, 921600}) {
        for (const bool flowControl : {true, false})
            QTest::addRow("%d, %d", baudRate, flowControl) << baudRate << flowControl;
    }
}

void TestPty::searchFindsAControllerAtItsOwnSettingsOnly()
{
    QFETCH(int, baudRate);
    QFETCH(bool, flowControl);
    ControllerOptions options;
    options.baudRate = baudRate;
    options.hardwareFlowControl = flowControl;
    EmulatorHost host;
    const ControllerHandle controller = host.addPty(options);

    for (const int tried : {115200, 921600, 460800}) {
        for (const bool triedFlowControl : {true, false}) {
            SerialClient client(controller.path(), tried, triedFlowControl);
            client.send("CLS;");
            waitUntilHeard(controller);
            client.readUntilQuiet(50);
            client.send("GID;");
            waitUntilHeard(controller);
            const bool found = client.readUntilQuiet(50) == controller.idReply();
            QCOMPARE(found, tried == baudRate && triedFlowControl == flowControl);
        }
    }
    QCOMPARE(controller.commands(), QByteArrayList({"CLS;", "GID;"}));
}

void TestPty::reopenedPortFindsTheControllerAsItWas()
{
    EmulatorHost host;
    const ControllerHandle controller = host.addPty();
    const QByteArray label = QByteArray("north bench").leftJustified(25, ' ');
    {
        SerialClient client(controller.path());
        QCOMPARE(client.exchange("SLA" + label + ';', 2), accepted());
        QCOMPARE(client.exchange("SEA" + hex("01 3b"), 2), accepted());
        QCOMPARE(client.exchange(baudRateCommand(9), 2), accepted());
    }
    QTRY_VERIFY(!controller.isConnected());

    SerialClient client(controller.path(), 921600);

    QCOMPARE(client.exchange("GLA;", 29), accepted() + label + accepted());
    QVERIFY(controller.stageOn(1));
    QCOMPARE(client.exchange("GID;", idBytes), controller.idReply());
}

void TestPty::halfACommandMayComeThroughAReopenedPort()
{
    EmulatorHost host;
    const ControllerHandle controller = host.addPty();
    {
        SerialClient client(controller.path());
        client.send("GS");
    }
    QTRY_VERIFY(!controller.isConnected());

    SerialClient client(controller.path());

    QCOMPARE(client.exchange("F;", statusBytes), hex(bothOff));
}

void TestPty::lastWordBeforeClosingIsHeardAtTheRateOfTheDialogue()
{
    EmulatorHost host;
    ControllerHandle controller = host.addPty();
    {
        SerialClient client(controller.path());
        QCOMPARE(client.exchange(baudRateCommand(9), 2), accepted());
        client.setBaudRate(921600);
        QCOMPARE(client.exchange(statusRequest, statusBytes), hex(bothOff));
        controller.pause(true);
        client.send("SEA" + hex("01 3b"));
        // Closing puts the port back to the settings that were found, here the first rate.
    }

    controller.pause(false);

    QTRY_VERIFY(controller.stageOn(1));
}

void TestPty::lastWordAtAnotherRateStaysGarbage()
{
    EmulatorHost host;
    ControllerHandle controller = host.addPty();
    {
        SerialClient client(controller.path(), 921600);
        client.send("x");
        QTRY_VERIFY(!controller.wire().isEmpty());
        controller.pause(true);
        client.send("SEA" + hex("01 3b"));
    }
    controller.clearWire();

    controller.pause(false);

    QTRY_VERIFY(!controller.wire().isEmpty());
    QCOMPARE(controller.commands(), QByteArrayList());
    QVERIFY(!controller.stageOn(1));
}

void TestPty::hostIsSeenWhileItHasThePortOpen()
{
    EmulatorHost host;
    const ControllerHandle controller = host.addPty();
    QVERIFY(!controller.isConnected());
    {
        const SerialClient client(controller.path());
        QVERIFY(controller.isConnected());
    }
    QVERIFY(!controller.isConnected());
}

void TestPty::pausedControllerNeitherReadsNorSends()
{
    EmulatorHost host;
    ControllerHandle controller = host.addPty();
    SerialClient client(controller.path());
    QVERIFY(isFramed(client.exchange(startAt(200), packetBytes)));

    controller.pause(true);
    client.readUntilQuiet(50);
    client.send("CLS;");
    QCOMPARE(client.readUntilQuiet(), QByteArray());
    QVERIFY(controller.isStreaming());

    controller.pause(false);
    waitUntilHeard(controller);
    QVERIFY(client.readUntilQuiet().endsWith(accepted()));
    QVERIFY(!controller.isStreaming());
}

void TestPty::anotherControllerBringsItsOwnRate()
{
    EmulatorHost host;
    ControllerHandle controller = host.addPty();
    SerialClient client(controller.path());
    QCOMPARE(client.exchange(statusRequest, statusBytes), hex(bothOff));

    ControllerOptions other;
    other.baudRate = 921600;
    other.hardwareFlowControl = false;
    controller.setIdentity(other);

    QCOMPARE(controller.baudRate(), 921600);
    client.setBaudRate(921600);
    client.port.setFlowControl(QSerialPort::NoFlowControl);
    QCOMPARE(client.exchange("GID;", idBytes), controller.idReply());
}

void TestPty::controllersSpeakForThemselves()
{
    ControllerOptions fast;
    fast.baudRate = 921600;
    EmulatorHost host;
    const ControllerHandle first = host.addPty();
    const ControllerHandle second = host.addPty(fast);
    const ControllerHandle third = host.addTcp();
    QVERIFY(first.path() != second.path());
    SerialClient firstClient(first.path());
    SerialClient secondClient(second.path(), 921600);

    QCOMPARE(firstClient.exchange("GID;", idBytes), first.idReply());
    QCOMPARE(secondClient.exchange("GID;", idBytes), second.idReply());
    QCOMPARE(QSet<QByteArray>({first.key(), second.key(), third.key()}).size(), 3);
    QCOMPARE(firstClient.exchange("SEA" + hex("02 3b"), 2), accepted());
    QVERIFY(first.stageOn(2));
    QVERIFY(!second.stageOn(2));
    QCOMPARE(second.commands(), QByteArrayList({"GID;"}));
}

void TestPty::tcpControllerHasNoPath()
{
    EmulatorHost host;
    const ControllerHandle tcp = host.addTcp();
    const ControllerHandle pty = host.addPty();

    QCOMPARE(tcp.path(), QString());
    QCOMPARE(tcp.baudRate(), 115200);
    QCOMPARE(pty.address(), QString());
    QCOMPARE(int(pty.port()), 0);
    QVERIFY(pty.path().startsWith("/dev/pts/"));
}

QTEST_GUILESS_MAIN(TestPty)
#include "tst_pty.moc"
