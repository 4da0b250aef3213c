#include "link/connection.h"
#include "plots/counter.h"
#include "plots/genericplot.h"
#include "plots/thermoslider.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QLCDNumber>
#include <QMessageBox>
#include <QSpinBox>
#include <QtTest>
#include <qwt_plot_canvas.h>

namespace {

/// A stream of these lasts a second at the rate of the tests and then falls silent.
QVector<emulator::PacketValues> samples(int count)
{
    emulator::PacketValues values{};
    values.x1 = 1000;
    values.y1 = -2000;
    values.i1 = 4000;
    values.rx1 = 5000;
    return QVector<emulator::PacketValues>(count, values);
}

emulator::ControllerOptions scripted(int count)
{
    emulator::ControllerOptions options;
    options.script = samples(count);
    return options;
}

bool keepsBackingStore(const GenericPlot& plot)
{
    return qobject_cast<const QwtPlotCanvas*>(plot.canvas())
        ->testPaintAttribute(QwtPlotCanvas::BackingStore);
}

int countOf(const emulator::ControllerHandle& controller, const QByteArray& command)
{
    return controller.commands().count(command);
}

/// Pointing mode with its statistics shown, at a rate that a test does not wait for.
bool enterPointingMode(const WindowFixture& fixture)
{
    return fixture.type("samplingRateCounter", "500") && fixture.click("pointingRadio")
           && fixture.click("checkBox_Stats1");
}

int shownSampleCount(const WindowFixture& fixture)
{
    const QString text = fixture.statisticsText(1);
    const QString mark = QStringLiteral("#samples=");
    return text.mid(text.indexOf(mark) + mark.size()).section('\n', 0, 0).toInt();
}

} // namespace

class TestAcquisition : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void nothingCanBeStartedWithoutASystem();
    void startCarriesTheRateAndTurnsTheButton();
    void samplingRateIsFixedWhileRunning();
    void refusedStartIsToldAndTheOthersRun_data();
    void refusedStartIsToldAndTheOthersRun();
    void unansweredStopIsRepeatedOnceAndEndsAllTheSame();
    void newRunCountsFromZero();
    void runEndsAtItsCount();
    void runOfSeveralEndsWithTheFirstOnesCount();
    void countCanBeChangedWhileRunning();
    void enteringPointingModeWhileRunningBeginsANewCount();
    void leavingPointingModeEndsTheLimit();
    void pulsedSystemLocksTheRate();
    void clearWhileStoppedEmptiesTheDisplay();
    void clearWhileRunningBeginsTimeAnew();
    void canvasesHaveNoBackingStoreWhileRunning();
    void streamsOfAllShownSystemsStartAndStop();
};

void TestAcquisition::cleanup()
{
    QCOMPARE(leftWidgets(), QString());
}

void TestAcquisition::nothingCanBeStartedWithoutASystem()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.open());
    QVERIFY(!fixture.find<QAction>("startAction")->isEnabled());
    QVERIFY(fixture.registerSystem());
    QVERIFY(fixture.find<QAction>("startAction")->isEnabled());
}

void TestAcquisition::startCarriesTheRateAndTurnsTheButton()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.type("samplingRateCounter", "430"));
    auto* action = fixture.find<QAction>("startAction");
    QCOMPARE(action->text(), QStringLiteral("Start"));

    QVERIFY(fixture.clickAction("startAction"));
    QCOMPARE(action->text(), QStringLiteral("Stop"));
    QVERIFY(action->isChecked());
    QCOMPARE(countOf(fixture.controller(), QByteArray("SLS\0\0\x01\xae;", 8)), 1);
    QCOMPARE(fixture.connection().samplingRate(), 430);

    QVERIFY(fixture.clickAction("startAction"));
    QCOMPARE(action->text(), QStringLiteral("Start"));
    QVERIFY(!action->isChecked());
    QVERIFY(!fixture.connection().isStreaming());
}

