// What a tick shows beside the plots: readouts, piezo bars, states and the limits of the rates.

#include "emulator/packet.h"
#include "link/connection.h"
#include "link/serialport.h"
#include "model/detectorpair.h"
#include "plots/counter.h"
#include "plots/genericplot.h"
#include "plots/thermoslider.h"
#include "support/samplefeed.h"
#include "support/userinput.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "window/mainwindow.h"
#include "window/ticktimer.h"

#include <QAction>
#include <QIcon>
#include <QLCDNumber>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QTimer>
#include <QtTest>

using emulator::PacketValues;

namespace {

const char* const readoutNames[] = {"lcd1x", "lcd1y", "lcd1i", "lcd2x", "lcd2y", "lcd2i"};
const char* const barNames[] = {"thermoRX1", "thermoRY1", "thermoRX2", "thermoRY2"};

/// Numbers of the six readouts, in the order of their names.
QVector<double> readouts(const WindowFixture& fixture)
{
    QVector<double> values;
    for (const char* name : readoutNames)
        values.append(fixture.find<QLCDNumber>(name)->value());
    return values;
}

QVector<double> bars(const WindowFixture& fixture)
{
    QVector<double> values;
    for (const char* name : barNames)
        values.append(fixture.find<ThermoSlider>(name)->value());
    return values;
}

/// "ON checked lightgreen" and such.
QString switchState(const WindowFixture& fixture, const QByteArray& buttonName)
{
    const auto* button = fixture.find<QPushButton>(buttonName.constData());
    const QColor color = button->palette().color(QPalette::Button);
    const QString colorName = color == QColor("lightgreen")   ? "lightgreen"
                              : color == QColor("lightcoral") ? "lightcoral"
                                                              : color.name();
    return QStringList{button->text(), button->isChecked() ? "checked" : "unchecked", colorName}
        .join(' ');
}

QString lightColor(const WindowFixture& fixture, const char* labelName)
{
    const auto* label = fixture.find<QLabel>(labelName);
    const QImage shown = label->pixmap(Qt::ReturnByValue).toImage();
    for (const char* color : {"green", "red"}) {
        const QIcon icon(QStringLiteral(":/images/%1_light.png").arg(color));
        if (shown == icon.pixmap(label->maximumSize()).toImage())
            return color;
    }
    return "neither";
}

std::unique_ptr<Connection> slowSerialLine(const QString& port = "ttyS77")
{
    auto line = std::make_unique<SerialPort>();
    line->init(port, 115200);
    return line;
}

/// Remembers the clock of the tick once it expires, and when it did so first.
class TimerWatch final : public QObject
{
public:
    TimerWatch()
    {
        QCoreApplication::instance()->installEventFilter(this);
        clock.start();
    }

    const TickTimer* seen = nullptr;
    qint64 firstMs = -1;

protected:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        const auto* timer = qobject_cast<const TickTimer*>(object->parent());
        if (!timer || event->type() != QEvent::SockAct)
            return false;
        if (!seen)
            firstMs = clock.elapsed();
        seen = timer;
        return false;
    }

private:
    QElapsedTimer clock;
};

} // namespace

