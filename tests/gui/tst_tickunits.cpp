// Volts and lengths: what the detectors do to curves, axes and labels.

#include "link/connection.h"
#include "model/detector.h"
#include "plots/genericplot.h"
#include "plots/rescaledialog.h"
#include "support/samplefeed.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "window/mainwindow.h"

#include <QLCDNumber>
#include <QLabel>
#include <QtTest>

#include <cmath>

using emulator::PacketValues;

namespace {

struct StageDetector
{
    int type;
    int calculation;
    double diameterUm = 50.0;
};

const StageDetector psdInMm{PsdDetector, 1};
const StageDetector psdInVolts{PsdDetector, 0};
const StageDetector quadrantInUm{QuadrantDetector, 1};

bool registerWith(WindowFixture& fixture, int number, const StageDetector& one,
                  const StageDetector& two)
{
    ConnectionSettings record = fixture.record(number);
    record.model = {one.type, two.type};
    record.calculation = {one.calculation, two.calculation};
    record.beamDiameter = {one.diameterUm, two.diameterUm};
    return fixture.registerSystem(record, number);
}

QStringList labelsOf(const WindowFixture& fixture, int stage)
{
    const QVector<QVector<const char*>> names{
        {"xyLabel1", "xLabel1", "yLabel1", "label_42", "label_44"},
        {"xyLabel2", "xLabel2", "yLabel2", "label_17", "label_11"}};
    QStringList texts;
    for (const char* name : names[stage - 1])
        texts.append(fixture.find<QLabel>(name)->text());
    return texts;
}

QStringList labelsIn(const QString& unit)
{
    return {" [" + unit + "]", "X [" + unit + "]", "Y [" + unit + "]", "Position x [" + unit + "]",
            "Position y [" + unit + "]"};
}

/// Lower and upper end of an axis.
QPair<double, double> range(const GenericPlot& plot, QwtPlot::Axis axis)
{
    const QwtInterval interval = plot.axisInterval(axis);
    return {interval.minValue(), interval.maxValue()};
}

/// Range of the position axis, if that of all axes of the pointing plot is the same.
double rangeOf(const WindowFixture& fixture, int stage)
{
    const auto ofPosition = range(fixture.positionPlot(stage), QwtPlot::yLeft);
    for (const auto axis : {QwtPlot::xBottom, QwtPlot::xTop, QwtPlot::yLeft, QwtPlot::yRight}) {
        if (range(fixture.pointingPlot(stage), axis) != ofPosition)
            return NAN;
    }
    return ofPosition.first == -ofPosition.second ? ofPosition.second : NAN;
}

PacketValues sampleOf(int x, int y, int intensity)
{
    PacketValues values;
    values[0].x = values[1].x = qint16(x);
    values[0].y = values[1].y = qint16(y);
    values[0].intensity = values[1].intensity = quint16(intensity);
    return values;
}

QPointF lastPoint(const GenericPlot& plot, int curve)
{
    const QVector<QPointF> points = pointsOf(plot, curve);
    return points.isEmpty() ? QPointF(NAN, NAN) : points.last();
}

} // namespace

class TestTickUnits final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void withoutDetectorsEverythingIsInVolts();
    void aStageInLengthsHasItsUnitEverywhere();
    void aLengthDetectorInVoltsStaysInVolts();
    void systemsOfOneUnitShareThePlots();
    void systemsOfDifferentUnitsFallBackToVolts();
    void theUnitReturnsWithTheLastSystemThatFits();
    void hidingTheFirstOfThreeLeavesTheUnitOfTheOthers();
    void theLargestBeamGivesTheRange();
    void aNewUnitEmptiesTheCurvesOfItsStage();
    void anEqualUnitKeepsPointsAndLimits();
    void aNewUnitClearsTheStatisticsInPointingMode();
    void aRecordOfUnknownDetectorsIsShownInVolts_data();
    void aRecordOfUnknownDetectorsIsShownInVolts();
    void aRecordWithoutADiameterIsDrawnOnce_data();
    void aRecordWithoutADiameterIsDrawnOnce();
    void withNothingDisplayedTheLabelsStay();
    void aSignalBeyondTheIntensityIsNotANumberAndTheNextRunIsRight();
};

void TestTickUnits::withoutDetectorsEverythingIsInVolts()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    fixture.tick();
    for (int stage = 1; stage <= 2; ++stage) {
        QCOMPARE(labelsOf(fixture, stage), labelsIn("V"));
        QCOMPARE(rangeOf(fixture, stage), 5.0);
    }
}

