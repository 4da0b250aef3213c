#include "plots/genericplot.h"
#include "plots/scrollbar.h"
#include "plots/zoomer.h"
#include "widgetcheck.h"

#include <QSignalSpy>
#include <QWindow>
#include <QtTest>
#include <qwt_plot_layout.h>
#include <qwt_scale_draw.h>
#include <qwt_scale_widget.h>
#include <qwt_text.h>

Q_DECLARE_METATYPE(Qt::MouseButton)
Q_DECLARE_METATYPE(ScrollZoomer::ScrollBarPosition)

namespace {

const QRectF middle(-1.0, -1.0, 2.0, 2.0);

/// A plot on the screen, with its zoomer, and the hands of a user.
class PlotOnScreen final
{
public:
    PlotOnScreen()
    {
        plot.resize(400, 400);
        plot.show();
        shown = QTest::qWaitForWindowExposed(&plot);
        QApplication::processEvents();
    }

    ScrollBar& hBar() { return *zoomer.horizontalScrollBar(); }
    ScrollBar& vBar() { return *zoomer.verticalScrollBar(); }

    QPoint pixelAt(double x, double y) const
    {
        return QPoint(qRound(plot.transform(QwtPlot::xBottom, x)),
                      qRound(plot.transform(QwtPlot::yLeft, y)));
    }

    void press(const QPoint& onCanvas, Qt::MouseButton button = Qt::LeftButton,
               Qt::KeyboardModifiers keys = Qt::NoModifier)
    {
        QTest::mousePress(window(), button, keys, inWindow(onCanvas));
    }
    void moveTo(const QPoint& onCanvas) { QTest::mouseMove(window(), inWindow(onCanvas)); }
    void release(const QPoint& onCanvas, Qt::MouseButton button = Qt::LeftButton,
                 Qt::KeyboardModifiers keys = Qt::NoModifier)
    {
        QTest::mouseRelease(window(), button, keys, inWindow(onCanvas));
    }

    void drag(const QPoint& from, const QPoint& to, Qt::MouseButton button = Qt::LeftButton,
              Qt::KeyboardModifiers keys = Qt::NoModifier)
    {
        press(from, button, keys);
        moveTo((from + to) / 2);
        moveTo(to);
        release(to, button, keys);
        QApplication::processEvents();
    }

    /// The corners of the rubber band while it is drawn.
    QPolygon band() const { return zoomer.selection(); }

    GenericPlot plot{nullptr};
    Zoomer& zoomer = *plot.canvas()->findChild<Zoomer*>();
    bool shown = false;

private:
    QWindow* window() const { return plot.windowHandle(); }
    QPoint inWindow(const QPoint& onCanvas) const { return plot.canvas()->mapTo(&plot, onCanvas); }
};

bool near(double actual, double expected, double tolerance)
{
    return qAbs(actual - expected) <= tolerance;
}

} // namespace

class ZoomerTest final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void draggedBandZoomsIn();
    void noOtherButtonZooms_data();
    void noOtherButtonZooms();
    void disabledZoomerIgnoresTheMouse();
    void keysDoNotStepBackOnceZoomed_data();
    void keysDoNotStepBackOnceZoomed();

    void zoomingInHidesTheFarAxesAndReleasesTheCanvas();
    void zoomingBackRestoresAxesAlignmentAndBorders();
    void zoomedScaleKeepsRoomForTheWidestLabel();
    void plotAtItsBaseMakesNoBars();
    void zoomedPlotShowsBothBarsAndTheCorner();
    void zoomedOneWayShowsOneBar();
    void barsAndCornerTakeThePlotsBackground();
    void barsTakeMarginOnceAndGiveItBack();
    void newRangeWhileZoomedIsTheNewBase();
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
    void bandStaysOutOfTheScrollBars();
    void bandIsLimited_data();
    void bandIsLimited();

    void cornerWidgetIsReplaced();
    void deletedBarIsMadeAnew();
    void zoomerTakesItsWidgetsAlong();
};

void ZoomerTest::draggedBandZoomsIn()
{
    PlotOnScreen screen;
    QVERIFY(screen.shown);
    QSignalSpy zoomed(&screen.zoomer, &QwtPlotZoomer::zoomed);
    screen.drag(screen.pixelAt(-2.0, 3.0), screen.pixelAt(1.0, -1.0));

    QCOMPARE(screen.zoomer.zoomRectIndex(), 1u);
    QCOMPARE(zoomed.size(), 1);
    const QRectF rect = screen.zoomer.zoomRect();
    const double pixel = 10.0 / screen.plot.canvas()->width() * 2.0;
    QVERIFY(near(rect.left(), -2.0, pixel));
    QVERIFY(near(rect.right(), 1.0, pixel));
    QVERIFY(near(rect.top(), -1.0, pixel));
    QVERIFY(near(rect.bottom(), 3.0, pixel));
}

