#include "stagebench.h"
#include "window/systemcolors.h"

#include <QtTest>
#include <qwt_plot_curve.h>

#include <algorithm>

namespace {

constexpr quint64 originMs = 1700000000000;

/// Items with a greater place are painted above those with a lesser one.
int paintingPlace(const GenericPlot& plot, int curve)
{
    const QwtPlotItemList items = plot.itemList();
    const QwtPlotItem* wanted = &plot.curve(curve);
    return int(std::find(items.begin(), items.end(), wanted) - items.begin());
}

} // namespace

/// Acts on stage 1 and three systems.
class TestStagePlots final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { bench.reset(); }

    void eachSystemHasItsCurves();
    void xIsPaintedAboveY();
    void timePointsCountSecondsFromTheOrigin();
    void timePointsCanCountWholeSeconds();
    void pointingPlotTakesPointsWithoutTime();
    void removedSystemTakesItsOwnCurvesAlong();
    void clearingASystemLeavesTheOthers();
    void clearingAllEmptiesEveryPlot();
    void coloursBelongToTheCurvesOfTheSystem();
    void sweepBeginsAnewOnlyWhenItIsFull_data();
    void sweepBeginsAnewOnlyWhenItIsFull();
    void newSweepBeginsAtTheSampleThatWrappedIt();
    void sweepFollowsTheUpperEndOfTheTimeAxisOnly();
    void decimationFollowsRateSweepAndWidth_data();
    void decimationFollowsRateSweepAndWidth();
    void positionRangeSetsBothPositionAxes();
    void rescalingAPositionLeavesTheRange();
    void rescalingTheIntensitySetsItsAxis();
    void plotsAreNamedByKindAndStage();
    void stagesKeepToThemselves();

private:
    StagePlots& plots() const { return bench->stages[0].plots(); }
    /// One point of each system, whose index tells its position.
    void appendOneOfEach() const;
    QList<int> sizes(const GenericPlot& plot) const;

    std::unique_ptr<StageBench> bench;
};

void TestStagePlots::init()
{
    bench = std::make_unique<StageBench>();
    for (int index = 0; index < 3; ++index)
        plots().addCurves(index);
    plots().setOrigin(originMs);
}

void TestStagePlots::appendOneOfEach() const
{
    for (int index = 0; index < 3; ++index) {
        plots().appendTimePoints(index, originMs, QPointF(index, 10.0 + index), 20.0 + index);
        plots().appendPointingPoint(index, QPointF(index, 10.0 + index));
    }
}

QList<int> TestStagePlots::sizes(const GenericPlot& plot) const
{
    QList<int> list;
    for (int curve = 0; curve < plot.curveCount(); ++curve)
        list.append(pointsOf(plot, curve).size());
    return list;
}

void TestStagePlots::eachSystemHasItsCurves()
{
    appendOneOfEach();
    QCOMPARE(plots().position().curveCount(), 6);
    for (int index = 0; index < 3; ++index) {
        QCOMPARE(pointsOf(plots().position(), 2 * index), QVector<QPointF>{QPointF(0.0, index)});
        QCOMPARE(pointsOf(plots().position(), 2 * index + 1),
                 QVector<QPointF>{QPointF(0.0, 10.0 + index)});
        QCOMPARE(pointsOf(plots().intensity(), index),
                 QVector<QPointF>{QPointF(0.0, 20.0 + index)});
        QCOMPARE(pointsOf(plots().pointing(), index),
                 QVector<QPointF>{QPointF(index, 10.0 + index)});
    }
}

void TestStagePlots::xIsPaintedAboveY()
{
    const GenericPlot& plot = plots().position();
    for (int index = 0; index < 3; ++index)
        QVERIFY(paintingPlace(plot, 2 * index) > paintingPlace(plot, 2 * index + 1));
}

void TestStagePlots::timePointsCountSecondsFromTheOrigin()
{
    plots().appendTimePoints(0, originMs + 2500, QPointF(1.0, 2.0), 3.0);
    QCOMPARE(pointsOf(plots().position(), 0), QVector<QPointF>{QPointF(2.5, 1.0)});
    QCOMPARE(pointsOf(plots().position(), 1), QVector<QPointF>{QPointF(2.5, 2.0)});
    QCOMPARE(pointsOf(plots().intensity(), 0), QVector<QPointF>{QPointF(2.5, 3.0)});
    QVERIFY(pointsOf(plots().pointing(), 0).isEmpty());
}

