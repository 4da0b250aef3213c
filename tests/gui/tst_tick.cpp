// The road of the samples: from the connections' stores to the points of the curves.

#include "link/connection.h"
#include "model/detector.h"
#include "plots/counter.h"
#include "plots/genericplot.h"
#include "support/replotcounter.h"
#include "support/samplefeed.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QDateTime>
#include <QSpinBox>
#include <QtTest>
#include <qwt_plot_curve.h>
#include <qwt_symbol.h>

#include <cmath>
#include <memory>
#include <vector>

using emulator::PacketValues;

namespace {

/// What a curve shows of millivolts, oldest first.
QVector<int> millivolts(const GenericPlot& plot, int curve)
{
    QVector<int> values;
    for (const QPointF& point : pointsOf(plot, curve))
        values.append(int(std::lround(point.y() * 1000.0)));
    return values;
}

QVector<int> every(int step, int from, int count)
{
    QVector<int> values;
    for (int i = 0; i < count; ++i)
        values.append(from + i * step);
    return values;
}

PacketValues sampleAt(int x1, int y1, int x2, int y2)
{
    PacketValues values;
    values[0].x = qint16(x1);
    values[0].y = qint16(y1);
    values[0].intensity = 3000;
    values[1].x = qint16(x2);
    values[1].y = qint16(y2);
    values[1].intensity = 3000;
    return values;
}

/// Gives both stages' time plots a sweep of which they take one of ten samples.
bool decimateByTen(const WindowFixture& fixture, int rateHz)
{
    const int width = fixture.positionPlot(1).width();
    const int seconds = int(std::ceil(10.0 * width / rateHz));
    fixture.window().rescaleTimeAxis(3, 0, seconds, true);
    return rateHz * seconds / width == 10;
}

QColor symbolColor(const GenericPlot& plot, int curve)
{
    return plot.curve(curve).symbol()->brush().color();
}

} // namespace

class TestTick final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void samplesBecomePointsOfTheirCurves();
    void aStreamGivesPointsAtItsTimes();
    void timePlotsTakeEveryTenthSampleOfATickAndPointingPlotsAll();
    void eachTickBeginsWithAPoint();
    void aPulsedLaserShowsEverySample();
    void theOscilloscopeKeepsTheNewestTenPoints();
    void pointingModeKeepsAllPoints();
    void aTickTakesAtMost501SamplesOfAConnection();
    void withoutAcquisitionNothingIsTaken();
    void theSweepBeginsAnewBehindItsWindow();
    void theSweepFollowsTheUpperLimitOnly();
    void aSampleFromBeforeTheOriginBeginsANewSweep();
    void allSystemsShareTheOriginOfTheFirst();
    void secondSystemsHaveCurvesOfTheirOwn();
    void aNewColourComesWithTheNextPoint();
    void dotsOfThePointingPlotsAreThreePixelsWide();
    void eachPlotIsReplottedOnceATick();
};

void TestTick::samplesBecomePointsOfTheirCurves()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    PacketValues values = sampleAt(1500, -2750, 999, -1);
    values[0].intensity = 3520;
    values[1].intensity = 65535;
    QVERIFY(feed.show({values}));

    QCOMPARE(pointsOf(fixture.pointingPlot(1), 0), (QVector<QPointF>{{1.5, -2.75}}));
    QCOMPARE(pointsOf(fixture.pointingPlot(2), 0), (QVector<QPointF>{{0.999, -0.001}}));
    QCOMPARE(millivolts(fixture.positionPlot(1), 0), QVector<int>{1500});
    QCOMPARE(millivolts(fixture.positionPlot(1), 1), QVector<int>{-2750});
    QCOMPARE(millivolts(fixture.intensityPlot(1), 0), QVector<int>{3520});
    QCOMPARE(millivolts(fixture.positionPlot(2), 0), QVector<int>{999});
    QCOMPARE(millivolts(fixture.positionPlot(2), 1), QVector<int>{-1});
    QCOMPARE(millivolts(fixture.intensityPlot(2), 0), QVector<int>{65535});
}