void ZoomerTest::noOtherButtonZooms_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::addColumn<Qt::KeyboardModifiers>("keys");
    QTest::newRow("right") << Qt::RightButton << Qt::KeyboardModifiers();
    QTest::newRow("middle") << Qt::MiddleButton << Qt::KeyboardModifiers();
    QTest::newRow("shift and middle")
        << Qt::MiddleButton << Qt::KeyboardModifiers(Qt::ShiftModifier);
}

void ZoomerTest::noOtherButtonZooms()
{
    QFETCH(Qt::MouseButton, button);
    QFETCH(Qt::KeyboardModifiers, keys);
    PlotOnScreen screen;
    QVERIFY(screen.shown);
    screen.zoomer.zoom(middle);

    screen.drag(screen.pixelAt(-0.5, 0.5), screen.pixelAt(0.5, -0.5), button, keys);
    QCOMPARE(screen.zoomer.zoomRectIndex(), 1u);
    QCOMPARE(screen.zoomer.zoomRect(), middle);
}

void ZoomerTest::disabledZoomerIgnoresTheMouse()
{
    PlotOnScreen screen;
    QVERIFY(screen.shown);
    screen.plot.disableZoomer();
    screen.drag(screen.pixelAt(-2.0, 3.0), screen.pixelAt(1.0, -1.0));
    QCOMPARE(screen.zoomer.zoomRectIndex(), 0u);
    QVERIFY(!screen.zoomer.isActive());
}

void ZoomerTest::keysDoNotStepBackOnceZoomed_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("undo") << int(Qt::Key_Minus);
    QTest::newRow("home") << int(Qt::Key_Escape);
}

void ZoomerTest::keysDoNotStepBackOnceZoomed()
{
    QFETCH(int, key);
    PlotOnScreen screen;
    QVERIFY(screen.shown);
    screen.zoomer.zoom(middle);
    QVERIFY(screen.zoomer.keyPattern()[QwtEventPattern::KeyUndo] == QwtEventPattern::KeyPattern(1));
    QVERIFY(screen.zoomer.keyPattern()[QwtEventPattern::KeyHome] == QwtEventPattern::KeyPattern(2));

    QTest::keyClick(screen.plot.canvas(), Qt::Key(key));
    QCOMPARE(screen.zoomer.zoomRectIndex(), 1u);
}

void ZoomerTest::zoomingInHidesTheFarAxesAndReleasesTheCanvas()
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

    int start = 0;
    int end = 0;
    screen.plot.axisWidget(QwtPlot::xBottom)->getMinBorderDist(start, end);
    QVERIFY(start > 0);
    QVERIFY(end > 0);
}

void ZoomerTest::zoomingBackRestoresAxesAlignmentAndBorders()
{
    PlotOnScreen screen;
    screen.plot.plotLayout()->setAlignCanvasToScale(QwtPlot::yRight, false);
    screen.zoomer.zoom(middle);
    screen.zoomer.zoom(QRectF(-0.5, -0.5, 1.0, 1.0));
    screen.plot.resetZoom();
    screen.plot.replot();

    for (int axis = 0; axis < QwtPlot::axisCnt; ++axis) {
        QVERIFY(screen.plot.axisEnabled(axis));
        QCOMPARE(screen.plot.plotLayout()->alignCanvasToScale(axis), axis != QwtPlot::yRight);
    }
    for (int axis : {QwtPlot::xBottom, QwtPlot::yLeft}) {
        int start = -1;
        int end = -1;
        screen.plot.axisWidget(axis)->getMinBorderDist(start, end);
        QCOMPARE(start, 0);
        QCOMPARE(end, 0);
    }
    QVERIFY(!screen.hBar().isVisible());
    QVERIFY(!screen.vBar().isVisible());
    QVERIFY(!screen.zoomer.cornerWidget()->isVisible());
}

void ZoomerTest::zoomedScaleKeepsRoomForTheWidestLabel()
{
    PlotOnScreen screen;
    screen.plot.setRange(1234.5, -1234.5);
    const QwtScaleWidget* scale = screen.plot.axisWidget(QwtPlot::yLeft);
    const QwtScaleDraw* draw = scale->scaleDraw();
    QCOMPARE(draw->minimumExtent(), 0.0);

    screen.zoomer.zoom(middle);
    const double labelWidth = draw->labelSize(scale->font(), 1234.5).width();
    QCOMPARE(draw->minimumExtent(), draw->spacing() + draw->maxTickLength() + 1.0 + labelWidth);

    screen.plot.resetZoom();
    QCOMPARE(draw->minimumExtent(), 0.0);
}

