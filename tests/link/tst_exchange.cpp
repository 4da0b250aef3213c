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
/// In which bytes that nobody asked for surely reach the connection's thread.
constexpr int strayByteMs = 50;

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
    void strayByteBelongsToTheReplyOfTheNextCommand();
    void strayByteDoesNotDelayAShorterReply();
    void everyWrapperSendsItsFrameAndTakesItsReply_data();
    void everyWrapperSendsItsFrameAndTakesItsReply();
    void triggerFreezeAsksForMoreThanComes();
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
    QVERIFY(time.elapsed() < 2 * EmulatedLink::shortTimeoutMs);
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
    QVERIFY(time.elapsed() < 2 * EmulatedLink::shortTimeoutMs);
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
    QVERIFY(time.elapsed() < 4 * EmulatedLink::shortTimeoutMs);
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
    QVERIFY(missingReplyMs >= 1500 && missingReplyMs < 2250);
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
    link.client.getStatusFlags();
    QByteArray reply;
    QVERIFY(!link.client.fetchReply(reply));
    QCOMPARE(reply, QByteArray());
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
    QCOMPARE(startStreamAtRate(link.client, 100), StreamStart::NoReply);
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

void TestExchange::strayByteBelongsToTheReplyOfTheNextCommand()
{
    EmulatedLink link(withFaults(silence("GID")), longTimeoutMs);
    QVERIFY(link.connect());
    QCOMPARE(link.exchange(&Connection::sendShs).size(), 2);

    link.controller.sendRaw("x");
    QTest::qWait(strayByteMs);
    link.client.getControllerId();
    const QByteArray bytes = link.controller.idReply();
    link.controller.sendRaw(bytes.left(20));
    QTest::qWait(strayByteMs);
    link.controller.sendRaw(bytes.mid(20));
    QByteArray reply;
    QVERIFY(link.client.fetchReply(reply));
    QCOMPARE(reply, "x" + bytes.left(49));
}

void TestExchange::strayByteDoesNotDelayAShorterReply()
{
    EmulatedLink link({}, longTimeoutMs);
    QVERIFY(link.connect());
    QCOMPARE(link.exchange(&Connection::getStatusFlags).size(), 4);

    link.controller.sendRaw("x");
    QTest::qWait(strayByteMs);
    QElapsedTimer time;
    time.start();
    QCOMPARE(link.exchange(&Connection::sendShs), QByteArray("x\0", 2));
    QVERIFY(time.elapsed() < longTimeoutMs);
}

void TestExchange::everyWrapperSendsItsFrameAndTakesItsReply_data()
{
    using Plain = void (Connection::*)();
    using WithArgument = void (Connection::*)(const QByteArray&);
    QTest::addColumn<std::function<void(Connection&)>>("send");
    QTest::addColumn<QByteArray>("frame");
    QTest::addColumn<int>("answerLength");

    const auto plain = [](const char* name, Plain command, int answerLength) {
        QTest::newRow(name) << std::function<void(Connection&)>(
            [command](Connection& c) { (c.*command)(); })
                            << QByteArray(name) + ';' << answerLength;
    };
    const auto withArgument = [](const char* name, WithArgument command, const QByteArray& argument,
                                 int answerLength) {
        QTest::newRow(name) << std::function<void(Connection&)>(
            [command, argument](Connection& c) { (c.*command)(argument); })
                            << QByteArray(name) + argument << answerLength;
    };

    plain("GID", &Connection::getControllerId, 50);
    plain("S1S", &Connection::triggerOneShot, 25);
    plain("GSF", &Connection::getStatusFlags, 4);
    plain("GAS", &Connection::getActiveSignal, 5);
    plain("GCA", &Connection::getCommonAdjustment, 11);
    plain("GER", &Connection::getError, 7);
    plain("GDA", &Connection::sendGda, 11);
    plain("SHS", &Connection::sendShs, 2);
    plain("CHS", &Connection::sendChs, 2);
    plain("GMF", &Connection::sendGmf, 4);
    plain("GLA", &Connection::sendGla, 29);

    const QByteArray stage("\x01;");
    withArgument("SLA", &Connection::storeLabel, QByteArray(25, 'n') + ';', 2);
    withArgument("SBR", &Connection::setControllerBaudRate, "\x09;", 2);
    withArgument("SLS", &Connection::startRatedStream, QByteArray("\0\0\x01\xf4;", 5), 25);
    withArgument("SGS", &Connection::startVmStream, QByteArray("\0\0\x01\xf4;", 5), 25);
    withArgument("SPS", &Connection::startPulsedStream, QByteArray("\0\0;", 3), 2);
    withArgument("GIN", &Connection::getIntensity, stage, 5);
    withArgument("SEA", &Connection::switchStabilisationOn, stage, 2);
    withArgument("CEA", &Connection::switchStabilisationOff, stage, 2);
    withArgument("SSH", &Connection::setAndHold, stage, 2);
    withArgument("CSH", &Connection::clearSetAndHold, stage, 2);
    withArgument("CTF", &Connection::clearTriggerFreeze, stage, 2);
    withArgument("SPF", &Connection::setPFactor, "\x02\x05\xdc;", 2);
    withArgument("GPF", &Connection::getPFactor, stage, 5);
    withArgument("SAI", &Connection::setAdjustIn, "\x01y\xfc\x18;", 2);
    withArgument("GAI", &Connection::getAdjustIn, "\x01x;", 5);
    withArgument("SDS", &Connection::setDetectorSensitivity, "\x01\x05\xdc;", 2);
    withArgument("GDS", &Connection::getDetectorSensitivity, stage, 5);
    withArgument("SDA", &Connection::setDriveActuator, "\x01x\x05\xdc;", 2);
    withArgument("SMD", &Connection::switchMultiplexingOn, stage, 2);
    withArgument("CMD", &Connection::switchMultiplexingOff, stage, 2);
    withArgument("SSE", &Connection::setSubsystem, stage, 2);
    withArgument("RFR", &Connection::readFram, QByteArray("\0\0\xff;", 4), 258);

    QTest::newRow("unchanged") << std::function<void(Connection&)>([](Connection& c) {
        c.sendUnchanged("GID;");
    }) << QByteArray("GID;") << 50;
}

void TestExchange::everyWrapperSendsItsFrameAndTakesItsReply()
{
    QFETCH(std::function<void(Connection&)>, send);
    QFETCH(QByteArray, frame);
    ControllerOptions options;
    options.triggerCapable = true;
    options.vm = frame.startsWith("SGS");
    EmulatedLink link(options, longTimeoutMs);
    QVERIFY(link.connect());

    QElapsedTimer time;
    time.start();
    send(link.client);
    QByteArray reply;
    QVERIFY(link.client.fetchReply(reply));
    QCOMPARE(link.controller.commands(), QByteArrayList{frame});
    // Asking for less leaves a rest behind, asking for more waits for what never comes.
    QTEST(reply.size(), "answerLength");
    QVERIFY(time.elapsed() < longTimeoutMs);
}

void TestExchange::triggerFreezeAsksForMoreThanComes()
{
    EmulatedLink link;
    QVERIFY(link.connect());
    QElapsedTimer time;
    time.start();
    link.client.setTriggerFreeze("\x01;");
    QByteArray reply;
    QVERIFY(link.client.fetchReply(reply));
    QCOMPARE(link.controller.commands(), QByteArrayList{"STF\x01;"});
    QCOMPARE(reply, QByteArray("\0;", 2));
    QVERIFY(time.elapsed() >= EmulatedLink::shortTimeoutMs);
    QVERIFY(time.elapsed() < 2 * EmulatedLink::shortTimeoutMs);
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
