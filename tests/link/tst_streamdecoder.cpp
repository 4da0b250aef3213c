#include "link/streamdecoder.h"
#include "support/emulatedlink.h"
#include "support/logcapture.h"

#include <QBuffer>
#include <QDateTime>
#include <QtTest>

namespace {

constexpr StreamDecoder::Firmware usual{40, false};
constexpr StreamDecoder::Firmware vm{40, true};
constexpr StreamDecoder::Firmware old{packet::lastFirmwareWithoutFlags, false};
constexpr char lastMark = '\x80';
constexpr char withheldMark = '\x04';

/// A decoder on bytes that are all there at once.
struct DecoderBench
{
    DecoderBench() { device.open(QIODevice::ReadWrite); }

    /// Lets these bytes arrive.
    void receive(const QByteArray& bytes)
    {
        const qint64 readUpTo = device.pos();
        device.seek(device.size());
        device.write(bytes);
        device.seek(readUpTo);
    }
    bool decode(StreamDecoder::Firmware firmware = usual)
    {
        return decoder.decode(device, firmware);
    }
    QVector<int> takeX1()
    {
        QVector<int> values;
        MeasureSample sample;
        while (store.takeSample(sample) != 0)
            values.append(sample.x1);
        return values;
    }

    QBuffer device;
    measureStore store{100};
    StreamDecoder decoder{store};
};

} // namespace

class TestStreamDecoder : public QObject
{
    Q_OBJECT

private slots:
    void everyPacketBecomesASample();
    void partialPacketStaysInTheDevice();
    void anyCutGivesTheSameSamples();
    void sampleHasTheTimeOfReading();
    void strayBytesAreSkippedLoggedAndCounted();
    void lostByteCostsOnePacket();
    void packetWithoutMarksAtTheEndOfTheInputIsDropped();
    void cleanStreamSkipsNothing();
    void lastPacketIsStoredAndEndsTheDecoding();
    void oldFirmwareKnowsNoLastPacket();
    void withheldPacketIsStoredWithoutVmFirmware();
    void withheldPacketIsNotStoredWithVmFirmware();
    void withheldLastPacketEndsTheStreamAllTheSame();
    void oldFirmwareHasNoFlags();
    void countsGoOnOverStreams();
};

void TestStreamDecoder::everyPacketBecomesASample()
{
    DecoderBench bench;
    bench.receive(rawPacket(7) + rawPacket(8));
    QVERIFY(!bench.decode());
    QCOMPARE(bench.takeX1(), QVector<int>({7, 8}));
}

void TestStreamDecoder::partialPacketStaysInTheDevice()
{
    constexpr int part = 10;
    DecoderBench bench;
    bench.receive(rawPacket(7) + rawPacket(8).left(part));
    QVERIFY(!bench.decode());
    QCOMPARE(bench.takeX1(), QVector<int>({7}));
    QCOMPARE(bench.device.bytesAvailable(), qint64(part));

    bench.receive(rawPacket(8).mid(part));
    QVERIFY(!bench.decode());
    QCOMPARE(bench.takeX1(), QVector<int>({8}));
}

void TestStreamDecoder::anyCutGivesTheSameSamples()
{
    const QByteArray stream = rawPacket(7) + rawPacket(8) + rawPacket(9);
    for (int cut = 0; cut <= stream.size(); ++cut) {
        DecoderBench bench;
        bench.receive(stream.left(cut));
        QVERIFY(!bench.decode());
        bench.receive(stream.mid(cut));
        QVERIFY(!bench.decode());
        QCOMPARE(bench.takeX1(), QVector<int>({7, 8, 9}));
        QCOMPARE(bench.decoder.skippedBytes(), quint64(0));
    }
}

void TestStreamDecoder::sampleHasTheTimeOfReading()
{
    DecoderBench bench;
    QCOMPARE(bench.decoder.lastPacketTime(), qint64(0));
    bench.receive(rawPacket(7));
    const qint64 before = QDateTime::currentMSecsSinceEpoch();
    bench.decode();
    const qint64 after = QDateTime::currentMSecsSinceEpoch();

    MeasureSample sample;
    QCOMPARE(bench.store.takeSample(sample), 1);
    QVERIFY(qint64(sample.timeMs) >= before && qint64(sample.timeMs) <= after);
    QCOMPARE(bench.decoder.lastPacketTime(), qint64(sample.timeMs));
}

