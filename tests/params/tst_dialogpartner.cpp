// How the parameter dialog finds the other system of the group, and locks it.

#include "groupbench.h"
#include "support/bytes.h"

#include <QMessageBox>
#include <QtTest>

using emulator::on;
using emulator::Rule;
using Flags = std::array<bool, 2>;

Q_DECLARE_METATYPE(Flags)
Q_DECLARE_METATYPE(Stage)
Q_DECLARE_METATYPE(std::vector<SystemState>)

namespace {

constexpr auto current = GroupBench::current;
constexpr auto partner = GroupBench::partner;

constexpr char align[] = "alignPushButton";
constexpr char lockPartner[] = "lockSubsystemButton";
/// By stage.
constexpr std::array<const char*, 2> lockStage{"stabPushButton", "stab2PushButton"};

const QString partnerNotFound =
    QStringLiteral("The partner system was not found. Please check the group identifications");

SystemState stateIn(int group, bool isValid = true)
{
    SystemState state;
    state.isValid = isValid;
    state.groupId = group;
    return state;
}

} // namespace

class TestDialogPartner : public QObject
{
    Q_OBJECT

private slots:
    void partnerIsMissing_data();
    void partnerIsMissing();
    void missingPartnerIsToldInABoxThatStopsNobody();
    void closedPartnerIsMissing();
    void firstOfTheGroupIsThePartner();
    void systemBeforeTheCurrentOneCanBeThePartner();

    void lockingThePartnerSpeaksToTheCurrentSystem_data();
    void lockingThePartnerSpeaksToTheCurrentSystem();
    void lockOfThePartnerIsNotedForThePartner_data();
    void lockOfThePartnerIsNotedForThePartner();
    void eachFailureOfTheLockIsNotedForThePartner_data();
    void eachFailureOfTheLockIsNotedForThePartner();
    void streamOfThePartnerGoesOnBehindTheLock_data();
    void streamOfThePartnerGoesOnBehindTheLock();
    void currentSystemThatStreamsIsNotAsked();
    void partnerIsLockedWhetherItStopsOrNot_data();
    void partnerIsLockedWhetherItStopsOrNot();
    void streamOfThePartnerThatDoesNotStartAgainIsTold_data();
    void streamOfThePartnerThatDoesNotStartAgainIsTold();
};

void TestDialogPartner::partnerIsMissing_data()
{
    QTest::addColumn<std::vector<SystemState>>("states");
    QTest::addColumn<bool>("locks");
    using States = std::vector<SystemState>;
    const auto rows = [](const char* name, const States& states) {
        QTest::addRow("%s, locks", name) << states << true;
        QTest::addRow("%s, aligns", name) << states << false;
    };
    rows("alone", {stateIn(3)});
    rows("alone in its group", {stateIn(3), stateIn(4)});
    rows("not valid", {stateIn(3), stateIn(3, false)});
    rows("first of the group is not valid", {stateIn(3), stateIn(3, false), stateIn(3)});
}

void TestDialogPartner::partnerIsMissing()
{
    QFETCH(std::vector<SystemState>, states);
    QFETCH(bool, locks);
    GroupBench bench(states.size());
    bench.states = states;
    QVERIFY(bench.open());
    QVERIFY(bench.startStreams());
    QVERIFY(bench.click(locks ? lockPartner : align));
    QCOMPARE(bench.text("partnerLabel"), QString("Missing"));
    QVERIFY(!bench.isEnabled(align));
    QCOMPARE(bench.isEnabled(lockPartner), !locks);
    QVERIFY(bench.isEnabled(lockStage[0]) && bench.isEnabled(lockStage[1]));
    QCOMPARE(bench.failure(), partnerNotFound);
    QCOMPARE(bench.heard(), QByteArrayList());
    QCOMPARE(bench.notes, 0);
}

