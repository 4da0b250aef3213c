#include "plots/curvedata.h"
#include "plots/genericplot.h"
#include "support/plotcanvas.h"
#include "support/replotcounter.h"
#include "support/widgetcheck.h"

#include <QPainterPath>
#include <QtTest>
#include <qwt_plot_grid.h>
#include <qwt_plot_layout.h>
#include <qwt_plot_shapeitem.h>
#include <qwt_plot_zoomer.h>

namespace {

constexpr int allAxes[] = {QwtPlot::yLeft, QwtPlot::yRight, QwtPlot::xBottom, QwtPlot::xTop};

QwtPlotZoomer* zoomerOf(const GenericPlot& plot)
{
    return plot.canvas()->findChild<QwtPlotZoomer*>();
}

QList<const QwtPlotShapeItem*> midLines(const GenericPlot& plot, const QString& title)
{
    QList<const QwtPlotShapeItem*> lines;
    const QwtPlotItemList items = plot.itemList(QwtPlotItem::Rtti_PlotShape);
    for (const QwtPlotItem* item : items) {
        if (item->title().text() == title)
            lines.append(static_cast<const QwtPlotShapeItem*>(item));
    }
    return lines;
}

QList<QRectF> midLineRects(const GenericPlot& plot, const QString& title)
{
    QList<QRectF> rects;
    for (const QwtPlotShapeItem* line : midLines(plot, title))
        rects.append(line->shape().boundingRect());
    return rects;
}

int pixelsOf(const QColor& color, const QImage& picture)
{
    int count = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            count += picture.pixelColor(x, y) == color ? 1 : 0;
    }
    return count;
}

const QString vertical = QStringLiteral("Vertikale Mittellinie");
const QString horizontal = QStringLiteral("Horizontale Mittellinie");

} // namespace

class TestGenericPlot final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void newPlotShowsAllFourAxesOverTheFullRange();
    void axisFontsStayNormalWhateverThePlotsFont();
    void newPlotIsFramelessAndAlignedWithItsScales();
    void newPlotHasAGreyDottedGridOnLightBlue();
    void sizeHintLeavesTheSizeToTheLayout();

    void runningPlotHasNoBackingStore();
    void clearEmptiesOneCurveOrAll();
    void clearRepaintsTwice();
    void appendedPointShowsAfterReplot();

    void crossHairsAreTwoDarkGreyLinesOverTheRange();
    void midLineOfNoHeightShowsOnThePlot();
    void midLineIsShownWithTheNextChange();
    void smallerRangeLeavesTheLongerMidLines();
    void rangeSetsAllAxesAndTheZoomBase();

    void leftButtonAloneZoomsAfterConstruction();
    void rubberBandIsSolidRed();
    void disabledZoomerTakesNeitherMouseNorKeys();
    void zeroingTheZoomStackOnlyHidesTheTracker();
    void resettingTheZoomShowsTheFullRange();
};

void TestGenericPlot::newPlotShowsAllFourAxesOverTheFullRange()
{
    GenericPlot plot(nullptr);
    QCOMPARE(plot.maxRange(), 5.0);
    QCOMPARE(plot.minRange(), -5.0);
    for (int axis : allAxes) {
        QVERIFY(plot.axisEnabled(axis));
        QCOMPARE(plot.axisScaleDiv(axis).lowerBound(), -5.0);
        QCOMPARE(plot.axisScaleDiv(axis).upperBound(), 5.0);
        QVERIFY(!plot.axisAutoScale(axis));
        QCOMPARE(plot.axisFont(axis).family(), QStringLiteral("Sans Serif"));
        QCOMPARE(plot.axisFont(axis).pointSize(), 8);
    }
}

void TestGenericPlot::axisFontsStayNormalWhateverThePlotsFont()
{
    GenericPlot plot(nullptr);
    plot.setFont(QFont(QStringLiteral("Sans Serif"), 10, QFont::Bold, true));
    for (int axis : allAxes) {
        QCOMPARE(plot.axisFont(axis).weight(), int(QFont::Normal));
        QVERIFY(!plot.axisFont(axis).italic());
        QCOMPARE(plot.axisFont(axis).pointSize(), 8);
    }
}

void TestGenericPlot::newPlotIsFramelessAndAlignedWithItsScales()
{
    GenericPlot plot(nullptr);
    QCOMPARE(plot.frameStyle(), 0);
    QCOMPARE(plot.lineWidth(), 0);
    for (int axis : allAxes)
        QVERIFY(plot.plotLayout()->alignCanvasToScale(axis));
}

