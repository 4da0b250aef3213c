#include "plotonscreen.h"
#include "support/widgetcheck.h"

#include <QSignalSpy>
#include <QtTest>
#include <qwt_plot_layout.h>
#include <qwt_scale_widget.h>

Q_DECLARE_METATYPE(ScrollZoomer::ScrollBarPosition)

namespace {

const QRectF middle(-1.0, -1.0, 2.0, 2.0);

/// Distances that the scales keep at their ends for labels that stick out: bottom, then left.
QVector<int> borderDistances(const PlotOnScreen& screen)
{
    QVector<int> distances;
    for (const int axis : {QwtPlot::xBottom, QwtPlot::yLeft}) {
        int start = -1;
        int end = -1;
        screen.plot.axisWidget(axis)->getMinBorderDist(start, end);
        distances << start << end;
    }
    return distances;
}

const QVector<int> noDistances(4, 0);

} // namespace

class TestScrollZoomer final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void zoomingInHidesTheFarAxesAndReleasesTheCanvas();
    void zoomingBackRestoresAxesAlignmentAndBorders();
    void plotAtItsBaseMakesNoBars();
    void zoomedPlotShowsBothBarsAndTheCorner();
    void zoomedOneWayShowsOneBar();
    void barIsShownWhicheverEndIsCutOff_data();
    void barIsShownWhicheverEndIsCutOff();
    void barsAndCornerTakeThePlotsBackground();
    void barsTakeMarginOnceAndGiveItBack();
    void barsFollowTheCanvasSize();
    void barsCanBeLaidOutOnEitherSide_data();
    void barsCanBeLaidOutOnEitherSide();
    void barThatChangesSidesTakesItsMarginAlong();
    void barModeOverridesTheNeed();
    void sameModeAndPositionDoNothing();
    void oppositeAxisIsAcrossThePlot_data();
    void oppositeAxisIsAcrossThePlot();
    void horizontalBarKeepsTheTop();
    void verticalBarKeepsTheLeftEdge();
    void barOfADescendingAxisIsInverted();
    void wheelOnTheBarScrollsThePlot();
    void cornerWidgetIsReplaced();
    void deletedBarIsMadeAnew();
    void cornerThatLeavesTheCanvasIsMadeAnew();
    void zoomerTakesItsWidgetsAlong();
};

void TestScrollZoomer::zoomingInHidesTheFarAxesAndReleasesTheCanvas()
{
    PlotOnScreen screen;
    QVERIFY(screen.shown);
    // A range whose ends carry labels, which stick out of the scale.
    screen.plot.setRange(4.0, -4.0);
    QApplication::processEvents();
    screen.zoomer.zoom(middle);
    QVERIFY(!screen.plot.axisEnabled(QwtPlot::xTop));
    QVERIFY(!screen.plot.axisEnabled(QwtPlot::yRight));
    QVERIFY(screen.plot.axisEnabled(QwtPlot::xBottom));
    QVERIFY(screen.plot.axisEnabled(QwtPlot::yLeft));
    for (int axis = 0; axis < QwtPlot::axisCnt; ++axis)
        QVERIFY(!screen.plot.plotLayout()->alignCanvasToScale(axis));
    for (const int distance : borderDistances(screen))
        QVERIFY(distance > 0);
}

void TestScrollZoomer::zoomingBackRestoresAxesAlignmentAndBorders()
{
    PlotOnScreen screen;
    // A range whose ends carry labels, which stick out of the scale.
    screen.plot.setRange(4.0, -4.0);
    screen.plot.plotLayout()->setAlignCanvasToScale(QwtPlot::yRight, false);
    QCOMPARE(borderDistances(screen), noDistances);
    screen.zoomer.zoom(middle);
    screen.zoomer.zoom(QRectF(-0.5, -0.5, 1.0, 1.0));
    for (const int distance : borderDistances(screen))
        QVERIFY(distance > 0);
    screen.plot.resetZoom();
    screen.plot.replot();

    for (int axis = 0; axis < QwtPlot::axisCnt; ++axis) {
        QVERIFY(screen.plot.axisEnabled(axis));
        QCOMPARE(screen.plot.plotLayout()->alignCanvasToScale(axis), axis != QwtPlot::yRight);
    }
    QCOMPARE(borderDistances(screen), noDistances);
    QVERIFY(!screen.hBar().isVisible());
    QVERIFY(!screen.vBar().isVisible());
    QVERIFY(!screen.zoomer.cornerWidget()->isVisible());
}

