// Which fields of a stage can be changed, by type, unit and source.

#include "model/detector.h"
#include "params/stageaccess.h"

#include <QtTest>

class TestStageAccess : public QObject
{
    Q_OBJECT

private slots:
    void onlyAKnownDetectorHasAUnit_data() { addTypes(); }
    void onlyAKnownDetectorHasAUnit();
    void diameterBelongsToQuadrantDetectorsInLength_data() { addTypes(); }
    void diameterBelongsToQuadrantDetectorsInLength();
    void adjustBelongsToPositionSensitiveDetectors_data() { addTypes(); }
    void adjustBelongsToPositionSensitiveDetectors();

private:
    static void addTypes();
};

void TestStageAccess::addTypes()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("isKnown");
    QTest::addColumn<bool>("isQuadrant");
    QTest::addColumn<bool>("isPsd");
    QTest::newRow("none") << 0 << false << false << false;
    QTest::newRow("4QD") << 1 << true << true << false;
    QTest::newRow("PSD") << 2 << true << false << true;
    QTest::newRow("WID") << 3 << true << true << false;
    QTest::newRow("UV 4 mm") << 4 << true << false << true;
    QTest::newRow("UV 10 mm") << 5 << true << false << true;
}

void TestStageAccess::onlyAKnownDetectorHasAUnit()
{
    QFETCH(int, type);
    QTEST(stageAccess(type, false, false).unit, "isKnown");
}

void TestStageAccess::diameterBelongsToQuadrantDetectorsInLength()
{
    QFETCH(int, type);
    QVERIFY(!stageAccess(type, false, true).beamDiameter);
    QTEST(stageAccess(type, true, true).beamDiameter, "isQuadrant");
}

void TestStageAccess::adjustBelongsToPositionSensitiveDetectors()
{
    QFETCH(int, type);
    QTEST(stageAccess(type, true, false).adjustSource, "isPsd");
    QVERIFY(!stageAccess(type, true, false).adjustValues);
    QTEST(stageAccess(type, true, true).adjustValues, "isPsd");
}

QTEST_APPLESS_MAIN(TestStageAccess)
#include "tst_stageaccess.moc"