class TestTickReadouts final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void readoutsShowVoltsWithTwoDecimals();
    void readoutsAverageOverTheLatest41Samples();
    void aSystemShownAgainStartsItsAverageAnew();
    void theLastSystemLeftStartsItsAverageAnew();
    void clearingStartsTheAverageAnew();
    void aNewUnitStartsTheAverageAnew();
    void piezoBarsShowTheNewestSample();
    void twoDisplayedSystemsLeaveReadoutsAndBarsAlone();
    void clearingZeroesReadoutsAndBars();

    void aStateFromAnotherPathReachesTheButtonOfASingleSystem_data();
    void aStateFromAnotherPathReachesTheButtonOfASingleSystem();
    void aStateFromAnotherPathDoesNotReachTheButtonsOfTwoSystems();
    void theStreamsFlagsReachButtonAndLight();
    void onlyTheLastSampleOfATickTellsTheState();
    void theLastSampleTellsTheMultiplexing();
    void theSampleThatEndsARunTellsNoState();
    void oldFirmwareHasNoStateInItsStream();
    void aWrongCheckedStateIsCorrected();
    void withoutAcquisitionTheStatusIsPolled();

    void theUpdateRateIsThePeriodOfTheTick_data();
    void theUpdateRateIsThePeriodOfTheTick();
    void theFirstTickComesASecondAfterConstruction();
    void oneSlowLineIsEnoughFor430();
    void aTickLeavesWhatIsTypedAlone();
    void theSamplingRateIsLockedWhileAcquisitionRuns();
    void pulsesTakeTheSamplingRateOver();
    void aSystemWithoutPulsesGivesTheSamplingRateBack();
};

void TestTickReadouts::readoutsShowVoltsWithTwoDecimals()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    PacketValues values;
    values[0].x = 1236;
    values[0].y = -2344;
    values[0].intensity = 3519;
    values[1].x = -7;
    values[1].y = 32767;
    values[1].intensity = 65535;
    QVERIFY(feed.show({values}));
    QCOMPARE(readouts(fixture), (QVector<double>{1.24, -2.34, 3.52, -0.01, 32.77, 65.53}));
}

void TestTickReadouts::readoutsAverageOverTheLatest41Samples()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    PacketValues first;
    first[0].x = 4100;
    first[1].y = -8200;
    first[1].intensity = 4100;
    QVERIFY(feed.show(QVector<PacketValues>{first} + QVector<PacketValues>(40)));
    QCOMPARE(readouts(fixture), (QVector<double>{0.1, 0.0, 0.0, 0.0, -0.2, 0.1}));
    QVERIFY(feed.show({PacketValues()}));
    QCOMPARE(readouts(fixture), QVector<double>(6, 0.0));
}

void TestTickReadouts::aSystemShownAgainStartsItsAverageAnew()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    PacketValues values;
    values[0].x = 2000;
    QVERIFY(feed.show(QVector<PacketValues>(30, values)));
    const QString address = fixture.controller().address();
    fixture.window().showConnection(address, false);
    fixture.window().showConnection(address, true);
    values[0].x = 1000;
    QVERIFY(feed.show({values}));
    QCOMPARE(readouts(fixture).first(), 1.0);
}

void TestTickReadouts::theLastSystemLeftStartsItsAverageAnew()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.openWithSystems());
    fixture.window().showConnection(fixture.controller(1).address(), false);
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    PacketValues values;
    values[0].x = 2000;
    QVERIFY(feed.show(QVector<PacketValues>(30, values), 0));
    QCOMPARE(readouts(fixture).first(), 2.0);

    fixture.window().showConnection(fixture.controller(1).address(), true);
    fixture.window().showConnection(fixture.controller(0).address(), false);
    values[0].x = 1000;
    QVERIFY(feed.show({values}, 1));
    QCOMPARE(readouts(fixture).first(), 1.0);
}

void TestTickReadouts::clearingStartsTheAverageAnew()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    PacketValues values;
    values[0].x = 2000;
    values[1].y = 4000;
    QVERIFY(feed.show(QVector<PacketValues>(30, values)));
    feed.clear();
    values[0].x = 1000;
    values[1].y = -1000;
    QVERIFY(feed.show({values}));
    QCOMPARE(readouts(fixture).at(0), 1.0);
    QCOMPARE(readouts(fixture).at(4), -1.0);
}

