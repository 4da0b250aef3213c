// What single tests of the service dialog say of a controller that answers something of its own,
// and what they are sent with.

#include "servicebench.h"
#include "support/bytes.h"
#include "support/logcapture.h"
#include "testedbuttons.h"

#include <QComboBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSpinBox>
#include <QTextBrowser>
#include <QtTest>

Q_DECLARE_METATYPE(emulator::Rule)

using emulator::ControllerOptions;
using emulator::on;
using emulator::Rule;

namespace {

const QByteArray memoryCommand("RFR\0\0\xFF;", 7);

/// Chooses by the keyboard.
bool choosePosition(const ServiceBench& bench, int index)
{
    auto& box = bench.find<QComboBox>("Drive_position");
    box.setFocus();
    while (box.currentIndex() < index)
        QTest::keyClick(bench.dialog.windowHandle(), Qt::Key_Down);
    return box.currentIndex() == index;
}

bool typePosition(const ServiceBench& bench, const char* text)
{
    auto& box = bench.find<QSpinBox>("drive_spinBox");
    if (!box.isEnabled())
        return false;
    box.setFocus();
    box.selectAll();
    for (const char* letter = text; *letter; ++letter)
        QTest::keyClick(bench.dialog.windowHandle(), *letter);
    return box.text() == QLatin1String(text);
}

QByteArrayList memoryBetweenStreams()
{
    return {"CLS;", memoryCommand, streamStart(ServiceBench::streamRateHz)};
}

} // namespace

class TestServiceReadings : public QObject
{
    Q_OBJECT

private slots:
    void oneShotTellsWhatTheFirmwareKnows_data();
    void oneShotTellsWhatTheFirmwareKnows();
    void aRefusedCommandIsTheLastError();
    void memoryIsReadAsAWhole();
    void memoryIsLoggedAsItStands();
    void memoryThatIsNotWholeIsNotSupported_data();
    void memoryThatIsNotWholeIsNotSupported();
    void memoryIsReadBetweenStreams();
    void markupOfAnErrorIsShownAsItIs();
    void resultsStandBelowEachOther();
    void lastResultIsInSight();
    void clearEmptiesTheResults();
    void actuatorsAreDrivenToTheChosenPosition_data();
    void actuatorsAreDrivenToTheChosenPosition();
    void manualPositionIsTakenWhileItIsChecked();
    void positionOutOfRangeCanNotBeTyped();
};

void TestServiceReadings::oneShotTellsWhatTheFirmwareKnows_data()
{
    QTest::addColumn<int>("firmware");
    QTest::addColumn<QString>("pair");
    QTest::newRow("without flags") << 10 << "0 / 0";
    QTest::newRow("with flags") << 11 << "1 / 1";
}

void TestServiceReadings::oneShotTellsWhatTheFirmwareKnows()
{
    QFETCH(int, firmware);
    QFETCH(QString, pair);
    ControllerOptions options;
    options.firmware = firmware;
    ServiceBench bench(options);
    QVERIFY(bench.open());
    const QByteArray values(20, '\0');
    bench.link.controller.setRules({on("S1S").reply(bytes("003bffff") + values + ';')});
    QVERIFY(bench.click("buttonS1S"));
    const QStringList lines = bench.results().split('\n', Qt::SkipEmptyParts);
    QCOMPARE(lines.mid(0, 4),
             QStringList({"Trigger One Shot: Success", "On/Off Stage 1/2: " + pair,
                          "Active Stage 1/2: " + pair, "(Multiplex) Stage 1/2: " + pair}));
}

void TestServiceReadings::aRefusedCommandIsTheLastError()
{
    ControllerOptions options;
    options.firmware = 30;
    ServiceBench bench(options);
    QVERIFY(bench.open());
    QVERIFY(bench.click("sensitivity1_5000"));
    QCOMPARE(bench.results(), QString("Set detector sensitivity stage 1 to 5000mV: Failed\n"));
    QVERIFY(bench.click("error_PushButton"));
    QVERIFY(QRegularExpression("^Get Error: Command:SDS Code: [1-9][0-9]*\n$")
                .match(bench.results())
                .hasMatch());
}

void TestServiceReadings::memoryIsReadAsAWhole()
{
    ControllerOptions options;
    options.key = "ABCDEFGHIJK";
    options.label = "\xE4";
    ServiceBench bench(options);
    QVERIFY(bench.open());
    QVERIFY(bench.click("fram_PushButton"));
    QCOMPARE(bench.commands(), QByteArrayList{memoryCommand});
    const QStringList lines = bench.results().split('\n');
    QCOMPARE(lines.size(), 255);
    QCOMPARE(lines.mid(0, 3), QStringList({"0: 41", "1: 42", "2: 43"}));
    QCOMPARE(lines.mid(10, 3), QStringList({"10: 4b", "11: ffffffffffffffe4", "12: 20"}));
    QVERIFY(lines.last().startsWith("254: "));
}

void TestServiceReadings::memoryIsLoggedAsItStands()
{
    ServiceBench bench;
    QVERIFY(bench.open());
    const LogCapture log;
    QVERIFY(bench.clickUnder({on("RFR").cutTo(2)}, "fram_PushButton"));
    QCOMPARE(log.count("debug: \"\\x00;\""), 1);
}

