#include "link/connection.h"
#include "plots/counter.h"
#include "plots/genericplot.h"
#include "plots/thermoslider.h"
#include "recording/dataloggerdialog.h"
#include "support/plotcanvas.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QGuiApplication>
#include <QLCDNumber>
#include <QMessageBox>
#include <QSignalSpy>
#include <QSpinBox>
#include <QtTest>

#include <algorithm>

namespace {

/// A stream of these lasts a second at the rate of the tests and then falls silent.
QVector<emulator::PacketValues> samples(int count)
{
    emulator::PacketValues values{};
    values[0].x = 1000;
    values[0].y = -2000;
    values[0].intensity = 4000;
    values[0].actuatorX = 5000;
    return QVector<emulator::PacketValues>(count, values);
}

emulator::ControllerOptions scripted(int count)
{
    emulator::ControllerOptions options;
    options.script = samples(count);
    return options;
}

int countOf(const emulator::ControllerHandle& controller, const QByteArray& command)
{
    return controller.commands().count(command);
}

bool showsIcon(const QAction& action, const QString& name)
{
    constexpr QSize size(22, 22);
    const QIcon icon(QStringLiteral(":/images/%1.xpm").arg(name));
    return action.icon().pixmap(size).toImage() == icon.pixmap(size).toImage();
}

/// Numbers of the controllers in the order in which they got their first command of this kind.
QList<int> orderOf(const WindowFixture& fixture, const char* mnemonic)
{
    QMap<qint64, int> numbers;
    for (int i = 0; i < int(fixture.window().liveConnections().size()); ++i) {
        const QVector<emulator::WireEvent> wire = fixture.controller(i).wire();
        const auto first = std::find_if(wire.begin(), wire.end(), [&](const auto& event) {
            return event.bytes.startsWith(mnemonic);
        });
        if (first != wire.end())
            numbers.insert(first->timeNs, i);
    }
    return numbers.values();
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
    void stopEndsARecording();
    void pointerWaitsDuringStartAndStop_data();
    void pointerWaitsDuringStartAndStop();
    void refusedStartIsToldAndTheOthersRun_data();
    void refusedStartIsToldAndTheOthersRun();
    void unansweredStopIsRepeatedOnceAndEndsAllTheSame();
    void runOfSeveralEndsWithTheFirstOnesCount();
    void countCanBeChangedWhileRunning();
    void pulsedSystemLocksTheRate();
    void lockedStartKeepsTheRateThatWasAccepted();
    void lockOfAStoredSystemEndsAtTheFullRate();
    void clearWhileStoppedEmptiesTheDisplay();
    void clearWhileRunningBeginsTimeAnew();
    void canvasesHaveNoBackingStoreWhileRunning();
    void streamsOfAllShownSystemsStartAndStop();
    void streamsStartAndStopInTheOrderOfDisplay();
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

    QVERIFY(showsIcon(*action, "go"));

    QVERIFY(fixture.clickAction("startAction"));
    QCOMPARE(action->text(), QStringLiteral("Stop"));
    QVERIFY(action->isChecked());
    QVERIFY(showsIcon(*action, "stop"));
    QCOMPARE(countOf(fixture.controller(), QByteArray("SLS\0\0\x01\xae;", 8)), 1);
    QCOMPARE(fixture.connection().samplingRate(), 430);

    QVERIFY(fixture.clickAction("startAction"));
    QCOMPARE(action->text(), QStringLiteral("Start"));
    QVERIFY(!action->isChecked());
    QVERIFY(showsIcon(*action, "go"));
    QVERIFY(!fixture.connection().isStreaming());
}

void TestAcquisition::stopEndsARecording()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const QSignalSpy stopped(fixture.window().findChild<DataLoggerDialog*>(),
                             &DataLoggerDialog::dataRecordingStopped);
    QVERIFY(fixture.clickAction("startAction"));
    QCOMPARE(stopped.count(), 0);
    QVERIFY(fixture.clickAction("startAction"));
    QCOMPARE(stopped.count(), 1);
}

