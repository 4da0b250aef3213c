#include "emulator/detectormodel.h"
#include "emulator/device.h"
#include "emulator/disturbance.h"
#include "emulator/noisesource.h"
#include "emulator/portablemath.h"
#include "emulator/stabilisationloop.h"
#include "emulator/stagemodel.h"
#include "spectrum.h"
#include "wiretools.h"

#include <QtTest>

#include <cmath>

using namespace emulator;
using namespace wiretools;

Q_DECLARE_METATYPE(emulator::Preset)

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr quint64 seed = 21;

bool isWithin(double value, double expected, double share)
{
    return std::fabs(value - expected) <= share * std::fabs(expected);
}

/// Every `every`th value of a disturbance.
std::function<double()> sampled(Disturbance& disturbance, int every)
{
    return [&disturbance, every] {
        double value = 0.0;
        for (int i = 0; i < every; ++i)
            value = disturbance.next();
        return value;
    };
}

double rmsOf(const std::vector<double>& values)
{
    double sum = 0.0;
    double squares = 0.0;
    for (const double value : values) {
        sum += value;
        squares += value * value;
    }
    const auto count = static_cast<double>(values.size());
    return std::sqrt(squares / count - sum * sum / count / count);
}

double meanOf(const std::vector<double>& values)
{
    double sum = 0.0;
    for (const double value : values)
        sum += value;
    return sum / static_cast<double>(values.size());
}

/// The x positions of a stream of 500 samples per second.
std::vector<double> stream(StageModel& stage, double seconds, StageModel::Axis axis = StageModel::X)
{
    std::vector<double> values;
    for (int i = 0; i < seconds * 500; ++i) {
        stage.advance(beamStepsPerSecond / 500);
        values.push_back(stage.positionMv(axis));
    }
    return values;
}

StageModel typicalStage(quint64 stageSeed = seed)
{
    return StageModel(beamPreset(Preset::Typical), DetectorKind::LateralEffect, 4000.0, stageSeed);
}

/// A stage whose beam stands still.
StageModel calmStage(DetectorKind detector = DetectorKind::LateralEffect)
{
    return StageModel(BeamPreset(), detector, 4000.0, seed);
}

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

class TestBeam final : public QObject
{
    Q_OBJECT

private slots:
    void elementaryFunctionsAreRight();
    void randomNumbersAreThoseOfEveryPlatform();
    void gaussianNumbersHaveUnitVariance();
    void airHasItsRmsAndSlope_data();
    void airHasItsRmsAndSlope();
    void mountLinesHaveTheirRms_data();
    void mountLinesHaveTheirRms();
    void acousticLinesHaveTheirRms_data();
    void acousticLinesHaveTheirRms();
    void mainsLinesAreCoherent();
    void whiteNoiseHasItsDensity_data();
    void whiteNoiseHasItsDensity();
    void driftWalksAsFarAsItsPreset();
    void driftSwingsOverADayAndMoreVertically();
    void stepsAreRareAndOfTheirSize();
    void intensityHasItsNoise();
    void beamIsBlockedAndWeakened();
    void seedDecidesTheBeam();
    void beamDoesNotDependOnTheRate();
    void quadrantSignalFollowsTheErrorFunction_data();
    void quadrantSignalFollowsTheErrorFunction();
    void lateralSignalIsLinearAndClipped();
    void lightFallsOffTheDetector();
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
};

void TestBeam::elementaryFunctionsAreRight()
{
    for (double x = -20.0; x <= 20.0; x += 0.37) {
        QVERIFY(isWithin(portable::exponential(x), std::exp(x), 1e-14));
        QVERIFY(std::fabs(portable::sine(x) - std::sin(x)) < 1e-14);
        QVERIFY(std::fabs(portable::cosine(x) - std::cos(x)) < 1e-14);
        QVERIFY(std::fabs(portable::errorFunction(x) - std::erf(x)) < 2e-7);
        QVERIFY(isWithin(portable::logarithm(std::exp(x)), x, 1e-13));
    }
}

void TestBeam::randomNumbersAreThoseOfEveryPlatform()
{
    // 10000th number of the generator with its own default seed, from the C++ standard.
    std::mt19937_64 standard;
    standard.discard(9999);
    QCOMPARE(quint64(standard()), Q_UINT64_C(9981545732273789042));
    NoiseSource noise(1);
    double sum = 0.0;
    for (int i = 0; i < 1000; ++i)
        sum += noise.gaussian();
    QCOMPARE(QByteArray::number(sum, 'g', 17), QByteArray("41.257542100371353"));
}