void TestStreamDecoder::strayBytesAreSkippedLoggedAndCounted()
{
    const LogCapture log;
    DecoderBench bench;
    bench.receive("xyz" + rawPacket(7) + "uv" + rawPacket(8));
    QVERIFY(!bench.decode());
    QCOMPARE(bench.takeX1(), QVector<int>({7, 8}));
    QCOMPARE(log.lines(), QStringList({"debug: Incomplete stream message. Bytes skipped: 3",
                                       "debug: Incomplete stream message. Bytes skipped: 2"}));
    QCOMPARE(bench.decoder.skippedBytes(), quint64(5));
}

void TestStreamDecoder::lostByteCostsOnePacket()
{
    DecoderBench bench;
    QByteArray stream = rawPacket(7) + rawPacket(8) + rawPacket(9);
    stream.remove(command::packetLength, 1);
    bench.receive(stream);
    QVERIFY(!bench.decode());
    QCOMPARE(bench.takeX1(), QVector<int>({7, 9}));
    QCOMPARE(bench.decoder.skippedBytes(), quint64(command::packetLength - 1));
}

void TestStreamDecoder::packetWithoutMarksAtTheEndOfTheInputIsDropped()
{
    DecoderBench bench;
    bench.receive(QByteArray(command::packetLength + 2, 'x'));
    QVERIFY(!bench.decode());
    QCOMPARE(bench.device.bytesAvailable(), qint64(0));
    QCOMPARE(bench.decoder.skippedBytes(), quint64(command::packetLength + 2));

    bench.receive(rawPacket(7));
    QVERIFY(!bench.decode());
    QCOMPARE(bench.takeX1(), QVector<int>({7}));
}

void TestStreamDecoder::cleanStreamSkipsNothing()
{
    const LogCapture log;
    DecoderBench bench;
    bench.receive(rawPacket(7) + rawPacket(8, lastMark));
    QVERIFY(bench.decode());
    QCOMPARE(bench.decoder.skippedBytes(), quint64(0));
    QVERIFY(log.lines().isEmpty());
}

void TestStreamDecoder::lastPacketIsStoredAndEndsTheDecoding()
{
    DecoderBench bench;
    bench.receive(rawPacket(7) + rawPacket(8, lastMark) + QByteArray("\0;", 2) + rawPacket(9));
    QVERIFY(bench.decode());
    QCOMPARE(bench.takeX1(), QVector<int>({7, 8}));
    QCOMPARE(bench.device.readAll(), QByteArray("\0;", 2) + rawPacket(9));
}

void TestStreamDecoder::oldFirmwareKnowsNoLastPacket()
{
    DecoderBench bench;
    bench.receive(rawPacket(7, lastMark) + rawPacket(8));
    QVERIFY(!bench.decode(old));
    QCOMPARE(bench.takeX1(), QVector<int>({7, 8}));
}

void TestStreamDecoder::withheldPacketIsStoredWithoutVmFirmware()
{
    DecoderBench bench;
    bench.receive(rawPacket(7, 0, withheldMark));
    QVERIFY(!bench.decode(usual));
    QCOMPARE(bench.takeX1(), QVector<int>({7}));
}

void TestStreamDecoder::withheldPacketIsNotStoredWithVmFirmware()
{
    DecoderBench bench;
    bench.receive(rawPacket(7, 0, withheldMark) + rawPacket(8));
    QVERIFY(!bench.decode(vm));
    QCOMPARE(bench.takeX1(), QVector<int>({8}));
    // It is withheld, not lost.
    QCOMPARE(bench.decoder.skippedBytes(), quint64(0));
}

void TestStreamDecoder::withheldLastPacketEndsTheStreamAllTheSame()
{
    DecoderBench bench;
    bench.receive(rawPacket(7) + rawPacket(8, lastMark, withheldMark) + rawPacket(9));
    QVERIFY(bench.decode(vm));
    QCOMPARE(bench.takeX1(), QVector<int>({7}));
}

void TestStreamDecoder::oldFirmwareHasNoFlags()
{
    DecoderBench bench;
    bench.receive(rawPacket(7, '\x78', '\x03'));
    QVERIFY(!bench.decode(old));
    MeasureSample sample;
    QCOMPARE(bench.store.takeSample(sample), 1);
    QCOMPARE(sample.stabilised1 + sample.stabilised2 + sample.active1 + sample.active2
                 + sample.multiplex1 + sample.multiplex2,
             0);
}

void TestStreamDecoder::countsGoOnOverStreams()
{
    DecoderBench bench;
    bench.receive("x" + rawPacket(7, lastMark));
    QVERIFY(bench.decode());
    bench.receive("y" + rawPacket(8, lastMark));
    QVERIFY(bench.decode());
    QCOMPARE(bench.decoder.skippedBytes(), quint64(2));
}

QTEST_GUILESS_MAIN(TestStreamDecoder)
#include "tst_streamdecoder.moc"
