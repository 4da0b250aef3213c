// What the fields of the position show of a packet that was read for Set & Hold.

#include "params/holding.h"

#include <QtTest>

class TestHolding : public QObject
{
    Q_OBJECT

private slots:
    void onlyTheLowByteIsDivided_data();
    void onlyTheLowByteIsDivided();
    void eachStageHasItsBytes();
};

void TestHolding::onlyTheLowByteIsDivided_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<double>("shown");
    QTest::newRow("0.25 V") << QByteArray::fromHex("00fa") << 0.25;
    QTest::newRow("1 V") << QByteArray::fromHex("03e8") << 768.232;
    QTest::newRow("0") << QByteArray::fromHex("0000") << 0.0;
    QTest::newRow("-0.001 V") << QByteArray::fromHex("ffff") << -255.745;
    QTest::newRow("least") << QByteArray::fromHex("8000") << -32768.0;
    QTest::newRow("greatest") << QByteArray::fromHex("7fff") << 32512.255;
}

void TestHolding::onlyTheLowByteIsDivided()
{
    QFETCH(QByteArray, value);
    QByteArray packet(25, '\0');
    packet.replace(4, 2, value);
    QTEST(shownHoldPosition(packet, Stage::One).x(), "shown");
}

void TestHolding::eachStageHasItsBytes()
{
    QByteArray packet(25, '\0');
    for (const int offset : {4, 6, 10, 12})
        packet[offset + 1] = char(offset);
    QCOMPARE(shownHoldPosition(packet, Stage::One), QPointF(0.004, 0.006));
    QCOMPARE(shownHoldPosition(packet, Stage::Two), QPointF(0.010, 0.012));
}

QTEST_GUILESS_MAIN(TestHolding)
#include "tst_holding.moc"
