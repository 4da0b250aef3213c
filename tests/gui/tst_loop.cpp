// The whole road: a click in the window closes the emulated controller's loop, and the window
// shows what that does to the beam.

#include "link/commandframe.h"
#include "link/connection.h"
#include "model/detector.h"
#include "params/paramsdialog.h"
#include "plots/genericplot.h"
#include "plots/thermoslider.h"
#include "support/userinput.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QtTest>

namespace {

constexpr int samplesPerRun = 1500;

/// The RMS that the window shows at the end of a run of 3 s; negative if there was none.
double measureRms(const WindowFixture& fixture)
{
    if (!fixture.clickAction("startAction"))
        return -1.0;
    const auto* start = fixture.find<QAction>("startAction");
    constexpr int longestRunMs = 15000;
    if (!QTest::qWaitFor([start] { return !start->isChecked(); }, longestRunMs))
        return -1.0;
    const QString text = fixture.statisticsText(1);
    if (!text.contains(QStringLiteral("\n#samples=%1\n").arg(samplesPerRun)))
        return -1.0;
    return text.section("RMS=", 1).section(' ', 0, 0).toDouble();
}

bool prepare(WindowFixture& fixture)
{
    return fixture.openWithSystems() && fixture.type("samplingRateCounter", "500")
           && fixture.click("pointingRadio") && fixture.click("checkBox_Stats1")
           && fixture.type("samplesToTakeCounter", QString::number(samplesPerRun));
}

/// The mean that the window shows of an axis, "x" or "y", volts.
double shownMean(const WindowFixture& fixture, const QString& axis)
{
    return fixture.statisticsText(1).section('\n' + axis + '=', 1).section(' ', 0, 0).toDouble();
}

/// Opens the parameters of the only system, with a position sensitive detector at stage 1.
ParamsDialog* openParameters(const WindowFixture& fixture)
{
    auto* dialog = fixture.window().findChild<ParamsDialog*>();
    dialog->openFor(&fixture.connection());
    if (!QTest::qWaitForWindowExposed(dialog))
        return nullptr;
    dialog->findChild<QComboBox*>("comboBox_DetecType")->setCurrentIndex(PsdDetector);
    return dialog;
}

/// Sets a field of the parameter dialog and applies.
bool apply(const ParamsDialog& dialog, const char* field, double value)
{
    auto* box = dialog.findChild<QDoubleSpinBox*>(field);
    auto* button = dialog.findChild<QPushButton*>("pushButtonApply");
    if (!box->isEnabled() || !QTest::qWaitFor([button] { return button->isEnabled(); }))
        return false;
    box->setValue(value);
    return user::click(button) && QTest::qWaitFor([button] { return button->isEnabled(); });
}

constexpr std::size_t partnerIndex = 2;

/// A system whose beams stand still, in the group that it shares a common detector with.
emulator::ControllerOptions memberOfGroup(quint64 seed, bool vm)
{
    emulator::ControllerOptions options;
    options.preset = emulator::Preset::Still;
    options.group = 7;
    options.seed = seed;
    options.vm = vm;
    return options;
}

/// Opens the window with two systems of a group, and between them one that has no group.
bool openGroup(WindowFixture& fixture, bool vm)
{
    emulator::ControllerOptions first = memberOfGroup(11, vm);
    first.stages[0].offsetXUm = 4.0;
    first.stages[0].offsetYUm = -2.0;
    first.stages[1].offsetXUm = -6.0;
    fixture.addController(first);
    fixture.addController();
    fixture.addController(memberOfGroup(12, vm));
    if (!fixture.open())
        return false;
    for (int number = 0; number <= int(partnerIndex); ++number) {
        ConnectionSettings record = fixture.record(number);
        record.group = number == 1 ? 0 : 3;
        if (!fixture.registerSystem(record, number))
            return false;
    }
    return true;
}

/// x and y of stage 1, then of stage 2, V.
using Places = std::array<QPointF, 2>;

Places placesIn(const QByteArray& reply, const std::array<int, 2>& offsets)
{
    constexpr double voltPerMillivolt = 0.001;
    Places places;
    for (std::size_t i = 0; i < places.size(); ++i) {
        const char* bytes = reply.constData();
        places[i] = voltPerMillivolt
                    * QPointF(command::signedValueAt(bytes, offsets[i]),
                              command::signedValueAt(bytes, offsets[i] + 2));
    }
    return places;
}

QByteArray ask(Connection& connection, void (Connection::*question)())
{
    (connection.*question)();
    QByteArray reply;
    connection.fetchReply(reply);
    return reply;
}

/// How much further a beam at rest is on the common detector than on its own one, V.
Places wayToCommonDetector(Connection& connection)
{
    const Places common = placesIn(ask(connection, &Connection::getCommonAdjustment), {2, 6});
    const Places own = placesIn(ask(connection, &Connection::triggerOneShot), {4, 10});
    return {common[0] - own[0], common[1] - own[1]};
}

/// How far the beams of the two systems are from each other on the common detector of a stage, V,
/// by what the pointing plot shows of both. Negative if it shows nothing.
double apart(const WindowFixture& fixture, Stage stage, const Places& wayOfFirst,
             const Places& wayOfPartner)
{
    const GenericPlot& plot = fixture.pointingPlot(numberOf(stage));
    const QVector<QPointF> first = pointsOf(plot, 0);
    const QVector<QPointF> second = pointsOf(plot, int(partnerIndex));
    if (first.isEmpty() || second.isEmpty())
        return -1.0;
    return QLineF(first.last() + wayOfFirst[indexOf(stage)],
                  second.last() + wayOfPartner[indexOf(stage)])
        .length();
}

/// Opens the parameters of a system with the controls of its group, which nothing else shows.
ParamsDialog* openGroupControls(const WindowFixture& fixture, std::size_t index)
{
    auto* dialog = fixture.window().findChild<ParamsDialog*>();
    dialog->openFor(&fixture.connection(int(index)));
    dialog->findChild<QWidget*>("frame_2")->show();
    auto* button = dialog->findChild<QPushButton*>("alignPushButton");
    const bool isReady = QTest::qWaitForWindowExposed(dialog)
                         && QTest::qWaitFor([button] { return button->isEnabled(); });
    return isReady ? dialog : nullptr;
}

double bar(const WindowFixture& fixture, const char* name)
{
    return fixture.find<ThermoSlider>(name)->value();
}

bool showsLight(const WindowFixture& fixture, const char* color)
{
    const auto* label = fixture.find<QLabel>("label_ActiveIcon");
    const QIcon light(QStringLiteral(":/images/%1_light.png").arg(color));
    return label->pixmap(Qt::ReturnByValue).toImage()
           == light.pixmap(label->maximumSize()).toImage();
}

} // namespace