void TestDialogPartner::missingPartnerIsToldInABoxThatStopsNobody()
{
    GroupBench bench(1);
    QVERIFY(bench.open());
    QVERIFY(bench.click(align));
    const auto* box = bench.dialog.findChild<QMessageBox*>("errorBox");
    QVERIFY(box->isVisible() && !box->isModal());
    QCOMPARE(box->windowTitle(), QString("Information"));
    QCOMPARE(box->text(), QString("An error has occurred."));
    // The same box tells it again.
    QVERIFY(bench.click(lockPartner));
    QCOMPARE(bench.dialog.findChildren<QMessageBox*>().size(), 1);
    QCOMPARE(bench.failure(), partnerNotFound);
    QVERIFY(!bench.isEnabled(lockPartner));
}

void TestDialogPartner::closedPartnerIsMissing()
{
    GroupBench bench;
    QVERIFY(bench.open());
    bench.dialog.removeDetectors(&bench.links[partner].client);
    QVERIFY(bench.click(lockPartner));
    QCOMPARE(bench.failure(), partnerNotFound);
    QCOMPARE(bench.heard(), QByteArrayList());
}

void TestDialogPartner::firstOfTheGroupIsThePartner()
{
    GroupBench bench(3);
    bench.states = {stateIn(0), stateIn(0), stateIn(0)};
    QVERIFY(bench.open());
    QVERIFY(bench.startStreams());
    bench.links[current].client.stopStream();
    bench.controller(current).clearWire();
    QVERIFY(bench.click(lockPartner));
    QCOMPARE(bench.controller(partner).commands().value(0), QByteArray("CLS;"));
    QCOMPARE(bench.controller(2).commands(), QByteArrayList());
    // Where a partner was found nothing is written.
    QCOMPARE(bench.text("partnerLabel"), QString());
}

void TestDialogPartner::systemBeforeTheCurrentOneCanBeThePartner()
{
    constexpr std::size_t last = 2;
    GroupBench bench(3);
    bench.states = {stateIn(4), stateIn(7), stateIn(4)};
    QVERIFY(bench.open(last));
    QVERIFY(bench.startStream(0));
    QVERIFY(bench.click(lockPartner));
    QCOMPARE(bench.controller(0).commands().value(0), QByteArray("CLS;"));
    QCOMPARE(bench.controller(1).commands(), QByteArrayList());
    QCOMPARE(bench.controller(last).commands(), (QByteArrayList{"SSE\1;", "SSE\2;"}));
}

void TestDialogPartner::lockingThePartnerSpeaksToTheCurrentSystem_data()
{
    QTest::addColumn<bool>("streams");
    QTest::newRow("streams") << true;
    QTest::newRow("idle") << false;
}

// Kept: the partner is what is locked, by commands to the other system.
void TestDialogPartner::lockingThePartnerSpeaksToTheCurrentSystem()
{
    QFETCH(bool, streams);
    GroupBench bench;
    QVERIFY(bench.open());
    QVERIFY(!streams || bench.startStream(partner));
    QVERIFY(bench.click(lockPartner));
    QByteArrayList expected{toCurrent("SSE\1;"), toCurrent("SSE\2;")};
    if (streams) {
        expected.prepend(toPartner("CLS;"));
        expected.append(toPartner(bytes("534c53000000c83b")));
    }
    QCOMPARE(bench.heard(), expected);
    QCOMPARE(bench.isStreaming(partner), streams);
    QVERIFY(bench.failure().isNull());
}

