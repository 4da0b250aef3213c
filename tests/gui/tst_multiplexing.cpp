// Leading stages to a common detector by the wishes that the overview tells.

#include "dialogue.h"
#include "link/connection.h"
#include "setup/connectionoverviewdialog.h"
#include "setup/overviewwidget.h"
#include "support/samplefeed.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QComboBox>
#include <QGuiApplication>
#include <QListWidget>
#include <QMessageBox>
#include <QSpinBox>
#include <QtTest>

using emulator::on;

Q_DECLARE_METATYPE(emulator::ControllerOptions)
Q_DECLARE_METATYPE(emulator::Rule)

namespace {

const QByteArray stopCommand("CLS;");
/// At the rate that the tool bar begins with.
const QByteArray startAt100Hz("SLS\0\0\0\x64;", 8);

emulator::ControllerOptions withFirmware(int firmware)
{
    emulator::ControllerOptions options;
    options.firmware = firmware;
    options.preset = emulator::Preset::Quiet;
    return options;
}

QByteArray switchCommand(bool direction, int stage)
{
    return QByteArray(direction ? "SMD" : "CMD").append(char(stage)).append(';');
}

/// A wish, as the overview tells it.
void wish(const WindowFixture& fixture, bool direction, int stage, int system = 0)
{
    auto* overview = fixture.window().findChild<ConnectionOverviewDialog*>();
    emit overview->multiplexDetectors(fixture.controller(system).address(), direction, stage);
}

/// As `wish`, with shorter waits, for replies that do not come.
void wishImpatiently(const WindowFixture& fixture, bool direction, int stage)
{
    constexpr int faultyTimeoutMs = 80;
    fixture.connection().setTimeoutMs(faultyTimeoutMs);
    wish(fixture, direction, stage);
    fixture.connection().setTimeoutMs(WindowFixture::shortTimeoutMs);
}

/// Commands that a controller got, but for requests of its status.
QByteArrayList commands(const WindowFixture& fixture, int system = 0)
{
    QByteArrayList all = fixture.controller(system).commands();
    all.removeAll("GSF;");
    return all;
}

bool isMultiplexed(const WindowFixture& fixture, int stage, int system = 0)
{
    const ConnectionStatus status = fixture.window().liveStatuses()[system];
    return stage == 1 ? status.multiplex1 : status.multiplex2;
}

bool showsStreamError(const WindowFixture& fixture)
{
    return fixture.find<QMessageBox>("streamErrorBox")->isVisible();
}

/// The row of a system, as the latest tick has left it.
OverviewWidget& row(const WindowFixture& fixture, int system)
{
    fixture.tick();
    auto* list = fixture.window().findChild<ConnectionOverviewDialog*>()->findChild<QListWidget*>();
    return *qobject_cast<OverviewWidget*>(list->itemWidget(list->item(1 + system)));
}

template <typename Widget>
Widget& in(const OverviewWidget& row, const char* name)
{
    auto* found = row.findChild<Widget*>(QLatin1String(name));
    Q_ASSERT(found);
    return *found;
}

void addRequests()
{
    QTest::addColumn<int>("stage");
    QTest::addColumn<bool>("direction");
    for (const int stage : {1, 2}) {
        QTest::addRow("stage %d, on", stage) << stage << true;
        QTest::addRow("stage %d, off", stage) << stage << false;
    }
}

} // namespace