void TestServiceReadings::memoryThatIsNotWholeIsNotSupported_data()
{
    QTest::addColumn<Rule>("rule");
    QTest::addColumn<bool>("streaming");
    for (const bool streaming : {false, true}) {
        const auto row = [streaming](const char* name) -> QTestData& {
            return QTest::addRow("%s, %s", name, streaming ? "streaming" : "quiet");
        };
        row("two bytes") << Rule(on("RFR").cutTo(2)) << streaming;
        row("one byte is missing") << Rule(on("RFR").cutTo(257)) << streaming;
        row("one byte") << Rule(on("RFR").cutTo(1)) << streaming;
        row("refused") << Rule(on("RFR").refuse()) << streaming;
        row("silent") << Rule(on("RFR").ignore()) << streaming;
    }
}

void TestServiceReadings::memoryThatIsNotWholeIsNotSupported()
{
    QFETCH(Rule, rule);
    QFETCH(bool, streaming);
    ServiceBench bench;
    QVERIFY(streaming ? bench.openStreaming() : bench.open());
    QVERIFY(bench.clickUnder({rule}, "fram_PushButton"));
    QCOMPARE(bench.results(), QString("Not supported! \n"));
    QCOMPARE(bench.commands(), streaming ? memoryBetweenStreams() : QByteArrayList{memoryCommand});
    QVERIFY(streaming ? bench.streams() : bench.isQuiet());
}

void TestServiceReadings::memoryIsReadBetweenStreams()
{
    ServiceBench bench;
    QVERIFY(bench.openStreaming());
    QVERIFY(bench.click("fram_PushButton"));
    QCOMPARE(bench.results().split('\n').size(), 255);
    QCOMPARE(bench.commands(), memoryBetweenStreams());
    QVERIFY(bench.streams());
}

void TestServiceReadings::markupOfAnErrorIsShownAsItIs()
{
    ServiceBench bench;
    QVERIFY(bench.open());
    bench.link.controller.setRules({on("GER").reply(bytes("003b") + "<b>" + bytes("053b"))});
    QVERIFY(bench.click("error_PushButton"));
    QCOMPARE(bench.results(), QString("Get Error: Command:<b> Code: 5\n"));
}

/// A text that ends its line leaves an empty one behind it.
void TestServiceReadings::resultsStandBelowEachOther()
{
    ServiceBench bench(steadyController());
    QVERIFY(bench.open());
    for (const char* button : {"buttonGIN_1", "buttonGAS", "buttonCTF_3"})
        QVERIFY(bench.press(button) && QTest::qWaitFor([&] { return bench.isReady(); }));
    QCOMPARE(bench.results(),
             QString("Get Intensity:3500\n\nGet Active Signal: \n  Active 1: 0\n  Active 2: 0\n\n"
                     "Clear Trigger Freeze Stage 1+2: Success\n"));
}

void TestServiceReadings::lastResultIsInSight()
{
    ServiceBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.click("fram_PushButton"));
    const QScrollBar& bar = *bench.find<QTextBrowser>("result_textBrowser").verticalScrollBar();
    QVERIFY(bar.maximum() > 0);
    QCOMPARE(bar.value(), bar.maximum());
}

void TestServiceReadings::clearEmptiesTheResults()
{
    ServiceBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.click("buttonGIN_1"));
    QVERIFY(!bench.results().isEmpty());
    bench.link.controller.clearWire();
    QVERIFY(bench.press("clear_pushButton"));
    QCOMPARE(bench.results(), QString());
    QCOMPARE(bench.commands(), QByteArrayList());
}

void TestServiceReadings::actuatorsAreDrivenToTheChosenPosition_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QByteArray>("value");
    QTest::newRow("0 ") << 0 << bytes("0000");
    QTest::newRow("+2500") << 1 << bytes("09c4");
    QTest::newRow("-2500") << 2 << bytes("f63c");
}

void TestServiceReadings::actuatorsAreDrivenToTheChosenPosition()
{
    QFETCH(int, index);
    QFETCH(QByteArray, value);
    ServiceBench bench;
    QVERIFY(bench.open());
    QVERIFY(choosePosition(bench, index));
    QCOMPARE(bench.find<QComboBox>("Drive_position").currentText(),
             QString(QTest::currentDataTag()));
    QVERIFY(bench.click("buttonSDA_2y"));
    QCOMPARE(bench.commands(), QByteArrayList{"SDA\2y" + value + ';'});
}

void TestServiceReadings::manualPositionIsTakenWhileItIsChecked()
{
    ServiceBench bench;
    QVERIFY(bench.open());
    QVERIFY(choosePosition(bench, 1));
    const QString manual = "manalPosition_checkBox";
    const auto& chosen = bench.find<QComboBox>("Drive_position");
    const auto& typed = bench.find<QSpinBox>("drive_spinBox");

    QVERIFY(bench.press(manual));
    QVERIFY(!chosen.isEnabled());
    QVERIFY(typePosition(bench, "-4999"));
    QVERIFY(bench.click("buttonSDA_1x"));
    QCOMPARE(bench.commands(), QByteArrayList{"SDA\1x" + bytes("ec79") + ';'});

    QVERIFY(bench.press(manual));
    QVERIFY(chosen.isEnabled());
    QVERIFY(!typed.isEnabled());
    QVERIFY(bench.click("buttonSDA_1x"));
    QCOMPARE(bench.commands(), QByteArrayList{"SDA\1x" + bytes("09c4") + ';'});
}

void TestServiceReadings::positionOutOfRangeCanNotBeTyped()
{
    ServiceBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.press("manalPosition_checkBox"));
    QVERIFY(!typePosition(bench, "5001"));
    QVERIFY(typePosition(bench, "-5000"));
}

QTEST_MAIN(TestServiceReadings)
#include "tst_servicereadings.moc"
