#include "plots/curvedata.h"
#include "plots/incrementalplot.h"
#include "support/widgetcheck.h"

#include <QtTest>
#include <qwt_plot_curve.h>
#include <qwt_symbol.h>

namespace {

class CountingPlot final : public IncrementalPlot
{
public:
    using IncrementalPlot::IncrementalPlot;

    void replot() override
    {
        ++replots;
        IncrementalPlot::replot();
    }

    int replots = 0;
};

/// Sees how often scales and canvas of a plot are replotted.
class ChangeCounter final
{
public:
    explicit ChangeCounter(IncrementalPlot& plot)
    {
        scales.setItemInterest(QwtPlotItem::ScaleInterest);
        scales.attach(&plot);
        scales.count = 0;
        QObject::connect(&plot, &IncrementalPlot::replotted, &context, [this] { ++replots; });
    }

    int replots = 0;
    int scaleReplots() const { return scales.count; }

private:
    struct Scales final : QwtPlotItem
    {
        void updateScaleDiv(const QwtScaleDiv&, const QwtScaleDiv&) override { ++count; }
        void draw(QPainter*, const QwtScaleMap&, const QwtScaleMap&, const QRectF&) const override
        {}

        int count = 0;
    };

    Scales scales;
    QObject context;
};

void appendRamp(IncrementalPlot& plot, int curve, int first, int last)
{
    for (int i = first; i <= last; ++i)
        plot.appendData(curve, QPointF(i, 10 * i));
}

QVector<QPointF> ramp(int first, int last)
{
    QVector<QPointF> points;
    for (int i = first; i <= last; ++i)
        points.append(QPointF(i, 10 * i));
    return points;
}

} // namespace

class TestIncrementalPlot final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void newPlotHasNoCurvesAndHoldsFewPoints();
    void boundedCurveHoldsTheNewestTenSamplesInOrder();
    void curveThatKeepsAllPointsGrows();
    void keepingAllPointsLeavesThePointsThatAreThere();
    void holdingFewPointsEmptiesAllCurves();
    void settingKeepAllPointsReplots();

    void curveIsInsertedOnlyWithinTheIndex_data();
    void curveIsInsertedOnlyWithinTheIndex();
    void curveIsInsertedBeforeTheOneAtItsIndex();
    void newCurveIsBlueDotsTitledByTheCount();
    void manyCurvesAreAppendedAtOnce();
    void negativeNumberOfCurvesIsRefused();
    void curveIsRemovedOnlyWithinTheIndex_data();
    void curveIsRemovedOnlyWithinTheIndex();
    void removedCurveStaysOnThePlotAndTheNextMovesUp();

    void pointWithoutCurveIsIgnored_data();
    void pointWithoutCurveIsIgnored();
    void appendingDoesNotReplot();
    void colourReachesTheWholeCurveWithTheNextPoint();
    void colourWithoutCurveIsIgnored();
    void symbolSizeReachesTheCurveWithTheNextPoint();
    void symbolStaysWhileNothingAboutItChanges();

    void plotWithoutChangesIsNotReplotted();
    void newPointsReplotTheCanvasAlone();
    void newScaleIsShownWithTheScales();
    void replotShowsAllThatIsNew();

    void clearingOneCurveLeavesTheOthersAndReplotsOnce();
    void clearingAllCurvesReplotsOnce();
    void clearedCurveHoldsNoMemory();
    void pointsOfALongRunAreNeverMoved();
    void boundingRectangleIsComputedOnceUntilCleared();
    void boundingRectangleOfNothingIsInvalid();
};

void TestIncrementalPlot::newPlotHasNoCurvesAndHoldsFewPoints()
{
    IncrementalPlot plot(nullptr);
    QCOMPARE(plot.curveCount(), 0);
    QVERIFY(!plot.keepsAllPoints());
    QVERIFY(!plot.autoReplot());
}

void TestIncrementalPlot::boundedCurveHoldsTheNewestTenSamplesInOrder()
{
    IncrementalPlot plot(nullptr);
    plot.addCurve(0);

    appendRamp(plot, 0, 1, 10);
    QCOMPARE(plot.curveData(0).samples(), ramp(1, 10));

    appendRamp(plot, 0, 11, 11);
    QCOMPARE(plot.curveData(0).samples(), ramp(2, 11));
}

void TestIncrementalPlot::curveThatKeepsAllPointsGrows()
{
    IncrementalPlot plot(nullptr);
    plot.addCurve(0);
    plot.setKeepAllPoints(true);
    appendRamp(plot, 0, 1, 5000);
    QCOMPARE(plot.curveData(0).samples(), ramp(1, 5000));
}