void TestScrollZoomer::plotAtItsBaseMakesNoBars()
{
    PlotOnScreen screen;
    screen.plot.setRange(2.0, -2.0);
    QVERIFY(!screen.zoomer.horizontalScrollBar());
    QVERIFY(!screen.zoomer.verticalScrollBar());
    QVERIFY(!screen.zoomer.cornerWidget());
}

void TestScrollZoomer::zoomedPlotShowsBothBarsAndTheCorner()
{
    PlotOnScreen screen;
    QVERIFY(screen.shown);
    screen.zoomer.zoom(QRectF(-1.0, 2.0, 2.0, 2.0));
    QApplication::processEvents();

    QVERIFY(screen.hBar().isVisible());
    QCOMPARE(screen.hBar().minBaseValue(), -5.0);
    QCOMPARE(screen.hBar().maxBaseValue(), 5.0);
    QCOMPARE(screen.hBar().value(), 500000);
    QCOMPARE(screen.hBar().pageStep(), 200000);

    // From the largest y down, so the slider of a span near the top stands near the top.
    QVERIFY(screen.vBar().isVisible());
    QVERIFY(!screen.vBar().isInverted());
    QCOMPARE(screen.vBar().minBaseValue(), 5.0);
    QCOMPARE(screen.vBar().maxBaseValue(), -5.0);
    QCOMPARE(screen.vBar().value(), 200000);

    const QRect room = screen.plot.canvas()->contentsRect();
    const int thickness = screen.hBar().extent();
    const QRect corner = screen.zoomer.cornerWidget()->geometry();
    QVERIFY(screen.zoomer.cornerWidget()->isVisible());
    QCOMPARE(corner, QRect(room.right() - thickness + 1, room.top(), thickness, thickness));
    QCOMPARE(screen.hBar().geometry(),
             QRect(room.left(), room.top(), room.width() - thickness, thickness));
    QCOMPARE(screen.vBar().geometry(), QRect(room.right() - thickness + 1, room.top() + thickness,
                                             thickness, room.height() - thickness));
}

void TestScrollZoomer::zoomedOneWayShowsOneBar()
{
    PlotOnScreen screen;
    QVERIFY(screen.shown);
    screen.zoomer.zoom(QRectF(-1.0, -5.0, 2.0, 10.0));
    QApplication::processEvents();
    QVERIFY(screen.hBar().isVisible());
    QVERIFY(!screen.zoomer.verticalScrollBar());
    QVERIFY(!screen.zoomer.cornerWidget());
    QCOMPARE(screen.hBar().width(), screen.plot.canvas()->contentsRect().width());
}

void TestScrollZoomer::barIsShownWhicheverEndIsCutOff_data()
{
    QTest::addColumn<QRectF>("rect");
    QTest::addColumn<bool>("horizontal");
    QTest::newRow("left") << QRectF(-3.0, -5.0, 8.0, 10.0) << true;
    QTest::newRow("right") << QRectF(-5.0, -5.0, 8.0, 10.0) << true;
    QTest::newRow("top") << QRectF(-5.0, -5.0, 10.0, 8.0) << false;
    QTest::newRow("bottom") << QRectF(-5.0, -3.0, 10.0, 8.0) << false;
}

void TestScrollZoomer::barIsShownWhicheverEndIsCutOff()
{
    QFETCH(QRectF, rect);
    PlotOnScreen screen;
    screen.zoomer.zoom(rect);
    QTEST(screen.zoomer.horizontalScrollBar() != nullptr, "horizontal");
    QCOMPARE(screen.zoomer.verticalScrollBar() == nullptr,
             screen.zoomer.horizontalScrollBar() != nullptr);
}

