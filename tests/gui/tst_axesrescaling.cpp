// Limits that are typed in the dialogs of the axes, and what the plots make of them.

#include "axisbench.h"
#include "axisranges.h"
#include "model/detector.h"

#include <qwt_plot_shapeitem.h>

using axisranges::timeRange;
using axisranges::valueRanges;

namespace {

/// Ranges of the time axes of stage 1 and 2.
QStringList timeRanges(const WindowFixture& fixture)
{
    return {timeRange(fixture, 1), timeRange(fixture, 2)};
}

/// Lengths of the marks of zero, oldest first, in milliseconds.
QVector<double> markLengths(const GenericPlot& plot)
{
    QVector<double> lengths;
    const QwtPlotItemList shapes = plot.itemList(QwtPlotItem::Rtti_PlotShape);
    for (const QwtPlotItem* shape : shapes) {
        if (shape->title().text() == QLatin1String("Horizontale Mittellinie"))
            lengths.append(
                static_cast<const QwtPlotShapeItem*>(shape)->shape().boundingRect().width());
    }
    return lengths;
}

const QStringList usualValues{"-5..5", "-5..5", "0..8", "0..8"};
const QStringList usualTimes{"0..10", "0..10"};

/// A stage that measures in millimetres, micrometres or volts.
constexpr int inMm = PsdDetector;
constexpr int inUm = QuadrantDetector;
constexpr int inVolts = SelectDetector;

} // namespace

class TestAxesRescaling final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void typedValuesRescaleTheAxis_data();
    void typedValuesRescaleTheAxis();
    void typedTimesRescaleTheAxesOfTheStage_data();
    void typedTimesRescaleTheAxesOfTheStage();
    void aTimeAxisOfTwentySecondsSweepsTwentySeconds();
    void stagesOfDifferentUnitsDoNotFollow();
    void equalLimitsAreMovedApart();
    void escapeLeavesTheAxisAndItsLimits_data();
    void escapeLeavesTheAxisAndItsLimits();
    void resettingTheZoomShowsInTheDialog();
    void positionsAreHeldToTheRangeOfTheStage();
    void limitsOutsideOfTheRangeAreShownAtItsEnd();
    void intensityOfStage2KeepsTheUnitOfTheLastDialog();
    void aUnitThatChangesLeavesTheNumbersOfAnOpenDialog();

private:
    bool open(int controllers = 0);
    /// Registers the first controller with these detectors, and shows their units.
    bool showUnits(int ofStage1, int ofStage2);
    QString upperLabel() const { return bench->values->findChild<QLabel*>("label_2")->text(); }

    std::unique_ptr<AxisBench> bench;
};

void TestAxesRescaling::cleanup()
{
    bench.reset();
    QCOMPARE(leftWidgets(), QString());
}

bool TestAxesRescaling::open(int controllers)
{
    bench = std::make_unique<AxisBench>(controllers);
    return bench->open();
}

bool TestAxesRescaling::showUnits(int ofStage1, int ofStage2)
{
    ConnectionSettings record = bench->fixture.record();
    record.model = {ofStage1, ofStage2};
    record.calculation = {1, 1};
    record.beamDiameter = {50.0, 50.0};
    if (!bench->fixture.registerSystem(record, 0))
        return false;
    bench->fixture.tick();
    return true;
}

void TestAxesRescaling::typedValuesRescaleTheAxis_data()
{
    QTest::addColumn<int>("axisId");
    QTest::addColumn<bool>("both");
    QTest::addColumn<QStringList>("shown");
    QTest::newRow("position 1") << 1 << false << QStringList{"1..3", "-5..5", "0..8", "0..8"};
    QTest::newRow("position 2") << 2 << false << QStringList{"-5..5", "1..3", "0..8", "0..8"};
    QTest::newRow("position of both by 1")
        << 1 << true << QStringList{"1..3", "1..3", "0..8", "0..8"};
    QTest::newRow("position of both by 2")
        << 2 << true << QStringList{"1..3", "1..3", "0..8", "0..8"};
    QTest::newRow("intensity 1") << 5 << false << QStringList{"-5..5", "-5..5", "1..3", "0..8"};
    QTest::newRow("intensity 2") << 6 << false << QStringList{"-5..5", "-5..5", "0..8", "1..3"};
    QTest::newRow("intensity of both by 1")
        << 5 << true << QStringList{"-5..5", "-5..5", "1..3", "1..3"};
    QTest::newRow("intensity of both by 2")
        << 6 << true << QStringList{"-5..5", "-5..5", "1..3", "1..3"};
}

