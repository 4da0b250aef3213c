// A connection over a serial line, against emulated controllers behind pseudo terminals.

#include "driverwatch.h"
#include "link/replyforms.h"
#include "link/streampause.h"
#include "seriallink.h"
#include "support/emulatedlink.h"
#include "support/logcapture.h"
#include "support/privatedev.h"

#include <QElapsedTimer>
#include <QtTest>

#include <linux/serial.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <thread>

namespace {

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

    void aPortLostBeforeTheFirstByteIsToldOnce();
    void aPortLostAtTheFirstCommandIsToldOnce();
    void aPortLostInTheMiddleOfAReplyEndsTheWait();
    void aPortLostWhileStreamingIsToldOnce();
    void aPortLostDuringAStopEndsTheWait_data();
    void aPortLostDuringAStopEndsTheWait();
    void aPortLostAtAnyMomentIsToldOnce();
    void aLostPortIsFreeAgain();
    void aReplugLetsTheSameConnectionComeUpAgain();
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
    const DriverWatch driver;
    QVERIFY(link.connect());
    QCOMPARE(port.baudRate(), baudRate);
    QVERIFY(port.hasHardwareFlowControl());
    // Neither parity nor a second stop bit.
    constexpr unsigned int eightBits = CS8;
    QCOMPARE(driver.lineModes.load(), eightBits);
    link.client.disconnectController();
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

    // Nothing but the rate is the reason.
    QCOMPARE(one.client.disconnectController(), 1);
    QVERIFY(one.client.init(one.client.address(), options.baudRate));
    QVERIFY(one.link.connectAndIdentify());
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
    QCOMPARE(link.client.linkState(), LinkState::OpenOrEndFailed);
    QCoreApplication::processEvents();
    QVERIFY(link.lost.isEmpty());
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
    QTRY_COMPARE(repliesOf(one.controller), 1);
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
    QCOMPARE(startStreamAtRate(one.client, 500), StreamStart::Runs);
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
        QCOMPARE(int(sample.x1), int(sent.at(expected++ - 1)[0].x));
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
    QCOMPARE(startStreamAtRate(one.client, 100), StreamStart::Runs);
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
    QCOMPARE(startStreamAtRate(one.client, 200), StreamStart::Runs);
    QTRY_VERIFY(one.client.samplesStored() > 10);
    one.controller.unplug();
    QVERIFY(one.client.wait(5000));
    QCOMPARE(one.client.disconnectController(), 1);

    QVERIFY(!one.link.connect());
    QCOMPARE(one.client.linkState(), LinkState::OpenOrEndFailed);
    one.controller.replug();
    // The controller has gone on streaming, which the first stop ends.
    QVERIFY(one.link.connectAndIdentify());
    QVERIFY(!one.controller.isStreaming());
    QCOMPARE(startStreamAtRate(one.client, 200), StreamStart::Runs);
}

int main(int argc, char** argv)
{
    prepareDevFolder();
    QCoreApplication application(argc, argv);
    TestSerialPort test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_serialport.moc"
