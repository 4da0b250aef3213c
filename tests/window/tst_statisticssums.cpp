#include "window/statisticssums.h"

#include <QVector>
#include <QtTest>

#include <cmath>
#include <random>

namespace {

QVector<QPointF> restlessBeam(int count)
{
    // The generator's numbers are the same everywhere, unlike those of the distributions.
    std::mt19937_64 generator(20);
    QVector<QPointF> samples;
    samples.reserve(count);
    const auto millivolts = [&generator](int range) {
        return double(qint64(generator() % quint64(2 * range + 1)) - range) * 0.001;
    };
    for (int i = 0; i < count; ++i)
        samples.append(QPointF(0.7 + millivolts(400), -1.1 + millivolts(90)));
    return samples;
}

struct Figures
{
    QPointF mean;
    double rms = 0.0;
};

Figures figuresOf(const QVector<QPointF>& samples)
{
    StageSums sums;
    Figures figures;
    int count = 0;
    for (const QPointF& sample : samples)
        figures.mean = sums.add(sample, ++count);
    figures.rms = sums.rms(count);
    return figures;
}

/// Mean and root mean squared distance from it, as everybody knows them.
struct TwoPasses
{
    explicit TwoPasses(const QVector<QPointF>& samples)
    {
        long double x = 0.0L;
        long double y = 0.0L;
        for (const QPointF& sample : samples) {
            x += sample.x();
            y += sample.y();
        }
        meanX = x / samples.size();
        meanY = y / samples.size();
        for (const QPointF& sample : samples) {
            const long double dx = sample.x() - meanX;
            const long double dy = sample.y() - meanY;
            squares += dx * dx + dy * dy;
        }
    }

    long double meanX = 0.0L;
    long double meanY = 0.0L;
    long double squares = 0.0L;
};

/// By how much the sum of squares about the final mean exceeds the one about the running means.
/// With d(k) the squared distance of sample k from the mean of the first k samples, the sum about
/// the final mean is the sum of k / (k - 1) d(k): what is missing is the sum of d(k) / (k - 1).
long double squaresThatRunningMeansHide(const QVector<QPointF>& samples)
{
    long double x = 0.0L;
    long double y = 0.0L;
    long double hidden = 0.0L;
    for (int k = 1; k <= samples.size(); ++k) {
        const QPointF& sample = samples[k - 1];
        x += sample.x();
        y += sample.y();
        const long double dx = x / k - sample.x();
        const long double dy = y / k - sample.y();
        if (k > 1)
            hidden += (dx * dx + dy * dy) / (k - 1);
    }
    return hidden;
}

} // namespace

class TestStatisticsSums final : public QObject
{
    Q_OBJECT

private slots:
    void figuresOfShortRuns_data();
    void figuresOfShortRuns();
    void eachDistanceIsTakenFromTheMeanOfItsMoment();
    void theDifferenceFromTwoPassesIsThatOfTheRunningMeans_data();
    void theDifferenceFromTwoPassesIsThatOfTheRunningMeans();
    void aMillionSamplesKeepTheirDigits();
    void bothStagesOfASystemAreSummedApart();
    void textHasFourLinesBelowAnEmptyOne();
    void textTellsTheUnit_data();
    void textTellsTheUnit();
    void textBeforeTheFirstSampleIsEmpty();
    void crossReachesBeyondTheCircle();
    void crossOfAStillBeamIsAPoint();
    void restingCrossHasItsOwnSize();
};

void TestStatisticsSums::figuresOfShortRuns_data()
{
    QTest::addColumn<QVector<QPointF>>("samples");
    QTest::addColumn<QPointF>("mean");
    QTest::addColumn<double>("rms");

    using Samples = QVector<QPointF>;
    QTest::newRow("one sample") << Samples{{1.0, -2.0}} << QPointF(1.0, -2.0) << 0.0;
    QTest::newRow("two along x") << Samples{{1.0, 0.0}, {3.0, 0.0}} << QPointF(2.0, 0.0)
                                 << std::sqrt(0.5);
    QTest::newRow("two along y") << Samples{{0.0, 3.0}, {0.0, 1.0}} << QPointF(0.0, 2.0)
                                 << std::sqrt(0.5);
    // Means of x: 0, 3, 2. Squared distances: 0, 9, 0 in x; 0, 4, 4 / 9 in y.
    QTest::newRow("three in both axes")
        << Samples{{0.0, 0.0}, {6.0, 4.0}, {0.0, 1.0}} << QPointF(2.0, 5.0 / 3.0)
        << std::sqrt((9.0 + 4.0 + 4.0 + 4.0 / 9.0) / 3.0);
    QTest::newRow("still") << Samples(500, QPointF(1.25, -0.5)) << QPointF(1.25, -0.5) << 0.0;
}

void TestStatisticsSums::figuresOfShortRuns()
{
    QFETCH(QVector<QPointF>, samples);
    QFETCH(QPointF, mean);
    const Figures figures = figuresOf(samples);
    QCOMPARE(figures.mean, mean);
    QTEST(figures.rms, "rms");
}

void TestStatisticsSums::eachDistanceIsTakenFromTheMeanOfItsMoment()
{
    // Two passes would give sqrt(2) for both orders.
    const double outAndBack = figuresOf({{0.0, 0.0}, {3.0, 0.0}, {0.0, 0.0}}).rms;
    const double lateStep = figuresOf({{0.0, 0.0}, {0.0, 0.0}, {3.0, 0.0}}).rms;
    QCOMPARE(outAndBack, std::sqrt((2.25 + 1.0) / 3.0));
    QCOMPARE(lateStep, std::sqrt(4.0 / 3.0));
}

