#include "beamtools.h"
#include "emulator/device.h"
#include "emulator/stabilisationloop.h"
#include "emulator/stagemodel.h"
#include "wiretools.h"

#include <QtTest>

using namespace beamtools;
using namespace emulator;
using namespace wiretools;

Q_DECLARE_METATYPE(emulator::DetectorKind)

namespace {

/// What the loop leaves of a sine, as a share of it.
double suppression(double bandwidthHz, double hz)
{
    StabilisationLoop loop;
    loop.setBandwidth(bandwidthHz);
    double power = 0.0;
    constexpr int steps = 4 * beamStepsPerSecond;
    for (int i = 0; i < 2 * steps; ++i) {
        const double beam = std::sin(2.0 * pi * hz * i / beamStepsPerSecond) + loop.correction();
        loop.step(-beam);
        power += i < steps ? 0.0 : beam * beam;
    }
    return std::sqrt(2.0 * power / steps);
}

} // namespace

class TestStabilisation final : public QObject
{
    Q_OBJECT

private slots:
    void loopSuppressesInProportionToFrequency();
    void loopAmplifiesAroundItsBandwidth_data();
    void loopAmplifiesAroundItsBandwidth();
    void stabilisationReducesTheRmsMoreThanFiveTimes_data();
    void stabilisationReducesTheRmsMoreThanFiveTimes();
    void stabilisationShowsInThePackets();
    void actuatorsMoveAgainstTheBeam();
    void beamDriftsAgainWhenSwitchedOff();
    void pFactorSetsTheSuppression();
    void adjustInMovesTheTarget();
    void actuatorSaturatesAndTheStageIsNotActive();
    void holdMakesThePresentPositionTheTarget();
    void sensitivityScalesTheSignals();
    void drivenActuatorMovesTheBeam();
    void stageTakesOverADrivenActuator();
    void intensityFollowsTheBeam();
    void stageWithoutLightIsNotActive();
    void blockedBeamIsReadAsNothing();
    void loopHoldsTheBeamAlikeOnEveryDetector_data();
    void loopHoldsTheBeamAlikeOnEveryDetector();
    void offsetMovesTheUndisturbedBeam();
    void inputsCanBeMovedWhileTheLoopWorks();
};

void TestStabilisation::loopSuppressesInProportionToFrequency()
{
    QVERIFY(isWithin(suppression(200.0, 2.0), 0.01, 0.1));
    QVERIFY(isWithin(suppression(200.0, 20.0), 0.1, 0.1));
    QVERIFY(isWithin(suppression(100.0, 20.0), 0.2, 0.1));
}

void TestStabilisation::loopAmplifiesAroundItsBandwidth_data()
{
    QTest::addColumn<double>("bandwidthHz");

    QTest::newRow("50 Hz") << 50.0;
    QTest::newRow("200 Hz") << 200.0;
    QTest::newRow("400 Hz") << 400.0;
}

void TestStabilisation::loopAmplifiesAroundItsBandwidth()
{
    QFETCH(double, bandwidthHz);
    double greatest = 0.0;
    double greatestAt = 0.0;
    for (double ratio = 0.5; ratio < 3.0; ratio += 0.05) {
        const double left = suppression(bandwidthHz, ratio * bandwidthHz);
        if (left > greatest) {
            greatest = left;
            greatestAt = ratio;
        }
    }
    const double decibels = 20.0 * std::log10(greatest);
    QVERIFY2(decibels >= 3.0 && decibels <= 6.0, qPrintable(QString::number(decibels)));
    QVERIFY2(greatestAt >= 1.0 && greatestAt <= 2.0, qPrintable(QString::number(greatestAt)));
}

void TestStabilisation::stabilisationReducesTheRmsMoreThanFiveTimes_data()
{
    QTest::addColumn<quint64>("stageSeed");

    for (quint64 number = 1; number <= 10; ++number)
        QTest::newRow(qPrintable(QString("seed %1").arg(number))) << number;
}

