#include "dialogue.h"
#include "link/tcpclient.h"
#include "plots/counter.h"
#include "setup/connectionoverviewdialog.h"
#include "setup/overviewwidget.h"
#include "support/boxanswers.h"
#include "support/emulatedlink.h"
#include "support/samplefeed.h"
#include "support/userinput.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QGuiApplication>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QtTest>

Q_DECLARE_METATYPE(emulator::Faults)

namespace {

emulator::ControllerOptions withFirmware(int firmware)
{
    emulator::ControllerOptions options;
    options.firmware = firmware;
    options.preset = emulator::Preset::Quiet;
    return options;
}

QColor buttonColor(const QPushButton& button)
{
    return button.palette().color(QPalette::Button);
}

int countOf(const emulator::ControllerHandle& controller, const char* mnemonic)
{
    int count = 0;
    for (const QByteArray& command : controller.commands())
        count += command.startsWith(mnemonic) ? 1 : 0;
    return count;
}

/// Remembers what a button and the pointer looked like whenever the button was turned off or on.
class PointerWatch final : public QObject
{
public:
    explicit PointerWatch(QPushButton& watched) { watched.installEventFilter(this); }

    QStringList seen;

protected:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() == QEvent::EnabledChange) {
            const QCursor* cursor = QGuiApplication::overrideCursor();
            const bool waiting = cursor && cursor->shape() == Qt::WaitCursor;
            const bool enabled = qobject_cast<QPushButton*>(object)->isEnabled();
            seen.append(QString(enabled ? "enabled" : "disabled")
                        + (waiting ? ", waiting" : ", ready"));
        }
        return false;
    }
};

/// The dialogue without what the stream has sent before the first command.
QStringList dialogueFromCommand(const emulator::ControllerHandle& controller)
{
    QStringList lines = dialogue(controller);
    if (!lines.isEmpty() && lines.first() == packets())
        lines.removeFirst();
    return lines;
}

bool readStatus(MainWindow& window)
{
    bool good = false;
    QMetaObject::invokeMethod(&window, "getStabilAndActiveStatus", Qt::DirectConnection,
                              Q_RETURN_ARG(bool, good));
    return good;
}

/// Flags of a status with stage 1 on but not active, and the other way round on stage 2.
constexpr char oneOnTwoActive = '\x48';

/// Button and light of both stages.
QStringList stagesShown(const WindowFixture& fixture)
{
    return {fixture.find<QPushButton>("push_Stab1")->text(),
            fixture.find<QLabel>("label_ActiveText")->text(),
            fixture.find<QPushButton>("push_Stab2")->text(),
            fixture.find<QLabel>("label_ActiveText_2")->text()};
}

/// Status requests get no answer from now on.
void silenceStatus(emulator::ControllerHandle controller)
{
    controller.setRules({emulator::on("GSF").ignore()});
}

/// Status requests are answered with this byte of flags from now on.
void answerStatus(emulator::ControllerHandle controller, char flags)
{
    controller.setRules({emulator::on("GSF").reply(QByteArray("\0;", 2) + flags + ';')});
}

} // namespace

class TestStabilisation : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void switchedStageIsGreenAndItsLightFollows();
    void switchOffTurnsTheLightRedAtOnce();
    void stagesAreSwitchedApart();
    void badReplyIsRepeatedOnceAndTheStatusCorrectsTheButton_data();
    void badReplyIsRepeatedOnceAndTheStatusCorrectsTheButton();
    void goodReplyOfTwoBytesIsNotRepeated();
    void newFirmwareIsNotAskedForItsStatus_data();
    void newFirmwareIsNotAskedForItsStatus();
    void switchedButtonKeepsTheKeyboard();
    void buttonIsDisabledAndThePointerWaitsDuringASwitch();
    void switchWhileStreamingHoldsUntilTheNextSample();
    void streamGoesOnAtItsRateBehindASwitch();
    void refusedRestartIsTold();
    void rateThatWasNeverAcceptedRestartsAt500();
    void overviewSwitchesAnySystem();
    void unknownSystemIsNotSwitched();
    void twoSystemsOfOneAddressAreSwitchedBoth();
    void statusBitsBelongToTheirStagesAfterASwitch();
    void statusBitsBelongToTheirStagesInAPoll();
    void lostSystemHasNoStatus();
    void fourthFailedStatusReadStopsAndTells();
    void goodStatusReadForgetsTheFailures();
    void startForgetsTheFailures();
    void statusWithBit7CountsAsFailure();
    void statusByteShowsLights();
};

