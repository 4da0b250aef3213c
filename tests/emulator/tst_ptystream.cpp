#include "emulator/emulatorhost.h"
#include "serialclient.h"
#include "support/pseudoterminals.h"
#include "wiretools.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

using namespace emulator;
using namespace wiretools;

namespace {

/// Number of the sample in a packet of the counting script, -1 if it is no packet.
int sampleNumber(const QByteArray& packet)
{
    return isFramed(packet) ? wordAt(packet, 4) : -1;
}

int framedPackets(const QByteArray& bytes)
{
    int framed = 0;
    for (int start = 0; start + packetBytes <= bytes.size(); ++start)
        framed += isFramed(bytes.mid(start, packetBytes)) ? 1 : 0;
    return framed;
}

/// A host that has the port open and does not read unless it is told to.
class IdleHost final
{
public:
    explicit IdleHost(const QString& path)
        : port(::open(path.toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_NONBLOCK))
    {
        termios settings{};
        tcgetattr(port, &settings);
        cfmakeraw(&settings);
        cfsetspeed(&settings, B115200);
        settings.c_cflag |= CRTSCTS;
        tcsetattr(port, TCSANOW, &settings);
    }
    ~IdleHost() { ::close(port); }
    IdleHost(const IdleHost&) = delete;
    IdleHost& operator=(const IdleHost&) = delete;

    void send(const QByteArray& bytes)
    {
        QCOMPARE(::write(port, bytes.constData(), static_cast<size_t>(bytes.size())),
                 ssize_t(bytes.size()));
    }
    bool isHungUp() const
    {
        pollfd state{};
        state.fd = port;
        constexpr int noWaitMs = 0;
        return ::poll(&state, 1, noWaitMs) > 0 && (state.revents & POLLHUP) != 0;
    }
    QByteArray readUntilQuiet()
    {
        QByteArray bytes;
        QByteArray piece(4096, '\0');
        constexpr int mostQuietTurns = 10;
        for (int quietTurns = 0; quietTurns < mostQuietTurns; ++quietTurns) {
            ssize_t count = 0;
            while ((count = ::read(port, piece.data(), static_cast<size_t>(piece.size()))) > 0) {
                bytes.append(piece.constData(), static_cast<int>(count));
                quietTurns = 0;
            }
            QTest::qWait(10);
        }
        return bytes;
    }

private:
    const int port;
};

} // namespace

class TestPtyStream final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void streamAtAnotherRateShowsNoPacket();
    void streamIsNotHeardWithTheOtherFlowControl();
    void streamGoesOnWhileThePortIsClosed();
    void whatAHostDidNotReadIsLostWhenItCloses();
    void streamOf500PerSecondArrivesWhole();
    void wholePacketsAreLostWhileTheHostDoesNotRead();
    void longMessageTricklesThroughTheTerminal();
    void hostMayEndDuringAStream();
};

void TestPtyStream::initTestCase()
{
    if (!pseudoTerminalProblem().isEmpty())
        QSKIP(qPrintable(pseudoTerminalProblem()));
}

void TestPtyStream::streamAtAnotherRateShowsNoPacket()
{
    EmulatorHost host;
    const ControllerHandle controller = host.addPty();
    SerialClient client(controller.path());
    QVERIFY(isFramed(client.exchange(startAt(500), packetBytes)));
    QVERIFY(framedPackets(client.read(10 * packetBytes)) >= 5);

    client.setBaudRate(921600);
    client.read(static_cast<int>(client.port.bytesAvailable()) + 2 * packetBytes);
    const QByteArray heard = client.read(20 * packetBytes);

    QCOMPARE(heard.size(), 20 * packetBytes);
    QCOMPARE(framedPackets(heard), 0);
    QVERIFY(controller.isStreaming());
}

void TestPtyStream::streamIsNotHeardWithTheOtherFlowControl()
{
    EmulatorHost host;
    const ControllerHandle controller = host.addPty();
    SerialClient client(controller.path());
    QVERIFY(isFramed(client.exchange(startAt(500), packetBytes)));

    client.port.setFlowControl(QSerialPort::NoFlowControl);
    const qint64 lost = controller.packetsLost();
    client.readUntilQuiet(50);
    QTRY_VERIFY(controller.packetsLost() >= lost + 20);
    QCOMPARE(client.readUntilQuiet(50), QByteArray());

    client.port.setFlowControl(QSerialPort::HardwareControl);
    QCOMPARE(client.read(packetBytes).size(), packetBytes);
}