class TestMultiplexing final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void idleSystemGetsTheCommandAlone_data() { addRequests(); }
    void idleSystemGetsTheCommandAlone();
    void streamIsStoppedForTheCommandAndGoesOnAtItsRate_data() { addRequests(); }
    void streamIsStoppedForTheCommandAndGoesOnAtItsRate();
    void streamOfEachKindIsStartedAgain_data();
    void streamOfEachKindIsStartedAgain();
    void directionThatIsSetSendsNothingAndLeavesTheStream();
    void refusedSwitchOfStage2LeavesItOff();
    void failedSwitchTakesTheOppositeAndTheStreamRuns_data();
    void failedSwitchTakesTheOppositeAndTheStreamRuns();
    void stopThatFailsOnceChangesNothing_data();
    void stopThatFailsOnceChangesNothing();
    void stopThatNeverSucceedsKeepsTheStream_data();
    void stopThatNeverSucceedsKeepsTheStream();
    void onlyAFailedStartIsTold_data();
    void onlyAFailedStartIsTold();
    void streamConfirmsTheFlagOfFirmwareAbove10_data();
    void streamConfirmsTheFlagOfFirmwareAbove10();
    void unknownNameOrStageChangesNothing();
    void systemThatIsDownTakesTheOppositeWithoutACommand();
    void onlyTheNamedSystemIsSwitched();
    void ticksGoOnBehindASwitch();
    void hiddenControlsOfTheOverviewReachTheWindow();
    void groupNumberReachesTheStatus();
};

void TestMultiplexing::cleanup()
{
    QCOMPARE(leftWidgets(), QString());
    QVERIFY(!QGuiApplication::overrideCursor());
}

void TestMultiplexing::idleSystemGetsTheCommandAlone()
{
    QFETCH(int, stage);
    QFETCH(bool, direction);
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    if (!direction)
        wish(fixture, true, stage);
    fixture.controller().clearWire();

    wish(fixture, direction, stage);
    QCOMPARE(commands(fixture), QByteArrayList{switchCommand(direction, stage)});
    QCOMPARE(isMultiplexed(fixture, stage), direction);
    QCOMPARE(fixture.controller().stage(stage).multiplexed, direction);
    QVERIFY(!isMultiplexed(fixture, 3 - stage));
    QVERIFY(!fixture.controller().stage(3 - stage).multiplexed);
    QVERIFY(!fixture.connection().isStreaming());
}

void TestMultiplexing::streamIsStoppedForTheCommandAndGoesOnAtItsRate()
{
    QFETCH(int, stage);
    QFETCH(bool, direction);
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    if (!direction)
        wish(fixture, true, stage);
    QVERIFY(fixture.type("samplingRateCounter", "200"));
    QVERIFY(fixture.clickAction("startAction"));
    // Not what the tool bar says by now.
    QVERIFY(fixture.type("updateRateCounter", "50"));
    fixture.find<QWidget>("samplingRateCounter")->findChild<QSpinBox*>()->setValue(50);
    fixture.controller().clearWire();

    // Without events there is no tick, and so no request of the window's own.
    wish(fixture, direction, stage);
    QStringList lines = dialogue(fixture.controller());
    if (lines.first() == packets())
        lines.removeFirst();
    QCOMPARE(lines, QStringList({sent("CLS"), packets(), accepted(),
                                 stageCommand(direction ? "SMD" : "CMD", stage), accepted(),
                                 startCommand(200), packets()}));
    QCOMPARE(isMultiplexed(fixture, stage), direction);
    QVERIFY(fixture.connection().isStreaming());
    QVERIFY(!showsStreamError(fixture));
}

void TestMultiplexing::streamOfEachKindIsStartedAgain_data()
{
    QTest::addColumn<emulator::ControllerOptions>("options");
    QTest::addColumn<bool>("byTriggers");
    QTest::addColumn<QByteArray>("start");
    for (const int firmware : {10, 11, 30, 31})
        QTest::addRow("firmware %d", firmware) << withFirmware(firmware) << false << startAt100Hz;
    emulator::ControllerOptions vm = withFirmware(31);
    vm.vm = true;
    QTest::newRow("VM") << vm << false << QByteArray("SGS\0\0\0\x64;", 8);
    emulator::ControllerOptions triggered = withFirmware(31);
    triggered.triggerCapable = true;
    QTest::newRow("by triggers") << triggered << true << QByteArray("SPS\0\0;", 6);
}