void TestStabilisation::stabilisationReducesTheRmsMoreThanFiveTimes()
{
    QFETCH(quint64, stageSeed);
    for (const StageModel::Axis axis : {StageModel::X, StageModel::Y}) {
        StageModel off = typicalStage(stageSeed);
        StageModel on = typicalStage(stageSeed);
        on.setOn(true);
        on.advance(beamStepsPerSecond / 10);

        const double rmsOff = rmsOf(stream(off, 5.0, axis));
        const double rmsOn = rmsOf(stream(on, 5.0, axis));

        QVERIFY2(rmsOff > 5.0 * rmsOn,
                 qPrintable(QString("%1 mV off, %2 mV on").arg(rmsOff).arg(rmsOn)));
        QVERIFY(rmsOn > 5.0);
        QVERIFY(rmsOff < 500.0);
        QVERIFY(on.isActive());
    }
}

void TestStabilisation::stabilisationShowsInThePackets()
{
    const auto streamed = [](const QByteArray& command, int place) {
        Device device({}, "KEY");
        device.execute(parseCommand(command).command);
        device.execute(parseCommand(startAt(500)).command);
        std::vector<double> values;
        for (int i = 0; i < 2500; ++i)
            values.push_back(wordAt(device.nextPacket(), place));
        return values;
    };
    const QByteArray on = "SEA" + hex("01 3b");
    const QByteArray off = "CEA" + hex("01 3b");
    constexpr int y1 = 6;
    constexpr int y2 = 12;
    constexpr int ry1 = 18;

    QVERIFY(rmsOf(streamed(off, y1)) > 5.0 * rmsOf(streamed(on, y1)));
    // The other stage does not notice.
    QCOMPARE(streamed(on, y2), streamed(off, y2));
    QCOMPARE(rmsOf(streamed(off, ry1)), 0.0);
    QVERIFY(rmsOf(streamed(on, ry1)) > 50.0);
}

void TestStabilisation::actuatorsMoveAgainstTheBeam()
{
    constexpr quint64 farOff = 5;
    StageModel off = typicalStage(farOff);
    StageModel on = typicalStage(farOff);
    on.setOn(true);
    stream(on, 0.2);
    stream(off, 0.2);
    std::vector<double> drifted;
    std::vector<double> driven;
    for (int i = 0; i < 1000; ++i) {
        off.advance(10);
        on.advance(10);
        drifted.push_back(off.positionMv(StageModel::X));
        driven.push_back(on.actuatorMv(StageModel::X));
    }

    QCOMPARE(off.actuatorMv(StageModel::X), qint16(5000));
    QVERIFY(std::fabs(meanOf(drifted)) > 200.0);
    // 5 V of the actuator move the beam by 80 micrometres, 4 V of the detector.
    QVERIFY(std::fabs(meanOf(driven) - (5000.0 - 1.25 * meanOf(drifted))) < 5.0);
    QVERIFY(isWithin(rmsOf(driven), 1.25 * rmsOf(drifted), 0.1));
}

void TestStabilisation::beamDriftsAgainWhenSwitchedOff()
{
    StageModel stage = typicalStage();
    StageModel neverOn = typicalStage();
    stage.setOn(true);
    stream(stage, 1.0);
    stage.setOn(false);
    stream(neverOn, 1.0);
    stream(stage, 0.1);
    stream(neverOn, 0.1);

    // Once the low pass has forgotten, nothing tells the two apart.
    QCOMPARE(stream(stage, 0.5), stream(neverOn, 0.5));
    QCOMPARE(stage.actuatorMv(StageModel::Y), qint16(5000));
    QVERIFY(!stage.isActive());
}

void TestStabilisation::pFactorSetsTheSuppression()
{
    const auto rmsAt = [](int pFactorMv) {
        StageModel stage = typicalStage();
        stage.setPFactor(pFactorMv);
        stage.setOn(true);
        stream(stage, 1.0);
        return rmsOf(stream(stage, 10.0));
    };

    QVERIFY(rmsAt(100) > 1.5 * rmsAt(300));
    QVERIFY(rmsAt(300) > 1.2 * rmsAt(1000));
    // 0 takes the external input, which stands at 1 V.
    QCOMPARE(rmsAt(0), rmsAt(1000));
}

