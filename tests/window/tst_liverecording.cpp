// Recordings of the displayed systems: what starts and ends them, and what is asked and told. The
// controllers are scripts in memory.

#include "monitorbench.h"
#include "window/liverecording.h"
#include "window/samplemanner.h"
#include "window/samplepass.h"

#include <QDir>
#include <QFile>
#include <QIcon>
#include <QImage>
#include <QLabel>
#include <QTemporaryDir>
#include <QtTest>

namespace {

using Link = SystemsBench::Link;

QImage lightOf(const char* resource)
{
    constexpr QSize size(22, 22);
    return QIcon(resource).pixmap(size).toImage();
}

struct Bench : MonitorBench
{
    Bench()
    {
        QObject::connect(&recording, &LiveRecording::endWanted, &recording, [this] {
            ++endsWanted;
            recording.end();
        });
        QObject::connect(&recording, &LiveRecording::failed, &recording,
                         [this](const RecordFailure& failure) { failures.append(failure.path); });
    }

    ScriptedConnection& addNamed(const QString& label)
    {
        ScriptedConnection& connection = add(Link::Up);
        systems.at(systems.size() - 1).status.label = label;
        return connection;
    }

    QString path(const QString& name) const { return folder.filePath(name); }
    QString text() const { return frame.findChild<QLabel*>("recordingText")->text(); }
    QImage light() const
    {
        return frame.findChild<QLabel*>("recordingLight")->pixmap(Qt::ReturnByValue).toImage();
    }
    QStringList files() const { return QDir(folder.path()).entryList(QDir::Files, QDir::Name); }
    /// The lines behind the header.
    QStringList linesOf(const QString& name) const
    {
        QFile file(path(name));
        if (!file.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts).mid(2);
    }
    void putFile(const QString& name) const
    {
        QFile file(path(name));
        if (file.open(QIODevice::WriteOnly))
            file.write("old");
    }
    bool isOld(const QString& name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) && file.readAll() == "old";
    }

    /// A tick with this number of samples of each system.
    void tick(const QList<int>& counts)
    {
        std::vector<SampleBlock> blocks;
        for (int system = 0; system < counts.size(); ++system) {
            SampleBlock block{system, system,
                              std::vector<MeasureSample>(std::size_t(counts[system]))};
            for (std::size_t i = 0; i < block.samples.size(); ++i)
                block.samples[i].timeMs = 1000 + 10 * i;
            blocks.push_back(block);
        }
        SamplePass(systems, stages, statistics, mannerOfDisplayed(systems, &recorder),
                   toolBar.samplingRateHz())
            .show(blocks);
    }

    QTemporaryDir folder;
    QStringList asked;
    std::function<bool()> answer = [] { return true; };
    Recorder recorder;
    LiveRecording recording{systems, toolBar, acquisition, recorder, [this](const QString& path) {
                                asked.append(path);
                                return answer();
                            }};
    int endsWanted = 0;
    QStringList failures;
};

} // namespace

class TestLiveRecording final : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        bench = std::make_unique<Bench>();
        bench->pressStart(true);
    }
    void cleanup() { bench.reset(); }

    void recordingStartsTheAcquisition();
    void recordingIsShownInTheToolBar();
    void clockOfTheDialogBeginsWithTheFiles();
    void startDuringARecordingEndsIt();
    void everySystemHasAFileOfItsName();
    void oneSystemIsTheOneThatTheButtonsAddress();
    void hiddenSystemLeavesTheFileToTheFirstDisplayed();
    void saveRateIsCutToTheSamplingRate();
    void lowerSaveRateStays();
    void samplesOfTheTickAreRecorded();
    void lateTickIsCaughtUpBetweenEvents();
    void nextRecordingGetsNothingOfTheOneBefore();
    void sampleThatEndsARunIsNotRecorded();
    void allQuestionsComeBeforeAnyFile();
    void refusalLeavesEveryFileWhole();
    void endDuringAQuestionBeginsNoRecording();
    void systemThatIsClosedDuringAQuestionBeginsNoRecording();
    void fileOfOneSystemIsNotAskedFor();
    void withoutADisplayedSystemNothingIsRecorded();
    void fileThatCanNotBeOpenedIsTold();
    void fileThatIsRemovedEndsTheRecording();

private:
    std::unique_ptr<Bench> bench;
};

void TestLiveRecording::recordingStartsTheAcquisition()
{
    bench->pressStart(false);
    ScriptedConnection& connection = bench->add(Link::Running);
    bench->recording.start(bench->path("run.csv"), false, 100);
    QVERIFY(bench->toolBar.isRunning());
    QVERIFY(connection.isStreaming());
    QVERIFY(bench->recorder.isRecording());
}

void TestLiveRecording::recordingIsShownInTheToolBar()
{
    bench->addNamed("A");
    QCOMPARE(bench->text(), QString("Data recording disabled"));
    bench->recording.start(bench->path("run.csv"), false, 100);
    QCOMPARE(bench->text(), QString("Data recording enabled"));
    QCOMPARE(bench->light(), lightOf(":/images/green_light.png"));
    QVERIFY(bench->recording.isOngoing());
    bench->recording.end();
    QCOMPARE(bench->text(), QString("Data recording disabled"));
    QCOMPARE(bench->light(), lightOf(":/images/red_light.png"));
    QVERIFY(!bench->recording.isOngoing());
    QVERIFY(bench->toolBar.isRunning());
}