void TestBeam::gaussianNumbersHaveUnitVariance()
{
    NoiseSource noise(seed);
    constexpr int count = 200000;
    double squares = 0.0;
    double fourths = 0.0;
    int beyondTwo = 0;
    for (int i = 0; i < count; ++i) {
        const double value = noise.gaussian();
        squares += value * value;
        fourths += value * value * value * value;
        beyondTwo += std::fabs(value) > 2.0 ? 1 : 0;
    }
    QVERIFY(isWithin(squares / count, 1.0, 0.02));
    QVERIFY(isWithin(fourths / count, 3.0, 0.05));
    QVERIFY(isWithin(static_cast<double>(beyondTwo) / count, 0.0455, 0.05));
}

void TestBeam::airHasItsRmsAndSlope_data()
{
    QTest::addColumn<Preset>("preset");
    QTest::addColumn<double>("rms");

    QTest::newRow("quiet") << Preset::Quiet << 0.3;
    QTest::newRow("typical") << Preset::Typical << 2.0;
    QTest::newRow("noisy") << Preset::Noisy << 10.0;
}

void TestBeam::airHasItsRmsAndSlope()
{
    QFETCH(Preset, preset);
    QFETCH(double, rms);
    BeamPreset only;
    only.airRms = beamPreset(preset).airRms;
    Disturbance disturbance(only, BeamAxis::Horizontal, seed);

    constexpr int every = 20;
    const Spectrum spectrum(sampled(disturbance, every), beamStepsPerSecond / double(every), 16384,
                            20);

    QVERIFY2(isWithin(spectrum.rms(0.1, 50.0), rms, 0.1),
             qPrintable(QString::number(spectrum.rms(0.1, 50.0))));
    constexpr double exponent = -1.2;
    QVERIFY2(std::fabs(spectrum.slope(0.1, 50.0) - exponent) < 0.1,
             qPrintable(QString::number(spectrum.slope(0.1, 50.0))));
}

void TestBeam::mountLinesHaveTheirRms_data()
{
    QTest::addColumn<Preset>("preset");
    QTest::addColumn<double>("rms");

    QTest::newRow("quiet") << Preset::Quiet << 0.1;
    QTest::newRow("typical") << Preset::Typical << 1.0;
    QTest::newRow("noisy") << Preset::Noisy << 5.0;
}

void TestBeam::mountLinesHaveTheirRms()
{
    QFETCH(Preset, preset);
    QFETCH(double, rms);
    BeamPreset only;
    only.mountsRms = beamPreset(preset).mountsRms;
    Disturbance disturbance(only, BeamAxis::Horizontal, seed);

    constexpr int every = 20;
    const Spectrum spectrum(sampled(disturbance, every), beamStepsPerSecond / double(every), 4096,
                            40);

    QVERIFY(isWithin(spectrum.rms(1.0, 100.0), rms, 0.1));
    for (const double hz : {12.0, 24.0, 37.0})
        QVERIFY(isWithin(spectrum.rms(hz - 4.0, hz + 4.0), rms / std::sqrt(3.0), 0.15));
}

void TestBeam::acousticLinesHaveTheirRms_data()
{
    QTest::addColumn<Preset>("preset");
    QTest::addColumn<double>("rms");

    QTest::newRow("quiet") << Preset::Quiet << 0.02;
    QTest::newRow("typical") << Preset::Typical << 0.2;
    QTest::newRow("noisy") << Preset::Noisy << 1.0;
}

void TestBeam::acousticLinesHaveTheirRms()
{
    QFETCH(Preset, preset);
    QFETCH(double, rms);
    BeamPreset only;
    only.acousticsRms = beamPreset(preset).acousticsRms;
    Disturbance disturbance(only, BeamAxis::Horizontal, seed);

    constexpr int every = 4;
    const Spectrum spectrum(sampled(disturbance, every), beamStepsPerSecond / double(every), 4096,
                            40);

    QVERIFY(isWithin(spectrum.rms(50.0, 600.0), rms, 0.1));
    for (const double hz : {85.0, 140.0, 210.0, 330.0, 480.0})
        QVERIFY(isWithin(spectrum.rms(hz - 20.0, hz + 20.0), rms / std::sqrt(5.0), 0.15));
}

