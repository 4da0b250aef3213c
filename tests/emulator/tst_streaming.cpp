#include "emulator/emulatorhost.h"
#include "hostclient.h"
#include "wiretools.h"

#include <QtTest>

using namespace emulator;
using namespace wiretools;

namespace {

quint8 flagsA(const QByteArray& packet)
{
    return static_cast<quint8>(packet[2]);
}

} // namespace

class TestStreaming final : public QObject
{
    Q_OBJECT

private slots:
    void startIsAnsweredByTheFirstPacket();
    void packetsComeWholeAndInOrder_data();
    void packetsComeWholeAndInOrder();
    void rateIsKeptOnAverage_data();
    void rateIsKeptOnAverage();
    void scriptEndsInSilence();
    void scriptThatRepeatsGoesRound();
    void everyStartBeginsTheScriptAnew();
    void newScriptTakesOverTheRunningStream();
    void stopOfNewFirmwareEndsWithAMarkedPacket();
    void stopOfOldFirmwareIsBare();
    void stopWithoutStreamIsBare_data();
    void stopWithoutStreamIsBare();
    void oldFirmwareLeavesFlagBytesAtRest();
    void flagsOfScriptedPacketsFollowTheStages();
    void secondFlagByteTellsMultiplexAndBit2();
    void triggeredStreamStartsBareAndFollowsThePulses();
    void triggeredStreamWithoutPulsesIsSilent();
    void streamMayBeRestartedAtAnotherRate();
    void streamEndsWithItsConnection();
    void pausedControllerIsSilentAndGoesOn();
    void pauseIsNotMadeUpFor();
    void hundredControllersStreamAtOnce();
};

void TestStreaming::startIsAnsweredByTheFirstPacket()
{
    ControllerOptions options;
    options.script = countingScript(1);
    EmulatorHost host;
    const ControllerHandle controller = host.addTcp(options);
    HostClient client(controller);

    const QByteArray packet = client.exchange(startAt(500), packetBytes);

    QCOMPARE(packet, hex("003b 00 00 0001 ffff 9c41 0000 0000 0000 0000 0000 0000 0000 3b"));
    QVERIFY(controller.isStreaming());
    QCOMPARE(controller.streamRate(), 500);
    QCOMPARE(controller.packetsSent(), 1);
}

void TestStreaming::packetsComeWholeAndInOrder_data()
{
    QTest::addColumn<int>("rate");

    QTest::newRow("10 per second") << 10;
    QTest::newRow("300 per second") << 300;
    QTest::newRow("1000 per second") << 1000;
}

void TestStreaming::packetsComeWholeAndInOrder()
{
    QFETCH(int, rate);
    const int count = qMax(10, rate / 4);
    ControllerOptions options;
    options.script = countingScript(count);
    EmulatorHost host;
    const ControllerHandle controller = host.addTcp(options);
    HostClient client(controller);

    client.send(startAt(rate));
    for (int i = 1; i <= count; ++i) {
        const QByteArray packet = client.read(packetBytes);
        QVERIFY(isFramed(packet));
        QCOMPARE(wordAt(packet, 4), i);
        QCOMPARE(wordAt(packet, 6), -i);
    }
    QCOMPARE(controller.packetsSent(), count);
}

void TestStreaming::rateIsKeptOnAverage_data()
{
    QTest::addColumn<int>("rate");

    QTest::newRow("no multiple of the wake-ups") << 333;
    QTest::newRow("500 per second") << 500;
    QTest::newRow("1000 per second") << 1000;
}

