// The change of the baud rate behind an Ethernet adapter, which the application can not change.

#include "servicebench.h"

#include <QComboBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTextBrowser>
#include <QtTest>

Q_DECLARE_METATYPE(const Connection*)
Q_DECLARE_METATYPE(emulator::Rule)

using emulator::on;
using emulator::Rule;

namespace {

const char changed[] = "Set Baudrate: Success - now adjusting connection - Ethernet is now lost\n";
const char refused[] = "Set Baudrate: Failed\n";
constexpr int fastRate = 921600;

/// The adapter talks at the rate that the controller has at first.
emulator::ControllerOptions atRate(int baudRate)
{
    emulator::ControllerOptions options;
    options.baudRate = baudRate;
    return options;
}

bool choose(const ServiceBench& bench, int index)
{
    auto& box = bench.find<QComboBox>("comboBox");
    box.setFocus();
    while (box.currentIndex() < index)
        QTest::keyClick(bench.dialog.windowHandle(), Qt::Key_Down);
    return box.currentIndex() == index;
}

} // namespace

class TestServiceBaudRate : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qRegisterMetaType<const Connection*>("const Connection*"); }
    void everyRateHasItsCode_data();
    void everyRateHasItsCode();
    void withoutAChoiceTheFirstRateCounts();
    void theLinkComesUpAtItsOwnPort();
    void behindAnotherRateThanThatOfTheAdapterNobodyAnswers();
    void aRateThatIsNotTakenLeavesTheStreamStopped_data();
    void aRateThatIsNotTakenLeavesTheStreamStopped();
    void oneByteThatAcceptsIsEnough();
    void aLinkThatIsNotUpInTimeGetsNoStream();
};

void TestServiceBaudRate::everyRateHasItsCode_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QByteArray>("command");
    QTest::newRow("115200") << 0 << QByteArray("SBR\x01;", 5);
    QTest::newRow("460800") << 1 << QByteArray("SBR\x04;", 5);
    QTest::newRow("921600") << 2 << QByteArray("SBR\x09;", 5);
}

void TestServiceBaudRate::everyRateHasItsCode()
{
    QFETCH(int, index);
    QFETCH(QByteArray, command);
    ServiceBench bench;
    QVERIFY(bench.open());
    QVERIFY(choose(bench, index));
    const QSignalSpy changes(&bench.dialog, &ServiceDialog::baudRateChanged);
    QVERIFY(bench.click("baudrateChange"));
    QCOMPARE(bench.commands(), QByteArrayList{command});
    QCOMPARE(bench.results(), QString(changed));
    QCOMPARE(bench.labelText("config_Label"), QString(QTest::currentDataTag()));
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes[0][0].value<const Connection*>(), &bench.link.client);
}

void TestServiceBaudRate::withoutAChoiceTheFirstRateCounts()
{
    ServiceBench bench;
    QVERIFY(bench.open());
    bench.find<QComboBox>("comboBox").setCurrentIndex(-1);
    QVERIFY(bench.click("baudrateChange"));
    QCOMPARE(bench.commands(), QByteArrayList{QByteArray("SBR\x01;", 5)});
}

void TestServiceBaudRate::theLinkComesUpAtItsOwnPort()
{
    ServiceBench bench(atRate(fastRate));
    QVERIFY(bench.openStreaming());
    QVERIFY(choose(bench, 2));
    QVERIFY(bench.click("baudrateChange"));
    QCOMPARE(bench.commands(), QByteArrayList({"CLS;", QByteArray("SBR\x09;", 5),
                                               streamStart(ServiceBench::streamRateHz)}));
    QCOMPARE(bench.link.client.portOrBaud(), int(bench.link.controller.port()));
    QCOMPARE(bench.link.client.baudRate(), fastRate);
    QVERIFY(bench.streams());
    QCOMPARE(bench.link.lost, QStringList());
}

void TestServiceBaudRate::behindAnotherRateThanThatOfTheAdapterNobodyAnswers()
{
    ServiceBench bench(atRate(fastRate));
    QVERIFY(bench.open());
    QVERIFY(bench.click("baudrateChange"));
    QCOMPARE(bench.results(), QString(changed));
    QVERIFY(bench.link.client.isConnected());
    QCOMPARE(bench.link.controller.baudRate(), 115200);
    QVERIFY(bench.click("buttonCTF_1"));
    QCOMPARE(bench.results(), QString("Clear Trigger Freeze Stage 1: Failed\n"));
}

void TestServiceBaudRate::aRateThatIsNotTakenLeavesTheStreamStopped_data()
{
    QTest::addColumn<Rule>("rule");
    QTest::addColumn<bool>("streaming");
    for (const bool streaming : {false, true}) {
        const auto row = [streaming](const char* name) -> QTestData& {
            return QTest::addRow("%s, %s", name, streaming ? "streaming" : "quiet");
        };
        row("refused") << Rule(on("SBR").refuse()) << streaming;
        row("silent") << Rule(on("SBR").ignore()) << streaming;
        row("one byte") << Rule(on("SBR").cutTo(1)) << streaming;
        row("other status") << Rule(on("SBR").reply("\xFF;")) << streaming;
    }
}

void TestServiceBaudRate::aRateThatIsNotTakenLeavesTheStreamStopped()
{
    QFETCH(Rule, rule);
    QFETCH(bool, streaming);
    ServiceBench bench;
    QVERIFY(streaming ? bench.openStreaming() : bench.open());
    const QByteArrayList stop = streaming ? QByteArrayList{"CLS;"} : QByteArrayList();
    const QSignalSpy changes(&bench.dialog, &ServiceDialog::baudRateChanged);
    QVERIFY(bench.clickUnder({rule}, "baudrateChange"));
    QCOMPARE(bench.results(), QString(refused));
    QCOMPARE(bench.commands(), stop + QByteArrayList{QByteArray("SBR\x01;", 5)});
    QCOMPARE(bench.labelText("config_Label"), QString("Siehe Ethernet Adapter"));
    QVERIFY(bench.link.client.isConnected());
    QVERIFY(bench.isQuiet());
    QCOMPARE(changes.size(), 0);
}

/// Nobody looks at the second one.
void TestServiceBaudRate::oneByteThatAcceptsIsEnough()
{
    ServiceBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.clickUnder({on("SBR").reply(QByteArray("\0A", 2))}, "baudrateChange"));
    QCOMPARE(bench.results(), QString(changed));
}

void TestServiceBaudRate::aLinkThatIsNotUpInTimeGetsNoStream()
{
    ServiceBench bench;
    QVERIFY(bench.openStreaming());
    auto& results = bench.find<QTextBrowser>("result_textBrowser");
    connect(&results, &QTextBrowser::textChanged, this, [&] {
        if (bench.results() == QLatin1String(changed))
            bench.link.controller.stopListening();
    });
    const QSignalSpy changes(&bench.dialog, &ServiceDialog::baudRateChanged);
    QElapsedTimer clock;
    clock.start();
    QVERIFY(bench.click("baudrateChange"));
    QVERIFY(clock.elapsed() >= 200);
    QCOMPARE(bench.commands(), QByteArrayList({"CLS;", QByteArray("SBR\x01;", 5)}));
    QVERIFY(!bench.link.client.isConnected());
    QCOMPARE(changes.size(), 1);
}

QTEST_MAIN(TestServiceBaudRate)
#include "tst_servicebaudrate.moc"
