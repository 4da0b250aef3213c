// Set & Hold in the parameter dialog while the controller refuses, ignores or answers short the
// stop of its stream and the start behind it.

#include "faultbench.h"
#include "holdexpectations.h"

#include <QtTest>

using emulator::on;
using emulator::Rule;

Q_DECLARE_METATYPE(Stage)

namespace {

const QByteArrayList stop{"CLS;"};
const QByteArrayList start{QByteArray("SLS\0\0\x01\x2c;", 8)};

void addRows(const QVector<Fault>& faults)
{
    QTest::addColumn<Stage>("stage");
    QTest::addColumn<Rule>("rule");
    for (const Stage stage : bothStages) {
        for (const Fault& fault : faults)
            QTest::addRow("stage %d, %s", numberOf(stage), fault.name) << stage << Rule(fault.rule);
    }
}

/// Makes the link anew, on which the stage is free and a stream runs.
bool startOver(FaultBench& faults, Stage stage)
{
    EmulatedLink& link = faults.bench.link;
    link.controller.setRules({});
    link.controller.setStage(numberOf(stage), false);
    return link.client.disconnectController() == 1 && link.connect()
           && link.startStream(FaultBench::rateHz) && faults.refresh() && faults.streams()
           && isSetEnabled(faults.bench, stage);
}

} // namespace

class TestDialogHoldStreamFaults : public QObject
{
    Q_OBJECT

private slots:
    void stopThatFailsOnceIsRepeated_data();
    void stopThatFailsOnceIsRepeated();
    void streamThatDoesNotStopLetsNothingThrough_data();
    void streamThatDoesNotStopLetsNothingThrough();
    void holdStandsWhereTheStreamDoesNotStartAgain_data();
    void holdStandsWhereTheStreamDoesNotStartAgain();
    void silentStartHoldsTheReadingBack_data();
    void silentStartHoldsTheReadingBack();
};

void TestDialogHoldStreamFaults::stopThatFailsOnceIsRepeated_data()
{
    addRows(
        {{"refused once", on("CLS").refuse().once()}, {"ignored once", on("CLS").ignore().once()}});
}

void TestDialogHoldStreamFaults::stopThatFailsOnceIsRepeated()
{
    QFETCH(Stage, stage);
    QFETCH(Rule, rule);
    FaultBench faults;
    QVERIFY(faults.openStreaming());
    QVERIFY(faults.clickUnder(rule, setButton(stage)));
    QCOMPARE(faults.bench.commands(),
             stop + stop + holding(stage) + start + stop + reading() + start);
    QCOMPARE(faults.warnings(), QStringList());
    QVERIFY(isHeld(faults.bench, stage));
    QVERIFY(!isSetEnabled(faults.bench, stage));
    QVERIFY(faults.streams());
    QCOMPARE(faults.bench.streamErrors, 0);
    QVERIFY(faults.hasButtons());
}

void TestDialogHoldStreamFaults::streamThatDoesNotStopLetsNothingThrough_data()
{
    addRows({{"refused", on("CLS").refuse()}, {"ignored", on("CLS").ignore()}});
}

/// Set and the reading behind it each try to stop the stream, and neither can start it again.
void TestDialogHoldStreamFaults::streamThatDoesNotStopLetsNothingThrough()
{
    QFETCH(Stage, stage);
    QFETCH(Rule, rule);
    FaultBench faults;
    QVERIFY(faults.openStreaming());
    faults.fill(FaultBench::formOfUser());
    QVERIFY(faults.clickUnder(rule, setButton(stage)));
    QCOMPARE(faults.bench.commands(), stop + stop + stop + stop);
    QCOMPARE(faults.difference(FaultBench::formWithout(questions())), QString());
    QCOMPARE(faults.unread(), namesOf(questions()));
    QVERIFY(faults.bench.failure().isNull());
    QVERIFY(!isHeld(faults.bench, stage));
    QVERIFY(isSetEnabled(faults.bench, stage));
    QCOMPARE(faults.bench.streamErrors, 2);
    QVERIFY(faults.streams());
    QVERIFY(faults.hasButtons());

    faults.bench.link.controller.setRules({});
    QVERIFY(faults.click(setButton(stage)));
    QCOMPARE(faults.warnings(), QStringList());
    QVERIFY(isHeld(faults.bench, stage));
    QVERIFY(faults.streams());
    QCOMPARE(faults.bench.streamErrors, 2);
}

void TestDialogHoldStreamFaults::holdStandsWhereTheStreamDoesNotStartAgain_data()
{
    const QByteArray tooShort("\0;\0", 3);
    addRows({{"refused", on("SLS").refuse()},
             {"refused once", on("SLS").refuse().once()},
             {"3 bytes", on("SLS").reply(tooShort)},
             {"3 bytes once", on("SLS").reply(tooShort).once()}});
}

void TestDialogHoldStreamFaults::holdStandsWhereTheStreamDoesNotStartAgain()
{
    QFETCH(Stage, stage);
    QFETCH(Rule, rule);
    FaultBench faults;
    QVERIFY(faults.openStreaming());
    QVERIFY(faults.clickUnder(rule, setButton(stage)));
    // The reading finds no stream that it could start again.
    QCOMPARE(faults.bench.commands(), stop + holding(stage) + start + reading());
    QCOMPARE(faults.difference(FaultBench::formOfController()), QString());
    QCOMPARE(faults.warnings(), QStringList());
    QVERIFY(faults.bench.failure().isNull());
    QCOMPARE(faults.bench.streamErrors, 1);
    QVERIFY(isHeld(faults.bench, stage));
    QVERIFY(!isSetEnabled(faults.bench, stage));
    QVERIFY(faults.isQuiet());
    QVERIFY(faults.hasButtons());

    QVERIFY(startOver(faults, stage));
    QVERIFY(faults.click(setButton(stage)));
    QVERIFY(isHeld(faults.bench, stage));
    QVERIFY(faults.streams());
    QCOMPARE(faults.bench.streamErrors, 1);
}

void TestDialogHoldStreamFaults::silentStartHoldsTheReadingBack_data()
{
    addRows({{"ignored", on("SLS").ignore()}, {"ignored once", on("SLS").ignore().once()}});
}

/// Kept: a start that nothing answers is awaited for as long as the link is up. What Set did before
/// it stands.
void TestDialogHoldStreamFaults::silentStartHoldsTheReadingBack()
{
    QFETCH(Stage, stage);
    QFETCH(Rule, rule);
    FaultBench faults;
    QVERIFY(faults.openStreaming());
    QVERIFY(faults.clickUnder(rule, setButton(stage)));
    QCOMPARE(faults.bench.commands(), stop + holding(stage) + start);
    QCOMPARE(faults.unread(), namesOf(questions()));
    QVERIFY(faults.bench.failure().isNull());
    QCOMPARE(faults.bench.streamErrors, 1);
    QVERIFY(isHeld(faults.bench, stage));
    QVERIFY(!isSetEnabled(faults.bench, stage));
    QVERIFY(!faults.bench.link.client.isStreaming());
    QVERIFY(faults.hasButtons());

    QVERIFY(startOver(faults, stage));
    QVERIFY(faults.click(setButton(stage)));
    QCOMPARE(faults.warnings(), QStringList());
    QVERIFY(isHeld(faults.bench, stage));
    QVERIFY(faults.streams());
    QCOMPARE(faults.bench.streamErrors, 1);
}

QTEST_MAIN(TestDialogHoldStreamFaults)
#include "tst_dialogholdstreamfaults.moc"