void TestStabilisation::adjustInMovesTheTarget()
{
    StageModel stage = typicalStage();
    stage.setAdjustIn(StageModel::X, 1000);
    stage.setAdjustIn(StageModel::Y, -500);
    stage.setOn(true);
    stream(stage, 0.2);

    QVERIFY(std::fabs(meanOf(stream(stage, 2.0, StageModel::X)) - 1000.0) < 5.0);
    QVERIFY(std::fabs(meanOf(stream(stage, 2.0, StageModel::Y)) + 500.0) < 5.0);
    QVERIFY(stage.isActive());
}

void TestStabilisation::actuatorSaturatesAndTheStageIsNotActive()
{
    StageModel stage = calmStage();
    stage.setOn(true);
    stage.setAdjustIn(StageModel::X, 5000);
    stage.advance(beamStepsPerSecond);

    QCOMPARE(stage.actuatorMv(StageModel::X), qint16(10000));
    QCOMPARE(stage.actuatorMv(StageModel::Y), qint16(5000));
    // The travel ends at 80 micrometres, that is 4 V; the error is back.
    QCOMPARE(stage.positionMv(StageModel::X), qint16(4000));
    QVERIFY(stage.isOn());
    QVERIFY(!stage.isActive());

    stage.setAdjustIn(StageModel::X, -5000);
    stage.advance(beamStepsPerSecond);
    QCOMPARE(stage.actuatorMv(StageModel::X), qint16(0));

    stage.setAdjustIn(StageModel::X, 0);
    stage.advance(beamStepsPerSecond);
    QCOMPARE(stage.positionMv(StageModel::X), qint16(0));
    QVERIFY(stage.isActive());
}

void TestStabilisation::holdMakesThePresentPositionTheTarget()
{
    StageModel stage = typicalStage();
    stream(stage, 1.0);
    const double present = stage.positionMv(StageModel::X);
    QVERIFY(std::fabs(present) > 50.0);
    stage.setHold();
    stage.setOn(true);
    stream(stage, 0.2);
    QVERIFY(std::fabs(meanOf(stream(stage, 2.0)) - present) < 5.0);

    stage.clearHold();
    stream(stage, 0.2);
    QVERIFY(std::fabs(meanOf(stream(stage, 2.0))) < 5.0);
}

void TestStabilisation::sensitivityScalesTheSignals()
{
    StageModel nominal = typicalStage();
    StageModel doubled = typicalStage();
    doubled.setSensitivity(2000);
    stream(nominal, 0.1);
    stream(doubled, 0.1);

    const std::vector<double> low = stream(nominal, 1.0);
    const std::vector<double> high = stream(doubled, 1.0);
    for (std::size_t i = 0; i < low.size(); ++i)
        QVERIFY(std::fabs(high[i] - 2.0 * low[i]) <= 1.5);
    QVERIFY(std::abs(doubled.intensityMv() - 2 * nominal.intensityMv()) <= 1);
}

void TestStabilisation::drivenActuatorMovesTheBeam()
{
    StageModel stage = calmStage();
    stage.driveActuator(StageModel::Y, 2500);
    stage.advance(beamStepsPerSecond);

    QCOMPARE(stage.actuatorMv(StageModel::Y), qint16(7500));
    QCOMPARE(stage.positionMv(StageModel::Y), qint16(2000));
    QCOMPARE(stage.positionMv(StageModel::X), qint16(0));
}

void TestStabilisation::stageTakesOverADrivenActuator()
{
    StageModel stage = calmStage();
    stage.driveActuator(StageModel::X, 2500);
    stage.advance(beamStepsPerSecond);
    stage.setOn(true);
    stage.advance(1);
    QVERIFY(stage.actuatorMv(StageModel::X) > 7000);
    stage.advance(beamStepsPerSecond);

    QCOMPARE(stage.actuatorMv(StageModel::X), qint16(5000));
    QCOMPARE(stage.positionMv(StageModel::X), qint16(0));
}

void TestStabilisation::intensityFollowsTheBeam()
{
    StageModel stage = calmStage();
    stage.setOn(true);
    stage.advance(beamStepsPerSecond);
    QCOMPARE(stage.intensityMv(), quint16(4000));

    stage.setAdjustIn(StageModel::Y, 3000);
    stage.advance(beamStepsPerSecond);
    QCOMPARE(stage.intensityMv(), quint16(3900));
}