void TestIncrementalPlot::keepingAllPointsLeavesThePointsThatAreThere()
{
    IncrementalPlot plot(nullptr);
    plot.addCurve(0);
    appendRamp(plot, 0, 1, 7);
    plot.setKeepAllPoints(true);
    QVERIFY(plot.keepsAllPoints());
    QCOMPARE(plot.curveData(0).samples(), ramp(1, 7));
}

void TestIncrementalPlot::holdingFewPointsEmptiesAllCurves()
{
    IncrementalPlot plot(nullptr);
    plot.addCurves(2);
    plot.setKeepAllPoints(true);
    appendRamp(plot, 0, 1, 30);
    appendRamp(plot, 1, 1, 3);

    plot.setKeepAllPoints(false);
    QVERIFY(!plot.keepsAllPoints());
    QCOMPARE(plot.curveData(0).size(), size_t(0));
    QCOMPARE(plot.curveData(1).size(), size_t(0));

    // The flag that is set already empties the curves, too.
    appendRamp(plot, 0, 1, 3);
    plot.setKeepAllPoints(false);
    QCOMPARE(plot.curveData(0).size(), size_t(0));
}

void TestIncrementalPlot::settingKeepAllPointsReplots()
{
    CountingPlot plot(nullptr);
    plot.setKeepAllPoints(true);
    QCOMPARE(plot.replots, 1);
    plot.setKeepAllPoints(false);
    QCOMPARE(plot.replots, 3);
}

void TestIncrementalPlot::curveIsInsertedOnlyWithinTheIndex_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<bool>("inserted");
    QTest::newRow("negative") << -1 << false;
    QTest::newRow("first") << 0 << true;
    QTest::newRow("last") << 1 << true;
    QTest::newRow("count appends") << 2 << true;
    QTest::newRow("beyond count") << 3 << false;
}

void TestIncrementalPlot::curveIsInsertedOnlyWithinTheIndex()
{
    QFETCH(int, index);
    QFETCH(bool, inserted);
    IncrementalPlot plot(nullptr);
    plot.addCurves(2);
    QCOMPARE(plot.addCurve(index), inserted);
    QCOMPARE(plot.curveCount(), inserted ? 3 : 2);
    QCOMPARE(plot.itemList(QwtPlotItem::Rtti_PlotCurve).size(), plot.curveCount());
}

void TestIncrementalPlot::curveIsInsertedBeforeTheOneAtItsIndex()
{
    IncrementalPlot plot(nullptr);
    plot.addCurve(0);
    plot.setCurveColor(Qt::green, 0);
    appendRamp(plot, 0, 1, 3);

    plot.addCurve(0);
    QCOMPARE(plot.curveData(0).size(), size_t(0));
    QCOMPARE(plot.curveData(1).samples(), ramp(1, 3));
    QCOMPARE(plot.curveColor(1), QColor(Qt::green));
}

void TestIncrementalPlot::newCurveIsBlueDotsTitledByTheCount()
{
    IncrementalPlot plot(nullptr);
    plot.addCurve(0);
    plot.addCurve(0);
    QCOMPARE(plot.curve(1).title().text(), QStringLiteral("0"));
    QCOMPARE(plot.curve(0).title().text(), QStringLiteral("1"));
    QCOMPARE(plot.curve(0).style(), QwtPlotCurve::Dots);
    QCOMPARE(plot.curveColor(0), QColor(0, 0, 254, 255));
}

void TestIncrementalPlot::manyCurvesAreAppendedAtOnce()
{
    IncrementalPlot plot(nullptr);
    QVERIFY(plot.addCurves(0));
    QCOMPARE(plot.curveCount(), 0);
    QVERIFY(plot.addCurves(3));
    QCOMPARE(plot.curveCount(), 3);
    QCOMPARE(plot.curve(2).title().text(), QStringLiteral("2"));
}

void TestIncrementalPlot::negativeNumberOfCurvesIsRefused()
{
    IncrementalPlot plot(nullptr);
    QVERIFY(!plot.addCurves(-1));
    QCOMPARE(plot.curveCount(), 0);
}

void TestIncrementalPlot::curveIsRemovedOnlyWithinTheIndex_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<bool>("result");
    QTest::addColumn<int>("count");
    QTest::newRow("negative does nothing") << -1 << true << 2;
    QTest::newRow("first") << 0 << true << 1;
    QTest::newRow("last") << 1 << true << 1;
    QTest::newRow("count") << 2 << false << 2;
}

