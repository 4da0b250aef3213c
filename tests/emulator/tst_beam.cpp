#include "beamtools.h"
#include "emulator/detectormodel.h"
#include "emulator/device.h"
#include "emulator/disturbance.h"
#include "emulator/noisesource.h"
#include "emulator/portablemath.h"
#include "emulator/stagemodel.h"
#include "spectrum.h"
#include "wiretools.h"

#include <QtTest>

#include <functional>

using namespace beamtools;
using namespace emulator;
using namespace wiretools;

Q_DECLARE_METATYPE(emulator::Preset)

namespace {

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

/// A detector of a general kind, which has a spot and an intensity of its own.
DetectorModel generalDetector(DetectorKind kind)
{
    constexpr double anyDiameterUm = 1.0;
    constexpr double anyIntensityMv = 1.0;
    return DetectorModel(kind, anyDiameterUm, anyIntensityMv);
}

} // namespace

class TestBeam final : public QObject
{
    Q_OBJECT

private slots:
    void elementaryFunctionsAreRight();
    void randomNumbersAreThoseOfEveryPlatform();
    void gaussianNumbersHaveUnitVariance();
    void seedGivesTheseVeryPackets();
    void presetsHaveTheirFigures_data();
    void presetsHaveTheirFigures();
    void airHasItsRmsAndSlope_data();
    void airHasItsRmsAndSlope();
    void mountLinesHaveTheirRms_data();
    void mountLinesHaveTheirRms();
    void acousticLinesHaveTheirRms_data();
    void acousticLinesHaveTheirRms();
    void mainsLinesAreCoherent_data();
    void mainsLinesAreCoherent();
    void whiteNoiseHasItsDensity_data();
    void whiteNoiseHasItsDensity();
    void driftWalksAsFarAsItsPreset();
    void driftSwingsOverADayAndMoreVertically();
    void stepsAreRareAndOfTheirSize();
    void intensityHasItsNoise();
    void beamIsBlockedAndWeakened();
    void interruptionsLastFromATenthOfASecondToFive();
    void seedDecidesTheBeam();
    void beamDoesNotDependOnTheRate();
    void beamRestsWithoutPulses();
    void quadrantSignalFollowsTheErrorFunction_data();
    void quadrantSignalFollowsTheErrorFunction();
    void lateralSignalIsLinearAndClipped();
    void lightFallsOffTheDetector();
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

void TestBeam::seedGivesTheseVeryPackets()
{
    // Taken down once; they are the same on every platform and with every compiler.
    ControllerOptions options;
    options.seed = 1;
    Device device(options, "KEY");
    device.execute(parseCommand("SEA" + hex("01 3b")).command);

    QCOMPARE(device.execute(parseCommand(startAt(500)).command).reply,
             hex("003b 28 00 0001 fff9 0fb6 018e fd36 0d9f 133a 1525 1388 1388 3b"));
    QCOMPARE(device.nextPacket(),
             hex("003b 28 00 fff2 fff8 0fb7 0173 fd4d 0d99 1339 1534 1388 1388 3b"));
    QCOMPARE(device.nextPacket(),
             hex("003b 28 00 fff3 0009 0faf 0163 fd62 0d9f 1373 1529 1388 1388 3b"));
    constexpr int laterPackets = 5000;
    for (int packet = 0; packet < laterPackets; ++packet)
        device.nextPacket();
    QCOMPARE(device.nextPacket(),
             hex("003b 28 00 fff0 0006 0fa4 0072 fd5d 0da3 12f0 1509 1388 1388 3b"));
}

void TestBeam::presetsHaveTheirFigures_data()
{
    QTest::addColumn<Preset>("preset");
    QTest::addColumn<double>("microradiansAnHour");
    QTest::addColumn<double>("microradiansADay");
    QTest::addColumn<double>("mainsMicroradians");
    QTest::addColumn<double>("stepsAnHour");
    QTest::addColumn<bool>("interrupted");

    QTest::newRow("quiet") << Preset::Quiet << 1.0 << 1.0 << 0.01 << 0.0 << false;
    QTest::newRow("typical") << Preset::Typical << 5.0 << 5.0 << 0.05 << 1.0 << false;
    QTest::newRow("noisy") << Preset::Noisy << 30.0 << 20.0 << 0.3 << 10.0 << true;
}

void TestBeam::presetsHaveTheirFigures()
{
    QFETCH(Preset, preset);
    QFETCH(double, microradiansAnHour);
    QFETCH(double, microradiansADay);
    QFETCH(double, mainsMicroradians);
    QFETCH(double, stepsAnHour);
    QFETCH(bool, interrupted);

    const BeamPreset& figures = beamPreset(preset);

    QCOMPARE(figures.driftWalk, microradiansAnHour);
    QCOMPARE(figures.driftDaily, microradiansADay);
    QCOMPARE(figures.mainsAmplitude, mainsMicroradians);
    QCOMPARE(figures.stepsPerHour, stepsAnHour);
    QCOMPARE(figures.blocksPerHour > 0.0, interrupted);
    QCOMPARE(figures.dipsPerHour > 0.0, interrupted);
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

void TestBeam::mainsLinesAreCoherent_data()
{
    QTest::addColumn<Preset>("preset");
    QTest::addColumn<double>("amplitude");

    QTest::newRow("quiet") << Preset::Quiet << 0.01;
    QTest::newRow("typical") << Preset::Typical << 0.05;
    QTest::newRow("noisy") << Preset::Noisy << 0.3;
}

void TestBeam::mainsLinesAreCoherent()
{
    QFETCH(Preset, preset);
    QFETCH(double, amplitude);
    BeamPreset only;
    only.mainsAmplitude = beamPreset(preset).mainsAmplitude;
    Disturbance disturbance(only, BeamAxis::Horizontal, seed);
    constexpr int period = beamStepsPerSecond / 50;

    for (int step = 0; step < 3 * period; ++step) {
        const double phase = 2.0 * pi * step / period;
        const double expected = amplitude * (std::sin(phase) + std::sin(2.0 * phase));
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
    StageModel stage = stageOn(DetectorKind::LateralEffect, only);
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
        StageModel stage = stageOn(DetectorKind::LateralEffect, only);
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
    StageModel stage = stageOn(DetectorKind::LateralEffect, only);
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

void TestBeam::interruptionsLastFromATenthOfASecondToFive()
{
    BeamPreset only;
    only.blocksPerHour = 2000.0;
    only.dipsPerHour = 2000.0;
    StageModel stage = stageOn(DetectorKind::LateralEffect, only);
    std::vector<double> seconds;
    int begun = 0;
    quint16 last = stage.intensityMv();
    for (int step = 0; step < 200 * beamStepsPerSecond; ++step) {
        stage.advance(1);
        if (stage.intensityMv() == last)
            continue;
        if (last < 4000)
            seconds.push_back(double(step - begun) / beamStepsPerSecond);
        begun = step;
        last = stage.intensityMv();
    }

    // Evenly spread, they last 2.55 s on average, and begin 0.9 s behind the end of the last.
    QVERIFY(seconds.size() > 40);
    const auto [shortest, longest] = std::minmax_element(seconds.begin(), seconds.end());
    QVERIFY2(*shortest >= 0.0999 && *shortest < 0.5, qPrintable(QString::number(*shortest)));
    QVERIFY2(*longest <= 5.0001 && *longest > 4.5, qPrintable(QString::number(*longest)));
    QVERIFY(isWithin(meanOf(seconds), 2.55, 0.2));
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

void TestBeam::beamRestsWithoutPulses()
{
    ControllerOptions options;
    options.triggerCapable = true;
    options.triggerRateHz = 0;
    Device device(options, "KEY");
    QCOMPARE(device.execute(parseCommand("SPS" + hex("0000 3b")).command).reply, accepted());
    constexpr int firstValue = 4;

    const QByteArray sample = device.execute(parseCommand("S1S;").command).reply;
    const QByteArray last = device.execute(parseCommand("CLS;").command).lastPacket;

    QCOMPARE(last.mid(firstValue), sample.mid(firstValue));
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

    // Of a type that tells shares of the intensity: 1 mV.
    const auto share = [](double place, double radius) {
        return DetectorModel(DetectorKind::FourQuadrant, 2.0 * radius, 1.0)
            .positionSignalMv(place, 1.0);
    };
    QVERIFY(std::fabs(share(position, 1.0) - signal) < 0.001);
    QVERIFY(std::fabs(share(-30.0 * position, 30.0) + signal) < 0.001);
    // In the middle both general kinds of detector show the same.
    QVERIFY(isWithin(generalDetector(DetectorKind::Quadrant).positionSignalMv(1.0, 0.0),
                     signalMvPerMicrometre, 0.001));
}

void TestBeam::lateralSignalIsLinearAndClipped()
{
    DetectorModel detector = generalDetector(DetectorKind::LateralEffect);
    QCOMPARE(detector.positionSignalMv(80.0, 0.0), 4000.0);
    detector.setGain(0.5);
    QCOMPARE(detector.positionSignalMv(-80.0, 0.0), -2000.0);
    QCOMPARE(clippedToRange(5001.0), 5000.0);
    QCOMPARE(clippedToRange(-6000.0), -5000.0);
}

void TestBeam::lightFallsOffTheDetector()
{
    const DetectorModel detector = generalDetector(DetectorKind::LateralEffect);
    QCOMPARE(detector.lightOnDetector(0.0), 1.0);
    QVERIFY(isWithin(detector.lightOnDetector(60.0), 0.975, 1e-9));
    QVERIFY(isWithin(detector.lightOnDetector(activeHalfLengthMicrometres), 0.45, 1e-6));
    QVERIFY(detector.lightOnDetector(-activeHalfLengthMicrometres - 30.0) < 0.01);
}

QTEST_GUILESS_MAIN(TestBeam)
#include "tst_beam.moc"
