// A recording from Start to Stop, and the clock that ends it.

#include "dataloggerbench.h"
#include "plots/durationtext.h"

#include <QElapsedTimer>
#include <QPointer>

class TestDataLoggerRecording final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void startTellsTheFileAndWhatIsWanted_data();
    void startTellsTheFileAndWhatIsWanted();
    void startLocksWhatBelongsToTheRecording();
    void stopUnlocksIt();
    void windowHearsOfTheStartWhenTheDialogIsReady();
    void windowHearsOfTheStopWhenTheDialogIsIdle();
    void clockWaitsForTheFirstData();
    void clockWithoutARecordingDoesNotStart();
    void clockEndsTheRecording();
    void clockOutlivesItsOwnSignal();
    void recordingOfNoSecondsStartsAndEndsAtOnce();
    void longTimeIsCutTo32Bits_data();
    void longTimeIsCutTo32Bits();
    void fieldsCanNotBeChangedWhileRecording();
    void progressMovesAndTheRemainingTimeFalls();
    void progressStaysWhereTheRecordingWasStopped();
    void nextRecordingBeginsAtZero();
    void progressWithoutARecordingStays();
    void stopWithoutARecordingIsToldAllTheSame();
    void startDuringARecordingIsToldAgain();
    void startIsDisabledWithoutAnythingToRecord();
    void nothingToRecordEndsARunningClock();
    void nothingToRecordLeavesAClockThatWaits();
    void withNothingToRecordStartStaysDisabled_data();
    void withNothingToRecordStartStaysDisabled();
    void anotherSystemDoesNotEnableStartWhileRecording();
    void closingLeavesTheRecording_data();
    void closingLeavesTheRecording();
    void reopeningShowsTheState();
    void dialogCanBeDestroyedWhileRecording();
    void listenerOfTheEndMayStartAnew();
    void keyboardStartsAndStops();
};

void TestDataLoggerRecording::cleanup()
{
    QCOMPARE(leftWidgets(), QString());
}

void TestDataLoggerRecording::startTellsTheFileAndWhatIsWanted_data()
{
    QTest::addColumn<bool>("allSystems");
    QTest::newRow("one system") << false;
    QTest::newRow("all systems") << true;
}

void TestDataLoggerRecording::startTellsTheFileAndWhatIsWanted()
{
    QFETCH(bool, allSystems);
    DataLoggerBench bench;
    const QSignalSpy other(&bench.dialog,
                           qOverload<QString>(&DataLoggerDialog::dataRecordingStarted));
    QVERIFY(bench.open());
    if (allSystems)
        QVERIFY(bench.click("checkBox"));
    QVERIFY(bench.type("lineEdit_FileName", "run"));
    QVERIFY(bench.click("pushButton_Start"));
    QCOMPARE(bench.started.count(), 1);
    QCOMPARE(bench.started.first(), QVariantList({bench.path("run.csv"), allSystems}));
    QCOMPARE(other.count(), 0);
    QCOMPARE(bench.stopped.count(), 0);
}

void TestDataLoggerRecording::startLocksWhatBelongsToTheRecording()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.startRecording());
    QVERIFY(bench.stopButton().isEnabled());
    QVERIFY(!bench.startButton().isEnabled());
    QVERIFY(!bench.saveAsButton().isEnabled());
    QVERIFY(bench.fileName().isReadOnly());
    QVERIFY(bench.rate().isReadOnly());
    QVERIFY(bench.recordTime().isReadOnly());
    QVERIFY(bench.progress().isEnabled());
    QVERIFY(bench.find<QPushButton>("pushButton_Close").isEnabled());
}