void TestScrollZoomer::barsAndCornerTakeThePlotsBackground()
{
    PlotOnScreen screen;
    screen.zoomer.zoom(middle);
    const QBrush background = screen.plot.palette().window();
    QVERIFY(screen.plot.canvas()->palette().window() != background);
    QCOMPARE(screen.hBar().palette().window(), background);
    QCOMPARE(screen.vBar().palette().window(), background);
    QCOMPARE(screen.zoomer.cornerWidget()->palette().window(), background);
}

void TestScrollZoomer::barsTakeMarginOnceAndGiveItBack()
{
    PlotOnScreen screen;
    const QwtPlotLayout& layout = *screen.plot.plotLayout();
    const int top = layout.canvasMargin(QwtPlot::xTop);
    const int right = layout.canvasMargin(QwtPlot::yRight);

    screen.zoomer.zoom(middle);
    screen.zoomer.moveTo(QPointF(1.0, 1.0));
    QCOMPARE(layout.canvasMargin(QwtPlot::xTop), top + screen.hBar().extent());
    QCOMPARE(layout.canvasMargin(QwtPlot::yRight), right + screen.vBar().extent());

    screen.plot.resetZoom();
    screen.plot.setRange(5.0, -5.0);
    QCOMPARE(layout.canvasMargin(QwtPlot::xTop), top);
    QCOMPARE(layout.canvasMargin(QwtPlot::yRight), right);
}

void TestScrollZoomer::barsFollowTheCanvasSize()
{
    PlotOnScreen screen;
    QVERIFY(screen.shown);
    screen.zoomer.zoom(middle);
    screen.plot.resize(600, 300);
    QTRY_COMPARE(screen.vBar().geometry().right(), screen.plot.canvas()->contentsRect().right());
    QTRY_COMPARE(screen.vBar().geometry().bottom(), screen.plot.canvas()->contentsRect().bottom());
    QCOMPARE(screen.hBar().geometry().right() + 1, screen.vBar().geometry().left());
}

void TestScrollZoomer::barsCanBeLaidOutOnEitherSide_data()
{
    QTest::addColumn<ScrollZoomer::ScrollBarPosition>("horizontal");
    QTest::addColumn<ScrollZoomer::ScrollBarPosition>("vertical");
    const auto attached = ScrollZoomer::AttachedToScale;
    const auto opposite = ScrollZoomer::OppositeToScale;
    QTest::newRow("top, right") << opposite << opposite;
    QTest::newRow("bottom, right") << attached << opposite;
    QTest::newRow("top, left") << opposite << attached;
    QTest::newRow("bottom, left") << attached << attached;
}

void TestScrollZoomer::barsCanBeLaidOutOnEitherSide()
{
    QFETCH(ScrollZoomer::ScrollBarPosition, horizontal);
    QFETCH(ScrollZoomer::ScrollBarPosition, vertical);
    PlotOnScreen screen;
    QVERIFY(screen.shown);
    screen.zoomer.setHScrollBarPosition(horizontal);
    screen.zoomer.setVScrollBarPosition(vertical);
    QCOMPARE(screen.zoomer.hScrollBarPosition(), horizontal);
    QCOMPARE(screen.zoomer.vScrollBarPosition(), vertical);
    screen.zoomer.zoom(middle);
    QApplication::processEvents();

    const QRect room = screen.plot.canvas()->contentsRect();
    const QRect hRect = screen.hBar().geometry();
    const QRect vRect = screen.vBar().geometry();
    const QRect corner = screen.zoomer.cornerWidget()->geometry();
    if (horizontal == ScrollZoomer::OppositeToScale)
        QCOMPARE(hRect.top(), room.top());
    else
        QCOMPARE(hRect.bottom(), room.bottom());
    if (vertical == ScrollZoomer::OppositeToScale)
        QCOMPARE(vRect.right(), room.right());
    else
        QCOMPARE(vRect.left(), room.left());

    QCOMPARE(corner.topLeft(), QPoint(vRect.left(), hRect.top()));
    QCOMPARE(corner.size(), QSize(vRect.width(), hRect.height()));
    QVERIFY(!hRect.intersects(vRect) && !hRect.intersects(corner) && !vRect.intersects(corner));
    QCOMPARE(hRect.width() + corner.width(), room.width());
    QCOMPARE(vRect.height() + corner.height(), room.height());
}