void TestTickUnits::aStageInLengthsHasItsUnitEverywhere()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.open());
    QVERIFY(registerWith(fixture, 0, psdInMm, quadrantInUm));
    fixture.tick();
    QCOMPARE(labelsOf(fixture, 1), labelsIn("mm"));
    QCOMPARE(labelsOf(fixture, 2), labelsIn(QString::fromUtf8("µm")));
    QCOMPARE(rangeOf(fixture, 1), 4.5);
    QCOMPARE(rangeOf(fixture, 2), 25.0);
    const auto* rescaling = fixture.window().findChild<RescaleDialog*>();
    QCOMPARE(rescaling->unit(1), 2);
    QCOMPARE(rescaling->unit(2), 1);

    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    // 1.2 V per millimetre; half the intensity stands for 0.337 beam radii.
    QVERIFY(feed.show({sampleOf(1200, -600, 1200)}));
    QCOMPARE(lastPoint(fixture.pointingPlot(1), 0), QPointF(1.0, -0.5));
    QCOMPARE(lastPoint(fixture.positionPlot(1), 0).y(), 1.0);
    QCOMPARE(lastPoint(fixture.positionPlot(1), 1).y(), -0.5);
    QCOMPARE(lastPoint(fixture.intensityPlot(1), 0).y(), 1.2);
    const double y = lastPoint(fixture.positionPlot(2), 1).y();
    QVERIFY2(std::abs(y + 0.3372 * 25.0) < 0.03, qPrintable(QString::number(y)));
    QCOMPARE(lastPoint(fixture.pointingPlot(2), 0).y(), y);
    // Three decimals of a millimetre, one of a micrometre.
    QCOMPARE(fixture.find<QLCDNumber>("lcd1y")->value(), -0.5);
    QCOMPARE(fixture.find<QLCDNumber>("lcd2y")->value(), std::round(y * 10.0) / 10.0);
    QVERIFY(feed.show({sampleOf(1200, -603, 1200)}));
    QCOMPARE(fixture.find<QLCDNumber>("lcd1y")->value(), -0.501);
}

void TestTickUnits::aLengthDetectorInVoltsStaysInVolts()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.open());
    QVERIFY(registerWith(fixture, 0, psdInVolts, psdInMm));
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.show({sampleOf(1200, -600, 1200)}));
    QCOMPARE(labelsOf(fixture, 1), labelsIn("V"));
    QCOMPARE(lastPoint(fixture.pointingPlot(1), 0), QPointF(1.2, -0.6));
    QCOMPARE(lastPoint(fixture.pointingPlot(2), 0), QPointF(1.0, -0.5));
}

void TestTickUnits::systemsOfOneUnitShareThePlots()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.open());
    QVERIFY(registerWith(fixture, 0, psdInMm, psdInMm));
    QVERIFY(registerWith(fixture, 1, {UvPsd4Detector, 1}, psdInMm));
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.send({sampleOf(1200, 0, 1000)}, 0));
    QVERIFY(feed.show({sampleOf(2900, 0, 1000)}, 1));
    QCOMPARE(labelsOf(fixture, 1), labelsIn("mm"));
    QCOMPARE(lastPoint(fixture.pointingPlot(1), 0), QPointF(1.0, 0.0));
    QCOMPARE(lastPoint(fixture.pointingPlot(1), 1), QPointF(1.0, 0.0));
}

void TestTickUnits::systemsOfDifferentUnitsFallBackToVolts()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.open());
    QVERIFY(registerWith(fixture, 0, psdInMm, psdInMm));
    QVERIFY(registerWith(fixture, 1, quadrantInUm, psdInMm));
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.send({sampleOf(1200, -600, 2000)}, 0));
    QVERIFY(feed.show({sampleOf(600, -1200, 2000)}, 1));
    QCOMPARE(labelsOf(fixture, 1), labelsIn("V"));
    QCOMPARE(rangeOf(fixture, 1), 5.0);
    QCOMPARE(lastPoint(fixture.pointingPlot(1), 0), QPointF(1.2, -0.6));
    QCOMPARE(lastPoint(fixture.pointingPlot(1), 1), QPointF(0.6, -1.2));
    QCOMPARE(lastPoint(fixture.positionPlot(1), 2).y(), 0.6);
    QCOMPARE(labelsOf(fixture, 2), labelsIn("mm"));
    QCOMPARE(rangeOf(fixture, 2), 4.5);
    QCOMPARE(lastPoint(fixture.pointingPlot(2), 1), QPointF(0.5, -1.0));
}