void TestAcquisition::samplingRateIsFixedWhileRunning()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    auto* rate = fixture.find<Counter>("samplingRateCounter");
    QVERIFY(fixture.clickAction("startAction"));
    QVERIFY(!rate->isEnabled());
    fixture.tick();
    QVERIFY(!rate->isEnabled());
    QVERIFY(fixture.clickAction("startAction"));
    fixture.tick();
    QVERIFY(rate->isEnabled());
}

void TestAcquisition::refusedStartIsToldAndTheOthersRun_data()
{
    QTest::addColumn<bool>("silent");
    QTest::newRow("refused") << false;
    QTest::newRow("silent") << true;
}

void TestAcquisition::refusedStartIsToldAndTheOthersRun()
{
    QFETCH(bool, silent);
    WindowFixture fixture(2);
    QVERIFY(fixture.openWithSystems());
    emulator::Faults faults;
    (silent ? faults.silent : faults.refuse) = {"SLS"};
    fixture.controller(0).setFaults(faults);

    QVERIFY(fixture.clickAction("startAction"));
    QVERIFY(fixture.find<QMessageBox>("streamErrorBox")->isVisible());
    QVERIFY(!fixture.connection(0).isStreaming());
    QVERIFY(fixture.connection(1).isStreaming());
    QVERIFY(fixture.find<QAction>("startAction")->isChecked());
    QCOMPARE(countOf(fixture.controller(0), QByteArray("SLS\0\0\0d;", 8)), 1);
}

void TestAcquisition::unansweredStopIsRepeatedOnceAndEndsAllTheSame()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.clickAction("startAction"));
    emulator::Faults faults;
    faults.silent = {"CLS"};
    fixture.controller().setFaults(faults);
    fixture.controller().clearWire();

    fixture.find<QAction>("startAction")->trigger();
    QCOMPARE(countOf(fixture.controller(), "CLS;"), 2);
    QVERIFY(!fixture.find<QAction>("startAction")->isChecked());
    fixture.controller().setFaults({});
}

void TestAcquisition::newRunCountsFromZero()
{
    constexpr int sent = 301;
    WindowFixture fixture(1, scripted(sent));
    QVERIFY(fixture.openWithSystems());
    QVERIFY(enterPointingMode(fixture));
    for (int run = 0; run < 2; ++run) {
        QVERIFY(fixture.clickAction("startAction"));
        // The text is refreshed at most every 11 ms: ticking the box once more shows the last
        // state.
        QVERIFY(
            fixture.tickUntil([&] { return pointsOf(fixture.pointingPlot(1), 0).size() == 300; }));
        QVERIFY(fixture.click("checkBox_Stats1"));
        QVERIFY(fixture.click("checkBox_Stats1"));
        const int shown = shownSampleCount(fixture);
        QVERIFY2(shown > 0 && shown <= 300, qPrintable(QString::number(shown)));
        QVERIFY(fixture.clickAction("startAction"));
    }
}

void TestAcquisition::runEndsAtItsCount()
{
    WindowFixture fixture(1, scripted(400));
    QVERIFY(fixture.openWithSystems());
    QVERIFY(enterPointingMode(fixture));
    QVERIFY(fixture.type("samplesToTakeCounter", "150"));
    QVERIFY(fixture.clickAction("startAction"));

    auto* action = fixture.find<QAction>("startAction");
    QTRY_VERIFY(!action->isChecked());
    QCOMPARE(action->text(), QStringLiteral("Start"));
    QVERIFY(!fixture.connection().isStreaming());
    QCOMPARE(shownSampleCount(fixture), 150);
    QCOMPARE(pointsOf(fixture.pointingPlot(1), 0).size(), 150);
}

