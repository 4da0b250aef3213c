#include "link/packet.h"
#include "support/emulatedlink.h"
#include "support/logcapture.h"

#include <QtTest>

#include <algorithm>

namespace {

using emulator::ControllerOptions;

constexpr int startAnswer = 1;

ControllerOptions scripted(int samples, int firmware = 40)
{
    ControllerOptions options;
    options.firmware = firmware;
    options.script = numberedSamples(samples);
    return options;
}

/// A link whose stream is on and carries only what the test sends raw.
struct QuietStream : EmulatedLink
{
    explicit QuietStream(ControllerOptions options = {}, int timeoutMs = shortTimeoutMs)
        : EmulatedLink((options.script = numberedSamples(startAnswer), options), timeoutMs)
    {}
    bool begin() { return connectAndIdentify() && startStream(); }
};

QVector<int> x1Of(const std::vector<MeasureSample>& samples)
{
    QVector<int> values;
    for (const MeasureSample& sample : samples)
        values.append(sample.x1);
    return values;
}

int flagsOf(const MeasureSample& sample)
{
    return sample.stabilised1 | sample.stabilised2 | sample.active1 | sample.active2
           | sample.multiplex1 | sample.multiplex2;
}

} // namespace

class TestStream : public QObject
{
    Q_OBJECT

private slots:
    void packetThatAnswersTheStartIsNotStored();
    void strayBytesBeforeAPacketAreSkippedAndLogged();
    void lossesAreLoggedOnceWhenTheStreamIsStopped();
    void lossesAreLoggedWhenTheConnectionEnds();
    void streamWithoutLossesIsStoppedWithoutAWordOfThem();
    void partialPacketIsCompletedLater();
    void flagsArriveWithTheSamples();
    void oldFirmwareHasNoFlagsWhateverThePacketHolds();
    void withheldPacketsAreStoredWithoutVmFirmware();
    void withheldPacketsAreNotStoredWithVmFirmware();
    void withheldLastPacketIsNotStoredWithVmFirmware();
    void stopIsAnsweredBehindTheMarkedLastPacket();
    void stopWithLessThanItsAnswerIsEmptyAfterTimeout_data();
    void stopWithLessThanItsAnswerIsEmptyAfterTimeout();
    void stopOfOldFirmwareTakesItsWholeTime();
    void stopOfOldFirmwareWithoutItsAnswerLeavesTheStreamOn();
    void stopWithoutStreamTakesItsWholeTime();
    void streamThatEndsByItselfIsNoticed();
    void unansweredStopLeavesTheStreamOn();
    void streamWithoutRateFollowsPulses();
    void refusedStartStreamsNothing();
    void oldSamplesNeverAppearInANewStream();
    void everyKindOfFirmwareStreamsAndStops_data();
    void everyKindOfFirmwareStreamsAndStops();
    void wholePacketsSurviveFaults_data();
    void wholePacketsSurviveFaults();
    void everyPacketOfAFastStreamIsStored();
    void slowReaderLosesTheOldestSamples();
};

void TestStream::packetThatAnswersTheStartIsNotStored()
{
    EmulatedLink link(scripted(3));
    QVERIFY(link.connectAndIdentify());
    QVERIFY(link.startStream());
    QTRY_COMPARE(link.client.samplesStored(), quint64(2));
    QCOMPARE(x1Of(link.takeSamples()), QVector<int>({2, 3}));
}

void TestStream::strayBytesBeforeAPacketAreSkippedAndLogged()
{
    const LogCapture log;
    QuietStream link;
    QVERIFY(link.begin());

    link.controller.sendRaw("xyz" + rawPacket(7));
    QTRY_COMPARE(link.client.samplesStored(), quint64(1));
    QCOMPARE(x1Of(link.takeSamples()), QVector<int>({7}));
    QCOMPARE(log.lines().filter("Bytes skipped"),
             QStringList("debug: Incomplete stream message. Bytes skipped: 3"));
    QCOMPARE(link.client.skippedBytes(), quint64(3));
}