void TestTickUnits::theUnitReturnsWithTheLastSystemThatFits()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.open());
    QVERIFY(registerWith(fixture, 0, psdInMm, psdInMm));
    QVERIFY(registerWith(fixture, 1, quadrantInUm, psdInVolts));
    fixture.tick();
    QCOMPARE(labelsOf(fixture, 1), labelsIn("V"));
    QCOMPARE(labelsOf(fixture, 2), labelsIn("V"));
    fixture.window().showConnection(fixture.controller(0).address(), false);
    fixture.tick();
    QCOMPARE(labelsOf(fixture, 1), labelsIn(QString::fromUtf8("µm")));
    QCOMPARE(rangeOf(fixture, 1), 25.0);
    QCOMPARE(labelsOf(fixture, 2), labelsIn("V"));
}

void TestTickUnits::hidingTheFirstOfThreeLeavesTheUnitOfTheOthers()
{
    WindowFixture fixture(3);
    QVERIFY(fixture.open());
    QVERIFY(registerWith(fixture, 0, psdInMm, psdInMm));
    QVERIFY(registerWith(fixture, 1, quadrantInUm, psdInMm));
    QVERIFY(registerWith(fixture, 2, quadrantInUm, psdInMm));
    fixture.window().showConnection(fixture.controller(0).address(), false);
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    // Half the intensity is 8.4 µm, and would be 0.4 mm.
    QVERIFY(feed.show({sampleOf(500, 0, 1000)}, 1));
    QCOMPARE(labelsOf(fixture, 1), labelsIn(QString::fromUtf8("µm")));
    QCOMPARE(rangeOf(fixture, 1), 25.0);
    QVERIFY(lastPoint(fixture.pointingPlot(1), 1).x() > 8.0);
    QCOMPARE(labelsOf(fixture, 2), labelsIn("mm"));
}

void TestTickUnits::theLargestBeamGivesTheRange()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.open());
    QVERIFY(registerWith(fixture, 0, {QuadrantDetector, 1, 60.0}, psdInMm));
    QVERIFY(registerWith(fixture, 1, {WidDetector, 1, 90.0}, psdInMm));
    fixture.tick();
    QCOMPARE(labelsOf(fixture, 1), labelsIn(QString::fromUtf8("µm")));
    QCOMPARE(rangeOf(fixture, 1), 45.0);
    fixture.window().showConnection(fixture.controller(1).address(), false);
    fixture.tick();
    QCOMPARE(rangeOf(fixture, 1), 30.0);
}

void TestTickUnits::aNewUnitEmptiesTheCurvesOfItsStage()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.open());
    QVERIFY(registerWith(fixture, 0, psdInMm, psdInMm));
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.show({sampleOf(1200, 0, 1000)}));
    fixture.controller(1).setScript({PacketValues()});
    QVERIFY(registerWith(fixture, 1, quadrantInUm, psdInMm));
    fixture.tick();
    QVERIFY(pointsOf(fixture.pointingPlot(1), 0).isEmpty());
    QVERIFY(pointsOf(fixture.positionPlot(1), 0).isEmpty());
    QVERIFY(pointsOf(fixture.intensityPlot(1), 0).isEmpty());
    QCOMPARE(pointsOf(fixture.pointingPlot(2), 0).size(), 1);
    QCOMPARE(pointsOf(fixture.positionPlot(2), 1).size(), 1);
    QCOMPARE(pointsOf(fixture.intensityPlot(2), 0).size(), 1);
}

void TestTickUnits::anEqualUnitKeepsPointsAndLimits()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.open());
    QVERIFY(registerWith(fixture, 0, psdInMm, psdInMm));
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.show({sampleOf(1200, 0, 1000)}));
    // A zoomed axis is none of the tick's business either.
    fixture.window().rescaleAxis(1, -1.0, 1.0, false);
    fixture.controller(1).setScript({PacketValues()});
    QVERIFY(registerWith(fixture, 1, psdInMm, psdInMm));
    fixture.tick();
    QCOMPARE(pointsOf(fixture.pointingPlot(1), 0).size(), 1);
    QCOMPARE(range(fixture.positionPlot(1), QwtPlot::yLeft), qMakePair(-1.0, 1.0));
}