void TestLiveRecording::clockOfTheDialogBeginsWithTheFiles()
{
    bench->addNamed("A");
    const QSignalSpy begun(&bench->recording, &LiveRecording::begun);
    bench->recording.start(bench->path("run.csv"), false, 100);
    QCOMPARE(begun.count(), 1);
    QCOMPARE(bench->files(), QStringList{"run.csv"});
}

void TestLiveRecording::startDuringARecordingEndsIt()
{
    bench->addNamed("A");
    bench->recording.start(bench->path("run.csv"), false, 100);
    bench->recording.start(bench->path("other.csv"), false, 100);
    QCOMPARE(bench->endsWanted, 1);
    QVERIFY(!bench->recorder.isRecording());
    QCOMPARE(bench->files(), QStringList{"run.csv"});
}

void TestLiveRecording::everySystemHasAFileOfItsName()
{
    bench->addNamed("A");
    bench->addNamed("B");
    bench->recording.start(bench->path("run.csv"), true, 100);
    QCOMPARE(bench->files(), QStringList({"run_A.csv", "run_B.csv"}));
}

void TestLiveRecording::oneSystemIsTheOneThatTheButtonsAddress()
{
    ScriptedConnection& first = bench->addNamed("A");
    ScriptedConnection& second = bench->addNamed("B");
    bench->recording.start(bench->path("run.csv"), false, 100);
    QVERIFY(bench->recorder.recordOf(&first));
    QVERIFY(!bench->recorder.recordOf(&second));
}

void TestLiveRecording::hiddenSystemLeavesTheFileToTheFirstDisplayed()
{
    ScriptedConnection& first = bench->addNamed("A");
    ScriptedConnection& second = bench->addNamed("B");
    bench->addNamed("C");
    bench->systems.show(&first, false);
    bench->recording.start(bench->path("run.csv"), false, 100);
    QVERIFY(!bench->recorder.recordOf(&first));
    QVERIFY(bench->recorder.recordOf(&second));
}

void TestLiveRecording::saveRateIsCutToTheSamplingRate()
{
    bench->addNamed("A");
    bench->samplingRate().setValue(50);
    const QSignalSpy cut(&bench->recording, &LiveRecording::saveRateCut);
    bench->recording.start(bench->path("run.csv"), false, 100);
    QCOMPARE(cut.count(), 1);
    QCOMPARE(cut.first().first().toInt(), 50);
    bench->tick({4});
    bench->recording.end();
    QCOMPARE(bench->linesOf("run.csv").size(), 4);
}

void TestLiveRecording::lowerSaveRateStays()
{
    bench->addNamed("A");
    bench->samplingRate().setValue(100);
    const QSignalSpy cut(&bench->recording, &LiveRecording::saveRateCut);
    bench->recording.start(bench->path("run.csv"), false, 50);
    QCOMPARE(cut.count(), 0);
    bench->tick({5});
    bench->recording.end();
    QCOMPARE(bench->linesOf("run.csv").size(), 3);
}

void TestLiveRecording::samplesOfTheTickAreRecorded()
{
    bench->addNamed("A");
    bench->addNamed("B");
    bench->recording.start(bench->path("run.csv"), true, bench->toolBar.samplingRateHz());
    bench->tick({3, 2});
    bench->recording.writeSoon();
    QTRY_COMPARE(bench->linesOf("run_A.csv").size(), 3);
    QCOMPARE(bench->linesOf("run_B.csv").size(), 2);
    QVERIFY(bench->linesOf("run_A.csv").at(1).startsWith("10\t"));
}

void TestLiveRecording::lateTickIsCaughtUpBetweenEvents()
{
    constexpr int most = 501;
    QList<int> counts;
    for (const char* label : {"A", "B", "C", "D", "E", "F"}) {
        bench->addNamed(label);
        counts.append(most);
    }
    bench->recording.start(bench->path("run.csv"), true, 500);
    bench->tick(counts);
    bench->recording.writeSoon();
    // Nothing of it belongs to the tick.
    QVERIFY(bench->linesOf("run_A.csv").isEmpty());
    QTRY_VERIFY(!bench->recorder.isBehind());
    // All of it is on disk without another tick.
    for (const char* label : {"A", "B", "C", "D", "E", "F"})
        QCOMPARE(bench->linesOf(QStringLiteral("run_%1.csv").arg(label)).size(), most);
}

