// The controls of a group in the parameter dialog, and those of them that lead a stage of the
// system on display away from the common detector.

#include "groupbench.h"
#include "support/bytes.h"

#include <QPushButton>
#include <QtTest>

using emulator::on;
using emulator::Rule;
using Flags = std::array<bool, 2>;

Q_DECLARE_METATYPE(Flags)
Q_DECLARE_METATYPE(Stage)

namespace {

constexpr auto current = GroupBench::current;

constexpr char align[] = "alignPushButton";
constexpr char lockPartner[] = "lockSubsystemButton";
/// By stage.
constexpr std::array<const char*, 2> lockStage{"stabPushButton", "stab2PushButton"};
constexpr std::array<const char*, 4> allButtons{align, lockPartner, "stabPushButton",
                                                "stab2PushButton"};

/// What leads a stage away from the common detector. By stage.
const std::array<QByteArray, 2> setSubsystem{QByteArray("SSE\1;"), QByteArray("SSE\2;")};

void addStages()
{
    QTest::addColumn<Stage>("stage");
    QTest::newRow("stage 1") << Stage::One;
    QTest::newRow("stage 2") << Stage::Two;
}

/// A row for each failure to lead a stage away, quiet and with a stream.
void addFailuresOfTheStages()
{
    QTest::addColumn<Stage>("stage");
    QTest::addColumn<bool>("streams");
    QTest::addColumn<Rule>("rule");
    for (const Stage stage : bothStages) {
        for (const bool streams : {false, true}) {
            for (const Failure& failure : failuresOf(setSubsystem[indexOf(stage)]))
                QTest::addRow("stage %d, %s, %s", numberOf(stage), streams ? "stream" : "quiet",
                              failure.name)
                    << stage << streams << failure.rule;
        }
    }
}

} // namespace

class TestDialogGroups : public QObject
{
    Q_OBJECT

private slots:
    void controlsOfGroupsStayHidden();
    void controlsSayWhatTheyDo();
    void openingTellsTheDetectorOfEachStage_data();
    void openingTellsTheDetectorOfEachStage();
    void openingEnablesTheButtonsAndForgetsThePartner();
    void nothingHappensWithoutASystem_data();
    void nothingHappensWithoutASystem();

    void stageIsLedAway_data();
    void stageIsLedAway();
    void stageOnItsOwnDetectorIsAskedAllTheSame_data();
    void stageOnItsOwnDetectorIsAskedAllTheSame();
    void stageThatDoesNotLeaveIsOnTheCommonDetector_data();
    void stageThatDoesNotLeaveIsOnTheCommonDetector();
    void firstByteAloneAccepts_data();
    void firstByteAloneAccepts();
    void stageLeavesAtTheSecondClick_data();
    void stageLeavesAtTheSecondClick();
    void streamGoesOnBehindTheStage_data();
    void streamGoesOnBehindTheStage();
    void streamThatDoesNotStartAgainIsTold_data();
    void streamThatDoesNotStartAgainIsTold();
    void streamThatDoesNotStopKeepsTheStage_data();
    void streamThatDoesNotStopKeepsTheStage();
    void stageOfASystemThatIsDownCountsAsNotLedAway();
    void clicksDuringAnExchangeAreLost_data();
    void clicksDuringAnExchangeAreLost();
};

void TestDialogGroups::controlsOfGroupsStayHidden()
{
    ParamsBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.clickAndWait("pushButtonRefresh"));
    for (const char* name :
         {"frame_2", "multiLine", lockPartner, "detectorLabel1", "detectorLabel2"})
        QVERIFY2(bench.find<QWidget>(name).isHidden(), name);
}

void TestDialogGroups::controlsSayWhatTheyDo()
{
    GroupBench bench(1);
    QVERIFY(bench.open());
    QCOMPARE(bench.text("label_29"), QString("Beam Overlay"));
    QCOMPARE(bench.text("label_30"), QString("Lock subsystem on path of common detectors"));
    QCOMPARE(bench.text("label_31"), QString("2nd subsystem of group: "));
    const auto textOf = [&](const char* button) {
        return bench.dialog.findChild<QPushButton*>(button)->text();
    };
    QCOMPARE(textOf(align), QString("Apply positions"));
    QCOMPARE(textOf(lockPartner), QString("Lock 2nd subsystem"));
    QCOMPARE(textOf(lockStage[0]), QString("Stage 1"));
    QCOMPARE(textOf(lockStage[1]), QString("Stage 2"));
    const auto* frame = bench.dialog.findChild<QWidget*>("frame_2");
    for (const char* button : allButtons)
        QVERIFY(frame->isAncestorOf(bench.dialog.findChild<QWidget*>(button)));
}

