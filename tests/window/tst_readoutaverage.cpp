#include "window/readoutaverage.h"

#include <QtTest>

class tst_ReadoutAverage final : public QObject
{
    Q_OBJECT

private slots:
    void theFirstValueIsItsOwnMean();
    void itIsTheMeanOfAllWhileTheyAreFew();
    void theForty_firstValueIsStillAveragedWithTheFirst();
    void theForty_secondValueDropsTheFirst();
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

void tst_ReadoutAverage::theFirstValueIsItsOwnMean()
{
    ReadoutAverage average;
    QCOMPARE(average.add(-3.25), -3.25);
}

void tst_ReadoutAverage::itIsTheMeanOfAllWhileTheyAreFew()
{
    ReadoutAverage average;
    average.add(1.0);
    average.add(2.0);
    QCOMPARE(average.add(6.0), 3.0);
}

void tst_ReadoutAverage::theForty_firstValueIsStillAveragedWithTheFirst()
{
    ReadoutAverage average;
    average.add(41.0);
    QCOMPARE(addMany(average, 0.0, 40), 1.0);
}

void tst_ReadoutAverage::theForty_secondValueDropsTheFirst()
{
    ReadoutAverage average;
    average.add(41.0);
    QCOMPARE(addMany(average, 0.0, 41), 0.0);
    QCOMPARE(average.add(82.0), 2.0);
}

void tst_ReadoutAverage::clearingForgetsEverything()
{
    ReadoutAverage average;
    addMany(average, 100.0, 60);
    average.clear();
    QCOMPARE(average.add(1.5), 1.5);
}

QTEST_GUILESS_MAIN(tst_ReadoutAverage)
#include "tst_readoutaverage.moc"