void TestAxesRescaling::typedValuesRescaleTheAxis()
{
    QFETCH(int, axisId);
    QFETCH(bool, both);
    QVERIFY(open());
    QVERIFY(bench->clickAxis(axisId));
    bench->type("3");
    bench->press(Qt::Key_Tab);
    bench->type("1");
    if (both)
        QVERIFY(user::click(bench->values->findChild<QCheckBox*>("checkBox")));
    QVERIFY(user::click(bench->values->findChild<QWidget*>("okPushButton")));
    QVERIFY(bench->isNoneShown());
    QTEST(valueRanges(bench->fixture), "shown");
    QCOMPARE(timeRanges(bench->fixture), usualTimes);
    QVERIFY(bench->clickAxis(axisId));
    QCOMPARE(bench->limitsShown(), QString("1.00 .. 3.00"));
}

void TestAxesRescaling::typedTimesRescaleTheAxesOfTheStage_data()
{
    QTest::addColumn<int>("axisId");
    QTest::addColumn<bool>("both");
    QTest::addColumn<QStringList>("shown");
    QTest::newRow("stage 1") << 3 << false << QStringList{"1..20", "0..10"};
    QTest::newRow("stage 2") << 4 << false << QStringList{"0..10", "1..20"};
    QTest::newRow("both by stage 1") << 3 << true << QStringList{"1..20", "1..20"};
    QTest::newRow("both by stage 2") << 4 << true << QStringList{"1..20", "1..20"};
}

void TestAxesRescaling::typedTimesRescaleTheAxesOfTheStage()
{
    QFETCH(int, axisId);
    QFETCH(bool, both);
    QVERIFY(open());
    QVERIFY(bench->clickAxis(axisId));
    bench->type("0000001");
    bench->press(Qt::Key_Tab);
    bench->type("0000020");
    bench->press(Qt::Key_Tab);
    if (both)
        bench->press(Qt::Key_Space);
    bench->press(Qt::Key_Return);
    QVERIFY(bench->isNoneShown());
    QTEST(timeRanges(bench->fixture), "shown");
    QCOMPARE(valueRanges(bench->fixture), usualValues);
    QVERIFY(bench->clickAxis(axisId));
    QCOMPARE(bench->limitsShown(), QString("000:00:01 .. 000:00:20"));
}

void TestAxesRescaling::aTimeAxisOfTwentySecondsSweepsTwentySeconds()
{
    QVERIFY(open());
    QVERIFY(bench->clickAxis(3));
    bench->type("0000001");
    bench->press(Qt::Key_Tab);
    bench->type("0000020");
    bench->press(Qt::Key_Return);
    for (int stage = 1; stage <= 2; ++stage)
        QCOMPARE(markLengths(bench->fixture.positionPlot(stage)),
                 (QVector<double>{10000.0, 20000.0}));
}

void TestAxesRescaling::stagesOfDifferentUnitsDoNotFollow()
{
    QVERIFY(open(1));
    QVERIFY(showUnits(inMm, inVolts));
    for (const int axisId : {1, 2}) {
        QVERIFY(bench->clickAxis(axisId));
        bench->type(QString::number(axisId));
        auto* both = bench->values->findChild<QCheckBox*>("checkBox");
        if (!both->isChecked())
            QVERIFY(user::click(both));
        bench->press(Qt::Key_Return);
    }
    QCOMPARE(valueRanges(bench->fixture), (QStringList{"-4.5..1", "-5..2", "0..8", "0..8"}));
}

void TestAxesRescaling::equalLimitsAreMovedApart()
{
    QVERIFY(open());
    QVERIFY(bench->clickAxis(5));
    bench->type("1");
    bench->press(Qt::Key_Tab);
    bench->type("1");
    bench->press(Qt::Key_Return);
    QCOMPARE(valueRanges(bench->fixture).at(2), QString("1..1.001"));
    // The fields have fewer decimals than the axis.
    QVERIFY(bench->clickAxis(5));
    QCOMPARE(bench->limitsShown(), QString("1.00 .. 1.00"));
}

void TestAxesRescaling::escapeLeavesTheAxisAndItsLimits_data()
{
    QTest::addColumn<int>("axisId");
    for (int axisId = 1; axisId <= 6; ++axisId)
        QTest::addRow("axis %d", axisId) << axisId;
}