void TestStream::lossesAreLoggedOnceWhenTheStreamIsStopped()
{
    const LogCapture log;
    QuietStream link;
    QVERIFY(link.begin());
    // A store holds one less than its capacity.
    link.controller.sendRaw("xyz" + rawPacket(7).repeated(Connection::storeCapacity));
    QTRY_COMPARE(link.client.droppedSamples(), quint64(1));
    link.client.stopStream();
    const quint64 dropped = link.client.droppedSamples();
    QCOMPARE(log.lines().filter("has lost"),
             QStringList(QStringLiteral("info: Stream of %1 has lost samples: %2 bytes: 3")
                             .arg(link.client.address())
                             .arg(dropped)));

    QVERIFY(link.startStream());
    link.client.stopStream();
    QCOMPARE(log.lines().filter("has lost").size(), 1);
}

void TestStream::lossesAreLoggedWhenTheConnectionEnds()
{
    const LogCapture log;
    {
        QuietStream link;
        QVERIFY(link.begin());
        link.controller.sendRaw("xyz" + rawPacket(7));
        QTRY_COMPARE(link.client.samplesStored(), quint64(1));
    }
    QCOMPARE(log.lines().filter("has lost samples: 0 bytes: 3").size(), 1);
}

void TestStream::streamWithoutLossesIsStoppedWithoutAWordOfThem()
{
    const LogCapture log;
    QuietStream link;
    QVERIFY(link.begin());
    link.client.stopStream();
    QCOMPARE(log.lines().filter("has lost"), QStringList());
}

void TestStream::partialPacketIsCompletedLater()
{
    QuietStream link({}, EmulatedLink::shortTimeoutMs);
    QVERIFY(link.begin());

    link.controller.sendRaw(rawPacket(7).left(10));
    QTest::qWait(2 * EmulatedLink::shortTimeoutMs);
    QCOMPARE(link.client.samplesStored(), quint64(0));
    link.controller.sendRaw(rawPacket(7).mid(10) + rawPacket(8));
    QTRY_COMPARE(link.client.samplesStored(), quint64(2));
    QCOMPARE(x1Of(link.takeSamples()), QVector<int>({7, 8}));
}

void TestStream::flagsArriveWithTheSamples()
{
    QuietStream link;
    QVERIFY(link.begin());
    link.controller.sendRaw(rawPacket(7, '\x48', '\x02'));
    QTRY_COMPARE(link.client.samplesStored(), quint64(1));

    const MeasureSample sample = link.takeSamples().front();
    QCOMPARE(int(sample.stabilised1), 1);
    QCOMPARE(int(sample.stabilised2), 0);
    QCOMPARE(int(sample.active1), 0);
    QCOMPARE(int(sample.active2), 1);
    QCOMPARE(int(sample.multiplex1), 0);
    QCOMPARE(int(sample.multiplex2), 1);
}

void TestStream::oldFirmwareHasNoFlagsWhateverThePacketHolds()
{
    ControllerOptions options;
    options.firmware = 10;
    QuietStream link(options);
    QVERIFY(link.begin());

    link.controller.sendRaw(rawPacket(7, '\xff', '\xff') + rawPacket(8, '\xff', '\xff'));
    QTRY_COMPARE(link.client.samplesStored(), quint64(2));
    for (const MeasureSample& sample : link.takeSamples())
        QCOMPARE(flagsOf(sample), 0);
    QVERIFY(link.client.isStreaming());
}

void TestStream::withheldPacketsAreStoredWithoutVmFirmware()
{
    QuietStream link;
    QVERIFY(link.begin());
    link.controller.sendRaw(rawPacket(7, 0, '\x04') + rawPacket(8));
    QTRY_COMPARE(link.client.samplesStored(), quint64(2));
    QCOMPARE(x1Of(link.takeSamples()), QVector<int>({7, 8}));
}

void TestStream::withheldPacketsAreNotStoredWithVmFirmware()
{
    ControllerOptions options;
    options.vm = true;
    QuietStream link(options);
    QVERIFY(link.begin());
    QVERIFY(link.client.vmFirmware());
    link.controller.sendRaw(rawPacket(7, 0, '\x04') + rawPacket(8));
    QTRY_COMPARE(link.client.samplesStored(), quint64(1));
    QCOMPARE(x1Of(link.takeSamples()), QVector<int>({8}));
}

