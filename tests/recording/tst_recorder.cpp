// Which samples reach which file.

#include "recordbench.h"
#include "support/logcapture.h"

#include <QtTest>

#include <array>

namespace {

constexpr SamplePlace last{true, false};
constexpr SamplePlace notLast{false, false};
constexpr SamplePlace pulsed{true, true};
constexpr SamplePlace pulsedNotLast{false, true};

constexpr RecordRates everySample{500, 500};
constexpr RecordRates everyThird{300, 100};
constexpr RecordRates everyFifth{500, 100};
constexpr RecordRates firstOnly{500, 0};

const QByteArray voltHeader = "Start: 2026-03-01T12:34:56\n"
                              "ms\tX1(V)\tY1(V)\tI1(V)\tX2(V)\tY2(V)\tI2(V)\t"
                              "RX1(V)\tRY1(V)\tRX2(V)\tRY2(V)\n\n";

} // namespace

class TestRecorder final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench = std::make_unique<RecordBench>(); }

    void nothingIsRecordedBeforeTheStart();
    void aRecordingBeginsWithItsHeader();
    void voltsAreRecordedAsMadeByHand();
    void everyFifthSampleIsRecordedAsMadeByHand();
    void everySoManySamplesOneIsSaved_data();
    void everySoManySamplesOneIsSaved();
    void savingGoesOnAcrossTicks();
    void aPulsedLaserSavesEverySample_data();
    void aPulsedLaserSavesEverySample();
    void pulsesCountFromTheMomentTheyAreSet();
    void countingGoesOnAfterThePulses();

    void everySystemHasItsOwnFileAndTime();
    void systemsCountEachForThemselves();
    void oneOfSeveralSystemsIsRecorded();
    void oneSystemThatIsNotLastEndsWithItsFirstLine();
    void oneSystemThatIsNotLastGoesOnWithEverySample();
    void oneSystemThatIsNotLastGoesOnWithPulses();
    void oneSystemCountsFromWhenItIsLast();
    void severalSystemsCountInEveryPlace();
    void theLogWarnsOfARecordingOfOneLine_data();
    void theLogWarnsOfARecordingOfOneLine();

    void aSystemThatIsShownAgainGoesOn();
    void aSystemThatIsShownAnewIsNotRecorded();
    void aNewSystemAtTheAddressOfAForgottenOneIsNotRecorded();
    void theFileOfAForgottenSystemStaysOpen();
    void detectorsThatChangeDoNotContradictTheHeader();
    void aClockThatWasSetBackGivesTimesAsTheyCome();

    void linesOfALateTickAreFormedByTurns();
    void severalLateTicksOfOneSystemStayWithinATurn();
    void everySystemHasItsTurn();
    void whatIsBehindAtTheStopIsRecorded();

    void systemsThatWentBehindTheQuestionsAreLeftOut();
    void withoutASystemNothingRuns();
    void aSecondStartEndsTheFirst();
    void aRecordingCanFollowAnother();

private:
    std::unique_ptr<RecordBench> bench;
};

void TestRecorder::nothingIsRecordedBeforeTheStart()
{
    QVERIFY(!bench->recorder.isRecording());
    QVERIFY(!bench->recorder.recordOf(RecordBench::connection(0)));
    QVERIFY(!bench->recorder.flush(1000));
    QVERIFY(!bench->recorder.stop());
}

void TestRecorder::aRecordingBeginsWithItsHeader()
{
    QVERIFY(!bench->startOne(0, {0}, everySample));
    QVERIFY(bench->recorder.isRecording());
    QCOMPARE(bench->bytes("run.csv"), voltHeader);
    QVERIFY(!bench->recorder.stop());
    QVERIFY(!bench->recorder.isRecording());
    QCOMPARE(bench->bytes("run.csv"), voltHeader);
}

