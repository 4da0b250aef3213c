#include "dialogue.h"
#include "link/serialport.h"
#include "link/tcpclient.h"
#include "plots/counter.h"
#include "plots/genericplot.h"
#include "service/servicedialog.h"
#include "setup/colors.h"
#include "setup/connectionoverviewdialog.h"
#include "setup/listwidget.h"
#include "support/logcapture.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QLabel>
#include <QSpinBox>
#include <QtTest>

namespace {

/// For a thread that ends by itself.
constexpr unsigned long endOfThreadMs = 10000;

const char* const singleSystemWidgets[] = {
    "stage1Frame_2", "frame_rightTop", "stage2Frame", "frame_rightBottom",
    "label_42",      "lcd1x",          "label_44",    "lcd1y",
    "label_43",      "lcd1i",          "label_17",    "lcd2x",
    "label_11",      "lcd2y",          "label_14",    "lcd2i"};

bool showsReadouts(const WindowFixture& fixture)
{
    for (const char* name : singleSystemWidgets) {
        if (!fixture.find<QWidget>(name)->isVisible())
            return false;
    }
    return true;
}

bool hidesReadouts(const WindowFixture& fixture)
{
    for (const char* name : singleSystemWidgets) {
        if (fixture.find<QWidget>(name)->isVisible())
            return false;
    }
    return true;
}

QColor textColor(const WindowFixture& fixture, const char* label)
{
    return fixture.find<QLabel>(label)->palette().color(QPalette::WindowText);
}

// As the record keeps them, in steps of one byte.
QColor lighter(const QColor& color)
{
    return toColor(toName(color.lighter()));
}

QColor darker(const QColor& color)
{
    return toColor(toName(color.darker()));
}

ConnectionSettings colored(ConnectionSettings record, const QColor& color)
{
    record.colorX = toName(color);
    record.colorY = toName(color.lighter());
    record.colorI = toName(color.darker());
    return record;
}

} // namespace

class TestRegistry : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void firstSystemBringsUpTheReadouts();
    void secondSystemHidesTheReadouts();
    void closingOneOfTwoShowsTheReadoutsOfTheOther();
    void closingTheMiddleMovesIndicesAndCurves();
    void closingKeepsTheOrderOfShowing();
    void closingTheMiddleLeavesTheOthersStreaming();
    void closingTheLastDisablesTheControls();
    void systemShownWhileRunningJoins();
    void hiddenSystemLosesItsCurves();
    void labelGoesToTheControllerPadded();
    void colourActsOnTheNextPointAndTheAxis();
    void unknownAddressesDoNothing();
    void reconnectRejectsWhoIsNoController();
    void reconnectFailsWithoutAController();
    void reconnectTakesALinkWhoseLossIsNotToldYet();
    void lostLinkTakesTheSystemOffThePlots();
    void unconnectedSystemIsRegisteredButNotShown();
    void savedRecordsTakeOverTheLiveState();
    void savingWithAnotherNumberOfRecordsFails();
    void savingRightBehindADeletionWorks();
    void savingFromAnOverviewOutOfStepStopsTheTick();
    void groupIsKept();
};

void TestRegistry::cleanup()
{
    QCOMPARE(leftWidgets(), QString());
}

void TestRegistry::firstSystemBringsUpTheReadouts()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.open());
    QVERIFY(!fixture.find<QWidget>("push_Stab1")->isEnabled());
    // They stand in the form from the beginning: hidden, they show who brings them up.
    for (const char* frame :
         {"stage1Frame_2", "stage2Frame", "frame_rightTop", "frame_rightBottom"})
        fixture.find<QWidget>(frame)->hide();
    QVERIFY(!showsReadouts(fixture));
    QVERIFY(fixture.registerSystem(colored(fixture.record(), Qt::red), 0));
    QVERIFY(showsReadouts(fixture));
    QVERIFY(fixture.find<QWidget>("push_Stab1")->isEnabled());
    QVERIFY(fixture.find<QWidget>("push_Stab2")->isEnabled());
    for (const char* label : {"x_axis_label", "x_axis_label2"})
        QCOMPARE(textColor(fixture, label), QColor(Qt::red));
    for (const char* label : {"y_axis_label", "y_axis_label2"})
        QCOMPARE(textColor(fixture, label), lighter(Qt::red));
    for (const char* label : {"i_axis_label", "i_axis_label2"})
        QCOMPARE(textColor(fixture, label), darker(Qt::red));
}

void TestRegistry::secondSystemHidesTheReadouts()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(hidesReadouts(fixture));
    for (const char* label : {"x_axis_label", "y_axis_label2", "i_axis_label"})
        QCOMPARE(textColor(fixture, label), QColor(Qt::black));
}

