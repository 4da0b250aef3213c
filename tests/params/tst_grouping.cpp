// Two systems of a group without a form: who belongs together, what a reply tells of the common
// detector, and what goes over the two wires.

#include "link/connection.h"
#include "params/grouping.h"
#include "support/bytes.h"
#include "support/emulatedlink.h"

#include <QtTest>

Q_DECLARE_METATYPE(emulator::Rule)
Q_DECLARE_METATYPE(Overlay)
Q_DECLARE_METATYPE(Stage)
Q_DECLARE_METATYPE(std::vector<SystemState>)

using emulator::on;
using emulator::Rule;
using Flags = std::array<bool, 2>;
using Positions = std::array<AxisValues, 2>;

Q_DECLARE_METATYPE(Flags)
Q_DECLARE_METATYPE(Positions)

namespace {

SystemState validIn(int group)
{
    SystemState state;
    state.isValid = true;
    state.groupId = group;
    return state;
}

SystemState invalidIn(int group)
{
    SystemState state;
    state.groupId = group;
    return state;
}

/// -1.000 V and 0.250 V of stage 1, -5.000 V and a value whose low byte ends other commands of
/// stage 2.
QByteArray positionsReply()
{
    return bytes("003bfc1800faec78003b3b");
}

QByteArrayList multiplexCommands()
{
    return {"SMD\1;", "SMD\2;"};
}

/// What makes the positions of the reply above the targets.
QByteArrayList targetCommands()
{
    return {bytes("5341490178fc183b"), bytes("534149017900fa3b"), bytes("5341490278ec783b"),
            bytes("5341490279003b3b")};
}

/// The system that tells of the common detector, and the one that is brought there.
struct Pair
{
    EmulatedLink reference;
    EmulatedLink partner;
    Flags isThere{};

    bool connect(const QList<Rule>& ofReference = {on("GCA").reply(positionsReply())})
    {
        reference.controller.setRules(ofReference);
        return reference.connectAndIdentify() && partner.connectAndIdentify();
    }
    Overlay overlay() { return overlayPartner(reference.client, partner.client, isThere); }
};

} // namespace

class TestGrouping : public QObject
{
    Q_OBJECT

private slots:
    void partnerIsTheFirstOtherOfTheGroup_data();
    void partnerIsTheFirstOtherOfTheGroup();
    void positionsAreThoseOfTheReply_data();
    void positionsAreThoseOfTheReply();
    void stageLeavesTheCommonPath_data();
    void stageLeavesTheCommonPath();
    void stageLeavesTheCommonPathIfItsReplyBeginsWithZero_data();
    void stageLeavesTheCommonPathIfItsReplyBeginsWithZero();
    void overlaySendsThePositionsAsTheyCame();
    void overlaidPartnerHasThePositionsAsTargets();
    void partnerOnTheCommonPathIsNotLedThere();
    void partnerWithOneStageOnTheCommonPathIsLedThereWithBoth_data();
    void partnerWithOneStageOnTheCommonPathIsLedThereWithBoth();
    void stageOnTheCommonPathStaysNotedWhenItRefuses();
    void partnerThatDoesNotComeEndsTheOverlay_data();
    void partnerThatDoesNotComeEndsTheOverlay();
    void missingPositionsEndTheOverlay_data();
    void missingPositionsEndTheOverlay();
    void onlyTheFirstByteOfThePositionsIsJudged();
    void targetThatIsNotTakenEndsTheOverlay_data();
    void targetThatIsNotTakenEndsTheOverlay();
};

