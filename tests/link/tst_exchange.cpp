#include "link/streampause.h"
#include "support/emulatedlink.h"
#include "support/logcapture.h"

#include <QtTest>

#include <functional>

Q_DECLARE_METATYPE(std::function<void(Connection&)>)

namespace {

using emulator::ControllerOptions;

/// So long that a wait for it can not be taken for "at once".
constexpr int longTimeoutMs = 20000;

ControllerOptions withFaults(const emulator::Faults& faults)
{
    ControllerOptions options;
    options.faults = faults;
    return options;
}

emulator::Faults shortReply(const char* mnemonic, int bytes)
{
    emulator::Faults faults;
    faults.shortBytes = {{mnemonic, bytes}};
    return faults;
}

emulator::Faults silence(const char* mnemonic)
{
    emulator::Faults faults;
    faults.silent = {mnemonic};
    return faults;
}

} // namespace

class TestExchange : public QObject
{
    Q_OBJECT

private slots:
    void fetchReplyWithNothingSentReturnsFalseAtOnce();
    void fetchReplyOfAnUnconnectedLinkReturnsFalseAtOnce();
    void replyOfFullLengthIsTakenByteForByte();
    void replyThatComesByteByByteIsTakenWhole();
    void replyOfTwoBytesIsTakenAfterTimeout();
    void replyOfThreeBytesIsEmptyAfterTimeout();
    void refusalIsTakenWhateverWasAskedFor();
    void missingReplyFailsAfterTwiceTheTimeout();
    void realWaitsAre750And1500Ms();
    void nextExchangeWorksAfterAMissingReply();
    void commandIsNotWrittenWhileStreaming();
    void lostLinkEndsTheWaitAtOnce();
    void everythingIsDroppedAfterASilentStreamStart();
    void stopIsSentOnceMoreIfNoReplyCame();
    void everyWrapperSendsItsFrame_data();
    void everyWrapperSendsItsFrame();
    void startFollowsFirmwareAndTriggerMode_data();
    void startFollowsFirmwareAndTriggerMode();
    void samplingRateIsOneTo500();
    void timeoutIsAboveZero();
    void endIsConfirmedUnlessOnTheVeryLastPoll();
    void releasedConnectionCanOnlyBeDestroyed();
};

void TestExchange::fetchReplyWithNothingSentReturnsFalseAtOnce()
{
    EmulatedLink link({}, longTimeoutMs);
    QVERIFY(link.connect());
    QByteArray reply("left over");

    QElapsedTimer time;
    time.start();
    QVERIFY(!link.client.fetchReply(reply));
    QVERIFY(reply.isEmpty());
    QVERIFY(time.elapsed() < longTimeoutMs);
}

void TestExchange::fetchReplyOfAnUnconnectedLinkReturnsFalseAtOnce()
{
    EmulatedLink link({}, longTimeoutMs);
    QElapsedTimer time;
    time.start();
    QCOMPARE(link.exchange(&Connection::getStatusFlags), QByteArray());
    QVERIFY(time.elapsed() < longTimeoutMs);
}

void TestExchange::replyOfFullLengthIsTakenByteForByte()
{
    EmulatedLink link;
    QVERIFY(link.connect());
    QCOMPARE(link.exchange(&Connection::getControllerId), link.controller.idReply());
    QCOMPARE(link.controller.idReply().size(), 50);
}

void TestExchange::replyThatComesByteByByteIsTakenWhole()
{
    EmulatedLink link(withFaults(silence("GAS")), 2000);
    QVERIFY(link.connect());

    link.client.getActiveSignal();
    for (const char byte : QByteArray("\0;\1\0;", 5)) {
        link.controller.sendRaw(QByteArray(1, byte));
        QTest::qWait(10);
    }
    QByteArray reply;
    QVERIFY(link.client.fetchReply(reply));
    QCOMPARE(reply, QByteArray("\0;\1\0;", 5));
}

