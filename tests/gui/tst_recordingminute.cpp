// A long recording of many fast systems: nothing is missing, nothing comes twice, and the display
// keeps its rate.

#include "recordingbench.h"
#include "support/replotcounter.h"
#include "support/widgetcheck.h"

#include <QElapsedTimer>
#include <QtTest>

#include <functional>

namespace {

constexpr int systems = 8;
constexpr int samplingHz = 500;
constexpr int saveHz = 100;
constexpr int divider = samplingHz / saveHz;
constexpr int msPerSecond = 1000;
/// The greatest number is passed early.
constexpr int firstNumber = 30000;

/// How often the window ticked, until something ended.
struct TickRate
{
    bool hasEnded;
    double seconds;
    double hz;
};

TickRate rateUntil(const RecordingBench& bench, const std::function<bool()>& ended, int limitMs)
{
    const ReplotCounter ticks(bench.fixture.positionPlot(1));
    QElapsedTimer time;
    time.start();
    const bool hasEnded = QTest::qWaitFor(ended, limitMs);
    const double seconds = double(time.elapsed()) / msPerSecond;
    return {hasEnded, seconds, ticks.count / seconds};
}

TickRate rateWithoutRecording(const RecordingBench& bench)
{
    constexpr int longEnoughMs = 4000;
    return rateUntil(
        bench, [] { return false; }, longEnoughMs);
}

TickRate rateWhileRecording(const RecordingBench& bench)
{
    return rateUntil(
        bench, [&bench] { return !bench.isRecording(); }, 2 * RECORD_SECONDS * msPerSecond);
}

/// As the dialog has it.
QString recordTime()
{
    return QTime(0, 0).addSecs(RECORD_SECONDS).toString("0hh:mm:ss");
}

QString labelOf(int number)
{
    return QString(QChar('A' + number));
}

QString fileOf(int number)
{
    return QStringLiteral("run_%1.csv").arg(labelOf(number));
}

} // namespace

class TestRecordingMinute final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void everyFifthSampleOfEverySystemIsRecorded();

private:
    static void expectEveryFifthSample(const RecordingBench& bench, int number);
};

void TestRecordingMinute::everyFifthSampleOfEverySystemIsRecorded()
{
    RecordingBench bench(systems, countingController(firstNumber));
    QVERIFY(bench.fixture.openWithSystems());
    for (int number = 0; number < systems; ++number)
        bench.fixture.window().relabelConnection(&bench.fixture.connection(number),
                                                 labelOf(number));
    QVERIFY(bench.fixture.type("samplingRateCounter", QString::number(samplingHz)));

    QVERIFY(bench.fixture.clickAction("startAction"));
    const TickRate before = rateWithoutRecording(bench);
    QVERIFY(bench.fixture.clickAction("startAction"));

    QVERIFY(bench.openDialog());
    bench.in<QLineEdit>("lineEdit_RecordTime").setText(recordTime());
    bench.in<QSpinBox>("spinBox_SaveRate").setValue(saveHz);
    QVERIFY(bench.startAll());
    const TickRate recording = rateWhileRecording(bench);
    const TickRate after = rateWithoutRecording(bench);
    qInfo("%.1f ticks a second, %.1f while recording for %.3f s, then %.1f", before.hz,
          recording.hz, recording.seconds, after.hz);

    QVERIFY(recording.hasEnded);
    QVERIFY(recording.seconds > RECORD_SECONDS - 1);
    for (int number = 0; number < systems; ++number)
        expectEveryFifthSample(bench, number);
}

void TestRecordingMinute::expectEveryFifthSample(const RecordingBench& bench, int number)
{
    QVERIFY(bench.isWhole(fileOf(number)));
    const QStringList lines = bench.lines(fileOf(number));
    QVERIFY(lines.first().startsWith("0\t"));
    QCOMPARE(gapIn(numbersIn(bench.content(fileOf(number))), divider), QString());
    // What the machine's own stalls have left out is accounted for by the controller.
    const qint64 recorded = lines.size() * divider;
    QVERIFY(recorded + bench.fixture.controller(number).packetsLost()
            >= qint64(RECORD_SECONDS - 1) * samplingHz);
    QCOMPARE(bench.fixture.connection(number).droppedSamples(), 0U);
    QCOMPARE(bench.fixture.connection(number).skippedBytes(), 0U);
}

QTEST_MAIN(TestRecordingMinute)
#include "tst_recordingminute.moc"