void TestGrouping::partnerIsTheFirstOtherOfTheGroup_data()
{
    QTest::addColumn<int>("current");
    QTest::addColumn<std::vector<SystemState>>("systems");
    QTest::addColumn<int>("partner");
    using Systems = std::vector<SystemState>;
    constexpr int none = -1;
    QTest::newRow("alone") << 0 << Systems{validIn(3)} << none;
    QTest::newRow("alone in its group") << 0 << Systems{validIn(3), validIn(4)} << none;
    QTest::newRow("behind it") << 0 << Systems{validIn(3), validIn(3)} << 1;
    QTest::newRow("before it") << 1 << Systems{validIn(3), validIn(3)} << 0;
    QTest::newRow("first of three")
        << 0 << Systems{validIn(3), validIn(4), validIn(3), validIn(3)} << 2;
    QTest::newRow("first, on both sides") << 1 << Systems{validIn(3), validIn(3), validIn(3)} << 0;
    QTest::newRow("never given a group") << 0 << Systems{validIn(0), validIn(0)} << 1;
    QTest::newRow("never given a group, others were")
        << 0 << Systems{validIn(0), validIn(3), validIn(0)} << 2;
    QTest::newRow("not valid") << 0 << Systems{validIn(3), invalidIn(3)} << none;
    QTest::newRow("first is not valid, second is")
        << 0 << Systems{validIn(3), invalidIn(3), validIn(3)} << none;
    QTest::newRow("one of another group is not valid")
        << 0 << Systems{validIn(3), invalidIn(4), validIn(3)} << 2;
    QTest::newRow("itself not valid") << 0 << Systems{invalidIn(3), validIn(3)} << 1;
}

void TestGrouping::partnerIsTheFirstOtherOfTheGroup()
{
    QFETCH(int, current);
    QFETCH(std::vector<SystemState>, systems);
    const auto found = partnerOf(std::size_t(current), systems);
    QTEST(found ? int(*found) : -1, "partner");
}

void TestGrouping::positionsAreThoseOfTheReply_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<bool>("isAccepted");
    QTest::addColumn<Positions>("positions");
    const auto accepted = [](const char* name, const char* reply, const Positions& positions) {
        QTest::newRow(name) << bytes(reply) << true << positions;
    };
    const auto missing = [](const char* name, const char* reply) {
        QTest::newRow(name) << bytes(reply) << false << Positions();
    };
    accepted("whole", "003b0001010002000a0b3b", {{{1, 256}, {512, 2571}}});
    accepted("negative", "003bffff8000fc18ec783b", {{{-1, -32768}, {-1000, -5000}}});
    accepted("greatest", "003b7fff000000007fff3b", {{{32767, 0}, {0, 32767}}});
    // What is not there counts as 0x00, also in the middle of a value.
    accepted("first high byte", "003b12", {{{0x1200, 0}, {0, 0}}});
    accepted("first value", "003b1234", {{{0x1234, 0}, {0, 0}}});
    accepted("one and a half value", "003b1234ff", {{{0x1234, -256}, {0, 0}}});
    accepted("all but the last low byte", "003b00010002000312", {{{1, 2}, {3, 0x1200}}});
    accepted("without its end", "003b0001000200030004", {{{1, 2}, {3, 4}}});
    accepted("second byte is not looked at", "00ff00010002000300043b", {{{1, 2}, {3, 4}}});
    missing("nothing", "");
    missing("one byte", "00");
    missing("status alone", "003b");
    missing("refusal", "013b");
    missing("refusal with values", "013b00010002000300043b");
    missing("refusal with three bytes", "013b00");
}

void TestGrouping::positionsAreThoseOfTheReply()
{
    QFETCH(QByteArray, reply);
    const std::optional<Positions> found = commonPositions(reply);
    QTEST(found.has_value(), "isAccepted");
    QTEST(found.value_or(Positions()), "positions");
}

void TestGrouping::stageLeavesTheCommonPath_data()
{
    QTest::addColumn<Stage>("stage");
    QTest::addColumn<QByteArray>("command");
    QTest::newRow("stage 1") << Stage::One << QByteArray("SSE\1;");
    QTest::newRow("stage 2") << Stage::Two << QByteArray("SSE\2;");
}

void TestGrouping::stageLeavesTheCommonPath()
{
    QFETCH(Stage, stage);
    QFETCH(QByteArray, command);
    EmulatedLink link;
    QVERIFY(link.connectAndIdentify());
    for (const int number : {1, 2})
        link.controller.setMultiplexed(number, true);
    QVERIFY(leaveCommonPath(link.client, stage));
    QCOMPARE(link.controller.commands(), QByteArrayList{command});
    QCOMPARE(link.controller.stage(1).multiplexed, stage != Stage::One);
    QCOMPARE(link.controller.stage(2).multiplexed, stage != Stage::Two);
}