void TestRecorder::voltsAreRecordedAsMadeByHand()
{
    QVERIFY(!bench->startOne(0, {0}, {100, 100}));
    SystemRecord* record = bench->recorder.recordOf(RecordBench::connection(0));
    QVERIFY(record);
    constexpr quint64 t = RecordBench::firstTimeMs;
    record->take({sampleAt(t, 0, -1, 4000, 1234, -1234, 3500, 5000, 4999, 0, 10000)}, last);
    record->take({sampleAt(t + 10, 32767, -32768, 65535, -32768, 32767, 0, 32767, -32768, -4, -5)},
                 last);
    record->take({sampleAt(t + 20, 5, -5, 4005, 1000, -1000, 5, 15, 25, 4995, 5005)}, last);
    record->take({sampleAt(t + 20, 250, -250, 4015, 1, -2, 3505, 5015, 5025, 5035, 5045)}, last);
    bench->recorder.stop();
    QCOMPARE(bench->bytes("run.csv"), madeByHand("volts.csv"));
}

void TestRecorder::everyFifthSampleIsRecordedAsMadeByHand()
{
    bench->detectors[0] = DetectorPair(QuadrantDetector, 1, PsdDetector, 1, 0, 50.0, 50.0);
    QVERIFY(!bench->startOne(0, {0}, everyFifth));
    std::array<MeasureSample, 11> samples;
    samples[0] = sampleAt(0, 2000, -2000, 4000, 1200, -1, 3500, 5000, 5000, 5000, 5000);
    samples[5] = sampleAt(0, 0, 5, 0, -1200, 0, 0, 4990, 5010, 0, 10000);
    samples[10] = sampleAt(0, 4000, -4000, 4000, 32767, -32768, 3500, 5000, 5000, -4, 4);
    quint64 timeMs = RecordBench::firstTimeMs;
    for (MeasureSample& sample : samples) {
        sample.timeMs = timeMs;
        bench->recorder.recordOf(RecordBench::connection(0))->take({sample}, last);
        timeMs += 2;
    }
    bench->recorder.stop();
    QCOMPARE(bench->bytes("run.csv"), madeByHand("lengths.csv"));
}

void TestRecorder::everySoManySamplesOneIsSaved_data()
{
    QTest::addColumn<int>("saveHz");
    QTest::addColumn<QList<int>>("saved");
    QTest::newRow("every one") << 300 << QList<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    QTest::newRow("every second") << 150 << QList<int>{1, 3, 5, 7, 9, 11};
    QTest::newRow("every third") << 100 << QList<int>{1, 4, 7, 10};
    QTest::newRow("every fifth") << 60 << QList<int>{1, 6, 11};
    QTest::newRow("rounded down to every second") << 101 << QList<int>{1, 3, 5, 7, 9, 11};
    QTest::newRow("none but the first") << 0 << QList<int>{1};
    QTest::newRow("more than there are")
        << 1000 << QList<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
}

void TestRecorder::everySoManySamplesOneIsSaved()
{
    QFETCH(int, saveHz);
    QFETCH(QList<int>, saved);
    QVERIFY(!bench->startOne(0, {0}, {300, saveHz}));
    bench->take(0, 12);
    bench->recorder.stop();
    QCOMPARE(bench->numbers("run.csv"), saved);
}

void TestRecorder::savingGoesOnAcrossTicks()
{
    QVERIFY(!bench->startOne(0, {0}, everyFifth));
    for (int tick = 0; tick < 4; ++tick) {
        bench->take(0, 3);
        QVERIFY(!bench->recorder.flush(tick * 1000));
    }
    bench->recorder.stop();
    QCOMPARE(bench->numbers("run.csv"), (QList<int>{1, 6, 11}));
}

void TestRecorder::aPulsedLaserSavesEverySample_data()
{
    QTest::addColumn<int>("saveHz");
    QTest::newRow("every fifth") << 200;
    QTest::newRow("none") << 0;
}

