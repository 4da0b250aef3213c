#include "stagebench.h"
#include "window/plotframe.h"
#include "window/unitchoice.h"

#include <QScrollArea>
#include <QtTest>
#include <qwt_plot_shapeitem.h>

namespace {

struct Bench : StageBench
{
    QWidget box1;
    QWidget box2;
    QScrollArea scrollArea;
    PlotFrame frame{stages, {box1, box2, scrollArea}};
};

QString scaleOf(GenericPlot& plot, QwtPlot::Axis axis)
{
    plot.updateAxes();
    const QwtInterval interval = plot.axisInterval(axis);
    return QStringLiteral("%1 %2").arg(interval.minValue()).arg(interval.maxValue());
}

int midLineCount(const GenericPlot& plot)
{
    int count = 0;
    for (const QwtPlotItem* item : plot.itemList()) {
        if (item->title().text() == QLatin1String("Horizontale Mittellinie"))
            ++count;
    }
    return count;
}

const QString untouchedPosition = QStringLiteral("-5 5");
const QString untouchedIntensity = QStringLiteral("0 8");
const QString untouchedTime = QStringLiteral("0 10");

} // namespace

class TestPlotFrame final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench = std::make_unique<Bench>(); }
    void cleanup() { bench.reset(); }

    void axisIsRescaledByItsNumber_data();
    void axisIsRescaledByItsNumber();
    void otherStageFollowsIfAsked_data();
    void otherStageFollowsIfAsked();
    void positionsOfAnotherUnitDoNotFollow();
    void timeAxisIsRescaledByItsNumber_data();
    void timeAxisIsRescaledByItsNumber();
    void rescalingATimeMarksZeroOverItsWindow();
    void limitsAreThoseOfTheAxis();
    void otherNumbersHaveNoLimits();
    void resetBringsTheUsualAxesBack();
    void positionsAreResetToTheRangeOfTheStage();
    void pointingBoxesAreEquallyWide();
    void pointingPlotsThatFillTheirBoxesAreSquare();
    void pointingPlotsAreAtMostTheirShareOfTheWindow();
    void boxThatBecomesHigherMakesRoom();

private:
    QString position(std::size_t stage) const
    {
        return scaleOf(bench->stages[stage].plots().position(), QwtPlot::yLeft);
    }
    QString intensity(std::size_t stage) const
    {
        return scaleOf(bench->stages[stage].plots().intensity(), QwtPlot::yLeft);
    }
    QString time(std::size_t stage) const
    {
        return scaleOf(bench->stages[stage].plots().position(), QwtPlot::xTop);
    }

    std::unique_ptr<Bench> bench;
};

void TestPlotFrame::axisIsRescaledByItsNumber_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QStringList>("positions");
    QTest::addColumn<QStringList>("intensities");
    const QStringList positions{untouchedPosition, untouchedPosition};
    const QStringList intensities{untouchedIntensity, untouchedIntensity};
    QTest::newRow("position 1") << 1 << QStringList{"1 3", untouchedPosition} << intensities;
    QTest::newRow("position 2") << 2 << QStringList{untouchedPosition, "1 3"} << intensities;
    QTest::newRow("intensity 1") << 5 << positions << QStringList{"1 3", untouchedIntensity};
    QTest::newRow("intensity 2") << 6 << positions << QStringList{untouchedIntensity, "1 3"};
    QTest::newRow("a time") << 3 << positions << intensities;
    QTest::newRow("none") << 7 << positions << intensities;
}

void TestPlotFrame::axisIsRescaledByItsNumber()
{
    QFETCH(int, number);
    bench->frame.rescaleAxis(number, 1.0, 3.0, false);
    QTEST((QStringList{position(0), position(1)}), "positions");
    QTEST((QStringList{intensity(0), intensity(1)}), "intensities");
    QCOMPARE(time(0), untouchedTime);
}

void TestPlotFrame::otherStageFollowsIfAsked_data()
{
    QTest::addColumn<int>("number");
    for (const int number : {1, 2, 5, 6})
        QTest::addRow("axis %d", number) << number;
}

void TestPlotFrame::otherStageFollowsIfAsked()
{
    QFETCH(int, number);
    bench->frame.rescaleAxis(number, 1.0, 3.0, true);
    const bool positions = number <= 2;
    for (std::size_t stage = 0; stage < 2; ++stage) {
        QCOMPARE(position(stage), positions ? QString("1 3") : untouchedPosition);
        QCOMPARE(intensity(stage), positions ? untouchedIntensity : QString("1 3"));
    }
}

void TestPlotFrame::positionsOfAnotherUnitDoNotFollow()
{
    const DetectorPair lengths(PsdDetector, 1, PsdDetector, 1, 0, 50.0, 50.0);
    bench->stages[1].showUnit({true, lengths[1]}, true);
    bench->frame.rescaleAxis(1, 1.0, 3.0, true);
    QCOMPARE(position(0), QStringLiteral("1 3"));
    QCOMPARE(position(1), QStringLiteral("-4.5 4.5"));
    bench->frame.rescaleAxis(5, 1.0, 3.0, true);
    QCOMPARE(intensity(1), QStringLiteral("1 3"));
}

