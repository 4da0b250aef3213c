// The connection of the service dialog: how it comes and goes, and what that does to the tests.

#include "link/serialport.h"
#include "servicebench.h"
#include "support/logcapture.h"
#include "testedbuttons.h"

#include <QApplication>
#include <QLabel>
#include <QMetaMethod>
#include <QMouseEvent>
#include <QPushButton>
#include <QWindow>
#include <QtTest>

using emulator::on;

namespace {

const QByteArrayList identification{"GID;"};

/// Calls every slot by its name, as the buttons of the form do.
void callAllSlots(ServiceDialog& dialog)
{
    const QMetaObject& object = *dialog.metaObject();
    for (int index = object.methodOffset(); index < object.methodCount(); ++index) {
        const QMetaMethod method = object.method(index);
        if (method.methodType() != QMetaMethod::Slot)
            continue;
        if (method.parameterCount() == 0)
            method.invoke(&dialog);
        else
            method.invoke(&dialog, Q_ARG(bool, true));
    }
}

void postClick(QDialog& dialog, const QWidget& widget)
{
    const QPoint where = widget.mapTo(&dialog, widget.rect().center());
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease})
        QCoreApplication::postEvent(
            dialog.windowHandle(),
            new QMouseEvent(type, where, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier));
}

} // namespace

class TestServiceDialog : public QObject
{
    Q_OBJECT

private slots:
    void openingAsksWhoIsThere();
    void markupInAnIdIsShownAsItIs();
    void aTcpConnectionShowsItsPort();
    void aSerialConnectionShowsItsRate();
    void openingPausesTheStream();
    void anUnansweredQuestionLeavesTheIdEmpty_data();
    void anUnansweredQuestionLeavesTheIdEmpty();
    void theFirstTestHasTheFocusWhenTheDialogOpens();
    void escapeClosesAndOpeningAsksAnew();
    void closeButtonCloses();
    void choicesSurviveClosing();
    void forgettingTheConnectionClosesTheDialog();
    void forgettingAnotherConnectionDoesNothing();
    void withoutAConnectionNothingIsSent();
    void withoutALinkEveryTestFailsAtOnce_data();
    void withoutALinkEveryTestFailsAtOnce();
    void aLinkThatIsLostDuringATestEndsIt();
    void clicksDuringATestAreLost_data();
    void clicksDuringATestAreLost();
    void constructionIsLogged();
};

void TestServiceDialog::openingAsksWhoIsThere()
{
    ServiceBench bench;
    QVERIFY(bench.link.connectAndIdentify());
    bench.dialog.setConnection(bench.link.client);
    QCOMPARE(bench.commands(), identification);
    QCOMPARE(bench.labelText("boardId_Label"), bench.link.controller.id());
    QCOMPARE(bench.dialog.connection(), &bench.link.client);
    QVERIFY(!bench.dialog.isVisible());
}

void TestServiceDialog::markupInAnIdIsShownAsItIs()
{
    emulator::ControllerOptions options;
    options.key = "<b>bold</b>";
    ServiceBench bench(options);
    QVERIFY(bench.open());
    QVERIFY(bench.labelText("boardId_Label").contains("<b>bold</b>"));
    QCOMPARE(bench.find<QLabel>("boardId_Label").textFormat(), Qt::PlainText);
}

void TestServiceDialog::aTcpConnectionShowsItsPort()
{
    ServiceBench bench;
    QVERIFY(bench.open());
    QCOMPARE(bench.labelText("config_Label"), QString("Siehe Ethernet Adapter"));
    QCOMPARE(bench.labelText("portLabel"), QString::number(bench.link.controller.port()));
    QVERIFY(bench.find<QLabel>("portLabel").isVisible());
    QCOMPARE(bench.labelText("PortText"), QString("Port"));
    QVERIFY(bench.find<QLabel>("PortText").isVisible());
}

void TestServiceDialog::aSerialConnectionShowsItsRate()
{
    ServiceBench bench;
    QVERIFY(bench.open());
    SerialPort serial;
    serial.init("ttyUSB77", 460800);
    bench.dialog.setConnection(serial);
    QCOMPARE(bench.labelText("config_Label"), QString("460800"));
    QVERIFY(!bench.find<QLabel>("portLabel").isVisible());
    QVERIFY(!bench.find<QLabel>("PortText").isVisible());
    QCOMPARE(bench.labelText("boardId_Label"), QString());
    QVERIFY(bench.show());
    QVERIFY(bench.find<QLabel>("portLabel").isVisible());
}

