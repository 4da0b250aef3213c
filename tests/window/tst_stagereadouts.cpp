#include "stagebench.h"

#include <QtTest>

namespace {

/// Counts how often a widget is painted.
class PaintCounter final : public QObject
{
public:
    explicit PaintCounter(QWidget& widget) { widget.installEventFilter(this); }

    bool eventFilter(QObject*, QEvent* event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }

    int count = 0;
};

/// Intensity and drives in millivolts.
StageValues values(unsigned intensityMv, int rxMv = 0, int ryMv = 0)
{
    return {0, 0, intensityMv, rxMv, ryMv};
}

} // namespace

class TestStageReadouts final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench = std::make_unique<StageBench>(); }
    void cleanup() { bench.reset(); }

    void eachNumberShowsItsValue();
    void positionsHaveTheDecimalsOfTheDetector_data();
    void positionsHaveTheDecimalsOfTheDetector();
    void numbersAreMeansOverTheLatest41();
    void numbersCanBeMeansOverFewerSamples();
    void aNumberIsPaintedOnlyIfItsTextChanges();
    void barsShowTheLatestSampleOnly();
    void takenSamplesAreShownTogether();
    void clearedAveragesBeginWithTheNextSample();
    void resetShowsZeroEverywhere();
    void resetBeginsANewAverage();
    void barsAreNamedByAxisAndStage();

private:
    StageReadouts& readouts() const { return bench->stages[0].readouts(); }
    void showSample(const QPointF& position, const StageValues& sample, int decimals,
                    std::size_t averaged = ReadoutAverage::usualLength) const
    {
        readouts().take(position, sample, averaged);
        readouts().show(decimals);
    }
    StageForm& form() const { return bench->forms[0]; }

    std::unique_ptr<StageBench> bench;
};

void TestStageReadouts::eachNumberShowsItsValue()
{
    showSample(QPointF(1.25, -2.5), values(3750, 1500, 2500), 2);
    QCOMPARE(form().lcdX.value(), 1.25);
    QCOMPARE(form().lcdY.value(), -2.5);
    QCOMPARE(form().lcdIntensity.value(), 3.75);
    QCOMPARE(bench->bar("thermoRX1").value(), 1.5);
    QCOMPARE(bench->bar("thermoRY1").value(), 2.5);
    QCOMPARE(bench->forms[1].lcdX.value(), 0.0);
    QCOMPARE(bench->bar("thermoRX2").value(), 0.0);
}

void TestStageReadouts::positionsHaveTheDecimalsOfTheDetector_data()
{
    QTest::addColumn<int>("decimals");
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("y");
    QTest::newRow("one") << 1 << 1.2 << -2.3;
    QTest::newRow("two") << 2 << 1.23 << -2.35;
    QTest::newRow("three") << 3 << 1.235 << -2.346;
}

void TestStageReadouts::positionsHaveTheDecimalsOfTheDetector()
{
    QFETCH(int, decimals);
    showSample(QPointF(1.2346, -2.3457), values(1239), decimals);
    QTEST(form().lcdX.value(), "x");
    QTEST(form().lcdY.value(), "y");
    QCOMPARE(form().lcdIntensity.value(), 1.24);
}

void TestStageReadouts::numbersAreMeansOverTheLatest41()
{
    showSample(QPointF(42.0, 0.0), values(0), 2);
    for (int i = 0; i < 40; ++i)
        showSample(QPointF(1.0, 0.0), values(0), 2);
    QCOMPARE(form().lcdX.value(), 2.0);
    showSample(QPointF(1.0, 0.0), values(0), 2);
    QCOMPARE(form().lcdX.value(), 1.0);
}

void TestStageReadouts::numbersCanBeMeansOverFewerSamples()
{
    constexpr std::size_t two = 2;
    for (const double x : {100.0, 1.0, 3.0})
        showSample(QPointF(x, -x), values(unsigned(1000 * x)), 2, two);
    QCOMPARE(form().lcdX.value(), 2.0);
    QCOMPARE(form().lcdY.value(), -2.0);
    QCOMPARE(form().lcdIntensity.value(), 2.0);
}

void TestStageReadouts::aNumberIsPaintedOnlyIfItsTextChanges()
{
    constexpr std::size_t single = 1;
    form().lcdX.show();
    QVERIFY(QTest::qWaitForWindowExposed(&form().lcdX));
    const auto paintsFor = [this](double x) {
        const PaintCounter paints(form().lcdX);
        showSample(QPointF(x, 0.0), values(0), 2, single);
        QApplication::processEvents();
        return paints.count;
    };
    paintsFor(1.25);
    QCOMPARE(paintsFor(1.25), 0);
    QCOMPARE(paintsFor(1.2504), 0);
    QCOMPARE(paintsFor(1.26), 1);
    QCOMPARE(paintsFor(-1.26), 1);
}

void TestStageReadouts::barsShowTheLatestSampleOnly()
{
    showSample(QPointF(), values(0, 1000, 2000), 2);
    showSample(QPointF(), values(0, 3000, 4000), 2);
    QCOMPARE(bench->bar("thermoRX1").value(), 3.0);
    QCOMPARE(bench->bar("thermoRY1").value(), 4.0);
}

void TestStageReadouts::takenSamplesAreShownTogether()
{
    readouts().take(QPointF(1.0, 2.0), values(1000, 1000, 2000));
    readouts().take(QPointF(3.0, 4.0), values(3000, 3000, 4000));
    QCOMPARE(form().lcdX.value(), 0.0);
    QCOMPARE(bench->bar("thermoRX1").value(), 0.0);
    readouts().show(2);
    QCOMPARE(form().lcdX.value(), 2.0);
    QCOMPARE(form().lcdY.value(), 3.0);
    QCOMPARE(form().lcdIntensity.value(), 2.0);
    QCOMPARE(bench->bar("thermoRX1").value(), 3.0);
    QCOMPARE(bench->bar("thermoRY1").value(), 4.0);
}

void TestStageReadouts::clearedAveragesBeginWithTheNextSample()
{
    showSample(QPointF(1.0, 1.0), values(1000), 2);
    readouts().clearAverages();
    QCOMPARE(form().lcdX.value(), 1.0);
    showSample(QPointF(3.0, 4.0), values(5000), 2);
    QCOMPARE(form().lcdX.value(), 3.0);
    QCOMPARE(form().lcdY.value(), 4.0);
    QCOMPARE(form().lcdIntensity.value(), 5.0);
}

void TestStageReadouts::resetShowsZeroEverywhere()
{
    showSample(QPointF(1.0, 1.0), values(1000, 1000, 1000), 2);
    readouts().reset();
    for (const QLCDNumber* number : {&form().lcdX, &form().lcdY, &form().lcdIntensity})
        QCOMPARE(number->value(), 0.0);
    QCOMPARE(bench->bar("thermoRX1").value(), 0.0);
    QCOMPARE(bench->bar("thermoRY1").value(), 0.0);
}

void TestStageReadouts::resetBeginsANewAverage()
{
    showSample(QPointF(1.0, 0.0), values(0), 2);
    readouts().reset();
    showSample(QPointF(3.0, 0.0), values(0), 2);
    QCOMPARE(form().lcdX.value(), 3.0);
}

void TestStageReadouts::barsAreNamedByAxisAndStage()
{
    for (const char* name : {"thermoRX1", "thermoRY1", "thermoRX2", "thermoRY2"})
        QVERIFY2(bench->parent.findChild<ThermoSlider*>(QLatin1String(name)), name);
}

QTEST_MAIN(TestStageReadouts)
#include "tst_stagereadouts.moc"
