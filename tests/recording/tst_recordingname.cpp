#include "recording/recordingname.h"

#include <QDateTime>
#include <QtTest>

class TestRecordingName final : public QObject
{
    Q_OBJECT

private slots:
    void typedNameIsCompleted_data();
    void typedNameIsCompleted();
    void recordingsLieInTheFolderData();
    void proposalTellsTheTime();
};

void TestRecordingName::typedNameIsCompleted_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("meant");
    QTest::newRow("name alone") << "test"
                                << "/config/Data/test.csv";
    QTest::newRow("csv") << "a.csv"
                         << "/config/Data/a.csv";
    QTest::newRow("txt") << "a.txt"
                         << "/config/Data/a.txt";
    QTest::newRow("xls") << "a.xls"
                         << "/config/Data/a.xls";
    QTest::newRow("capital letters are no known ending") << "a.CSV"
                                                         << "/config/Data/a.CSV.csv";
    QTest::newRow("one capital letter") << "a.Txt"
                                        << "/config/Data/a.Txt.csv";
    QTest::newRow("another ending") << "a.dat"
                                    << "/config/Data/a.dat.csv";
    QTest::newRow("an ending without its dot") << "csv"
                                               << "/config/Data/csv.csv";
    QTest::newRow("the ending alone") << ".csv"
                                      << "/config/Data/.csv";
    QTest::newRow("an ending in the middle") << "a.csv.gz"
                                             << "/config/Data/a.csv.gz.csv";
    QTest::newRow("with a folder") << "/home/me/run"
                                   << "/home/me/run.csv";
    QTest::newRow("with a relative folder") << "runs/a.txt"
                                            << "runs/a.txt";
    QTest::newRow("a dot in the folder") << "/home/v1.2/run"
                                         << "/home/v1.2/run.csv";
}

void TestRecordingName::typedNameIsCompleted()
{
    QFETCH(QString, typed);
    QTEST(recordingname::completed(typed, "/config/Data"), "meant");
}

void TestRecordingName::recordingsLieInTheFolderData()
{
    QCOMPARE(recordingname::folder("/home/me/Lumetra"), QString("/home/me/Lumetra/Data"));
}

void TestRecordingName::proposalTellsTheTime()
{
    const QDateTime now(QDate(2026, 3, 1), QTime(2, 34, 5));
    QCOMPARE(recordingname::proposal(now), QString("Lumetra_2026-03-01T02-34-05.csv"));
}

QTEST_GUILESS_MAIN(TestRecordingName)
#include "tst_recordingname.moc"