void TestStream::withheldLastPacketIsNotStoredWithVmFirmware()
{
    ControllerOptions options;
    options.vm = true;
    QuietStream link(options);
    QVERIFY(link.begin());
    link.controller.sendRaw(rawPacket(7) + rawPacket(8, '\x80', '\x04'));
    QTRY_VERIFY(!link.client.isStreaming());
    QCOMPARE(x1Of(link.takeSamples()), QVector<int>({7}));
}

void TestStream::stopWithLessThanItsAnswerIsEmptyAfterTimeout_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("one byte") << QByteArray(1, '\0');
}

void TestStream::stopWithLessThanItsAnswerIsEmptyAfterTimeout()
{
    QFETCH(QByteArray, answer);
    ControllerOptions options;
    options.faults.silent = {"CLS"};
    options.script = numberedSamples(startAnswer);
    EmulatedLink link(options);
    QVERIFY(link.connect());
    link.client.setFirmwareVersion(40);
    QVERIFY(link.startStream());

    link.client.clearLiveStream();
    QElapsedTimer time;
    time.start();
    link.controller.sendRaw(rawPacket(8, '\x80') + answer);
    QByteArray reply("left over");
    QVERIFY(link.client.fetchReply(reply));
    QVERIFY(reply.isEmpty());
    QVERIFY(time.elapsed() >= EmulatedLink::shortTimeoutMs);
    QVERIFY(time.elapsed() < 2 * EmulatedLink::shortTimeoutMs);
    QVERIFY(!link.client.isStreaming());
    QCOMPARE(x1Of(link.takeSamples()), QVector<int>({8}));
}

void TestStream::stopIsAnsweredBehindTheMarkedLastPacket()
{
    ControllerOptions options;
    options.firmware = 11;
    EmulatedLink link(options, 2000);
    QVERIFY(link.connectAndIdentify());
    QVERIFY(link.startStream());
    QTRY_VERIFY(link.client.samplesStored() > 5);

    QCOMPARE(link.exchange(&Connection::clearLiveStream), QByteArray("\0;", 2));
    QVERIFY(!link.client.isStreaming());
    // All but the answer to the start were stored, the marked last one included.
    QCOMPARE(qint64(link.client.samplesStored()), link.controller.packetsSent() - startAnswer);
}

void TestStream::stopOfOldFirmwareTakesItsWholeTime()
{
    ControllerOptions options;
    options.firmware = 10;
    EmulatedLink link(options, Connection::defaultTimeoutMs);
    QVERIFY(link.connectAndIdentify());
    QVERIFY(link.startStream());
    QTRY_VERIFY(link.client.samplesStored() > 5);

    const LogCapture log;
    QElapsedTimer time;
    time.start();
    QCOMPARE(link.exchange(&Connection::clearLiveStream), QByteArray("\0;", 2));
    QVERIFY(time.elapsed() >= 1125);
    QVERIFY(time.elapsed() < 1500);
    QVERIFY(!link.client.isStreaming());
    QCOMPARE(log.lines(), QStringList({"debug: Saving reply", "debug: Finished saving reply"}));
}

void TestStream::stopOfOldFirmwareWithoutItsAnswerLeavesTheStreamOn()
{
    ControllerOptions options;
    options.firmware = 10;
    options.faults.silent = {"CLS"};
    EmulatedLink link(options);
    QVERIFY(link.connect());
    link.client.setFirmwareVersion(10);
    QVERIFY(link.startStream());

    link.client.stopStream();
    QVERIFY(link.client.isStreaming());
    link.controller.setFaults({});
    link.client.stopStream();
    QVERIFY(!link.client.isStreaming());
}

void TestStream::stopWithoutStreamTakesItsWholeTime()
{
    EmulatedLink link({}, Connection::defaultTimeoutMs);
    QVERIFY(link.connect());
    QElapsedTimer time;
    time.start();
    QCOMPARE(link.exchange(&Connection::clearLiveStream), QByteArray("\0;", 2));
    QVERIFY(time.elapsed() >= 1125);
    QVERIFY(time.elapsed() < 1500);
}

