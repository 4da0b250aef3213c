// How a recording gets its file: chosen, typed, completed, and asked about if it exists.

#include "dataloggerbench.h"

#include <QDateTime>

namespace {

const QString askedFor = QStringLiteral("File\n%1\n already exists!\n\nOverwrite the file?");

} // namespace

class TestDataLoggerFile final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void chooserIsOpenedAsPlanned();
    void chosenFileIsTaken();
    void chosenFileIsAskedAboutAtTheStartOnly();
    void rejectedChoiceEmptiesTheName();
    void missingNameIsToldAndStartsNothing();
    void typedNameIsCompleted_data();
    void typedNameIsCompleted();
    void overwritingIsAskedAndRefused_data();
    void overwritingIsAskedAndRefused();
    void refusalIsTheDefault();
    void escapeRefuses();
    void overwritingIsAllowed();
    void completedNameIsTheOneAskedAbout();
    void nameWithPercentIsAskedToTheLetter();
    void lastSystemThatGoesBehindTheQuestionEndsIt();
};

void TestDataLoggerFile::cleanup()
{
    QCOMPARE(leftWidgets(), QString());
}

void TestDataLoggerFile::chooserIsOpenedAsPlanned()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    const QDateTime before = QDateTime::currentDateTime();
    bool isSeen = false;
    bench.whenThereIs<QFileDialog>([&](QFileDialog& chooser) {
        isSeen = true;
        QCOMPARE(chooser.parentWidget(), &bench.dialog);
        QCOMPARE(chooser.windowTitle(), QString("Save data to file"));
        QCOMPARE(chooser.directory().path(), bench.directory.path() + "/Data");
        QCOMPARE(chooser.nameFilters(), QStringList({"*.csv", "*.txt", "*.xls", "*.*"}));
        QCOMPARE(chooser.fileMode(), QFileDialog::AnyFile);
        QCOMPARE(chooser.acceptMode(), QFileDialog::AcceptSave);
        QCOMPARE(chooser.labelText(QFileDialog::Accept), QString("Select"));
        const QString proposed = chooser.findChild<QLineEdit*>("fileNameEdit")->text();
        const QDateTime time =
            QDateTime::fromString(proposed, "'Lumetra_'yyyy-MM-ddTHH-mm-ss'.csv'");
        QVERIFY2(time.isValid(), qPrintable(proposed));
        // The name has no milliseconds.
        QVERIFY(before.addSecs(-1) < time && time <= QDateTime::currentDateTime());
        QTest::keyClick(&chooser, Qt::Key_Escape);
    });
    QVERIFY(bench.click("pushButton_SaveAs"));
    QVERIFY(isSeen);
}

void TestDataLoggerFile::chosenFileIsTaken()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    bench.whenThereIs<QFileDialog>([&](QFileDialog& chooser) {
        auto* edit = chooser.findChild<QLineEdit*>("fileNameEdit");
        edit->selectAll();
        QTest::keyClicks(edit, "chosen");
        QTest::keyClick(edit, Qt::Key_Return);
    });
    QVERIFY(bench.click("pushButton_SaveAs"));
    QCOMPARE(bench.fileName().text(), bench.path("chosen"));
    QVERIFY(bench.click("pushButton_Start"));
    QCOMPARE(bench.fileName().text(), bench.path("chosen.csv"));
}

void TestDataLoggerFile::chosenFileIsAskedAboutAtTheStartOnly()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    bench.put(bench.path("old.csv"));
    const BoxAnswers answers(QMessageBox::Ok);
    bench.whenThereIs<QFileDialog>([&](QFileDialog& chooser) {
        auto* edit = chooser.findChild<QLineEdit*>("fileNameEdit");
        edit->setText("old.csv");
        QTest::keyClick(edit, Qt::Key_Return);
    });
    QVERIFY(bench.click("pushButton_SaveAs"));
    QCOMPARE(bench.fileName().text(), bench.path("old.csv"));
    QCOMPARE(answers.count(), 0);
    QVERIFY(bench.click("pushButton_Start"));
    QCOMPARE(answers.texts(), QStringList(askedFor.arg(bench.path("old.csv"))));
    QCOMPARE(bench.started.count(), 1);
}