void TestRegistry::closingOneOfTwoShowsTheReadoutsOfTheOther()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.window().closedConnection(fixture.connection(0).address()));
    QVERIFY(showsReadouts(fixture));
    QCOMPARE(fixture.window().shownConnections(), QList<int>{0});

    // The buttons address the survivor.
    QVERIFY(fixture.click("push_Stab1"));
    QVERIFY(fixture.controller(1).stageOn(1));
}

void TestRegistry::closingTheMiddleMovesIndicesAndCurves()
{
    WindowFixture fixture(3);
    QVERIFY(fixture.open());
    const QList<QColor> colors{Qt::red, Qt::green, Qt::magenta};
    for (int i = 0; i < 3; ++i)
        QVERIFY(fixture.registerSystem(colored(fixture.record(i), colors[i]), i));
    fixture.window().showConnection(fixture.connection(1).address(), false);
    QCOMPARE(fixture.window().shownConnections(), (QList<int>{0, 2}));

    QVERIFY(fixture.window().closedConnection(fixture.connection(1).address()));
    QCOMPARE(fixture.window().shownConnections(), (QList<int>{0, 1}));
    QCOMPARE(fixture.pointingPlot(1).curveCount(), 2);
    QCOMPARE(fixture.positionPlot(2).curveCount(), 4);
    QCOMPARE(fixture.positionPlot(1).curveColor(2), QColor(Qt::magenta));
    QCOMPARE(fixture.positionPlot(1).curveColor(3), lighter(Qt::magenta));
    QCOMPARE(fixture.intensityPlot(2).curveColor(1), darker(Qt::magenta));
    QCOMPARE(fixture.pointingPlot(2).curveColor(1), darker(Qt::magenta));
}

void TestRegistry::closingKeepsTheOrderOfShowing()
{
    WindowFixture fixture(3);
    QVERIFY(fixture.openWithSystems());
    for (const int hidden : {0, 1})
        fixture.window().showConnection(fixture.connection(hidden).address(), false);
    fixture.window().showConnection(fixture.connection(0).address(), true);
    QCOMPARE(fixture.window().shownConnections(), (QList<int>{2, 0}));

    QVERIFY(fixture.window().closedConnection(fixture.connection(1).address()));
    QCOMPARE(fixture.window().shownConnections(), (QList<int>{1, 0}));
    // The one that was shown first is the current one.
    fixture.window().showServiceDialog();
    QCOMPARE(fixture.window().findChild<ServiceDialog*>()->connection(), &fixture.connection(1));
}

void TestRegistry::closingTheMiddleLeavesTheOthersStreaming()
{
    WindowFixture fixture(3);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.clickAction("startAction"));
    for (int n = 0; n < 3; ++n)
        QTRY_VERIFY(pointsOf(fixture.pointingPlot(1), n).size() > 3);
    QVERIFY(fixture.window().closedConnection(fixture.connection(1).address()));
    QVERIFY(!fixture.controller(1).isStreaming());
    QVERIFY(fixture.connection(0).isStreaming());
    QVERIFY(fixture.connection(1).isStreaming());
    QCOMPARE(fixture.connection(1).address(), fixture.controller(2).address());

    // What comes from now on lands in the curves of the index that each has now.
    fixture.find<QAction>("clearAction")->trigger();
    for (int n = 0; n < 2; ++n) {
        QTRY_VERIFY(pointsOf(fixture.pointingPlot(2), n).size() > 3);
        QTRY_VERIFY(pointsOf(fixture.positionPlot(1), 2 * n + 1).size() > 3);
    }
}

void TestRegistry::closingTheLastDisablesTheControls()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.window().closedConnection(fixture.connection().address()));
    QVERIFY(!fixture.find<QWidget>("push_Stab1")->isEnabled());
    QVERIFY(!fixture.find<QWidget>("push_Stab2")->isEnabled());
    QVERIFY(!fixture.find<QAction>("startAction")->isEnabled());
    QTRY_VERIFY(!fixture.controller().isConnected());
    fixture.tick();
    QCOMPARE(fixture.pointingPlot(1).curveCount(), 0);
}

void TestRegistry::systemShownWhileRunningJoins()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.open());
    QVERIFY(fixture.registerSystem(0));
    QVERIFY(fixture.clickAction("startAction"));
    QVERIFY(fixture.registerSystem(1));
    QVERIFY(fixture.connection(1).isStreaming());
    QCOMPARE(fixture.controller(1).streamRate(), 100);
}

