// The questions to a controller for its parameters, on the wire, without a form.

#include "params/parameterreading.h"
#include "support/emulatedlink.h"

#include <QtTest>

Q_DECLARE_METATYPE(emulator::Faults)

using emulator::ControllerOptions;
using emulator::Faults;

namespace {

ControllerOptions withFirmware(int firmware)
{
    ControllerOptions options;
    options.firmware = firmware;
    return options;
}

Faults silence(const QByteArrayList& mnemonics)
{
    Faults faults;
    faults.silent = mnemonics;
    return faults;
}

/// All that is asked of firmware above 30.
QByteArrayList allQuestions()
{
    return {"GSF;",      "S1S;",     "GAI\x01x;", "GAI\x01y;", "GAI\x02x;",
            "GAI\x02y;", "GPF\x01;", "GPF\x02;",  "GDS\x01;",  "GDS\x02;"};
}

bool sendAndCheck(EmulatedLink& link, void (Connection::*setter)(const QByteArray&),
                  const QByteArray& argument)
{
    (link.client.*setter)(argument);
    QByteArray reply;
    return link.client.fetchReply(reply) && reply == QByteArray("\0;", 2);
}

} // namespace

class TestParameterReading : public QObject
{
    Q_OBJECT

private slots:
    void everythingIsAskedInItsOrder_data();
    void everythingIsAskedInItsOrder();
    void valuesAreThoseOfTheController();
    void oldFirmwareHasNoSensitivity();
    void positionsAreThoseOfOnePacket();
    void flagsAreThoseOfTheStatus();
    void whatFailsIsZeroAndNamed_data();
    void whatFailsIsZeroAndNamed();
    void aSilentControllerHasAnsweredNothing();
};

void TestParameterReading::everythingIsAskedInItsOrder_data()
{
    QTest::addColumn<int>("firmware");
    QTest::addColumn<QByteArrayList>("questions");
    QTest::newRow("10") << 10 << allQuestions().mid(0, 8);
    QTest::newRow("30") << 30 << allQuestions().mid(0, 8);
    QTest::newRow("31") << 31 << allQuestions();
}

void TestParameterReading::everythingIsAskedInItsOrder()
{
    QFETCH(int, firmware);
    EmulatedLink link(withFirmware(firmware));
    QVERIFY(link.connectAndIdentify());
    const ParameterReading reading = readParameters(link.client);
    QTEST(link.controller.commands(), "questions");
    QVERIFY(reading.unread.isEmpty());
    QVERIFY(reading.isAnswered);
}

void TestParameterReading::valuesAreThoseOfTheController()
{
    EmulatedLink link;
    QVERIFY(link.connectAndIdentify());
    const auto adjust = [&](Stage stage, BeamAxis axis, qint16 valueMv) {
        return sendAndCheck(link, &Connection::setAdjustIn,
                            command::stageAxisValueArgument(stage, axis, valueMv));
    };
    const auto set = [&](void (Connection::*setter)(const QByteArray&), Stage stage,
                         qint16 valueMv) {
        return sendAndCheck(link, setter, command::stageValueArgument(stage, valueMv));
    };
    QVERIFY(adjust(Stage::One, BeamAxis::X, -1000) && adjust(Stage::One, BeamAxis::Y, 256));
    QVERIFY(adjust(Stage::Two, BeamAxis::X, 3) && adjust(Stage::Two, BeamAxis::Y, -4999));
    QVERIFY(set(&Connection::setPFactor, Stage::One, 1500));
    QVERIFY(set(&Connection::setPFactor, Stage::Two, 10));
    QVERIFY(set(&Connection::setDetectorSensitivity, Stage::One, 700));
    QVERIFY(set(&Connection::setDetectorSensitivity, Stage::Two, 5000));

    const ParameterReading reading = readParameters(link.client);
    const StageParameters& one = reading.stages[0];
    const StageParameters& two = reading.stages[1];
    QCOMPARE(one.adjustIn.xMv, -1000);
    QCOMPARE(one.adjustIn.yMv, 256);
    QCOMPARE(two.adjustIn.xMv, 3);
    QCOMPARE(two.adjustIn.yMv, -4999);
    QCOMPARE(one.pFactorMv, 1500);
    QCOMPARE(two.pFactorMv, 10);
    QCOMPARE(one.sensitivityMv, 700);
    QCOMPARE(two.sensitivityMv, 5000);
}