void TestStatisticsSums::theDifferenceFromTwoPassesIsThatOfTheRunningMeans_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {2, 10, 500, 20000})
        QTest::addRow("%d samples", count) << count;
}

void TestStatisticsSums::theDifferenceFromTwoPassesIsThatOfTheRunningMeans()
{
    QFETCH(int, count);
    const QVector<QPointF> samples = restlessBeam(count);
    const Figures figures = figuresOf(samples);
    const TwoPasses expected(samples);
    const long double hidden = squaresThatRunningMeansHide(samples);

    QVERIFY(hidden > 0.0L);
    QCOMPARE(figures.mean, QPointF(double(expected.meanX), double(expected.meanY)));
    QCOMPARE(figures.rms * figures.rms * count, double(expected.squares - hidden));
    QVERIFY(figures.rms < double(std::sqrt(expected.squares / count)));
}

void TestStatisticsSums::aMillionSamplesKeepTheirDigits()
{
    constexpr int count = 1000000;
    const QVector<QPointF> samples = restlessBeam(count);
    const Figures figures = figuresOf(samples);
    const TwoPasses expected(samples);
    const double rms =
        double(std::sqrt((expected.squares - squaresThatRunningMeansHide(samples)) / count));

    const QPointF mean(double(expected.meanX), double(expected.meanY));
    QCOMPARE(statisticsText(figures.mean, figures.rms, count, "V"),
             statisticsText(mean, rms, count, "V"));
    QVERIFY(std::abs(figures.rms / rms - 1.0) < 1e-9);
}

void TestStatisticsSums::bothStagesOfASystemAreSummedApart()
{
    StatisticsSums sums;
    sums[0].add({1.0, 0.0}, 1);
    sums[1].add({5.0, 5.0}, 1);
    QCOMPARE(sums[0].add({3.0, 0.0}, 2), QPointF(2.0, 0.0));
    QCOMPARE(sums[1].add({5.0, 5.0}, 2), QPointF(5.0, 5.0));
    QCOMPARE(sums[0].squares, 1.0);
    QCOMPARE(sums[1].squares, 0.0);
}

void TestStatisticsSums::textHasFourLinesBelowAnEmptyOne()
{
    QCOMPARE(statisticsText({2.0, 0.0}, std::sqrt(0.5), 2, "V"),
             QString("\nx=2.000 [V]\ny=0.000 [V]\n#samples=2\nRMS=0.7071 [V]"));
}

void TestStatisticsSums::textTellsTheUnit_data()
{
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QString>("text");

    QTest::newRow("mm") << "mm"
                        << "\nx=-4.500 [mm]\ny=0.013 [mm]\n#samples=1000000\nRMS=0.0500 [mm]";
    QTest::newRow("um") << QString::fromUtf8("µm")
                        << QString::fromUtf8(
                               "\nx=-4.500 [µm]\ny=0.013 [µm]\n#samples=1000000\nRMS=0.0500 [µm]");
}

void TestStatisticsSums::textTellsTheUnit()
{
    QFETCH(QString, unit);
    QTEST(statisticsText({-4.5, 0.0128}, 0.05, 1000000, unit), "text");
}

void TestStatisticsSums::textBeforeTheFirstSampleIsEmpty()
{
    QCOMPARE(emptyStatisticsText(), QString("\nx=\ny=\n#samples= 0\nRMS="));
}

void TestStatisticsSums::crossReachesBeyondTheCircle()
{
    const QPainterPath cross = targetCrossShape({1.0, -2.0}, 0.5);
    // 1.3 radii to each side.
    QCOMPARE(cross.boundingRect(), QRectF(1.0 - 0.65, -2.0 - 0.65, 1.3, 1.3));

    const QList<QPolygonF> parts = cross.toSubpathPolygons();
    QCOMPARE(parts.size(), 3);
    const QRectF circle = parts[0].boundingRect();
    QVERIFY(qAbs(circle.left() - 0.5) < 1e-9 && qAbs(circle.right() - 1.5) < 1e-9);
    QVERIFY(qAbs(circle.top() + 2.5) < 1e-9 && qAbs(circle.bottom() + 1.5) < 1e-9);
    QCOMPARE(parts[1].boundingRect(), QRectF(1.0 - 0.65, -2.0, 1.3, 0.0));
    QCOMPARE(parts[2].boundingRect(), QRectF(1.0, -2.0 - 0.65, 0.0, 1.3));
}

void TestStatisticsSums::crossOfAStillBeamIsAPoint()
{
    QCOMPARE(targetCrossShape({1.0, -2.0}, 0.0).boundingRect().size(), QSizeF(0.0, 0.0));
}

void TestStatisticsSums::restingCrossHasItsOwnSize()
{
    const QList<QPolygonF> parts = restingCrossShape().toSubpathPolygons();
    QCOMPARE(parts.size(), 3);
    QCOMPARE(parts[0].boundingRect(), QRectF(-0.5, -0.5, 1.0, 1.0));
    QCOMPARE(parts[1].boundingRect(), QRectF(-0.75, 0.0, 1.5, 0.0));
    QCOMPARE(parts[2].boundingRect(), QRectF(0.0, -0.75, 0.0, 1.5));
}

QTEST_GUILESS_MAIN(TestStatisticsSums)
#include "tst_statisticssums.moc"