void TestTickReadouts::aNewUnitStartsTheAverageAnew()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    PacketValues values;
    values[0].x = values[1].x = 1200;
    QVERIFY(feed.show(QVector<PacketValues>(30, values)));
    DetectorPair& detectors = *fixture.window().liveSystems().at(0).detectors;
    detectors.setDetectorType(0, PsdDetector);
    detectors[0]->calculation = 1;
    QVERIFY(feed.show({values}));
    // 1.2 V are 1 mm.
    QCOMPARE(readouts(fixture).at(0), 1.0);
    QCOMPARE(readouts(fixture).at(3), 1.2);
}

void TestTickReadouts::piezoBarsShowTheNewestSample()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    PacketValues early;
    early[0].actuatorX = early[0].actuatorY = early[1].actuatorX = early[1].actuatorY = 9000;
    PacketValues late;
    late[0].actuatorX = 1000;
    late[0].actuatorY = 2500;
    late[1].actuatorX = 5000;
    late[1].actuatorY = 7750;
    QVERIFY(feed.show({early, early, late}));
    QCOMPARE(bars(fixture), (QVector<double>{1.0, 2.5, 5.0, 7.75}));
}

void TestTickReadouts::twoDisplayedSystemsLeaveReadoutsAndBarsAlone()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.openWithSystems());
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    PacketValues values;
    values[0].x = values[0].y = values[1].x = values[1].y = 1000;
    values[0].intensity = values[1].intensity = 1000;
    values[0].actuatorX = values[0].actuatorY = values[1].actuatorX = values[1].actuatorY = 5000;
    QVERIFY(feed.send({values}, 0));
    QVERIFY(feed.show({values}, 1));
    QCOMPARE(pointsOf(fixture.pointingPlot(1), 0).size(), 1);
    QCOMPARE(readouts(fixture), QVector<double>(6, 0.0));
    QCOMPARE(bars(fixture), QVector<double>(4, 0.0));
}

void TestTickReadouts::clearingZeroesReadoutsAndBars()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    PacketValues values;
    values[0].x = 1000;
    values[0].actuatorX = 5000;
    QVERIFY(feed.show({values}));
    QVERIFY(fixture.clickAction("clearAction"));
    QCOMPARE(readouts(fixture), QVector<double>(6, 0.0));
    QCOMPARE(bars(fixture), QVector<double>(4, 0.0));
    QVERIFY(fixture.controller().isStreaming());
}

void TestTickReadouts::aStateFromAnotherPathReachesTheButtonOfASingleSystem_data()
{
    QTest::addColumn<int>("stage");
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<QByteArray>("otherButton");
    QTest::newRow("stage 1") << 1 << QByteArray("push_Stab1") << QByteArray("push_Stab2");
    QTest::newRow("stage 2") << 2 << QByteArray("push_Stab2") << QByteArray("push_Stab1");
}

void TestTickReadouts::aStateFromAnotherPathReachesTheButtonOfASingleSystem()
{
    QFETCH(int, stage);
    QFETCH(QByteArray, button);
    QFETCH(QByteArray, otherButton);
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QCOMPARE(switchState(fixture, button), QString("OFF unchecked lightcoral"));

    fixture.controller().setStage(stage, true);
    QVERIFY(fixture.tickUntil(
        [&] { return switchState(fixture, button) == QString("ON checked lightgreen"); }));
    QCOMPARE(switchState(fixture, otherButton), QString("OFF unchecked lightcoral"));

    fixture.controller().setStage(stage, false);
    QVERIFY(fixture.tickUntil(
        [&] { return switchState(fixture, button) == QString("OFF unchecked lightcoral"); }));
}

void TestTickReadouts::aStateFromAnotherPathDoesNotReachTheButtonsOfTwoSystems()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.openWithSystems());
    fixture.controller(0).setStage(1, true);
    fixture.controller(1).setStage(2, true);
    QVERIFY(fixture.tickUntil([&] {
        const QVector<ConnectionStatus> statuses = fixture.window().liveStatuses();
        return statuses.at(0).stabilised1 && statuses.at(1).stabilised2;
    }));
    QCOMPARE(switchState(fixture, "push_Stab1"), QString("OFF unchecked lightcoral"));
    QCOMPARE(switchState(fixture, "push_Stab2"), QString("OFF unchecked lightcoral"));

    fixture.window().showConnection(fixture.controller(0).address(), false);
    fixture.tick();
    QCOMPARE(switchState(fixture, "push_Stab1"), QString("OFF unchecked lightcoral"));
    QCOMPARE(switchState(fixture, "push_Stab2"), QString("ON checked lightgreen"));
}