void TestRecorder::aPulsedLaserSavesEverySample()
{
    QFETCH(int, saveHz);
    QVERIFY(!bench->startOne(0, {0}, {1000, saveHz}));
    bench->take(0, 7, pulsed);
    bench->recorder.stop();
    QCOMPARE(bench->numbers("run.csv"), (QList<int>{1, 2, 3, 4, 5, 6, 7}));
}

void TestRecorder::pulsesCountFromTheMomentTheyAreSet()
{
    // What the pair said at the start is not what counts.
    bench->detectors[0].pulsedLaser = 1;
    QVERIFY(!bench->startOne(0, {0}, everyFifth));
    bench->take(0, 7, last);
    bench->take(0, 2, pulsed);
    bench->recorder.stop();
    QCOMPARE(bench->numbers("run.csv"), (QList<int>{1, 6, 8, 9}));
}

void TestRecorder::countingGoesOnAfterThePulses()
{
    QVERIFY(!bench->startOne(0, {0}, everyThird));
    bench->take(0, 2, pulsed);
    bench->take(0, 6, last);
    bench->recorder.stop();
    QCOMPARE(bench->numbers("run.csv"), (QList<int>{1, 2, 5, 8}));
}

void TestRecorder::everySystemHasItsOwnFileAndTime()
{
    bench->detectors[1] = DetectorPair(PsdDetector, 1, SelectDetector, 0, 0, 50.0, 50.0);
    QVERIFY(!bench->startAll({0, 1}, everySample));
    bench->take(0, 3, notLast);
    bench->taken[1] = 1000;
    bench->take(1, 2, last);
    bench->recorder.stop();
    QVERIFY(bench->bytes("run_A.csv").startsWith(voltHeader));
    QVERIFY(bench->bytes("run_B.csv").contains("\nms\tX1(mm)\tY1(mm)\tI1(V)\tX2(V)"));
    const auto times = [&](const QString& name) {
        QList<QByteArray> found;
        for (const QByteArray& line : bench->lines(name))
            found.append(line.split('\t').first());
        return found;
    };
    QCOMPARE(times("run_A.csv"), (QList<QByteArray>{"0", "2", "4"}));
    QCOMPARE(times("run_B.csv"), (QList<QByteArray>{"0", "2"}));
    QCOMPARE(bench->numbers("run_A.csv"), (QList<int>{1, 2, 3}));
    QCOMPARE(bench->lines("run_B.csv").first().split('\t').at(1), QByteArray("0.8342"));
}

void TestRecorder::systemsCountEachForThemselves()
{
    QVERIFY(!bench->startAll({0, 1}, everyThird));
    bench->take(0, 2, notLast);
    bench->take(1, 5, last);
    bench->take(0, 5, notLast);
    bench->take(1, 2, last);
    bench->recorder.stop();
    QCOMPARE(bench->numbers("run_A.csv"), (QList<int>{1, 4, 7}));
    QCOMPARE(bench->numbers("run_B.csv"), (QList<int>{1, 4, 7}));
}

void TestRecorder::oneOfSeveralSystemsIsRecorded()
{
    QVERIFY(!bench->startOne(2, {0, 1, 2}, everySample));
    bench->take(0, 2, notLast);
    bench->take(1, 3, notLast);
    bench->take(2, 4, last);
    bench->recorder.stop();
    QCOMPARE(bench->numbers("run.csv"), (QList<int>{1, 2, 3, 4}));
    QCOMPARE(QDir(bench->folder.path()).entryList(QDir::Files), QStringList("run.csv"));
}

void TestRecorder::oneSystemThatIsNotLastEndsWithItsFirstLine()
{
    QVERIFY(!bench->startOne(0, {0, 1}, everyFifth));
    bench->take(0, 100, notLast);
    bench->recorder.stop();
    QCOMPARE(bench->numbers("run.csv"), QList<int>{1});
}

void TestRecorder::oneSystemThatIsNotLastGoesOnWithEverySample()
{
    QVERIFY(!bench->startOne(0, {0, 1}, everySample));
    bench->take(0, 4, notLast);
    bench->recorder.stop();
    QCOMPARE(bench->numbers("run.csv"), (QList<int>{1, 2, 3, 4}));
}