void TestRegistry::hiddenSystemLosesItsCurves()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.clickAction("startAction"));
    QTRY_VERIFY(pointsOf(fixture.pointingPlot(2), 1).size() > 3);
    QTRY_VERIFY(pointsOf(fixture.positionPlot(1), 3).size() > 3);

    fixture.window().showConnection(fixture.connection(1).address(), false);
    for (int stage = 1; stage <= 2; ++stage) {
        QVERIFY(pointsOf(fixture.pointingPlot(stage), 1).isEmpty());
        QVERIFY(pointsOf(fixture.positionPlot(stage), 2).isEmpty());
        QVERIFY(pointsOf(fixture.positionPlot(stage), 3).isEmpty());
        QVERIFY(pointsOf(fixture.intensityPlot(stage), 1).isEmpty());
        QVERIFY(!pointsOf(fixture.positionPlot(stage), 0).isEmpty());
    }
    QVERIFY(!fixture.connection(1).isStreaming());
}

void TestRegistry::labelGoesToTheControllerPadded()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    fixture.controller().clearWire();
    fixture.window().changeLabel(fixture.connection().address(), "new_name");
    QCOMPARE(dialogueWithoutPolls(fixture.controller()),
             QStringList({labelCommand("new_name"), accepted()}));
    QCOMPARE(fixture.controller().label(), QByteArray("new_name").leftJustified(25, ' '));
    QCOMPARE(fixture.connection().label(), QStringLiteral("new_name"));
}

void TestRegistry::colourActsOnTheNextPointAndTheAxis()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const QString address = fixture.connection().address();
    fixture.window().updateColorGraph(address, Qt::cyan, 0);
    fixture.window().updateColorGraph(address, Qt::yellow, 2);
    fixture.window().updateColorGraph(address, Qt::white, 3);
    QCOMPARE(fixture.positionPlot(1).curveColor(0), QColor(Qt::cyan));
    QCOMPARE(fixture.positionPlot(2).curveColor(0), QColor(Qt::cyan));
    QCOMPARE(fixture.positionPlot(1).curveColor(1), QColor(Qt::darkGreen));
    QCOMPARE(fixture.pointingPlot(1).curveColor(0), QColor(Qt::yellow));
    QCOMPARE(fixture.intensityPlot(2).curveColor(0), QColor(Qt::yellow));
    QCOMPARE(textColor(fixture, "x_axis_label"), QColor(Qt::cyan));
    QCOMPARE(textColor(fixture, "i_axis_label2"), QColor(Qt::yellow));
}

void TestRegistry::unknownAddressesDoNothing()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    fixture.controller().clearWire();
    const QString nobody = QStringLiteral("127.9.9.9");
    QString id;
    QVERIFY(!fixture.window().closedConnection(nobody));
    QVERIFY(!fixture.window().disconnectConnection(nobody));
    QVERIFY(!fixture.window().reconnectConnection(nobody, id));
    fixture.window().showConnection(nobody, true);
    fixture.window().showConnection(nobody, false);
    fixture.window().updateColorGraph(nobody, Qt::cyan, 0);
    fixture.window().changeLabel(nobody, "x");
    fixture.window().changeGroupId(nobody, 3);
    QCOMPARE(fixture.window().shownConnections(), QList<int>{0});
    QVERIFY(dialogueWithoutPolls(fixture.controller()).isEmpty());
}

void TestRegistry::reconnectRejectsWhoIsNoController()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const QString address = fixture.connection().address();
    QVERIFY(fixture.window().disconnectConnection(address));
    QTRY_VERIFY(!fixture.controller().isConnected());
    emulator::ControllerOptions foreign;
    foreign.maker = "Abc";
    fixture.controller().setIdentity(foreign);

    const LogCapture log;
    QString id;
    QVERIFY(!fixture.window().reconnectConnection(address, id));
    QVERIFY(id.isEmpty());
    QVERIFY(!fixture.connection().isRunning());
    QVERIFY(!fixture.connection().isConnected());
    QVERIFY(fixture.window().shownConnections().isEmpty());
    QCOMPARE(log.count("info: Reconnecting"), 1);
    QCOMPARE(log.count("info: Reconnecting failed"), 1);
}

void TestRegistry::reconnectFailsWithoutAController()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const QString address = fixture.connection().address();
    fixture.controller().stopListening();
    QTRY_VERIFY(!fixture.connection().isConnected());

    QString id;
    QVERIFY(!fixture.window().reconnectConnection(address, id));
    QVERIFY(!fixture.connection().isRunning());

    fixture.controller().listenAgain();
    QVERIFY(fixture.window().reconnectConnection(address, id));
    QCOMPARE(id, fixture.controller().id());
    QCOMPARE(fixture.window().shownConnections(), QList<int>{0});
}