class TestLoop final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void switchingOnHoldsTheBeamAndSwitchingOffLetsItGo();
    void thePiezoBarsFollowTheLoop();
    void lessPFactorHoldsTheBeamLess();
    void adjustInMovesTheBeamToItsValue();
    void appliedPositionsBringThePartnerOntoTheFirst_data();
    void appliedPositionsBringThePartnerOntoTheFirst();
};

void TestLoop::switchingOnHoldsTheBeamAndSwitchingOffLetsItGo()
{
    emulator::ControllerOptions options;
    options.seed = 11;
    options.preset = emulator::Preset::Typical;
    WindowFixture fixture(1, options);
    QVERIFY(prepare(fixture));
    const double freeRms = measureRms(fixture);
    QVERIFY(freeRms > 0.0);

    // The same beam once more.
    fixture.destroyWindow();
    WindowFixture held(1, options);
    QVERIFY(prepare(held));
    QCOMPARE(held.find<QLabel>("label_ActiveText")->text(), QString("Inactive"));
    QVERIFY(showsLight(held, "red"));
    QVERIFY(held.click("push_Stab1"));
    QVERIFY(held.controller().stageOn(1));
    QVERIFY(!held.controller().stageOn(2));
    const double heldRms = measureRms(held);
    QVERIFY(heldRms > 0.0);
    qInfo("RMS %.4f V free, %.4f V held", freeRms, heldRms);
    QVERIFY2(heldRms * 5.0 <= freeRms, "Switched on, the stage does not hold the beam");
    QCOMPARE(held.find<QPushButton>("push_Stab1")->text(), QString("ON"));
    QCOMPARE(held.find<QLabel>("label_ActiveText")->text(), QString("Active"));
    QVERIFY(showsLight(held, "green"));
    QCOMPARE(held.find<QLabel>("label_ActiveText_2")->text(), QString("Inactive"));

    QVERIFY(held.click("push_Stab1"));
    QVERIFY(!held.controller().stageOn(1));
    const double againRms = measureRms(held);
    QVERIFY2(againRms >= heldRms * 5.0, "Switched off, the beam is still held");
    QCOMPARE(held.find<QPushButton>("push_Stab1")->text(), QString("OFF"));
    QCOMPARE(held.find<QLabel>("label_ActiveText")->text(), QString("Inactive"));
    QVERIFY(showsLight(held, "red"));
}