void ZoomerTest::plotAtItsBaseMakesNoBars()
{
    PlotOnScreen screen;
    screen.plot.setRange(2.0, -2.0);
    QVERIFY(!screen.zoomer.horizontalScrollBar());
    QVERIFY(!screen.zoomer.verticalScrollBar());
    QVERIFY(!screen.zoomer.cornerWidget());
}

void ZoomerTest::zoomedPlotShowsBothBarsAndTheCorner()
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

void ZoomerTest::zoomedOneWayShowsOneBar()
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

void ZoomerTest::barsAndCornerTakeThePlotsBackground()
{
    PlotOnScreen screen;
    screen.zoomer.zoom(middle);
    const QBrush background = screen.plot.palette().window();
    QVERIFY(screen.plot.canvas()->palette().window() != background);
    QCOMPARE(screen.hBar().palette().window(), background);
    QCOMPARE(screen.vBar().palette().window(), background);
    QCOMPARE(screen.zoomer.cornerWidget()->palette().window(), background);
}

void ZoomerTest::barsTakeMarginOnceAndGiveItBack()
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

void ZoomerTest::newRangeWhileZoomedIsTheNewBase()
{
    PlotOnScreen screen;
    screen.zoomer.zoom(middle);
    screen.plot.setRange(3.0, -3.0);
    QCOMPARE(screen.zoomer.zoomRectIndex(), 0u);
    QCOMPARE(screen.zoomer.zoomBase(), QRectF(-3.0, -3.0, 6.0, 6.0));
    QVERIFY(!screen.hBar().isVisible());
    QVERIFY(screen.plot.axisEnabled(QwtPlot::xTop));
}

void ZoomerTest::barsFollowTheCanvasSize()
{
    PlotOnScreen screen;
    QVERIFY(screen.shown);
    screen.zoomer.zoom(middle);
    screen.plot.resize(600, 300);
    const QRect room = screen.plot.canvas()->contentsRect();
    QTRY_COMPARE(screen.vBar().geometry().right(), screen.plot.canvas()->contentsRect().right());
    QTRY_COMPARE(screen.vBar().geometry().bottom(), screen.plot.canvas()->contentsRect().bottom());
    QCOMPARE(screen.hBar().geometry().right() + 1, screen.vBar().geometry().left());
    QVERIFY(!room.isEmpty());
}

void ZoomerTest::barsCanBeLaidOutOnEitherSide_data()
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

void ZoomerTest::barsCanBeLaidOutOnEitherSide()
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

void ZoomerTest::barThatChangesSidesTakesItsMarginAlong()
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

void ZoomerTest::barModeOverridesTheNeed()
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

void ZoomerTest::sameModeAndPositionDoNothing()
{
    PlotOnScreen screen;
    screen.zoomer.zoom(middle);
    screen.hBar().setGeometry(0, 0, 1, 1);
    screen.zoomer.setHScrollBarMode(Qt::ScrollBarAsNeeded);
    screen.zoomer.setHScrollBarPosition(ScrollZoomer::OppositeToScale);
    QCOMPARE(screen.hBar().geometry(), QRect(0, 0, 1, 1));
}

void ZoomerTest::oppositeAxisIsAcrossThePlot_data()
{
    QTest::addColumn<int>("axis");
    QTest::addColumn<int>("opposite");
    QTest::newRow("left") << int(QwtPlot::yLeft) << int(QwtPlot::yRight);
    QTest::newRow("right") << int(QwtPlot::yRight) << int(QwtPlot::yLeft);
    QTest::newRow("bottom") << int(QwtPlot::xBottom) << int(QwtPlot::xTop);
    QTest::newRow("top") << int(QwtPlot::xTop) << int(QwtPlot::xBottom);
    QTest::newRow("no axis") << 4 << 4;
}

void ZoomerTest::oppositeAxisIsAcrossThePlot()
{
    QFETCH(int, axis);
    QTEST(ScrollZoomer::oppositeAxis(axis), "opposite");
}

void ZoomerTest::horizontalBarKeepsTheTop()
{
    PlotOnScreen screen;
    screen.zoomer.zoom(QRectF(-1.0, -0.7, 2.0, 2.0));
    QSignalSpy zoomed(&screen.zoomer, &QwtPlotZoomer::zoomed);
    screen.hBar().setValue(600000);
    QCOMPARE(screen.zoomer.zoomRect(), QRectF(0.0, -0.7, 2.0, 2.0));
    QCOMPARE(zoomed.size(), 1);
    QCOMPARE(zoomed[0][0].toRectF(), screen.zoomer.zoomRect());
}