void TestDataLoggerFile::rejectedChoiceEmptiesTheName()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.type("lineEdit_FileName", "run"));
    bench.whenThereIs<QFileDialog>(
        [](QFileDialog& chooser) { QTest::keyClick(&chooser, Qt::Key_Escape); });
    QVERIFY(bench.click("pushButton_SaveAs"));
    QCOMPARE(bench.fileName().text(), QString());
}

void TestDataLoggerFile::missingNameIsToldAndStartsNothing()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    int boxes = 0;
    bench.whenThereIs<QMessageBox>([&](QMessageBox& box) {
        ++boxes;
        QCOMPARE(box.parentWidget(), &bench.dialog);
        QCOMPARE(box.windowTitle(), QString("Error"));
        QCOMPARE(box.text(),
                 QString("File name missing.\n\nPlease enter a name and try it again."));
        QCOMPARE(box.icon(), QMessageBox::Critical);
        QCOMPARE(box.standardButtons(), QMessageBox::Ok);
        QVERIFY(user::click(box.button(QMessageBox::Ok)));
    });
    QVERIFY(bench.click("pushButton_Start"));
    QCOMPARE(boxes, 1);
    QCOMPARE(bench.started.count(), 0);
    QVERIFY(!bench.dialog.isRecording());
    QVERIFY(bench.startButton().isEnabled());
    QCOMPARE(bench.fileName().text(), QString());
}

void TestDataLoggerFile::typedNameIsCompleted_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("completed");
    QTest::newRow("name alone") << "test"
                                << "%1/Data/test.csv";
    QTest::newRow("capital letters") << "a.CSV"
                                     << "%1/Data/a.CSV.csv";
    QTest::newRow("another kind") << "a.xls"
                                  << "%1/Data/a.xls";
    QTest::newRow("with a folder") << "%1/b.txt"
                                   << "%1/b.txt";
}

void TestDataLoggerFile::typedNameIsCompleted()
{
    QFETCH(QString, typed);
    QFETCH(QString, completed);
    DataLoggerBench bench;
    const QString config = bench.directory.path();
    QVERIFY(bench.open());
    QVERIFY(bench.type("lineEdit_FileName", typed.replace("%1", config)));
    QVERIFY(bench.click("pushButton_Start"));
    QCOMPARE(bench.fileName().text(), completed.replace("%1", config));
    QCOMPARE(bench.started.count(), 1);
    QCOMPARE(bench.started.first(), QVariantList({completed, false}));
}

void TestDataLoggerFile::overwritingIsAskedAndRefused_data()
{
    QTest::addColumn<bool>("allSystems");
    QTest::newRow("one system") << false;
    QTest::newRow("all systems") << true;
}

void TestDataLoggerFile::overwritingIsAskedAndRefused()
{
    QFETCH(bool, allSystems);
    DataLoggerBench bench;
    QVERIFY(bench.open());
    bench.put(bench.path("run.csv"));
    if (allSystems)
        QVERIFY(bench.click("checkBox"));
    QVERIFY(bench.type("lineEdit_FileName", "run"));
    const BoxAnswers answers(QMessageBox::Cancel);
    QVERIFY(bench.click("pushButton_Start"));
    QCOMPARE(answers.titles(), QStringList("File exists!"));
    QCOMPARE(answers.texts(), QStringList(askedFor.arg(bench.path("run.csv"))));

    QCOMPARE(bench.fileName().text(), QString("run"));
    QCOMPARE(bench.started.count(), 0);
    QVERIFY(!bench.dialog.isRecording());
    QVERIFY(bench.startButton().isEnabled());
    QVERIFY(!bench.stopButton().isEnabled());
    QVERIFY(bench.saveAsButton().isEnabled());
    QVERIFY(!bench.fileName().isReadOnly());
    QVERIFY(!bench.progress().isEnabled());
}

