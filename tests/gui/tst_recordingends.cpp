// What goes wrong in the middle of a recording. What is on disk are whole lines, the user is told,
// the dialog can start another one, and the window goes on.

#include "recordingbench.h"
#include "setup/settings.h"
#include "support/boxanswers.h"
#include "support/fulldisk.h"
#include "support/widgetcheck.h"

#include <QMessageBox>
#include <QProcess>
#include <QtTest>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// A pipe that is as small as the system makes one. Nobody reads what lies in it until the test
/// does.
class SmallPipe final
{
public:
    explicit SmallPipe(const QString& path)
    {
        const QByteArray name = QFile::encodeName(path);
        constexpr mode_t ownerOnly = 0600;
        if (::mkfifo(name.constData(), ownerOnly) != 0)
            return;
        reader = ::open(name.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        size = ::fcntl(reader, F_SETPIPE_SZ, 1);
    }
    ~SmallPipe()
    {
        if (reader >= 0)
            ::close(reader);
    }
    SmallPipe(const SmallPipe&) = delete;
    SmallPipe& operator=(const SmallPipe&) = delete;

    bool isMade() const { return reader >= 0 && size > 0; }
    int bytes() const { return size; }
    /// What lies in it, which it gives up.
    QByteArray content() const
    {
        QByteArray bytes(held(), '\0');
        bytes.truncate(int(::read(reader, bytes.data(), std::size_t(bytes.size()))));
        return bytes;
    }

private:
    int held() const
    {
        int bytes = 0;
        ::ioctl(reader, FIONREAD, &bytes);
        return bytes;
    }

    int reader = -1;
    int size = 0;
};

/// One read of the status, as the tick does it.
bool readStatus(MainWindow& window)
{
    bool good = false;
    QMetaObject::invokeMethod(&window, "getStabilAndActiveStatus", Qt::DirectConnection,
                              Q_RETURN_ARG(bool, good));
    return good;
}

QMessageBox& errorBox(const RecordingBench& bench)
{
    return *bench.fixture.find<QMessageBox>("recordingErrorBox");
}

} // namespace

class TestRecordingEnds final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void fullDiskEndsTheRecordingAndIsTold();
    void anotherRecordingCanFollowOne();
    void removedFolderEndsTheRecordingAndIsTold();
    void fullPipeHoldsUpNothingAndIsToldAtTheEnd();
    void fourthCommunicationErrorEndsTheRecording();
    void failureAtTheCloseOfTheWindowIsStillTold();
    void startDuringARecordingEndsIt();
    void endOfTheAcquisitionBehindAQuestionBeginsNoRecording();
    void killedApplicationLeavesWholeLines();
};

void TestRecordingEnds::fullDiskEndsTheRecordingAndIsTold()
{
    constexpr int limitBytes = 3000;
    constexpr int longestLine = 100;
    RecordingBench bench(1, countingController());
    QVERIFY(bench.openAndStart());
    QVERIFY(bench.ticksUntilLines(5));
    {
        const FullDisk disk(limitBytes);
        QVERIFY(bench.fixture.tickUntil([&] { return !bench.isRecording(); }));
    }
    QVERIFY(errorBox(bench).isVisible() && !errorBox(bench).isModal());
    QCOMPARE(errorBox(bench).informativeText(),
             "File\n" + bench.path("run.csv") + "\nFile too large");
    QVERIFY(bench.in<QPushButton>("pushButton_Start").isEnabled());
    QVERIFY(bench.isWhole());
    QCOMPARE(gapIn(numbersIn(bench.content())), QString());
    QVERIFY(bench.content().size() <= limitBytes);
    QVERIFY(bench.content().size() > limitBytes - longestLine);
    QVERIFY(bench.isRunning() && bench.windowTicksOn());
    errorBox(bench).close();
}