void TestParameterReading::oldFirmwareHasNoSensitivity()
{
    EmulatedLink link(withFirmware(30));
    QVERIFY(link.connectAndIdentify());
    const ParameterReading reading = readParameters(link.client);
    QCOMPARE(reading.stages[0].sensitivityMv, 0);
    QCOMPARE(reading.stages[1].sensitivityMv, 0);
    QVERIFY(reading.unread.isEmpty());
}

void TestParameterReading::positionsAreThoseOfOnePacket()
{
    ControllerOptions options;
    emulator::PacketValues values{};
    values[0].x = 250;
    values[0].y = -1;
    values[1].x = -4000;
    values[1].y = 1000;
    options.script = {values};
    options.scriptRepeats = true;
    EmulatedLink link(options);
    QVERIFY(link.connectAndIdentify());
    const ParameterReading reading = readParameters(link.client);
    QVERIFY(reading.positions);
    QCOMPARE((*reading.positions)[0].xMv, 250);
    QCOMPARE((*reading.positions)[0].yMv, -1);
    QCOMPARE((*reading.positions)[1].xMv, -4000);
    QCOMPARE((*reading.positions)[1].yMv, 1000);
}

void TestParameterReading::flagsAreThoseOfTheStatus()
{
    EmulatedLink link;
    QVERIFY(link.connectAndIdentify());
    link.controller.setStage(2, true);
    const ParameterReading reading = readParameters(link.client);
    QVERIFY(reading.statusFlags);
    constexpr quint8 pFactorBySoftware = 0x01;
    constexpr quint8 stage2On = 0x10;
    QCOMPARE(*reading.statusFlags & (stage2On | 0x08), int(stage2On));
    QCOMPARE(*reading.statusFlags & 0x07, int(pFactorBySoftware));
}

void TestParameterReading::whatFailsIsZeroAndNamed_data()
{
    QTest::addColumn<Faults>("faults");
    QTest::addColumn<QStringList>("unread");
    const QStringList gai{"GAI 1x", "GAI 1y", "GAI 2x", "GAI 2y"};
    QTest::newRow("silent") << silence({"GPF"}) << QStringList({"GPF 1", "GPF 2"});
    Faults refusing;
    refusing.refuse = {"GAI", "GSF"};
    QTest::newRow("refused") << refusing << QStringList("GSF") + gai;
    Faults cut;
    cut.shortBytes = {{"GDS", 3}, {"S1S", 24}};
    QTest::newRow("cut") << cut << QStringList({"S1S", "GDS 1", "GDS 2"});
}

void TestParameterReading::whatFailsIsZeroAndNamed()
{
    QFETCH(Faults, faults);
    QFETCH(QStringList, unread);
    EmulatedLink link;
    QVERIFY(link.connectAndIdentify());
    QVERIFY(sendAndCheck(link, &Connection::setAdjustIn,
                         command::stageAxisValueArgument(Stage::One, BeamAxis::X, 77)));
    QVERIFY(sendAndCheck(link, &Connection::setDetectorSensitivity,
                         command::stageValueArgument(Stage::Two, 88)));
    link.controller.clearWire();
    link.controller.setFaults(faults);
    const ParameterReading reading = readParameters(link.client);
    QCOMPARE(link.controller.commands(), allQuestions());
    QCOMPARE(reading.unread, unread);
    QCOMPARE(reading.statusFlags.has_value(), !unread.contains("GSF"));
    QCOMPARE(reading.positions.has_value(), !unread.contains("S1S"));
    QCOMPARE(reading.stages[0].adjustIn.xMv, unread.contains("GAI 1x") ? 0 : 77);
    QCOMPARE(reading.stages[0].pFactorMv, unread.contains("GPF 1") ? 0 : 1000);
    QCOMPARE(reading.stages[1].sensitivityMv, unread.contains("GDS 2") ? 0 : 88);
    QVERIFY(reading.isAnswered);
}

void TestParameterReading::aSilentControllerHasAnsweredNothing()
{
    EmulatedLink link(withFirmware(30));
    QVERIFY(link.connectAndIdentify());
    link.controller.setFaults(silence({"GSF", "S1S", "GAI", "GPF"}));
    const ParameterReading reading = readParameters(link.client);
    QVERIFY(!reading.isAnswered);
    QCOMPARE(reading.unread.size(), 8);
}

QTEST_GUILESS_MAIN(TestParameterReading)
#include "tst_parameterreading.moc"