void TestExchange::replyOfTwoBytesIsTakenAfterTimeout()
{
    EmulatedLink link(withFaults(shortReply("GAS", 2)));
    QVERIFY(link.connect());

    QElapsedTimer time;
    time.start();
    link.client.getActiveSignal();
    QByteArray reply;
    QVERIFY(link.client.fetchReply(reply));
    QCOMPARE(reply, QByteArray("\0;", 2));
    QVERIFY(time.elapsed() >= EmulatedLink::shortTimeoutMs);
}

void TestExchange::replyOfThreeBytesIsEmptyAfterTimeout()
{
    EmulatedLink link(withFaults(shortReply("GAS", 3)));
    QVERIFY(link.connect());

    QElapsedTimer time;
    time.start();
    link.client.getActiveSignal();
    QByteArray reply;
    QVERIFY(link.client.fetchReply(reply));
    QVERIFY(reply.isEmpty());
    QVERIFY(time.elapsed() >= EmulatedLink::shortTimeoutMs);
}

void TestExchange::refusalIsTakenWhateverWasAskedFor()
{
    emulator::Faults faults;
    faults.refuse = {"GID"};
    EmulatedLink link(withFaults(faults));
    QVERIFY(link.connect());
    QCOMPARE(link.exchange(&Connection::getControllerId), QByteArray("\x01;"));
}

void TestExchange::missingReplyFailsAfterTwiceTheTimeout()
{
    EmulatedLink link(withFaults(silence("GSF")));
    QVERIFY(link.connect());

    QElapsedTimer time;
    time.start();
    link.client.getStatusFlags();
    QByteArray reply;
    QVERIFY(!link.client.fetchReply(reply));
    QVERIFY(reply.isEmpty());
    QVERIFY(time.elapsed() >= 2 * EmulatedLink::shortTimeoutMs);
}

void TestExchange::realWaitsAre750And1500Ms()
{
    emulator::Faults faults = silence("GSF");
    faults.shortBytes = {{"GAS", 2}};
    EmulatedLink link(withFaults(faults), Connection::defaultTimeoutMs);
    QVERIFY(link.connect());

    QElapsedTimer time;
    time.start();
    link.exchange(&Connection::getActiveSignal);
    const qint64 shortReplyMs = time.restart();
    link.exchange(&Connection::getStatusFlags);
    const qint64 missingReplyMs = time.elapsed();

    QVERIFY(shortReplyMs >= 750 && shortReplyMs < 1500);
    QVERIFY(missingReplyMs >= 1500);
}

void TestExchange::nextExchangeWorksAfterAMissingReply()
{
    EmulatedLink link(withFaults(silence("GSF")));
    QVERIFY(link.connect());
    link.exchange(&Connection::getStatusFlags);
    QCOMPARE(link.exchange(&Connection::getControllerId), link.controller.idReply());
}

void TestExchange::commandIsNotWrittenWhileStreaming()
{
    EmulatedLink link;
    QVERIFY(link.connectAndIdentify());
    QVERIFY(link.startStream());
    link.controller.clearWire();
    link.client.setTimeoutMs(longTimeoutMs);

    QElapsedTimer time;
    time.start();
    QCOMPARE(link.exchange(&Connection::getStatusFlags), QByteArray());
    QVERIFY(time.elapsed() < longTimeoutMs);
    QVERIFY(link.client.isStreaming());
    link.client.stopStream();
    QCOMPARE(link.controller.commands(), QByteArrayList{"CLS;"});
}

void TestExchange::lostLinkEndsTheWaitAtOnce()
{
    emulator::Faults faults;
    faults.closeOn = {"GSF"};
    EmulatedLink link(withFaults(faults), longTimeoutMs);
    QVERIFY(link.connect());

    QElapsedTimer time;
    time.start();
    link.client.getStatusFlags();
    QByteArray reply;
    QVERIFY(!link.client.fetchReply(reply));
    QVERIFY(time.elapsed() < longTimeoutMs);
}