void TestPlotFrame::timeAxisIsRescaledByItsNumber_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<bool>("pairCheck");
    QTest::addColumn<QStringList>("times");
    QTest::newRow("stage 1") << 3 << false << QStringList{"2 20", untouchedTime};
    QTest::newRow("stage 2") << 4 << false << QStringList{untouchedTime, "2 20"};
    QTest::newRow("both by 1") << 3 << true << QStringList{"2 20", "2 20"};
    QTest::newRow("both by 2") << 4 << true << QStringList{"2 20", "2 20"};
    QTest::newRow("a position") << 1 << true << QStringList{untouchedTime, untouchedTime};
    QTest::newRow("none") << 0 << true << QStringList{untouchedTime, untouchedTime};
}

void TestPlotFrame::timeAxisIsRescaledByItsNumber()
{
    QFETCH(int, number);
    QFETCH(bool, pairCheck);
    bench->frame.rescaleTimeAxis(number, 2, 20, pairCheck);
    QTEST((QStringList{time(0), time(1)}), "times");
}

void TestPlotFrame::rescalingATimeMarksZeroOverItsWindow()
{
    const GenericPlot& other = bench->stages[1].plots().position();
    const int before = midLineCount(other);
    QVERIFY(before > 0);
    bench->frame.rescaleTimeAxis(3, 0, 20, false);
    QCOMPARE(midLineCount(other), before + 1);
}

void TestPlotFrame::limitsAreThoseOfTheAxis()
{
    PlotFrame& frame = bench->frame;
    for (const int axisId : {1, 2, 5, 6})
        frame.rescaleAxis(axisId, axisId, axisId + 0.5, false);
    frame.rescaleTimeAxis(3, 3, 30, false);
    frame.rescaleTimeAxis(4, 4, 40, false);
    for (const int axisId : {1, 2, 5, 6})
        QCOMPARE(frame.limits(axisId), QwtInterval(axisId, axisId + 0.5));
    QCOMPARE(frame.limits(3), QwtInterval(3.0, 30.0));
    QCOMPARE(frame.limits(4), QwtInterval(4.0, 40.0));
}

void TestPlotFrame::otherNumbersHaveNoLimits()
{
    for (const int number : {-1, 0, 7})
        QVERIFY(!bench->frame.limits(number).isValid());
}

void TestPlotFrame::resetBringsTheUsualAxesBack()
{
    for (const int number : {1, 2, 5, 6})
        bench->frame.rescaleAxis(number, 1.0, 3.0, false);
    bench->frame.rescaleTimeAxis(3, 2, 20, true);
    bench->frame.resetTimePlots(bench->stages[0]);
    QCOMPARE(position(0), untouchedPosition);
    QCOMPARE(intensity(0), untouchedIntensity);
    QCOMPARE(time(0), untouchedTime);
    QCOMPARE(bench->stages[0].plots().timeWindowMs(), 10000.0);
    QCOMPARE(position(1), QStringLiteral("1 3"));
    QCOMPARE(intensity(1), QStringLiteral("1 3"));
    QCOMPARE(time(1), QStringLiteral("2 20"));
}

void TestPlotFrame::positionsAreResetToTheRangeOfTheStage()
{
    bench->stages[0].plots().setPositionRange(4.5, -4.5);
    bench->frame.rescaleAxis(1, 1.0, 3.0, false);
    bench->frame.resetTimePlots(bench->stages[0]);
    QCOMPARE(position(0), QStringLiteral("-4.5 4.5"));
}

void TestPlotFrame::pointingBoxesAreEquallyWide()
{
    bench->scrollArea.viewport()->resize(1000, 600);
    bench->box1.resize(10, 200);
    bench->frame.resizePlots();
    QCOMPARE(bench->box1.width(), bench->box2.width());
    QVERIFY(bench->box1.width() >= 200);
    for (StageView& stage : bench->stages)
        QCOMPARE(stage.plots().pointing().maximumHeight(), 200);
}

void TestPlotFrame::pointingPlotsThatFillTheirBoxesAreSquare()
{
    bench->scrollArea.viewport()->resize(1000, 600);
    bench->box1.resize(10, 300);
    bench->frame.resizePlots();
    for (StageView& stage : bench->stages) {
        GenericPlot& plot = stage.plots().pointing();
        plot.resize(bench->box1.width(), plot.maximumHeight());
        plot.updateLayout();
        QCOMPARE(plot.canvas()->width(), plot.canvas()->height());
    }
}

void TestPlotFrame::pointingPlotsAreAtMostTheirShareOfTheWindow()
{
    bench->box1.setMinimumHeight(50);
    bench->box1.resize(10, 400);
    bench->scrollArea.viewport()->resize(500, 600);
    bench->frame.resizePlots();
    // 42 percent of 500.
    QCOMPARE(bench->stages[1].plots().pointing().maximumHeight(), 210);
}

void TestPlotFrame::boxThatBecomesHigherMakesRoom()
{
    bench->scrollArea.viewport()->resize(1000, 600);
    bench->box1.show();
    bench->box1.resize(10, 300);
    QCOMPARE(bench->stages[0].plots().pointing().maximumHeight(), 300);
    QVERIFY(bench->box2.width() >= 300);
}

QTEST_MAIN(TestPlotFrame)
#include "tst_plotframe.moc"