void TestRecorder::oneSystemThatIsNotLastGoesOnWithPulses()
{
    QVERIFY(!bench->startOne(0, {0, 1}, everyFifth));
    bench->take(0, 3, pulsedNotLast);
    bench->recorder.stop();
    QCOMPARE(bench->numbers("run.csv"), (QList<int>{1, 2, 3}));
}

void TestRecorder::oneSystemCountsFromWhenItIsLast()
{
    QVERIFY(!bench->startOne(0, {0, 1}, everyThird));
    bench->take(0, 10, notLast);
    bench->take(0, 4, last);
    bench->take(0, 10, notLast);
    bench->recorder.stop();
    QCOMPARE(bench->numbers("run.csv"), (QList<int>{1, 13}));
}

void TestRecorder::severalSystemsCountInEveryPlace()
{
    QVERIFY(!bench->startAll({0, 1}, everyThird));
    bench->take(0, 4, notLast);
    bench->recorder.stop();
    QCOMPARE(bench->numbers("run_A.csv"), (QList<int>{1, 4}));
}

void TestRecorder::theLogWarnsOfARecordingOfOneLine_data()
{
    QTest::addColumn<bool>("all");
    QTest::addColumn<int>("system");
    QTest::addColumn<int>("saveHz");
    QTest::addColumn<int>("pulsedLaser");
    QTest::addColumn<bool>("warned");
    QTest::newRow("not the last") << false << 0 << 100 << 0 << true;
    QTest::newRow("the last") << false << 1 << 100 << 0 << false;
    QTest::newRow("every sample") << false << 0 << 500 << 0 << false;
    QTest::newRow("one line is asked for") << false << 0 << 0 << 0 << false;
    QTest::newRow("pulsed") << false << 0 << 100 << 1 << false;
    QTest::newRow("several") << true << 0 << 100 << 0 << false;
}

void TestRecorder::theLogWarnsOfARecordingOfOneLine()
{
    QFETCH(bool, all);
    QFETCH(int, system);
    QFETCH(int, saveHz);
    QFETCH(int, pulsedLaser);
    QFETCH(bool, warned);
    bench->detectors[0].pulsedLaser = pulsedLaser;
    const RecordRates rates{500, saveHz};
    const LogCapture log;
    QVERIFY(!(all ? bench->startAll({0, 1}, rates) : bench->startOne(system, {0, 1}, rates)));
    const QStringList expected{"warning: The recording of A ends with its first line: the system "
                               "is not displayed last"};
    QCOMPARE(log.lines(), warned ? expected : QStringList());
}

void TestRecorder::aSystemThatIsShownAgainGoesOn()
{
    QVERIFY(!bench->startAll({0, 1}, everyThird));
    bench->take(0, 2);
    bench->take(1, 2);
    // While one is hidden, only the other one has samples.
    bench->take(1, 5);
    QVERIFY(!bench->recorder.flush(1000));
    bench->take(0, 3);
    bench->recorder.stop();
    QCOMPARE(bench->numbers("run_A.csv"), (QList<int>{1, 4}));
    QCOMPARE(bench->numbers("run_B.csv"), (QList<int>{1, 4, 7}));
}

void TestRecorder::aSystemThatIsShownAnewIsNotRecorded()
{
    QVERIFY(!bench->startAll({0, 1}, everySample));
    QVERIFY(!bench->recorder.recordOf(RecordBench::connection(2)));
    bench->take(2, 3);
    bench->take(0, 1);
    bench->recorder.stop();
    QCOMPARE(bench->numbers("run_A.csv"), QList<int>{1});
    QVERIFY(bench->numbers("run_B.csv").isEmpty());
    QVERIFY(!QFile::exists(bench->path("run_C.csv")));
}