void TestAxesRescaling::escapeLeavesTheAxisAndItsLimits()
{
    QFETCH(int, axisId);
    QVERIFY(open());
    QVERIFY(bench->clickAxis(axisId));
    const QString before = bench->limitsShown();
    bench->type("2");
    bench->press(Qt::Key_Tab);
    bench->type("1");
    QVERIFY(bench->limitsShown() != before);
    bench->press(Qt::Key_Escape);
    QVERIFY(bench->isNoneShown());
    QCOMPARE(valueRanges(bench->fixture), usualValues);
    QCOMPARE(timeRanges(bench->fixture), usualTimes);
    QVERIFY(bench->clickAxis(axisId));
    QCOMPARE(bench->limitsShown(), before);
}

void TestAxesRescaling::resettingTheZoomShowsInTheDialog()
{
    QVERIFY(open());
    MainWindow& window = bench->fixture.window();
    for (int stage = 1; stage <= 2; ++stage) {
        window.rescaleAxis(stage, 1.0, 2.0, false);
        window.rescaleTimeAxis(2 + stage, 1, 20, false);
        window.rescaleAxis(4 + stage, 1.0, 2.0, false);
        QVERIFY(bench->fixture.click(stage == 1 ? "pushButton_Zoom3" : "pushButton_Zoom4"));
        QVERIFY(bench->clickAxis(stage));
        QCOMPARE(bench->limitsShown(), QString("-5.00 .. 5.00"));
        bench->press(Qt::Key_Escape);
        QVERIFY(bench->clickAxis(2 + stage));
        QCOMPARE(bench->limitsShown(), QString("000:00:00 .. 000:00:10"));
        bench->press(Qt::Key_Escape);
        QVERIFY(bench->clickAxis(4 + stage));
        QCOMPARE(bench->limitsShown(), QString("0.00 .. 8.00"));
        bench->press(Qt::Key_Escape);
    }
}

void TestAxesRescaling::positionsAreHeldToTheRangeOfTheStage()
{
    QVERIFY(open(1));
    QVERIFY(showUnits(inMm, inUm));
    const QMap<int, double> highest{{1, 4.5}, {2, 25.0}, {5, 8.0}, {6, 8.0}};
    const QMap<int, double> lowest{{1, -4.5}, {2, -25.0}, {5, 0.0}, {6, 0.0}};
    for (const int axisId : highest.keys()) {
        QVERIFY(bench->clickAxis(axisId));
        const QList<QDoubleSpinBox*> boxes = bench->values->findChildren<QDoubleSpinBox*>();
        QCOMPARE(boxes.size(), 2);
        for (const QDoubleSpinBox* box : boxes) {
            QCOMPARE(box->maximum(), highest[axisId]);
            QCOMPARE(box->minimum(), lowest[axisId]);
        }
    }
}

void TestAxesRescaling::limitsOutsideOfTheRangeAreShownAtItsEnd()
{
    QVERIFY(open());
    bench->fixture.window().rescaleAxis(1, -30.0, 40.0, false);
    QVERIFY(bench->clickAxis(1));
    QCOMPARE(bench->limitsShown(), QString("-5.00 .. 5.00"));
    bench->press(Qt::Key_Escape);
    QCOMPARE(valueRanges(bench->fixture).at(0), QString("-30..40"));
}

void TestAxesRescaling::intensityOfStage2KeepsTheUnitOfTheLastDialog()
{
    QVERIFY(open(1));
    QVERIFY(showUnits(inUm, inVolts));
    QVERIFY(bench->clickAxis(1));
    QCOMPARE(upperLabel(), QString::fromUtf8("Upper limit [\xCE\xBCm]"));
    QVERIFY(bench->clickAxis(6));
    QCOMPARE(upperLabel(), QString::fromUtf8("Upper limit [\xCE\xBCm]"));
    QVERIFY(bench->clickAxis(2));
    QVERIFY(bench->clickAxis(6));
    QCOMPARE(upperLabel(), QString("Upper limit [V]"));
    QVERIFY(bench->clickAxis(1));
    QVERIFY(bench->clickAxis(5));
    QCOMPARE(upperLabel(), QString("Upper limit [V]"));
}

void TestAxesRescaling::aUnitThatChangesLeavesTheNumbersOfAnOpenDialog()
{
    QVERIFY(open(1));
    QVERIFY(bench->clickAxis(1));
    bench->type("5");
    QVERIFY(showUnits(inMm, inMm));
    QCOMPARE(upperLabel(), QString("Upper limit [mm]"));
    QCOMPARE(bench->limitsShown(), QString("-5.00 .. 5"));
    bench->press(Qt::Key_Return);
    QCOMPARE(valueRanges(bench->fixture).at(0), QString("-5..5"));
    QVERIFY(bench->clickAxis(1));
    QCOMPARE(bench->limitsShown(), QString("-4.50 .. 4.50"));
}

QTEST_MAIN(TestAxesRescaling)
#include "tst_axesrescaling.moc"