void TestBeam::mainsLinesAreCoherent()
{
    BeamPreset only;
    only.mainsAmplitude = beamPreset(Preset::Typical).mainsAmplitude;
    Disturbance disturbance(only, BeamAxis::Horizontal, seed);
    constexpr int period = beamStepsPerSecond / 50;

    for (int step = 0; step < 3 * period; ++step) {
        const double phase = 2.0 * pi * step / period;
        const double expected = 0.05 * (std::sin(phase) + std::sin(2.0 * phase));
        QVERIFY(std::fabs(disturbance.next() - expected) < 1e-12);
    }
}

void TestBeam::whiteNoiseHasItsDensity_data()
{
    QTest::addColumn<Preset>("preset");
    QTest::addColumn<double>("micrometresPerRootHertz");

    QTest::newRow("quiet") << Preset::Quiet << 0.002;
    QTest::newRow("typical") << Preset::Typical << 0.008;
    QTest::newRow("noisy") << Preset::Noisy << 0.050;
}

void TestBeam::whiteNoiseHasItsDensity()
{
    QFETCH(Preset, preset);
    QFETCH(double, micrometresPerRootHertz);
    BeamPreset only;
    only.whiteDensity = beamPreset(preset).whiteDensity;
    StageModel stage(only, DetectorKind::LateralEffect, 4000.0, seed);
    const auto raw = [&stage] {
        stage.advance(1);
        return stage.rawPositionMv(StageModel::X) / signalMvPerMicrometre;
    };

    const Spectrum spectrum(raw, beamStepsPerSecond, 4096, 20);

    for (const double low : {20.0, 500.0, 1500.0}) {
        const double expected = micrometresPerRootHertz * std::sqrt(500.0);
        QVERIFY(isWithin(spectrum.rms(low, low + 500.0), expected, 0.1));
    }
}

void TestBeam::driftWalksAsFarAsItsPreset()
{
    BeamPreset only;
    only.driftWalk = beamPreset(Preset::Typical).driftWalk;
    constexpr int minutes = 10;
    std::vector<double> ends;
    for (quint64 run = 0; run < 300; ++run) {
        NoiseSource noise(derivedSeed(seed, run));
        SlowDrift drift(only, BeamAxis::Horizontal, noise);
        double end = 0.0;
        for (int move = 0; move < minutes * 60 * SlowDrift::movesPerSecond; move += 100) {
            for (int i = 0; i < 100; ++i)
                end = drift.next(noise);
        }
        ends.push_back(end);
    }

    QVERIFY(isWithin(rmsOf(ends), 5.0 * std::sqrt(minutes / 60.0), 0.1));
}

void TestBeam::driftSwingsOverADayAndMoreVertically()
{
    BeamPreset only;
    only.driftDaily = beamPreset(Preset::Noisy).driftDaily;
    for (const BeamAxis axis : {BeamAxis::Horizontal, BeamAxis::Vertical}) {
        NoiseSource noise(seed);
        SlowDrift drift(only, axis, noise);
        double least = 0.0;
        double greatest = 0.0;
        for (int move = 0; move < 24 * 3600 * SlowDrift::movesPerSecond; ++move) {
            const double value = drift.next(noise);
            least = std::min(least, value);
            greatest = std::max(greatest, value);
        }
        const double amplitude = axis == BeamAxis::Horizontal ? 20.0 : 60.0;
        QVERIFY(isWithin(greatest, amplitude, 0.001));
        QVERIFY(isWithin(least, -amplitude, 0.001));
    }
}

void TestBeam::stepsAreRareAndOfTheirSize()
{
    BeamPreset only;
    only.stepsPerHour = beamPreset(Preset::Noisy).stepsPerHour;
    NoiseSource noise(seed);
    SlowDrift drift(only, BeamAxis::Horizontal, noise);
    constexpr int hours = 20;
    int steps = 0;
    double last = 0.0;
    for (int move = 0; move < hours * 3600 * SlowDrift::movesPerSecond; ++move) {
        const double value = drift.next(noise);
        const double size = std::fabs(value - last);
        last = value;
        if (size > 0.0) {
            ++steps;
            QVERIFY(size >= 2.0 - 1e-9 && size <= 10.0 + 1e-9);
        }
    }
    // Poisson: 200 expected, with a spread of 14.
    QVERIFY2(steps > 150 && steps < 250, qPrintable(QString::number(steps)));
}

