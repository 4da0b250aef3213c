#include "barehost.h"
#include "emulator/emulatorhost.h"
#include "emulator/tcpface.h"
#include "hostclient.h"
#include "wiretools.h"

#include <QSignalSpy>
#include <QtTest>

using namespace emulator;
using namespace wiretools;

namespace {

/// More than the sockets of both ends keep.
constexpr int floodBytes = 32 * 1024 * 1024;
const QByteArray stageOneOn = "SEA" + hex("01 3b");
const QByteArray fastestBaudRate = "SBR" + hex("09 3b");

} // namespace

class TestTcpFace final : public QObject
{
    Q_OBJECT

private slots:
    void hostThatDoesNotReadIsClosedAllTheSame();
    void closedHostIsNotObeyed();
    void everyPacketThatCountsAsSentArrives();
    void halfClosedLinkStillListens();
    void halfCloseLeavesAStreamsLinkOpen();
    void halfCloseComesBehindWhatWasWritten();
    void anotherBaudRateIsNotUnderstoodBehindTheAdapter();
    void presentBaudRateIsUnderstoodOn();
    void streamAtAnotherBaudRateIsGarbage();
    void restartBringsTheBaudRateBack();
    void anotherControllerSpeaksAtItsOwnBaudRate();
};

void TestTcpFace::hostThatDoesNotReadIsClosedAllTheSame()
{
    TcpFace face({});
    QVERIFY(face.listen(QHostAddress::LocalHost, 0));
    QSignalSpy came(&face, &Face::hostConnected);
    QSignalSpy went(&face, &Face::hostDisconnected);
    BareHost host(face.port());
    QTRY_COMPARE(came.size(), 1);

    face.controller().sendRaw(QByteArray(floodBytes, 'x'));
    face.closeConnection();

    QTRY_COMPARE(went.size(), 1);
    BareHost next(face.port());
    QTRY_COMPARE(came.size(), 2);
    QVERIFY(face.isConnected());
}

void TestTcpFace::closedHostIsNotObeyed()
{
    TcpFace face({});
    QVERIFY(face.listen(QHostAddress::LocalHost, 0));
    QSignalSpy went(&face, &Face::hostDisconnected);
    const Device& device = face.controller().device();
    BareHost host(face.port());
    host.send(startAt(100));
    QTRY_VERIFY(device.isStreaming());

    face.controller().sendRaw(QByteArray(floodBytes, 'x'));
    face.closeConnection();
    QVERIFY(!device.isStreaming());
    host.send(stageOneOn);

    QTRY_COMPARE(went.size(), 1);
    QVERIFY(!device.stageOn(1));
}

void TestTcpFace::everyPacketThatCountsAsSentArrives()
{
    constexpr int strayBytes = 16384;
    ControllerOptions options;
    options.faults.insertBytesEvery = 1;
    options.faults.insertCount = strayBytes;
    EmulatorHost emulator;
    const ControllerHandle controller = emulator.addTcp(options);
    BareHost host(controller.port());

    host.send(startAt(1000));
    QTRY_VERIFY_WITH_TIMEOUT(controller.packetsLost() >= 20, 30000);
    host.send("CLS;");
    QTRY_VERIFY(!controller.isStreaming());

    const auto expected = int(controller.packetsSent()) * (strayBytes + packetBytes);
    QCOMPARE(host.read(expected).size(), expected);
    QCOMPARE(host.read(2), accepted());
}

void TestTcpFace::halfClosedLinkStillListens()
{
    ControllerOptions options;
    options.faults.halfCloseOn = {"GSF"};
    EmulatorHost emulator;
    const ControllerHandle controller = emulator.addTcp(options);
    BareHost host(controller.port());

    host.send("GSF;");
    QVERIFY(host.readsToTheEnd());
    host.send("GAS;");

    QTRY_COMPARE(controller.commands(), QByteArrayList({"GSF;", "GAS;"}));
    QVERIFY(controller.isConnected());
}