void TestStagePlots::timePointsCanCountWholeSeconds()
{
    plots().appendTimePoints(0, originMs + 2999, QPointF(1.0, 2.0), 3.0, TimeSteps::WholeSeconds);
    QCOMPARE(pointsOf(plots().position(), 0), QVector<QPointF>{QPointF(2.0, 1.0)});
    QCOMPARE(pointsOf(plots().position(), 1), QVector<QPointF>{QPointF(2.0, 2.0)});
    QCOMPARE(pointsOf(plots().intensity(), 0), QVector<QPointF>{QPointF(2.0, 3.0)});
}

void TestStagePlots::pointingPlotTakesPointsWithoutTime()
{
    plots().appendPointingPoint(0, QPointF(1.0, 2.0));
    QCOMPARE(pointsOf(plots().pointing(), 0), QVector<QPointF>{QPointF(1.0, 2.0)});
    QVERIFY(pointsOf(plots().position(), 0).isEmpty());
}

void TestStagePlots::removedSystemTakesItsOwnCurvesAlong()
{
    appendOneOfEach();
    plots().removeCurves(1);
    QCOMPARE(plots().position().curveCount(), 4);
    QCOMPARE(plots().pointing().curveCount(), 2);
    QCOMPARE(plots().intensity().curveCount(), 2);
    QCOMPARE(pointsOf(plots().position(), 0).first().y(), 0.0);
    QCOMPARE(pointsOf(plots().position(), 2).first().y(), 2.0);
    QCOMPARE(pointsOf(plots().position(), 3).first().y(), 12.0);
    QCOMPARE(pointsOf(plots().pointing(), 1).first(), QPointF(2.0, 12.0));
    QCOMPARE(pointsOf(plots().intensity(), 1).first().y(), 22.0);
}

void TestStagePlots::clearingASystemLeavesTheOthers()
{
    appendOneOfEach();
    plots().clearCurves(1);
    QCOMPARE(sizes(plots().position()), QList<int>({1, 1, 0, 0, 1, 1}));
    QCOMPARE(sizes(plots().pointing()), QList<int>({1, 0, 1}));
    QCOMPARE(sizes(plots().intensity()), QList<int>({1, 0, 1}));
}

void TestStagePlots::clearingAllEmptiesEveryPlot()
{
    appendOneOfEach();
    plots().clearAllCurves();
    QCOMPARE(sizes(plots().position()), QList<int>({0, 0, 0, 0, 0, 0}));
    QCOMPARE(sizes(plots().pointing()), QList<int>({0, 0, 0}));
    QCOMPARE(sizes(plots().intensity()), QList<int>({0, 0, 0}));
}

void TestStagePlots::coloursBelongToTheCurvesOfTheSystem()
{
    const SystemColors colors{Qt::red, Qt::green, Qt::yellow};
    const QColor before = plots().position().curveColor(0);
    plots().setCurveColors(1, colors);
    QCOMPARE(plots().position().curveColor(2), QColor(Qt::red));
    QCOMPARE(plots().position().curveColor(3), QColor(Qt::green));
    QCOMPARE(plots().intensity().curveColor(1), QColor(Qt::yellow));
    QCOMPARE(plots().pointing().curveColor(1), QColor(Qt::yellow));
    QCOMPARE(plots().position().curveColor(0), before);
    QCOMPARE(plots().position().curveColor(5), before);
    QCOMPARE(plots().intensity().curveColor(0), before);
    QCOMPARE(plots().pointing().curveColor(2), before);
}

void TestStagePlots::sweepBeginsAnewOnlyWhenItIsFull_data()
{
    QTest::addColumn<int>("afterOriginMs");
    QTest::addColumn<bool>("isKept");
    QTest::newRow("at the origin") << 0 << true;
    QTest::newRow("at its last millisecond") << 10000 << true;
    QTest::newRow("behind it") << 10001 << false;
    QTest::newRow("from before the origin") << -1 << false;
}

void TestStagePlots::sweepBeginsAnewOnlyWhenItIsFull()
{
    QFETCH(int, afterOriginMs);
    QFETCH(bool, isKept);
    appendOneOfEach();
    plots().wrapSweep(originMs + quint64(qint64(afterOriginMs)));
    const int kept = isKept ? 1 : 0;
    QCOMPARE(sizes(plots().position()), QList<int>({kept, kept, kept, kept, kept, kept}));
    QCOMPARE(sizes(plots().intensity()), QList<int>({kept, kept, kept}));
    QCOMPARE(sizes(plots().pointing()), QList<int>({1, 1, 1}));
}

