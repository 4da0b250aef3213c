// Recordings in the real window: worked by the dialog, fed by emulated controllers, and ended by
// whatever ends them. What is on disk are whole lines, and the window goes on.

#include "recordingbench.h"
#include "support/boxanswers.h"
#include "support/widgetcheck.h"

#include <QMessageBox>
#include <QtTest>

namespace {

/// The samples of the file that was made by hand. The one before them answers the start and is
/// shown to nobody.
QVector<emulator::PacketValues> handMadeSamples()
{
    return {{},
            {{{0, -1, 4000, 5000, 4999}, {1234, -1234, 3500, 0, 10000}}},
            {{{32767, -32768, 65535, 32767, -32768}, {-32768, 32767, 0, -4, -5}}},
            {{{5, -5, 4005, 15, 25}, {1000, -1000, 5, 4995, 5005}}},
            {{{250, -250, 4015, 5015, 5025}, {1, -2, 3505, 5035, 5045}}}};
}

QStringList handMadeLines()
{
    return {"0.000\t-0.001\t4.00\t1.234\t-1.234\t3.50\t5.00\t5.00\t0.00\t10.00",
            "32.767\t-32.768\t65.53\t-32.768\t32.767\t0.00\t32.77\t-32.77\t-0.00\t-0.01",
            "0.005\t-0.005\t4.00\t1.000\t-1.000\t0.01\t0.01\t0.03\t5.00\t5.00",
            "0.250\t-0.250\t4.01\t0.001\t-0.002\t3.50\t5.01\t5.03\t5.04\t5.04"};
}

QString withoutTime(const QString& line)
{
    return line.section('\t', 1);
}

} // namespace

class TestRecording final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void dialogOpensWithTheSamplingRate();
    void withoutASystemNothingCanBeRecorded();
    void linesAreWhatTheControllerSent();
    void startBeginsTheAcquisitionAndStopLeavesIt();
    void samplesAreThinnedOut_data();
    void samplesAreThinnedOut();
    void timesAreThoseOfTheSamplesOnTheScreen();
    void everySystemHasItsFile();
    void filesAreOverwrittenOnlyIfAllowed_data();
    void filesAreOverwrittenOnlyIfAllowed();
    void timedRecordingEndsByItself();
    void saveRateIsCutToASamplingRateThatFell();
    void shownDialogKeepsTheRateOfARecording();
    void closedDialogLetsTheRecordingGoOn();
    void endOfTheAcquisitionEndsTheRecording();
    void endOfACountedRunEndsTheRecording();
    void hiddenSystemGetsNoLinesUntilItIsShownAgain();
    void removedSystemKeepsWhatItHas();
    void lossOfTheOnlySystemEndsTheRecording();
    void lossOfOneOfTwoLetsTheOtherGoOn();
    void closedWindowLeavesWholeLines();
    void removedFileEndsTheRecordingAndIsTold();
    void fileThatCanNotBeOpenedIsTold();
};

void TestRecording::dialogOpensWithTheSamplingRate()
{
    RecordingBench bench;
    QVERIFY(bench.fixture.openWithSystems());
    QVERIFY(bench.fixture.type("samplingRateCounter", "250"));
    bench.fixture.find<QAction>("actionOpenDataLog")->trigger();
    QVERIFY(QTest::qWaitForWindowExposed(&bench.dialog()));
    QCOMPARE(bench.in<QSpinBox>("spinBox_SaveRate").value(), 250);
    QCOMPARE(bench.in<QSpinBox>("spinBox_SaveRate").maximum(), 250);
    bench.fixture.find<QAction>("actionCloseDataLog")->trigger();
    QVERIFY(!bench.dialog().isVisible());
}

void TestRecording::withoutASystemNothingCanBeRecorded()
{
    RecordingBench bench(0);
    QVERIFY(bench.open());
    QVERIFY(!bench.in<QPushButton>("pushButton_Start").isEnabled());
}