void TestBeam::intensityHasItsNoise()
{
    for (const auto& [preset, share] :
         {std::pair(Preset::Quiet, 0.001), std::pair(Preset::Typical, 0.003),
          std::pair(Preset::Noisy, 0.01)}) {
        BeamPreset only;
        only.intensityRms = beamPreset(preset).intensityRms;
        StageModel stage(only, DetectorKind::LateralEffect, 4000.0, seed);
        std::vector<double> intensities;
        for (int i = 0; i < 20000; ++i) {
            stage.advance(10);
            intensities.push_back(stage.intensityMv());
        }
        QVERIFY(isWithin(rmsOf(intensities), share * 4000.0, 0.1));
        QVERIFY(isWithin(meanOf(intensities), 4000.0, 0.01));
    }
}

void TestBeam::beamIsBlockedAndWeakened()
{
    BeamPreset only;
    only.blocksPerHour = 500.0;
    only.dipsPerHour = 500.0;
    StageModel stage(only, DetectorKind::LateralEffect, 4000.0, seed);
    stage.setOn(true);
    QMap<int, int> seen;
    for (int i = 0; i < 100 * 300; ++i) {
        stage.advance(beamStepsPerSecond / 100);
        ++seen[stage.intensityMv()];
        QCOMPARE(stage.isActive(), stage.intensityMv() > 0);
    }

    QCOMPARE(seen.keys(), QList<int>({0, 2800, 4000}));
    QVERIFY(seen[4000] > seen[0]);
}

void TestBeam::seedDecidesTheBeam()
{
    StageModel first = typicalStage(1);
    StageModel again = typicalStage(1);
    StageModel other = typicalStage(2);
    bool differs = false;
    for (int i = 0; i < 5000; ++i) {
        first.advance(3);
        again.advance(3);
        other.advance(3);
        for (const StageModel::Axis axis : {StageModel::X, StageModel::Y}) {
            QVERIFY(first.rawPositionMv(axis) == again.rawPositionMv(axis));
            QCOMPARE(first.actuatorMv(axis), again.actuatorMv(axis));
            differs = differs || first.rawPositionMv(axis) != other.rawPositionMv(axis);
        }
        QCOMPARE(first.intensityMv(), again.intensityMv());
        if (i == 1000) {
            first.setOn(true);
            again.setOn(true);
        }
    }
    QVERIFY(differs);
}

void TestBeam::beamDoesNotDependOnTheRate()
{
    const auto packetsAt = [](int rate, int count) {
        Device device({}, "KEY");
        QByteArrayList packets;
        packets.append(device.execute(parseCommand(startAt(rate)).command).reply);
        while (packets.size() < count)
            packets.append(device.nextPacket());
        return packets;
    };

    const QByteArrayList fast = packetsAt(500, 300);
    const QByteArrayList slow = packetsAt(100, 60);
    const QByteArrayList odd = packetsAt(300, 180);

    for (int i = 0; i < 60; ++i) {
        QCOMPARE(slow[i], fast[5 * i + 4]);
        QCOMPARE(slow[i], odd[3 * i + 2]);
    }
}

void TestBeam::quadrantSignalFollowsTheErrorFunction_data()
{
    QTest::addColumn<double>("position");
    QTest::addColumn<double>("signal");

    // Off the straight line of slope 1.596 by 1 %, 5 % and 10 %.
    QTest::newRow("1 % below the line") << 0.123 << 0.99 * 1.596 * 0.123;
    QTest::newRow("5 % below the line") << 0.280 << 0.95 * 1.596 * 0.280;
    QTest::newRow("10 % below the line") << 0.406 << 0.90 * 1.596 * 0.406;
    QTest::newRow("half") << 0.337 << 0.5;
    QTest::newRow("nearly all") << 1.288 << 0.99;
}

void TestBeam::quadrantSignalFollowsTheErrorFunction()
{
    QFETCH(double, position);
    QFETCH(double, signal);

    QVERIFY(std::fabs(quadrantSignal(position, 1.0) - signal) < 0.001);
    QVERIFY(std::fabs(quadrantSignal(-30.0 * position, 30.0) + signal) < 0.001);
    // In the middle both kinds of detector show the same.
    QVERIFY(
        isWithin(positionSignalMv(DetectorKind::Quadrant, 1.0, 1.0), signalMvPerMicrometre, 0.001));
}

