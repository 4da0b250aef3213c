// The plots as the frame presents them: ranges and zoom.

#include "axisranges.h"
#include "plots/colorscalesframe.h"
#include "plots/genericplot.h"
#include "support/replotcounter.h"
#include "support/samplefeed.h"
#include "support/userinput.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "window/mainwindow.h"

#include <QPushButton>
#include <QtTest>
#include <qwt_plot_canvas.h>
#include <qwt_plot_shapeitem.h>
#include <qwt_scale_draw.h>

using axisranges::range;
using axisranges::timeRange;
using axisranges::valueRanges;

namespace {

/// Where the dark grey lines of that title stand, oldest first.
QVector<QRectF> midLines(const GenericPlot& plot, const char* title = "Horizontale Mittellinie")
{
    QVector<QRectF> places;
    const QwtPlotItemList shapes = plot.itemList(QwtPlotItem::Rtti_PlotShape);
    for (const QwtPlotItem* shape : shapes) {
        const auto& line = static_cast<const QwtPlotShapeItem&>(*shape);
        if (line.title().text() == title && line.pen().color() == QColor(Qt::darkGray))
            places.append(line.shape().boundingRect());
    }
    return places;
}

} // namespace

class TestFrameView final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void pointingPlotsShowFiveVoltsOnAllAxes();
    void crossHairsStandOnThePointingPlots();
    void timePlotsShowTenSeconds();
    void stoppingReplotsThePointingPlots();
    void aColourScaleStandsBesideEachPiezoBar();
    void rescalingAnAxis_data();
    void rescalingAnAxis();
    void positionsOfDifferentUnitsDoNotFollow();
    void rescalingATimeAxis_data();
    void rescalingATimeAxis();
    void aRescaledTimeAxisAddsAMidLineToBothStages();
    void resettingThePointingZoom();
    void resettingTheTimePlots();
    void aRubberBandZoomsPointingPlotsOnly();
    void keysChangeNothingInTheTimePlots_data();
    void keysChangeNothingInTheTimePlots();

private:
    std::unique_ptr<WindowFixture> fixture;
};

void TestFrameView::init()
{
    fixture = std::make_unique<WindowFixture>(2);
    QVERIFY(fixture->open());
}

void TestFrameView::cleanup()
{
    fixture.reset();
    QCOMPARE(leftWidgets(), QString());
}

void TestFrameView::pointingPlotsShowFiveVoltsOnAllAxes()
{
    for (int stage = 1; stage <= 2; ++stage) {
        const GenericPlot& plot = fixture->pointingPlot(stage);
        for (const auto axis : {QwtPlot::xBottom, QwtPlot::xTop, QwtPlot::yLeft, QwtPlot::yRight}) {
            QCOMPARE(range(plot, axis), QString("-5..5"));
            QVERIFY(plot.axisEnabled(axis));
        }
        QVERIFY(!plot.keepsAllPoints());
    }
}

void TestFrameView::crossHairsStandOnThePointingPlots()
{
    for (int stage = 1; stage <= 2; ++stage) {
        const GenericPlot& plot = fixture->pointingPlot(stage);
        QCOMPARE(midLines(plot, "Vertikale Mittellinie"),
                 (QVector<QRectF>{{0.0, -5.0, 0.0, 10.0}}));
        QCOMPARE(midLines(plot, "Horizontale Mittellinie"),
                 (QVector<QRectF>{{-5.0, 0.0, 10.0, 0.0}}));
    }
}

void TestFrameView::stoppingReplotsThePointingPlots()
{
    QVERIFY(fixture->registerSystem(0));
    const SampleFeed feed(*fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.show(countedSamples(1)));
    const ReplotCounter pointing1(fixture->pointingPlot(1));
    const ReplotCounter pointing2(fixture->pointingPlot(2));
    const ReplotCounter position(fixture->positionPlot(1));
    fixture->window().stopDrawingPlots();
    QCOMPARE(pointing1.count, 1);
    QCOMPARE(pointing2.count, 1);
    QCOMPARE(position.count, 0);
}

void TestFrameView::aColourScaleStandsBesideEachPiezoBar()
{
    QVERIFY(fixture->registerSystem(0));
    const QList<ColorScalesFrame*> strips = fixture->window().findChildren<ColorScalesFrame*>();
    QCOMPARE(strips.size(), 4);
    const auto place = [this](const QWidget& widget) {
        return QRect(widget.mapTo(&fixture->window(), QPoint(0, 0)), widget.size());
    };
    for (const char* name : {"thermoRX1", "thermoRY1", "thermoRX2", "thermoRY2"}) {
        const QRect bar = place(*fixture->find<QWidget>(name));
        int beside = 0;
        for (const ColorScalesFrame* strip : strips) {
            constexpr int mostGapPx = 10;
            const QRect rect = place(*strip);
            const int gap = bar.left() - rect.right() - 1;
            const bool isBeside = gap >= 0 && gap <= mostGapPx && rect.top() == bar.top()
                                  && rect.height() == bar.height();
            beside += isBeside && strip->isVisible() ? 1 : 0;
        }
        QCOMPARE(beside, 1);
    }
}