void TestGenericPlot::newPlotHasAGreyDottedGridOnLightBlue()
{
    GenericPlot plot(nullptr);
    const QwtPlotItemList grids = plot.itemList(QwtPlotItem::Rtti_PlotGrid);
    QCOMPARE(grids.size(), 1);
    const auto* grid = static_cast<const QwtPlotGrid*>(grids.first());
    QVERIFY(grid->xEnabled() && grid->xMinEnabled() && grid->yEnabled() && grid->yMinEnabled());
    QCOMPARE(grid->majorPen(), QPen(Qt::gray, 0.0, Qt::DotLine));
    QCOMPARE(grid->minorPen(), QPen(Qt::gray, 0.0, Qt::DotLine));
    QCOMPARE(plot.canvasBackground(), QBrush(QColor("lightblue")));
}

void TestGenericPlot::sizeHintLeavesTheSizeToTheLayout()
{
    const GenericPlot plot(nullptr);
    QCOMPARE(plot.sizeHint(), QSize(10, 10));
}

void TestGenericPlot::runningPlotHasNoBackingStore()
{
    GenericPlot plot(nullptr);
    plot.start();
    QVERIFY(!keepsBackingStore(plot));
    plot.stop();
    QVERIFY(keepsBackingStore(plot));
}

void TestGenericPlot::clearEmptiesOneCurveOrAll()
{
    GenericPlot plot(nullptr);
    plot.addCurves(3);
    for (int curve = 0; curve < 3; ++curve)
        plot.appendData(curve, QPointF(1.0, 1.0));

    plot.clear(1);
    QCOMPARE(plot.curveData(0).size(), size_t(1));
    QCOMPARE(plot.curveData(1).size(), size_t(0));
    QCOMPARE(plot.curveData(2).size(), size_t(1));
    plot.clear(0);
    QCOMPARE(plot.curveData(0).size(), size_t(0));
    QCOMPARE(plot.curveData(2).size(), size_t(1));
    plot.clear(-1);
    QCOMPARE(plot.curveData(2).size(), size_t(0));

    plot.appendData(2, QPointF(1.0, 1.0));
    plot.clear();
    QCOMPARE(plot.curveData(2).size(), size_t(0));
}

// Emptying the curves replots once, and so does clear() itself.
void TestGenericPlot::clearRepaintsTwice()
{
    GenericPlot plot(nullptr);
    plot.addCurves(2);
    ReplotCounter counter(plot);
    plot.clear(1);
    QCOMPARE(counter.count, 2);
    plot.clear(-1);
    QCOMPARE(counter.count, 4);
    plot.clear();
    QCOMPARE(counter.count, 6);
}

void TestGenericPlot::appendedPointShowsAfterReplot()
{
    GenericPlot plot(nullptr);
    plot.resize(400, 400);
    plot.addCurve(0);
    plot.setCurveColor(Qt::magenta, 0);
    plot.setSymbolSize(QSize(9, 9));
    plot.show();
    QVERIFY(QTest::qWaitForWindowExposed(&plot));
    QCOMPARE(pixelsOf(Qt::magenta, plot.grab().toImage()), 0);

    plot.appendData(0, QPointF(1.0, 1.0));
    QCOMPARE(pixelsOf(Qt::magenta, plot.grab().toImage()), 0);
    plot.replot();
    QVERIFY(pixelsOf(Qt::magenta, plot.grab().toImage()) > 10);
}

void TestGenericPlot::crossHairsAreTwoDarkGreyLinesOverTheRange()
{
    GenericPlot plot(nullptr);
    plot.drawCrossHairs();
    QCOMPARE(midLineRects(plot, vertical), QList<QRectF>{QRectF(0.0, -5.0, 0.0, 10.0)});
    QCOMPARE(midLineRects(plot, horizontal), QList<QRectF>{QRectF(-5.0, 0.0, 10.0, 0.0)});
    QCOMPARE(midLines(plot, vertical).first()->pen(), QPen(Qt::darkGray, 1.0));
    QCOMPARE(midLines(plot, horizontal).first()->pen(), QPen(Qt::darkGray, 1.0));
}

void TestGenericPlot::midLineOfNoHeightShowsOnThePlot()
{
    GenericPlot plot(nullptr);
    plot.resize(400, 400);
    plot.addMidLine(horizontal, QRectF(0.0, 2.5, 10000.0, 0.0));
    plot.show();
    QVERIFY(QTest::qWaitForWindowExposed(&plot));
    QVERIFY(pixelsOf(Qt::darkGray, plot.canvas()->grab().toImage()) > 100);
}

void TestGenericPlot::midLineIsShownWithTheNextChange()
{
    GenericPlot plot(nullptr);
    plot.replot();
    const ReplotCounter replots(plot);
    plot.addMidLine(horizontal, QRectF(0.0, 2.5, 10000.0, 0.0));
    plot.replotIfChanged();
    QCOMPARE(replots.count, 1);
}

