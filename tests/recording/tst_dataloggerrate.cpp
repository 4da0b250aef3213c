// The save rate, the recording time and what a recording will cost.

#include "dataloggerbench.h"

class TestDataLoggerRate final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void estimateFollowsWhatIsTyped_data();
    void estimateFollowsWhatIsTyped();
    void estimateFollowsTheRate();
    void warningGoesWithTheSize();
    void firstRateIsHeldToTheOldMaximum();
    void lowerRateLowersBoth();
    void chosenRateIsHeldToTheSamplingRate();
    void fastRateCanNotBeChosen_data();
    void fastRateCanNotBeChosen();
    void fastRateIsTheOneThatIsRecorded();
    void clearedRateStaysClearedWhenHiddenAndShown();
    void clearedRateStaysClearedWhenMinimised();
    void rateThatCanBeChosenAgainIsShown_data();
    void rateThatCanBeChosenAgainIsShown();
    void rateOfZeroIsTaken();
    void rateFollowsTheSamplingRateDuringARecording();
};

void TestDataLoggerRate::cleanup()
{
    QCOMPARE(leftWidgets(), QString());
}

void TestDataLoggerRate::estimateFollowsWhatIsTyped_data()
{
    QTest::addColumn<QString>("rate");
    QTest::addColumn<QString>("time");
    QTest::addColumn<QString>("blocks");
    QTest::addColumn<QString>("megabytes");
    QTest::addColumn<bool>("isLarge");
    QTest::newRow("a minute at 100 Hz") << "100"
                                        << "000:01:00"
                                        << "6000"
                                        << "0.4" << false;
    QTest::newRow("minutes and seconds up to 99") << "10"
                                                  << "000:99:99"
                                                  << "60390"
                                                  << "3.7" << false;
    QTest::newRow("0 Hz") << "0"
                          << "000:01:00"
                          << "0"
                          << "0.0" << false;
    QTest::newRow("0 seconds") << "100"
                               << "000:00:00"
                               << "0"
                               << "0.0" << false;
    QTest::newRow("digits are missing") << "100"
                                        << "1"
                                        << "360000"
                                        << "22.3" << false;
    QTest::newRow("just below 2 GB") << "179"
                                     << "051:16:11"
                                     << "33038209"
                                     << "2048.0" << false;
    QTest::newRow("just above 2 GB") << "205"
                                     << "044:46:02"
                                     << "33038210"
                                     << "2048.0" << true;
}

void TestDataLoggerRate::estimateFollowsWhatIsTyped()
{
    QFETCH(QString, rate);
    QFETCH(QString, time);
    QFETCH(bool, isLarge);
    DataLoggerBench bench;
    QVERIFY(bench.open(500));
    QVERIFY(bench.type("spinBox_SaveRate", rate));
    QVERIFY(bench.type("lineEdit_RecordTime", time));
    QTEST(bench.text("lineEdit_DataBlocks"), "blocks");
    QTEST(bench.text("lineEdit_FileSize"), "megabytes");
    QCOMPARE(bench.find<QLabel>("lblWarningLargeFile").isVisible(), isLarge);
    QCOMPARE(bench.dialog.saveRate(), rate.toInt());
}

void TestDataLoggerRate::estimateFollowsTheRate()
{
    DataLoggerBench bench;
    QVERIFY(bench.open(200));
    QCOMPARE(bench.text("lineEdit_DataBlocks"), QString("12000"));
    QVERIFY(bench.click("spinBox_SaveRate"));
    bench.press(Qt::Key_Down);
    QCOMPARE(bench.dialog.saveRate(), 199);
    QCOMPARE(bench.text("lineEdit_DataBlocks"), QString("11940"));
    bench.dialog.setSaveRate(50);
    QCOMPARE(bench.text("lineEdit_DataBlocks"), QString("3000"));
    QCOMPARE(bench.text("lineEdit_FileSize"), QString("0.2"));
}

void TestDataLoggerRate::warningGoesWithTheSize()
{
    DataLoggerBench bench;
    QVERIFY(bench.open(500));
    const auto& warning = bench.find<QLabel>("lblWarningLargeFile");
    QVERIFY(!warning.isVisible());
    QVERIFY(bench.type("lineEdit_RecordTime", "100:00:00"));
    QVERIFY(warning.isVisible());
    // It blocks nothing.
    QVERIFY(bench.startRecording());
    QVERIFY(bench.click("pushButton_Stop"));
    QVERIFY(bench.type("lineEdit_RecordTime", "000:01:00"));
    QVERIFY(!warning.isVisible());
}

void TestDataLoggerRate::firstRateIsHeldToTheOldMaximum()
{
    DataLoggerBench bench;
    bench.dialog.setSaveRate(100);
    QCOMPARE(bench.rate().maximum(), 100);
    bench.dialog.setSaveRate(300);
    QCOMPARE(bench.rate().value(), 100);
    QCOMPARE(bench.rate().maximum(), 300);
    // What is shown is what is recorded.
    QCOMPARE(bench.dialog.saveRate(), 100);
    QCOMPARE(bench.text("lineEdit_DataBlocks"), QString("6000"));
    bench.dialog.setSaveRate(300);
    QCOMPARE(bench.dialog.saveRate(), 300);
}