void TestServiceDialog::openingPausesTheStream()
{
    ServiceBench bench;
    QVERIFY(bench.link.connectAndIdentify());
    QVERIFY(bench.link.startStream(ServiceBench::streamRateHz));
    bench.link.controller.clearWire();
    bench.dialog.setConnection(bench.link.client);
    QCOMPARE(bench.commands(),
             QByteArrayList({"CLS;", "GID;", streamStart(ServiceBench::streamRateHz)}));
    QVERIFY(bench.streams());
}

void TestServiceDialog::anUnansweredQuestionLeavesTheIdEmpty_data()
{
    QTest::addColumn<bool>("isRefused");
    QTest::newRow("refused") << true;
    QTest::newRow("silent") << false;
}

void TestServiceDialog::anUnansweredQuestionLeavesTheIdEmpty()
{
    QFETCH(bool, isRefused);
    ServiceBench bench;
    QVERIFY(bench.open());
    QVERIFY(!bench.labelText("boardId_Label").isEmpty());
    bench.link.controller.setRules({isRefused ? on("GID").refuse() : on("GID").ignore()});
    bench.link.client.setTimeoutMs(ServiceBench::faultyTimeoutMs);
    bench.dialog.setConnection(bench.link.client);
    QCOMPARE(bench.labelText("boardId_Label"), QString());
    QCOMPARE(bench.labelText("portLabel"), QString::number(bench.link.controller.port()));
}

void TestServiceDialog::theFirstTestHasTheFocusWhenTheDialogOpens()
{
    ServiceBench bench;
    QVERIFY(bench.link.connectAndIdentify());
    bench.dialog.setConnection(bench.link.client);
    bench.dialog.show();
    QApplication::setActiveWindow(&bench.dialog);
    QVERIFY(QTest::qWaitForWindowActive(&bench.dialog));
    QVERIFY(bench.isReady());
    QVERIFY(bench.find<QWidget>("buttonGIN_1").hasFocus());
}

void TestServiceDialog::escapeClosesAndOpeningAsksAnew()
{
    ServiceBench bench;
    QVERIFY(bench.open());
    QTest::keyClick(bench.dialog.windowHandle(), Qt::Key_Escape);
    QVERIFY(!bench.dialog.isVisible());
    QCOMPARE(bench.dialog.connection(), &bench.link.client);
    bench.dialog.setConnection(bench.link.client);
    QCOMPARE(bench.commands(), identification);
    QVERIFY(bench.show());
    QVERIFY(bench.click("buttonCTF_1"));
    QCOMPARE(bench.results(), QString("Clear Trigger Freeze Stage 1: Success\n"));
}

void TestServiceDialog::closeButtonCloses()
{
    ServiceBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.press("buttonClose"));
    QVERIFY(!bench.dialog.isVisible());
    QCOMPARE(bench.commands(), QByteArrayList());
}

void TestServiceDialog::choicesSurviveClosing()
{
    ServiceBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.press("manalPosition_checkBox"));
    QVERIFY(bench.click("buttonCTF_1"));
    QVERIFY(bench.press("buttonClose"));
    QVERIFY(bench.show());
    QVERIFY(bench.find<QWidget>("drive_spinBox").isEnabled());
    QCOMPARE(bench.results(), QString("Clear Trigger Freeze Stage 1: Success\n"));
}

void TestServiceDialog::forgettingTheConnectionClosesTheDialog()
{
    ServiceBench bench;
    QVERIFY(bench.openStreaming());
    bench.dialog.forget(&bench.link.client);
    QVERIFY(!bench.dialog.isVisible());
    QVERIFY(!bench.dialog.connection());
    QCOMPARE(bench.commands(), QByteArrayList());
}