void TestStagePlots::newSweepBeginsAtTheSampleThatWrappedIt()
{
    plots().wrapSweep(originMs + 12000);
    plots().appendTimePoints(0, originMs + 12500, QPointF(), 0.0);
    QCOMPARE(pointsOf(plots().position(), 0).first().x(), 0.5);
}

void TestStagePlots::sweepFollowsTheUpperEndOfTheTimeAxisOnly()
{
    plots().rescaleTime(4, 6);
    QCOMPARE(plots().timeWindowMs(), 6000.0);
    QCOMPARE(plots().position().axisInterval(QwtPlot::xTop), QwtInterval(4.0, 6.0));
    QCOMPARE(plots().position().axisInterval(QwtPlot::xBottom), QwtInterval(4.0, 6.0));
    QCOMPARE(plots().intensity().axisInterval(QwtPlot::xBottom), QwtInterval(4.0, 6.0));
    appendOneOfEach();
    plots().wrapSweep(originMs + 6000);
    QCOMPARE(pointsOf(plots().position(), 0).size(), 1);
    plots().wrapSweep(originMs + 6001);
    QCOMPARE(pointsOf(plots().position(), 0).size(), 0);
}

void TestStagePlots::decimationFollowsRateSweepAndWidth_data()
{
    QTest::addColumn<int>("rateHz");
    QTest::addColumn<int>("sweepS");
    QTest::addColumn<int>("widthPx");
    QTest::addColumn<int>("every");
    QTest::newRow("100 Hz on 500 pixels") << 100 << 10 << 500 << 2;
    QTest::newRow("wider than 1000 pixels") << 100 << 10 << 1001 << 1;
    QTest::newRow("500 Hz") << 500 << 10 << 500 << 10;
    QTest::newRow("a longer sweep") << 100 << 60 << 500 << 12;
}

void TestStagePlots::decimationFollowsRateSweepAndWidth()
{
    QFETCH(int, rateHz);
    QFETCH(int, sweepS);
    QFETCH(int, widthPx);
    plots().rescaleTime(0, sweepS);
    plots().position().resize(widthPx, 100);
    QTEST(plots().decimation(rateHz), "every");
}

void TestStagePlots::positionRangeSetsBothPositionAxes()
{
    plots().setPositionRange(4.5, -4.0);
    plots().replot();
    QCOMPARE(plots().positionMax(), 4.5);
    QCOMPARE(plots().positionMin(), -4.0);
    QCOMPARE(plots().position().axisInterval(QwtPlot::yLeft), QwtInterval(-4.0, 4.5));
    QCOMPARE(plots().pointing().axisInterval(QwtPlot::yLeft), QwtInterval(-4.0, 4.5));
    QCOMPARE(plots().pointing().axisInterval(QwtPlot::xBottom), QwtInterval(-4.0, 4.5));
}

void TestStagePlots::rescalingAPositionLeavesTheRange()
{
    plots().rescalePosition(-1.0, 2.0);
    QCOMPARE(plots().position().axisInterval(QwtPlot::yLeft), QwtInterval(-1.0, 2.0));
    QCOMPARE(plots().pointing().axisInterval(QwtPlot::yLeft), QwtInterval(-5.0, 5.0));
    QCOMPARE(plots().positionMax(), 5.0);
    QCOMPARE(plots().positionMin(), -5.0);
}

void TestStagePlots::rescalingTheIntensitySetsItsAxis()
{
    plots().replot();
    QCOMPARE(plots().intensity().axisInterval(QwtPlot::yLeft), QwtInterval(0.0, 8.0));
    plots().rescaleIntensity(1.0, 3.0);
    QCOMPARE(plots().intensity().axisInterval(QwtPlot::yLeft), QwtInterval(1.0, 3.0));
}

void TestStagePlots::plotsAreNamedByKindAndStage()
{
    QCOMPARE(plots().pointing().objectName(), QStringLiteral("osciPlot1"));
    QCOMPARE(plots().position().objectName(), QStringLiteral("positionPlot1"));
    QCOMPARE(bench->stages[1].plots().intensity().objectName(), QStringLiteral("intensityPlot2"));
}

void TestStagePlots::stagesKeepToThemselves()
{
    StagePlots& other = bench->stages[1].plots();
    other.addCurves(0);
    other.appendPointingPoint(0, QPointF(1.0, 1.0));
    plots().clearAllCurves();
    QCOMPARE(pointsOf(other.pointing(), 0).size(), 1);
    plots().rescaleTime(0, 20);
    QCOMPARE(other.timeWindowMs(), 10000.0);
}

QTEST_MAIN(TestStagePlots)
#include "tst_stageplots.moc"
