// Refreshing the parameter dialog while the controller refuses, ignores or answers short each of
// its questions in turn: what the form shows, and what is logged.

#include "faultbench.h"

#include <QtTest>

using emulator::Rule;

class TestDialogFaults : public QObject
{
    Q_OBJECT

private slots:
    void questionWithoutAnAnswerIsToldAndTheOthersAreRead_data();
    void questionWithoutAnAnswerIsToldAndTheOthersAreRead();
    void questionWithoutAnAnswerOnceIsReadTheNextTime_data();
    void questionWithoutAnAnswerOnceIsReadTheNextTime();
};

void TestDialogFaults::questionWithoutAnAnswerIsToldAndTheOthersAreRead_data()
{
    addQuestionFaults();
}

void TestDialogFaults::questionWithoutAnAnswerIsToldAndTheOthersAreRead()
{
    QFETCH(Question, question);
    QFETCH(Rule, rule);
    FaultBench faults;
    QVERIFY(faults.open());
    QVERIFY(faults.refreshUnder(rule));
    QCOMPARE(faults.difference(FaultBench::formWithout({question})), QString());
    QCOMPARE(faults.unread(), question.name);
    QVERIFY(faults.bench.failure().isNull());
    QVERIFY(faults.isQuiet());
    QVERIFY(faults.hasButtons());
}

void TestDialogFaults::questionWithoutAnAnswerOnceIsReadTheNextTime_data()
{
    addQuestionFaults();
}

void TestDialogFaults::questionWithoutAnAnswerOnceIsReadTheNextTime()
{
    QFETCH(Question, question);
    QFETCH(Rule, rule);
    FaultBench faults;
    QVERIFY(faults.open());
    rule.times = 1;
    QVERIFY(faults.refreshUnder(rule));
    QCOMPARE(faults.difference(FaultBench::formWithout({question})), QString());
    QCOMPARE(faults.unread(), question.name);
    QVERIFY(faults.isQuiet());
    QVERIFY(faults.refresh());
    QCOMPARE(faults.difference(FaultBench::formWithout({})), QString());
    QCOMPARE(faults.unread(), QString());
    QVERIFY(faults.isQuiet());
    QVERIFY(faults.hasButtons());
}

QTEST_MAIN(TestDialogFaults)
#include "tst_dialogfaults.moc"
