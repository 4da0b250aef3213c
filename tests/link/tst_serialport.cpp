// A connection over a serial line, against emulated controllers behind pseudo terminals.

#include "emulator/emulatorhost.h"
#include "link/identification.h"
#include "link/serialport.h"
#include "link/streampause.h"
#include "support/emulatedlink.h"
#include "support/logcapture.h"
#include "support/privatedev.h"
#include "support/pseudoport.h"

#include <QElapsedTimer>
#include <QFile>
#include <QSerialPort>
#include <QtTest>

#include <atomic>
#include <cstdarg>
#include <functional>
#include <linux/serial.h>
#include <memory>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr int startAnswer = 1;

/// What a test does when a request reaches the driver of a serial port.
struct DriverWatch
{
    using Act = std::function<void()>;

    static std::atomic<DriverWatch*> present;

    explicit DriverWatch(unsigned long watchedRequest = 0, Act onRequest = {})
        : request(watchedRequest)
        , act(std::move(onRequest))
    {
        present = this;
    }
    ~DriverWatch() { present = nullptr; }
    DriverWatch(const DriverWatch&) = delete;
    DriverWatch& operator=(const DriverWatch&) = delete;

    void note(unsigned long passing, const void* argument)
    {
        if (passing == TIOCSSERIAL)
            flags = static_cast<const serial_struct*>(argument)->flags;
        if (passing == request && act)
            act();
    }

    const unsigned long request;
    const Act act;
    /// Of the last setting that was asked for.
    std::atomic<int> flags{0};
};

std::atomic<DriverWatch*> DriverWatch::present{nullptr};

} // namespace

/// In place of the library's, so that a test sees what is asked of the driver.
extern "C" int ioctl(int descriptor, unsigned long request, ...) noexcept
{
    va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    if (DriverWatch* watch = DriverWatch::present)
        watch->note(request, argument);
    return static_cast<int>(::syscall(SYS_ioctl, descriptor, request, argument));
}

namespace {

/// A `SerialPort` on a pseudo terminal, with short waits unless asked otherwise.
struct SerialLink
{
    static constexpr int shortTimeoutMs = 150;

    explicit SerialLink(const QString& portName, int timeoutMs = shortTimeoutMs)
    {
        client.setTimeoutMs(timeoutMs);
        client.init(portName, 115200);
        QObject::connect(&client, &Connection::hostDisconnected, &context,
                         [this](const QString& address) { lost.append(address); });
    }

    /// Starts the thread and waits until the link is up or has failed.
    bool connect()
    {
        client.start(QThread::InheritPriority);
        const auto isDecided = [this] { return client.isConnected() || !client.isRunning(); };
        return QTest::qWaitFor(isDecided) && client.isConnected();
    }

    bool connectAndIdentify()
    {
        return connect() && identify(client, LineClearing::TwoStops).isController;
    }

    QByteArray exchange(void (Connection::*command)())
    {
        (client.*command)();
        QByteArray reply;
        client.fetchReply(reply);
        return reply;
    }

    SerialPort client;
    /// The addresses that `hostDisconnected` told.
    QStringList lost;
    QObject context;
};

/// With an emulated controller at the other end.
struct EmulatedSerialLink
{
    explicit EmulatedSerialLink(const emulator::ControllerOptions& options = {},
                                int timeoutMs = SerialLink::shortTimeoutMs)
        : name(freePortName())
        , controller(host.addPty(options, "/dev/" + name))
        , link(name, timeoutMs)
        , client(link.client)
        , lost(link.lost)
    {}

    const QString name;
    emulator::EmulatorHost host;
    emulator::ControllerHandle controller;
    SerialLink link;
    SerialPort& client;
    QStringList& lost;
};

QByteArray tooLate(const QElapsedTimer& time)
{
    return QByteArray::number(time.elapsed()) + " ms";
}

} // namespace

class TestSerialPort final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void namesOfSerialPortsAreTaken_data();
    void namesOfSerialPortsAreTaken();
    void initTellsWhatItDoes();
    void itIsASerialConnection();

    void thePortIsSetAsTheControllerExpects_data();
    void thePortIsSetAsTheControllerExpects();
    void theControllerAnswers();
    void anotherRateIsNotUnderstood();
    void oldInputIsDropped();
    void resyncAsksForAReplyAndLeavesTheLinkUsable();
    void theRateCanBeChanged();
    void theEndIsTold();

    void lowLatencyIsAskedOfTheDriver();
    void lowLatencyNeedsAnOpenPort();
    void aPortThatDoesNotComeBackIsLost_data();
    void aPortThatDoesNotComeBackIsLost();

    void aPortThatCanNotBeOpenedFails();
    void aBusyPortFailsAndTellsWhoHasIt();
    void aPortWithoutRightsFailsAndTellsWhatHelps();

    void aPortLostBeforeTheFirstByteIsToldOnce();
    void aPortLostAtTheFirstCommandIsToldOnce();
    void aPortLostInTheMiddleOfAReplyEndsTheWait();
    void aPortLostWhileStreamingIsToldOnce();
    void aPortLostDuringAStopEndsTheWait_data();
    void aPortLostDuringAStopEndsTheWait();
    void aPortLostAtAnyMomentIsToldOnce();
    void aLostPortIsFreeAgain();
    void aReplugLetsTheSameConnectionComeUpAgain();

    void everyPacketOfAFastStreamIsStored();
};

