// The stream around the tests of the service dialog.

#include "paramsbench.h"
#include "servicebench.h"
#include "testedbuttons.h"

#include <QGuiApplication>
#include <QPushButton>
#include <QTextBrowser>
#include <QtTest>

Q_DECLARE_METATYPE(emulator::Rule)

using emulator::on;
using emulator::Rule;

namespace {

const QByteArrayList oneShot{"S1S;"};
const QByteArrayList oneShotAndStart{"S1S;", streamStart(ServiceBench::streamRateHz)};

} // namespace

class TestServiceStream : public QObject
{
    Q_OBJECT

private slots:
    void withoutAStreamNoneFollows();
    void onceAStreamWasSeenEveryTestStartsOne();
    void aStreamThatWasSeenIsStartedOnAnyConnection();
    void openingSeesAStreamToo();
    void theRateIsThatOfTheLastStop();
    void aStreamWithoutARateGetsThatOfTheWindow();
    void everyKindIsStartedInItsWay_data();
    void everyKindIsStartedInItsWay();
    void aStreamThatDoesNotStartAgainIsNotTold_data();
    void aStreamThatDoesNotStartAgainIsNotTold();
    void aStreamThatCanNotBeStoppedLetsTheTestFail();
    void resultsOfTwoTestsComeBeforeTheStart_data();
    void resultsOfTwoTestsComeBeforeTheStart();
};

void TestServiceStream::withoutAStreamNoneFollows()
{
    ServiceBench bench(steadyController());
    QVERIFY(bench.open());
    QVERIFY(bench.click("buttonS1S"));
    QVERIFY(bench.results().contains("Stage 1 x/y/i: 250 / -1 / 3500 [mV]"));
    QCOMPARE(bench.commands(), oneShot);
    QVERIFY(bench.isQuiet());
}

void TestServiceStream::onceAStreamWasSeenEveryTestStartsOne()
{
    ServiceBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.link.startStream(ServiceBench::streamRateHz));
    QVERIFY(bench.click("buttonGIN_1"));
    QVERIFY(bench.streams());
    for (int i = 0; i < 2; ++i) {
        bench.link.client.stopStream();
        QVERIFY(bench.isQuiet());
        QVERIFY(bench.click("buttonS1S"));
        QCOMPARE(bench.commands(), oneShotAndStart);
        QVERIFY(bench.streams());
    }
}

void TestServiceStream::aStreamThatWasSeenIsStartedOnAnyConnection()
{
    ServiceBench bench;
    QVERIFY(bench.openStreaming());
    EmulatedLink other;
    QVERIFY(other.connectAndIdentify());
    bench.dialog.setConnection(other.client);
    QCOMPARE(other.controller.commands(),
             QByteArrayList({"GID;", streamStart(ServiceBench::streamRateHz)}));
    QVERIFY(other.client.isStreaming());
    bench.dialog.forget(&other.client);
}

void TestServiceStream::openingSeesAStreamToo()
{
    ServiceBench bench;
    QVERIFY(bench.openStreaming());
    bench.link.client.stopStream();
    QVERIFY(bench.click("buttonS1S"));
    QCOMPARE(bench.commands(), oneShotAndStart);
}

void TestServiceStream::theRateIsThatOfTheLastStop()
{
    ServiceBench bench;
    QVERIFY(bench.openStreaming());
    bench.link.client.stopStream();
    QVERIFY(bench.link.startStream(123));
    QVERIFY(bench.click("buttonGIN_1"));
    QCOMPARE(bench.link.controller.streamRate(), 123);
    bench.link.client.stopStream();
    bench.link.client.setSamplingRate(7);
    QVERIFY(bench.click("buttonGIN_1"));
    QCOMPARE(bench.link.controller.streamRate(), 123);
    QCOMPARE(bench.link.client.samplingRate(), 123);
}