void TestTickReadouts::theStreamsFlagsReachButtonAndLight()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.send({PacketValues()}, 0, emulator::Stage1On | emulator::Stage2Active));
    fixture.tick();
    QCOMPARE(switchState(fixture, "push_Stab1"), QString("ON checked lightgreen"));
    QCOMPARE(switchState(fixture, "push_Stab2"), QString("OFF unchecked lightcoral"));
    QCOMPARE(fixture.find<QLabel>("label_ActiveText")->text(), QString("Inactive"));
    QCOMPARE(lightColor(fixture, "label_ActiveIcon"), QString("red"));
    QCOMPARE(fixture.find<QLabel>("label_ActiveText_2")->text(), QString("Active"));
    QCOMPARE(lightColor(fixture, "label_ActiveIcon_2"), QString("green"));

    QVERIFY(feed.send({PacketValues()}, 0, emulator::Stage2On | emulator::Stage1Active));
    fixture.tick();
    QCOMPARE(switchState(fixture, "push_Stab1"), QString("OFF unchecked lightcoral"));
    QCOMPARE(switchState(fixture, "push_Stab2"), QString("ON checked lightgreen"));
    QCOMPARE(fixture.find<QLabel>("label_ActiveText")->text(), QString("Active"));
    QCOMPARE(lightColor(fixture, "label_ActiveIcon"), QString("green"));
    QCOMPARE(fixture.find<QLabel>("label_ActiveText_2")->text(), QString("Inactive"));
    QCOMPARE(lightColor(fixture, "label_ActiveIcon_2"), QString("red"));
}

void TestTickReadouts::onlyTheLastSampleOfATickTellsTheState()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.send({PacketValues()}, 0, emulator::Stage1On));
    QVERIFY(feed.send({PacketValues()}, 0, emulator::Stage2On));
    fixture.tick();
    QCOMPARE(switchState(fixture, "push_Stab1"), QString("OFF unchecked lightcoral"));
    QCOMPARE(switchState(fixture, "push_Stab2"), QString("ON checked lightgreen"));
}

void TestTickReadouts::theLastSampleTellsTheMultiplexing()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    const auto multiplexed = [&fixture] {
        const ConnectionStatus status = fixture.window().liveStatuses().first();
        return QVector<bool>{status.multiplex1, status.multiplex2};
    };
    QVERIFY(feed.send({PacketValues()}, 0, 0, emulator::Multiplex1));
    QVERIFY(feed.send({PacketValues()}, 0, 0, emulator::Multiplex2));
    fixture.tick();
    QCOMPARE(multiplexed(), (QVector<bool>{false, true}));
    QVERIFY(feed.send({PacketValues()}, 0, 0, emulator::Multiplex1));
    fixture.tick();
    QCOMPARE(multiplexed(), (QVector<bool>{true, false}));
}

void TestTickReadouts::theSampleThatEndsARunTellsNoState()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.click("pointingRadio"));
    QVERIFY(fixture.type("samplesToTakeCounter", "4"));
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.send(QVector<PacketValues>(3), 0, 0, emulator::Multiplex1));
    fixture.tick();
    QVERIFY(feed.send({PacketValues()}, 0, 0, emulator::Multiplex2));
    QVERIFY(feed.send({PacketValues()}, 0, 0, emulator::Multiplex2));
    fixture.tick();
    QVERIFY(!fixture.find<QAction>("startAction")->isChecked());
    const ConnectionStatus status = fixture.window().liveStatuses().first();
    QVERIFY(status.multiplex1);
    QVERIFY(!status.multiplex2);
}