void TestDataLoggerRecording::stopUnlocksIt()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.startRecording());
    const QPointer<LargeTimer> clock = bench.clock();
    QVERIFY(bench.click("pushButton_Stop"));
    QCOMPARE(bench.stopped.count(), 1);
    QVERIFY(!bench.dialog.isRecording());
    QVERIFY(!bench.stopButton().isEnabled());
    QVERIFY(bench.startButton().isEnabled());
    QVERIFY(bench.saveAsButton().isEnabled());
    QVERIFY(!bench.fileName().isReadOnly());
    QVERIFY(!bench.rate().isReadOnly());
    QVERIFY(!bench.recordTime().isReadOnly());
    QVERIFY(!bench.progress().isEnabled());
    QCOMPARE(bench.remaining(), QString());
    QCOMPARE(bench.fileName().text(), bench.path("run.csv"));
    QTRY_VERIFY(!clock);
}

void TestDataLoggerRecording::windowHearsOfTheStartWhenTheDialogIsReady()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    bool wasReady = false;
    // As the window does whose first data come at once.
    connect(&bench.dialog, qOverload<QString, bool>(&DataLoggerDialog::dataRecordingStarted), this,
            [&] {
                wasReady = bench.dialog.isRecording() && bench.stopButton().isEnabled();
                bench.dialog.startTimerSaving();
            });
    QVERIFY(bench.type("lineEdit_FileName", "run"));
    QVERIFY(bench.click("pushButton_Start"));
    QVERIFY(wasReady);
    QVERIFY(bench.clock()->isRunning());
}

void TestDataLoggerRecording::windowHearsOfTheStopWhenTheDialogIsIdle()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.startRecording());
    bool wasIdle = false;
    connect(&bench.dialog, &DataLoggerDialog::dataRecordingStopped, this,
            [&] { wasIdle = !bench.dialog.isRecording() && bench.startButton().isEnabled(); });
    QVERIFY(bench.click("pushButton_Stop"));
    QVERIFY(wasIdle);
}

void TestDataLoggerRecording::clockWaitsForTheFirstData()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.type("lineEdit_FileName", "run"));
    QVERIFY(bench.click("pushButton_Start"));
    QVERIFY(bench.dialog.isRecording());
    QVERIFY(!bench.clock()->isRunning());
    QCOMPARE(bench.clock()->totalInterval(), quint64(0));
    QCOMPARE(bench.progress().value(), 0);
    QCOMPARE(bench.remaining(), QString("000:01:00"));
    bench.dialog.startTimerSaving();
    QVERIFY(bench.clock()->isRunning());
    QCOMPARE(bench.clock()->totalInterval(), quint64(60000));
}

void TestDataLoggerRecording::clockWithoutARecordingDoesNotStart()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    bench.dialog.startTimerSaving();
    QVERIFY(!bench.clock());
    QVERIFY(!bench.dialog.isRecording());
}

void TestDataLoggerRecording::clockEndsTheRecording()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.type("lineEdit_RecordTime", "000:00:01"));
    QVERIFY(bench.type("lineEdit_FileName", "run"));
    QVERIFY(bench.click("pushButton_Start"));
    QElapsedTimer sinceData;
    sinceData.start();
    bench.dialog.startTimerSaving();
    const QPointer<LargeTimer> clock = bench.clock();
    // It ends by the clock's own signal, which a clock that was deleted inside it would not
    // survive.
    QTRY_COMPARE(bench.stopped.count(), 1);
    constexpr int precisionMs = 5;
    QVERIFY(sinceData.elapsed() >= 1000 - precisionMs);
    QVERIFY(!bench.dialog.isRecording());
    QVERIFY(bench.startButton().isEnabled());
    QVERIFY(!bench.stopButton().isEnabled());
    QCOMPARE(bench.progress().value(), 100);
    QTRY_VERIFY(!clock);
    QCOMPARE(bench.stopped.count(), 1);
}

void TestDataLoggerRecording::clockOutlivesItsOwnSignal()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.type("lineEdit_RecordTime", "000:00:00"));
    QVERIFY(bench.startRecording());
    const QPointer<LargeTimer> clock = bench.clock();
    bool isThere = false;
    // Called behind the dialog, which has let the clock go.
    connect(clock, &LargeTimer::timeout, this, [&] { isThere = !clock.isNull(); });
    QTRY_COMPARE(bench.stopped.count(), 1);
    QVERIFY(isThere);
    QTRY_VERIFY(!clock);
}