void TestMultiplexing::streamOfEachKindIsStartedAgain()
{
    QFETCH(emulator::ControllerOptions, options);
    QFETCH(bool, byTriggers);
    QFETCH(QByteArray, start);
    WindowFixture fixture(1, options);
    QVERIFY(fixture.openWithSystems());
    fixture.connection().setTriggerMode(byTriggers);
    QVERIFY(fixture.clickAction("startAction"));
    fixture.controller().clearWire();

    wish(fixture, true, 1);
    QCOMPARE(commands(fixture), QByteArrayList({stopCommand, switchCommand(true, 1), start}));
    QVERIFY(isMultiplexed(fixture, 1));
    QVERIFY(fixture.connection().isStreaming() && fixture.controller().isStreaming());
    QVERIFY(!showsStreamError(fixture));
}

void TestMultiplexing::directionThatIsSetSendsNothingAndLeavesTheStream()
{
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    wish(fixture, true, 2);
    QVERIFY(fixture.clickAction("startAction"));
    fixture.controller().clearWire();

    wish(fixture, true, 2);
    wish(fixture, false, 1);
    QCOMPARE(commands(fixture), QByteArrayList());
    QVERIFY(fixture.connection().isStreaming());
    const quint64 stored = fixture.connection().samplesStored();
    QVERIFY(waitWithoutEvents([&] { return fixture.connection().samplesStored() > stored; }));
}

void TestMultiplexing::refusedSwitchOfStage2LeavesItOff()
{
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.clickAction("startAction"));
    fixture.controller().addRule(on("SMD").refuse());
    fixture.controller().clearWire();

    wish(fixture, true, 2);
    QCOMPARE(commands(fixture),
             QByteArrayList({stopCommand, switchCommand(true, 2), startAt100Hz}));
    QVERIFY(!isMultiplexed(fixture, 2));
    QVERIFY(fixture.connection().isStreaming());
    QVERIFY(!showsStreamError(fixture));
}

void TestMultiplexing::failedSwitchTakesTheOppositeAndTheStreamRuns_data()
{
    QTest::addColumn<bool>("direction");
    QTest::addColumn<bool>("streaming");
    QTest::addColumn<emulator::Rule>("always");
    QTest::addColumn<emulator::Rule>("once");
    for (const bool direction : {true, false}) {
        const char* mnemonic = direction ? "SMD" : "CMD";
        for (const bool streaming : {true, false}) {
            const auto row = [&](const char* how, emulator::RuleDraft rule) {
                const emulator::Rule always = rule;
                QTest::addRow("%s %s, %s", mnemonic, how, streaming ? "streaming" : "idle")
                    << direction << streaming << always << emulator::Rule(rule.once());
            };
            row("refused", on(mnemonic).refuse());
            row("unanswered", on(mnemonic).ignore());
            row("cut", on(mnemonic).cutTo(1));
        }
    }
}

void TestMultiplexing::failedSwitchTakesTheOppositeAndTheStreamRuns()
{
    QFETCH(bool, direction);
    QFETCH(bool, streaming);
    QFETCH(emulator::Rule, always);
    QFETCH(emulator::Rule, once);
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    if (!direction)
        wish(fixture, true, 1);
    if (streaming)
        QVERIFY(fixture.clickAction("startAction"));
    fixture.controller().clearWire();

    const QByteArray command = switchCommand(direction, 1);
    const QByteArrayList expected =
        streaming ? QByteArrayList{stopCommand, command, startAt100Hz} : QByteArrayList{command};
    // The same wish again is not ignored.
    for (const emulator::Rule& rule : {always, once}) {
        fixture.controller().setRules({rule});
        wishImpatiently(fixture, direction, 1);
        QCOMPARE(commands(fixture), expected);
        QCOMPARE(isMultiplexed(fixture, 1), !direction);
        QCOMPARE(fixture.connection().isStreaming(), streaming);
        QVERIFY(!showsStreamError(fixture));
        fixture.controller().clearWire();
    }
    wish(fixture, direction, 1);
    QCOMPARE(commands(fixture), expected);
    QCOMPARE(isMultiplexed(fixture, 1), direction);
    QCOMPARE(fixture.connection().isStreaming(), streaming);
}

void TestMultiplexing::stopThatFailsOnceChangesNothing_data()
{
    QTest::addColumn<emulator::Rule>("rule");
    QTest::newRow("refused") << emulator::Rule(on("CLS").once().refuse());
    QTest::newRow("unanswered") << emulator::Rule(on("CLS").once().ignore());
}