void TestStabilisation::cleanup()
{
    QCOMPARE(leftWidgets(), QString());
}

void TestStabilisation::switchedStageIsGreenAndItsLightFollows()
{
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    auto* button = fixture.find<QPushButton>("push_Stab1");
    auto* light = fixture.find<QLabel>("label_ActiveText");
    QCOMPARE(button->text(), QStringLiteral("OFF"));
    QCOMPARE(buttonColor(*button), QColor("lightcoral"));
    QCOMPARE(light->text(), QStringLiteral("Inactive"));

    // Only the reply to the switch can turn the button green now.
    silenceStatus(fixture.controller());
    QVERIFY(fixture.click("push_Stab1"));
    QCOMPARE(button->text(), QStringLiteral("ON"));
    QCOMPARE(buttonColor(*button), QColor("lightgreen"));
    QVERIFY(button->isChecked());
    QVERIFY(button->isEnabled());
    QCOMPARE(light->text(), QStringLiteral("Inactive"));
    QVERIFY(fixture.tickUntil([&] { return fixture.controller().unplayedRules().isEmpty(); }));
    QCOMPARE(button->text(), QStringLiteral("ON"));
    QCOMPARE(light->text(), QStringLiteral("Inactive"));
    fixture.controller().setFaults({});
    QTRY_COMPARE(light->text(), QStringLiteral("Active"));
}

void TestStabilisation::switchOffTurnsTheLightRedAtOnce()
{
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    auto* button = fixture.find<QPushButton>("push_Stab1");
    auto* light = fixture.find<QLabel>("label_ActiveText");
    QVERIFY(fixture.click("push_Stab1"));
    QTRY_COMPARE(light->text(), QStringLiteral("Active"));

    // No event and so no tick passes between the press and the look.
    button->click();
    QCOMPARE(button->text(), QStringLiteral("OFF"));
    QCOMPARE(buttonColor(*button), QColor("lightcoral"));
    QCOMPARE(light->text(), QStringLiteral("Inactive"));
}

void TestStabilisation::stagesAreSwitchedApart()
{
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.click("push_Stab2"));
    QVERIFY(fixture.controller().stageOn(2));
    QVERIFY(!fixture.controller().stageOn(1));
    QCOMPARE(fixture.find<QPushButton>("push_Stab1")->text(), QStringLiteral("OFF"));
    QCOMPARE(fixture.find<QPushButton>("push_Stab2")->text(), QStringLiteral("ON"));
    QTRY_COMPARE(fixture.find<QLabel>("label_ActiveText_2")->text(), QStringLiteral("Active"));
    QCOMPARE(fixture.find<QLabel>("label_ActiveText")->text(), QStringLiteral("Inactive"));
}

void TestStabilisation::badReplyIsRepeatedOnceAndTheStatusCorrectsTheButton_data()
{
    QTest::addColumn<emulator::Faults>("faults");
    emulator::Faults refused;
    refused.refuse = {"SEA"};
    QTest::newRow("refused") << refused;
    emulator::Faults oneByte;
    oneByte.shortBytes = {{"SEA", 1}};
    oneByte.refuse = {"SEA"};
    QTest::newRow("one byte") << oneByte;
    emulator::Faults silent;
    silent.silent = {"SEA"};
    QTest::newRow("silent") << silent;
}

void TestStabilisation::badReplyIsRepeatedOnceAndTheStatusCorrectsTheButton()
{
    QFETCH(emulator::Faults, faults);
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    fixture.controller().setFaults(faults);
    auto* button = fixture.find<QPushButton>("push_Stab1");

    button->click();
    QCOMPARE(countOf(fixture.controller(), "SEA"), 2);
    // As it was toggled, with its old colour and text.
    QVERIFY(button->isChecked());
    QCOMPARE(button->text(), QStringLiteral("OFF"));
    QCOMPARE(buttonColor(*button), QColor("lightcoral"));

    fixture.controller().setFaults({});
    QTRY_VERIFY(!button->isChecked());
    QCOMPARE(button->text(), QStringLiteral("OFF"));
}

void TestStabilisation::goodReplyOfTwoBytesIsNotRepeated()
{
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.click("push_Stab1"));
    QCOMPARE(countOf(fixture.controller(), "SEA"), 1);
}