void TestTick::aStreamGivesPointsAtItsTimes()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.type("samplingRateCounter", "500"));
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    const qint64 before = QDateTime::currentMSecsSinceEpoch();
    const quint64 stored = fixture.connection().samplesStored();
    fixture.controller().setScript(countedSamples(40));
    QVERIFY(waitWithoutEvents([&] { return fixture.connection().samplesStored() == stored + 40; }));
    fixture.tick();
    const double longestS = double(QDateTime::currentMSecsSinceEpoch() - before) / 1000.0 + 1.0;

    const QVector<QPointF> points = pointsOf(fixture.positionPlot(1), 0);
    const int step = qMax(1, int(500 * 10.0 / fixture.positionPlot(1).width()));
    QCOMPARE(millivolts(fixture.positionPlot(1), 0), every(step, 1, (40 + step - 1) / step));
    double last = 0.0;
    for (const QPointF& point : points) {
        QVERIFY(point.x() >= last && point.x() < longestS);
        // Whole milliseconds.
        QVERIFY(std::abs(point.x() * 1000.0 - std::round(point.x() * 1000.0)) < 1e-6);
        last = point.x();
    }
    QVERIFY(last > 0.0);
    for (int curve = 0; curve < 2; ++curve) {
        const QVector<QPointF> others = pointsOf(fixture.positionPlot(2), curve);
        QCOMPARE(others.size(), points.size());
        for (int i = 0; i < points.size(); ++i)
            QVERIFY(qAbs(others[i].x() - points[i].x()) < 0.002);
    }
}

void TestTick::timePlotsTakeEveryTenthSampleOfATickAndPointingPlotsAll()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.click("pointingRadio"));
    QVERIFY(decimateByTen(fixture, 100));
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.show(countedSamples(30)));

    QCOMPARE(millivolts(fixture.positionPlot(1), 0), (QVector<int>{1, 11, 21}));
    QCOMPARE(millivolts(fixture.positionPlot(1), 1), (QVector<int>{-1001, -1011, -1021}));
    QCOMPARE(millivolts(fixture.intensityPlot(1), 0), (QVector<int>{2001, 2011, 2021}));
    QCOMPARE(millivolts(fixture.positionPlot(2), 0), (QVector<int>{301, 311, 321}));
    QCOMPARE(millivolts(fixture.positionPlot(2), 1), (QVector<int>{-1301, -1311, -1321}));
    QCOMPARE(millivolts(fixture.intensityPlot(2), 0), (QVector<int>{2301, 2311, 2321}));
    QCOMPARE(millivolts(fixture.pointingPlot(1), 0), every(-1, -1001, 30));
    QCOMPARE(millivolts(fixture.pointingPlot(2), 0), every(-1, -1301, 30));
}

void TestTick::eachTickBeginsWithAPoint()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(decimateByTen(fixture, 100));
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.show(countedSamples(4, 1)));
    QVERIFY(feed.show(countedSamples(11, 5)));
    QCOMPARE(millivolts(fixture.positionPlot(1), 0), (QVector<int>{1, 5, 15}));
}

void TestTick::aPulsedLaserShowsEverySample()
{
    emulator::ControllerOptions options;
    options.triggerCapable = true;
    options.triggerRateHz = 0; // only what the test sends
    WindowFixture fixture(1, options);
    QVERIFY(fixture.open());
    ConnectionSettings pulsed = fixture.record();
    pulsed.pulsedLaser = true;
    QVERIFY(fixture.registerSystem(pulsed, 0));
    // More than ten samples of every sweep fall on a pixel column.
    fixture.window().rescaleTimeAxis(3, 0, 20, true);
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.show(countedSamples(30)));
    QCOMPARE(millivolts(fixture.positionPlot(1), 0), every(1, 1, 30));
    QCOMPARE(millivolts(fixture.positionPlot(2), 0), every(1, 301, 30));
    QCOMPARE(millivolts(fixture.intensityPlot(1), 0), every(1, 2001, 30));
}

void TestTick::theOscilloscopeKeepsTheNewestTenPoints()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.show(countedSamples(25)));
    QCOMPARE(millivolts(fixture.pointingPlot(1), 0), every(-1, -1016, 10));
    QCOMPARE(millivolts(fixture.pointingPlot(2), 0), every(-1, -1316, 10));
}