void TestMultiplexing::stopThatFailsOnceChangesNothing()
{
    QFETCH(emulator::Rule, rule);
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.clickAction("startAction"));
    fixture.controller().addRule(rule);
    fixture.controller().clearWire();

    wishImpatiently(fixture, true, 1);
    QCOMPARE(commands(fixture),
             QByteArrayList({stopCommand, stopCommand, switchCommand(true, 1), startAt100Hz}));
    QVERIFY(isMultiplexed(fixture, 1));
    QVERIFY(fixture.connection().isStreaming());
    QVERIFY(!showsStreamError(fixture));
}

void TestMultiplexing::stopThatNeverSucceedsKeepsTheStream_data()
{
    QTest::addColumn<emulator::Rule>("rule");
    QTest::newRow("refused") << emulator::Rule(on("CLS").refuse());
    QTest::newRow("unanswered") << emulator::Rule(on("CLS").ignore());
}

void TestMultiplexing::stopThatNeverSucceedsKeepsTheStream()
{
    QFETCH(emulator::Rule, rule);
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.clickAction("startAction"));
    fixture.controller().addRule(rule);
    fixture.controller().clearWire();

    // Nothing but a stop is sent to a controller that streams, so the other two fail.
    wishImpatiently(fixture, true, 1);
    QCOMPARE(commands(fixture), QByteArrayList({stopCommand, stopCommand}));
    QVERIFY(!isMultiplexed(fixture, 1));
    QVERIFY(fixture.connection().isStreaming());
    QVERIFY(showsStreamError(fixture));
    // The next wish finds a controller that obeys.
    fixture.controller().setRules({});
    wish(fixture, true, 1);
    QVERIFY(isMultiplexed(fixture, 1));
    QVERIFY(fixture.connection().isStreaming());
}

void TestMultiplexing::onlyAFailedStartIsTold_data()
{
    QTest::addColumn<emulator::Rule>("rule");
    QTest::addColumn<bool>("told");
    QTest::newRow("refused") << emulator::Rule(on("SLS").refuse()) << true;
    QTest::newRow("refused once") << emulator::Rule(on("SLS").refuse().once()) << true;
    QTest::newRow("unanswered") << emulator::Rule(on("SLS").ignore()) << true;
    QTest::newRow("unanswered once") << emulator::Rule(on("SLS").ignore().once()) << true;
    // It can run for all that.
    QTest::newRow("cut") << emulator::Rule(on("SLS").cutTo(3)) << false;
    QTest::newRow("cut once") << emulator::Rule(on("SLS").cutTo(3).once()) << false;
}

void TestMultiplexing::onlyAFailedStartIsTold()
{
    QFETCH(emulator::Rule, rule);
    QFETCH(bool, told);
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    // So slow that no second packet completes a first one that was cut.
    QVERIFY(fixture.type("samplingRateCounter", "1"));
    QVERIFY(fixture.clickAction("startAction"));
    fixture.controller().addRule(rule);

    wishImpatiently(fixture, true, 1);
    QCOMPARE(showsStreamError(fixture), told);
    QVERIFY(isMultiplexed(fixture, 1));
    QVERIFY(fixture.find<QAction>("startAction")->isChecked());
}

void TestMultiplexing::streamConfirmsTheFlagOfFirmwareAbove10_data()
{
    QTest::addColumn<int>("firmware");
    QTest::addColumn<bool>("confirms");
    QTest::newRow("10") << 10 << false;
    QTest::newRow("11") << 11 << true;
    QTest::newRow("40") << 40 << true;
}

void TestMultiplexing::streamConfirmsTheFlagOfFirmwareAbove10()
{
    QFETCH(int, firmware);
    QFETCH(bool, confirms);
    WindowFixture fixture(1, withFirmware(firmware));
    QVERIFY(fixture.openWithSystems());
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    wish(fixture, true, 1);
    QVERIFY(fixture.connection().isStreaming());
    QVERIFY(isMultiplexed(fixture, 1));

    // The controller says the opposite of both stages.
    QVERIFY(feed.send({emulator::PacketValues()}, 0, 0, emulator::Multiplex2));
    fixture.tick();
    QCOMPARE(isMultiplexed(fixture, 1), !confirms);
    QCOMPARE(isMultiplexed(fixture, 2), confirms);
}