void TestDialogGroups::openingTellsTheDetectorOfEachStage_data()
{
    QTest::addColumn<Flags>("isOnCommonPath");
    QTest::addColumn<QString>("detector1");
    QTest::addColumn<QString>("detector2");
    QTest::newRow("own") << Flags{false, false} << "Subsystem"
                         << "Subsystem";
    QTest::newRow("stage 1") << Flags{true, false} << "Common"
                             << "Subsystem";
    QTest::newRow("stage 2") << Flags{false, true} << "Subsystem"
                             << "Common";
    QTest::newRow("common") << Flags{true, true} << "Common"
                            << "Common";
}

void TestDialogGroups::openingTellsTheDetectorOfEachStage()
{
    QFETCH(Flags, isOnCommonPath);
    GroupBench bench(1);
    bench.states[current].isOnCommonPath = isOnCommonPath;
    QVERIFY(bench.open());
    QTEST(bench.text("detectorLabel1"), "detector1");
    QTEST(bench.text("detectorLabel2"), "detector2");
    QVERIFY(bench.click(lockStage[0]));
    QVERIFY(bench.click(lockStage[1]));
    // What is shown is what was true at the opening.
    QTEST(bench.text("detectorLabel1"), "detector1");
    QTEST(bench.text("detectorLabel2"), "detector2");
}

void TestDialogGroups::openingEnablesTheButtonsAndForgetsThePartner()
{
    GroupBench bench(1);
    QVERIFY(bench.open());
    for (const char* button : {lockStage[0], lockStage[1], lockPartner})
        QVERIFY(bench.click(button));
    for (const char* button : allButtons)
        QVERIFY(!bench.isEnabled(button));
    QCOMPARE(bench.text("partnerLabel"), QString("Missing"));
    QVERIFY(bench.open());
    QVERIFY(bench.areGroupButtonsEnabled());
    QCOMPARE(bench.text("partnerLabel"), QString());
}

void TestDialogGroups::nothingHappensWithoutASystem_data()
{
    QTest::addColumn<QByteArray>("slot");
    for (const char* button : allButtons)
        QTest::newRow(button) << "on_" + QByteArray(button) + "_clicked";
}

void TestDialogGroups::nothingHappensWithoutASystem()
{
    QFETCH(QByteArray, slot);
    GroupBench bench(3);
    QVERIFY(bench.connect());
    // Before the first opening, and after the system on display was closed.
    QVERIFY(QMetaObject::invokeMethod(&bench.dialog, slot.constData()));
    QCOMPARE(bench.heard(), QByteArrayList());
    QVERIFY(bench.open());
    bench.dialog.removeDetectors(&bench.links[current].client);
    QVERIFY(QMetaObject::invokeMethod(&bench.dialog, slot.constData()));
    QCOMPARE(bench.heard(), QByteArrayList());
    QCOMPARE(bench.notes, 0);
    QCOMPARE(bench.text("partnerLabel"), QString());
    QVERIFY(bench.failure().isNull());
    QVERIFY(bench.areGroupButtonsEnabled());
}

void TestDialogGroups::stageIsLedAway_data()
{
    addStages();
}

void TestDialogGroups::stageIsLedAway()
{
    QFETCH(Stage, stage);
    const std::size_t place = indexOf(stage);
    GroupBench bench;
    bench.states[current].isOnCommonPath = {true, true};
    QVERIFY(bench.open());
    QVERIFY(bench.click(lockStage[place]));
    QCOMPARE(bench.heard(), QByteArrayList{toCurrent(setSubsystem[place])});
    QVERIFY(!bench.states[current].isOnCommonPath[place]);
    QVERIFY(!bench.isEnabled(lockStage[place]));
    QVERIFY(bench.states[current].isOnCommonPath[1 - place]);
    QVERIFY(bench.isEnabled(lockStage[1 - place]));
    QVERIFY(bench.isEnabled(lockPartner) && bench.isEnabled(align));
    QVERIFY(bench.failure().isNull());
}

void TestDialogGroups::stageOnItsOwnDetectorIsAskedAllTheSame_data()
{
    QTest::addColumn<Stage>("stage");
    QTest::addColumn<bool>("isAccepted");
    for (const Stage stage : bothStages) {
        const int number = numberOf(stage);
        QTest::addRow("stage %d accepts", number) << stage << true;
        QTest::addRow("stage %d refuses", number) << stage << false;
    }
}