void TestDialogPartner::lockOfThePartnerIsNotedForThePartner_data()
{
    QTest::addColumn<Flags>("before");
    QTest::addColumn<QList<Rule>>("rules");
    QTest::addColumn<Flags>("after");
    const Rule refuse1 = on("SSE\1").refuse();
    const Rule refuse2 = on("SSE\2").refuse();
    const Rule strange = on("SSE").reply(bytes("00ff"));
    const Flags none{false, false};
    const Flags both{true, true};
    QTest::newRow("both leave") << both << QList<Rule>{} << none;
    QTest::newRow("both had left") << none << QList<Rule>{} << none;
    QTest::newRow("stage 1 stays") << both << QList<Rule>{refuse1} << Flags{true, false};
    QTest::newRow("stage 1 comes back") << none << QList<Rule>{refuse1} << Flags{true, false};
    QTest::newRow("stage 2 stays") << both << QList<Rule>{refuse2} << Flags{false, true};
    QTest::newRow("stage 2 comes back") << none << QList<Rule>{refuse2} << Flags{false, true};
    QTest::newRow("both stay") << both << QList<Rule>{refuse1, refuse2} << both;
    QTest::newRow("both come back") << none << QList<Rule>{refuse1, refuse2} << both;
    QTest::newRow("first byte alone accepts") << both << QList<Rule>{strange} << none;
}

void TestDialogPartner::lockOfThePartnerIsNotedForThePartner()
{
    QFETCH(Flags, before);
    QFETCH(QList<Rule>, rules);
    QFETCH(Flags, after);
    const Flags ofCurrent{true, false};
    GroupBench bench;
    bench.states[current].isOnCommonPath = ofCurrent;
    bench.states[partner].isOnCommonPath = before;
    QVERIFY(bench.open());
    bench.controller(current).setRules(rules);
    QVERIFY(bench.click(lockPartner));
    QCOMPARE(bench.states[partner].isOnCommonPath, after);
    QCOMPARE(bench.states[current].isOnCommonPath, ofCurrent);
    QCOMPARE(bench.isEnabled(lockPartner), after == (Flags{true, true}));
    QVERIFY(bench.isEnabled(align));
    QVERIFY(bench.isEnabled(lockStage[0]) && bench.isEnabled(lockStage[1]));
}

void TestDialogPartner::eachFailureOfTheLockIsNotedForThePartner_data()
{
    QTest::addColumn<Stage>("stage");
    QTest::addColumn<bool>("streams");
    QTest::addColumn<Rule>("rule");
    for (const Stage stage : bothStages) {
        for (const bool streams : {false, true}) {
            const QByteArray command = stage == Stage::One ? "SSE\1" : "SSE\2";
            for (const Failure& failure : failuresOf(command))
                QTest::addRow("stage %d, %s, %s", numberOf(stage), streams ? "stream" : "quiet",
                              failure.name)
                    << stage << streams << failure.rule;
        }
    }
}

void TestDialogPartner::eachFailureOfTheLockIsNotedForThePartner()
{
    QFETCH(Stage, stage);
    QFETCH(bool, streams);
    QFETCH(Rule, rule);
    const std::size_t place = indexOf(stage);
    GroupBench bench;
    QVERIFY(bench.open());
    QVERIFY(!streams || bench.startStream(partner));
    bench.controller(current).setRules({rule});
    QVERIFY(bench.clickImpatiently(lockPartner));
    QVERIFY(bench.states[partner].isOnCommonPath[place]);
    QVERIFY(!bench.states[partner].isOnCommonPath[1 - place]);
    QByteArrayList expected{toCurrent("SSE\1;"), toCurrent("SSE\2;")};
    if (streams) {
        expected.prepend(toPartner("CLS;"));
        expected.append(toPartner(bytes("534c53000000c83b")));
    }
    QCOMPARE(bench.heard(), expected);
    QCOMPARE(bench.isStreaming(partner), streams);
    QCOMPARE(bench.streamErrors, 0);
    QVERIFY(!bench.isEnabled(lockPartner));
    QVERIFY(bench.failure().isNull());
}

void TestDialogPartner::streamOfThePartnerGoesOnBehindTheLock_data()
{
    addControllerKinds();
}