void TestGrouping::stageLeavesTheCommonPathIfItsReplyBeginsWithZero_data()
{
    QTest::addColumn<Rule>("rule");
    QTest::addColumn<bool>("isAccepted");
    QTest::newRow("strange second byte") << Rule(on("SSE").reply(bytes("00ff"))) << true;
    QTest::newRow("refusal") << Rule(on("SSE").refuse()) << false;
    QTest::newRow("silence") << Rule(on("SSE").ignore()) << false;
    // A single byte never comes through an exchange.
    QTest::newRow("one byte") << Rule(on("SSE").cutTo(1)) << false;
}

void TestGrouping::stageLeavesTheCommonPathIfItsReplyBeginsWithZero()
{
    QFETCH(Rule, rule);
    EmulatedLink link;
    QVERIFY(link.connectAndIdentify());
    link.controller.setRules({rule});
    QTEST(leaveCommonPath(link.client, Stage::One), "isAccepted");
}

void TestGrouping::overlaySendsThePositionsAsTheyCame()
{
    Pair pair;
    QVERIFY(pair.connect());
    QCOMPARE(pair.overlay(), Overlay::Applied);
    QCOMPARE(pair.reference.controller.commands(), QByteArrayList{"GCA;"});
    QCOMPARE(pair.partner.controller.commands(), multiplexCommands() + targetCommands());
    QCOMPARE(pair.isThere, (Flags{true, true}));
}

void TestGrouping::overlaidPartnerHasThePositionsAsTargets()
{
    Pair pair;
    QVERIFY(pair.connect());
    QCOMPARE(pair.overlay(), Overlay::Applied);
    const emulator::StageState stage1 = pair.partner.controller.stage(1);
    const emulator::StageState stage2 = pair.partner.controller.stage(2);
    QCOMPARE(stage1.adjustInXMv, -1000);
    QCOMPARE(stage1.adjustInYMv, 250);
    QCOMPARE(stage2.adjustInXMv, -5000);
    QCOMPARE(stage2.adjustInYMv, 0x3B);
    QVERIFY(stage1.multiplexed && stage2.multiplexed);
}

void TestGrouping::partnerOnTheCommonPathIsNotLedThere()
{
    Pair pair;
    QVERIFY(pair.connect());
    pair.isThere = {true, true};
    QCOMPARE(pair.overlay(), Overlay::Applied);
    QCOMPARE(pair.partner.controller.commands(), targetCommands());
}

void TestGrouping::partnerWithOneStageOnTheCommonPathIsLedThereWithBoth_data()
{
    QTest::addColumn<Flags>("before");
    QTest::newRow("stage 1 is there") << Flags{true, false};
    QTest::newRow("stage 2 is there") << Flags{false, true};
}

void TestGrouping::partnerWithOneStageOnTheCommonPathIsLedThereWithBoth()
{
    QFETCH(Flags, before);
    Pair pair;
    QVERIFY(pair.connect());
    pair.isThere = before;
    QCOMPARE(pair.overlay(), Overlay::Applied);
    QCOMPARE(pair.partner.controller.commands(), multiplexCommands() + targetCommands());
    QCOMPARE(pair.isThere, (Flags{true, true}));
}

void TestGrouping::stageOnTheCommonPathStaysNotedWhenItRefuses()
{
    Pair pair;
    QVERIFY(pair.connect());
    pair.isThere = {true, false};
    pair.partner.controller.setRules({on("SMD\1").refuse()});
    QCOMPARE(pair.overlay(), Overlay::Applied);
    QCOMPARE(pair.isThere, (Flags{true, true}));
    QCOMPARE(pair.partner.controller.commands(), multiplexCommands() + targetCommands());
}

void TestGrouping::partnerThatDoesNotComeEndsTheOverlay_data()
{
    QTest::addColumn<Rule>("rule");
    QTest::addColumn<Flags>("isThere");
    for (const auto& [stage, isThere] : {std::pair{QByteArray("SMD\1"), Flags{false, true}},
                                         std::pair{QByteArray("SMD\2"), Flags{true, false}},
                                         std::pair{QByteArray("SMD"), Flags{false, false}}}) {
        const char* name = stage.endsWith('\1')   ? "stage 1"
                           : stage.endsWith('\2') ? "stage 2"
                                                  : "both";
        QTest::addRow("%s refused", name) << Rule(on(stage).refuse()) << isThere;
        QTest::addRow("%s silent", name) << Rule(on(stage).ignore()) << isThere;
        QTest::addRow("%s cut", name) << Rule(on(stage).cutTo(1)) << isThere;
    }
}