void TestRecordingEnds::anotherRecordingCanFollowOne()
{
    RecordingBench bench;
    QVERIFY(bench.openAndStart());
    {
        const FullDisk disk(1000);
        QVERIFY(bench.fixture.tickUntil([&] { return !bench.isRecording(); }));
    }
    errorBox(bench).close();
    bench.in<QLineEdit>("lineEdit_FileName").setText(bench.path("next.csv"));
    QVERIFY(bench.click("pushButton_Start"));
    QVERIFY(bench.ticksUntilLines(50, "next.csv"));
    QVERIFY(bench.click("pushButton_Stop"));
    QVERIFY(bench.isWhole("next.csv"));
    QVERIFY(!errorBox(bench).isVisible());
}

void TestRecordingEnds::removedFolderEndsTheRecordingAndIsTold()
{
    RecordingBench bench;
    QVERIFY(QDir(bench.folder.path()).mkdir("there"));
    QVERIFY(bench.openAndStart("there/run.csv"));
    QVERIFY(bench.ticksUntilLines(5, "there/run.csv"));
    QVERIFY(QDir(bench.path("there")).removeRecursively());
    QVERIFY(bench.fixture.tickUntil([&] { return !bench.isRecording(); }));
    QVERIFY(errorBox(bench).isVisible() && !errorBox(bench).isModal());
    QCOMPARE(errorBox(bench).informativeText(),
             "File\n" + bench.path("there/run.csv") + "\nNo such file or directory");
    QVERIFY(bench.in<QPushButton>("pushButton_Start").isEnabled());
    QVERIFY(!QFile::exists(bench.path("there")));
    QVERIFY(bench.isRunning() && bench.windowTicksOn());
    errorBox(bench).close();
}

void TestRecordingEnds::fullPipeHoldsUpNothingAndIsToldAtTheEnd()
{
    constexpr int shortestLine = 40;
    RecordingBench bench(1, countingController());
    const SmallPipe pipe(bench.path("run.csv"));
    QVERIFY(pipe.isMade());
    const BoxAnswers answers;
    QVERIFY(bench.openAndStart());
    const int moreThanItHolds = 2 * pipe.bytes() / shortestLine;
    QVERIFY(bench.fixture.tickUntil(
        [&] { return bench.fixture.controller().packetsSent() > moreThanItHolds; }));
    QVERIFY(bench.windowTicksOn());
    QVERIFY(bench.isRecording());
    QVERIFY(bench.click("pushButton_Stop"));
    QVERIFY(!bench.isRecording());
    QVERIFY(bench.in<QPushButton>("pushButton_Start").isEnabled());
    QCOMPARE(answers.titles(), QStringList("File exists!"));
    QVERIFY(errorBox(bench).isVisible());
    QCOMPARE(errorBox(bench).informativeText(),
             "File\n" + bench.path("run.csv") + "\nResource temporarily unavailable");
    const QByteArray taken = pipe.content();
    QVERIFY(isWhole(taken));
    QCOMPARE(gapIn(numbersIn(taken)), QString());
    QVERIFY(bench.isRunning() && bench.windowTicksOn());
    errorBox(bench).close();
}

void TestRecordingEnds::fourthCommunicationErrorEndsTheRecording()
{
    RecordingBench bench(1, countingController());
    QVERIFY(bench.openAndStart());
    QVERIFY(bench.ticksUntilLines(5));
    const BoxAnswers answers;
    // A stream does not let the request through: the reads fail while it runs.
    for (int failure = 1; failure <= 3; ++failure)
        QVERIFY(!readStatus(bench.fixture.window()));
    QVERIFY(bench.isRecording());
    QVERIFY(!readStatus(bench.fixture.window()));
    QCOMPARE(answers.texts(), QStringList("Too many communication errors.\nDevice disconnected."));
    QVERIFY(!bench.isRecording());
    QVERIFY(bench.in<QPushButton>("pushButton_Start").isEnabled());
    QVERIFY(bench.isWhole());
    QCOMPARE(gapIn(numbersIn(bench.content())), QString());
    QVERIFY(!bench.isRunning());
    // Without a stream the tick asks for the status.
    bench.fixture.controller().clearWire();
    QVERIFY(QTest::qWaitFor([&] { return bench.fixture.controller().count("GSF") > 0; }));
}

