// Refreshing the parameter dialog while a stream runs and the controller refuses, ignores or
// answers short each question in turn: the stream runs again behind every one.

#include "faultbench.h"

#include <QtTest>

using emulator::Rule;

class TestDialogStreamFaults : public QObject
{
    Q_OBJECT

private slots:
    void streamRunsAgainBehindAQuestionWithoutAnAnswer_data();
    void streamRunsAgainBehindAQuestionWithoutAnAnswer();
    void questionWithoutAnAnswerOnceIsReadTheNextTime_data();
    void questionWithoutAnAnswerOnceIsReadTheNextTime();
};

void TestDialogStreamFaults::streamRunsAgainBehindAQuestionWithoutAnAnswer_data()
{
    addQuestionFaults();
}

void TestDialogStreamFaults::streamRunsAgainBehindAQuestionWithoutAnAnswer()
{
    QFETCH(Question, question);
    QFETCH(Rule, rule);
    FaultBench faults;
    QVERIFY(faults.openStreaming());
    QVERIFY(faults.refreshUnder(rule));
    QCOMPARE(faults.difference(FaultBench::formWithout({question})), QString());
    QCOMPARE(faults.unread(), question.name);
    QVERIFY(faults.bench.failure().isNull());
    QVERIFY(faults.streams());
    QCOMPARE(faults.bench.streamErrors, 0);
    QVERIFY(faults.hasButtons());
}

void TestDialogStreamFaults::questionWithoutAnAnswerOnceIsReadTheNextTime_data()
{
    addQuestionFaults();
}

void TestDialogStreamFaults::questionWithoutAnAnswerOnceIsReadTheNextTime()
{
    QFETCH(Question, question);
    QFETCH(Rule, rule);
    FaultBench faults;
    QVERIFY(faults.openStreaming());
    rule.times = 1;
    QVERIFY(faults.refreshUnder(rule));
    QCOMPARE(faults.difference(FaultBench::formWithout({question})), QString());
    QCOMPARE(faults.unread(), question.name);
    QVERIFY(faults.streams());
    QVERIFY(faults.refresh());
    QCOMPARE(faults.difference(FaultBench::formWithout({})), QString());
    QCOMPARE(faults.unread(), QString());
    QVERIFY(faults.streams());
    QCOMPARE(faults.bench.streamErrors, 0);
    QVERIFY(faults.hasButtons());
}

QTEST_MAIN(TestDialogStreamFaults)
#include "tst_dialogstreamfaults.moc"
