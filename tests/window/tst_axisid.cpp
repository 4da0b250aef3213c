#include "window/axisid.h"

#include <QtTest>

class TestAxisId final : public QObject
{
    Q_OBJECT

private slots:
    void numberStandsForAnAxisOfAStage_data();
    void numberStandsForAnAxisOfAStage();
    void otherNumbersStandForNothing_data();
    void otherNumbersStandForNothing();
};

Q_DECLARE_METATYPE(AxisKind)

void TestAxisId::numberStandsForAnAxisOfAStage_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<AxisKind>("kind");
    QTest::addColumn<int>("stageNumber");

    QTest::newRow("position of stage 1") << 1 << AxisKind::Position << 1;
    QTest::newRow("position of stage 2") << 2 << AxisKind::Position << 2;
    QTest::newRow("time of stage 1") << 3 << AxisKind::Time << 1;
    QTest::newRow("time of stage 2") << 4 << AxisKind::Time << 2;
    QTest::newRow("intensity of stage 1") << 5 << AxisKind::Intensity << 1;
    QTest::newRow("intensity of stage 2") << 6 << AxisKind::Intensity << 2;
}

void TestAxisId::numberStandsForAnAxisOfAStage()
{
    QFETCH(int, number);
    const std::optional<StageAxis> axis = axisOfId(number);
    QVERIFY(axis);
    QTEST(axis->kind, "kind");
    QTEST(int(axis->stage) + 1, "stageNumber");
    QCOMPARE(idOfAxis(*axis), number);
}

void TestAxisId::otherNumbersStandForNothing_data()
{
    QTest::addColumn<int>("number");
    for (const int number : {-1, 0, 7, 100})
        QTest::addRow("%d", number) << number;
}

void TestAxisId::otherNumbersStandForNothing()
{
    QFETCH(int, number);
    QVERIFY(!axisOfId(number));
}

QTEST_GUILESS_MAIN(TestAxisId)
#include "tst_axisid.moc"