void TestFrameView::timePlotsShowTenSeconds()
{
    for (int stage = 1; stage <= 2; ++stage) {
        QCOMPARE(timeRange(*fixture, stage), QString("0..10"));
        const GenericPlot& position = fixture->positionPlot(stage);
        const GenericPlot& intensity = fixture->intensityPlot(stage);
        QCOMPARE(range(position, QwtPlot::yLeft), QString("-5..5"));
        QCOMPARE(range(intensity, QwtPlot::yLeft), QString("0..8"));
        QVERIFY(position.axisEnabled(QwtPlot::xTop) && !position.axisEnabled(QwtPlot::xBottom));
        QVERIFY(intensity.axisEnabled(QwtPlot::xBottom) && !intensity.axisEnabled(QwtPlot::xTop));
        QCOMPARE(position.canvasBackground().color(), QColor("lightblue"));
        QCOMPARE(intensity.canvasBackground().color(), QColor("azure"));
        QCOMPARE(intensity.axisMaxMajor(QwtPlot::yLeft), 5);
        QCOMPARE(intensity.axisMaxMinor(QwtPlot::yLeft), 3);
        QCOMPARE(position.axisMaxMajor(QwtPlot::yLeft), 5);
        QCOMPARE(position.font().family(), QString("Sans Serif"));
        QCOMPARE(position.font().pointSize(), 10);
        QCOMPARE(position.font().weight(), 75);
        for (const GenericPlot* plot : {&position, &intensity}) {
            QVERIFY(plot->keepsAllPoints());
            QVERIFY(!plot->axisEnabled(QwtPlot::yRight));
            QCOMPARE(plot->canvas()->cursor().shape(), Qt::ArrowCursor);
        }
        QCOMPARE(midLines(position), (QVector<QRectF>{{0.0, 0.0, 10000.0, 0.0}}));
    }
}

void TestFrameView::rescalingAnAxis_data()
{
    QTest::addColumn<int>("axisId");
    QTest::addColumn<bool>("pairCheck");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("position 1") << 1 << false << QStringList{"-2..3", "-5..5", "0..8", "0..8"};
    QTest::newRow("position 2") << 2 << false << QStringList{"-5..5", "-2..3", "0..8", "0..8"};
    QTest::newRow("position 1 with 2")
        << 1 << true << QStringList{"-2..3", "-2..3", "0..8", "0..8"};
    QTest::newRow("position 2 with 1")
        << 2 << true << QStringList{"-2..3", "-2..3", "0..8", "0..8"};
    QTest::newRow("time is none of these")
        << 3 << true << QStringList{"-5..5", "-5..5", "0..8", "0..8"};
    QTest::newRow("intensity 1") << 5 << false << QStringList{"-5..5", "-5..5", "-2..3", "0..8"};
    QTest::newRow("intensity 2") << 6 << false << QStringList{"-5..5", "-5..5", "0..8", "-2..3"};
    QTest::newRow("intensity 1 with 2")
        << 5 << true << QStringList{"-5..5", "-5..5", "-2..3", "-2..3"};
    QTest::newRow("intensity 2 with 1")
        << 6 << true << QStringList{"-5..5", "-5..5", "-2..3", "-2..3"};
}

void TestFrameView::rescalingAnAxis()
{
    QFETCH(int, axisId);
    QFETCH(bool, pairCheck);
    fixture->window().rescaleAxis(axisId, -2.0, 3.0, pairCheck);
    QTEST(valueRanges(*fixture), "expected");
    QCOMPARE(timeRange(*fixture, 1), QString("0..10"));
}

void TestFrameView::positionsOfDifferentUnitsDoNotFollow()
{
    ConnectionSettings record = fixture->record();
    record.model = {PsdDetector, SelectDetector};
    record.calculation = {1, 0};
    QVERIFY(fixture->registerSystem(record, 0));
    fixture->tick();
    fixture->window().rescaleAxis(1, -2.0, 3.0, true);
    QCOMPARE(valueRanges(*fixture), (QStringList{"-2..3", "-5..5", "0..8", "0..8"}));
    fixture->window().rescaleAxis(2, -1.0, 1.0, true);
    QCOMPARE(valueRanges(*fixture), (QStringList{"-2..3", "-1..1", "0..8", "0..8"}));
    fixture->window().rescaleAxis(6, 0.0, 4.0, true);
    QCOMPARE(valueRanges(*fixture), (QStringList{"-2..3", "-1..1", "0..4", "0..4"}));
}

void TestFrameView::rescalingATimeAxis_data()
{
    QTest::addColumn<int>("axisId");
    QTest::addColumn<bool>("pairCheck");
    QTest::addColumn<QString>("stage1");
    QTest::addColumn<QString>("stage2");

    QTest::newRow("stage 1") << 3 << false << "1..20"
                             << "0..10";
    QTest::newRow("stage 2") << 4 << false << "0..10"
                             << "1..20";
    QTest::newRow("stage 1 with 2") << 3 << true << "1..20"
                                    << "1..20";
    QTest::newRow("stage 2 with 1") << 4 << true << "1..20"
                                    << "1..20";
    QTest::newRow("a position axis is no time axis") << 1 << true << "0..10"
                                                     << "0..10";
}

