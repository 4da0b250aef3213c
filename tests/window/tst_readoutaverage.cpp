#include "window/readoutaverage.h"

#include <QtTest>

class TestReadoutAverage final : public QObject
{
    Q_OBJECT

private slots:
    void theFirstValueIsItsOwnMean();
    void itIsTheMeanOfAllWhileTheyAreFew();
    void theForty_firstValueIsStillAveragedWithTheFirst();
    void theForty_secondValueDropsTheFirst();
    void shorterAverageDropsTheFirstEarlier();
    void clearingForgetsEverything();
};

namespace {

double addMany(ReadoutAverage& average, double value, int count)
{
    double mean = 0.0;
    for (int i = 0; i < count; ++i)
        mean = average.add(value);
    return mean;
}

} // namespace

void TestReadoutAverage::theFirstValueIsItsOwnMean()
{
    ReadoutAverage average;
    QCOMPARE(average.add(-3.25), -3.25);
}

void TestReadoutAverage::itIsTheMeanOfAllWhileTheyAreFew()
{
    ReadoutAverage average;
    average.add(1.0);
    average.add(2.0);
    QCOMPARE(average.add(6.0), 3.0);
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
    QCOMPARE(average.add(82.0), 2.0);
}

void TestReadoutAverage::shorterAverageDropsTheFirstEarlier()
{
    constexpr std::size_t length = 3;
    ReadoutAverage average;
    average.add(9.0, length);
    average.add(0.0, length);
    QCOMPARE(average.add(0.0, length), 3.0);
    QCOMPARE(average.add(0.0, length), 0.0);
}

void TestReadoutAverage::clearingForgetsEverything()
{
    ReadoutAverage average;
    addMany(average, 100.0, 60);
    average.clear();
    QCOMPARE(average.add(1.5), 1.5);
}

QTEST_GUILESS_MAIN(TestReadoutAverage)
#include "tst_readoutaverage.moc"