void TestRecordingEnds::failureAtTheCloseOfTheWindowIsStillTold()
{
    RecordingBench bench;
    QVERIFY(bench.openAndStart());
    QVERIFY(bench.ticksUntilLines(5));
    const BoxAnswers answers;
    // No tick comes between the two, so that the closing finds it out.
    QVERIFY(QFile::remove(bench.path("run.csv")));
    bench.fixture.window().close();
    QCOMPARE(answers.texts(), QStringList{"The recording has ended. A file can not be written."});
    QVERIFY(!bench.fixture.window().isVisible());
}

/// The button is disabled then; a start can still come from elsewhere.
void TestRecordingEnds::startDuringARecordingEndsIt()
{
    RecordingBench bench;
    QVERIFY(bench.openAndStart());
    QVERIFY(bench.ticksUntilLines(5));
    const BoxAnswers answers(QMessageBox::Ok);
    bench.dialog().emitStartSignal();
    QCOMPARE(answers.titles(), QStringList{"File exists!"});
    QVERIFY(!bench.isRecording() && !bench.dialog().isRecording());
    QVERIFY(bench.in<QPushButton>("pushButton_Start").isEnabled());
    QVERIFY(bench.isWhole());
    QVERIFY(bench.isRunning());
}

void TestRecordingEnds::endOfTheAcquisitionBehindAQuestionBeginsNoRecording()
{
    RecordingBench bench;
    QVERIFY(bench.open());
    bench.fixture.window().relabelConnection(&bench.fixture.connection(), "A");
    QFile old(bench.path("run_A.csv"));
    QVERIFY(old.open(QIODevice::WriteOnly) && old.write("old") == 3);
    old.close();
    QVERIFY(bench.click("checkBox"));
    // What ends a run or a broken link does while the user still thinks about the answer.
    auto* startAction = bench.fixture.find<QAction>("startAction");
    QTimer::singleShot(0, startAction, &QAction::trigger);
    const BoxAnswers answers(QMessageBox::Ok);
    QVERIFY(bench.click("pushButton_Start"));
    QCOMPARE(answers.titles(), QStringList{"File with extension exist!"});
    QVERIFY(!bench.isRunning());
    QVERIFY(!bench.isRecording() && !bench.dialog().isRecording());
    QVERIFY(bench.in<QPushButton>("pushButton_Start").isEnabled());
    QCOMPARE(bench.content("run_A.csv"), QByteArray("old"));
}

void TestRecordingEnds::killedApplicationLeavesWholeLines()
{
    constexpr int linesPerSecond = 100;
    // The controllers of a fixture; the window is in the other process.
    WindowFixture fixture(1, countingController());
    const QTemporaryDir home;
    QVERIFY(QDir(home.path()).mkdir("Lumetra"));
    Settings settings;
    QVERIFY(settings.setList({fixture.record()}));
    QVERIFY(settings.save(home.filePath("Lumetra/ConnectionSetup.xml")));

    QProcess application;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("HOME", home.path());
    application.setProcessEnvironment(environment);
    application.setProcessChannelMode(QProcess::ForwardedChannels);
    application.start(RECORDING_APPLICATION, {"-a", home.filePath("run.csv")});
    const auto content = [&] {
        QFile file(home.filePath("run.csv"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    constexpr int limitMs = 60000;
    bool recorded =
        QTest::qWaitFor([&] { return linesOf(content()).size() > linesPerSecond; }, limitMs);
    // The lines may have come to disk just now.
    constexpr int someLines = linesPerSecond * 3 / 2;
    const qint64 sentBefore = fixture.controller().packetsSent();
    const auto sent = [&fixture] { return fixture.controller().packetsSent(); };
    recorded = recorded && QTest::qWaitFor([&] { return sent() > sentBefore + someLines; });
    const qint64 sentAtLast = sent();
    application.kill();
    QVERIFY(application.waitForFinished());
    QVERIFY(recorded);
    QCOMPARE(application.exitStatus(), QProcess::CrashExit);
    QVERIFY(isWhole(content()));
    const QVector<quint16> numbers = numbersIn(content());
    QCOMPARE(gapIn(numbers), QString());
    QVERIFY2(numbers.last() > sentAtLast - linesPerSecond, qPrintable(QString::number(sentAtLast)));
}

QTEST_MAIN(TestRecordingEnds)
#include "tst_recordingends.moc"