void TestPtyStream::streamGoesOnWhileThePortIsClosed()
{
    ControllerOptions options;
    options.script = countingScript(30000);
    EmulatorHost host;
    const ControllerHandle controller = host.addPty(options);
    std::optional<SerialClient> client(controller.path());
    QCOMPARE(sampleNumber(client->exchange(startAt(500), packetBytes)), 1);

    client.reset();
    QTRY_VERIFY(!controller.isConnected());
    const qint64 lost = controller.packetsLost();
    QTRY_VERIFY(controller.packetsLost() >= lost + 50);
    QVERIFY(controller.isStreaming());
    const qint64 lostWhileClosed = controller.packetsLost();
    client.emplace(controller.path());

    // None of the packets sent meanwhile were kept.
    QVERIFY(sampleNumber(client->read(packetBytes)) > lostWhileClosed);
}

void TestPtyStream::whatAHostDidNotReadIsLostWhenItCloses()
{
    constexpr int unread = 20;
    ControllerOptions options;
    options.script = countingScript(30000);
    EmulatorHost host;
    const ControllerHandle controller = host.addPty(options);
    {
        IdleHost idle(controller.path());
        idle.send(startAt(500));
        QTRY_VERIFY(controller.packetsSent() >= unread);
    }
    QTRY_VERIFY(controller.packetsLost() > 0);

    SerialClient client(controller.path());

    QVERIFY(sampleNumber(client.read(packetBytes)) > unread);
}

void TestPtyStream::streamOf500PerSecondArrivesWhole()
{
    constexpr int packets = 1000;
    constexpr int rate = 500;
    ControllerOptions options;
    options.script = countingScript(30000);
    EmulatorHost host;
    const ControllerHandle controller = host.addPty(options);
    SerialClient client(controller.path());
    QElapsedTimer timer;

    timer.start();
    client.send(startAt(rate));
    const QByteArray stream = client.read(packets * packetBytes);
    const double seconds = static_cast<double>(timer.elapsed()) / 1000.0;
    client.send("CLS;");
    waitUntilHeard(controller);
    const QByteArray rest = client.readUntilQuiet();

    QCOMPARE(stream.size(), packets * packetBytes);
    for (int packet = 0; packet < packets; ++packet) {
        QVERIFY(isFramed(stream.mid(packet * packetBytes, packetBytes)));
        QCOMPARE(wordAt(stream, packet * packetBytes + 4), packet + 1);
    }
    // The first packet stands at zero; timers may be early by a part of their grid.
    QVERIFY2(seconds > 0.98 * (packets - 1) / rate, qPrintable(QString::number(seconds)));
    QCOMPARE(controller.packetsSent(), qint64(packets + rest.size() / packetBytes));
    QCOMPARE(rest.size() % packetBytes, 2);
    QCOMPARE(controller.packetsLost(), qint64(0));
}

void TestPtyStream::wholePacketsAreLostWhileTheHostDoesNotRead()
{
    ControllerOptions options;
    options.script = countingScript(30000);
    EmulatorHost host;
    const ControllerHandle controller = host.addPty(options);
    IdleHost idle(controller.path());

    idle.send(startAt(1000));
    QTRY_VERIFY_WITH_TIMEOUT(controller.packetsLost() >= 20, 20000);
    idle.send("CLS;");
    QTRY_VERIFY(!controller.isStreaming());
    const QByteArray kept = idle.readUntilQuiet();

    // What was begun is sent to its end, and the reply waits behind it.
    QVERIFY(kept.endsWith(accepted()));
    QCOMPARE(kept.size() % packetBytes, 2);
    const int packets = kept.size() / packetBytes;
    for (int packet = 0; packet < packets; ++packet)
        QVERIFY(isFramed(kept.mid(packet * packetBytes, packetBytes)));
    QCOMPARE(qint64(packets), controller.packetsSent());
}

void TestPtyStream::longMessageTricklesThroughTheTerminal()
{
    constexpr int bytes = 100000;
    EmulatorHost host;
    ControllerHandle controller = host.addPty();
    SerialClient client(controller.path());
    QByteArray message;
    for (int i = 0; i < bytes; ++i)
        message.append(static_cast<char>(i * 7 / 3));

    controller.sendRaw(message);

    QVERIFY(client.read(bytes) == message);
}

void TestPtyStream::hostMayEndDuringAStream()
{
    const QTemporaryDir folder;
    const QString link = folder.filePath("ttyUSB77");
    auto host = std::make_unique<EmulatorHost>();
    const ControllerHandle controller = host->addPty({}, link);
    IdleHost idle(link);
    idle.send(startAt(1000));
    QTRY_VERIFY(controller.packetsSent() >= 5);
    QVERIFY(!idle.isHungUp());

    host.reset();

    QVERIFY(idle.isHungUp());
    QVERIFY(!QFileInfo(link).isSymLink());
}

QTEST_GUILESS_MAIN(TestPtyStream)
#include "tst_ptystream.moc"