void TestDataLoggerRecording::recordingOfNoSecondsStartsAndEndsAtOnce()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.type("lineEdit_RecordTime", "000:00:00"));
    QVERIFY(bench.startRecording());
    QCOMPARE(bench.started.count(), 1);
    QTRY_COMPARE(bench.stopped.count(), 1);
    // An interval of 0 has no share that is over.
    QCOMPARE(bench.progress().value(), 0);
}

void TestDataLoggerRecording::longTimeIsCutTo32Bits_data()
{
    QTest::addColumn<QString>("time");
    QTest::addColumn<quint64>("intervalMs");
    QTest::addColumn<QString>("remaining");
    QTest::newRow("the longest that ends") << "596:31:23" << quint64(2147483000) << "596:31:23";
    QTest::newRow("a second more")
        << "596:31:24" << quint64(qint64(-2147483296)) << "does not stop by itself";
    QTest::newRow("all that can be typed")
        << "999:99:99" << quint64(qint64(-692528296)) << "does not stop by itself";
}

void TestDataLoggerRecording::longTimeIsCutTo32Bits()
{
    QFETCH(QString, time);
    DataLoggerBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.type("lineEdit_RecordTime", time));
    QVERIFY(bench.startRecording());
    QTEST(bench.clock()->totalInterval(), "intervalMs");
    QTEST(bench.remaining(), "remaining");
    QCOMPARE(bench.progress().value(), 0);
}

void TestDataLoggerRecording::fieldsCanNotBeChangedWhileRecording()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.startRecording());
    for (const QString name : {"lineEdit_FileName", "spinBox_SaveRate", "lineEdit_RecordTime"})
        QVERIFY(bench.type(name, "7"));
    QVERIFY(bench.click("spinBox_SaveRate"));
    bench.press(Qt::Key_Down);
    QCOMPARE(bench.fileName().text(), bench.path("run.csv"));
    QCOMPARE(bench.rate().text(), QString("100"));
    QCOMPARE(bench.recordTime().text(), QString("000:01:00"));
    QCOMPARE(bench.dialog.saveRate(), 100);
}

void TestDataLoggerRecording::progressMovesAndTheRemainingTimeFalls()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.type("lineEdit_RecordTime", "000:00:10"));
    QVERIFY(bench.startRecording());
    QCOMPARE(bench.remaining(), QString("000:00:10"));
    // One look each second, which may be late.
    QTRY_VERIFY(bench.progress().value() > 0);
    const int afterOneLook = bench.progress().value();
    QVERIFY2(afterOneLook >= 9 && afterOneLook <= 25, qPrintable(QString::number(afterOneLook)));
    // A second is a tenth of the time. Both are rounded.
    const int remainingPercent = 10 * durationtext::toSeconds(bench.remaining());
    QVERIFY(qAbs(afterOneLook + remainingPercent - 100) <= 6);
    QTRY_VERIFY(bench.progress().value() > afterOneLook);
    QVERIFY(durationtext::toSeconds(bench.remaining()) <= 8);
}

void TestDataLoggerRecording::progressStaysWhereTheRecordingWasStopped()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.type("lineEdit_RecordTime", "000:00:05"));
    QVERIFY(bench.startRecording());
    QTRY_VERIFY(bench.clock()->remainingTime() <= 4700);
    QVERIFY(bench.click("pushButton_Stop"));
    // Earlier than the first second: the stop itself looks at the clock.
    QVERIFY(bench.progress().value() >= 6);
    QVERIFY(bench.progress().value() < 50);
}

void TestDataLoggerRecording::nextRecordingBeginsAtZero()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.type("lineEdit_RecordTime", "000:00:01"));
    QVERIFY(bench.startRecording());
    QTRY_COMPARE(bench.stopped.count(), 1);
    QCOMPARE(bench.progress().value(), 100);
    QVERIFY(bench.type("lineEdit_FileName", "next"));
    QVERIFY(bench.click("pushButton_Start"));
    QCOMPARE(bench.progress().value(), 0);
    QVERIFY(!bench.clock()->isRunning());
}