void TestTickUnits::aNewUnitClearsTheStatisticsInPointingMode()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.open());
    QVERIFY(fixture.registerSystem(0));
    QVERIFY(fixture.click("pointingRadio"));
    QVERIFY(fixture.click("checkBox_Stats1"));
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    waitForNextText();
    QVERIFY(feed.show({sampleOf(1200, 0, 1000)}));
    QVERIFY(fixture.statisticsText(1).contains("#samples=1\n"));
    fixture.window().showConnection(fixture.controller(0).address(), false);
    // It joins the acquisition, and nothing of it is to be counted.
    fixture.controller(1).setScript({PacketValues()});
    QVERIFY(registerWith(fixture, 1, psdInMm, psdInMm));
    QVERIFY(fixture.click("checkBox_Stats1"));
    fixture.tick();
    QCOMPARE(fixture.statisticsText(1), QString("\nx=\ny=\n#samples= 0\nRMS="));
}

void TestTickUnits::aRecordOfUnknownDetectorsIsShownInVolts_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("behind the last") << 6;
    QTest::newRow("before the first") << -1;
}

void TestTickUnits::aRecordOfUnknownDetectorsIsShownInVolts()
{
    QFETCH(int, type);
    WindowFixture fixture(1);
    QVERIFY(fixture.open());
    QVERIFY(registerWith(fixture, 0, {type, 1}, psdInMm));
    fixture.tick();
    QCOMPARE(labelsOf(fixture, 1), labelsIn("V"));
    QCOMPARE(rangeOf(fixture, 1), 5.0);
    QCOMPARE(labelsOf(fixture, 2), labelsIn("mm"));
}

void TestTickUnits::aRecordWithoutADiameterIsDrawnOnce_data()
{
    QTest::addColumn<double>("diameterUm");
    QTest::newRow("not a number") << double(NAN);
    QTest::newRow("infinite") << double(INFINITY);
    QTest::newRow("missing") << 0.0;
}

void TestTickUnits::aRecordWithoutADiameterIsDrawnOnce()
{
    QFETCH(double, diameterUm);
    WindowFixture fixture(1);
    QVERIFY(fixture.open());
    QVERIFY(registerWith(fixture, 0, {QuadrantDetector, 1, diameterUm}, psdInMm));
    fixture.tick();
    QCOMPARE(rangeOf(fixture, 1), 25.0);
    // A new range brings its mid-lines, and they stay.
    const int items = fixture.pointingPlot(1).itemList().size();
    fixture.tick();
    fixture.tick();
    QCOMPARE(fixture.pointingPlot(1).itemList().size(), items);
}

void TestTickUnits::withNothingDisplayedTheLabelsStay()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.open());
    QVERIFY(registerWith(fixture, 0, psdInMm, quadrantInUm));
    fixture.tick();
    fixture.window().showConnection(fixture.controller().address(), false);
    fixture.tick();
    QCOMPARE(labelsOf(fixture, 1), labelsIn("mm"));
    QCOMPARE(labelsOf(fixture, 2), labelsIn(QString::fromUtf8("µm")));
    QCOMPARE(rangeOf(fixture, 1), 4.5);
}

void TestTickUnits::aSignalBeyondTheIntensityIsNotANumberAndTheNextRunIsRight()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.open());
    QVERIFY(registerWith(fixture, 0, quadrantInUm, quadrantInUm));
    QVERIFY(fixture.click("pointingRadio"));
    QVERIFY(fixture.click("checkBox_Stats1"));
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.show({sampleOf(500, 400, 1000), sampleOf(3000, -3000, 1000),
                       sampleOf(1000, 0, 1000), sampleOf(100, 100, 0)}));
    const QVector<QPointF> points = pointsOf(fixture.pointingPlot(1), 0);
    QCOMPARE(points.size(), 4);
    QVERIFY(std::isfinite(points[0].x()));
    QVERIFY(!std::isfinite(points[1].x()));
    QVERIFY(!std::isfinite(points[2].x()));
    QVERIFY(!fixture.window().grab().isNull());
    // A new run is not spoilt by the last one.
    feed.clear();
    waitForNextText();
    QVERIFY(feed.show({sampleOf(0, 0, 1000)}));
    QVERIFY2(fixture.statisticsText(1).startsWith("\nx=0.000 ")
                 || fixture.statisticsText(1).startsWith("\nx=-0.000 "),
             qPrintable(fixture.statisticsText(1)));
    QVERIFY(!fixture.window().grab().isNull());
}

QTEST_MAIN(TestTickUnits)
#include "tst_tickunits.moc"