void TestStabilisation::stageWithoutLightIsNotActive()
{
    StageModel stage = calmStage(DetectorKind::Quadrant);
    stage.setOn(true);
    stage.advance(10);
    QVERIFY(stage.isActive());

    BeamPreset dark;
    dark.blocksPerHour = 1e9;
    StageModel blocked = stageOn(DetectorKind::Quadrant, dark);
    blocked.setOn(true);
    blocked.advance(10);
    QCOMPARE(blocked.intensityMv(), quint16(0));
    QVERIFY(!blocked.isActive());
}

void TestStabilisation::blockedBeamIsReadAsNothing()
{
    BeamPreset dark;
    dark.blocksPerHour = 1e9;
    StageOptions options;
    options.offsetXUm = 30.0;
    for (const DetectorKind kind :
         {DetectorKind::LateralEffect, DetectorKind::Quadrant, DetectorKind::Psd}) {
        options.detector = kind;
        StageModel stage(dark, options, 4000.0, seed);
        stage.advance(beamStepsPerSecond / 10);

        QCOMPARE(stage.positionMv(StageModel::X), qint16(0));
        QCOMPARE(stage.beamMicrometres(StageModel::X), 30.0);
    }
}

void TestStabilisation::loopHoldsTheBeamAlikeOnEveryDetector_data()
{
    QTest::addColumn<DetectorKind>("kind");

    QTest::newRow("quadrant") << DetectorKind::Quadrant;
    QTest::newRow("4QD") << DetectorKind::FourQuadrant;
    QTest::newRow("PSD") << DetectorKind::Psd;
    QTest::newRow("WID") << DetectorKind::Wid;
    QTest::newRow("UV PSD (4mm)") << DetectorKind::UvPsd4mm;
    QTest::newRow("UV PSD (10mm)") << DetectorKind::UvPsd10mm;
}

void TestStabilisation::loopHoldsTheBeamAlikeOnEveryDetector()
{
    QFETCH(DetectorKind, kind);
    // The millivolts of the types differ up to two hundred times, so that the beam itself is
    // looked at.
    const auto rmsOn = [](DetectorKind detector) {
        StageModel stage = stageOn(detector, beamPreset(Preset::Typical));
        stage.setOn(true);
        stage.advance(beamStepsPerSecond);
        std::vector<double> places;
        for (int i = 0; i < 5000; ++i) {
            stage.advance(10);
            places.push_back(stage.beamMicrometres(StageModel::X));
        }
        return rmsOf(places);
    };

    const double expected = rmsOn(DetectorKind::LateralEffect);

    QVERIFY(isWithin(rmsOn(kind), expected, 0.02));
}

void TestStabilisation::offsetMovesTheUndisturbedBeam()
{
    StageOptions options;
    options.offsetXUm = 20.0;
    options.offsetYUm = -10.0;
    StageModel stage(BeamPreset(), options, 4000.0, seed);
    QCOMPARE(stage.beamMicrometres(StageModel::X), 20.0);
    QCOMPARE(stage.positionMv(StageModel::X), qint16(1000));
    QCOMPARE(stage.positionMv(StageModel::Y), qint16(-500));

    stage.setOn(true);
    stage.advance(beamStepsPerSecond);

    QCOMPARE(stage.positionMv(StageModel::X), qint16(0));
    // 20 micrometres are a quarter of the travel.
    QCOMPARE(stage.actuatorMv(StageModel::X), qint16(3750));
}

void TestStabilisation::inputsCanBeMovedWhileTheLoopWorks()
{
    StageModel stage = calmStage();
    stage.setOn(true);
    stage.advance(beamStepsPerSecond);
    QCOMPARE(stage.positionMv(StageModel::X), qint16(0));

    ExternalInputs inputs;
    inputs.adjustInXMv = 700;
    inputs.adjustInYMv = -200;
    inputs.sensitivityMv = 2000;
    stage.setInputs(inputs);
    stage.advance(beamStepsPerSecond);

    QCOMPARE(stage.positionMv(StageModel::X), qint16(700));
    QCOMPARE(stage.positionMv(StageModel::Y), qint16(-200));
    // At twice the sensitivity a micrometre is 100 mV.
    QVERIFY(std::fabs(stage.beamMicrometres(StageModel::X) - 7.0) < 0.001);
}

QTEST_GUILESS_MAIN(TestStabilisation)
#include "tst_stabilisation.moc"
