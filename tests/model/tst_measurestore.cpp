#include "model/measurestore.h"

#include <QtTest>

#include <thread>

namespace {

constexpr int capacity = 1040;

MeasureSample numbered(quint64 number)
{
    MeasureSample sample;
    sample.timeMs = number;
    return sample;
}

void storeNumbers(measureStore& store, quint64 from, quint64 to)
{
    for (quint64 number = from; number < to; ++number)
        store.storeSample(numbered(number));
}

} // namespace

class TestMeasureStore : public QObject
{
    Q_OBJECT

private slots:
    void fullStoreDropsTheOldest();
    void countIsRightAfterTheWrap();
    void clearedStoreHoldsOnlyWhatCameLater();
    void everyStoredSampleIsCounted();
    void samplesThatNobodyTookInTimeAreCountedAsDropped();
    void takenAndClearedSamplesAreNotDropped();
    void clearingKeepsTheCountOfTheDropped();
    void emptyStoreLeavesTheOutputAlone();
    void samplesComeOutInOrder();
    void samplesCanBeTakenAtOnce_data();
    void samplesCanBeTakenAtOnce();
    void takenSamplesComeBehindThoseThatAreThere();
    void newestSamplesOfAnOverrunRingAreTakenAtOnce();
    void writerAndReaderLoseNothingWhileThereIsRoom_data();
    void writerAndReaderLoseNothingWhileThereIsRoom();
};

void TestMeasureStore::fullStoreDropsTheOldest()
{
    measureStore store(capacity);
    storeNumbers(store, 0, capacity);

    MeasureSample first;
    QCOMPARE(store.sampleCount(), capacity - 1);
    QCOMPARE(store.takeSample(first), 1);
    QCOMPARE(first.timeMs, quint64(1));
}

void TestMeasureStore::countIsRightAfterTheWrap()
{
    // 1038 taken, then five stored: the next slot to write is 3, the oldest unread is 1038.
    measureStore store(capacity);
    MeasureSample sample;
    for (quint64 number = 0; number < 1038; ++number) {
        store.storeSample(numbered(number));
        store.takeSample(sample);
    }
    storeNumbers(store, 0, 5);

    QCOMPARE(store.sampleCount(), 5);
    for (quint64 number = 0; number < 5; ++number) {
        QCOMPARE(store.takeSample(sample), 1);
        QCOMPARE(sample.timeMs, number);
    }
}

void TestMeasureStore::clearedStoreHoldsOnlyWhatCameLater()
{
    measureStore store(capacity);
    storeNumbers(store, 0, capacity + 10);
    store.clearSamples();
    QCOMPARE(store.sampleCount(), 0);

    storeNumbers(store, 5000, 5001);
    MeasureSample sample;
    QCOMPARE(store.takeSample(sample), 1);
    QCOMPARE(sample.timeMs, quint64(5000));
    QCOMPARE(store.takeSample(sample), 0);
}

void TestMeasureStore::everyStoredSampleIsCounted()
{
    measureStore store(4);
    QCOMPARE(store.storedCount(), quint64(0));
    storeNumbers(store, 0, 3);
    QCOMPARE(store.storedCount(), quint64(3));
    // Those that are dropped, taken or cleared have their numbers, too.
    storeNumbers(store, 0, 3);
    MeasureSample sample;
    store.takeSample(sample);
    store.clearSamples();
    QCOMPARE(store.storedCount(), quint64(6));
}

void TestMeasureStore::samplesThatNobodyTookInTimeAreCountedAsDropped()
{
    measureStore store(4);
    storeNumbers(store, 0, 3);
    QCOMPARE(store.droppedCount(), quint64(0));
    storeNumbers(store, 3, 5);
    QCOMPARE(store.droppedCount(), quint64(2));
    MeasureSample sample;
    QCOMPARE(store.takeSample(sample), 1);
    QCOMPARE(sample.timeMs, store.droppedCount());
}

void TestMeasureStore::takenAndClearedSamplesAreNotDropped()
{
    measureStore store(4);
    MeasureSample sample;
    for (int round = 0; round < 10; ++round) {
        storeNumbers(store, 0, 3);
        store.takeSample(sample);
        store.clearSamples();
    }
    QCOMPARE(store.droppedCount(), quint64(0));
}

void TestMeasureStore::clearingKeepsTheCountOfTheDropped()
{
    measureStore store(4);
    storeNumbers(store, 0, 5);
    store.clearSamples();
    QCOMPARE(store.droppedCount(), quint64(2));
}

void TestMeasureStore::emptyStoreLeavesTheOutputAlone()
{
    measureStore store(capacity);
    MeasureSample sample = numbered(77);
    QCOMPARE(store.takeSample(sample), 0);
    QCOMPARE(sample.timeMs, quint64(77));
}