void TestExchange::everythingIsDroppedAfterASilentStreamStart()
{
    EmulatedLink link(withFaults(silence("SLS")));
    QVERIFY(link.connect());
    QVERIFY(!startStreamAtRate(link.client, 100));
    link.controller.clearWire();

    link.exchange(&Connection::getStatusFlags);
    link.client.stopStream();
    QVERIFY(link.controller.commands().isEmpty());

    QCOMPARE(link.client.disconnectController(), 1);
    QVERIFY(link.connect());
    QCOMPARE(link.exchange(&Connection::getStatusFlags).size(), 4);
}

void TestExchange::stopIsSentOnceMoreIfNoReplyCame()
{
    EmulatedLink link(withFaults(silence("CLS")));
    QVERIFY(link.connect());
    link.client.stopStream();
    QCOMPARE(link.controller.commands(), QByteArrayList({"CLS;", "CLS;"}));
}

void TestExchange::everyWrapperSendsItsFrame_data()
{
    using Plain = void (Connection::*)();
    using WithArgument = void (Connection::*)(const QByteArray&);
    QTest::addColumn<std::function<void(Connection&)>>("send");
    QTest::addColumn<QByteArray>("frame");

    const auto plain = [](const char* name, Plain command) {
        QTest::newRow(name) << std::function<void(Connection&)>([command](Connection& c) {
            (c.*command)();
        }) << QByteArray(name) + ';';
    };
    const auto withArgument = [](const char* name, WithArgument command,
                                 const QByteArray& argument) {
        QTest::newRow(name) << std::function<void(Connection&)>([command, argument](Connection& c) {
            (c.*command)(argument);
        }) << QByteArray(name) + argument;
    };

    plain("GID", &Connection::getControllerId);
    plain("S1S", &Connection::triggerOneShot);
    plain("CLS", &Connection::clearLiveStream);
    plain("GSF", &Connection::getStatusFlags);
    plain("GAS", &Connection::getActiveSignal);
    plain("GCA", &Connection::getCommonAdjustment);
    plain("GER", &Connection::getError);
    plain("GDA", &Connection::sendGda);
    plain("SHS", &Connection::sendShs);
    plain("CHS", &Connection::sendChs);
    plain("GMF", &Connection::sendGmf);
    plain("GLA", &Connection::sendGla);

    const QByteArray stage("\x01;");
    withArgument("SLA", &Connection::storeLabel, QByteArray(25, 'n') + ';');
    withArgument("SBR", &Connection::setControllerBaudRate, "\x09;");
    withArgument("SLS", &Connection::startRatedStream, QByteArray("\0\0\x01\xf4;", 5));
    withArgument("SGS", &Connection::startVmStream, QByteArray("\0\0\x01\xf4;", 5));
    withArgument("SPS", &Connection::startPulsedStream, QByteArray("\0\0;", 3));
    withArgument("GIN", &Connection::getIntensity, stage);
    withArgument("SEA", &Connection::switchStabilisationOn, stage);
    withArgument("CEA", &Connection::switchStabilisationOff, stage);
    withArgument("SSH", &Connection::setAndHold, stage);
    withArgument("CSH", &Connection::clearSetAndHold, stage);
    withArgument("STF", &Connection::setTriggerFreeze, stage);
    withArgument("CTF", &Connection::clearTriggerFreeze, stage);
    withArgument("SPF", &Connection::setPFactor, "\x02\x05\xdc;");
    withArgument("GPF", &Connection::getPFactor, stage);
    withArgument("SAI", &Connection::setAdjustIn, "\x01y\xfc\x18;");
    withArgument("GAI", &Connection::getAdjustIn, "\x01x;");
    withArgument("SDS", &Connection::setDetectorSensitivity, "\x01\x05\xdc;");
    withArgument("GDS", &Connection::getDetectorSensitivity, stage);
    withArgument("SDA", &Connection::setDriveActuator, "\x01x\x05\xdc;");
    withArgument("SMD", &Connection::switchMultiplexingOn, stage);
    withArgument("CMD", &Connection::switchMultiplexingOff, stage);
    withArgument("SSE", &Connection::setSubsystem, stage);
    withArgument("RFR", &Connection::readFram, QByteArray("\0\0\xff;", 4));

    QTest::newRow("unchanged") << std::function<void(Connection&)>([](Connection& c) {
        c.sendUnchanged("GSF;");
    }) << QByteArray("GSF;");
}