void TestAcquisition::runOfSeveralEndsWithTheFirstOnesCount()
{
    WindowFixture fixture(2, scripted(400));
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.type("samplingRateCounter", "500"));
    QVERIFY(fixture.click("pointingRadio"));
    QVERIFY(fixture.type("samplesToTakeCounter", "100"));
    QVERIFY(fixture.clickAction("startAction"));
    QTRY_VERIFY(!fixture.find<QAction>("startAction")->isChecked());
    // The rest of the first one's block is still plotted.
    QVERIFY(pointsOf(fixture.pointingPlot(1), 0).size() >= 100);
    QVERIFY(!fixture.connection(0).isStreaming());
    QVERIFY(!fixture.connection(1).isStreaming());
}

void TestAcquisition::countCanBeChangedWhileRunning()
{
    emulator::ControllerOptions options = scripted(10);
    options.scriptRepeats = true;
    WindowFixture fixture(1, options);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(enterPointingMode(fixture));
    QVERIFY(fixture.clickAction("startAction"));
    QVERIFY(fixture.find<Counter>("samplesToTakeCounter")->isEnabled());
    QTRY_VERIFY(shownSampleCount(fixture) > 20);
    QVERIFY(fixture.find<QAction>("startAction")->isChecked());

    fixture.find<Counter>("samplesToTakeCounter")->spinBox->setValue(1);
    QTRY_VERIFY(!fixture.find<QAction>("startAction")->isChecked());
}

void TestAcquisition::enteringPointingModeWhileRunningBeginsANewCount()
{
    WindowFixture fixture(1, scripted(501));
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.type("samplingRateCounter", "500"));
    QVERIFY(!fixture.find<Counter>("samplesToTakeCounter")->isEnabled());
    QVERIFY(fixture.clickAction("startAction"));
    QVERIFY(fixture.tickUntil([&] { return fixture.connection().samplesStored() > 100; }));

    QVERIFY(fixture.click("pointingRadio"));
    QVERIFY(fixture.click("checkBox_Stats1"));
    QVERIFY(fixture.tickUntil([&] { return fixture.connection().samplesStored() == 500; }));
    fixture.tick();
    QVERIFY(shownSampleCount(fixture) > 0);
    QVERIFY(shownSampleCount(fixture) <= 400);
}

void TestAcquisition::leavingPointingModeEndsTheLimit()
{
    emulator::ControllerOptions options = scripted(10);
    options.scriptRepeats = true;
    WindowFixture fixture(1, options);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(enterPointingMode(fixture));
    QVERIFY(fixture.type("samplesToTakeCounter", "400"));
    QVERIFY(fixture.clickAction("startAction"));
    QVERIFY(fixture.click("oscilloscopeRadio"));
    QVERIFY(!fixture.find<Counter>("samplesToTakeCounter")->isEnabled());
    QVERIFY(fixture.tickUntil([&] { return fixture.connection().samplesStored() > 600; }));
    QVERIFY(fixture.find<QAction>("startAction")->isChecked());
    QVERIFY(fixture.connection().isStreaming());
}

void TestAcquisition::pulsedSystemLocksTheRate()
{
    emulator::ControllerOptions options;
    options.triggerCapable = true;
    WindowFixture fixture(1, options);
    QVERIFY(fixture.open());
    ConnectionSettings pulsed = fixture.record();
    pulsed.pulsedLaser = true;
    QVERIFY(fixture.registerSystem(pulsed, 0));
    auto* rate = fixture.find<Counter>("samplingRateCounter");

    fixture.tick();
    QCOMPARE(rate->spinBox->value(), 1000);
    QVERIFY(!rate->isEnabled());
    QVERIFY(fixture.clickAction("startAction"));
    QVERIFY(fixture.connection().isStreaming());
    QCOMPARE(fixture.connection().samplingRate(), -1);
    QCOMPARE(countOf(fixture.controller(), QByteArray("SPS\0\0;", 6)), 1);
    QVERIFY(fixture.clickAction("startAction"));
    fixture.tick();
    QVERIFY(!rate->isEnabled());

    // With nothing pulsed on the plots the rate is the user's again.
    fixture.window().showConnection(fixture.connection().address(), false);
    fixture.tick();
    QCOMPARE(rate->spinBox->value(), 100);
    QCOMPARE(rate->spinBox->maximum(), 500);
    QVERIFY(rate->isEnabled());
}