void TestStream::streamThatEndsByItselfIsNoticed()
{
    QuietStream link;
    QVERIFY(link.begin());
    link.controller.sendRaw(rawPacket(7) + rawPacket(8, '\x80'));
    QTRY_VERIFY(!link.client.isStreaming());
    QCOMPARE(x1Of(link.takeSamples()), QVector<int>({7, 8}));
}

void TestStream::unansweredStopLeavesTheStreamOn()
{
    ControllerOptions options;
    options.faults.silent = {"CLS"};
    EmulatedLink link(options);
    QVERIFY(link.connect());
    link.client.setFirmwareVersion(40);
    QVERIFY(link.startStream());

    link.client.clearLiveStream();
    QByteArray reply;
    QVERIFY(!link.client.fetchReply(reply));
    QVERIFY(link.client.isStreaming());
    QCOMPARE(link.exchange(&Connection::getStatusFlags), QByteArray());

    link.controller.setFaults({});
    QCOMPARE(link.exchange(&Connection::clearLiveStream), QByteArray("\0;", 2));
    QVERIFY(!link.client.isStreaming());
}

void TestStream::streamWithoutRateFollowsPulses()
{
    ControllerOptions options;
    options.triggerCapable = true;
    options.triggerRateHz = 100;
    EmulatedLink link(options);
    QVERIFY(link.connectAndIdentify());
    QVERIFY(link.client.triggerCapable());
    link.client.setTriggerMode(true);

    QVERIFY(link.startStream());
    QTRY_VERIFY(link.client.samplesStored() > 3);
    link.client.stopStream();
    QVERIFY(!link.client.isStreaming());
}

void TestStream::refusedStartStreamsNothing()
{
    ControllerOptions options;
    options.faults.refuse = {"SLS"};
    EmulatedLink link(options);
    QVERIFY(link.connectAndIdentify());
    QVERIFY(!link.startStream());
    QVERIFY(!link.client.isStreaming());
    // A refusal leaves the link usable.
    QCOMPARE(link.exchange(&Connection::getStatusFlags).size(), 4);
}

void TestStream::oldSamplesNeverAppearInANewStream()
{
    EmulatedLink link(scripted(5));
    QVERIFY(link.connectAndIdentify());
    QVERIFY(link.startStream());
    QTRY_COMPARE(link.client.samplesStored(), quint64(4));
    link.client.stopStream();

    emulator::PacketValues other{};
    other[0].x = 900;
    link.controller.setScript({other, other});
    QVERIFY(link.startStream());
    QTRY_VERIFY(link.client.samplesStored() > 5);
    for (const int x1 : x1Of(link.takeSamples()))
        QCOMPARE(x1, 900);
}

void TestStream::everyKindOfFirmwareStreamsAndStops_data()
{
    QTest::addColumn<int>("firmware");
    QTest::addColumn<bool>("vm");
    QTest::newRow("9") << 9 << false;
    QTest::newRow("10") << 10 << false;
    QTest::newRow("11") << 11 << false;
    QTest::newRow("31") << 31 << false;
    QTest::newRow("VM 10") << 10 << true;
    QTest::newRow("VM 40") << 40 << true;
}

void TestStream::everyKindOfFirmwareStreamsAndStops()
{
    QFETCH(int, firmware);
    ControllerOptions options;
    options.firmware = firmware;
    QFETCH(bool, vm);
    options.vm = vm;
    options.script = numberedSamples(20);
    EmulatedLink link(options);
    QVERIFY(link.connectAndIdentify());
    QCOMPARE(link.client.firmwareVersion(), firmware);

    for (int round = 0; round < 2; ++round) {
        QVERIFY(link.startStream());
        QTRY_COMPARE(link.client.samplesStored(), quint64(19 * (round + 1) + round));
        QCOMPARE(x1Of(link.takeSamples()).mid(0, 3), QVector<int>({2, 3, 4}));
        link.client.stopStream();
        QVERIFY(!link.client.isStreaming());
        if (!packet::hasFlags(firmware))
            break;
    }
}