void TestExchange::everyWrapperSendsItsFrame()
{
    QFETCH(std::function<void(Connection&)>, send);
    QFETCH(QByteArray, frame);
    ControllerOptions options;
    options.triggerCapable = true;
    options.vm = frame.startsWith("SGS");
    EmulatedLink link(options);
    QVERIFY(link.connect());

    send(link.client);
    QByteArray reply;
    link.client.fetchReply(reply);
    QCOMPARE(link.controller.commands(), QByteArrayList{frame});
}

void TestExchange::startFollowsFirmwareAndTriggerMode_data()
{
    QTest::addColumn<bool>("vm");
    QTest::addColumn<bool>("triggerMode");
    QTest::addColumn<QByteArray>("frame");
    const QByteArray rate("\0\0\x01\xf4;", 5);
    QTest::newRow("rated") << false << false << "SLS" + rate;
    QTest::newRow("pulsed") << false << true << QByteArray("SPS\0\0;", 6);
    QTest::newRow("VM") << true << false << "SGS" + rate;
    QTest::newRow("VM goes before pulsed") << true << true << "SGS" + rate;
}

void TestExchange::startFollowsFirmwareAndTriggerMode()
{
    QFETCH(bool, vm);
    QFETCH(bool, triggerMode);
    ControllerOptions options;
    options.vm = vm;
    options.triggerCapable = true;
    EmulatedLink link(options);
    QVERIFY(link.connectAndIdentify());
    QCOMPARE(link.client.vmFirmware(), vm);

    link.client.setTriggerMode(triggerMode);
    QVERIFY(link.startStream(500));
    QTEST(link.controller.commands().value(0), "frame");
}

void TestExchange::samplingRateIsOneTo500()
{
    TcpClient client;
    QCOMPARE(client.samplingRate(), -1);
    QCOMPARE(client.setSamplingRate(500), 1);
    for (const int refused : {0, -1, 501, 1000}) {
        QCOMPARE(client.setSamplingRate(refused), 0);
        QCOMPARE(client.samplingRate(), 500);
    }
    QCOMPARE(client.setSamplingRate(1), 1);
    QCOMPARE(client.samplingRate(), 1);
}

void TestExchange::timeoutIsAboveZero()
{
    TcpClient client;
    QCOMPARE(client.setTimeoutMs(1), 1);
    QCOMPARE(client.setTimeoutMs(0), 0);
    QCOMPARE(client.setTimeoutMs(-5), 0);
}

void TestExchange::endIsConfirmedUnlessOnTheVeryLastPoll()
{
    QVERIFY(endConfirmed(1500));
    QVERIFY(endConfirmed(1));
    QVERIFY(!endConfirmed(0));
    QVERIFY(endConfirmed(-1));
}

void TestExchange::releasedConnectionCanOnlyBeDestroyed()
{
    const LogCapture log;
    {
        EmulatedLink link;
        QVERIFY(link.connect());
        link.client.releaseInPlace();
        QVERIFY(!link.client.isRunning());
        link.client.releaseInPlace();
    }
    QCOMPARE(log.count("debug: Deleting TCP connection"), 1);
    QCOMPARE(log.count("debug: Deleting connection"), 1);
}

QTEST_GUILESS_MAIN(TestExchange)
#include "tst_exchange.moc"
