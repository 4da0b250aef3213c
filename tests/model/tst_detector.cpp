#include "model/detector.h"

#include <QtTest>

#include <cmath>

Q_DECLARE_METATYPE(PositionUnit)

namespace {

std::unique_ptr<Detector> detectorOfType(int typeCode, double beamDiameterUm, int calculation)
{
    return makeDetector(typeCode, Detector(beamDiameterUm, calculation));
}

} // namespace

class TestDetector : public QObject
{
    Q_OBJECT

private slots:
    void propertiesFollowTypeAndFlag_data();
    void propertiesFollowTypeAndFlag();
    void everyTypeShowsVoltsWithoutCalculation_data();
    void everyTypeShowsVoltsWithoutCalculation();
    void linearDetectorsScaleTheSignal_data();
    void linearDetectorsScaleTheSignal();
    void quadrantDetectorGivesZeroForRatioZero();
    void quadrantDetectorFollowsTheInverseErrorFunction();
    void quadrantDetectorIsOdd();
    void quadrantDetectorIsInfiniteAtTheIntensity();
    void quadrantDetectorIsNotANumberBeyondTheIntensity();
    void quadrantDetectorPassesOnAnIntensityOfZero();
    void inverseErfUsesTheStoredConstant();
    void inverseErfIsCloseToTheTrueInverse();
    void quadrantLimitsAreHalfTheBeamDiameter();
    void plainDetectorIgnoresTheFlag();
    void quadrantTypesAreOneAndThree();
    void psdTypesAreTwoFourAndFive();
    void unknownTypeMakesNoDetector();
    void everyKindStandsAtItsTypeCode();
    void everyKindHasItsName();
    void unitsHaveTheirNumbers();
};

void TestDetector::propertiesFollowTypeAndFlag_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("usesBeamDiameter");
    QTest::addColumn<bool>("supportsAdjustIn");
    QTest::addColumn<int>("recordDecimals");
    QTest::addColumn<int>("displayDecimals");
    QTest::addColumn<double>("maxPosition");
    QTest::addColumn<PositionUnit>("unitCode");
    QTest::addColumn<QString>("unit");

    QTest::newRow("none") << 0 << false << false << 3 << 2 << 5.0 << PositionUnit::Volt << "V";
    QTest::newRow("4QD") << 1 << true << false << 2 << 1 << 40.0 << PositionUnit::Micrometre
                         << "µm";
    QTest::newRow("PSD") << 2 << false << true << 4 << 3 << 4.5 << PositionUnit::Millimetre << "mm";
    QTest::newRow("WID") << 3 << true << false << 2 << 1 << 40.0 << PositionUnit::Micrometre
                         << "µm";
    QTest::newRow("UV PSD 4 mm") << 4 << false << true << 4 << 3 << 4.5 << PositionUnit::Millimetre
                                 << "mm";
    QTest::newRow("UV PSD 10 mm") << 5 << false << true << 4 << 3 << 4.5 << PositionUnit::Millimetre
                                  << "mm";
}

void TestDetector::propertiesFollowTypeAndFlag()
{
    QFETCH(int, type);
    QFETCH(double, maxPosition);
    const auto detector = detectorOfType(type, 80.0, 1);

    QCOMPARE(detector->typeCode(), type);
    QTEST(detector->usesBeamDiameter(), "usesBeamDiameter");
    QTEST(detector->supportsAdjustIn(), "supportsAdjustIn");
    QTEST(detector->recordDecimals(), "recordDecimals");
    QTEST(detector->displayDecimals(), "displayDecimals");
    QCOMPARE(detector->maxPosition(), maxPosition);
    QCOMPARE(detector->minPosition(), -maxPosition);
    QTEST(detector->unitCode(), "unitCode");
    QTEST(detector->unit(), "unit");
}

void TestDetector::everyTypeShowsVoltsWithoutCalculation_data()
{
    QTest::addColumn<int>("type");
    for (const DetectorKind& kind : detectorKinds())
        QTest::newRow(kind.name) << int(kind.type);
}

void TestDetector::everyTypeShowsVoltsWithoutCalculation()
{
    QFETCH(int, type);
    const auto detector = detectorOfType(type, 80.0, 0);

    QCOMPARE(detector->unit(), QStringLiteral("V"));
    QCOMPARE(detector->unitCode(), PositionUnit::Volt);
    QCOMPARE(detector->recordDecimals(), 3);
    QCOMPARE(detector->displayDecimals(), 2);
    QCOMPARE(detector->maxPosition(), 5.0);
    QCOMPARE(detector->minPosition(), -5.0);
}

void TestDetector::linearDetectorsScaleTheSignal_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<double>("expected");
    QTest::newRow("none") << 0 << 0.0;
    QTest::newRow("PSD") << 2 << 3.0 / 1.2;
    QTest::newRow("UV PSD 4 mm") << 4 << 3.0 / 2.9;
    QTest::newRow("UV PSD 10 mm") << 5 << 3.0 / 1.1;
    QTest::newRow("WID, default diameter") << 3 << 3.0 * 50.0 / 6.5;
}

void TestDetector::linearDetectorsScaleTheSignal()
{
    QFETCH(int, type);
    QFETCH(double, expected);
    const auto detector = detectorOfType(type, Detector::defaultBeamDiameterUm, 1);

    QCOMPARE(detector->calculatePosition(3.0, 0.5), expected);
}

