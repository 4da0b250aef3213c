#include "plotonscreen.h"
#include "support/widgetcheck.h"

#include <QSignalSpy>
#include <QtTest>
#include <qwt_scale_draw.h>
#include <qwt_scale_widget.h>
#include <qwt_text.h>

Q_DECLARE_METATYPE(Qt::MouseButton)

namespace {

const QRectF middle(-1.0, -1.0, 2.0, 2.0);

bool near(double actual, double expected, double tolerance)
{
    return qAbs(actual - expected) <= tolerance;
}

} // namespace

class TestZoomer final : public QObject
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
    void eachRescaleTakesTheKeysBack();
    void zoomedScaleKeepsRoomForTheWidestLabel();
    void newRangeWhileZoomedIsTheNewBase();
    void bandStopsAtTheBarBesideAndOnTheLastRowsOfTheBarAbove();
    void bandIsLimited_data();
    void bandIsLimited();
};

void TestZoomer::draggedBandZoomsIn()
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

void TestZoomer::noOtherButtonZooms_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::addColumn<Qt::KeyboardModifiers>("keys");
    QTest::newRow("right") << Qt::RightButton << Qt::KeyboardModifiers();
    QTest::newRow("middle") << Qt::MiddleButton << Qt::KeyboardModifiers();
    QTest::newRow("shift and middle")
        << Qt::MiddleButton << Qt::KeyboardModifiers(Qt::ShiftModifier);
}

void TestZoomer::noOtherButtonZooms()
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

void TestZoomer::disabledZoomerIgnoresTheMouse()
{
    PlotOnScreen screen;
    QVERIFY(screen.shown);
    screen.plot.disableZoomer();
    screen.drag(screen.pixelAt(-2.0, 3.0), screen.pixelAt(1.0, -1.0));
    QCOMPARE(screen.zoomer.zoomRectIndex(), 0u);
    QVERIFY(!screen.zoomer.isActive());
}

void TestZoomer::keysDoNotStepBackOnceZoomed_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("undo") << int(Qt::Key_Minus);
    QTest::newRow("home") << int(Qt::Key_Escape);
}

void TestZoomer::keysDoNotStepBackOnceZoomed()
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

void TestZoomer::eachRescaleTakesTheKeysBack()
{
    PlotOnScreen screen;
    QVERIFY(screen.shown);
    screen.zoomer.zoom(middle);
    screen.zoomer.initKeyPattern();
    QVERIFY(screen.zoomer.keyPattern()[QwtEventPattern::KeyUndo]
            == QwtEventPattern::KeyPattern(Qt::Key_Minus));

    screen.zoomer.zoom(QRectF(-0.5, -0.5, 1.0, 1.0));
    QVERIFY(screen.zoomer.keyPattern()[QwtEventPattern::KeyUndo] == QwtEventPattern::KeyPattern(1));
    QVERIFY(screen.zoomer.keyPattern()[QwtEventPattern::KeyHome] == QwtEventPattern::KeyPattern(2));
}

void TestZoomer::zoomedScaleKeepsRoomForTheWidestLabel()
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

void TestZoomer::newRangeWhileZoomedIsTheNewBase()
{
    PlotOnScreen screen;
    screen.zoomer.zoom(middle);
    screen.plot.setRange(3.0, -3.0);
    QCOMPARE(screen.zoomer.zoomRectIndex(), 0u);
    QCOMPARE(screen.zoomer.zoomBase(), QRectF(-3.0, -3.0, 6.0, 6.0));
    QVERIFY(!screen.hBar().isVisible());
    QVERIFY(screen.plot.axisEnabled(QwtPlot::xTop));
}

void TestZoomer::bandStopsAtTheBarBesideAndOnTheLastRowsOfTheBarAbove()
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
    QVERIFY(corner.x() < screen.vBar().geometry().left());
    // The limit above counts from the canvas's edge and the bar stands inside of its frame, so the
    // band ends on the bar's last rows: as many as the frame is wide, and one.
    const int frame = canvas.top();
    QVERIFY(frame > 0);
    QCOMPARE(screen.hBar().geometry().bottom() - corner.y(), frame);

    screen.moveTo(QPoint(canvas.left() - 5, canvas.bottom() + 5));
    QCOMPARE(screen.band().last(), canvas.bottomLeft());
    screen.release(canvas.bottomLeft());
}

void TestZoomer::bandIsLimited_data()
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

void TestZoomer::bandIsLimited()
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

QTEST_MAIN(TestZoomer)
#include "tst_zoomer.moc"
