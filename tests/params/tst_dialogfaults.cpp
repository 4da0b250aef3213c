// Refreshing the parameter dialog while the controller refuses, ignores or answers short each of
// its questions in turn: what the form shows, and what is logged.

#include "faultbench.h"

#include <QtTest>

using emulator::on;
using emulator::Rule;

class TestDialogFaults : public QObject
{
    Q_OBJECT

private slots:
    void questionIsToldUntilItIsAnswered_data();
    void questionIsToldUntilItIsAnswered();
    void acceptanceWithoutAValueIsNoAnswer_data();
    void acceptanceWithoutAValueIsNoAnswer();
};

void TestDialogFaults::questionIsToldUntilItIsAnswered_data()
{
    addQuestionFaults();
}

void TestDialogFaults::questionIsToldUntilItIsAnswered()
{
    QFETCH(Question, question);
    QFETCH(Rule, always);
    QFETCH(Rule, once);
    FaultBench faults;
    QVERIFY(faults.open());
    for (const Rule& rule : {always, once}) {
        QVERIFY(faults.refreshUnder(rule));
        QCOMPARE(faults.difference(FaultBench::formWithout({question})), QString());
        QCOMPARE(faults.unread(), question.name);
        QVERIFY(faults.bench.failure().isNull());
        QVERIFY(faults.isQuiet());
        QVERIFY(faults.hasButtons());
    }
    QVERIFY(faults.refresh());
    QCOMPARE(faults.difference(FaultBench::formWithout({})), QString());
    QCOMPARE(faults.unread(), QString());
    QVERIFY(faults.isQuiet());
    QVERIFY(faults.hasButtons());
}

void TestDialogFaults::acceptanceWithoutAValueIsNoAnswer_data()
{
    QTest::addColumn<Question>("question");
    for (const Question& question : questions())
        QTest::newRow(qPrintable(question.name)) << question;
}

/// Two bytes are handed over as a reply of any length would be, since a refusal has as many.
void TestDialogFaults::acceptanceWithoutAValueIsNoAnswer()
{
    QFETCH(Question, question);
    FaultBench faults;
    QVERIFY(faults.open());
    QVERIFY(faults.refreshUnder(on(question.command).cutTo(2)));
    QCOMPARE(faults.difference(FaultBench::formWithout({question})), QString());
    QCOMPARE(faults.unread(), question.name);
    QVERIFY(faults.hasButtons());
}

QTEST_MAIN(TestDialogFaults)
#include "tst_dialogfaults.moc"