void TestAcquisition::pointerWaitsDuringStartAndStop_data()
{
    QTest::addColumn<bool>("running");
    QTest::newRow("start") << false;
    QTest::newRow("stop") << true;
}

void TestAcquisition::pointerWaitsDuringStartAndStop()
{
    QFETCH(bool, running);
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    if (running)
        QVERIFY(fixture.clickAction("startAction"));
    bool waited = false;
    // The text of the button changes when the controllers have answered.
    const auto look = [&waited] {
        const QCursor* cursor = QGuiApplication::overrideCursor();
        waited = waited || (cursor && cursor->shape() == Qt::WaitCursor);
    };
    connect(fixture.find<QAction>("startAction"), &QAction::changed, &fixture.window(), look);
    QVERIFY(fixture.clickAction("startAction"));
    QVERIFY(waited);
    QVERIFY(!QGuiApplication::overrideCursor());
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

void TestAcquisition::lockedStartKeepsTheRateThatWasAccepted()
{
    // Controllers of this kind are told a rate also where they follow trigger pulses.
    emulator::ControllerOptions options;
    options.vm = true;
    WindowFixture fixture(2, options);
    QVERIFY(fixture.open());
    ConnectionSettings pulsed = fixture.record();
    pulsed.pulsedLaser = true;
    QVERIFY(fixture.registerSystem(pulsed, 0));
    QVERIFY(fixture.registerSystem(1));
    fixture.tick();
    QVERIFY(fixture.type("samplingRateCounter", "200"));
    QVERIFY(fixture.clickAction("startAction"));
    QCOMPARE(fixture.connection(0).samplingRate(), 200);
    QVERIFY(fixture.clickAction("startAction"));

    fixture.window().showConnection(fixture.controller(1).address(), false);
    fixture.tick();
    QVERIFY(fixture.clickAction("startAction"));
    QCOMPARE(countOf(fixture.controller(0), QByteArray("SGS\0\0\x03\xe8;", 8)), 1);
    QVERIFY(fixture.connection(0).isStreaming());
    QCOMPARE(fixture.connection(0).samplingRate(), 200);
}

void TestAcquisition::lockOfAStoredSystemEndsAtTheFullRate()
{
    emulator::ControllerOptions options;
    options.triggerCapable = true;
    WindowFixture fixture(1, options);
    ConnectionSettings pulsed = fixture.record();
    pulsed.pulsedLaser = true;
    QVERIFY(fixture.writeSetupFile({pulsed}));
    QVERIFY(fixture.open());
    QSpinBox& rate = *fixture.find<Counter>("samplingRateCounter")->spinBox;
    fixture.tick();
    QCOMPARE(rate.value(), 1000);

    fixture.window().showConnection(fixture.connection().address(), false);
    fixture.tick();
    QCOMPARE(rate.maximum(), 500);
    QCOMPARE(rate.value(), 100);
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
    for (const QLCDNumber* number : fixture.window().findChildren<QLCDNumber*>())
        QCOMPARE(number->value(), 0.0);
    for (const ThermoSlider* bar : fixture.window().findChildren<ThermoSlider*>())
        QCOMPARE(bar->value(), 0.0);
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

void TestAcquisition::streamsStartAndStopInTheOrderOfDisplay()
{
    WindowFixture fixture(3);
    QVERIFY(fixture.openWithSystems());
    fixture.window().showConnection(fixture.connection(0).address(), false);
    fixture.window().showConnection(fixture.connection(0).address(), true);
    QVERIFY(fixture.clickAction("startAction"));
    QCOMPARE(orderOf(fixture, "SLS"), (QList<int>{1, 2, 0}));
    for (int system = 0; system < 3; ++system)
        fixture.controller(system).clearWire();
    QVERIFY(fixture.clickAction("startAction"));
    QCOMPARE(orderOf(fixture, "CLS"), (QList<int>{1, 2, 0}));
}

QTEST_MAIN(TestAcquisition)
#include "tst_acquisition.moc"