void TestScrollZoomer::barThatChangesSidesTakesItsMarginAlong()
{
    PlotOnScreen screen;
    const QwtPlotLayout& layout = *screen.plot.plotLayout();
    const int top = layout.canvasMargin(QwtPlot::xTop);
    const int bottom = layout.canvasMargin(QwtPlot::xBottom);
    screen.zoomer.zoom(middle);
    screen.zoomer.setHScrollBarPosition(ScrollZoomer::AttachedToScale);
    QCOMPARE(layout.canvasMargin(QwtPlot::xTop), top);
    QCOMPARE(layout.canvasMargin(QwtPlot::xBottom), bottom + screen.hBar().extent());
}

void TestScrollZoomer::barModeOverridesTheNeed()
{
    PlotOnScreen screen;
    QVERIFY(screen.shown);
    QCOMPARE(screen.zoomer.hScrollBarMode(), Qt::ScrollBarAsNeeded);
    QCOMPARE(screen.zoomer.vScrollBarMode(), Qt::ScrollBarAsNeeded);

    screen.zoomer.setHScrollBarMode(Qt::ScrollBarAlwaysOn);
    QVERIFY(screen.hBar().isVisible());

    screen.zoomer.setVScrollBarMode(Qt::ScrollBarAlwaysOff);
    screen.zoomer.zoom(middle);
    QVERIFY(!screen.zoomer.verticalScrollBar());
}

void TestScrollZoomer::sameModeAndPositionDoNothing()
{
    PlotOnScreen screen;
    screen.zoomer.zoom(middle);
    screen.hBar().setGeometry(0, 0, 1, 1);
    screen.zoomer.setHScrollBarMode(Qt::ScrollBarAsNeeded);
    screen.zoomer.setHScrollBarPosition(ScrollZoomer::OppositeToScale);
    QCOMPARE(screen.hBar().geometry(), QRect(0, 0, 1, 1));
}

void TestScrollZoomer::oppositeAxisIsAcrossThePlot_data()
{
    QTest::addColumn<int>("axis");
    QTest::addColumn<int>("opposite");
    QTest::newRow("left") << int(QwtPlot::yLeft) << int(QwtPlot::yRight);
    QTest::newRow("right") << int(QwtPlot::yRight) << int(QwtPlot::yLeft);
    QTest::newRow("bottom") << int(QwtPlot::xBottom) << int(QwtPlot::xTop);
    QTest::newRow("top") << int(QwtPlot::xTop) << int(QwtPlot::xBottom);
    QTest::newRow("no axis") << 4 << 4;
}

void TestScrollZoomer::oppositeAxisIsAcrossThePlot()
{
    QFETCH(int, axis);
    QTEST(ScrollZoomer::oppositeAxis(axis), "opposite");
}

void TestScrollZoomer::horizontalBarKeepsTheTop()
{
    PlotOnScreen screen;
    screen.zoomer.zoom(QRectF(-1.0, -0.7, 2.0, 2.0));
    QSignalSpy zoomed(&screen.zoomer, &QwtPlotZoomer::zoomed);
    screen.hBar().setValue(600000);
    QCOMPARE(screen.zoomer.zoomRect(), QRectF(0.0, -0.7, 2.0, 2.0));
    QCOMPARE(zoomed.size(), 1);
    QCOMPARE(zoomed[0][0].toRectF(), screen.zoomer.zoomRect());
}

void TestScrollZoomer::verticalBarKeepsTheLeftEdge()
{
    PlotOnScreen screen;
    screen.zoomer.zoom(QRectF(-0.7, -1.0, 2.0, 2.0));
    QSignalSpy zoomed(&screen.zoomer, &QwtPlotZoomer::zoomed);
    screen.vBar().setValue(screen.vBar().minimum());
    // The top of the bar is the top of the plot.
    QCOMPARE(screen.zoomer.zoomRect(), QRectF(-0.7, 3.0, 2.0, 2.0));
    QCOMPARE(zoomed.size(), 1);
}