void TestStreaming::rateIsKeptOnAverage()
{
    // A busy test machine makes packets late. It can not add any, so that no more may ever be there
    // than were due; and once the emulator gets its turn, nothing is missing.
    QFETCH(int, rate);
    EmulatorHost host;
    const ControllerHandle controller = host.addTcp();
    HostClient client(controller);
    QElapsedTimer sinceStart;
    // The first packet stands at the start itself.
    const auto due = [&] {
        return 1.0 + static_cast<double>(sinceStart.nsecsElapsed()) * 1e-9 * rate;
    };
    const auto accounted = [&] {
        client.socket.readAll();
        return static_cast<double>(controller.packetsSent() + controller.packetsLost());
    };

    sinceStart.start();
    client.send(startAt(rate));
    QVERIFY(client.socket.waitForReadyRead());
    const double second = rate;
    QTRY_VERIFY(accounted() >= second);
    const double there = accounted();
    QVERIFY2(there <= due(), qPrintable(QString("%1 sent, %2 due").arg(there).arg(due())));
    // A rate that is wrong by as little as this would leave more behind with every second.
    const double tolerance = 0.02 * second;
    QTRY_VERIFY([&] {
        const double wanted = due() - tolerance;
        return accounted() >= wanted;
    }());
}

void TestStreaming::scriptEndsInSilence()
{
    ControllerOptions options;
    options.script = countingScript(3);
    EmulatorHost host;
    const ControllerHandle controller = host.addTcp(options);
    HostClient client(controller);

    QCOMPARE(client.exchange(startAt(1000), 3 * packetBytes).size(), 3 * packetBytes);
    QCOMPARE(client.readUntilQuiet(), QByteArray());
    QVERIFY(controller.isStreaming());
    // The end mark needs a packet to stand in: the last sample comes once more.
    const QByteArray end = client.exchange("CLS;", packetBytes + 2);
    QCOMPARE(wordAt(end, 4), 3);
    QCOMPARE(flagsA(end), quint8(0x80));
    QCOMPARE(end.right(2), accepted());
}

void TestStreaming::scriptThatRepeatsGoesRound()
{
    ControllerOptions options;
    options.script = countingScript(2);
    options.scriptRepeats = true;
    EmulatorHost host;
    HostClient client(host.addTcp(options));

    const QByteArray packets = client.exchange(startAt(1000), 5 * packetBytes);
    QCOMPARE(packets.size(), 5 * packetBytes);
    for (int i = 0; i < 5; ++i)
        QCOMPARE(wordAt(packets, i * packetBytes + 4), 1 + i % 2);
}

void TestStreaming::everyStartBeginsTheScriptAnew()
{
    ControllerOptions options;
    options.script = countingScript(100);
    EmulatorHost host;
    HostClient client(host.addTcp(options));

    QCOMPARE(wordAt(client.exchange(startAt(1000), 2 * packetBytes), packetBytes + 4), 2);
    client.send("CLS;");
    client.readUntilQuiet();
    QCOMPARE(wordAt(client.exchange(startAt(1000), packetBytes), 4), 1);
}

void TestStreaming::newScriptTakesOverTheRunningStream()
{
    ControllerOptions options;
    options.script = countingScript(1);
    EmulatorHost host;
    ControllerHandle controller = host.addTcp(options);
    HostClient client(controller);
    client.exchange(startAt(1000), packetBytes);

    PacketValues values;
    values[1].y = 321;
    controller.setScript({values});

    QCOMPARE(wordAt(client.read(packetBytes), 12), 321);
}

void TestStreaming::stopOfNewFirmwareEndsWithAMarkedPacket()
{
    ControllerOptions options;
    options.firmware = 11;
    EmulatorHost host;
    const ControllerHandle controller = host.addTcp(options);
    HostClient client(controller);
    client.exchange(startAt(100), 3 * packetBytes);

    client.send("CLS;");
    const QByteArray rest = client.readUntilQuiet();

    QCOMPARE(rest.size() % packetBytes, 2);
    QCOMPARE(rest.right(2), accepted());
    for (int place = 0; place + packetBytes < rest.size(); place += packetBytes) {
        const QByteArray packet = rest.mid(place, packetBytes);
        QVERIFY(isFramed(packet));
        QCOMPARE((flagsA(packet) & 0x80) != 0, place + packetBytes + 2 == rest.size());
    }
    QVERIFY(!controller.isStreaming());
    const QVector<WireEvent> wire = controller.wire();
    QCOMPARE(wire[wire.size() - 2].bytes.size(), packetBytes);
    QCOMPARE(wire.last().bytes, accepted());
}

