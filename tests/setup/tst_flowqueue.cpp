#include "setup/flowqueue.h"

#include <QStringList>
#include <QtTest>

class TestFlowQueue final : public QObject
{
    Q_OBJECT

private slots:
    void aFlowRunsAtOnce();
    void aFlowOfAFlowWaitsForItsEnd();
    void flowsThatWaitAreDroppedWhenTheApplicationLeaves();
};

void TestFlowQueue::aFlowRunsAtOnce()
{
    FlowQueue flows([] { return false; });
    int runs = 0;
    flows.run([&] { ++runs; });
    flows.run([&] { ++runs; });
    QCOMPARE(runs, 2);
}

void TestFlowQueue::aFlowOfAFlowWaitsForItsEnd()
{
    FlowQueue flows([] { return false; });
    QStringList events;
    flows.run([&] {
        flows.run([&] { events.append("second"); });
        flows.run([&] { events.append("third"); });
        events.append("end of the first");
    });
    QCOMPARE(events, QStringList({"end of the first", "second", "third"}));
}

void TestFlowQueue::flowsThatWaitAreDroppedWhenTheApplicationLeaves()
{
    bool leaving = false;
    FlowQueue flows([&] { return leaving; });
    int runs = 0;
    flows.run([&] {
        flows.run([&] { ++runs; });
        leaving = true;
    });
    flows.run([&] { ++runs; });
    QCOMPARE(runs, 0);
}

QTEST_GUILESS_MAIN(TestFlowQueue)
#include "tst_flowqueue.moc"