void TestLiveRecording::nextRecordingGetsNothingOfTheOneBefore()
{
    constexpr int most = 501;
    for (const char* label : {"A", "B", "C"})
        bench->addNamed(label);
    bench->recording.start(bench->path("run.csv"), true, 500);
    bench->tick({most, most, most});
    bench->recording.writeSoon();
    QVERIFY(bench->recorder.isBehind());
    bench->recording.end();
    bench->recording.start(bench->path("next.csv"), true, 500);
    QCoreApplication::processEvents();
    bench->recording.end();
    for (const char* label : {"A", "B", "C"}) {
        QCOMPARE(bench->linesOf(QStringLiteral("run_%1.csv").arg(label)).size(), most);
        QVERIFY(bench->linesOf(QStringLiteral("next_%1.csv").arg(label)).isEmpty());
    }
}

void TestLiveRecording::sampleThatEndsARunIsNotRecorded()
{
    bench->addNamed("A");
    bench->recording.start(bench->path("run.csv"), false, bench->toolBar.samplingRateHz());
    bench->statistics.run().setLimit(3);
    bench->tick({5});
    bench->recording.end();
    QCOMPARE(bench->linesOf("run.csv").size(), 2);
}

void TestLiveRecording::allQuestionsComeBeforeAnyFile()
{
    bench->addNamed("A");
    bench->addNamed("B");
    bench->addNamed("C");
    bench->putFile("run_A.csv");
    bench->putFile("run_C.csv");
    bool isOldAtLast = false;
    bench->answer = [&] { return isOldAtLast = bench->isOld("run_A.csv"); };
    bench->recording.start(bench->path("run.csv"), true, 100);
    QCOMPARE(bench->asked, QStringList({bench->path("run_A.csv"), bench->path("run_C.csv")}));
    QVERIFY(isOldAtLast);
    QVERIFY(!bench->isOld("run_A.csv"));
    QVERIFY(!bench->isOld("run_C.csv"));
}

void TestLiveRecording::refusalLeavesEveryFileWhole()
{
    bench->addNamed("A");
    bench->addNamed("B");
    bench->putFile("run_A.csv");
    bench->putFile("run_B.csv");
    bench->answer = [&] { return bench->asked.size() < 2; };
    bench->recording.start(bench->path("run.csv"), true, 100);
    QCOMPARE(bench->endsWanted, 1);
    QVERIFY(bench->isOld("run_A.csv"));
    QVERIFY(bench->isOld("run_B.csv"));
    QVERIFY(!bench->recording.isOngoing());
    QCOMPARE(bench->text(), QString("Data recording disabled"));
    QVERIFY(bench->failures.isEmpty());
}

void TestLiveRecording::endDuringAQuestionBeginsNoRecording()
{
    bench->addNamed("A");
    bench->addNamed("B");
    bench->putFile("run_A.csv");
    bench->putFile("run_B.csv");
    bench->answer = [&] {
        bench->recording.end();
        return true;
    };
    bench->recording.start(bench->path("run.csv"), true, 100);
    QCOMPARE(bench->asked.size(), 1);
    QVERIFY(!bench->recorder.isRecording());
    QVERIFY(bench->isOld("run_A.csv"));
    QCOMPARE(bench->endsWanted, 1);
}

void TestLiveRecording::systemThatIsClosedDuringAQuestionBeginsNoRecording()
{
    bench->addNamed("A");
    const ScriptedConnection& closed = bench->addNamed("B");
    bench->putFile("run_A.csv");
    bench->answer = [&] { return bench->systems.close(&closed); };
    bench->recording.start(bench->path("run.csv"), true, 100);
    QCOMPARE(bench->asked.size(), 1);
    QVERIFY(!bench->recorder.isRecording());
    QVERIFY(bench->isOld("run_A.csv"));
}

void TestLiveRecording::fileOfOneSystemIsNotAskedFor()
{
    bench->addNamed("A");
    bench->putFile("run.csv");
    bench->recording.start(bench->path("run.csv"), false, 100);
    QVERIFY(bench->asked.isEmpty());
    QVERIFY(!bench->isOld("run.csv"));
}

void TestLiveRecording::withoutADisplayedSystemNothingIsRecorded()
{
    bench->recording.start(bench->path("run.csv"), false, 100);
    QCOMPARE(bench->endsWanted, 1);
    QVERIFY(bench->files().isEmpty());
}

void TestLiveRecording::fileThatCanNotBeOpenedIsTold()
{
    bench->addNamed("A");
    const QString path = bench->path("none/run.csv");
    bench->recording.start(path, false, 100);
    QCOMPARE(bench->failures, QStringList{path});
    QCOMPARE(bench->endsWanted, 1);
    QCOMPARE(bench->text(), QString("Data recording disabled"));
}

void TestLiveRecording::fileThatIsRemovedEndsTheRecording()
{
    bench->addNamed("A");
    const QString path = bench->path("run.csv");
    bench->recording.start(path, false, 100);
    QVERIFY(QFile::remove(path));
    bench->recording.writeSoon();
    QTRY_COMPARE(bench->failures, QStringList{path});
    QCOMPARE(bench->endsWanted, 1);
    QVERIFY(!bench->recorder.isRecording());
    bench->recording.writeSoon();
    QCoreApplication::processEvents();
    QCOMPARE(bench->failures.size(), 1);
}

QTEST_MAIN(TestLiveRecording)
#include "tst_liverecording.moc"