void TestDataLoggerFile::refusalIsTheDefault()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    bench.put(bench.path("run.csv"));
    QVERIFY(bench.type("lineEdit_FileName", "run"));
    bool isSeen = false;
    bench.whenThereIs<QMessageBox>([&](QMessageBox& box) {
        isSeen = true;
        QCOMPARE(box.icon(), QMessageBox::Question);
        QCOMPARE(box.standardButtons(), QMessageBox::Ok | QMessageBox::Cancel);
        QCOMPARE(box.defaultButton(), box.button(QMessageBox::Cancel));
        QTest::keyClick(box.windowHandle(), Qt::Key_Return);
    });
    QVERIFY(bench.click("pushButton_Start"));
    QVERIFY(isSeen);
    QCOMPARE(bench.started.count(), 0);
}

void TestDataLoggerFile::escapeRefuses()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    bench.put(bench.path("run.csv"));
    QVERIFY(bench.type("lineEdit_FileName", "run"));
    bench.whenThereIs<QMessageBox>(
        [](QMessageBox& box) { QTest::keyClick(box.windowHandle(), Qt::Key_Escape); });
    QVERIFY(bench.click("pushButton_Start"));
    QCOMPARE(bench.started.count(), 0);
    QCOMPARE(bench.fileName().text(), QString("run"));
}

void TestDataLoggerFile::overwritingIsAllowed()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    bench.put(bench.path("run.csv"));
    QVERIFY(bench.type("lineEdit_FileName", "run"));
    const BoxAnswers answers(QMessageBox::Ok);
    QVERIFY(bench.click("pushButton_Start"));
    QCOMPARE(answers.count(), 1);
    QCOMPARE(bench.started.count(), 1);
    QCOMPARE(bench.fileName().text(), bench.path("run.csv"));
    // Who records overwrites the file; the dialog leaves it alone.
    QVERIFY(QFile::exists(bench.path("run.csv")));
}

void TestDataLoggerFile::completedNameIsTheOneAskedAbout()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    // Not the file of the recording, which is run.csv.
    bench.put(bench.path("run"));
    QVERIFY(bench.type("lineEdit_FileName", "run"));
    const BoxAnswers answers(QMessageBox::Cancel);
    QVERIFY(bench.click("pushButton_Start"));
    QCOMPARE(answers.count(), 0);
    QCOMPARE(bench.started.count(), 1);
}

void TestDataLoggerFile::nameWithPercentIsAskedToTheLetter()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    bench.put(bench.path("50%1<b>.csv"));
    QVERIFY(bench.type("lineEdit_FileName", "50%1<b>"));
    const BoxAnswers answers(QMessageBox::Cancel);
    QVERIFY(bench.click("pushButton_Start"));
    QCOMPARE(answers.texts(), QStringList("File\n" + bench.path("50%1<b>.csv")
                                          + "\n already exists!\n\nOverwrite the file?"));
}

void TestDataLoggerFile::lastSystemThatGoesBehindTheQuestionEndsIt()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    bench.put(bench.path("run.csv"));
    QVERIFY(bench.type("lineEdit_FileName", "run"));
    bench.whenThereIs<QMessageBox>([&bench](QMessageBox& box) {
        bench.dialog.setRecordingEnabled(false);
        QVERIFY(user::click(box.button(QMessageBox::Ok)));
    });
    QVERIFY(bench.click("pushButton_Start"));
    QCOMPARE(bench.started.count(), 0);
    QVERIFY(!bench.dialog.isRecording());
    QVERIFY(!bench.startButton().isEnabled());
    QCOMPARE(bench.fileName().text(), QString("run"));
}

QTEST_MAIN(TestDataLoggerFile)
#include "tst_dataloggerfile.moc"