void TestFrameView::rescalingATimeAxis()
{
    QFETCH(int, axisId);
    QFETCH(bool, pairCheck);
    QFETCH(QString, stage1);
    fixture->window().rescaleTimeAxis(axisId, 1, 20, pairCheck);
    QCOMPARE(timeRange(*fixture, 1), stage1);
    QTEST(timeRange(*fixture, 2), "stage2");
    QCOMPARE(valueRanges(*fixture), (QStringList{"-5..5", "-5..5", "0..8", "0..8"}));
}

void TestFrameView::aRescaledTimeAxisAddsAMidLineToBothStages()
{
    const QRectF tenSeconds(0.0, 0.0, 10000.0, 0.0);
    const QRectF twentySeconds(0.0, 0.0, 20000.0, 0.0);
    for (int stage = 1; stage <= 2; ++stage)
        QCOMPARE(midLines(fixture->positionPlot(stage)), QVector<QRectF>{tenSeconds});
    fixture->window().rescaleTimeAxis(3, 1, 20, false);
    for (int stage = 1; stage <= 2; ++stage)
        QCOMPARE(midLines(fixture->positionPlot(stage)),
                 (QVector<QRectF>{tenSeconds, twentySeconds}));
}

void TestFrameView::resettingThePointingZoom()
{
    for (int stage = 1; stage <= 2; ++stage) {
        const GenericPlot& plot = fixture->pointingPlot(stage);
        user::dragBand(plot);
        QTRY_VERIFY(range(plot, QwtPlot::xBottom) != "-5..5");
        QVERIFY(fixture->click(stage == 1 ? "pushButton_Zoom1" : "pushButton_Zoom2"));
        for (const auto axis : {QwtPlot::xBottom, QwtPlot::xTop, QwtPlot::yLeft, QwtPlot::yRight})
            QCOMPARE(range(plot, axis), QString("-5..5"));
    }
}

void TestFrameView::resettingTheTimePlots()
{
    MainWindow& window = fixture->window();
    window.rescaleAxis(1, -1.0, 1.0, true);
    window.rescaleAxis(5, 0.0, 2.0, true);
    window.rescaleTimeAxis(3, 1, 20, true);
    QVERIFY(fixture->click("pushButton_Zoom3"));
    QCOMPARE(valueRanges(*fixture), (QStringList{"-5..5", "-1..1", "0..8", "0..2"}));
    QCOMPARE(timeRange(*fixture, 1), QString("0..10"));
    QCOMPARE(timeRange(*fixture, 2), QString("1..20"));
    QVERIFY(fixture->click("pushButton_Zoom4"));
    QCOMPARE(valueRanges(*fixture), (QStringList{"-5..5", "-5..5", "0..8", "0..8"}));
    QCOMPARE(timeRange(*fixture, 2), QString("0..10"));
}

void TestFrameView::aRubberBandZoomsPointingPlotsOnly()
{
    for (int stage = 1; stage <= 2; ++stage) {
        user::dragBand(fixture->positionPlot(stage));
        user::dragBand(fixture->intensityPlot(stage));
        QCOMPARE(timeRange(*fixture, stage), QString("0..10"));
    }
    QCOMPARE(valueRanges(*fixture), (QStringList{"-5..5", "-5..5", "0..8", "0..8"}));
}

void TestFrameView::keysChangeNothingInTheTimePlots_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("undo") << Qt::Key_Minus;
    QTest::newRow("redo") << Qt::Key_Plus;
    QTest::newRow("home") << Qt::Key_Escape;
    QTest::newRow("select") << Qt::Key_Return;
}

void TestFrameView::keysChangeNothingInTheTimePlots()
{
    QFETCH(Qt::Key, key);
    for (int stage = 1; stage <= 2; ++stage) {
        for (GenericPlot* plot : {&fixture->positionPlot(stage), &fixture->intensityPlot(stage)}) {
            const auto shown = [plot] {
                QStringList ranges;
                for (const auto axis :
                     {QwtPlot::yLeft, QwtPlot::yRight, QwtPlot::xBottom, QwtPlot::xTop})
                    ranges.append(range(*plot, axis));
                return ranges;
            };
            const QStringList before = shown();
            const double extent = plot->axisScaleDraw(QwtPlot::yLeft)->minimumExtent();
            QVERIFY(extent > 0.0);
            QVERIFY(user::click(plot->canvas()));
            QVERIFY(plot->canvas()->hasFocus());
            QTest::keyClick(fixture->window().windowHandle(), key);
            QCOMPARE(shown(), before);
            QCOMPARE(plot->axisScaleDraw(QwtPlot::yLeft)->minimumExtent(), extent);
        }
    }
}

QTEST_MAIN(TestFrameView)
#include "tst_frameview.moc"
