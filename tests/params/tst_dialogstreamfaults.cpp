// Refreshing the parameter dialog while a stream runs and the controller refuses, ignores or
// answers short each question in turn: the stream runs again behind every one.

#include "faultbench.h"

#include <QtTest>

using emulator::Rule;

class TestDialogStreamFaults : public QObject
{
    Q_OBJECT

private slots:
    void streamRunsAgainBehindEveryQuestionThatFails_data();
    void streamRunsAgainBehindEveryQuestionThatFails();
};

void TestDialogStreamFaults::streamRunsAgainBehindEveryQuestionThatFails_data()
{
    addQuestionFaults();
}

void TestDialogStreamFaults::streamRunsAgainBehindEveryQuestionThatFails()
{
    QFETCH(Question, question);
    QFETCH(Rule, always);
    QFETCH(Rule, once);
    FaultBench faults;
    QVERIFY(faults.openStreaming());
    for (const Rule& rule : {always, once}) {
        QVERIFY(faults.refreshUnder(rule));
        QCOMPARE(faults.difference(FaultBench::formWithout({question})), QString());
        QCOMPARE(faults.unread(), question.name);
        QVERIFY(faults.bench.failure().isNull());
        QVERIFY(faults.streams());
        QVERIFY(faults.hasButtons());
    }
    QVERIFY(faults.refresh());
    QCOMPARE(faults.difference(FaultBench::formWithout({})), QString());
    QCOMPARE(faults.unread(), QString());
    QVERIFY(faults.streams());
    QCOMPARE(faults.bench.streamErrors, 0);
    QVERIFY(faults.hasButtons());
}

QTEST_MAIN(TestDialogStreamFaults)
#include "tst_dialogstreamfaults.moc"