void TestSerialPort::initTestCase()
{
    if (!devFolderProblem().isEmpty())
        QSKIP(qPrintable(devFolderProblem()));
    QVERIFY(EmulatedSerialLink().controller.isValid());
}

void TestSerialPort::namesOfSerialPortsAreTaken_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isTaken");
    QTest::newRow("USB adapter") << "ttyUSB0" << true;
    QTest::newRow("modem") << "ttyACM12" << true;
    QTest::newRow("COM") << "COM3" << true;
    QTest::newRow("on board") << "ttyS0" << true;
    QTest::newRow("lower case") << "ttyusb0" << false;
    QTest::newRow("upper case") << "TTYUSB0" << false;
    QTest::newRow("with its folder") << "/dev/ttyUSB0" << false;
    QTest::newRow("pseudo terminal") << "pts/3" << false;
    QTest::newRow("in the middle") << "xttyUSB0" << false;
    QTest::newRow("empty") << "" << false;
}

void TestSerialPort::namesOfSerialPortsAreTaken()
{
    QFETCH(QString, name);
    QFETCH(bool, isTaken);
    SerialPort port;
    QCOMPARE(port.init(name, 460800), isTaken);
    // They stay stored either way.
    QCOMPARE(port.address(), name);
    QCOMPARE(port.portOrBaud(), 460800);
    QCOMPARE(port.baudRate(), 460800);
}

void TestSerialPort::initTellsWhatItDoes()
{
    SerialPort port;
    const LogCapture log;
    port.init("ttyUSB7", 115200);
    QCOMPARE(log.lines(), QStringList("debug: Initializing serial connection \"ttyUSB7\""));
}

void TestSerialPort::itIsASerialConnection()
{
    const SerialPort port;
    QCOMPARE(port.connectionType(), 0);
    QCOMPARE(port.baudRate(), -1);
    QCOMPARE(port.linkState(), LinkState::NotConnected);
}

void TestSerialPort::thePortIsSetAsTheControllerExpects_data()
{
    QTest::addColumn<int>("baudRate");
    for (const int baudRate : {115200, 460800, 921600})
        QTest::addRow("%d", baudRate) << baudRate;
}

void TestSerialPort::thePortIsSetAsTheControllerExpects()
{
    QFETCH(int, baudRate);
    const PseudoPort port;
    SerialLink link(port.name());
    link.client.init(port.name(), baudRate);
    QVERIFY(link.connect());
    QCOMPARE(port.baudRate(), baudRate);
    QVERIFY(port.hasHardwareFlowControl());
}

void TestSerialPort::theControllerAnswers()
{
    EmulatedSerialLink one;
    QVERIFY(one.link.connectAndIdentify());
    QCOMPARE(one.link.exchange(&Connection::getControllerId), one.controller.idReply());
    QCOMPARE(one.link.exchange(&Connection::getStatusFlags).size(), 4);
    QCOMPARE(one.client.disconnectController(), 1);
    QCOMPARE(one.client.linkState(), LinkState::Disconnected);
    QVERIFY(one.lost.isEmpty());
}

void TestSerialPort::anotherRateIsNotUnderstood()
{
    emulator::ControllerOptions options;
    options.baudRate = 921600;
    EmulatedSerialLink one(options);
    QVERIFY(one.link.connect());
    QVERIFY(!identify(one.client, LineClearing::TwoStops).isController);
}

void TestSerialPort::oldInputIsDropped()
{
    const PseudoPort port;
    SerialLink link(port.name());
    // A terminal keeps what nobody has read.
    QVERIFY(port.write("left over"));
    QVERIFY(link.connect());
    QByteArray reply;
    QVERIFY(!link.client.fetchReply(reply));

    link.client.getStatusFlags();
    QVERIFY(port.write(QByteArray("\0;\x48;", 4)));
    QVERIFY(link.client.fetchReply(reply));
    QCOMPARE(reply, QByteArray("\0;\x48;", 4));
}