void TestRecording::linesAreWhatTheControllerSent()
{
    emulator::ControllerOptions options;
    options.script = handMadeSamples();
    RecordingBench bench(1, options);
    QVERIFY(bench.openAndStart());
    QVERIFY(bench.ticksUntilLines(4));
    QVERIFY(bench.click("pushButton_Stop"));
    QStringList recorded;
    for (const QString& line : bench.lines())
        recorded.append(withoutTime(line));
    QCOMPARE(recorded, handMadeLines());
    QVERIFY(bench.lines().first().startsWith("0\t"));
    const QList<QByteArray> header = bench.content().split('\n').mid(0, 3);
    QVERIFY(header.at(0).startsWith("Start: 20"));
    QCOMPARE(header.at(1), QByteArray("ms\tX1(V)\tY1(V)\tI1(V)\tX2(V)\tY2(V)\tI2(V)\tRX1(V)\tRY1(V)"
                                      "\tRX2(V)\tRY2(V)"));
    QCOMPARE(header.at(2), QByteArray());
}

void TestRecording::startBeginsTheAcquisitionAndStopLeavesIt()
{
    RecordingBench bench;
    QVERIFY(bench.open());
    QVERIFY(!bench.isRunning());
    QVERIFY(bench.click("pushButton_Start"));
    QVERIFY(bench.isRunning() && bench.isRecording());
    QVERIFY(bench.fixture.controller().isStreaming());
    QVERIFY(bench.ticksUntilLines(5));
    QVERIFY(bench.click("pushButton_Stop"));
    QCOMPARE(bench.state(), QString("Data recording disabled"));
    QVERIFY(bench.isRunning());
    QVERIFY(bench.isWhole());
    const int lines = bench.lines().size();
    QVERIFY(
        bench.fixture.tickUntil([&] { return bench.fixture.controller().packetsSent() > 200; }));
    QCOMPARE(bench.lines().size(), lines);
}

void TestRecording::samplesAreThinnedOut_data()
{
    QTest::addColumn<int>("saveHz");
    QTest::addColumn<QStringList>("positions");
    QTest::newRow("all") << 100 << QStringList({"0.000", "0.001", "0.002", "0.003", "0.004"});
    QTest::newRow("every third") << 33
                                 << QStringList({"0.000", "0.003", "0.006", "0.009", "0.012"});
    QTest::newRow("every fifth") << 20
                                 << QStringList({"0.000", "0.005", "0.010", "0.015", "0.020"});
    QTest::newRow("none but the first") << 0 << QStringList("0.000");
}

void TestRecording::samplesAreThinnedOut()
{
    QFETCH(int, saveHz);
    QFETCH(QStringList, positions);
    // The first sample answers the start.
    RecordingBench bench(1, countingController(-1));
    QVERIFY(bench.open());
    bench.in<QSpinBox>("spinBox_SaveRate").setValue(saveHz);
    QVERIFY(bench.click("pushButton_Start"));
    QVERIFY(bench.ticksUntilLines(positions.size()));
    QVERIFY(bench.fixture.tickUntil([&] { return bench.fixture.controller().packetsSent() > 60; }));
    QVERIFY(bench.isRecording());
    QVERIFY(bench.click("pushButton_Stop"));
    QStringList recorded;
    for (const QString& line : bench.lines())
        recorded.append(line.section('\t', 1, 1));
    QCOMPARE(recorded.mid(0, positions.size()), positions);
    if (saveHz == 0)
        QCOMPARE(recorded, positions);
}

