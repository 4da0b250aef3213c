// The whole road: a click in the window closes the emulated controller's loop, and the window
// shows what that does to the beam.

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
#include <QLineF>
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
    void setHoldsTheBeamWhereItWas();
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
    // Weaker, and not gone.
    QCOMPARE(fixture.controller().stage(1).pFactorMv, 100);
    QCOMPARE(fixture.find<QLabel>("label_ActiveText")->text(), QString("Active"));
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

void TestLoop::setHoldsTheBeamWhereItWas()
{
    emulator::ControllerOptions options;
    options.stages[0].offsetXUm = 40.0;
    options.stages[0].offsetYUm = -25.0;
    WindowFixture fixture(1, options);
    QVERIFY(prepare(fixture));
    const double freeRms = measureRms(fixture);
    const QPointF before(shownMean(fixture, "x"), shownMean(fixture, "y"));
    const ParamsDialog* dialog = openParameters(fixture);
    QVERIFY(dialog);
    auto* set = dialog->findChild<QPushButton*>("pushButton_SetHold");
    QTRY_VERIFY(set->isEnabled());
    QVERIFY(user::click(set));
    QTRY_VERIFY(dialog->findChild<QPushButton*>("pushButtonApply")->isEnabled());
    const double heldRms = measureRms(fixture);
    const QPointF behind(shownMean(fixture, "x"), shownMean(fixture, "y"));
    qInfo("RMS %.4f V at %.3f V, %.3f V; held %.4f V at %.3f V, %.3f V", freeRms, before.x(),
          before.y(), heldRms, behind.x(), behind.y());
    // Far from the target that adjust-in gives, which is the centre.
    constexpr double offCentreV = 1.0;
    QVERIFY(qAbs(before.x()) > offCentreV && qAbs(before.y()) > offCentreV);
    // It is held where it was at one moment of its free walk, whose RMS is a tenth of a volt.
    constexpr double toleranceV = 0.5;
    QVERIFY(QLineF(before, behind).length() <= toleranceV);
    QVERIFY2(heldRms > 0.0 && heldRms * 5.0 <= freeRms, "The beam does not come to rest");
    QCOMPARE(fixture.find<QLabel>("label_ActiveText")->text(), QString("Active"));
}

QTEST_MAIN(TestLoop)
#include "tst_loop.moc"