void TestScrollZoomer::barOfADescendingAxisIsInverted()
{
    PlotOnScreen screen;
    screen.plot.setAxisScale(QwtPlot::xBottom, 5.0, -5.0);
    screen.plot.replot();
    screen.zoomer.setZoomBase(true);
    screen.zoomer.zoom(QRectF(2.0, -1.0, 2.0, 2.0));
    QVERIFY(screen.hBar().isInverted());
    QCOMPARE(screen.hBar().value(), 200000);
}

void TestScrollZoomer::wheelOnTheBarScrollsThePlot()
{
    PlotOnScreen screen;
    QVERIFY(screen.shown);
    screen.zoomer.zoom(middle);
    QApplication::processEvents();

    const QPoint onBar = screen.hBar().rect().center();
    QWheelEvent wheel(onBar, screen.hBar().mapToGlobal(onBar), QPoint(), QPoint(0, -120),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&screen.hBar(), &wheel);
    QVERIFY(screen.zoomer.zoomRect().left() > -1.0);
    QCOMPARE(screen.zoomer.zoomRect().top(), -1.0);
}

void TestScrollZoomer::cornerWidgetIsReplaced()
{
    PlotOnScreen screen;
    QVERIFY(screen.shown);
    screen.zoomer.zoom(middle);
    QPointer<QWidget> first = screen.zoomer.cornerWidget();
    QVERIFY(first);
    QVERIFY(first->autoFillBackground());

    auto* second = new QWidget(&screen.plot);
    screen.zoomer.setCornerWidget(second);
    QVERIFY(!first);
    QCOMPARE(screen.zoomer.cornerWidget(), second);
    QCOMPARE(second->parentWidget(), screen.plot.canvas());
    QVERIFY(second->isVisible());

    screen.zoomer.setCornerWidget(second);
    QCOMPARE(screen.zoomer.cornerWidget(), second);
}

void TestScrollZoomer::deletedBarIsMadeAnew()
{
    PlotOnScreen screen;
    screen.zoomer.zoom(middle);
    delete screen.zoomer.horizontalScrollBar();
    QVERIFY(!screen.zoomer.horizontalScrollBar());

    // A bar that only leaves the canvas is none of the zoomer's any more.
    QWidget elsewhere;
    screen.vBar().setParent(&elsewhere);
    QVERIFY(!screen.zoomer.verticalScrollBar());

    screen.zoomer.zoom(QRectF(-0.5, -0.5, 1.0, 1.0));
    QVERIFY(screen.zoomer.horizontalScrollBar());
    QVERIFY(screen.zoomer.verticalScrollBar());
}

void TestScrollZoomer::cornerThatLeavesTheCanvasIsMadeAnew()
{
    PlotOnScreen screen;
    screen.zoomer.zoom(middle);
    QWidget elsewhere;
    QPointer<QWidget> first = screen.zoomer.cornerWidget();
    QVERIFY(first);
    first->setParent(&elsewhere);
    QVERIFY(!screen.zoomer.cornerWidget());

    screen.zoomer.zoom(QRectF(-0.5, -0.5, 1.0, 1.0));
    QVERIFY(first);
    QVERIFY(screen.zoomer.cornerWidget());
    QVERIFY(screen.zoomer.cornerWidget() != first);
}

void TestScrollZoomer::zoomerTakesItsWidgetsAlong()
{
    GenericPlot plot(nullptr);
    auto zoomer = std::make_unique<Zoomer>(plot.canvas());
    zoomer->zoom(middle);
    QPointer<QWidget> hBar = zoomer->horizontalScrollBar();
    QPointer<QWidget> vBar = zoomer->verticalScrollBar();
    QPointer<QWidget> corner = zoomer->cornerWidget();
    QVERIFY(hBar && vBar && corner);
    zoomer.reset();
    QVERIFY(!hBar);
    QVERIFY(!vBar);
    QVERIFY(!corner);
}

QTEST_MAIN(TestScrollZoomer)
#include "tst_scrollzoomer.moc"