void TestRecording::timesAreThoseOfTheSamplesOnTheScreen()
{
    constexpr double msPerSecond = 1000.0;
    constexpr int mvPerVolt = 1000;
    RecordingBench bench(1, countingController());
    QVERIFY(bench.openAndStart());
    QVERIFY(bench.ticksUntilLines(100));
    QVERIFY(bench.click("pushButton_Stop"));
    QHash<int, qint64> msOfNumber;
    for (const QString& line : bench.lines())
        msOfNumber.insert(qRound(line.section('\t', 1, 1).toDouble() * mvPerVolt),
                          line.section('\t', 0, 0).toLongLong());
    QSet<qint64> differences;
    int compared = 0;
    for (const QPointF& point : pointsOf(bench.fixture.positionPlot(1), 0)) {
        const auto found = msOfNumber.constFind(qRound(point.y() * mvPerVolt));
        if (found == msOfNumber.constEnd())
            continue;
        differences.insert(qRound64(point.x() * msPerSecond) - *found);
        ++compared;
    }
    QVERIFY(compared > 5);
    // All that lies between is how long before the first line the time of the plot began.
    QCOMPARE(differences.size(), 1);
}

void TestRecording::everySystemHasItsFile()
{
    RecordingBench bench(2);
    QVERIFY(bench.openAndStartBoth());
    QVERIFY(bench.ticksUntilLines(5, "run_A.csv") && bench.ticksUntilLines(5, "run_B.csv"));
    QVERIFY(bench.click("pushButton_Stop"));
    QCOMPARE(bench.files(), QStringList({"run_A.csv", "run_B.csv"}));
    for (const QString& name : bench.files()) {
        QVERIFY(bench.isWhole(name));
        QVERIFY(bench.lines(name).first().startsWith("0\t"));
    }
}

void TestRecording::filesAreOverwrittenOnlyIfAllowed_data()
{
    QTest::addColumn<bool>("everySystem");
    QTest::addColumn<bool>("allowed");
    QTest::addColumn<QString>("title");
    for (const bool allowed : {false, true}) {
        const char* answer = allowed ? "allowed" : "refused";
        QTest::addRow("one system, %s", answer) << false << allowed << "File exists!";
        QTest::addRow("every system, %s", answer)
            << true << allowed << "File with extension exist!";
    }
}

void TestRecording::filesAreOverwrittenOnlyIfAllowed()
{
    QFETCH(bool, everySystem);
    QFETCH(bool, allowed);
    QFETCH(QString, title);
    RecordingBench bench;
    QVERIFY(bench.open());
    bench.fixture.window().relabelConnection(&bench.fixture.connection(), "A");
    const QString name = everySystem ? "run_A.csv" : "run.csv";
    QFile old(bench.path(name));
    QVERIFY(old.open(QIODevice::WriteOnly) && old.write("old") == 3);
    old.close();
    if (everySystem)
        QVERIFY(bench.click("checkBox"));
    const BoxAnswers answers(allowed ? QMessageBox::Ok : QMessageBox::Cancel);
    QVERIFY(bench.click("pushButton_Start"));
    QCOMPARE(answers.titles(), QStringList{title});
    QCOMPARE(answers.texts(), QStringList{"File\n" + bench.path(name)
                                          + "\n already exists!\n\nOverwrite the file?"});
    QCOMPARE(bench.isRecording(), allowed);
    QCOMPARE(bench.in<QPushButton>("pushButton_Start").isEnabled(), !allowed);
    QCOMPARE(bench.content(name) == "old", !allowed);
}

void TestRecording::timedRecordingEndsByItself()
{
    RecordingBench bench;
    QVERIFY(bench.open());
    bench.in<QLineEdit>("lineEdit_RecordTime").setText("000:00:01");
    QVERIFY(bench.click("pushButton_Start"));
    QVERIFY(bench.fixture.tickUntil([&] { return !bench.isRecording(); }));
    QVERIFY(bench.in<QPushButton>("pushButton_Start").isEnabled());
    QVERIFY(bench.isWhole());
    QVERIFY(bench.lines().size() > 10);
    QVERIFY(bench.isRunning());
}