// Mid-lines of earlier ranges are never removed.
void TestGenericPlot::smallerRangeLeavesTheLongerMidLines()
{
    GenericPlot plot(nullptr);
    plot.setRange(4.0, -4.0);
    plot.setRange(1.5, -1.5);
    const QList<QRectF> both{QRectF(0.0, -4.0, 0.0, 8.0), QRectF(0.0, -1.5, 0.0, 3.0)};
    QCOMPARE(midLineRects(plot, vertical), both);
    QCOMPARE(midLineRects(plot, horizontal).size(), 2);
}

void TestGenericPlot::rangeSetsAllAxesAndTheZoomBase()
{
    GenericPlot plot(nullptr);
    QSignalSpy rangeChanged(&plot, &GenericPlot::rangeChanged);
    plot.setRange(2.0, -2.0);
    QCOMPARE(rangeChanged.size(), 1);
    QCOMPARE(plot.maxRange(), 2.0);
    QCOMPARE(plot.minRange(), -2.0);
    for (int axis : allAxes) {
        QCOMPARE(plot.axisScaleDiv(axis).lowerBound(), -2.0);
        QCOMPARE(plot.axisScaleDiv(axis).upperBound(), 2.0);
    }
    QCOMPARE(zoomerOf(plot)->zoomBase(), QRectF(-2.0, -2.0, 4.0, 4.0));
    QCOMPARE(zoomerOf(plot)->zoomStack().size(), 1);
}

void TestGenericPlot::leftButtonAloneZoomsAfterConstruction()
{
    const GenericPlot plot(nullptr);
    using Mouse = QwtEventPattern::MousePattern;
    const QVector<Mouse> patterns = zoomerOf(plot)->mousePattern();
    QCOMPARE(patterns.size(), 6);
    QVERIFY(patterns[QwtEventPattern::MouseSelect1] == Mouse(Qt::LeftButton));
    QVERIFY(patterns[QwtEventPattern::MouseSelect2] == Mouse(Qt::NoButton));
    QVERIFY(patterns[QwtEventPattern::MouseSelect3] == Mouse(Qt::NoButton));
    QVERIFY(patterns[QwtEventPattern::MouseSelect4] == Mouse(Qt::LeftButton, Qt::ShiftModifier));
    QVERIFY(patterns[QwtEventPattern::MouseSelect5] == Mouse(Qt::RightButton, Qt::ShiftModifier));
    QVERIFY(patterns[QwtEventPattern::MouseSelect6] == Mouse(Qt::NoButton));
}

void TestGenericPlot::rubberBandIsSolidRed()
{
    const GenericPlot plot(nullptr);
    QCOMPARE(zoomerOf(plot)->rubberBandPen(),
             QPen(Qt::red, 1.0, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
}

void TestGenericPlot::disabledZoomerTakesNeitherMouseNorKeys()
{
    GenericPlot plot(nullptr);
    plot.disableZoomer();
    for (const QwtEventPattern::MousePattern& pattern : zoomerOf(plot)->mousePattern())
        QVERIFY(pattern == QwtEventPattern::MousePattern(Qt::NoButton));
    const auto keys = zoomerOf(plot)->keyPattern();
    for (int key :
         {QwtEventPattern::KeySelect1, QwtEventPattern::KeySelect2, QwtEventPattern::KeyAbort,
          QwtEventPattern::KeyUndo, QwtEventPattern::KeyRedo, QwtEventPattern::KeyHome})
        QVERIFY(keys[key] == QwtEventPattern::KeyPattern(0));
}

// The slot does less than its name promises.
void TestGenericPlot::zeroingTheZoomStackOnlyHidesTheTracker()
{
    GenericPlot plot(nullptr);
    QwtPlotZoomer* zoomer = zoomerOf(plot);
    zoomer->zoom(QRectF(-1.0, -1.0, 2.0, 2.0));
    plot.zeroZoomStack();
    QCOMPARE(zoomer->trackerMode(), QwtPicker::AlwaysOff);
    QCOMPARE(zoomer->zoomRectIndex(), 1u);
    QCOMPARE(zoomer->zoomStack().size(), 2);
}

void TestGenericPlot::resettingTheZoomShowsTheFullRange()
{
    GenericPlot plot(nullptr);
    zoomerOf(plot)->zoom(QRectF(-1.0, -1.0, 2.0, 2.0));
    QCOMPARE(plot.axisScaleDiv(QwtPlot::xBottom).upperBound(), 1.0);

    plot.resetZoom();
    plot.replot();
    QCOMPARE(zoomerOf(plot)->zoomRectIndex(), 0u);
    for (int axis : allAxes) {
        QCOMPARE(plot.axisScaleDiv(axis).lowerBound(), -5.0);
        QCOMPARE(plot.axisScaleDiv(axis).upperBound(), 5.0);
    }
}

QTEST_MAIN(TestGenericPlot)
#include "tst_genericplot.moc"