void TestTick::pointingModeKeepsAllPoints()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.click("pointingRadio"));
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.show(countedSamples(25)));
    QVERIFY(feed.show(countedSamples(25, 26)));
    QCOMPARE(millivolts(fixture.pointingPlot(1), 0), every(-1, -1001, 50));

    // The oscilloscope begins with an empty plot.
    QVERIFY(fixture.click("oscilloscopeRadio"));
    QVERIFY(pointsOf(fixture.pointingPlot(1), 0).isEmpty());
    QVERIFY(pointsOf(fixture.pointingPlot(2), 0).isEmpty());
}

void TestTick::aTickTakesAtMost501SamplesOfAConnection()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.click("pointingRadio"));
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.show(countedSamples(600)));
    QCOMPARE(pointsOf(fixture.pointingPlot(1), 0).size(), 501);
    fixture.tick();
    QCOMPARE(millivolts(fixture.pointingPlot(1), 0), every(-1, -1001, 600));
}

void TestTick::withoutAcquisitionNothingIsTaken()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.show(countedSamples(3)));
    const QVector<QPointF> shown = pointsOf(fixture.pointingPlot(1), 0);
    QCOMPARE(shown.size(), 3);
    QVERIFY(feed.send(countedSamples(3)));
    fixture.find<QAction>("startAction")->trigger();
    fixture.tick();
    QCOMPARE(pointsOf(fixture.pointingPlot(1), 0), shown);
}

void TestTick::theSweepBeginsAnewBehindItsWindow()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    fixture.window().rescaleTimeAxis(3, 0, 1, false);
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.show(countedSamples(1)));
    QVERIFY(waitWithoutEvents([end = QDateTime::currentMSecsSinceEpoch() + 1010] {
        return QDateTime::currentMSecsSinceEpoch() > end;
    }));
    QCOMPARE(pointsOf(fixture.positionPlot(1), 0).size(), 1);

    // The sample that is late ends the sweep, and its time begins the next one.
    const qint64 lateMs = QDateTime::currentMSecsSinceEpoch();
    QVERIFY(feed.show(countedSamples(1, 2)));
    for (int curve = 0; curve < 2; ++curve)
        QVERIFY(pointsOf(fixture.positionPlot(1), curve).isEmpty());
    QVERIFY(pointsOf(fixture.intensityPlot(1), 0).isEmpty());
    QCOMPARE(pointsOf(fixture.pointingPlot(1), 0).size(), 2);
    // Stage 2 has its own window, of 10 s.
    QCOMPARE(millivolts(fixture.positionPlot(2), 0), (QVector<int>{301, 302}));

    QVERIFY(feed.show(countedSamples(1, 3)));
    const double laterS = double(QDateTime::currentMSecsSinceEpoch() - lateMs) / 1000.0;
    const QVector<QPointF> points = pointsOf(fixture.positionPlot(1), 0);
    QCOMPARE(points.size(), 1);
    QVERIFY(points.first().x() >= 0.0 && points.first().x() <= laterS);
}

void TestTick::theSweepFollowsTheUpperLimitOnly()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    // From 1 s to 20 s is a window of 20 s, which holds 10000 samples at 500 Hz.
    QVERIFY(fixture.type("samplingRateCounter", "500"));
    fixture.window().rescaleTimeAxis(3, 1, 20, false);
    const int width = fixture.positionPlot(1).width();
    const int step = 10000 / width;
    QVERIFY2(step != 9500 / width, "A plot of this width can not tell 20 s from 19 s");
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.show(countedSamples(50)));
    QCOMPARE(millivolts(fixture.positionPlot(1), 0), every(step, 1, (50 + step - 1) / step));
}

void TestTick::aSampleFromBeforeTheOriginBeginsANewSweep()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.send(countedSamples(1)));
    feed.clear();
    fixture.tick();
    for (int stage = 1; stage <= 2; ++stage) {
        QVERIFY(pointsOf(fixture.positionPlot(stage), 0).isEmpty());
        QVERIFY(pointsOf(fixture.intensityPlot(stage), 0).isEmpty());
    }
    QVERIFY(feed.show(countedSamples(1, 2)));
    const QVector<QPointF> points = pointsOf(fixture.positionPlot(1), 0);
    QCOMPARE(points.size(), 1);
    QVERIFY(points.first().x() > 0.0 && points.first().x() < 10.0);
}