void TestIncrementalPlot::curveIsRemovedOnlyWithinTheIndex()
{
    QFETCH(int, index);
    QFETCH(bool, result);
    QFETCH(int, count);
    IncrementalPlot plot(nullptr);
    plot.addCurves(2);
    QCOMPARE(plot.removeCurve(index), result);
    QCOMPARE(plot.curveCount(), count);
}

// The plot keeps the curve item until the plot itself is deleted.
void TestIncrementalPlot::removedCurveStaysOnThePlotAndTheNextMovesUp()
{
    IncrementalPlot plot(nullptr);
    plot.addCurves(2);
    plot.setCurveColor(Qt::green, 1);
    appendRamp(plot, 1, 1, 2);

    plot.clearCurve(0);
    QVERIFY(plot.removeCurve(0));
    QCOMPARE(plot.itemList(QwtPlotItem::Rtti_PlotCurve).size(), 2);
    QCOMPARE(plot.curveData(0).samples(), ramp(1, 2));
    QCOMPARE(plot.curveColor(0), QColor(Qt::green));
}

void TestIncrementalPlot::pointWithoutCurveIsIgnored_data()
{
    QTest::addColumn<int>("index");
    QTest::newRow("curve count") << 1;
    QTest::newRow("far beyond") << 1000;
    QTest::newRow("negative") << -1;
}

void TestIncrementalPlot::pointWithoutCurveIsIgnored()
{
    QFETCH(int, index);
    IncrementalPlot plot(nullptr);
    plot.addCurve(0);
    plot.appendData(index, QPointF(1.0, 1.0));
    QCOMPARE(plot.curveCount(), 1);
    QCOMPARE(plot.curveData(0).size(), size_t(0));
}

void TestIncrementalPlot::appendingDoesNotReplot()
{
    CountingPlot plot(nullptr);
    plot.addCurve(0);
    appendRamp(plot, 0, 1, 20);
    QCOMPARE(plot.replots, 0);
}

void TestIncrementalPlot::colourReachesTheWholeCurveWithTheNextPoint()
{
    IncrementalPlot plot(nullptr);
    plot.addCurve(0);
    appendRamp(plot, 0, 1, 2);
    QCOMPARE(plot.curve(0).symbol()->style(), QwtSymbol::Ellipse);
    QCOMPARE(plot.curve(0).symbol()->brush(), QBrush(QColor(0, 0, 254)));

    plot.setCurveColor(Qt::magenta, 0);
    QCOMPARE(plot.curveColor(0), QColor(Qt::magenta));
    QCOMPARE(plot.curve(0).symbol()->brush(), QBrush(QColor(0, 0, 254)));

    appendRamp(plot, 0, 3, 3);
    QCOMPARE(plot.curve(0).symbol()->brush(), QBrush(Qt::magenta));
    QCOMPARE(plot.curve(0).symbol()->pen(), QPen(Qt::magenta));
}

void TestIncrementalPlot::colourWithoutCurveIsIgnored()
{
    IncrementalPlot plot(nullptr);
    plot.addCurve(0);
    plot.setCurveColor(Qt::green, -1);
    plot.setCurveColor(Qt::green, 1);
    QCOMPARE(plot.curveColor(0), QColor(0, 0, 254));
}

void TestIncrementalPlot::symbolSizeReachesTheCurveWithTheNextPoint()
{
    IncrementalPlot plot(nullptr);
    plot.addCurve(0);
    appendRamp(plot, 0, 1, 1);
    QCOMPARE(plot.curve(0).symbol()->size(), QSize(2, 2));

    plot.setSymbolSize(QSize(3, 3));
    QCOMPARE(plot.curve(0).symbol()->size(), QSize(2, 2));
    appendRamp(plot, 0, 2, 2);
    QCOMPARE(plot.curve(0).symbol()->size(), QSize(3, 3));
}

void TestIncrementalPlot::symbolStaysWhileNothingAboutItChanges()
{
    IncrementalPlot plot(nullptr);
    plot.addCurve(0);
    appendRamp(plot, 0, 1, 1);
    const QwtSymbol* symbol = plot.curve(0).symbol();
    appendRamp(plot, 0, 2, 50);
    QCOMPARE(plot.curve(0).symbol(), symbol);
}

void TestIncrementalPlot::plotWithoutChangesIsNotReplotted()
{
    IncrementalPlot plot(nullptr);
    plot.addCurve(0);
    appendRamp(plot, 0, 1, 3);
    plot.replot();
    const ChangeCounter changes(plot);
    plot.replotIfChanged();
    plot.setCurveColor(Qt::red, 0);
    plot.replotIfChanged();
    QCOMPARE(changes.replots, 0);
}