void TestSerialPort::resyncAsksForAReplyAndLeavesTheLinkUsable()
{
    const LogCapture log;
    EmulatedSerialLink one;
    resyncOnce(one.client, [&one] { return one.client.isConnected(); });
    QVERIFY(one.link.connect());
    QTRY_COMPARE(log.count("debug: Finished resyncing"), 1);
    QCOMPARE(log.count("debug: Resyncing (serial)"), 1);
    QCOMPARE(one.controller.commands(), QByteArrayList{"GSF;"});

    QByteArray reply;
    one.client.fetchReply(reply);
    QCOMPARE(one.link.exchange(&Connection::getControllerId), one.controller.idReply());
}

void TestSerialPort::theRateCanBeChanged()
{
    EmulatedSerialLink one;
    QVERIFY(one.link.connectAndIdentify());
    one.client.setControllerBaudRate(command::baudRateArgument(921600));
    QByteArray reply;
    QVERIFY(one.client.fetchReply(reply));
    QVERIFY(command::isAccepted(reply));
    QCOMPARE(one.client.disconnectController(), 1);

    QVERIFY(one.client.init(one.client.address(), 921600));
    QVERIFY(one.link.connectAndIdentify());
    QCOMPARE(one.controller.baudRate(), 921600);
    QCOMPARE(one.client.portOrBaud(), 921600);
}

void TestSerialPort::theEndIsTold()
{
    const LogCapture log;
    {
        EmulatedSerialLink one;
        one.client.setLabel("left");
        QVERIFY(one.link.connect());
    }
    const QStringList lines = log.lines();
    const int deleting = lines.indexOf("debug: Deleting serial connection");
    const int core = lines.indexOf("debug: Deleting connection");
    const int closing = lines.indexOf("debug: Closing connection \"left\"");
    QVERIFY2(deleting >= 0 && deleting < core && core < closing,
             qPrintable(lines.join(QLatin1Char('\n'))));
}

void TestSerialPort::lowLatencyIsAskedOfTheDriver()
{
    const PseudoPort port;
    SerialLink link(port.name());
    const DriverWatch driver;
    QVERIFY(link.connect());
    constexpr int lowLatencyBit = 0x2000;
    QVERIFY((driver.flags & lowLatencyBit) != 0);
    // Every time: the driver forgets it with the adapter.
    link.client.disconnectController();
    const DriverWatch again;
    QVERIFY(link.connect());
    QVERIFY((again.flags & lowLatencyBit) != 0);
    link.client.disconnectController();
}

void TestSerialPort::lowLatencyNeedsAnOpenPort()
{
    SerialPort port;
    QVERIFY(!port.setlowlatency());
}

void TestSerialPort::aPortThatDoesNotComeBackIsLost_data()
{
    QTest::addColumn<qulonglong>("moment");
    // The first is asked by the open, the other by the low latency mode between close and open.
    QTest::newRow("not opened for the request") << qulonglong(TIOCEXCL);
    QTest::newRow("not opened after the request") << qulonglong(TIOCSSERIAL);
}

void TestSerialPort::aPortThatDoesNotComeBackIsLost()
{
    QFETCH(qulonglong, moment);
    const PseudoPort port;
    SerialLink link(port.name());
    const DriverWatch driver(moment, [&port] { port.removeName(); });
    QVERIFY(!link.connect());
    QVERIFY(link.client.wait(5000));
    QCOMPARE(link.client.linkState(), LinkState::OpenFailed);
    QCoreApplication::processEvents();
    QVERIFY(link.lost.isEmpty());
}

void TestSerialPort::aPortThatCanNotBeOpenedFails()
{
    SerialLink link("ttyUSB996");
    const LogCapture log;
    QVERIFY(!link.connect());
    QVERIFY(link.client.wait(5000));
    QCOMPARE(link.client.linkState(), LinkState::OpenFailed);
    QVERIFY(log.lines().isEmpty());
    QCoreApplication::processEvents();
    QVERIFY(link.lost.isEmpty());

    // The other side of `open failed`: nothing can be sent, and nothing waits.
    QCOMPARE(link.exchange(&Connection::getStatusFlags), QByteArray());
}

void TestSerialPort::aBusyPortFailsAndTellsWhoHasIt()
{
    EmulatedSerialLink one;
    QVERIFY(one.link.connect());
    SerialLink second(one.name);
    const LogCapture log;
    QVERIFY(!second.connect());
    QVERIFY(second.client.wait(5000));
    QCOMPARE(second.client.linkState(), LinkState::OpenFailed);
    QCOMPARE(log.lines().size(), 1);
    QVERIFY(log.lines().first().startsWith("warning: /dev/" + one.name + " is in use by "));
    QVERIFY(log.lines().first().contains(QString::number(::getpid())));
    QVERIFY(one.client.isConnected());
}