void TestLoop::thePiezoBarsFollowTheLoop()
{
    WindowFixture fixture(1);
    QVERIFY(prepare(fixture));
    QVERIFY(fixture.click("oscilloscopeRadio"));
    QVERIFY(fixture.clickAction("startAction"));
    QTRY_VERIFY(pointsOf(fixture.positionPlot(1), 0).size() > 10);
    const double restingX = bar(fixture, "thermoRX1");
    const double restingY = bar(fixture, "thermoRY1");

    // Switched while the stream runs, which has to go on.
    QVERIFY(fixture.click("push_Stab1"));
    QTRY_COMPARE(fixture.find<QLabel>("label_ActiveText")->text(), QString("Active"));
    QVERIFY(fixture.controller().isStreaming());
    QTRY_VERIFY(bar(fixture, "thermoRX1") != restingX && bar(fixture, "thermoRY1") != restingY);
    QSet<double> positions;
    QTRY_VERIFY((positions.insert(bar(fixture, "thermoRX1")), positions.size() > 5));
    QCOMPARE(bar(fixture, "thermoRX2"), restingX);
}

void TestLoop::lessPFactorHoldsTheBeamLess()
{
    WindowFixture fixture(1);
    QVERIFY(prepare(fixture));
    QVERIFY(fixture.click("push_Stab1"));
    const ParamsDialog* dialog = openParameters(fixture);
    QVERIFY(dialog);
    QVERIFY(apply(*dialog, "doubleSpinBox_PFactor", 1.0));
    const double strongRms = measureRms(fixture);
    QVERIFY(apply(*dialog, "doubleSpinBox_PFactor", 0.1));
    const double weakRms = measureRms(fixture);
    qInfo("RMS %.4f V with a P-factor of 1 V, %.4f V with 0.1 V", strongRms, weakRms);
    QVERIFY(strongRms > 0.0);
    QVERIFY2(weakRms >= strongRms * 2.0, "The loop does not hear of its P-factor");
}

void TestLoop::adjustInMovesTheBeamToItsValue()
{
    WindowFixture fixture(1);
    QVERIFY(prepare(fixture));
    QVERIFY(fixture.click("push_Stab1"));
    const ParamsDialog* dialog = openParameters(fixture);
    QVERIFY(dialog);
    QVERIFY(user::click(dialog->findChild<QWidget*>("radioButton_Adjust_intern")));
    QVERIFY(apply(*dialog, "doubleSpinBox_AdjustX", 0.4));
    QVERIFY(apply(*dialog, "doubleSpinBox_AdjustY", -0.3));
    QVERIFY(measureRms(fixture) > 0.0);
    const double x = shownMean(fixture, "x");
    const double y = shownMean(fixture, "y");
    qInfo("Mean of %.3f V and %.3f V", x, y);
    constexpr double toleranceV = 0.02;
    QVERIFY(qAbs(x - 0.4) <= toleranceV);
    QVERIFY(qAbs(y + 0.3) <= toleranceV);
}

void TestLoop::appliedPositionsBringThePartnerOntoTheFirst_data()
{
    QTest::addColumn<bool>("vm");
    QTest::newRow("all packets are shown") << false;
    QTest::newRow("VM, every second packet is shown") << true;
}

void TestLoop::appliedPositionsBringThePartnerOntoTheFirst()
{
    QFETCH(bool, vm);
    WindowFixture fixture;
    QVERIFY(openGroup(fixture, vm));
    const Places wayOfFirst = wayToCommonDetector(fixture.connection());
    const Places wayOfPartner = wayToCommonDetector(fixture.connection(int(partnerIndex)));
    for (const Stage stage : bothStages)
        fixture.controller(int(partnerIndex)).setStage(numberOf(stage), true);
    QVERIFY(fixture.clickAction("startAction"));
    const auto apartAt = [&](Stage stage) {
        return apart(fixture, stage, wayOfFirst, wayOfPartner);
    };
    constexpr double leastApartV = 0.5;
    std::array<double, 2> before{};
    for (const Stage stage : bothStages) {
        QTRY_VERIFY(apartAt(stage) > leastApartV);
        before[indexOf(stage)] = apartAt(stage);
    }

    ParamsDialog* dialog = openGroupControls(fixture, 0);
    QVERIFY(dialog);
    QVERIFY(user::click(dialog->findChild<QWidget*>("alignPushButton")));
    constexpr double togetherV = 0.003;
    for (const Stage stage : bothStages) {
        QTRY_VERIFY2(apartAt(stage) >= 0.0 && apartAt(stage) <= togetherV,
                     qPrintable(QString("%1 V apart").arg(apartAt(stage))));
        qInfo("Stage %d: %.3f V apart before, %.3f V behind it", numberOf(stage),
              before[indexOf(stage)], apartAt(stage));
    }
    QCOMPARE(fixture.controller(1).count("SMD") + fixture.controller(1).count("SAI"), 0);

    // The partner's stream has told the window so, too.
    dialog = openGroupControls(fixture, partnerIndex);
    QVERIFY(dialog);
    QCOMPARE(dialog->findChild<QLabel*>("detectorLabel1")->text(), QString("Common"));
    QCOMPARE(dialog->findChild<QLabel*>("detectorLabel2")->text(), QString("Common"));
}

QTEST_MAIN(TestLoop)
#include "tst_loop.moc"