void TestStream::wholePacketsSurviveFaults_data()
{
    QTest::addColumn<int>("dropEvery");
    QTest::addColumn<int>("insertEvery");
    QTest::addColumn<int>("corruptEvery");
    QTest::newRow("lost bytes") << 7 << 0 << 0;
    QTest::newRow("inserted bytes") << 0 << 5 << 0;
    QTest::newRow("corrupted bytes") << 0 << 0 << 3;
    QTest::newRow("all of it") << 11 << 7 << 5;
}

void TestStream::wholePacketsSurviveFaults()
{
    QFETCH(int, dropEvery);
    QFETCH(int, insertEvery);
    QFETCH(int, corruptEvery);
    constexpr int packets = 400;
    constexpr int insertedBytes = 3;
    const LogCapture log;
    // A corrupted flag byte would end the stream of a firmware that has flags.
    ControllerOptions options = scripted(packets, packet::lastFirmwareWithoutFlags);
    options.faults.dropByteEvery = dropEvery;
    options.faults.insertBytesEvery = insertEvery;
    options.faults.insertCount = insertedBytes;
    options.faults.corruptByteEvery = corruptEvery;
    EmulatedLink link(options);
    QVERIFY(link.connectAndIdentify());
    QVERIFY(link.startStream());
    QTRY_COMPARE(link.controller.packetsSent(), qint64(packets));

    const QVector<emulator::PacketValues> script = numberedSamples(packets);
    const auto hit = [](int number, int every) { return every > 0 && number % every == 0; };
    QVector<int> whole;
    for (int number = 1 + startAnswer; number <= packets; ++number) {
        if (!hit(number, dropEvery) && !hit(number, corruptEvery))
            whole.append(script[number - 1][0].x);
    }
    QVERIFY(whole.size() > packets / 2);
    QVector<int> stored;
    const auto everyWholeOneIsStored = [&] {
        for (const MeasureSample& sample : link.takeSamples()) {
            if (sample.x1 == sample.y1)
                stored.append(sample.x1);
        }
        const auto isStoredOnce = [&](int x1) { return stored.count(x1) == 1; };
        return std::all_of(whole.cbegin(), whole.cend(), isStoredOnce);
    };
    QTRY_VERIFY(everyWholeOneIsStored());

    // A corrupted packet that nothing has followed yet is dropped whole, without a search.
    const QStringList skips = log.lines().filter("Bytes skipped");
    if (dropEvery > 0 || insertEvery > 0)
        QVERIFY(!skips.isEmpty());
    if (dropEvery == 0 && corruptEvery == 0) {
        QCOMPARE(skips.size(), packets / insertEvery);
        QCOMPARE(skips.count("debug: Incomplete stream message. Bytes skipped: 3"), skips.size());
    }
}

void TestStream::everyPacketOfAFastStreamIsStored()
{
    EmulatedLink link;
    QVERIFY(link.connectAndIdentify());
    QVERIFY(link.startStream(500));
    QTRY_VERIFY(link.client.samplesStored() >= 1000);
    link.client.stopStream();
    QCOMPARE(qint64(link.client.samplesStored()), link.controller.packetsSent() - startAnswer);
    QCOMPARE(link.client.skippedBytes(), quint64(0));
}

void TestStream::slowReaderLosesTheOldestSamples()
{
    constexpr int packets = 1100;
    EmulatedLink link(scripted(packets));
    QVERIFY(link.connectAndIdentify());
    // The command carries a rate that the connection itself would not store.
    link.client.startStream(command::streamArgument(1000));
    QByteArray reply;
    QVERIFY(link.client.fetchReply(reply));
    QTRY_COMPARE(link.client.samplesStored(), quint64(packets - startAnswer));

    const QVector<int> stored = x1Of(link.takeSamples());
    QCOMPARE(stored.size(), Connection::storeCapacity - 1);
    QCOMPARE(link.client.droppedSamples(), quint64(packets - startAnswer - stored.size()));
    QCOMPARE(stored.last(), int(numberedSamples(packets).last()[0].x));
}

QTEST_GUILESS_MAIN(TestStream)
#include "tst_stream.moc"
