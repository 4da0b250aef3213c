#include "model/connectionsettings.h"
#include "model/detectorpair.h"
#include "support/logcapture.h"

#include <QtTest>

#include <limits>

class TestDetectorPair : public QObject
{
    Q_OBJECT

private slots:
    void newPairHasTwoPlainDetectors();
    void changeOfTypeKeepsDiameterAndFlag();
    void typeZeroKeepsTheFlagThatItIgnores();
    void badTypeLeavesNoDetector();
    void copyIsDeep();
    void assignmentIsDeep();
    void recordMakesAPairAndBack();
    void unknownTypeOfARecordIsNoDetector_data();
    void unknownTypeOfARecordIsNoDetector();
    void diameterThatIsNoneBecomesTheDefault_data();
    void diameterThatIsNoneBecomesTheDefault();
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
    DetectorPair original(QuadrantDetector, 1, UvPsd4Detector, 1, 1, 80.0, 70.0);

    const DetectorPair copy = original;
    original[0]->beamDiameter = 10.0;
    original[1]->calculation = 0;
    original.setDetectorType(1, SelectDetector);

    QCOMPARE(copy.pulsedLaser, 1);
    QCOMPARE(copy[0]->typeCode(), 1);
    QCOMPARE(copy[0]->beamDiameter, 80.0);
    QCOMPARE(copy[0]->calculation, 1);
    QCOMPARE(copy[1]->typeCode(), 4);
    QCOMPARE(copy[1]->beamDiameter, 70.0);
    QCOMPARE(copy[1]->calculation, 1);
}

void TestDetectorPair::assignmentIsDeep()
{
    DetectorPair source(QuadrantDetector, 0, UvPsd4Detector, 1, 1, 80.0, 70.0);
    DetectorPair target(WidDetector, 1, PsdDetector, 0, 0, 20.0, 30.0);

    target = source;
    source.pulsedLaser = 0;
    source[0]->beamDiameter = 10.0;
    source[1]->calculation = 0;
    source.setDetectorType(1, SelectDetector);

    QCOMPARE(target.pulsedLaser, 1);
    QCOMPARE(target[0]->typeCode(), 1);
    QCOMPARE(target[0]->beamDiameter, 80.0);
    QCOMPARE(target[0]->calculation, 0);
    QCOMPARE(target[1]->typeCode(), 4);
    QCOMPARE(target[1]->beamDiameter, 70.0);
    QCOMPARE(target[1]->calculation, 1);
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

void TestDetectorPair::unknownTypeOfARecordIsNoDetector_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("behind the last") << 6;
    QTest::newRow("before the first") << -1;
}

void TestDetectorPair::unknownTypeOfARecordIsNoDetector()
{
    QFETCH(int, type);
    ConnectionSettings settings;
    settings.label.set("bench");
    settings.model = {PsdDetector, type};
    settings.calculation = {1, 1};
    settings.beamDiameter = {20.0, 30.0};

    const LogCapture log;
    const DetectorPair pair(settings);

    QCOMPARE(pair[0]->typeCode(), 2);
    QVERIFY(pair[1]);
    QCOMPARE(pair[1]->typeCode(), 0);
    QCOMPARE(pair[1]->calculation, 1);
    QCOMPARE(pair[1]->beamDiameter, 30.0);
    QCOMPARE(
        log.lines(),
        QStringList(QString("warning: Unknown detector type %1 of stage 2 of bench").arg(type)));
}

void TestDetectorPair::diameterThatIsNoneBecomesTheDefault_data()
{
    QTest::addColumn<double>("diameterUm");
    QTest::addColumn<QString>("text");
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << "nan";
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << "inf";
    QTest::newRow("missing") << 0.0 << "0";
    QTest::newRow("negative") << -50.5 << "-50.5";
}

void TestDetectorPair::diameterThatIsNoneBecomesTheDefault()
{
    QFETCH(double, diameterUm);
    QFETCH(QString, text);
    ConnectionSettings settings;
    settings.label.set("bench");
    settings.model = {QuadrantDetector, QuadrantDetector};
    settings.beamDiameter = {diameterUm, 30.0};

    const LogCapture log;
    const DetectorPair pair(settings);

    QCOMPARE(pair[0]->beamDiameter, 50.0);
    QCOMPARE(pair[1]->beamDiameter, 30.0);
    QCOMPARE(log.lines(),
             QStringList("warning: Impossible beam diameter " + text + " of stage 1 of bench"));
}

QTEST_GUILESS_MAIN(TestDetectorPair)
#include "tst_detectorpair.moc"