void TestDialogGroups::stageOnItsOwnDetectorIsAskedAllTheSame()
{
    QFETCH(Stage, stage);
    QFETCH(bool, isAccepted);
    const std::size_t place = indexOf(stage);
    GroupBench bench(1);
    QVERIFY(bench.open());
    if (!isAccepted)
        bench.controller(current).setRules({on(setSubsystem[place]).refuse()});
    QVERIFY(bench.click(lockStage[place]));
    QCOMPARE(bench.heard(), QByteArrayList{toCurrent(setSubsystem[place])});
    QCOMPARE(bench.states[current].isOnCommonPath[place], !isAccepted);
    QVERIFY(!bench.states[current].isOnCommonPath[1 - place]);
    QVERIFY(!bench.isEnabled(lockStage[place]));
    QVERIFY(bench.isEnabled(lockStage[1 - place]));
}

void TestDialogGroups::stageThatDoesNotLeaveIsOnTheCommonDetector_data()
{
    addFailuresOfTheStages();
}

void TestDialogGroups::stageThatDoesNotLeaveIsOnTheCommonDetector()
{
    QFETCH(Stage, stage);
    QFETCH(bool, streams);
    QFETCH(Rule, rule);
    const std::size_t place = indexOf(stage);
    GroupBench bench(1);
    bench.states[current].isOnCommonPath = {true, true};
    QVERIFY(bench.open());
    QVERIFY(!streams || bench.startStreams());
    bench.controller(current).setRules({rule});
    QVERIFY(bench.clickImpatiently(lockStage[place]));
    QByteArrayList expected{toCurrent(setSubsystem[place])};
    if (streams) {
        expected.prepend(toCurrent("CLS;"));
        expected.append(toCurrent(bytes("534c530000012c3b")));
    }
    QCOMPARE(bench.heard(), expected);
    QVERIFY(bench.states[current].isOnCommonPath[place]);
    QCOMPARE(bench.notes, 1);
    QCOMPARE(bench.isStreaming(current), streams);
    QCOMPARE(bench.streamErrors, 0);
    QVERIFY(bench.failure().isNull());
    QVERIFY(bench.areGroupButtonsEnabled());
}

void TestDialogGroups::firstByteAloneAccepts_data()
{
    addStages();
}

void TestDialogGroups::firstByteAloneAccepts()
{
    QFETCH(Stage, stage);
    const std::size_t place = indexOf(stage);
    GroupBench bench(1);
    bench.states[current].isOnCommonPath = {true, true};
    QVERIFY(bench.open());
    bench.controller(current).setRules({on("SSE").reply(bytes("00ff"))});
    QVERIFY(bench.click(lockStage[place]));
    QVERIFY(!bench.states[current].isOnCommonPath[place]);
    QVERIFY(!bench.isEnabled(lockStage[place]));
}

void TestDialogGroups::stageLeavesAtTheSecondClick_data()
{
    addStages();
}

void TestDialogGroups::stageLeavesAtTheSecondClick()
{
    QFETCH(Stage, stage);
    const std::size_t place = indexOf(stage);
    GroupBench bench(1);
    bench.states[current].isOnCommonPath = {true, true};
    QVERIFY(bench.open());
    bench.controller(current).setRules({on("SSE").refuse().once()});
    QVERIFY(bench.click(lockStage[place]));
    QVERIFY(bench.states[current].isOnCommonPath[place]);
    QVERIFY(bench.click(lockStage[place]));
    QVERIFY(!bench.states[current].isOnCommonPath[place]);
    QVERIFY(!bench.isEnabled(lockStage[place]));
}

void TestDialogGroups::streamGoesOnBehindTheStage_data()
{
    addControllerKinds();
}

void TestDialogGroups::streamGoesOnBehindTheStage()
{
    QFETCH(ControllerKind, kind);
    GroupBench bench(1, kind.options);
    QVERIFY(bench.open());
    bench.links[current].client.setTriggerMode(kind.byTriggers);
    for (const Stage stage : bothStages) {
        QVERIFY(bench.startStreams());
        QVERIFY(bench.click(lockStage[indexOf(stage)]));
        QCOMPARE(bench.heard(),
                 (QByteArrayList{toCurrent("CLS;"), toCurrent(setSubsystem[indexOf(stage)]),
                                 toCurrent(kind.start(GroupBench::rateHz(current)))}));
        QVERIFY(!bench.states[current].isOnCommonPath[indexOf(stage)]);
        QVERIFY(bench.isStreaming(current));
        QCOMPARE(bench.streamErrors, 0);
        bench.links[current].client.stopStream();
    }
}

void TestDialogGroups::streamThatDoesNotStartAgainIsTold_data()
{
    QTest::addColumn<Stage>("stage");
    QTest::addColumn<Rule>("rule");
    for (const Stage stage : bothStages) {
        for (const Failure& failure : failuresOf("SLS"))
            QTest::addRow("stage %d %s", numberOf(stage), failure.name) << stage << failure.rule;
    }
}