void TestRecorder::aNewSystemAtTheAddressOfAForgottenOneIsNotRecorded()
{
    QVERIFY(!bench->startAll({0, 1}, everySample));
    bench->take(0, 2);
    bench->recorder.forget(RecordBench::connection(0));
    QVERIFY(!bench->recorder.recordOf(RecordBench::connection(0)));
    QVERIFY(bench->recorder.recordOf(RecordBench::connection(1)));
    // Forgotten ones have no connection, and no connection is not theirs.
    QVERIFY(!bench->recorder.recordOf(nullptr));
}

void TestRecorder::theFileOfAForgottenSystemStaysOpen()
{
    QVERIFY(!bench->startOne(0, {0}, everySample));
    bench->take(0, 2);
    bench->recorder.forget(RecordBench::connection(0));
    QVERIFY(bench->recorder.isRecording());
    QVERIFY(!bench->recorder.flush(0));
    QCOMPARE(bench->numbers("run.csv"), (QList<int>{1, 2}));
    QVERIFY(QFile::remove(bench->path("run.csv")));
    QVERIFY(bench->recorder.flush(1000));
}

void TestRecorder::detectorsThatChangeDoNotContradictTheHeader()
{
    bench->detectors[0] = DetectorPair(PsdDetector, 1, PsdDetector, 1, 0, 50.0, 50.0);
    QVERIFY(!bench->startOne(0, {0}, everySample));
    bench->detectors[0].setDetectorType(0, QuadrantDetector);
    bench->detectors[0][1]->calculation = 0;
    bench->recorder.recordOf(RecordBench::connection(0))
        ->take({sampleAt(0, 1200, 0, 4000, 1200, 0, 4000, 0, 0, 0, 0)}, last);
    bench->recorder.stop();
    QVERIFY(bench->bytes("run.csv").contains("X1(mm)\tY1(mm)\tI1(V)\tX2(mm)"));
    QCOMPARE(bench->lines("run.csv").first(),
             QByteArray("0\t1.0000\t0.0000\t4.00\t1.0000\t0.0000\t4.00\t0.00\t0.00\t0.00\t0.00"));
}

void TestRecorder::aClockThatWasSetBackGivesTimesAsTheyCome()
{
    QVERIFY(!bench->startOne(0, {0}, everySample));
    SystemRecord* record = bench->recorder.recordOf(RecordBench::connection(0));
    QVERIFY(record);
    MeasureSample sample;
    for (const quint64 timeMs : {5000, 5010, 4999}) {
        sample.timeMs = timeMs;
        record->take({sample}, last);
    }
    bench->recorder.stop();
    const QList<QByteArray> lines = bench->lines("run.csv");
    QCOMPARE(lines.size(), 3);
    QVERIFY(lines.at(1).startsWith("10\t"));
    // The difference has no sign.
    QVERIFY(lines.at(2).startsWith("18446744073709551615\t"));
}

void TestRecorder::systemsThatWentBehindTheQuestionsAreLeftOut()
{
    const RecordPlan plan = planForAll(bench->path("run.csv"), bench->displayed({0, 1}));
    QVERIFY(!bench->recorder.start(plan, bench->displayed({2, 1}), everySample, bench->now));
    QVERIFY(bench->recorder.isRecording());
    QCOMPARE(QDir(bench->folder.path()).entryList(QDir::Files), QStringList("run_B.csv"));
    QVERIFY(!bench->recorder.recordOf(RecordBench::connection(0)));
    QVERIFY(!bench->recorder.recordOf(RecordBench::connection(2)));
}

