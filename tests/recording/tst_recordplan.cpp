#include "recordbench.h"

#include <QtTest>

class TestRecordPlan final : public QObject
{
    Q_OBJECT

private slots:
    void everySystemHasAFileWithItsLabel();
    void oneFileHasTheNameAsGiven();
    void oneFileIsOfTheCurrentSystemWhereverItStands();
    void oneFileIsOfTheFirstIfTheCurrentIsHidden();
    void withoutADisplayedSystemThereIsNoFile();
    void filesThatExistComeInTheOrderOfDisplay();
    void planningTouchesNoFile();
    void dividerOfTheRates_data();
    void dividerOfTheRates();

private:
    RecordBench bench;
};

void TestRecordPlan::everySystemHasAFileWithItsLabel()
{
    RecordableSystems systems = bench.displayed({2, 0, 1});
    systems[1].label = "C";
    const RecordPlan plan = planForAll("/data/run.csv", systems);
    QVERIFY(plan.everySystem);
    QCOMPARE(plan.files.size(), 3);
    QCOMPARE(plan.files.at(0).connection, RecordBench::connection(2));
    QCOMPARE(plan.files.at(0).path, QStringLiteral("/data/run_C.csv"));
    QCOMPARE(plan.files.at(1).connection, RecordBench::connection(0));
    QCOMPARE(plan.files.at(1).path, QStringLiteral("/data/run_C_2.csv"));
    QCOMPARE(plan.files.at(2).connection, RecordBench::connection(1));
    QCOMPARE(plan.files.at(2).path, QStringLiteral("/data/run_B.csv"));
}

void TestRecordPlan::oneFileHasTheNameAsGiven()
{
    const RecordPlan plan =
        planForOne("/a.b/run.csv", bench.displayed({0}), RecordBench::connection(0));
    QVERIFY(!plan.everySystem);
    QCOMPARE(plan.files.size(), 1);
    QCOMPARE(plan.files.first().path, QStringLiteral("/a.b/run.csv"));
}

void TestRecordPlan::oneFileIsOfTheCurrentSystemWhereverItStands()
{
    for (const int current : {0, 1, 2}) {
        const RecordPlan plan =
            planForOne("run.csv", bench.displayed({1, 0, 2}), RecordBench::connection(current));
        QCOMPARE(plan.files.size(), 1);
        QCOMPARE(plan.files.first().connection, RecordBench::connection(current));
    }
}

void TestRecordPlan::oneFileIsOfTheFirstIfTheCurrentIsHidden()
{
    const RecordPlan plan =
        planForOne("run.csv", bench.displayed({1, 2}), RecordBench::connection(0));
    QCOMPARE(plan.files.size(), 1);
    QCOMPARE(plan.files.first().connection, RecordBench::connection(1));
}

void TestRecordPlan::withoutADisplayedSystemThereIsNoFile()
{
    QVERIFY(planForOne("run.csv", {}, RecordBench::connection(0)).files.isEmpty());
    QVERIFY(planForAll("run.csv", {}).files.isEmpty());
}

void TestRecordPlan::filesThatExistComeInTheOrderOfDisplay()
{
    for (const char* name : {"run_A.csv", "run_C.csv", "run.csv"})
        QVERIFY(QFile(bench.path(name)).open(QIODevice::WriteOnly));
    const QString name = bench.path("run.csv");
    const QStringList expected{bench.path("run_C.csv"), bench.path("run_A.csv")};
    QCOMPARE(planForAll(name, bench.displayed({2, 1, 0})).existingFiles(), expected);
}

void TestRecordPlan::planningTouchesNoFile()
{
    QFile old(bench.path("old_A.csv"));
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write("kept");
    old.close();
    const RecordPlan plan = planForAll(bench.path("old.csv"), bench.displayed({0, 1}));
    QCOMPARE(plan.existingFiles(), QStringList(bench.path("old_A.csv")));
    QCOMPARE(bench.bytes("old_A.csv"), QByteArray("kept"));
    QVERIFY(!QFile::exists(bench.path("old_B.csv")));
}

void TestRecordPlan::dividerOfTheRates_data()
{
    QTest::addColumn<int>("samplingHz");
    QTest::addColumn<int>("saveHz");
    QTest::addColumn<int>("divider");
    QTest::newRow("every fifth") << 500 << 100 << 5;
    QTest::newRow("equal") << 430 << 430 << 1;
    QTest::newRow("rounded down") << 430 << 100 << 4;
    QTest::newRow("a little less than half") << 500 << 251 << 1;
    QTest::newRow("half") << 500 << 250 << 2;
    QTest::newRow("above the sampling rate") << 100 << 500 << 1;
    QTest::newRow("pulsed") << 1000 << 1000 << 1;
    QTest::newRow("none") << 500 << 0 << 0;
}

void TestRecordPlan::dividerOfTheRates()
{
    QFETCH(int, samplingHz);
    QFETCH(int, saveHz);
    QFETCH(int, divider);
    const RecordRates rates{samplingHz, saveHz};
    QCOMPARE(rates.divider(), divider);
}

QTEST_GUILESS_MAIN(TestRecordPlan)
#include "tst_recordplan.moc"