void TestGrouping::partnerThatDoesNotComeEndsTheOverlay()
{
    QFETCH(Rule, rule);
    Pair pair;
    QVERIFY(pair.connect({}));
    pair.partner.controller.setRules({rule});
    QCOMPARE(pair.overlay(), Overlay::PartnerSilent);
    QTEST(pair.isThere, "isThere");
    QCOMPARE(pair.partner.controller.commands(), multiplexCommands());
    QCOMPARE(pair.reference.controller.commands(), QByteArrayList());
}

void TestGrouping::missingPositionsEndTheOverlay_data()
{
    QTest::addColumn<Rule>("rule");
    QTest::newRow("refused") << Rule(on("GCA").refuse());
    QTest::newRow("silent") << Rule(on("GCA").ignore());
    QTest::newRow("status alone") << Rule(on("GCA").cutTo(2));
    // Only whole replies and those of two bytes come through an exchange.
    QTest::newRow("three bytes") << Rule(on("GCA").cutTo(3));
    QTest::newRow("all but one byte") << Rule(on("GCA").cutTo(10));
    QTest::newRow("values behind a refusal")
        << Rule(on("GCA").reply(bytes("013b00010002000300043b")));
}

void TestGrouping::missingPositionsEndTheOverlay()
{
    QFETCH(Rule, rule);
    Pair pair;
    QVERIFY(pair.connect({rule}));
    QCOMPARE(pair.overlay(), Overlay::ValuesMissing);
    QCOMPARE(pair.reference.controller.commands(), QByteArrayList{"GCA;"});
    QCOMPARE(pair.partner.controller.commands(), multiplexCommands());
    QCOMPARE(pair.isThere, (Flags{true, true}));
}

void TestGrouping::onlyTheFirstByteOfThePositionsIsJudged()
{
    Pair pair;
    QVERIFY(pair.connect({on("GCA").reply(bytes("00fffc1800faec78003bff"))}));
    QCOMPARE(pair.overlay(), Overlay::Applied);
    QCOMPARE(pair.partner.controller.commands(), multiplexCommands() + targetCommands());
}

void TestGrouping::targetThatIsNotTakenEndsTheOverlay_data()
{
    QTest::addColumn<int>("sent");
    QTest::addColumn<Rule>("rule");
    const QByteArrayList targets{"SAI\1x", "SAI\1y", "SAI\2x", "SAI\2y"};
    for (int i = 0; i < targets.size(); ++i) {
        const char* stage = i < 2 ? "stage 1" : "stage 2";
        const char axis = targets[i].back();
        QTest::addRow("%c of %s refused", axis, stage) << i + 1 << Rule(on(targets[i]).refuse());
        QTest::addRow("%c of %s silent", axis, stage) << i + 1 << Rule(on(targets[i]).ignore());
        QTest::addRow("%c of %s answered short", axis, stage)
            << i + 1 << Rule(on(targets[i]).reply(bytes("00")));
        // Here the second byte counts.
        QTest::addRow("%c of %s with a strange second byte", axis, stage)
            << i + 1 << Rule(on(targets[i]).reply(bytes("00ff")));
    }
}

void TestGrouping::targetThatIsNotTakenEndsTheOverlay()
{
    QFETCH(int, sent);
    QFETCH(Rule, rule);
    Pair pair;
    QVERIFY(pair.connect());
    pair.partner.controller.setRules({rule});
    QCOMPARE(pair.overlay(), Overlay::PartnerSilent);
    QCOMPARE(pair.partner.controller.commands(),
             multiplexCommands() + targetCommands().mid(0, sent));
    // Those before it stay.
    const emulator::StageState stage1 = pair.partner.controller.stage(1);
    QCOMPARE(stage1.adjustInXMv, sent > 1 ? -1000 : 0);
    QCOMPARE(stage1.adjustInYMv, sent > 2 ? 250 : 0);
    QCOMPARE(pair.partner.controller.stage(2).adjustInXMv, sent > 3 ? -5000 : 0);
    QCOMPARE(pair.isThere, (Flags{true, true}));
}

QTEST_GUILESS_MAIN(TestGrouping)
#include "tst_grouping.moc"
