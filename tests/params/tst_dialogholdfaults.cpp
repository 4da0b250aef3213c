// Set & Hold in the parameter dialog while the controller refuses, ignores or answers short the
// hold, the position, or a question of the reading behind them.

#include "faultbench.h"
#include "holdexpectations.h"

#include <QtTest>

using emulator::on;
using emulator::Rule;

Q_DECLARE_METATYPE(Stage)

namespace {

Stage otherThan(Stage stage)
{
    return stage == Stage::One ? Stage::Two : Stage::One;
}

/// What goes over the wire, from the stop of a stream to its start if one runs.
QByteArrayList exchanged(const QByteArrayList& commands, bool streams)
{
    if (!streams)
        return commands;
    return QByteArrayList{"CLS;"} + commands + QByteArrayList{QByteArray("SLS\0\0\x01\x2c;", 8)};
}

/// Whether the buttons work, a stream runs if it ran before, and no failure is told.
bool isUsable(const FaultBench& faults, bool streams)
{
    return faults.bench.failure().isNull() && faults.hasButtons() && faults.bench.streamErrors == 0
           && (streams ? faults.streams() : faults.isQuiet());
}

/// Rows of each stage, quiet and with a stream, and each way in which a command fails.
void addRows(const QVector<Fault>& faults)
{
    QTest::addColumn<Stage>("stage");
    QTest::addColumn<bool>("streams");
    QTest::addColumn<Rule>("always");
    QTest::addColumn<Rule>("once");
    for (const Stage stage : bothStages) {
        for (const bool streams : {false, true}) {
            for (Fault fault : faults) {
                const Rule always = fault.rule;
                QTest::addRow("stage %d, %s, %s", numberOf(stage), streams ? "stream" : "quiet",
                              fault.name)
                    << stage << streams << always << Rule(fault.rule.once());
            }
        }
    }
}

} // namespace

class TestDialogHoldFaults : public QObject
{
    Q_OBJECT

private slots:
    void holdThatFailsCanBeAskedAgain_data();
    void holdThatFailsCanBeAskedAgain();
    void positionThatFailsDoesNotStopTheHold_data();
    void positionThatFailsDoesNotStopTheHold();
    void holdStandsWhereTheReadingBehindItFails_data();
    void holdStandsWhereTheReadingBehindItFails();
};

void TestDialogHoldFaults::holdThatFailsCanBeAskedAgain_data()
{
    addRows({{"refused", on("SSH").refuse()},
             {"ignored", on("SSH").ignore()},
             {"answered short", on("SSH").reply(QByteArray(1, '\0'))}});
}

void TestDialogHoldFaults::holdThatFailsCanBeAskedAgain()
{
    QFETCH(Stage, stage);
    QFETCH(bool, streams);
    QFETCH(Rule, always);
    QFETCH(Rule, once);
    FaultBench faults;
    QVERIFY(streams ? faults.openStreaming() : faults.open());
    // The second stage reads its position behind an accepted hold only.
    const QByteArrayList holdAlone{holdCommand(stage)};
    const QByteArrayList failed = stage == Stage::One ? holding(stage) : holdAlone;
    for (const Rule& rule : {always, once}) {
        faults.fill(FaultBench::formOfUser());
        QVERIFY(faults.clickUnder(rule, setButton(stage)));
        QCOMPARE(faults.bench.commands(),
                 exchanged(failed, streams) + exchanged(reading(), streams));
        QCOMPARE(faults.difference(FaultBench::formOfController()), QString());
        QCOMPARE(faults.warnings(), QStringList());
        QVERIFY(!isHeld(faults.bench, stage));
        QVERIFY(isSetEnabled(faults.bench, stage));
        QVERIFY(isUsable(faults, streams));
    }
    QVERIFY(faults.click(setButton(stage)));
    QCOMPARE(faults.bench.commands(),
             exchanged(holding(stage), streams) + exchanged(reading(), streams));
    QCOMPARE(faults.warnings(), QStringList());
    QVERIFY(isHeld(faults.bench, stage) && !isHeld(faults.bench, otherThan(stage)));
    QVERIFY(!isSetEnabled(faults.bench, stage));
    QVERIFY(isSetEnabled(faults.bench, otherThan(stage)));
    QVERIFY(isUsable(faults, streams));
}