void TestStabilisation::newFirmwareIsNotAskedForItsStatus_data()
{
    QTest::addColumn<int>("stage");
    QTest::addColumn<bool>("streaming");
    for (const int stage : {1, 2}) {
        QTest::addRow("stage %d, idle", stage) << stage << false;
        QTest::addRow("stage %d, streaming", stage) << stage << true;
    }
}

void TestStabilisation::newFirmwareIsNotAskedForItsStatus()
{
    QFETCH(int, stage);
    QFETCH(bool, streaming);
    WindowFixture fixture(1, withFirmware(11));
    QVERIFY(fixture.openWithSystems());
    if (streaming)
        QVERIFY(fixture.clickAction("startAction"));
    const auto expected = [&](const char* mnemonic) {
        QStringList lines{stageCommand(mnemonic, stage), accepted()};
        if (streaming)
            lines = QStringList({sent("CLS"), packets(), accepted()}) + lines
                    + QStringList({startCommand(100), packets()});
        return lines;
    };

    // Without events there is no tick, and so no poll of the window's own.
    fixture.controller().clearWire();
    fixture.find<QPushButton>(stage == 1 ? "push_Stab1" : "push_Stab2")->click();
    QCOMPARE(dialogueFromCommand(fixture.controller()), expected("SEA"));

    fixture.controller().clearWire();
    fixture.window().activeStage(fixture.controller().address(), stage, false);
    QCOMPARE(dialogueFromCommand(fixture.controller()), expected("CEA"));
}

void TestStabilisation::switchedButtonKeepsTheKeyboard()
{
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    auto* button = fixture.find<QPushButton>("push_Stab2");
    button->setFocus();

    for (const char* mnemonic : {"SEA", "CEA"}) {
        QTest::keyClick(fixture.window().windowHandle(), Qt::Key_Space);
        QCOMPARE(countOf(fixture.controller(), mnemonic), 1);
        QVERIFY(button->hasFocus());
    }
    // One that did not have it does not get it.
    QVERIFY(fixture.clickAction("startAction"));
    fixture.find<QPushButton>("push_Stab1")->click();
    QVERIFY(button->hasFocus());
}

void TestStabilisation::buttonIsDisabledAndThePointerWaitsDuringASwitch()
{
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    const PointerWatch watch(*fixture.find<QPushButton>("push_Stab1"));
    QVERIFY(fixture.click("push_Stab1"));
    QCOMPARE(watch.seen, QStringList({"disabled, waiting", "enabled, waiting"}));
    QVERIFY(!QGuiApplication::overrideCursor());
}

void TestStabilisation::switchWhileStreamingHoldsUntilTheNextSample()
{
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.show({emulator::PacketValues()}));
    auto* button = fixture.find<QPushButton>("push_Stab1");
    auto* light = fixture.find<QLabel>("label_ActiveText");

    // The restarted stream has nothing to show yet.
    button->click();
    fixture.tick();
    QCOMPARE(button->text(), QStringLiteral("ON"));
    QVERIFY(button->isChecked());

    QVERIFY(feed.send({emulator::PacketValues()}, 0, emulator::Stage1On | emulator::Stage1Active));
    fixture.tick();
    QCOMPARE(light->text(), QStringLiteral("Active"));
    button->click();
    fixture.tick();
    QCOMPARE(button->text(), QStringLiteral("OFF"));
    QVERIFY(!button->isChecked());
    QCOMPARE(light->text(), QStringLiteral("Inactive"));
}

void TestStabilisation::streamGoesOnAtItsRateBehindASwitch()
{
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.type("samplingRateCounter", "200"));
    QVERIFY(fixture.clickAction("startAction"));
    // Not what the tool bar says by now.
    fixture.find<Counter>("samplingRateCounter")->spinBox->setValue(50);
    fixture.controller().clearWire();
    QVERIFY(fixture.click("push_Stab1"));
    QVERIFY(fixture.connection().isStreaming());
    QVERIFY(dialogue(fixture.controller()).contains(startCommand(200)));
    QCOMPARE(fixture.controller().streamRate(), 200);
}

void TestStabilisation::refusedRestartIsTold()
{
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.clickAction("startAction"));
    emulator::Faults faults;
    faults.refuse = {"SLS"};
    fixture.controller().setFaults(faults);

    QVERIFY(fixture.click("push_Stab1"));
    auto* box = fixture.find<QMessageBox>("streamErrorBox");
    QVERIFY(box->isVisible());
    QCOMPARE(box->windowTitle(), QStringLiteral("Information"));
    QCOMPARE(box->text(), QStringLiteral("Streaming error has occurred."));
    QVERIFY(!box->isModal());
    QVERIFY(fixture.find<QAction>("startAction")->isChecked());
}

