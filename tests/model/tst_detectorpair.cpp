#include "model/connectionsettings.h"
#include "model/detectorpair.h"

#include <QtTest>

class TestDetectorPair : public QObject
{
    Q_OBJECT

private slots:
    void newPairHasTwoPlainDetectors();
    void changeOfTypeKeepsDiameterAndFlag();
    void typeZeroKeepsTheFlagThatItIgnores();
    void badTypeLeavesNoDetector();
    void copyIsDeep();
    void recordMakesAPairAndBack();
};

void TestDetectorPair::newPairHasTwoPlainDetectors()
{
    const DetectorPair pair;
    for (std::size_t stage = 0; stage < 2; ++stage) {
        QCOMPARE(pair[stage]->typeCode(), 0);
        QCOMPARE(pair[stage]->beamDiameter, 50.0);
        QCOMPARE(pair[stage]->calculation, 0);
    }
    QCOMPARE(pair.pulsedLaser, 0);
}

void TestDetectorPair::changeOfTypeKeepsDiameterAndFlag()
{
    DetectorPair pair(PsdDetector, 1, SelectDetector, 0, 0, 80.0, 50.0);

    pair.setDetectorType(0, QuadrantDetector);

    QCOMPARE(pair[0]->typeCode(), 1);
    QCOMPARE(pair[0]->beamDiameter, 80.0);
    QCOMPARE(pair[0]->calculation, 1);
}

void TestDetectorPair::typeZeroKeepsTheFlagThatItIgnores()
{
    DetectorPair pair(PsdDetector, 1, SelectDetector, 0, 0, 80.0, 50.0);

    pair.setDetectorType(0, SelectDetector);

    QCOMPARE(pair[0]->calculation, 1);
    QCOMPARE(pair[0]->beamDiameter, 80.0);
    QCOMPARE(pair[0]->unit(), QStringLiteral("V"));
}

void TestDetectorPair::badTypeLeavesNoDetector()
{
    DetectorPair pair;
    pair.setDetectorType(1, 6);
    QVERIFY(pair[1] == nullptr);
    QVERIFY(pair[0] != nullptr);
}

void TestDetectorPair::copyIsDeep()
{
    DetectorPair original(QuadrantDetector, 1, UvPsd4Detector, 0, 1, 80.0, 70.0);

    const DetectorPair copy = original;
    original[0]->beamDiameter = 10.0;
    original.setDetectorType(1, SelectDetector);

    QCOMPARE(copy.pulsedLaser, 1);
    QCOMPARE(copy[0]->typeCode(), 1);
    QCOMPARE(copy[0]->beamDiameter, 80.0);
    QCOMPARE(copy[0]->calculation, 1);
    QCOMPARE(copy[1]->typeCode(), 4);
    QCOMPARE(copy[1]->beamDiameter, 70.0);
}

void TestDetectorPair::recordMakesAPairAndBack()
{
    ConnectionSettings settings;
    settings.model = {WidDetector, UvPsd10Detector};
    settings.calculation = {1, 0};
    settings.beamDiameter = {120.0, 33.5};
    settings.pulsedLaser = true;

    ConnectionSettings back;
    DetectorPair(settings).copyTo(back);

    QCOMPARE(back.model, settings.model);
    QCOMPARE(back.calculation, settings.calculation);
    QCOMPARE(back.beamDiameter, settings.beamDiameter);
    QVERIFY(back.pulsedLaser);
}

QTEST_GUILESS_MAIN(TestDetectorPair)
#include "tst_detectorpair.moc"