void TestSerialPort::aPortWithoutRightsFailsAndTellsWhatHelps()
{
    const PseudoPort port;
    QCOMPARE(::chmod(port.device().toLocal8Bit().constData(), 0), 0);
    SerialLink link(port.name());
    const LogCapture log;
    constexpr uid_t nobody = 65534;
    const bool isRoot = ::getuid() == 0;
    QVERIFY(!isRoot || ::seteuid(nobody) == 0);
    const bool connected = link.connect();
    QVERIFY(!isRoot || ::seteuid(0) == 0);
    QVERIFY(!connected);
    QVERIFY(link.client.wait(5000));
    QCOMPARE(link.client.linkState(), LinkState::OpenFailed);
    QCOMPARE(log.lines(), QStringList("warning: This user has no rights to use " + port.path()
                                      + ". Membership in the group \"dialout\" or the udev rule "
                                        "gives them: see \"Serial ports\" in the README"));
}

void TestSerialPort::aPortLostBeforeTheFirstByteIsToldOnce()
{
    EmulatedSerialLink one;
    QVERIFY(one.link.connect());
    const LogCapture log;
    one.controller.unplug();
    QVERIFY(one.client.wait(5000));
    // Long enough for the errors of a port that stayed open to come in thousands.
    QTest::qWait(100);
    QCOMPARE(one.lost, QStringList(one.name));
    QCOMPARE(log.lines(),
             QStringList({"debug: Controller disconnected", "debug: Closing connection \"\""}));
    QCOMPARE(one.client.disconnectController(), 1);
    QCOMPARE(one.client.linkState(), LinkState::Disconnected);
}

void TestSerialPort::aPortLostAtTheFirstCommandIsToldOnce()
{
    emulator::ControllerOptions options;
    options.faults.closeOn = {"GSF"};
    EmulatedSerialLink one(options, 5000);
    QVERIFY(one.link.connect());
    const LogCapture log;
    QElapsedTimer time;
    time.start();
    QCOMPARE(one.link.exchange(&Connection::getStatusFlags), QByteArray());
    QVERIFY2(time.elapsed() < 5000, tooLate(time).constData());
    QTRY_COMPARE(one.lost.count(), 1);
    QVERIFY(one.client.wait(5000));
    QCOMPARE(log.count("debug: Controller disconnected"), 1);
}

void TestSerialPort::aPortLostInTheMiddleOfAReplyEndsTheWait()
{
    emulator::ControllerOptions options;
    options.faults.shortBytes = {{"GID", 20}};
    EmulatedSerialLink one(options, 5000);
    QVERIFY(one.link.connect());
    const LogCapture log;
    QElapsedTimer time;
    time.start();
    one.client.getControllerId();
    QTest::qWait(50);
    one.controller.unplug();
    QByteArray reply;
    one.client.fetchReply(reply);
    QVERIFY(reply.isEmpty());
    QVERIFY2(time.elapsed() < 5000, tooLate(time).constData());
    QVERIFY(one.client.wait(5000));
    QTRY_COMPARE(one.lost.count(), 1);
    // In particular no complaint of the library about reading from a closed port.
    QCOMPARE(log.lines(),
             QStringList({"debug: Controller disconnected", "debug: Closing connection \"\""}));
}

void TestSerialPort::aPortLostWhileStreamingIsToldOnce()
{
    emulator::ControllerOptions options;
    options.script = numberedSamples(2000);
    EmulatedSerialLink one(options);
    QVERIFY(one.link.connectAndIdentify());
    QVERIFY(startStreamAtRate(one.client, 500));
    QTRY_VERIFY(one.client.samplesStored() > 100);
    const LogCapture log;
    one.controller.unplug();
    QVERIFY(one.client.wait(5000));
    QTest::qWait(100);
    QCOMPARE(one.lost.count(), 1);
    QCOMPARE(log.count("debug: Controller disconnected"), 1);
    QCOMPARE(log.lines().size(), 2);

    // Those that came are whole and in their order.
    int expected = 2;
    MeasureSample sample;
    const QVector<emulator::PacketValues> sent = numberedSamples(2000);
    while (one.client.takeLiveSample(sample) != 0)
        QCOMPARE(int(sample.x1), int(sent.at(expected++ - 1).x1));
    QVERIFY(expected > 100);
    one.client.disconnectController();
    QVERIFY(!one.client.isStreaming());
}