void TestTickReadouts::oldFirmwareHasNoStateInItsStream()
{
    emulator::ControllerOptions options;
    options.firmware = 10;
    WindowFixture fixture(1, options);
    QVERIFY(fixture.openWithSystems());
    fixture.controller().setStage(1, true);
    QVERIFY(fixture.tickUntil(
        [&] { return switchState(fixture, "push_Stab1") == QString("ON checked lightgreen"); }));
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.show({PacketValues()}));
    QCOMPARE(pointsOf(fixture.pointingPlot(1), 0).size(), 1);
    QCOMPARE(switchState(fixture, "push_Stab1"), QString("ON checked lightgreen"));
}

void TestTickReadouts::aWrongCheckedStateIsCorrected()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    fixture.find<QPushButton>("push_Stab1")->setChecked(true);
    QCOMPARE(switchState(fixture, "push_Stab1"), QString("OFF checked lightcoral"));
    fixture.tick();
    QCOMPARE(switchState(fixture, "push_Stab1"), QString("OFF unchecked lightcoral"));
}

void TestTickReadouts::withoutAcquisitionTheStatusIsPolled()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.openWithSystems());
    fixture.window().showConnection(fixture.controller(1).address(), false);
    fixture.controller(0).clearWire();
    fixture.controller(1).clearWire();
    // Hidden systems are polled, too: the overview shows them.
    for (const int number : {0, 1}) {
        const emulator::ControllerHandle controller = fixture.controller(number);
        QVERIFY(fixture.tickUntil([&] { return controller.commands().size() >= 2; }));
        const QByteArrayList commands = controller.commands();
        QCOMPARE(commands.count("GSF;"), commands.size());
    }

    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    fixture.controller(0).clearWire();
    fixture.tick();
    QVERIFY(fixture.controller(0).commands().isEmpty());
}

void TestTickReadouts::theUpdateRateIsThePeriodOfTheTick_data()
{
    QTest::addColumn<QString>("rateHz");
    QTest::addColumn<int>("periodMs");
    QTest::newRow("430 Hz") << "430" << 2;
    QTest::newRow("100 Hz") << "100" << 10;
    QTest::newRow("60 Hz") << "60" << 16;
    QTest::newRow("3 Hz") << "3" << 333;
    QTest::newRow("1 Hz") << "1" << 1000;
}

void TestTickReadouts::theUpdateRateIsThePeriodOfTheTick()
{
    QFETCH(QString, rateHz);
    WindowFixture fixture(0);
    QVERIFY(fixture.open());
    QVERIFY(fixture.type("samplingRateCounter", "430"));
    const TimerWatch watch;
    fixture.tick();
    QTRY_VERIFY(watch.seen);
    QVERIFY(fixture.type("updateRateCounter", rateHz));
    fixture.tick();
    QTEST(int(watch.seen->period().count()), "periodMs");
}

void TestTickReadouts::theFirstTickComesASecondAfterConstruction()
{
    WindowFixture fixture(1);
    const TimerWatch watch;
    QVERIFY(fixture.openWithSystems());
    QTRY_VERIFY(watch.seen);
    QVERIFY2(watch.firstMs >= 1000, qPrintable(QString::number(watch.firstMs)));
    // From then on at the update rate, with the status polls that come with it.
    QCOMPARE(watch.seen->period().count(), 10);
    QTRY_VERIFY(fixture.controller().commands().count("GSF;") > 2);
}