/// As at the locked rate of pulsed lasers, which a connection does not keep.
void TestServiceStream::aStreamWithoutARateGetsThatOfTheWindow()
{
    ServiceBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.link.startStream(1000));
    QCOMPARE(bench.link.client.samplingRate(), -1);
    QVERIFY(bench.click("buttonS1S"));
    QCOMPARE(bench.commands(),
             QByteArrayList({"CLS;", "S1S;", streamStart(ServiceBench::windowRateHz)}));
    QCOMPARE(bench.link.client.samplingRate(), int(ServiceBench::windowRateHz));
}

void TestServiceStream::everyKindIsStartedInItsWay_data()
{
    addControllerKinds();
}

void TestServiceStream::everyKindIsStartedInItsWay()
{
    QFETCH(ControllerKind, kind);
    ServiceBench bench(kind.options);
    QVERIFY(bench.link.connectAndIdentify());
    bench.link.client.setTriggerMode(kind.byTriggers);
    QVERIFY(bench.link.startStream(ServiceBench::streamRateHz));
    QVERIFY(bench.show());
    QVERIFY(bench.click("buttonGAS"));
    QCOMPARE(bench.commands(),
             QByteArrayList({"CLS;", "GAS;", kind.start(ServiceBench::streamRateHz)}));
    QVERIFY(bench.link.client.isStreaming());
    QVERIFY(bench.link.controller.isStreaming());
}

void TestServiceStream::aStreamThatDoesNotStartAgainIsNotTold_data()
{
    QTest::addColumn<Rule>("rule");
    QTest::newRow("refused") << Rule(on("SLS").refuse());
    QTest::newRow("silent") << Rule(on("SLS").ignore());
}

void TestServiceStream::aStreamThatDoesNotStartAgainIsNotTold()
{
    QFETCH(Rule, rule);
    ServiceBench bench;
    QVERIFY(bench.openStreaming());
    QVERIFY(bench.clickUnder({rule}, "buttonCTF_1"));
    QCOMPARE(bench.results(), QString("Clear Trigger Freeze Stage 1: Success\n"));
    QVERIFY(bench.isQuiet());
    QCOMPARE(QApplication::topLevelWidgets().count(), 1);
}

void TestServiceStream::aStreamThatCanNotBeStoppedLetsTheTestFail()
{
    ServiceBench bench;
    QVERIFY(bench.openStreaming());
    QVERIFY(bench.clickUnder({on("CLS").ignore()}, "buttonGAS"));
    // The stop is repeated. As long as the stream runs nothing else is sent.
    QCOMPARE(bench.commands(), (QByteArrayList{"CLS;", "CLS;"}));
    QCOMPARE(bench.results(), QString("Get Active Signal: failed - no response\n"));
    QVERIFY(bench.link.controller.isStreaming());
}

void TestServiceStream::resultsOfTwoTestsComeBeforeTheStart_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<int>("startsBefore");
    QTest::newRow("error") << "error_PushButton" << 0;
    QTest::newRow("memory") << "fram_PushButton" << 0;
    QTest::newRow("intensity") << "buttonGIN_1" << 1;
    QTest::newRow("trigger freeze") << "buttonCTF_1" << 1;
    QTest::newRow("adjust-in") << "adjustIn1X" << 1;
}

void TestServiceStream::resultsOfTwoTestsComeBeforeTheStart()
{
    QFETCH(QString, button);
    ServiceBench bench;
    QVERIFY(bench.openStreaming());
    QVector<int> starts;
    bool isWaitShown = true;
    connect(&bench.find<QTextBrowser>("result_textBrowser"), &QTextBrowser::textChanged, this, [&] {
        if (bench.results().isEmpty())
            return;
        starts.append(bench.link.controller.count("SLS"));
        isWaitShown &= QGuiApplication::overrideCursor() != nullptr;
    });
    QVERIFY(bench.click(button));
    QVERIFY(!starts.isEmpty());
    QTEST(starts.first(), "startsBefore");
    QVERIFY(isWaitShown);
    QVERIFY(!QGuiApplication::overrideCursor());
    QVERIFY(bench.streams());
}

QTEST_MAIN(TestServiceStream)
#include "tst_servicestream.moc"