void TestRecording::saveRateIsCutToASamplingRateThatFell()
{
    RecordingBench bench;
    QVERIFY(bench.open());
    QCOMPARE(bench.in<QSpinBox>("spinBox_SaveRate").value(), 100);
    QVERIFY(bench.fixture.type("samplingRateCounter", "50"));
    QVERIFY(bench.click("pushButton_Start"));
    QVERIFY(bench.isRecording());
    QCOMPARE(bench.in<QSpinBox>("spinBox_SaveRate").value(), 50);
    QCOMPARE(bench.dialog().saveRate(), 50);
}

void TestRecording::shownDialogKeepsTheRateOfARecording()
{
    RecordingBench bench;
    QVERIFY(bench.open());
    bench.in<QSpinBox>("spinBox_SaveRate").setValue(20);
    QVERIFY(bench.click("pushButton_Start"));
    bench.fixture.find<QAction>("actionCloseDataLog")->trigger();
    bench.fixture.find<QAction>("actionOpenDataLog")->trigger();
    QCOMPARE(bench.in<QSpinBox>("spinBox_SaveRate").value(), 20);
    QVERIFY(bench.isRecording());
    QVERIFY(bench.click("pushButton_Stop"));
    bench.fixture.find<QAction>("actionOpenDataLog")->trigger();
    QCOMPARE(bench.in<QSpinBox>("spinBox_SaveRate").value(), 100);
}

void TestRecording::closedDialogLetsTheRecordingGoOn()
{
    RecordingBench bench;
    QVERIFY(bench.openAndStart());
    QVERIFY(bench.click("pushButton_Close"));
    QVERIFY(!bench.dialog().isVisible());
    QVERIFY(bench.ticksUntilLines(10));
    QVERIFY(bench.isRecording());
}

void TestRecording::endOfTheAcquisitionEndsTheRecording()
{
    RecordingBench bench;
    QVERIFY(bench.openAndStart());
    QVERIFY(bench.ticksUntilLines(5));
    QVERIFY(bench.fixture.clickAction("startAction"));
    QVERIFY(!bench.isRecording());
    QVERIFY(bench.in<QPushButton>("pushButton_Start").isEnabled());
    QVERIFY(bench.isWhole());
}

void TestRecording::endOfACountedRunEndsTheRecording()
{
    RecordingBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.fixture.click("pointingRadio"));
    QVERIFY(bench.fixture.type("samplesToTakeCounter", "50"));
    QVERIFY(bench.click("pushButton_Start"));
    QVERIFY(bench.fixture.tickUntil([&] { return !bench.isRunning(); }));
    QVERIFY(!bench.isRecording());
    QCOMPARE(bench.lines().size(), 49);
    QVERIFY(bench.isWhole());
}

void TestRecording::hiddenSystemGetsNoLinesUntilItIsShownAgain()
{
    RecordingBench bench(2);
    QVERIFY(bench.openAndStartBoth());
    MainWindow& window = bench.fixture.window();
    QVERIFY(bench.ticksUntilLines(5, "run_A.csv"));
    window.showConnection(bench.fixture.connection(0).address(), false);
    // What was recorded before still waits for the disk.
    QVERIFY(bench.ticksUntilLines(bench.lines("run_B.csv").size() + 30, "run_B.csv"));
    const int hidden = bench.lines("run_A.csv").size();
    QVERIFY(bench.ticksUntilLines(bench.lines("run_B.csv").size() + 30, "run_B.csv"));
    QCOMPARE(bench.lines("run_A.csv").size(), hidden);
    QVERIFY(bench.isRecording());
    window.showConnection(bench.fixture.connection(0).address(), true);
    QVERIFY(bench.ticksUntilLines(hidden + 5, "run_A.csv"));
    QVERIFY(bench.click("pushButton_Stop"));
    QVERIFY(bench.isWhole("run_A.csv") && bench.isWhole("run_B.csv"));
}