void TestIncrementalPlot::newPointsReplotTheCanvasAlone()
{
    IncrementalPlot plot(nullptr);
    plot.addCurve(0);
    plot.replot();
    const ChangeCounter changes(plot);
    appendRamp(plot, 0, 1, 3);
    plot.replotIfChanged();
    plot.replotIfChanged();
    QCOMPARE(changes.replots, 1);
    QCOMPARE(changes.scaleReplots(), 0);
}

void TestIncrementalPlot::newScaleIsShownWithTheScales()
{
    IncrementalPlot plot(nullptr);
    plot.addCurve(0);
    plot.replot();
    const ChangeCounter changes(plot);
    plot.setAxisScale(QwtPlot::xBottom, 3.0, 4.0);
    plot.replotIfChanged();
    plot.replotIfChanged();
    QCOMPARE(changes.replots, 1);
    QCOMPARE(changes.scaleReplots(), 1);
    QCOMPARE(plot.axisInterval(QwtPlot::xBottom), QwtInterval(3.0, 4.0));
}

void TestIncrementalPlot::replotShowsAllThatIsNew()
{
    IncrementalPlot plot(nullptr);
    plot.addCurve(0);
    appendRamp(plot, 0, 1, 3);
    plot.setAxisScale(QwtPlot::xBottom, 3.0, 4.0);
    plot.replot();
    const ChangeCounter changes(plot);
    plot.replotIfChanged();
    QCOMPARE(changes.replots, 0);
}

void TestIncrementalPlot::clearingOneCurveLeavesTheOthersAndReplotsOnce()
{
    CountingPlot plot(nullptr);
    plot.addCurves(2);
    appendRamp(plot, 0, 1, 4);
    appendRamp(plot, 1, 1, 4);
    plot.clearCurve(1);
    QCOMPARE(plot.replots, 1);
    QCOMPARE(plot.curveData(0).samples(), ramp(1, 4));
    QCOMPARE(plot.curveData(1).size(), size_t(0));
}

void TestIncrementalPlot::clearingAllCurvesReplotsOnce()
{
    CountingPlot plot(nullptr);
    plot.addCurves(3);
    for (int curve = 0; curve < 3; ++curve)
        appendRamp(plot, curve, 1, 4);
    plot.clearAllCurves();
    QCOMPARE(plot.replots, 1);
    for (int curve = 0; curve < 3; ++curve)
        QCOMPARE(plot.curveData(curve).size(), size_t(0));
}

void TestIncrementalPlot::clearedCurveHoldsNoMemory()
{
    CurveData curve;
    for (int i = 0; i < 10000; ++i)
        curve.append(QPointF(i, i));
    curve.clear();
    QCOMPARE(curve.samples().capacity(), 0);
}

void TestIncrementalPlot::pointsOfALongRunAreNeverMoved()
{
    constexpr int fewPoints = 5000;
    CurveData curve;
    for (int i = 0; i < fewPoints; ++i)
        curve.append(QPointF(i, -i));
    const QPointF* const first = curve.first();
    for (int i = fewPoints; i < CurveData::longRun; ++i)
        curve.append(QPointF(i, -i));
    QCOMPARE(curve.first(), first);
    QCOMPARE(curve.sample(0), QPointF(0.0, 0.0));
    QCOMPARE(curve.sample(CurveData::longRun - 1),
             QPointF(CurveData::longRun - 1, 1 - CurveData::longRun));
}

void TestIncrementalPlot::boundingRectangleIsComputedOnceUntilCleared()
{
    CurveData curve;
    curve.append(QPointF(1.0, 2.0));
    curve.append(QPointF(3.0, 5.0));
    QCOMPARE(curve.boundingRect(), QRectF(1.0, 2.0, 2.0, 3.0));

    // The rectangle does not follow: all axes have explicit scales, so nothing needs it.
    curve.append(QPointF(100.0, 100.0));
    QCOMPARE(curve.boundingRect(), QRectF(1.0, 2.0, 2.0, 3.0));

    curve.clear();
    curve.append(QPointF(7.0, 8.0));
    curve.append(QPointF(9.0, 9.0));
    QCOMPARE(curve.boundingRect(), QRectF(7.0, 8.0, 2.0, 1.0));
}

void TestIncrementalPlot::boundingRectangleOfNothingIsInvalid()
{
    const CurveData curve;
    QVERIFY(curve.boundingRect().width() < 0.0);
}

QTEST_MAIN(TestIncrementalPlot)
#include "tst_incrementalplot.moc"