void TestDialogGroups::streamThatDoesNotStartAgainIsTold()
{
    QFETCH(Stage, stage);
    QFETCH(Rule, rule);
    const std::size_t place = indexOf(stage);
    GroupBench bench(1);
    bench.states[current].isOnCommonPath = {true, true};
    QVERIFY(bench.open());
    QVERIFY(bench.startStreams());
    bench.controller(current).setRules({rule});
    QVERIFY(bench.clickImpatiently(lockStage[place]));
    QCOMPARE(bench.streamErrors, 1);
    QVERIFY(!bench.controller(current).isStreaming());
    QVERIFY(!bench.states[current].isOnCommonPath[place]);
    QVERIFY(bench.isEnabled(lockStage[1 - place]));
}

void TestDialogGroups::streamThatDoesNotStopKeepsTheStage_data()
{
    QTest::addColumn<Stage>("stage");
    QTest::addColumn<Rule>("rule");
    QTest::addColumn<bool>("stops");
    for (const Stage stage : bothStages) {
        const auto row = [stage](const char* how, const Rule& rule, bool stops) {
            QTest::addRow("stage %d %s", numberOf(stage), how) << stage << rule << stops;
        };
        row("unanswered once", on("CLS").ignore().once(), true);
        row("unanswered", on("CLS").ignore(), false);
        row("refused once", on("CLS").refuse().once(), true);
        row("refused", on("CLS").refuse(), false);
    }
}

void TestDialogGroups::streamThatDoesNotStopKeepsTheStage()
{
    QFETCH(Stage, stage);
    QFETCH(Rule, rule);
    QFETCH(bool, stops);
    const std::size_t place = indexOf(stage);
    GroupBench bench(1);
    bench.states[current].isOnCommonPath = {true, true};
    QVERIFY(bench.open());
    QVERIFY(bench.startStreams());
    bench.controller(current).setRules({rule});
    QVERIFY(bench.clickImpatiently(lockStage[place]));
    QByteArrayList expected{toCurrent("CLS;"), toCurrent("CLS;")};
    // Into a stream nothing is written.
    if (stops)
        expected << toCurrent(setSubsystem[place]) << toCurrent(bytes("534c530000012c3b"));
    QCOMPARE(bench.heard(), expected);
    QCOMPARE(bench.states[current].isOnCommonPath[place], !stops);
    QVERIFY(bench.states[current].isOnCommonPath[1 - place]);
    QCOMPARE(bench.isEnabled(lockStage[place]), !stops);
    QCOMPARE(bench.streamErrors, stops ? 0 : 1);
    QVERIFY(bench.isStreaming(current));
}

void TestDialogGroups::stageOfASystemThatIsDownCountsAsNotLedAway()
{
    GroupBench bench(1);
    QVERIFY(bench.open());
    bench.links[current].client.disconnectController();
    QVERIFY(bench.click(lockStage[1]));
    QCOMPARE(bench.heard(), QByteArrayList());
    QCOMPARE(bench.states[current].isOnCommonPath, (Flags{false, true}));
    QCOMPARE(bench.streamErrors, 0);
}

void TestDialogGroups::clicksDuringAnExchangeAreLost_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<QByteArray>("command");
    QTest::newRow(align) << QByteArray(align) << QByteArray("GCA");
    QTest::newRow(lockPartner) << QByteArray(lockPartner) << QByteArray("SSE\1");
    QTest::newRow(lockStage[0]) << QByteArray(lockStage[0]) << QByteArray("SSE\1");
    QTest::newRow(lockStage[1]) << QByteArray(lockStage[1]) << QByteArray("SSE\2");
}

void TestDialogGroups::clicksDuringAnExchangeAreLost()
{
    QFETCH(QByteArray, button);
    QFETCH(QByteArray, command);
    GroupBench bench;
    bench.states[current].isOnCommonPath = {true, true};
    QVERIFY(bench.open());
    if (command != "GCA")
        bench.controller(current).setRules({on("SSE").refuse()});
    const auto* widget = bench.dialog.findChild<QPushButton*>(button);
    const QPoint where = widget->mapTo(&bench.dialog, widget->rect().center());
    // The second click waits while the first one is carried out.
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease,
                            QEvent::MouseButtonPress, QEvent::MouseButtonRelease})
        QCoreApplication::postEvent(
            bench.dialog.windowHandle(),
            new QMouseEvent(type, where, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier));
    QTRY_VERIFY(bench.controller(current).count(command) > 0 && widget->isEnabled());
    QCoreApplication::processEvents();
    QCOMPARE(bench.controller(current).count(command), 1);
}

QTEST_MAIN(TestDialogGroups)
#include "tst_dialoggroups.moc"