void TestStabilisation::rateThatWasNeverAcceptedRestartsAt500()
{
    // A controller that follows trigger pulses and still is told a rate.
    emulator::ControllerOptions options = withFirmware(40);
    options.vm = true;
    WindowFixture fixture(1, options);
    QVERIFY(fixture.open());
    ConnectionSettings pulsed = fixture.record();
    pulsed.pulsedLaser = true;
    QVERIFY(fixture.registerSystem(pulsed, 0));
    fixture.tick();
    QVERIFY(fixture.clickAction("startAction"));
    QCOMPARE(fixture.connection().samplingRate(), -1);
    QVERIFY(fixture.controller().commands().contains(QByteArray("SGS\0\0\x03\xe8;", 8)));

    fixture.controller().clearWire();
    QVERIFY(fixture.click("push_Stab1"));
    QVERIFY(fixture.controller().commands().contains(QByteArray("SGS\0\0\x01\xf4;", 8)));
}

void TestStabilisation::overviewSwitchesAnySystem()
{
    WindowFixture fixture(2, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    fixture.find<QAction>("actionConfiguration")->trigger();
    auto* overview = fixture.window().findChild<ConnectionOverviewDialog*>();
    auto* list = overview->findChild<QListWidget*>("listWidget");
    QWidget* row = list->itemWidget(list->item(2));
    auto* enable2 = row->findChild<QPushButton*>("enable2");
    QTRY_VERIFY(enable2->isEnabled());

    QVERIFY(user::click(enable2));
    QVERIFY(fixture.controller(1).stageOn(2));
    QVERIFY(!fixture.controller(0).stageOn(2));
    QTRY_COMPARE(enable2->text(), QStringLiteral("ON"));
    QVERIFY(user::click(enable2));
    QTRY_COMPARE(enable2->text(), QStringLiteral("OFF"));
    QVERIFY(!fixture.controller(1).stageOn(2));
}

void TestStabilisation::unknownSystemIsNotSwitched()
{
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    fixture.window().activeStage(QStringLiteral("127.9.9.9"), 1, true);
    QCOMPARE(countOf(fixture.controller(), "SEA"), 0);
}

void TestStabilisation::twoSystemsOfOneAddressAreSwitchedBoth()
{
    emulator::EmulatorHost host;
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    // At another port, which the address does not tell.
    const emulator::ControllerHandle twin =
        host.addTcp(withFirmware(40), fixture.controller().address());
    auto client = std::make_unique<TcpClient>();
    TcpClient& link = *client;
    QVERIFY(link.init(twin.address(), twin.port()));
    link.start(QThread::InheritPriority);
    QVERIFY(waitWithoutEvents([&link] { return link.isConnected(); }));
    QVERIFY(askIdentity(link));
    link.setTimeoutMs(WindowFixture::shortTimeoutMs);
    fixture.window().newConnection(std::move(client), fixture.record());

    fixture.window().activeStage(twin.address(), 2, true);
    QVERIFY(fixture.controller().stageOn(2));
    QVERIFY(twin.stageOn(2));
}

void TestStabilisation::statusBitsBelongToTheirStagesAfterASwitch()
{
    WindowFixture fixture(1, withFirmware(10));
    QVERIFY(fixture.openWithSystems());
    // While it streams nobody else asks for the status.
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    answerStatus(fixture.controller(), oneOnTwoActive);
    fixture.find<QPushButton>("push_Stab2")->click();
    fixture.tick();
    QCOMPARE(stagesShown(fixture), QStringList({"ON", "Inactive", "OFF", "Active"}));
}

void TestStabilisation::statusBitsBelongToTheirStagesInAPoll()
{
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    answerStatus(fixture.controller(), oneOnTwoActive);
    QVERIFY(fixture.tickUntil([&] {
        return stagesShown(fixture) == QStringList({"ON", "Inactive", "OFF", "Active"});
    }));
}

void TestStabilisation::lostSystemHasNoStatus()
{
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    fixture.controller().setStage(1, true);
    fixture.controller().setStage(2, true);
    const auto flags = [&fixture] {
        const ConnectionStatus status = fixture.window().liveStatuses().first();
        return QVector<bool>{status.statusValid, status.stabilised1, status.stabilised2,
                             status.active1, status.active2};
    };
    QVERIFY(fixture.tickUntil([&] { return flags() == QVector<bool>(5, true); }));

    fixture.controller().closeConnection();
    QVERIFY(fixture.tickUntil([&] { return !fixture.connection().isConnected(); }));
    fixture.tick();
    QCOMPARE(flags(), QVector<bool>(5, false));
}

void TestStabilisation::fourthFailedStatusReadStopsAndTells()
{
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    const BoxAnswers answers;
    // A stream does not let the request through: the reads fail while it runs.
    QVERIFY(fixture.clickAction("startAction"));
    QVERIFY(fixture.connection().isStreaming());

    for (int failure = 1; failure <= 3; ++failure)
        QVERIFY(!readStatus(fixture.window()));
    QCOMPARE(answers.count(), 0);
    QVERIFY(fixture.find<QAction>("startAction")->isChecked());
    QVERIFY(!readStatus(fixture.window()));
    QVERIFY(!fixture.connection().isStreaming());
    QCOMPARE(answers.titles(), QStringList("Error"));
    QCOMPARE(answers.texts(), QStringList("Too many communication errors.\nDevice disconnected."));
    QVERIFY(!fixture.find<QAction>("startAction")->isChecked());
}

void TestStabilisation::goodStatusReadForgetsTheFailures()
{
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    const BoxAnswers answers;
    for (int round = 0; round < 2; ++round) {
        silenceStatus(fixture.controller());
        for (int failure = 1; failure <= 3; ++failure)
            QVERIFY(!readStatus(fixture.window()));
        fixture.controller().setFaults({});
        QVERIFY(readStatus(fixture.window()));
    }
    QCOMPARE(answers.count(), 0);
}

void TestStabilisation::startForgetsTheFailures()
{
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    silenceStatus(fixture.controller());
    const BoxAnswers answers;
    for (int failure = 1; failure <= 3; ++failure)
        QVERIFY(!readStatus(fixture.window()));
    fixture.find<QAction>("startAction")->trigger();
    QVERIFY(fixture.connection().isStreaming());

    // A streaming controller can not be asked: these fail, too.
    for (int failure = 1; failure <= 3; ++failure)
        QVERIFY(!readStatus(fixture.window()));
    QCOMPARE(answers.count(), 0);
    QVERIFY(fixture.find<QAction>("startAction")->isChecked());
    QVERIFY(!readStatus(fixture.window()));
    QCOMPARE(answers.count(), 1);
    QVERIFY(!fixture.find<QAction>("startAction")->isChecked());
}

void TestStabilisation::statusWithBit7CountsAsFailure()
{
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    answerStatus(fixture.controller(), '\x88');
    const BoxAnswers answers;
    QVERIFY(!readStatus(fixture.window()));
    // Bit 3 of it says on, and is not believed.
    QCOMPARE(fixture.find<QPushButton>("push_Stab1")->text(), QStringLiteral("OFF"));

    // It was the first of four.
    silenceStatus(fixture.controller());
    for (int failure = 2; failure <= 3; ++failure)
        QVERIFY(!readStatus(fixture.window()));
    QCOMPARE(answers.count(), 0);
    QVERIFY(!readStatus(fixture.window()));
    QCOMPARE(answers.count(), 1);
}

void TestStabilisation::statusByteShowsLights()
{
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.window().getActiveStatus(0x20));
    QCOMPARE(fixture.find<QLabel>("label_ActiveText")->text(), QStringLiteral("Active"));
    QCOMPARE(fixture.find<QLabel>("label_ActiveText_2")->text(), QStringLiteral("Inactive"));
    QVERIFY(fixture.window().getActiveStatus(0x40));
    QCOMPARE(fixture.find<QLabel>("label_ActiveText")->text(), QStringLiteral("Inactive"));
    QCOMPARE(fixture.find<QLabel>("label_ActiveText_2")->text(), QStringLiteral("Active"));
    // The byte of a failed read asks the controller.
    QVERIFY(fixture.window().getActiveStatus(0x80));
    QCOMPARE(fixture.find<QLabel>("label_ActiveText_2")->text(), QStringLiteral("Inactive"));
}

QTEST_MAIN(TestStabilisation)
#include "tst_stabilisation.moc"
