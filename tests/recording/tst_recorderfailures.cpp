// What a recording leaves on disk when something goes wrong, and who is told.

#include "recordbench.h"
#include "support/anotheruser.h"
#include "support/fulldisk.h"
#include "support/logcapture.h"

#include <QtTest>

#include <atomic>
#include <fcntl.h>
#include <new>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr RecordRates everySample{500, 500};

/// A number that a child process writes and its parent reads.
class SharedNumber final
{
public:
    SharedNumber()
        : page(::mmap(nullptr, sizeof(Number), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS,
                      -1, 0))
        , number(page == MAP_FAILED ? nullptr : new (page) Number(0))
    {}
    ~SharedNumber()
    {
        if (number)
            ::munmap(page, sizeof(Number));
    }
    SharedNumber(const SharedNumber&) = delete;
    SharedNumber& operator=(const SharedNumber&) = delete;

    bool isShared() const { return number; }
    qint64 get() const { return number->load(); }
    void set(qint64 value) { number->store(value); }

private:
    using Number = std::atomic<qint64>;
    void* page;
    Number* number;
};

} // namespace

class TestRecorderFailures final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench = std::make_unique<RecordBench>(); }

    void aFileThatCanNotBeOpenedEndsTheStart();
    void whoMayNotWriteIsToldAtTheStart();
    void aDotInAFolderIsToldWithTheNameThatCameOfIt();
    void aFullDeviceIsToldAtTheStart();
    void twoLabelsOfOneFileAreNotMixed();
    void linesComeToDiskFourTimesASecond();
    void linesComeToDiskWithoutNewOnes();
    void aFullDiskIsToldOnceAndKeepsWholeLines();
    void aFullDiskEndsWhatIsBehind();
    void aFullDiskIsToldAtTheStop();
    void aFailureOfOneLeavesTheOthersWhole();
    void aRemovedFileIsTold();
    void aRemovedFolderIsTold();
    void aFailureOfTheLastRecordingIsForgotten();
    void aFullPipeHoldsUpNothing();
    void theEndOfTheRecorderClosesItsFiles();
    void aKilledProcessLosesLessThanASecond();

private:
    std::unique_ptr<RecordBench> bench;
};

void TestRecorderFailures::aFileThatCanNotBeOpenedEndsTheStart()
{
    RecordableSystems systems = bench->displayed({0, 1, 2});
    systems[1].label = QString(300, 'b');
    const RecordPlan plan = planForAll(bench->path("run.csv"), systems);
    const LogCapture log;
    const std::optional<RecordFailure> failure =
        bench->recorder.start(plan, systems, everySample, bench->now);
    QVERIFY(failure);
    QCOMPARE(failure->path, bench->path("run_" + systems.at(1).label + ".csv"));
    QCOMPARE(failure->reason, QStringLiteral("File name too long"));
    QVERIFY(!bench->recorder.isRecording());
    QVERIFY(!bench->recorder.stop());
    QCOMPARE(log.lines(),
             QStringList("warning: Recording to " + failure->path + " failed: File name too long"));
    // What was opened before has its header, what comes later was not touched.
    QVERIFY(bench->bytes("run_A.csv").endsWith("\n\n"));
    QVERIFY(!QFile::exists(bench->path("run_C.csv")));
}

void TestRecorderFailures::whoMayNotWriteIsToldAtTheStart()
{
    QVERIFY(QFile::setPermissions(bench->folder.path(), QFile::ReadOwner | QFile::ExeOwner
                                                            | QFile::WriteOwner | QFile::ExeOther));
    std::optional<RecordFailure> failure;
    {
        // Root may write everywhere.
        const AnotherUser user;
        failure = bench->startOne(0, {0}, everySample);
    }
    QVERIFY(failure);
    QCOMPARE(failure->reason, QStringLiteral("Permission denied"));
    QVERIFY(!bench->recorder.isRecording());
}

void TestRecorderFailures::aDotInAFolderIsToldWithTheNameThatCameOfIt()
{
    const RecordableSystems systems = bench->displayed({0});
    const RecordPlan plan = planForAll(bench->path("a.b/run.csv"), systems);
    const std::optional<RecordFailure> failure =
        bench->recorder.start(plan, systems, everySample, bench->now);
    QVERIFY(failure);
    QCOMPARE(failure->path, bench->path("a_A.b/run.csv"));
    QCOMPARE(failure->reason, QStringLiteral("No such file or directory"));
}

void TestRecorderFailures::aFullDeviceIsToldAtTheStart()
{
    const RecordableSystems systems = bench->displayed({0});
    const RecordPlan plan = planForOne("/dev/full", systems, RecordBench::connection(0));
    const std::optional<RecordFailure> failure =
        bench->recorder.start(plan, systems, everySample, bench->now);
    QVERIFY(failure);
    QCOMPARE(failure->path, QStringLiteral("/dev/full"));
    QCOMPARE(failure->reason, QStringLiteral("No space left on device"));
    QVERIFY(!bench->recorder.isRecording());
}