void TestServiceDialog::forgettingAnotherConnectionDoesNothing()
{
    ServiceBench bench;
    const EmulatedLink other;
    bench.dialog.forget(&other.client);
    bench.dialog.forget(nullptr);
    QVERIFY(bench.open());
    bench.dialog.forget(&other.client);
    bench.dialog.forget(nullptr);
    QVERIFY(bench.dialog.isVisible());
    QCOMPARE(bench.dialog.connection(), &bench.link.client);
}

void TestServiceDialog::withoutAConnectionNothingIsSent()
{
    ServiceBench bench;
    QVERIFY(bench.openStreaming());
    bench.dialog.forget(&bench.link.client);
    bench.dialog.show();
    callAllSlots(bench.dialog);
    for (const TestedButton& button : testedButtons())
        bench.find<QPushButton>(button.name).click();
    QCOMPARE(bench.commands(), QByteArrayList());
    QCOMPARE(bench.results(), QString());
    QVERIFY(bench.streams());
}

void TestServiceDialog::withoutALinkEveryTestFailsAtOnce_data()
{
    QTest::addColumn<QString>("failure");
    QTest::newRow("buttonGIN_1") << "Get Intensity: failed - no response\n";
    QTest::newRow("buttonCLS") << "Clear Live Stream: Failed\n";
    QTest::newRow("adjustIn1X") << "Set adjust in stage 1 axis X to -1000: Failed\n";
    QTest::newRow("fram_PushButton") << "Not supported! \n";
    QTest::newRow("speed_pushButton") << "Speed Test: Failed - stream couldn't start\n";
    QTest::newRow("baudrateChange") << "Set Baudrate: Failed\n";
}

/// Also where a stream would be started behind the test.
void TestServiceDialog::withoutALinkEveryTestFailsAtOnce()
{
    constexpr int longMs = 5000;
    ServiceBench bench;
    QVERIFY(bench.openStreaming());
    bench.link.client.disconnectController();
    bench.link.client.setTimeoutMs(longMs);
    QElapsedTimer clock;
    clock.start();
    QVERIFY(bench.click(QTest::currentDataTag()));
    QVERIFY(clock.elapsed() < longMs);
    QTEST(bench.results(), "failure");
    QCOMPARE(bench.commands(), QByteArrayList());
}

void TestServiceDialog::aLinkThatIsLostDuringATestEndsIt()
{
    ServiceBench bench;
    QVERIFY(bench.open());
    bench.link.controller.setRules({on("CTF").close()});
    QVERIFY(bench.click("buttonCTF_1"));
    QCOMPARE(bench.results(), QString("Clear Trigger Freeze Stage 1: Failed\n"));
    QTRY_COMPARE(bench.link.lost.size(), 1);
    QVERIFY(bench.dialog.isVisible());
    bench.link.client.disconnectController();
    QVERIFY(bench.link.connect());
    QVERIFY(bench.click("buttonCSH_1"));
    QCOMPARE(bench.results(), QString("Clear Set&Hold Stage 1: Success\n"));
}

void TestServiceDialog::clicksDuringATestAreLost_data()
{
    QTest::addColumn<QString>("second");
    QTest::newRow("the same button") << "buttonCTF_1";
    QTest::newRow("a row that is made in code") << "pFactor1_100";
    QTest::newRow("change of the rate") << "baudrateChange";
    QTest::newRow("speed") << "speed_pushButton";
}

/// The second click waits while the first one is carried out.
void TestServiceDialog::clicksDuringATestAreLost()
{
    QFETCH(QString, second);
    ServiceBench bench;
    QVERIFY(bench.open());
    postClick(bench.dialog, bench.find<QPushButton>("buttonCTF_1"));
    postClick(bench.dialog, bench.find<QPushButton>(second));
    QTRY_VERIFY(bench.link.controller.count("CTF") > 0 && bench.isReady());
    QCoreApplication::processEvents();
    QCOMPARE(bench.commands(), QByteArrayList{QByteArray("CTF\1;")});
}

void TestServiceDialog::constructionIsLogged()
{
    const LogCapture log;
    const ServiceDialog dialog([] { return 1; }, nullptr);
    QCOMPARE(log.lines(), QStringList({"debug: Constructing ServiceDialog",
                                       "debug: Finished constructing ServiceDialog"}));
}

QTEST_MAIN(TestServiceDialog)
#include "tst_servicedialog.moc"