void TestDialogPartner::streamOfThePartnerGoesOnBehindTheLock()
{
    QFETCH(ControllerKind, kind);
    GroupBench bench(2, kind.options);
    QVERIFY(bench.open());
    bench.links[partner].client.setTriggerMode(kind.byTriggers);
    QVERIFY(bench.startStream(partner));
    QVERIFY(bench.click(lockPartner));
    QCOMPARE(bench.heard(),
             (QByteArrayList{toPartner("CLS;"), toCurrent("SSE\1;"), toCurrent("SSE\2;"),
                             toPartner(kind.start(GroupBench::rateHz(partner)))}));
    QVERIFY(bench.isStreaming(partner));
    QCOMPARE(bench.streamErrors, 0);
}

void TestDialogPartner::currentSystemThatStreamsIsNotAsked()
{
    GroupBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.startStreams());
    QVERIFY(bench.click(lockPartner));
    // Nothing is written into a stream.
    QCOMPARE(bench.heard(),
             (QByteArrayList{toPartner("CLS;"), toPartner(bytes("534c53000000c83b"))}));
    QCOMPARE(bench.states[partner].isOnCommonPath, (Flags{true, true}));
    QVERIFY(bench.isEnabled(lockPartner));
    QVERIFY(bench.isStreaming(current) && bench.isStreaming(partner));
    QCOMPARE(bench.streamErrors, 0);
}

void TestDialogPartner::partnerIsLockedWhetherItStopsOrNot_data()
{
    QTest::addColumn<Rule>("rule");
    QTest::addColumn<bool>("stops");
    QTest::newRow("unanswered once") << Rule(on("CLS").ignore().once()) << true;
    QTest::newRow("unanswered") << Rule(on("CLS").ignore()) << false;
    QTest::newRow("refused once") << Rule(on("CLS").refuse().once()) << true;
    QTest::newRow("refused") << Rule(on("CLS").refuse()) << false;
}

/// Kept: the commands go to the current system, which a stream of the partner does not hold back.
void TestDialogPartner::partnerIsLockedWhetherItStopsOrNot()
{
    QFETCH(Rule, rule);
    QFETCH(bool, stops);
    GroupBench bench;
    bench.states[partner].isOnCommonPath = {true, true};
    QVERIFY(bench.open());
    QVERIFY(bench.startStream(partner));
    bench.controller(partner).setRules({rule});
    QVERIFY(bench.clickImpatiently(lockPartner));
    QByteArrayList expected{toPartner("CLS;"), toPartner("CLS;"), toCurrent("SSE\1;"),
                            toCurrent("SSE\2;")};
    // Into a stream not even a start is written.
    if (stops)
        expected.append(toPartner(bytes("534c53000000c83b")));
    QCOMPARE(bench.heard(), expected);
    QCOMPARE(bench.states[partner].isOnCommonPath, (Flags{false, false}));
    QVERIFY(!bench.isEnabled(lockPartner));
    QCOMPARE(bench.streamErrors, stops ? 0 : 1);
    QVERIFY(bench.isStreaming(partner));
    QVERIFY(bench.failure().isNull());
}

void TestDialogPartner::streamOfThePartnerThatDoesNotStartAgainIsTold_data()
{
    QTest::addColumn<Rule>("rule");
    for (const Failure& failure : failuresOf("SLS"))
        QTest::newRow(failure.name) << failure.rule;
}

void TestDialogPartner::streamOfThePartnerThatDoesNotStartAgainIsTold()
{
    QFETCH(Rule, rule);
    GroupBench bench;
    bench.states[partner].isOnCommonPath = {true, true};
    QVERIFY(bench.open());
    QVERIFY(bench.startStream(partner));
    bench.controller(partner).setRules({rule});
    QVERIFY(bench.clickImpatiently(lockPartner));
    QCOMPARE(bench.streamErrors, 1);
    QCOMPARE(bench.states[partner].isOnCommonPath, (Flags{false, false}));
    QVERIFY(!bench.isEnabled(lockPartner));
    QVERIFY(bench.isEnabled(align));
}

QTEST_MAIN(TestDialogPartner)
#include "tst_dialogpartner.moc"