void TestRecorderFailures::twoLabelsOfOneFileAreNotMixed()
{
    QVERIFY(QFile(bench->path("run_A.csv")).open(QIODevice::WriteOnly));
    QVERIFY(QFile::link(bench->path("run_A.csv"), bench->path("run_B.csv")));
    const std::optional<RecordFailure> failure = bench->startAll({0, 1}, everySample);
    QVERIFY(failure);
    QCOMPARE(failure->path, bench->path("run_B.csv"));
    QCOMPARE(failure->reason, QStringLiteral("File exists"));
    QVERIFY(!bench->recorder.isRecording());
}

void TestRecorderFailures::linesComeToDiskFourTimesASecond()
{
    QVERIFY(!bench->startOne(0, {0}, everySample));
    constexpr qint64 startMs = 5000;
    QVERIFY(!bench->recorder.flush(startMs));
    bench->take(0, 2);
    QVERIFY(!bench->recorder.flush(startMs + 249));
    QVERIFY(bench->lines("run.csv").isEmpty());
    QVERIFY(!bench->recorder.flush(startMs + 250));
    QCOMPARE(bench->lines("run.csv").size(), 2);
    bench->take(0, 1);
    QVERIFY(!bench->recorder.flush(startMs + 499));
    QCOMPARE(bench->lines("run.csv").size(), 2);
    QVERIFY(!bench->recorder.flush(startMs + 500));
    QCOMPARE(bench->lines("run.csv").size(), 3);
}

void TestRecorderFailures::linesComeToDiskWithoutNewOnes()
{
    QVERIFY(!bench->startAll({0, 1}, everySample));
    QVERIFY(!bench->recorder.flush(0));
    bench->take(0, 1);
    bench->take(1, 2);
    for (qint64 nowMs = 0; nowMs <= 1000; nowMs += 10)
        QVERIFY(!bench->recorder.flush(nowMs));
    QCOMPARE(bench->lines("run_A.csv").size(), 1);
    QCOMPARE(bench->lines("run_B.csv").size(), 2);
}

void TestRecorderFailures::aFullDiskIsToldOnceAndKeepsWholeLines()
{
    QVERIFY(!bench->startOne(0, {0}, everySample));
    std::optional<RecordFailure> failure;
    const LogCapture log;
    {
        const FullDisk disk(1000);
        bench->take(0, 100);
        failure = bench->recorder.flush(0);
        bench->take(0, 100);
        QVERIFY(bench->recorder.recordOf(RecordBench::connection(0))->file().lines().empty());
        QVERIFY(!bench->recorder.flush(1000));
        QVERIFY(bench->recorder.isRecording());
        QVERIFY(!bench->recorder.stop());
    }
    QVERIFY(failure);
    QCOMPARE(failure->path, bench->path("run.csv"));
    QCOMPARE(failure->reason, QStringLiteral("File too large"));
    QCOMPARE(log.lines().size(), 1);
    const QByteArray left = bench->bytes("run.csv");
    constexpr int longestLine = 60;
    QVERIFY(left.endsWith('\n'));
    QVERIFY(left.size() > 1000 - longestLine);
    QVERIFY(left.size() <= 1000);
    const QList<int> numbers = bench->numbers("run.csv");
    for (int i = 0; i < numbers.size(); ++i)
        QCOMPARE(numbers.at(i), i + 1);
}

void TestRecorderFailures::aFullDiskEndsWhatIsBehind()
{
    constexpr int turn = int(Recorder::linesPerTurn);
    QVERIFY(!bench->startAll({0, 1}, everySample));
    const FullDisk disk(1000);
    bench->take(0, 3 * turn);
    bench->take(1, 5);
    QVERIFY(bench->recorder.flush(0));
    bench->take(0, turn);
    QVERIFY(!bench->recorder.flush(0));
    QVERIFY(!bench->recorder.isBehind());
    QVERIFY(!bench->recorder.stop());
    QVERIFY(bench->bytes("run_A.csv").endsWith('\n'));
    QCOMPARE(bench->lines("run_B.csv").size(), 5);
}

void TestRecorderFailures::aFullDiskIsToldAtTheStop()
{
    QVERIFY(!bench->startOne(0, {0}, everySample));
    bench->take(0, 100);
    const FullDisk disk(1000);
    const std::optional<RecordFailure> failure = bench->recorder.stop();
    QVERIFY(failure);
    QCOMPARE(failure->reason, QStringLiteral("File too large"));
    QVERIFY(!bench->recorder.stop());
}

void TestRecorderFailures::aFailureOfOneLeavesTheOthersWhole()
{
    QVERIFY(!bench->startAll({0, 1, 2}, everySample));
    for (const int system : {0, 1, 2})
        bench->take(system, 5);
    QVERIFY(QFile::remove(bench->path("run_B.csv")));
    const std::optional<RecordFailure> failure = bench->recorder.flush(0);
    QVERIFY(failure);
    QCOMPARE(failure->path, bench->path("run_B.csv"));
    for (const int system : {0, 1, 2})
        bench->take(system, 2);
    QVERIFY(!bench->recorder.stop());
    QCOMPARE(bench->lines("run_A.csv").size(), 7);
    QCOMPARE(bench->lines("run_C.csv").size(), 7);
    QVERIFY(!QFile::exists(bench->path("run_B.csv")));
}

