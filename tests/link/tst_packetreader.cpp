#include "link/packetreader.h"

#include <QBuffer>
#include <QRandomGenerator>
#include <QtTest>

namespace {

/// A packet whose payload is one number that can not be taken for a mark.
QByteArray packetOf(int number)
{
    QByteArray bytes("\0;", 2);
    bytes.append(QByteArray(22, static_cast<char>(number % 26 + 'a')));
    return bytes.append(';');
}

struct Reading
{
    QByteArrayList packets;
    int skipped = 0;
};

/// Reads like the stream does: as long as a whole packet's bytes wait.
Reading readAll(const QByteArray& input)
{
    QBuffer device;
    device.setData(input);
    device.open(QIODevice::ReadOnly);
    Reading reading;
    while (device.bytesAvailable() >= command::packetLength) {
        const packetreader::Result result = packetreader::read(device);
        reading.skipped += result.skipped;
        if (result.found)
            reading.packets.append(QByteArray(result.bytes.data(), int(result.bytes.size())));
    }
    return reading;
}

} // namespace

class TestPacketReader : public QObject
{
    Q_OBJECT

private slots:
    void packetsAreFound_data();
    void packetsAreFound();
    void everyWholePacketIsFoundBehindAnyNoise();
};

void TestPacketReader::packetsAreFound_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QByteArrayList>("packets");
    QTest::addColumn<int>("skipped");

    const QByteArray a = packetOf(0);
    const QByteArray b = packetOf(1);
    QByteArray corruptMark = a;
    corruptMark[24] = 'x';
    QByteArray payloadOfMarks = a;
    payloadOfMarks.replace(2, 22, QByteArray("\0;\0;\0;\0;\0;\0;\0;\0;\0;\0;\0;", 22));

    QTest::newRow("one packet") << a << QByteArrayList{a} << 0;
    QTest::newRow("two merged packets") << a + b << QByteArrayList{a, b} << 0;
    QTest::newRow("three stray bytes before") << "xyz" + a << QByteArrayList{a} << 3;
    QTest::newRow("stray bytes between") << a + "xyz" + b << QByteArrayList{a, b} << 3;
    QTest::newRow("a byte lost") << a.left(24) + b << QByteArrayList{b} << 24;
    QTest::newRow("a byte inserted") << a.left(10) + "x" + a.mid(10) + b << QByteArrayList{b} << 26;
    QTest::newRow("a mark corrupted") << corruptMark + b << QByteArrayList{b} << 25;
    QTest::newRow("started in the middle") << a.mid(13) + b << QByteArrayList{b} << 12;
    QTest::newRow("only noise") << QByteArray(40, 'x') << QByteArrayList{} << 15;
    QTest::newRow("less than a packet") << a.left(24) << QByteArrayList{} << 0;
    QTest::newRow("noise of a packet's length") << QByteArray(25, 'x') << QByteArrayList{} << 0;
    QTest::newRow("payload full of marks")
        << payloadOfMarks + b << QByteArrayList{payloadOfMarks, b} << 0;
}

void TestPacketReader::packetsAreFound()
{
    QFETCH(QByteArray, input);
    const Reading reading = readAll(input);
    QTEST(reading.packets, "packets");
    QTEST(reading.skipped, "skipped");
}

void TestPacketReader::everyWholePacketIsFoundBehindAnyNoise()
{
    QRandomGenerator random(4711);
    for (int round = 0; round < 500; ++round) {
        QByteArray input;
        QByteArrayList whole;
        for (int part = 0; part < 20; ++part) {
            const QByteArray packet = packetOf(part);
            if (random.bounded(3) == 0)
                input.append(QByteArray(random.bounded(1, 24), 'x'));
            input.append(packet);
            whole.append(packet);
        }
        QCOMPARE(readAll(input).packets, whole);
    }
}

QTEST_GUILESS_MAIN(TestPacketReader)
#include "tst_packetreader.moc"
