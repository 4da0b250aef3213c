#include "window/readoutaverage.h"

#include <QtTest>

class TestReadoutAverage final : public QObject
{
    Q_OBJECT

private slots:
    void withoutAValueTheMeanIsZero();
    void theFirstValueIsItsOwnMean();
    void itIsTheMeanOfAllWhileTheyAreFew();
    void theForty_firstValueIsStillAveragedWithTheFirst();
    void theForty_secondValueDropsTheFirst();
    void shorterAverageDropsTheFirstEarlier();
    void clearingForgetsEverything();
};

namespace {

double meanWith(ReadoutAverage& average, double value,
                std::size_t length = ReadoutAverage::usualLength)
{
    average.add(value, length);
    return average.mean();
}

double addMany(ReadoutAverage& average, double value, int count)
{
    for (int i = 0; i < count; ++i)
        average.add(value);
    return average.mean();
}

} // namespace

void TestReadoutAverage::withoutAValueTheMeanIsZero()
{
    QCOMPARE(ReadoutAverage().mean(), 0.0);
}

void TestReadoutAverage::theFirstValueIsItsOwnMean()
{
    ReadoutAverage average;
    QCOMPARE(meanWith(average, -3.25), -3.25);
}

void TestReadoutAverage::itIsTheMeanOfAllWhileTheyAreFew()
{
    ReadoutAverage average;
    average.add(1.0);
    average.add(2.0);
    QCOMPARE(meanWith(average, 6.0), 3.0);
}

void TestReadoutAverage::theForty_firstValueIsStillAveragedWithTheFirst()
{
    ReadoutAverage average;
    average.add(41.0);
    QCOMPARE(addMany(average, 0.0, 40), 1.0);
}

void TestReadoutAverage::theForty_secondValueDropsTheFirst()
{
    ReadoutAverage average;
    average.add(41.0);
    QCOMPARE(addMany(average, 0.0, 41), 0.0);
    QCOMPARE(meanWith(average, 82.0), 2.0);
}

void TestReadoutAverage::shorterAverageDropsTheFirstEarlier()
{
    constexpr std::size_t length = 3;
    ReadoutAverage average;
    average.add(9.0, length);
    average.add(0.0, length);
    QCOMPARE(meanWith(average, 0.0, length), 3.0);
    QCOMPARE(meanWith(average, 0.0, length), 0.0);
}

void TestReadoutAverage::clearingForgetsEverything()
{
    ReadoutAverage average;
    addMany(average, 100.0, 60);
    average.clear();
    QCOMPARE(meanWith(average, 1.5), 1.5);
}

QTEST_GUILESS_MAIN(TestReadoutAverage)
#include "tst_readoutaverage.moc"