void TestBeam::lateralSignalIsLinearAndClipped()
{
    QCOMPARE(positionSignalMv(DetectorKind::LateralEffect, 80.0, 1.0), 4000.0);
    QCOMPARE(positionSignalMv(DetectorKind::LateralEffect, -80.0, 0.5), -2000.0);
    QCOMPARE(clippedToRange(5001.0), 5000.0);
    QCOMPARE(clippedToRange(-6000.0), -5000.0);
}

void TestBeam::lightFallsOffTheDetector()
{
    QCOMPARE(lightOnDetector(0.0), 1.0);
    QVERIFY(isWithin(lightOnDetector(60.0), 0.975, 1e-9));
    QVERIFY(isWithin(lightOnDetector(activeHalfLengthMicrometres), 0.45, 1e-6));
    QVERIFY(lightOnDetector(-activeHalfLengthMicrometres - 30.0) < 0.01);
}

void TestBeam::loopSuppressesInProportionToFrequency()
{
    QVERIFY(isWithin(suppression(200.0, 2.0), 0.01, 0.1));
    QVERIFY(isWithin(suppression(200.0, 20.0), 0.1, 0.1));
    QVERIFY(isWithin(suppression(100.0, 20.0), 0.2, 0.1));
}

void TestBeam::loopAmplifiesAroundItsBandwidth_data()
{
    QTest::addColumn<double>("bandwidthHz");

    QTest::newRow("50 Hz") << 50.0;
    QTest::newRow("200 Hz") << 200.0;
    QTest::newRow("400 Hz") << 400.0;
}

void TestBeam::loopAmplifiesAroundItsBandwidth()
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

void TestBeam::stabilisationReducesTheRmsMoreThanFiveTimes_data()
{
    QTest::addColumn<quint64>("stageSeed");

    for (quint64 number = 1; number <= 10; ++number)
        QTest::newRow(qPrintable(QString("seed %1").arg(number))) << number;
}

void TestBeam::stabilisationReducesTheRmsMoreThanFiveTimes()
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

void TestBeam::stabilisationShowsInThePackets()
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

void TestBeam::actuatorsMoveAgainstTheBeam()
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

void TestBeam::beamDriftsAgainWhenSwitchedOff()
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

void TestBeam::pFactorSetsTheSuppression()
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

void TestBeam::adjustInMovesTheTarget()
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

void TestBeam::actuatorSaturatesAndTheStageIsNotActive()
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

void TestBeam::holdMakesThePresentPositionTheTarget()
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

void TestBeam::sensitivityScalesTheSignals()
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

void TestBeam::drivenActuatorMovesTheBeam()
{
    StageModel stage = calmStage();
    stage.driveActuator(StageModel::Y, 2500);
    stage.advance(beamStepsPerSecond);

    QCOMPARE(stage.actuatorMv(StageModel::Y), qint16(7500));
    QCOMPARE(stage.positionMv(StageModel::Y), qint16(2000));
    QCOMPARE(stage.positionMv(StageModel::X), qint16(0));
}

void TestBeam::stageTakesOverADrivenActuator()
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

void TestBeam::intensityFollowsTheBeam()
{
    StageModel stage = calmStage();
    stage.setOn(true);
    stage.advance(beamStepsPerSecond);
    QCOMPARE(stage.intensityMv(), quint16(4000));

    stage.setAdjustIn(StageModel::Y, 3000);
    stage.advance(beamStepsPerSecond);
    QCOMPARE(stage.intensityMv(), quint16(3900));
}

void TestBeam::stageWithoutLightIsNotActive()
{
    StageModel stage = calmStage(DetectorKind::Quadrant);
    stage.setOn(true);
    stage.advance(10);
    QVERIFY(stage.isActive());

    BeamPreset dark;
    dark.blocksPerHour = 1e9;
    StageModel blocked(dark, DetectorKind::Quadrant, 4000.0, seed);
    blocked.setOn(true);
    blocked.advance(10);
    QCOMPARE(blocked.intensityMv(), quint16(0));
    QVERIFY(!blocked.isActive());
}

QTEST_GUILESS_MAIN(TestBeam)
#include "tst_beam.moc"