void TestTickReadouts::oneSlowLineIsEnoughFor430()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const QSpinBox& sampling = *fixture.find<Counter>("samplingRateCounter")->spinBox;
    const QSpinBox& update = *fixture.find<Counter>("updateRateCounter")->spinBox;
    QCOMPARE(sampling.maximum(), 500);
    QCOMPARE(update.maximum(), 500);
    QVERIFY(fixture.type("samplingRateCounter", "480"));
    QVERIFY(fixture.type("updateRateCounter", "450"));
    fixture.tick();
    QCOMPARE(sampling.value(), 480);
    QCOMPARE(update.value(), 450);

    fixture.window().newConnection(slowSerialLine(), fixture.record());
    for (const QSpinBox* box : {&sampling, &update}) {
        QCOMPARE(box->maximum(), 430);
        QCOMPARE(box->value(), 430);
    }
    fixture.tick();
    QCOMPARE(sampling.maximum(), 430);

    QVERIFY(fixture.window().closedConnection("ttyS77"));
    fixture.tick();
    QCOMPARE(sampling.maximum(), 500);
    QCOMPARE(update.maximum(), 500);
}

void TestTickReadouts::aTickLeavesWhatIsTypedAlone()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QSpinBox& box = *fixture.find<Counter>("samplingRateCounter")->spinBox;
    QVERIFY(user::click(&box, QPoint(6, box.height() / 2)));
    box.selectAll();
    for (const char* key : {"2", "5", "0"}) {
        QTest::keyClick(fixture.window().windowHandle(), key[0]);
        fixture.tick();
    }
    QCOMPARE(box.value(), 250);
    QVERIFY(box.hasFocus());
    QCOMPARE(box.maximum(), 500);
}

void TestTickReadouts::theSamplingRateIsLockedWhileAcquisitionRuns()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const auto* counter = fixture.find<Counter>("samplingRateCounter");
    QVERIFY(counter->isEnabled());
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    for (int i = 0; i < 3; ++i) {
        QVERIFY(!counter->isEnabled());
        fixture.tick();
    }
    QVERIFY(fixture.find<Counter>("updateRateCounter")->isEnabled());
    QVERIFY(fixture.clickAction("startAction"));
    fixture.tick();
    QVERIFY(counter->isEnabled());
    QCOMPARE(counter->spinBox->value(), 100);
}

void TestTickReadouts::pulsesTakeTheSamplingRateOver()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.open());
    const auto* counter = fixture.find<Counter>("samplingRateCounter");
    QVERIFY(fixture.type("samplingRateCounter", "321"));
    for (int number = 0; number < 2; ++number) {
        ConnectionSettings pulsed = fixture.record(number);
        pulsed.pulsedLaser = true;
        QVERIFY(fixture.registerSystem(pulsed, number));
        fixture.tick();
        QCOMPARE(counter->spinBox->value(), 1000);
        QCOMPARE(counter->spinBox->maximum(), 1000);
        QVERIFY(!counter->isEnabled());
    }
    fixture.window().showConnection(fixture.controller(0).address(), false);
    fixture.tick();
    QCOMPARE(counter->spinBox->value(), 1000);

    fixture.window().showConnection(fixture.controller(1).address(), false);
    fixture.tick();
    QCOMPARE(counter->spinBox->value(), 321);
    QCOMPARE(counter->spinBox->maximum(), 500);
    QVERIFY(counter->isEnabled());
}

void TestTickReadouts::aSystemWithoutPulsesGivesTheSamplingRateBack()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.open());
    const auto* counter = fixture.find<Counter>("samplingRateCounter");
    ConnectionSettings pulsed = fixture.record(0);
    pulsed.pulsedLaser = true;
    QVERIFY(fixture.registerSystem(pulsed, 0));
    fixture.tick();
    QCOMPARE(counter->spinBox->value(), 1000);
    QVERIFY(fixture.registerSystem(1));
    fixture.tick();
    QCOMPARE(counter->spinBox->value(), 100);
    QCOMPARE(counter->spinBox->maximum(), 500);
    QVERIFY(counter->isEnabled());
}

QTEST_MAIN(TestTickReadouts)
#include "tst_tickreadouts.moc"