void TestRecorder::linesOfALateTickAreFormedByTurns()
{
    constexpr int turn = int(Recorder::linesPerTurn);
    constexpr int many = turn * 4 / 5;
    QVERIFY(!bench->startAll({0, 1}, everySample));
    bench->take(0, many);
    bench->take(1, many);
    QVERIFY(!bench->recorder.flush(0));
    QVERIFY(bench->recorder.isBehind());
    QCOMPARE(bench->numbers("run_A.csv").size(), many);
    QCOMPARE(bench->numbers("run_B.csv").size(), turn - many);
    // No time has passed, yet nothing waits for the next tick.
    QVERIFY(!bench->recorder.flush(0));
    QVERIFY(!bench->recorder.isBehind());
    QCOMPARE(bench->numbers("run_B.csv").size(), many);
    for (const char* name : {"run_A.csv", "run_B.csv"}) {
        QCOMPARE(bench->numbers(name).last(), many);
        QVERIFY(bench->lines(name).last().startsWith(QByteArray::number(2 * (many - 1)) + '\t'));
    }
}

void TestRecorder::severalLateTicksOfOneSystemStayWithinATurn()
{
    constexpr int turn = int(Recorder::linesPerTurn);
    constexpr int many = turn * 4 / 5;
    QVERIFY(!bench->startAll({0}, everySample));
    bench->take(0, many);
    bench->take(0, many);
    QVERIFY(!bench->recorder.flush(0));
    QCOMPARE(bench->numbers("run_A.csv").size(), turn);
}

void TestRecorder::everySystemHasItsTurn()
{
    constexpr int turn = int(Recorder::linesPerTurn);
    QVERIFY(!bench->startAll({0, 1}, everySample));
    for (int tick = 0; tick < 4; ++tick) {
        bench->take(0, turn);
        bench->take(1, turn);
        QVERIFY(!bench->recorder.flush(tick * Recorder::flushPeriodMs));
    }
    QCOMPARE(bench->numbers("run_A.csv").size(), 2 * turn);
    QCOMPARE(bench->numbers("run_B.csv").size(), 2 * turn);
}

void TestRecorder::whatIsBehindAtTheStopIsRecorded()
{
    constexpr int many = int(Recorder::linesPerTurn) + 10;
    QVERIFY(!bench->startAll({0}, everySample));
    bench->take(0, many);
    QVERIFY(!bench->recorder.flush(0));
    QVERIFY(bench->recorder.isBehind());
    bench->take(0, 1);
    QVERIFY(!bench->recorder.stop());
    QCOMPARE(bench->numbers("run_A.csv").size(), many + 1);
    QCOMPARE(bench->numbers("run_A.csv").last(), many + 1);
}

void TestRecorder::withoutASystemNothingRuns()
{
    const RecordPlan plan = planForAll(bench->path("run.csv"), bench->displayed({0}));
    QVERIFY(!bench->recorder.start(plan, {}, everySample, bench->now));
    QVERIFY(!bench->recorder.isRecording());
    QVERIFY(QDir(bench->folder.path()).entryList(QDir::Files).isEmpty());
}

void TestRecorder::aSecondStartEndsTheFirst()
{
    QVERIFY(!bench->startAll({0, 1}, everySample));
    bench->take(0, 2);
    QVERIFY(!bench->startOne(1, {0, 1}, everySample));
    QCOMPARE(bench->numbers("run_A.csv"), (QList<int>{1, 2}));
    QVERIFY(!bench->recorder.recordOf(RecordBench::connection(0)));
    bench->take(1, 1);
    bench->recorder.stop();
    QCOMPARE(bench->numbers("run.csv"), QList<int>{1});
    QVERIFY(bench->numbers("run_B.csv").isEmpty());
}

void TestRecorder::aRecordingCanFollowAnother()
{
    QVERIFY(!bench->startOne(0, {0}, firstOnly));
    bench->take(0, 3);
    bench->recorder.stop();
    bench->take(0, 3);
    QVERIFY(!bench->startOne(0, {0}, everyThird));
    bench->take(0, 4);
    bench->recorder.stop();
    // Counters and the time begin anew.
    QCOMPARE(bench->numbers("run.csv"), (QList<int>{7, 10}));
    QVERIFY(bench->lines("run.csv").first().startsWith("0\t"));
}

QTEST_GUILESS_MAIN(TestRecorder)
#include "tst_recorder.moc"