void TestAcquisition::clearWhileStoppedEmptiesTheDisplay()
{
    WindowFixture fixture(1, scripted(60));
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.clickAction("startAction"));
    auto* readout = fixture.find<QLCDNumber>("lcd1x");
    QTRY_COMPARE(readout->value(), 1.0);
    QVERIFY(fixture.clickAction("startAction"));
    fixture.controller().clearWire();

    QVERIFY(fixture.clickAction("clearAction"));
    QCOMPARE(readout->value(), 0.0);
    QCOMPARE(fixture.find<ThermoSlider>("thermoRX1")->value(), 0.0);
    for (int stage = 1; stage <= 2; ++stage) {
        QVERIFY(pointsOf(fixture.pointingPlot(stage), 0).isEmpty());
        QVERIFY(pointsOf(fixture.positionPlot(stage), 0).isEmpty());
        QVERIFY(pointsOf(fixture.positionPlot(stage), 1).isEmpty());
        QVERIFY(pointsOf(fixture.intensityPlot(stage), 0).isEmpty());
    }
    QCOMPARE(countOf(fixture.controller(), "CLS;"), 0);
    QVERIFY(!fixture.connection().isStreaming());
}

void TestAcquisition::clearWhileRunningBeginsTimeAnew()
{
    emulator::ControllerOptions options = scripted(10);
    options.scriptRepeats = true;
    WindowFixture fixture(1, options);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.clickAction("startAction"));
    const auto lastTime = [&] {
        const QVector<QPointF> points = pointsOf(fixture.positionPlot(1), 0);
        return points.isEmpty() ? 0.0 : points.last().x();
    };
    QTRY_VERIFY(lastTime() > 1.0);

    QVERIFY(fixture.clickAction("clearAction"));
    QTRY_VERIFY(!pointsOf(fixture.positionPlot(1), 0).isEmpty());
    QVERIFY(lastTime() < 1.0);
    QVERIFY(fixture.connection().isStreaming());
}

void TestAcquisition::canvasesHaveNoBackingStoreWhileRunning()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(keepsBackingStore(fixture.positionPlot(1)));
    QVERIFY(fixture.clickAction("startAction"));
    for (int stage = 1; stage <= 2; ++stage) {
        QVERIFY(!keepsBackingStore(fixture.pointingPlot(stage)));
        QVERIFY(!keepsBackingStore(fixture.positionPlot(stage)));
        QVERIFY(!keepsBackingStore(fixture.intensityPlot(stage)));
    }
    QVERIFY(fixture.clickAction("startAction"));
    for (int stage = 1; stage <= 2; ++stage) {
        QVERIFY(keepsBackingStore(fixture.pointingPlot(stage)));
        QVERIFY(keepsBackingStore(fixture.positionPlot(stage)));
        QVERIFY(keepsBackingStore(fixture.intensityPlot(stage)));
    }
}

void TestAcquisition::streamsOfAllShownSystemsStartAndStop()
{
    WindowFixture fixture(3);
    QVERIFY(fixture.openWithSystems());
    fixture.window().showConnection(fixture.connection(1).address(), false);
    QVERIFY(fixture.clickAction("startAction"));
    QVERIFY(fixture.connection(0).isStreaming());
    QVERIFY(!fixture.connection(1).isStreaming());
    QVERIFY(fixture.connection(2).isStreaming());
    QVERIFY(fixture.clickAction("startAction"));
    for (int system = 0; system < 3; ++system)
        QVERIFY(!fixture.connection(system).isStreaming());
}

QTEST_MAIN(TestAcquisition)
#include "tst_acquisition.moc"