void TestDataLoggerRate::lowerRateLowersBoth()
{
    DataLoggerBench bench;
    bench.dialog.setSaveRate(300);
    bench.dialog.setSaveRate(20);
    QCOMPARE(bench.rate().value(), 20);
    QCOMPARE(bench.rate().maximum(), 20);
    QCOMPARE(bench.dialog.saveRate(), 20);
}

void TestDataLoggerRate::chosenRateIsHeldToTheSamplingRate()
{
    DataLoggerBench bench;
    QVERIFY(bench.open(100));
    QVERIFY(bench.type("spinBox_SaveRate", "50"));
    QCOMPARE(bench.dialog.saveRate(), 50);
    // No third digit fits: 500 is above 100.
    QVERIFY(bench.type("spinBox_SaveRate", "500"));
    QCOMPARE(bench.dialog.saveRate(), 50);
}

void TestDataLoggerRate::fastRateCanNotBeChosen_data()
{
    QTest::addColumn<int>("rateHz");
    QTest::addColumn<bool>("canBeChosen");
    QTest::addColumn<QString>("shown");
    QTest::newRow("500") << 500 << true << "500";
    QTest::newRow("501") << 501 << false << "";
    QTest::newRow("1000") << 1000 << false << "";
}

void TestDataLoggerRate::fastRateCanNotBeChosen()
{
    QFETCH(int, rateHz);
    QFETCH(bool, canBeChosen);
    DataLoggerBench bench;
    QVERIFY(bench.open(rateHz));
    QCOMPARE(bench.rate().isEnabled(), canBeChosen);
    QTEST(bench.rate().text(), "shown");
    QCOMPARE(bench.rate().value(), rateHz);
    QCOMPARE(bench.dialog.saveRate(), rateHz);
}

void TestDataLoggerRate::fastRateIsTheOneThatIsRecorded()
{
    DataLoggerBench bench;
    bench.dialog.setSaveRate(100);
    QVERIFY(bench.open(800));
    // The old maximum holds the value of the field, which is not shown.
    QCOMPARE(bench.rate().value(), 100);
    QCOMPARE(bench.rate().text(), QString());
    QCOMPARE(bench.dialog.saveRate(), 800);
    QCOMPARE(bench.text("lineEdit_DataBlocks"), QString("48000"));
    QVERIFY(bench.type("lineEdit_RecordTime", "000:00:10"));
    QCOMPARE(bench.dialog.saveRate(), 800);
    QCOMPARE(bench.text("lineEdit_DataBlocks"), QString("8000"));
}

void TestDataLoggerRate::clearedRateStaysClearedWhenHiddenAndShown()
{
    DataLoggerBench bench;
    QVERIFY(bench.open(800));
    QVERIFY(bench.startRecording());
    bench.dialog.close();
    // The window sets no rate while a recording runs.
    QVERIFY(bench.show());
    QCOMPARE(bench.rate().text(), QString());
    QCOMPARE(bench.dialog.saveRate(), 800);
}

void TestDataLoggerRate::clearedRateStaysClearedWhenMinimised()
{
    DataLoggerBench bench;
    QVERIFY(bench.open(800));
    bench.recordTime().setFocus();
    bench.dialog.showMinimized();
    QTRY_VERIFY(bench.dialog.isMinimized());
    QCoreApplication::processEvents();
    bench.dialog.showNormal();
    QTRY_VERIFY(!bench.dialog.isMinimized());
    QCoreApplication::processEvents();
    QCOMPARE(bench.rate().text(), QString());
    QCOMPARE(bench.dialog.focusWidget(), &bench.recordTime());
}

void TestDataLoggerRate::rateThatCanBeChosenAgainIsShown_data()
{
    QTest::addColumn<int>("rateHz");
    QTest::newRow("lower than what the field kept") << 300;
    QTest::newRow("what the field kept") << 500;
}

void TestDataLoggerRate::rateThatCanBeChosenAgainIsShown()
{
    QFETCH(int, rateHz);
    DataLoggerBench bench;
    bench.dialog.setSaveRate(500);
    QVERIFY(bench.open(800));
    bench.dialog.setSaveRate(rateHz);
    QVERIFY(bench.rate().isEnabled());
    QCOMPARE(bench.rate().text(), QString::number(rateHz));
    QCOMPARE(bench.dialog.saveRate(), rateHz);
    QCOMPARE(bench.text("lineEdit_DataBlocks"), QString::number(60 * rateHz));
}

void TestDataLoggerRate::rateOfZeroIsTaken()
{
    DataLoggerBench bench;
    QVERIFY(bench.open(0));
    QCOMPARE(bench.dialog.saveRate(), 0);
    QCOMPARE(bench.text("lineEdit_DataBlocks"), QString("0"));
    QCOMPARE(bench.text("lineEdit_FileSize"), QString("0.0"));
    QVERIFY(bench.startRecording());
    QCOMPARE(bench.started.count(), 1);
}

void TestDataLoggerRate::rateFollowsTheSamplingRateDuringARecording()
{
    DataLoggerBench bench;
    QVERIFY(bench.open(400));
    QVERIFY(bench.startRecording());
    bench.dialog.setSaveRate(150);
    QCOMPARE(bench.dialog.saveRate(), 150);
    QCOMPARE(bench.rate().text(), QString("150"));
    QVERIFY(bench.rate().isReadOnly());
    QVERIFY(bench.dialog.isRecording());
}

QTEST_MAIN(TestDataLoggerRate)
#include "tst_dataloggerrate.moc"