void TestRecording::removedSystemKeepsWhatItHas()
{
    RecordingBench bench(2);
    QVERIFY(bench.openAndStartBoth());
    MainWindow& window = bench.fixture.window();
    QVERIFY(bench.ticksUntilLines(5, "run_A.csv"));
    const QByteArray before = bench.content("run_A.csv");
    QVERIFY(window.closeConnection(&bench.fixture.connection(0)));
    QVERIFY(bench.isRecording());
    QVERIFY(bench.ticksUntilLines(bench.lines("run_B.csv").size() + 10, "run_B.csv"));
    QVERIFY(bench.click("pushButton_Stop"));
    QVERIFY(bench.content("run_A.csv").startsWith(before));
    QVERIFY(bench.isWhole("run_A.csv") && bench.isWhole("run_B.csv"));
}

void TestRecording::lossOfTheOnlySystemEndsTheRecording()
{
    RecordingBench bench;
    QVERIFY(bench.openAndStart());
    QVERIFY(bench.ticksUntilLines(5));
    const QByteArray before = bench.content();
    bench.fixture.controller().closeConnection();
    QVERIFY(bench.fixture.tickUntil([&] { return !bench.isRecording(); }));
    QVERIFY(!bench.in<QPushButton>("pushButton_Start").isEnabled());
    QVERIFY(bench.content().startsWith(before));
    QVERIFY(bench.isWhole());
}

void TestRecording::lossOfOneOfTwoLetsTheOtherGoOn()
{
    RecordingBench bench(2);
    QVERIFY(bench.openAndStartBoth());
    QVERIFY(bench.ticksUntilLines(5, "run_A.csv"));
    const QByteArray before = bench.content("run_A.csv");
    const MainWindow& window = bench.fixture.window();
    bench.fixture.controller(0).closeConnection();
    QVERIFY(bench.fixture.tickUntil([&] { return !window.shownConnections().contains(0); }));
    QVERIFY(bench.ticksUntilLines(bench.lines("run_B.csv").size() + 10, "run_B.csv"));
    QVERIFY(bench.isRecording());
    QVERIFY(bench.click("pushButton_Stop"));
    QVERIFY(bench.content("run_A.csv").startsWith(before));
    QVERIFY(bench.isWhole("run_A.csv") && bench.isWhole("run_B.csv"));
}

void TestRecording::closedWindowLeavesWholeLines()
{
    RecordingBench bench;
    QVERIFY(bench.openAndStart());
    QVERIFY(bench.ticksUntilLines(5));
    bench.fixture.window().close();
    QVERIFY(bench.isWhole());
    const int lines = bench.lines().size();
    bench.fixture.destroyWindow();
    QCOMPARE(bench.lines().size(), lines);
}

void TestRecording::removedFileEndsTheRecordingAndIsTold()
{
    RecordingBench bench;
    QVERIFY(bench.openAndStart());
    QVERIFY(bench.ticksUntilLines(5));
    QVERIFY(QFile::remove(bench.path("run.csv")));
    QVERIFY(bench.fixture.tickUntil([&] { return !bench.isRecording(); }));
    auto* box = bench.fixture.find<QMessageBox>("recordingErrorBox");
    QVERIFY(box->isVisible() && !box->isModal());
    QVERIFY(box->informativeText().startsWith("File\n" + bench.path("run.csv") + '\n'));
    QVERIFY(bench.in<QPushButton>("pushButton_Start").isEnabled());
    QVERIFY(bench.isRunning());
    box->close();
}

void TestRecording::fileThatCanNotBeOpenedIsTold()
{
    RecordingBench bench;
    QVERIFY(bench.open("missing/run.csv"));
    QVERIFY(bench.click("pushButton_Start"));
    QVERIFY(!bench.isRecording());
    QVERIFY(bench.in<QPushButton>("pushButton_Start").isEnabled());
    auto* box = bench.fixture.find<QMessageBox>("recordingErrorBox");
    QVERIFY(box->isVisible());
    QVERIFY(box->informativeText().contains(bench.path("missing/run.csv")));
    box->close();
}

QTEST_MAIN(TestRecording)
#include "tst_recording.moc"