void TestTick::allSystemsShareTheOriginOfTheFirst()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.openWithSystems());
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    // Of the second system, a sample from before the origin ends no sweep.
    QVERIFY(feed.send(countedSamples(1), 1));
    feed.clear();
    QVERIFY(feed.send(countedSamples(1, 2), 0));
    fixture.tick();
    QCOMPARE(millivolts(fixture.positionPlot(1), 0), QVector<int>{2});
    const QVector<QPointF> early = pointsOf(fixture.positionPlot(1), 2);
    QCOMPARE(early.size(), 1);
    QVERIFY(early.first().x() > 1e15);
}

void TestTick::secondSystemsHaveCurvesOfTheirOwn()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.openWithSystems());
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.send({sampleAt(100, 200, 300, 400)}, 0));
    QVERIFY(feed.send({sampleAt(500, 600, 700, 800)}, 1));
    fixture.tick();
    const QVector<QVector<int>> expected{{100}, {200}, {500}, {600}};
    const QVector<QVector<int>> expected2{{300}, {400}, {700}, {800}};
    for (int curve = 0; curve < 4; ++curve) {
        QCOMPARE(millivolts(fixture.positionPlot(1), curve), expected[curve]);
        QCOMPARE(millivolts(fixture.positionPlot(2), curve), expected2[curve]);
    }
    QCOMPARE(pointsOf(fixture.pointingPlot(1), 1), (QVector<QPointF>{{0.5, 0.6}}));
    QCOMPARE(pointsOf(fixture.pointingPlot(2), 1), (QVector<QPointF>{{0.7, 0.8}}));
    QCOMPARE(millivolts(fixture.intensityPlot(1), 1), QVector<int>{3000});
}

void TestTick::aNewColourComesWithTheNextPoint()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.show(countedSamples(1)));
    QCOMPARE(symbolColor(fixture.positionPlot(1), 0), QColor(Qt::red));
    QCOMPARE(symbolColor(fixture.positionPlot(1), 1), QColor(Qt::darkGreen));
    QCOMPARE(symbolColor(fixture.intensityPlot(1), 0), QColor(Qt::blue));
    QCOMPARE(symbolColor(fixture.pointingPlot(1), 0), QColor(Qt::blue));

    fixture.window().updateColorGraph(fixture.controller().address(), Qt::magenta, 0);
    fixture.window().updateColorGraph(fixture.controller().address(), Qt::cyan, 2);
    QCOMPARE(symbolColor(fixture.positionPlot(1), 0), QColor(Qt::red));
    QVERIFY(feed.show(countedSamples(1)));
    for (int stage = 1; stage <= 2; ++stage) {
        QCOMPARE(symbolColor(fixture.positionPlot(stage), 0), QColor(Qt::magenta));
        QCOMPARE(symbolColor(fixture.positionPlot(stage), 1), QColor(Qt::darkGreen));
        QCOMPARE(symbolColor(fixture.intensityPlot(stage), 0), QColor(Qt::cyan));
        QCOMPARE(symbolColor(fixture.pointingPlot(stage), 0), QColor(Qt::cyan));
    }
}

void TestTick::dotsOfThePointingPlotsAreThreePixelsWide()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.show(countedSamples(1)));
    QCOMPARE(fixture.pointingPlot(1).curve(0).symbol()->size(), QSize(3, 3));
    QCOMPARE(fixture.pointingPlot(2).curve(0).symbol()->size(), QSize(3, 3));
    QCOMPARE(fixture.positionPlot(1).curve(0).symbol()->size(), QSize(2, 2));
    QCOMPARE(fixture.intensityPlot(2).curve(0).symbol()->size(), QSize(2, 2));
}

void TestTick::eachPlotIsReplottedOnceATick()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.openWithSystems());
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.send(countedSamples(60), 0));
    QVERIFY(feed.send(countedSamples(60), 1));

    std::vector<std::unique_ptr<ReplotCounter>> counters;
    for (const int stage : {1, 2}) {
        for (const char* kind : {"osciPlot", "positionPlot", "intensityPlot"})
            counters.push_back(std::make_unique<ReplotCounter>(fixture.plot(kind, stage)));
    }
    fixture.tick();
    for (const auto& counter : counters)
        QCOMPARE(counter->count, 1);
}

QTEST_MAIN(TestTick)
#include "tst_tick.moc"