void ZoomerTest::verticalBarKeepsTheLeftEdge()
{
    PlotOnScreen screen;
    screen.zoomer.zoom(QRectF(-0.7, -1.0, 2.0, 2.0));
    QSignalSpy zoomed(&screen.zoomer, &QwtPlotZoomer::zoomed);
    screen.vBar().setValue(screen.vBar().minimum());
    // The top of the bar is the top of the plot.
    QCOMPARE(screen.zoomer.zoomRect(), QRectF(-0.7, 3.0, 2.0, 2.0));
    QCOMPARE(zoomed.size(), 1);
}

void ZoomerTest::barOfADescendingAxisIsInverted()
{
    PlotOnScreen screen;
    screen.plot.setAxisScale(QwtPlot::xBottom, 5.0, -5.0);
    screen.plot.replot();
    screen.zoomer.setZoomBase(true);
    screen.zoomer.zoom(QRectF(2.0, -1.0, 2.0, 2.0));
    QVERIFY(screen.hBar().isInverted());
    QCOMPARE(screen.hBar().value(), 200000);
}

void ZoomerTest::wheelOnTheBarScrollsThePlot()
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

void ZoomerTest::bandStaysOutOfTheScrollBars()
{
    PlotOnScreen screen;
    QVERIFY(screen.shown);
    screen.zoomer.zoom(middle);
    QApplication::processEvents();
    const QRect canvas = screen.plot.canvas()->contentsRect();

    screen.press(canvas.center());
    screen.moveTo(canvas.center() + QPoint(20, -20));
    screen.moveTo(QPoint(canvas.right() - 1, canvas.top() + 1));
    const QPoint corner = screen.band().last();
    QCOMPARE(corner.x(), screen.hBar().contentsRect().right());
    QCOMPARE(corner.y(), screen.vBar().contentsRect().right());
    QVERIFY(!screen.vBar().geometry().contains(corner));
    // The limit counts from the canvas's edge and the bar from inside its frame, on purpose.
    const int frame = canvas.top();
    QVERIFY(corner.y() + frame >= screen.hBar().geometry().bottom());

    screen.moveTo(QPoint(canvas.left() - 5, canvas.bottom() + 5));
    QCOMPARE(screen.band().last(), canvas.bottomLeft());
    screen.release(canvas.bottomLeft());
}

void ZoomerTest::bandIsLimited_data()
{
    QTest::addColumn<bool>("hBar");
    QTest::addColumn<bool>("vBar");
    QTest::addColumn<QPoint>("pos");
    QTest::addColumn<QPoint>("limited");
    // A canvas with a frame of 2 pixels and bars of 14.
    QTest::newRow("inside") << true << true << QPoint(50, 60) << QPoint(50, 60);
    QTest::newRow("right of all") << false << false << QPoint(150, 60) << QPoint(97, 60);
    QTest::newRow("right, with bar") << true << true << QPoint(150, 60) << QPoint(81, 60);
    QTest::newRow("above all") << false << false << QPoint(50, -9) << QPoint(50, 2);
    QTest::newRow("above, with bar") << true << true << QPoint(50, -9) << QPoint(50, 13);
    QTest::newRow("within the bar above") << true << true << QPoint(50, 8) << QPoint(50, 13);
    QTest::newRow("left") << true << true << QPoint(-3, 60) << QPoint(2, 60);
    QTest::newRow("below") << true << true << QPoint(50, 120) << QPoint(50, 97);
    QTest::newRow("right above, vertical bar alone")
        << false << true << QPoint(150, -9) << QPoint(97, 13);
    QTest::newRow("right above, horizontal bar alone")
        << true << false << QPoint(150, -9) << QPoint(81, 2);
}

void ZoomerTest::bandIsLimited()
{
    QFETCH(bool, hBar);
    QFETCH(bool, vBar);
    QFETCH(QPoint, pos);
    BandLimits limits;
    limits.canvas = QRect(2, 2, 96, 96);
    if (hBar)
        limits.hScrollBar = QRect(0, 0, 82, 14);
    if (vBar)
        limits.vScrollBar = QRect(0, 0, 14, 82);
    QTEST(limitBand(pos, limits), "limited");
}

void ZoomerTest::cornerWidgetIsReplaced()
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

void ZoomerTest::deletedBarIsMadeAnew()
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

void ZoomerTest::zoomerTakesItsWidgetsAlong()
{
    GenericPlot plot(nullptr);
    auto zoomer = std::make_unique<Zoomer>(plot.canvas());
    zoomer->zoom(middle);
    QPointer<QWidget> bar = zoomer->horizontalScrollBar();
    QPointer<QWidget> corner = zoomer->cornerWidget();
    QVERIFY(bar && corner);
    zoomer.reset();
    QVERIFY(!bar);
    QVERIFY(!corner);
}

QTEST_MAIN(ZoomerTest)
#include "tst_zoomer.moc"