void TestMeasureStore::samplesComeOutInOrder()
{
    measureStore store(4);
    storeNumbers(store, 0, 3);
    MeasureSample sample;
    for (quint64 number = 0; number < 3; ++number) {
        QCOMPARE(store.takeSample(sample), 1);
        QCOMPARE(sample.timeMs, number);
    }
    QCOMPARE(store.takeSample(sample), 0);
}

void TestMeasureStore::samplesCanBeTakenAtOnce_data()
{
    QTest::addColumn<int>("takenBefore");
    QTest::addColumn<int>("stored");
    QTest::addColumn<int>("most");
    QTest::addColumn<int>("expected");
    // The ring has eight slots.
    QTest::newRow("none") << 0 << 0 << 10 << 0;
    QTest::newRow("all") << 0 << 5 << 10 << 5;
    QTest::newRow("as many as wanted") << 0 << 5 << 3 << 3;
    QTest::newRow("none wanted") << 0 << 5 << 0 << 0;
    QTest::newRow("up to the end of the ring") << 5 << 3 << 10 << 3;
    QTest::newRow("over the end of the ring") << 5 << 6 << 10 << 6;
    QTest::newRow("over the end, not all") << 5 << 6 << 4 << 4;
    QTest::newRow("a full ring") << 3 << 7 << 10 << 7;
}

void TestMeasureStore::samplesCanBeTakenAtOnce()
{
    QFETCH(int, takenBefore);
    QFETCH(int, stored);
    QFETCH(int, most);
    QFETCH(int, expected);
    measureStore store(8);
    MeasureSample sample;
    for (int i = 0; i < takenBefore; ++i) {
        storeNumbers(store, 100, 101);
        store.takeSample(sample);
    }
    if (stored > 0)
        storeNumbers(store, 1, quint64(stored) + 1);
    std::vector<MeasureSample> taken;
    store.takeSamples(taken, std::size_t(most));
    QCOMPARE(int(taken.size()), expected);
    for (int i = 0; i < expected; ++i)
        QCOMPARE(taken[std::size_t(i)].timeMs, quint64(i + 1));
    QCOMPARE(store.sampleCount(), stored - expected);
    if (stored > expected) {
        QCOMPARE(store.takeSample(sample), 1);
        QCOMPARE(sample.timeMs, quint64(expected + 1));
    }
}

void TestMeasureStore::takenSamplesComeBehindThoseThatAreThere()
{
    measureStore store(8);
    std::vector<MeasureSample> taken;
    storeNumbers(store, 1, 3);
    store.takeSamples(taken, 10);
    storeNumbers(store, 3, 4);
    store.takeSamples(taken, 10);
    QCOMPARE(taken.size(), std::size_t(3));
    QCOMPARE(taken.back().timeMs, quint64(3));
}

void TestMeasureStore::newestSamplesOfAnOverrunRingAreTakenAtOnce()
{
    measureStore store(8);
    storeNumbers(store, 1, 10);
    std::vector<MeasureSample> taken;
    store.takeSamples(taken, 10);
    QCOMPARE(taken.size(), std::size_t(7));
    QCOMPARE(taken.front().timeMs, quint64(3));
    QCOMPARE(taken.back().timeMs, quint64(9));
    QCOMPARE(store.sampleCount(), 0);
}

void TestMeasureStore::writerAndReaderLoseNothingWhileThereIsRoom_data()
{
    QTest::addColumn<int>("most");
    QTest::newRow("one by one") << 1;
    QTest::newRow("some at once") << 501;
}

void TestMeasureStore::writerAndReaderLoseNothingWhileThereIsRoom()
{
    QFETCH(int, most);
    constexpr quint64 count = 20000;
    measureStore store(capacity);
    std::thread writer([&store] {
        for (quint64 number = 0; number < count;) {
            if (store.sampleCount() < capacity - 1)
                store.storeSample(numbered(number++));
            else
                std::this_thread::yield();
        }
    });

    quint64 expected = 0;
    bool inOrder = true;
    while (expected < count) {
        std::vector<MeasureSample> taken;
        store.takeSamples(taken, std::size_t(most));
        if (taken.empty())
            std::this_thread::yield();
        for (const MeasureSample& sample : taken)
            inOrder = inOrder && sample.timeMs == expected++;
    }
    writer.join();
    QVERIFY(inOrder);
    QCOMPARE(store.sampleCount(), 0);
    QCOMPARE(store.storedCount(), count);
    QCOMPARE(store.droppedCount(), quint64(0));
}

QTEST_GUILESS_MAIN(TestMeasureStore)
#include "tst_measurestore.moc"