void TestStreaming::stopOfOldFirmwareIsBare()
{
    ControllerOptions options;
    options.firmware = 10;
    options.script = countingScript(2);
    EmulatorHost host;
    const ControllerHandle controller = host.addTcp(options);
    HostClient client(controller);
    client.exchange(startAt(1000), 2 * packetBytes);

    client.send("CLS;");

    QCOMPARE(client.readUntilQuiet(), accepted());
    QVERIFY(!controller.isStreaming());
}

void TestStreaming::stopWithoutStreamIsBare_data()
{
    QTest::addColumn<int>("firmware");

    QTest::newRow("old") << 10;
    QTest::newRow("new") << 40;
}

void TestStreaming::stopWithoutStreamIsBare()
{
    QFETCH(int, firmware);
    ControllerOptions options;
    options.firmware = firmware;
    EmulatorHost host;
    HostClient client(host.addTcp(options));

    client.send("CLS;");

    QCOMPARE(client.readUntilQuiet(), accepted());
}

void TestStreaming::oldFirmwareLeavesFlagBytesAtRest()
{
    ControllerOptions options;
    options.firmware = 10;
    EmulatorHost host;
    HostClient client(host.addTcp(options));

    client.exchange("SEA" + hex("01 3b"), 2);

    QCOMPARE(client.exchange("S1S;", packetBytes).mid(2, 2), hex("ffff"));
    QCOMPARE(client.exchange("GSF;", 4).mid(2, 1), hex("29"));
}

void TestStreaming::flagsOfScriptedPacketsFollowTheStages()
{
    ControllerOptions options;
    options.script = countingScript(1);
    options.scriptRepeats = true;
    EmulatorHost host;
    ControllerHandle controller = host.addTcp(options);
    HostClient client(controller);

    QCOMPARE(flagsA(client.exchange("S1S;", packetBytes)), quint8(0x00));
    controller.setStage(2, true);
    QCOMPARE(flagsA(client.exchange("S1S;", packetBytes)), quint8(0x50));
    client.exchange("SEA" + hex("01 3b"), 2);
    QCOMPARE(flagsA(client.exchange(startAt(100), packetBytes)), quint8(0x78));
}

void TestStreaming::secondFlagByteTellsMultiplexAndBit2()
{
    ControllerOptions options;
    options.stages[1].multiplexed = true;
    options.flagBBit2 = true;
    EmulatorHost host;
    HostClient client(host.addTcp(options));

    QCOMPARE(client.exchange("S1S;", packetBytes).mid(3, 1), hex("06"));
}

void TestStreaming::triggeredStreamStartsBareAndFollowsThePulses()
{
    ControllerOptions options;
    options.triggerCapable = true;
    options.triggerRateHz = 50;
    options.script = countingScript(5);
    EmulatorHost host;
    const ControllerHandle controller = host.addTcp(options);
    HostClient client(controller);

    QCOMPARE(client.exchange("SPS" + hex("0000 3b"), 2), accepted());
    const QByteArray packets = client.read(5 * packetBytes);
    QCOMPARE(packets.size(), 5 * packetBytes);
    QCOMPARE(wordAt(packets, 4), 1);
    QCOMPARE(wordAt(packets, 4 * packetBytes + 4), 5);
    const QVector<WireEvent> wire = controller.wire();
    QVERIFY(wire.last().timeNs - wire[1].timeNs >= 5 * 1000000000LL / 50);
}

void TestStreaming::triggeredStreamWithoutPulsesIsSilent()
{
    ControllerOptions options;
    options.triggerCapable = true;
    options.triggerRateHz = 0;
    EmulatorHost host;
    const ControllerHandle controller = host.addTcp(options);
    HostClient client(controller);

    client.send("SPS" + hex("0000 3b"));

    QCOMPARE(client.readUntilQuiet(), accepted());
    QVERIFY(controller.isStreaming());
    const QByteArray end = client.exchange("CLS;", packetBytes + 2);
    QCOMPARE(flagsA(end), quint8(0x80));
}