void TestRecorderFailures::aRemovedFileIsTold()
{
    QVERIFY(!bench->startOne(0, {0}, everySample));
    bench->take(0, 1);
    QVERIFY(!bench->recorder.flush(0));
    QVERIFY(QFile::remove(bench->path("run.csv")));
    const std::optional<RecordFailure> failure = bench->recorder.flush(250);
    QVERIFY(failure);
    QCOMPARE(failure->reason, QStringLiteral("No such file or directory"));
}

void TestRecorderFailures::aRemovedFolderIsTold()
{
    QVERIFY(!bench->startAll({0, 1}, everySample));
    bench->take(0, 1);
    QVERIFY(bench->folder.remove());
    const LogCapture log;
    const std::optional<RecordFailure> failure = bench->recorder.flush(0);
    QVERIFY(failure);
    QCOMPARE(failure->path, bench->path("run_A.csv"));
    // The second file went, too, but one message is enough.
    QVERIFY(!bench->recorder.flush(1000));
    QVERIFY(!bench->recorder.stop());
    QCOMPARE(log.lines().size(), 1);
}

void TestRecorderFailures::aFailureOfTheLastRecordingIsForgotten()
{
    QVERIFY(!bench->startOne(0, {0}, everySample));
    QVERIFY(QFile::remove(bench->path("run.csv")));
    QVERIFY(bench->recorder.flush(0));
    QVERIFY(!bench->recorder.stop());
    QVERIFY(!bench->startOne(0, {0}, everySample));
    QVERIFY(QFile::remove(bench->path("run.csv")));
    // The clock of the last recording is forgotten, too.
    QVERIFY(bench->recorder.flush(1));
}

void TestRecorderFailures::aFullPipeHoldsUpNothing()
{
    const QByteArray pipe = bench->path("run.csv").toLocal8Bit();
    QCOMPARE(::mkfifo(pipe.constData(), 0600), 0);
    const int reader = ::open(pipe.constData(), O_RDONLY | O_NONBLOCK);
    QVERIFY(reader >= 0);
    QVERIFY(!bench->startOne(0, {0}, everySample));
    // Far more than a pipe holds.
    bench->take(0, 5000);
    QVERIFY(!bench->recorder.flush(0));
    QByteArray held(1024 * 1024, '\0');
    held.truncate(int(::read(reader, held.data(), std::size_t(held.size()))));
    ::close(reader);
    QVERIFY(held.size() > 1000);
    QVERIFY(held.endsWith('\n'));
    const std::optional<RecordFailure> failure = bench->recorder.stop();
    QVERIFY(failure);
    QCOMPARE(failure->reason, QStringLiteral("Resource temporarily unavailable"));
}

void TestRecorderFailures::theEndOfTheRecorderClosesItsFiles()
{
    const QString path = bench->path("run.csv");
    {
        const RecordableSystems systems = bench->displayed({0});
        Recorder recorder;
        QVERIFY(!recorder.start(planForOne(path, systems, RecordBench::connection(0)), systems,
                                everySample, bench->now));
        recorder.recordOf(RecordBench::connection(0))->take({MeasureSample()}, {true, false});
    }
    QCOMPARE(bench->lines("run.csv").size(), 1);
}

void TestRecorderFailures::aKilledProcessLosesLessThanASecond()
{
    SharedNumber takenMs;
    QVERIFY(takenMs.isShared());
    const pid_t child = ::fork();
    QVERIFY(child >= 0);
    if (child == 0) {
        // The clock of the child runs as fast as it can.
        if (bench->startOne(0, {0}, everySample))
            ::_exit(1);
        for (int nowMs = 2;; nowMs += 2) {
            bench->take(0, 1);
            if (bench->recorder.flush(nowMs))
                ::_exit(1);
            takenMs.set(nowMs);
        }
    }
    // Long enough for the child to be in the middle of it.
    constexpr qint64 someTimeMs = 20000;
    const bool ran = QTest::qWaitFor([&] { return takenMs.get() > someTimeMs; }, 20000);
    ::kill(child, SIGKILL);
    int status = 0;
    QCOMPARE(::waitpid(child, &status, 0), child);
    QVERIFY(ran);
    QVERIFY(WIFSIGNALED(status));

    QVERIFY(bench->bytes("run.csv").endsWith('\n'));
    const QList<QByteArray> lines = bench->lines("run.csv");
    for (int i = 0; i < lines.size(); ++i) {
        QCOMPARE(lines.at(i).count('\t'), 10);
        QCOMPARE(lines.at(i).left(lines.at(i).indexOf('\t')).toInt(), i * 2);
    }
    // The first line is of the time 2 and has 0.
    const qint64 writtenMs = (lines.size() - 1) * 2 + 2;
    QVERIFY2(writtenMs > takenMs.get() - 1000, qPrintable(QString::number(writtenMs)));
}

QTEST_GUILESS_MAIN(TestRecorderFailures)
#include "tst_recorderfailures.moc"