void TestSerialPort::aPortLostDuringAStopEndsTheWait_data()
{
    QTest::addColumn<int>("firmware");
    QTest::newRow("with an end mark") << 40;
    QTest::newRow("without an end mark") << 9;
}

void TestSerialPort::aPortLostDuringAStopEndsTheWait()
{
    QFETCH(int, firmware);
    emulator::ControllerOptions options;
    options.firmware = firmware;
    EmulatedSerialLink one(options);
    QVERIFY(one.link.connectAndIdentify());
    QVERIFY(startStreamAtRate(one.client, 100));
    one.client.setTimeoutMs(5000);
    emulator::Faults faults;
    faults.closeOn = {"CLS"};
    one.controller.setFaults(faults);
    const LogCapture log;
    QElapsedTimer time;
    time.start();
    one.client.stopStream();
    QVERIFY(one.client.wait(5000));
    QVERIFY2(time.elapsed() < 5000, tooLate(time).constData());
    QTRY_COMPARE(one.lost.count(), 1);
    QVERIFY(log.lines().filter("warning").isEmpty());
}

void TestSerialPort::aPortLostAtAnyMomentIsToldOnce()
{
    constexpr int rounds = 25;
    EmulatedSerialLink one;
    for (int round = 0; round < rounds; ++round) {
        QVERIFY(one.link.connect());
        // The adapter is pulled at a moment that differs from round to round.
        std::thread pull([&one, round] {
            QThread::usleep(static_cast<unsigned long>(round * 270));
            one.controller.unplug();
        });
        while (one.client.isRunning()) {
            one.link.exchange(&Connection::getStatusFlags);
            one.link.exchange(&Connection::clearLiveStream);
        }
        pull.join();
        QCOMPARE(one.client.disconnectController(), 1);
        one.controller.replug();
    }
    QTRY_COMPARE(one.lost.count(), rounds);
}

void TestSerialPort::aLostPortIsFreeAgain()
{
    EmulatedSerialLink one;
    QVERIFY(one.link.connect());
    one.controller.unplug();
    QVERIFY(one.client.wait(5000));
    one.controller.replug();
    SerialLink second(one.name);
    QVERIFY(second.connectAndIdentify());
}

void TestSerialPort::aReplugLetsTheSameConnectionComeUpAgain()
{
    EmulatedSerialLink one;
    QVERIFY(one.link.connectAndIdentify());
    QVERIFY(startStreamAtRate(one.client, 200));
    QTRY_VERIFY(one.client.samplesStored() > 10);
    one.controller.unplug();
    QVERIFY(one.client.wait(5000));
    QCOMPARE(one.client.disconnectController(), 1);

    QVERIFY(!one.link.connect());
    QCOMPARE(one.client.linkState(), LinkState::OpenFailed);
    one.controller.replug();
    // The controller has gone on streaming, which the first stop ends.
    QVERIFY(one.link.connectAndIdentify());
    QVERIFY(!one.controller.isStreaming());
    QVERIFY(startStreamAtRate(one.client, 200));
}

void TestSerialPort::everyPacketOfAFastStreamIsStored()
{
    constexpr int streamMs = 10000;
    emulator::ControllerOptions options;
    options.baudRate = 921600;
    EmulatedSerialLink one(options, Connection::defaultTimeoutMs);
    one.client.init(one.name, 921600);
    QVERIFY(one.link.connectAndIdentify());
    auto log = std::make_unique<LogCapture>();
    QVERIFY(startStreamAtRate(one.client, 500));
    QElapsedTimer time;
    time.start();
    quint64 taken = 0;
    MeasureSample sample;
    const auto takeAll = [&] {
        while (one.client.takeLiveSample(sample) != 0)
            ++taken;
    };
    while (time.elapsed() < streamMs) {
        takeAll();
        QThread::msleep(10);
    }
    one.client.stopStream();
    takeAll();
    QVERIFY(log->lines().filter("skipped").isEmpty());
    log.reset();
    const qint64 sent = one.controller.packetsSent();
    qInfo("%lld packets sent, %lld left out, %llu stored", sent, one.controller.packetsLost(),
          one.client.samplesStored());
    QVERIFY(!one.client.isStreaming());
    QVERIFY(sent > 9 * streamMs / 20);
    QCOMPARE(one.controller.packetsLost(), qint64(0));
    QCOMPARE(qint64(one.client.samplesStored()), sent - startAnswer);
    QCOMPARE(taken, one.client.samplesStored());
}

int main(int argc, char** argv)
{
    prepareDevFolder();
    QCoreApplication application(argc, argv);
    TestSerialPort test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_serialport.moc"