void TestMultiplexing::unknownNameOrStageChangesNothing()
{
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.clickAction("startAction"));
    fixture.controller().clearWire();
    fixture.window().multiplexSystem(QStringLiteral("127.0.0.250"), true, 1);
    for (const int stage : {-1, 0, 3})
        wish(fixture, true, stage);
    QCOMPARE(commands(fixture), QByteArrayList());
    QVERIFY(!isMultiplexed(fixture, 1) && !isMultiplexed(fixture, 2));
    QVERIFY(fixture.connection().isStreaming());
}

void TestMultiplexing::systemThatIsDownTakesTheOppositeWithoutACommand()
{
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    wish(fixture, true, 1);
    QVERIFY(fixture.window().disconnectConnection(fixture.controller().address()));
    fixture.controller().clearWire();
    wish(fixture, false, 1);
    wish(fixture, true, 2);
    QVERIFY(isMultiplexed(fixture, 1));
    QVERIFY(!isMultiplexed(fixture, 2));
    QCOMPARE(fixture.controller().commands(), QByteArrayList());
    QVERIFY(!showsStreamError(fixture));
}

void TestMultiplexing::onlyTheNamedSystemIsSwitched()
{
    WindowFixture fixture(2, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.clickAction("startAction"));
    for (const int system : {0, 1})
        fixture.controller(system).clearWire();
    wish(fixture, true, 1, 1);
    QVERIFY(isMultiplexed(fixture, 1, 1));
    QVERIFY(!isMultiplexed(fixture, 1, 0));
    QCOMPARE(commands(fixture, 0), QByteArrayList());
    QVERIFY(fixture.connection(0).isStreaming() && fixture.connection(1).isStreaming());
}

void TestMultiplexing::ticksGoOnBehindASwitch()
{
    WindowFixture fixture(1, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    wish(fixture, true, 1);
    // An idle system is asked for its status by every tick.
    for (int round = 0; round < 2; ++round) {
        fixture.controller().clearWire();
        QTRY_VERIFY(fixture.controller().count("GSF") > 0);
    }
    QVERIFY(isMultiplexed(fixture, 1));
}

void TestMultiplexing::hiddenControlsOfTheOverviewReachTheWindow()
{
    WindowFixture fixture(2, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    fixture.find<QAction>("actionConfiguration")->trigger();
    OverviewWidget& second = row(fixture, 1);
    auto& stage1 = in<QComboBox>(second, "typeComboBox");
    auto& stage2 = in<QComboBox>(second, "type2ComboBox");
    for (const QComboBox* box : {&stage1, &stage2})
        QVERIFY(box->isHidden());

    stage1.setCurrentIndex(1);
    stage2.setCurrentIndex(1);
    stage2.setCurrentIndex(0);
    QCOMPARE(commands(fixture, 1), QByteArrayList({switchCommand(true, 1), switchCommand(true, 2),
                                                   switchCommand(false, 2)}));
    QCOMPARE(commands(fixture, 0), QByteArrayList());
    QVERIFY(isMultiplexed(fixture, 1, 1));
    QVERIFY(!isMultiplexed(fixture, 2, 1));
}

void TestMultiplexing::groupNumberReachesTheStatus()
{
    WindowFixture fixture(2, withFirmware(40));
    QVERIFY(fixture.openWithSystems());
    auto& group = in<QSpinBox>(row(fixture, 1), "groupSpinBox");
    QVERIFY(group.isHidden());
    group.setValue(7);
    QCOMPARE(fixture.window().liveStatuses()[1].groupId, 7);
    QCOMPARE(fixture.window().liveStatuses()[0].groupId, 0);
}

QTEST_MAIN(TestMultiplexing)
#include "tst_multiplexing.moc"