void TestDialogHoldFaults::positionThatFailsDoesNotStopTheHold_data()
{
    addRows({{"refused", on("S1S").refuse()},
             {"ignored", on("S1S").ignore()},
             {"cut to 24 bytes", on("S1S").cutTo(24)}});
}

void TestDialogHoldFaults::positionThatFailsDoesNotStopTheHold()
{
    QFETCH(Stage, stage);
    QFETCH(bool, streams);
    QFETCH(Rule, always);
    QFETCH(Rule, once);
    const Question& position = questions()[1];
    FaultBench faults;
    QVERIFY(streams ? faults.openStreaming() : faults.open());
    // The reading behind the hold asks for the position, too.
    const std::array<std::pair<Rule, QVector<Question>>, 2> rounds{
        {{always, {position}}, {once, {}}}};
    for (const auto& [rule, unread] : rounds) {
        faults.fill(FaultBench::formOfUser());
        QVERIFY(faults.clickUnder(rule, setButton(stage)));
        QCOMPARE(faults.bench.commands(),
                 exchanged(holding(stage), streams) + exchanged(reading(), streams));
        QCOMPARE(faults.difference(FaultBench::formWithout(unread)), QString());
        QCOMPARE(faults.unread(), unread.isEmpty() ? QString() : position.name);
        QVERIFY(isHeld(faults.bench, stage));
        QVERIFY(!isSetEnabled(faults.bench, stage));
        QVERIFY(isUsable(faults, streams));

        // Somebody else frees it.
        faults.bench.link.controller.setRules({});
        faults.bench.link.controller.setStage(numberOf(stage), false);
        QVERIFY(faults.refresh());
        QVERIFY(isSetEnabled(faults.bench, stage));
    }
}

void TestDialogHoldFaults::holdStandsWhereTheReadingBehindItFails_data()
{
    QTest::addColumn<Stage>("stage");
    QTest::addColumn<Question>("question");
    const QStringList oneOfEachKind{"GSF", "S1S", "GAI 1x", "GPF 2", "GDS 1"};
    for (const Stage stage : bothStages) {
        for (const Question& question : questions()) {
            if (oneOfEachKind.contains(question.name))
                QTest::addRow("stage %d, %s", numberOf(stage), qPrintable(question.name))
                    << stage << question;
        }
    }
}

/// The odd values that Set shows of a stage stay until a reading replaces them.
void TestDialogHoldFaults::holdStandsWhereTheReadingBehindItFails()
{
    QFETCH(Stage, stage);
    QFETCH(Question, question);
    const bool missesPosition = question.command == "S1S";
    Form expected = FaultBench::formWithout({question});
    if (missesPosition && stage == Stage::One) {
        expected["SetHoldX"] = "0.250";
        expected["SetHoldY"] = "-5.000";
    } else if (missesPosition) {
        expected["SetHoldX_2"] = "-5.000";
        expected["SetHoldY_2"] = "5.000";
    }
    FaultBench faults;
    QVERIFY(faults.openStreaming());
    faults.fill(FaultBench::formOfUser());
    // Set itself asks for the position once.
    const Rule silent = on(question.command).after(missesPosition ? 1 : 0).ignore();
    QVERIFY(faults.clickUnder(silent, setButton(stage)));
    QCOMPARE(faults.bench.commands(), exchanged(holding(stage), true) + exchanged(reading(), true));
    QCOMPARE(faults.difference(expected), QString());
    QCOMPARE(faults.unread(), question.name);
    QVERIFY(isHeld(faults.bench, stage));
    QVERIFY(!isSetEnabled(faults.bench, stage));
    QVERIFY(isUsable(faults, true));
}

QTEST_MAIN(TestDialogHoldFaults)
#include "tst_dialogholdfaults.moc"
