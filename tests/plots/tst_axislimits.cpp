#include "plots/axislimits.h"

#include <QtTest>

class TestAxisLimits final : public QObject
{
    Q_OBJECT

private slots:
    void valuesAreOrderedAndApart_data();
    void valuesAreOrderedAndApart();
    void timesAreASecondApart_data();
    void timesAreASecondApart();
};

void TestAxisLimits::valuesAreOrderedAndApart_data()
{
    QTest::addColumn<double>("lower");
    QTest::addColumn<double>("upper");
    QTest::addColumn<double>("newLower");
    QTest::addColumn<double>("newUpper");
    QTest::newRow("in order") << -1.5 << 2.25 << -1.5 << 2.25;
    QTest::newRow("crossed") << 2.0 << 1.0 << 1.0 << 2.0;
    QTest::newRow("crossed around zero") << 3.0 << -4.0 << -4.0 << 3.0;
    QTest::newRow("equal") << 1.0 << 1.0 << 1.0 << 1.001;
    QTest::newRow("equal and negative") << -2.0 << -2.0 << -2.0 << -1.999;
    QTest::newRow("equal at the end of a range") << 5.0 << 5.0 << 5.0 << 5.001;
    QTest::newRow("too close") << 0.0 << 0.0009 << 0.0 << 0.001;
    QTest::newRow("too close and crossed") << 0.0009 << 0.0 << 0.0 << 0.001;
    QTest::newRow("just far enough") << 0.0 << 0.001 << 0.0 << 0.001;
    QTest::newRow("a step of the fields") << 0.0 << 0.01 << 0.0 << 0.01;
}

void TestAxisLimits::valuesAreOrderedAndApart()
{
    QFETCH(double, lower);
    QFETCH(double, upper);
    const axislimits::Values limits = axislimits::ofValues(lower, upper);
    QTEST(limits.lower, "newLower");
    QTEST(limits.upper, "newUpper");
}

void TestAxisLimits::timesAreASecondApart_data()
{
    QTest::addColumn<int>("lower");
    QTest::addColumn<int>("upper");
    QTest::addColumn<int>("newLower");
    QTest::addColumn<int>("newUpper");
    QTest::newRow("in order") << 0 << 10 << 0 << 10;
    QTest::newRow("a second apart") << 10 << 11 << 10 << 11;
    QTest::newRow("equal") << 10 << 10 << 10 << 11;
    QTest::newRow("none at all") << 0 << 0 << 0 << 1;
    QTest::newRow("crossed times are not exchanged") << 20 << 10 << 20 << 21;
    QTest::newRow("the longest") << 3602439 << 3602439 << 3602439 << 3602440;
}

void TestAxisLimits::timesAreASecondApart()
{
    QFETCH(int, lower);
    QFETCH(int, upper);
    const axislimits::Seconds limits = axislimits::ofTimes(lower, upper);
    QTEST(limits.lower, "newLower");
    QTEST(limits.upper, "newUpper");
}

QTEST_GUILESS_MAIN(TestAxisLimits)
#include "tst_axislimits.moc"