void TestDetector::quadrantDetectorGivesZeroForRatioZero()
{
    for (const double diameterUm : {0.1, 50.0, 10000.0}) {
        const auto detector = detectorOfType(QuadrantDetector, diameterUm, 1);
        QVERIFY(detector->calculatePosition(0.0, 2.0) == 0.0);
    }
}

void TestDetector::quadrantDetectorFollowsTheInverseErrorFunction()
{
    const auto detector = detectorOfType(QuadrantDetector, 50.0, 1);

    const double position = detector->calculatePosition(1.0, 2.0);

    QVERIFY(std::abs(position - 8.43) < 0.005);
    // The displacement of a beam whose difference signal is erf is found again.
    QVERIFY(std::abs(std::erf(position / (50.0 * 0.35355339059327373)) - 0.5) < 0.002);
}

void TestDetector::quadrantDetectorIsOdd()
{
    const auto detector = detectorOfType(QuadrantDetector, 50.0, 1);
    QCOMPARE(detector->calculatePosition(-1.0, 2.0), -detector->calculatePosition(1.0, 2.0));
}

void TestDetector::quadrantDetectorIsInfiniteAtTheIntensity()
{
    const auto detector = detectorOfType(QuadrantDetector, 50.0, 1);
    QCOMPARE(detector->calculatePosition(2.0, 2.0), qInf());
    QCOMPARE(detector->calculatePosition(-2.0, 2.0), -qInf());
}

void TestDetector::quadrantDetectorIsNotANumberBeyondTheIntensity()
{
    const auto detector = detectorOfType(QuadrantDetector, 50.0, 1);
    QVERIFY(std::isnan(detector->calculatePosition(2.1, 2.0)));
}

void TestDetector::quadrantDetectorPassesOnAnIntensityOfZero()
{
    const auto detector = detectorOfType(QuadrantDetector, 50.0, 1);
    QVERIFY(!std::isfinite(detector->calculatePosition(1.0, 0.0)));
}

void TestDetector::inverseErfUsesTheStoredConstant()
{
    // With 2 / (pi a) instead of the stored constant the tenth digit is another one.
    const double l = std::log(1.0 - 0.9) + std::log(1.0 + 0.9);
    const double t = 0.5 * l + 4.330746750923655;
    const double expected = std::sqrt(std::sqrt(t * t - 6.802721088435375 * l) - t);

    QVERIFY(inverseErf(0.9) == expected);
    QVERIFY(inverseErf(-0.9) == -expected);
}

void TestDetector::inverseErfIsCloseToTheTrueInverse()
{
    for (double x = -0.95; x < 1.0; x += 0.05)
        QVERIFY(std::abs(std::erf(inverseErf(x)) - x) < 0.003);
}

void TestDetector::quadrantLimitsAreHalfTheBeamDiameter()
{
    const auto detector = detectorOfType(WidDetector, 120.0, 1);
    QCOMPARE(detector->maxPosition(), 60.0);
    QCOMPARE(detector->minPosition(), -60.0);
}

void TestDetector::plainDetectorIgnoresTheFlag()
{
    const Detector detector(50.0, 1);
    QCOMPARE(detector.unit(), QStringLiteral("V"));
    QCOMPARE(detector.maxPosition(), 5.0);
    QCOMPARE(detector.minPosition(), -5.0);
    QCOMPARE(detector.calculatePosition(1.0, 1.0), 0.0);
}

void TestDetector::quadrantTypesAreOneAndThree()
{
    for (int type = -1; type <= 6; ++type)
        QCOMPARE(isQuadrantType(type), type == 1 || type == 3);
}

void TestDetector::psdTypesAreTwoFourAndFive()
{
    for (int type = -1; type <= 6; ++type)
        QCOMPARE(isPsdType(type), type == 2 || type == 4 || type == 5);
}

void TestDetector::unknownTypeMakesNoDetector()
{
    QVERIFY(!makeDetector(6, Detector()));
    QVERIFY(!makeDetector(-1, Detector()));
}

void TestDetector::everyKindStandsAtItsTypeCode()
{
    for (int code = 0; code < detectorKindCount; ++code) {
        QVERIFY(isDetectorType(code));
        QCOMPARE(int(detectorKinds()[std::size_t(code)].type), code);
        QCOMPARE(makeDetector(code, Detector())->typeCode(), code);
    }
    QVERIFY(!isDetectorType(-1));
    QVERIFY(!isDetectorType(6));
}

void TestDetector::everyKindHasItsName()
{
    QStringList names;
    for (const DetectorKind& kind : detectorKinds())
        names.append(kind.name);
    QCOMPARE(names, QStringList({"select", "4QD", "PSD", "WID", "UV PSD (4mm)", "UV PSD (10mm)"}));
}

void TestDetector::unitsHaveTheirNumbers()
{
    QCOMPARE(int(PositionUnit::Volt), 0);
    QCOMPARE(int(PositionUnit::Micrometre), 1);
    QCOMPARE(int(PositionUnit::Millimetre), 2);
}

QTEST_GUILESS_MAIN(TestDetector)
#include "tst_detector.moc"
