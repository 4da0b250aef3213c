#include "link/packet.h"

#include <QtTest>

namespace {

/// x1 1000, y1 -2, i1 40000; x2 -32768, y2 32767, i2 3; drives 1, -1, 2, -2.
const char plainPacket[] = "\x00;\xff\xff\x03\xe8\xff\xfe\x9c\x40\x80\x00\x7f\xff\x00\x03"
                           "\x00\x01\xff\xff\x00\x02\xff\xfe;";

PacketBytes bytesOf(const char* text)
{
    PacketBytes bytes;
    std::copy(text, text + bytes.size(), bytes.begin());
    return bytes;
}

PacketBytes withFlags(char flagsA, char flagsB)
{
    PacketBytes bytes = bytesOf(plainPacket);
    bytes[2] = flagsA;
    bytes[3] = flagsB;
    return bytes;
}

} // namespace

class TestPacket : public QObject
{
    Q_OBJECT

private slots:
    void valuesAreTakenFromTheirPlaces();
    void eachFlagHasItsBit_data();
    void eachFlagHasItsBit();
    void oldFirmwareHasNoFlags();
    void lastPacketIsMarkedFromFirmware11On();
    void packetIsWithheldOnlyWithVmFirmware();
    void alignmentIsThreeBytes();
};

void TestPacket::valuesAreTakenFromTheirPlaces()
{
    const MeasureSample sample = packet::toSample(bytesOf(plainPacket), 40, 123456789012);
    QCOMPARE(sample.timeMs, quint64(123456789012));
    QCOMPARE(sample.x1, qint16(1000));
    QCOMPARE(sample.y1, qint16(-2));
    QCOMPARE(sample.intensity1, quint16(40000));
    QCOMPARE(sample.x2, qint16(-32768));
    QCOMPARE(sample.y2, qint16(32767));
    QCOMPARE(sample.intensity2, quint16(3));
    QCOMPARE(sample.rx1, qint16(1));
    QCOMPARE(sample.ry1, qint16(-1));
    QCOMPARE(sample.rx2, qint16(2));
    QCOMPARE(sample.ry2, qint16(-2));
}

void TestPacket::eachFlagHasItsBit_data()
{
    QTest::addColumn<int>("flagsA");
    QTest::addColumn<int>("flagsB");
    QTest::addColumn<QVector<int>>("expected");
    QTest::newRow("none") << 0x00 << 0x00 << QVector<int>{0, 0, 0, 0, 0, 0};
    QTest::newRow("stage 1 on") << 0x08 << 0x00 << QVector<int>{1, 0, 0, 0, 0, 0};
    QTest::newRow("stage 2 on") << 0x10 << 0x00 << QVector<int>{0, 1, 0, 0, 0, 0};
    QTest::newRow("stage 1 active") << 0x20 << 0x00 << QVector<int>{0, 0, 1, 0, 0, 0};
    QTest::newRow("stage 2 active") << 0x40 << 0x00 << QVector<int>{0, 0, 0, 1, 0, 0};
    QTest::newRow("multiplex 1") << 0x00 << 0x01 << QVector<int>{0, 0, 0, 0, 1, 0};
    QTest::newRow("multiplex 2") << 0x00 << 0x02 << QVector<int>{0, 0, 0, 0, 0, 1};
}

void TestPacket::eachFlagHasItsBit()
{
    QFETCH(int, flagsA);
    QFETCH(int, flagsB);
    const PacketBytes bytes = withFlags(static_cast<char>(flagsA), static_cast<char>(flagsB));
    const MeasureSample sample = packet::toSample(bytes, 11, 0);
    const QVector<int> flags{sample.stabilised1, sample.stabilised2, sample.active1,
                             sample.active2,     sample.multiplex1,  sample.multiplex2};
    QTEST(flags, "expected");
}

void TestPacket::oldFirmwareHasNoFlags()
{
    const MeasureSample sample = packet::toSample(withFlags('\xff', '\xff'), 10, 0);
    QCOMPARE(int(sample.stabilised1 | sample.stabilised2 | sample.active1 | sample.active2
                 | sample.multiplex1 | sample.multiplex2),
             0);
}

void TestPacket::lastPacketIsMarkedFromFirmware11On()
{
    QVERIFY(packet::isLast(withFlags('\x80', 0), 11));
    QVERIFY(!packet::isLast(withFlags('\x7f', 0), 11));
    QVERIFY(!packet::isLast(withFlags('\x80', 0), 10));
}

void TestPacket::packetIsWithheldOnlyWithVmFirmware()
{
    QVERIFY(packet::isWithheld(withFlags(0, '\x04'), 40, true));
    QVERIFY(!packet::isWithheld(withFlags(0, '\x04'), 40, false));
    QVERIFY(!packet::isWithheld(withFlags(0, '\x03'), 40, true));
    QVERIFY(!packet::isWithheld(withFlags(0, '\x04'), 10, true));
}

void TestPacket::alignmentIsThreeBytes()
{
    QVERIFY(packet::isAligned(bytesOf(plainPacket)));
    for (const std::size_t mark : {0u, 1u, 24u}) {
        PacketBytes bytes = bytesOf(plainPacket);
        bytes[mark] = 'x';
        QVERIFY(!packet::isAligned(bytes));
    }
}

QTEST_GUILESS_MAIN(TestPacket)
#include "tst_packet.moc"