void TestDataLoggerRecording::progressWithoutARecordingStays()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    bench.progress().setValue(42);
    bench.dialog.updateProgressBar();
    QCOMPARE(bench.progress().value(), 42);
    QCOMPARE(bench.remaining(), QString());
}

void TestDataLoggerRecording::stopWithoutARecordingIsToldAllTheSame()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    bench.dialog.emitStopSignal();
    QCOMPARE(bench.stopped.count(), 1);
    QVERIFY(bench.startButton().isEnabled());
    QVERIFY(!bench.stopButton().isEnabled());
}

void TestDataLoggerRecording::startDuringARecordingIsToldAgain()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.startRecording());
    const LargeTimer* clock = bench.clock();
    bench.dialog.emitStartSignal();
    // What that means is the window's business. There is one clock, and it runs on.
    QCOMPARE(bench.started.count(), 2);
    QCOMPARE(bench.dialog.findChildren<LargeTimer*>().size(), 1);
    QCOMPARE(bench.clock(), clock);
    QVERIFY(clock->isRunning());
    bench.dialog.emitStopSignal();
    QCOMPARE(bench.stopped.count(), 1);
    QVERIFY(!bench.dialog.isRecording());
}

void TestDataLoggerRecording::startIsDisabledWithoutAnythingToRecord()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.startButton().isEnabled());
    bench.dialog.setRecordingEnabled(false);
    QVERIFY(!bench.startButton().isEnabled());
    QVERIFY(!bench.dialog.isRecordingEnabled());
    // No recording was ended, as none ran.
    QCOMPARE(bench.stopped.count(), 0);
    bench.dialog.setRecordingEnabled(true);
    QVERIFY(bench.startButton().isEnabled());
}

void TestDataLoggerRecording::nothingToRecordEndsARunningClock()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.startRecording());
    bool wasDisabled = false;
    connect(&bench.dialog, &DataLoggerDialog::dataRecordingStopped, this,
            [&] { wasDisabled = !bench.startButton().isEnabled(); });
    bench.dialog.setRecordingEnabled(false);
    QCOMPARE(bench.stopped.count(), 1);
    QVERIFY(wasDisabled);
    QVERIFY(!bench.dialog.isRecording());
    QVERIFY(!bench.startButton().isEnabled());
    QVERIFY(!bench.stopButton().isEnabled());
}

void TestDataLoggerRecording::nothingToRecordLeavesAClockThatWaits()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.type("lineEdit_FileName", "run"));
    QVERIFY(bench.click("pushButton_Start"));
    bench.dialog.setRecordingEnabled(false);
    QCOMPARE(bench.stopped.count(), 0);
    QVERIFY(bench.dialog.isRecording());
    QVERIFY(!bench.startButton().isEnabled());
    QVERIFY(bench.click("pushButton_Stop"));
    QVERIFY(!bench.startButton().isEnabled());
}

void TestDataLoggerRecording::withNothingToRecordStartStaysDisabled_data()
{
    QTest::addColumn<bool>("byTheUser");
    QTest::newRow("stopped by the window") << false;
    QTest::newRow("stopped by the user") << true;
}

void TestDataLoggerRecording::withNothingToRecordStartStaysDisabled()
{
    QFETCH(bool, byTheUser);
    DataLoggerBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.type("lineEdit_FileName", "run"));
    QVERIFY(bench.click("pushButton_Start"));
    bench.dialog.setRecordingEnabled(false);
    if (byTheUser)
        QVERIFY(bench.click("pushButton_Stop"));
    else
        bench.dialog.emitStopSignal();
    QVERIFY(!bench.startButton().isEnabled());
    bench.dialog.emitStopSignal();
    QVERIFY(!bench.startButton().isEnabled());
}