void TestRegistry::reconnectTakesALinkWhoseLossIsNotToldYet()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    fixture.controller().closeConnection();
    // Without events, which would tell the loss.
    QVERIFY(fixture.connection().wait(endOfThreadMs));
    QVERIFY(fixture.connection().isConnected());

    QString id = fixture.controller().id();
    QVERIFY(fixture.window().reconnectConnection(fixture.connection().address(), id));
    QCoreApplication::processEvents();
    QVERIFY(fixture.connection().isConnected());
    QVERIFY(fixture.connection().isRunning());
    QCOMPARE(fixture.window().shownConnections(), QList<int>{0});
}

void TestRegistry::lostLinkTakesTheSystemOffThePlots()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.clickAction("startAction"));
    QTRY_VERIFY(pointsOf(fixture.pointingPlot(1), 0).size() > 3);

    fixture.controller(0).closeConnection();
    QTRY_COMPARE(fixture.window().shownConnections(), QList<int>{1});
    QCOMPARE(fixture.connection(0).linkState(), LinkState::Disconnected);
    QVERIFY(pointsOf(fixture.pointingPlot(1), 0).isEmpty());
    QVERIFY(fixture.connection(1).isStreaming());
    QVERIFY(showsReadouts(fixture));
}

void TestRegistry::unconnectedSystemIsRegisteredButNotShown()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.open());
    auto client = std::make_unique<TcpClient>();
    client->init(fixture.controller().address(), fixture.controller().port());
    fixture.window().newConnection(std::move(client), fixture.record());
    fixture.tick();
    QCOMPARE(int(fixture.window().liveConnections().size()), 1);
    QVERIFY(fixture.window().shownConnections().isEmpty());
    QVERIFY(!fixture.find<QAction>("startAction")->isEnabled());
    QCOMPARE(fixture.pointingPlot(1).curveCount(), 1);
}

void TestRegistry::savedRecordsTakeOverTheLiveState()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.open());
    ConnectionSettings first = fixture.record(0);
    first.model = {PsdDetector, QuadrantDetector};
    first.calculation = {1, 0};
    first.beamDiameter = {60.0, 70.0};
    QVERIFY(fixture.registerSystem(first, 0));
    QVERIFY(fixture.registerSystem(1));
    fixture.window().updateColorGraph(fixture.connection(0).address(), Qt::cyan, 1);
    fixture.window().changeLabel(fixture.connection(1).address(), "other");
    auto* overview = fixture.window().findChild<ConnectionOverviewDialog*>();
    QVERIFY(overview->findChild<ListWidget*>()->model()->moveRow({}, 1, {}, 3));

    QList<ConnectionSettings> records{fixture.record(0), fixture.record(1)};
    QVERIFY(fixture.window().updateSettingsAndParameters(records));
    QCOMPARE(records[0].colorY, QStringLiteral("#00ffff"));
    QCOMPARE(records[1].label.text(), QStringLiteral("other"));
    QCOMPARE(records[1].name.text(), fixture.controller(1).address());
    QCOMPARE(records[0].model, first.model);
    QCOMPARE(records[0].calculation, first.calculation);
    QCOMPARE(records[0].beamDiameter, first.beamDiameter);
    QCOMPARE(records[0].position, 1);
    QCOMPARE(records[1].position, 0);
}

void TestRegistry::savingWithAnotherNumberOfRecordsFails()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QList<ConnectionSettings> none;
    QVERIFY(!fixture.window().updateSettingsAndParameters(none));
    // That is found before anything is touched.
    fixture.controller().clearWire();
    QTRY_VERIFY(fixture.controller().commands().count("GSF;") > 2);
}

void TestRegistry::savingRightBehindADeletionWorks()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.openWithSystems());
    fixture.tick();
    QVERIFY(fixture.window().closedConnection(fixture.controller(0).address()));
    QList<ConnectionSettings> records{fixture.record(1)};
    QVERIFY(fixture.window().updateSettingsAndParameters(records));
}

void TestRegistry::savingFromAnOverviewOutOfStepStopsTheTick()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const auto polls = [&] { return fixture.controller().commands().count("GSF;"); };
    QTRY_VERIFY(polls() > 2);
    fixture.window().findChild<ConnectionOverviewDialog*>()->update({});
    QList<ConnectionSettings> records{fixture.record()};
    QVERIFY(!fixture.window().updateSettingsAndParameters(records));
    fixture.controller().clearWire();
    QTest::qWait(100);
    QCOMPARE(polls(), 0);

    fixture.find<QAction>("clearAction")->trigger();
    QTRY_VERIFY(polls() > 2);
}

void TestRegistry::groupIsKept()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    fixture.window().changeGroupId(fixture.connection().address(), 3);
    QCOMPARE(fixture.window().liveStatuses().first().groupId, 3);
}

QTEST_MAIN(TestRegistry)
#include "tst_registry.moc"