void TestTcpFace::halfCloseLeavesAStreamsLinkOpen()
{
    EmulatorHost emulator;
    ControllerHandle controller = emulator.addTcp();
    BareHost host(controller.port());
    host.send(startAt(1000));
    QCOMPARE(host.read(10 * packetBytes).size(), 10 * packetBytes);

    controller.halfCloseConnection();
    const qint64 sent = controller.packetsSent();
    QVERIFY(host.readsToTheEnd());
    QTRY_VERIFY(controller.packetsLost() >= 50);
    host.send(stageOneOn);

    QTRY_VERIFY(controller.stageOn(1));
    QVERIFY(controller.isConnected());
    QVERIFY(controller.isStreaming());
    QCOMPARE(controller.packetsSent(), sent);
}

void TestTcpFace::halfCloseComesBehindWhatWasWritten()
{
    EmulatorHost emulator;
    ControllerHandle controller = emulator.addTcp();
    BareHost host(controller.port());
    host.send("SHS;");
    QCOMPARE(host.read(2), accepted());

    controller.sendRaw(QByteArray(floodBytes, 'x'));
    controller.halfCloseConnection();
    controller.sendRaw("too late");

    QCOMPARE(host.read(floodBytes).size(), floodBytes);
    QVERIFY(host.readsToTheEnd());
    QVERIFY(controller.isConnected());
}

void TestTcpFace::anotherBaudRateIsNotUnderstoodBehindTheAdapter()
{
    EmulatorHost emulator;
    ControllerHandle controller = emulator.addTcp();
    HostClient host(controller);

    QCOMPARE(host.exchange(fastestBaudRate, 2), accepted());
    host.send(stageOneOn);
    QTRY_VERIFY(controller.wire().size() > 2);
    controller.sendRaw("GSF;");

    QCOMPARE(controller.baudRate(), 921600);
    QVERIFY(!controller.stageOn(1));
    QVERIFY(!controller.commands().contains(stageOneOn));
    const QByteArray heard = host.readUntilQuiet();
    QVERIFY(heard.size() >= 4);
    QVERIFY(std::all_of(heard.begin(), heard.end(), [](char byte) { return (byte & 0x80) != 0; }));
}

void TestTcpFace::presentBaudRateIsUnderstoodOn()
{
    ControllerOptions options;
    options.baudRate = 921600;
    EmulatorHost emulator;
    const ControllerHandle controller = emulator.addTcp(options);
    HostClient host(controller);

    QCOMPARE(host.exchange(fastestBaudRate, 2), accepted());
    QCOMPARE(host.exchange("GID;", 50), controller.idReply());
}

void TestTcpFace::streamAtAnotherBaudRateIsGarbage()
{
    EmulatorHost emulator;
    const ControllerHandle controller = emulator.addTcp();
    HostClient host(controller);
    QVERIFY(isFramed(host.exchange(startAt(200), packetBytes)));

    host.send(fastestBaudRate);

    // Every packet and every reply that is understood has this mark.
    QTRY_VERIFY(!host.read(packetBytes).contains(';'));
    QVERIFY(!host.read(4 * packetBytes).contains(';'));
    QVERIFY(controller.isStreaming());
}

void TestTcpFace::restartBringsTheBaudRateBack()
{
    EmulatorHost emulator;
    ControllerHandle controller = emulator.addTcp();
    {
        HostClient host(controller);
        QCOMPARE(host.exchange(fastestBaudRate, 2), accepted());
    }

    controller.stopListening();
    controller.listenAgain();

    QCOMPARE(controller.baudRate(), 115200);
    HostClient host(controller);
    QCOMPARE(host.exchange("GID;", 50), controller.idReply());
}

void TestTcpFace::anotherControllerSpeaksAtItsOwnBaudRate()
{
    ControllerOptions fast;
    fast.baudRate = 921600;
    EmulatorHost emulator;
    ControllerHandle controller = emulator.addTcp();
    HostClient host(controller);
    QCOMPARE(host.exchange(fastestBaudRate, 2), accepted());

    controller.setIdentity(fast);

    QCOMPARE(host.exchange("GID;", 50), controller.idReply());
}

QTEST_GUILESS_MAIN(TestTcpFace)
#include "tst_tcpface.moc"
