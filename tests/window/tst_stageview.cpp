#include "stagebench.h"
#include "window/unitchoice.h"

#include <QtTest>

namespace {

/// Both stages in lengths: millimetres on stage 1, micrometres of a beam of 80 on stage 2.
const DetectorPair lengths(PsdDetector, 1, QuadrantDetector, 1, 0, 50.0, 80.0);

UnitChoice inVolts(bool unitsAgree = true)
{
    return {unitsAgree, nullptr};
}

UnitChoice inMillimetres()
{
    return {true, lengths[0]};
}

} // namespace

/// Acts on stage 1, which shows volts at first.
class TestStageView final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { bench.reset(); }

    void newUnitStandsEverywhere();
    void newUnitEmptiesThePlots();
    void newUnitBeginsANewAverage();
    void equalUnitAndRangeChangeNothing();
    void otherRangeInTheSameUnitIsShown();
    void otherUnitOfTheSameRangeIsShown();
    void withNothingDisplayedTheUnitStays();
    void unitsThatDisagreeAreShownInVoltsEvenWithNothingDisplayed();
    void unitsThatDisagreeAreRememberedAtEveryCall();
    void singleSystemsWidgetsAreShownAndHidden();
    void axisNamesHaveTheirColours();
    void stagesAreCountedFromOne();

private:
    StageView& stage() const { return bench->stages[0]; }
    StageForm& form() const { return bench->forms[0]; }

    std::unique_ptr<StageBench> bench;
};

void TestStageView::init()
{
    bench = std::make_unique<StageBench>();
    stage().plots().addCurves(0);
}

void TestStageView::newUnitStandsEverywhere()
{
    QVERIFY(stage().showUnit(inMillimetres(), true));
    QCOMPARE(stage().unitText(), QStringLiteral(" [mm]"));
    QCOMPARE(form().x.text(), QStringLiteral("X [mm]"));
    QCOMPARE(form().y.text(), QStringLiteral("Y [mm]"));
    QCOMPARE(form().positionX.text(), QStringLiteral("Position x [mm]"));
    QCOMPARE(form().positionY.text(), QStringLiteral("Position y [mm]"));
    QCOMPARE(stage().plots().positionMax(), 4.5);
    QCOMPARE(stage().plots().positionMin(), -4.5);
    QCOMPARE(stage().plots().position().axisInterval(QwtPlot::yLeft), QwtInterval(-4.5, 4.5));
    QCOMPARE(bench->stages[1].unitText(), QStringLiteral(" [V]"));
}

void TestStageView::newUnitEmptiesThePlots()
{
    stage().plots().appendPointingPoint(0, QPointF(1.0, 1.0));
    stage().plots().appendTimePoints(0, 0, QPointF(1.0, 1.0), 1.0);
    stage().showUnit(inMillimetres(), true);
    QVERIFY(pointsOf(stage().plots().pointing(), 0).isEmpty());
    QVERIFY(pointsOf(stage().plots().position(), 0).isEmpty());
    QVERIFY(pointsOf(stage().plots().intensity(), 0).isEmpty());
}

void TestStageView::newUnitBeginsANewAverage()
{
    stage().readouts().take(QPointF(1.0, 1.0), {});
    stage().readouts().show(2);
    stage().showUnit(inMillimetres(), true);
    stage().readouts().take(QPointF(3.0, 3.0), {});
    stage().readouts().show(2);
    QCOMPARE(form().lcdX.value(), 3.0);
}

void TestStageView::equalUnitAndRangeChangeNothing()
{
    stage().showUnit(inMillimetres(), true);
    stage().plots().appendPointingPoint(0, QPointF(1.0, 1.0));
    QVERIFY(!stage().showUnit(inMillimetres(), true));
    QCOMPARE(pointsOf(stage().plots().pointing(), 0).size(), 1);
}

void TestStageView::otherRangeInTheSameUnitIsShown()
{
    const DetectorPair smaller(QuadrantDetector, 1, QuadrantDetector, 1, 0, 50.0, 50.0);
    QVERIFY(stage().showUnit({true, lengths[1]}, true));
    QCOMPARE(stage().plots().positionMax(), 40.0);
    QVERIFY(stage().showUnit({true, smaller[0]}, true));
    QCOMPARE(stage().plots().positionMax(), 25.0);
}

void TestStageView::otherUnitOfTheSameRangeIsShown()
{
    // Half of the beam's 10 micrometres: the axis ends where that of volts does.
    const DetectorPair smallBeam(QuadrantDetector, 1, QuadrantDetector, 1, 0, 10.0, 10.0);
    QVERIFY(stage().showUnit({true, smallBeam[0]}, true));
    QCOMPARE(stage().plots().positionMax(), 5.0);
    QCOMPARE(stage().unitText(), QString::fromUtf8(" [µm]"));
}

void TestStageView::withNothingDisplayedTheUnitStays()
{
    stage().showUnit(inMillimetres(), true);
    QVERIFY(!stage().showUnit(inVolts(), false));
    QCOMPARE(stage().unitText(), QStringLiteral(" [mm]"));
    QVERIFY(stage().showUnit(inVolts(), true));
    QCOMPARE(stage().unitText(), QStringLiteral(" [V]"));
}

void TestStageView::unitsThatDisagreeAreShownInVoltsEvenWithNothingDisplayed()
{
    stage().showUnit(inMillimetres(), true);
    QVERIFY(stage().showUnit(inVolts(false), false));
    QCOMPARE(stage().unitText(), QStringLiteral(" [V]"));
}

void TestStageView::unitsThatDisagreeAreRememberedAtEveryCall()
{
    QVERIFY(stage().unitsAgree());
    QVERIFY(!stage().showUnit(inVolts(false), true));
    QVERIFY(!stage().unitsAgree());
    QVERIFY(!stage().showUnit(inVolts(true), true));
    QVERIFY(stage().unitsAgree());
}

void TestStageView::singleSystemsWidgetsAreShownAndHidden()
{
    stage().setSingleSystemVisible(false);
    QVERIFY(form().singleFrame.isHidden());
    QVERIFY(form().otherSingleFrame.isHidden());
    stage().setSingleSystemVisible(true);
    QVERIFY(!form().singleFrame.isHidden());
    QVERIFY(!form().otherSingleFrame.isHidden());
}

void TestStageView::axisNamesHaveTheirColours()
{
    stage().setAxisColors(Qt::red, Qt::green, Qt::blue);
    const auto colorOf = [](const QLabel& label) {
        return label.palette().color(QPalette::WindowText);
    };
    QCOMPARE(colorOf(form().xAxis), QColor(Qt::red));
    QCOMPARE(colorOf(form().yAxis), QColor(Qt::green));
    QCOMPARE(colorOf(form().intensityAxis), QColor(Qt::blue));
}

void TestStageView::stagesAreCountedFromOne()
{
    QCOMPARE(bench->stages[0].stage(), Stage::One);
    QCOMPARE(bench->stages[1].stage(), Stage::Two);
}

QTEST_MAIN(TestStageView)
#include "tst_stageview.moc"