void TestStreaming::streamMayBeRestartedAtAnotherRate()
{
    EmulatorHost host;
    const ControllerHandle controller = host.addTcp();
    HostClient client(controller);
    client.exchange(startAt(10), packetBytes);

    client.send(startAt(500));

    QTRY_COMPARE(controller.streamRate(), 500);
    QCOMPARE(client.read(20 * packetBytes).size(), 20 * packetBytes);
}

void TestStreaming::streamEndsWithItsConnection()
{
    EmulatorHost host;
    const ControllerHandle controller = host.addTcp();
    {
        HostClient client(controller);
        client.exchange(startAt(500), 10 * packetBytes);
    }
    QTRY_VERIFY(!controller.isConnected());
    QVERIFY(!controller.isStreaming());
    const qint64 sent = controller.packetsSent();
    HostClient next(controller);
    QCOMPARE(next.exchange("GSF;", 4).size(), 4);
    QCOMPARE(controller.packetsSent(), sent);
}

void TestStreaming::pausedControllerIsSilentAndGoesOn()
{
    ControllerOptions options;
    options.script = countingScript(1000);
    EmulatorHost host;
    ControllerHandle controller = host.addTcp(options);
    HostClient client(controller);
    client.exchange(startAt(500), 10 * packetBytes);

    controller.pause(true);
    const qint64 sent = controller.packetsSent();
    client.send("GSF;");
    client.readUntilQuiet();
    QVERIFY(client.isConnected());
    QCOMPARE(controller.packetsSent(), sent);
    QVERIFY(controller.commands().last().startsWith("SLS"));

    controller.pause(false);
    QTRY_VERIFY(controller.packetsSent() > sent + 5);
    QCOMPARE(controller.commands().last(), QByteArray("GSF;"));
}

void TestStreaming::pauseIsNotMadeUpFor()
{
    // Of the 400 packets that were due during the pause none comes, while a busy test machine may
    // make some of those behind it come late, and all at once.
    ControllerOptions options;
    options.script = countingScript(5000);
    EmulatorHost host;
    ControllerHandle controller = host.addTcp(options);
    HostClient client(controller);
    client.exchange(startAt(1000), packetBytes);
    controller.pause(true);
    client.readUntilQuiet(400);
    controller.clearWire();
    controller.pause(false);
    QTRY_VERIFY(controller.wire().size() >= 300);

    const QVector<WireEvent> wire = controller.wire();
    for (int i = 1; i < wire.size(); ++i) {
        const double elapsed = static_cast<double>(wire[i].timeNs - wire[0].timeNs) * 1e-9;
        constexpr double latePackets = 150;
        QVERIFY(i <= elapsed * 1000 + latePackets);
    }
}

void TestStreaming::hundredControllersStreamAtOnce()
{
    // What is shown is that none is forgotten and that each host gets its own controller's packets.
    // The rate is low and no beam is computed, so that every machine keeps up; what it takes to
    // compute many beams is measured by the benchmarks.
    constexpr int samples = 20;
    EmulatorHost host;
    std::vector<std::unique_ptr<HostClient>> clients;
    for (int number = 0; number < 100; ++number) {
        ControllerOptions options;
        options.script = countingScript(samples);
        for (PacketValues& values : options.script)
            values[1].x = static_cast<qint16>(number);
        clients.push_back(std::make_unique<HostClient>(host.addTcp(options)));
        clients.back()->send(startAt(50));
    }
    for (std::size_t number = 0; number < clients.size(); ++number) {
        const QByteArray packets = clients[number]->read(samples * packetBytes);
        QCOMPARE(packets.size(), samples * packetBytes);
        for (int packet = 0; packet < samples; ++packet) {
            QCOMPARE(wordAt(packets, packet * packetBytes + 4), packet + 1);
            QCOMPARE(wordAt(packets, packet * packetBytes + 10), static_cast<int>(number));
        }
    }
}

QTEST_GUILESS_MAIN(TestStreaming)
#include "tst_streaming.moc"