void TestDataLoggerRecording::anotherSystemDoesNotEnableStartWhileRecording()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.startRecording());
    bench.dialog.setRecordingEnabled(true);
    QVERIFY(!bench.startButton().isEnabled());
    QVERIFY(bench.click("pushButton_Stop"));
    QVERIFY(bench.startButton().isEnabled());
}

void TestDataLoggerRecording::closingLeavesTheRecording_data()
{
    QTest::addColumn<bool>("byKey");
    QTest::newRow("by the button") << false;
    QTest::newRow("by Escape") << true;
}

void TestDataLoggerRecording::closingLeavesTheRecording()
{
    QFETCH(bool, byKey);
    DataLoggerBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.type("lineEdit_RecordTime", "000:00:01"));
    QVERIFY(bench.startRecording());
    if (byKey)
        bench.press(Qt::Key_Escape);
    else
        QVERIFY(bench.click("pushButton_Close"));
    QVERIFY(!bench.dialog.isVisible());
    QCOMPARE(bench.stopped.count(), 0);
    QVERIFY(bench.clock()->isRunning());
    // The clock ends it while nobody looks.
    QTRY_COMPARE(bench.stopped.count(), 1);
    QVERIFY(!bench.dialog.isVisible());
}

void TestDataLoggerRecording::reopeningShowsTheState()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.type("spinBox_SaveRate", "50"));
    QVERIFY(bench.click("checkBox"));
    QVERIFY(bench.startRecording());
    bench.dialog.close();
    QVERIFY(bench.show());
    QVERIFY(bench.dialog.isRecording());
    QCOMPARE(bench.fileName().text(), bench.path("run.csv"));
    QCOMPARE(bench.rate().text(), QString("50"));
    QVERIFY(bench.find<QCheckBox>("checkBox").isChecked());
    QVERIFY(bench.stopButton().isEnabled());
    QVERIFY(bench.fileName().isReadOnly());
    QVERIFY(bench.progress().isEnabled());
    QVERIFY(bench.click("pushButton_Stop"));
    bench.dialog.close();
    QVERIFY(bench.show());
    QCOMPARE(bench.fileName().text(), bench.path("run.csv"));
    QVERIFY(bench.startButton().isEnabled());
    QVERIFY(!bench.stopButton().isEnabled());
}

void TestDataLoggerRecording::dialogCanBeDestroyedWhileRecording()
{
    QPointer<LargeTimer> clock;
    {
        DataLoggerBench bench;
        QVERIFY(bench.open());
        QVERIFY(bench.startRecording());
        clock = bench.clock();
    }
    QVERIFY(!clock);
}

void TestDataLoggerRecording::listenerOfTheEndMayStartAnew()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.type("lineEdit_RecordTime", "000:00:00"));
    connect(&bench.dialog, &DataLoggerDialog::dataRecordingStopped, this, [&] {
        if (bench.started.count() == 1)
            bench.dialog.emitStartSignal();
    });
    QVERIFY(bench.startRecording());
    QTRY_COMPARE(bench.started.count(), 2);
    QVERIFY(bench.dialog.isRecording());
    // The first clock goes; the second one waits for data.
    QTRY_COMPARE(bench.dialog.findChildren<LargeTimer*>().size(), 1);
    QVERIFY(!bench.clock()->isRunning());
    QCOMPARE(bench.stopped.count(), 1);
}

void TestDataLoggerRecording::keyboardStartsAndStops()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.type("lineEdit_FileName", "run"));
    while (!bench.startButton().hasFocus())
        bench.press(Qt::Key_Tab);
    bench.press(Qt::Key_Space);
    QCOMPARE(bench.started.count(), 1);
    QVERIFY(bench.stopButton().hasFocus());
    bench.press(Qt::Key_Space);
    QCOMPARE(bench.stopped.count(), 1);
    QVERIFY(bench.startButton().hasFocus());
}

QTEST_MAIN(TestDataLoggerRecording)
#include "tst_dataloggerrecording.moc"
