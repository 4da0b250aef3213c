// Each command of "Apply positions" in the parameter dialog fails: what is told and noted of it,
// and that both streams go on.

#include "overlayexpectations.h"
#include "support/bytes.h"

#include <QtTest>

using emulator::on;
using emulator::Rule;
using Flags = std::array<bool, 2>;

Q_DECLARE_METATYPE(Flags)

namespace {

constexpr auto current = GroupBench::current;
constexpr auto partner = GroupBench::partner;

constexpr char align[] = "alignPushButton";

/// A command that fails, what is sent then, and what is told and noted of it.
struct Step
{
    const char* name;
    QByteArray command;
    /// Whether the positions were told before.
    bool tells;
    QByteArrayList sent;
    QString message;
    Flags after;
};

std::vector<Step> steps()
{
    const QByteArrayList both = multiplexCommands();
    const QByteArrayList all = both + overlayCommands();
    const Flags isThere{true, true};
    return {{"SMD of stage 1", "SMD\1", false, both, partnerSilent, {false, true}},
            {"SMD of stage 2", "SMD\2", false, both, partnerSilent, {true, false}},
            {"GCA", "GCA", false, all.mid(0, 3), valuesMissing, isThere},
            {"x of stage 1", "SAI\1x", true, all.mid(0, 4), partnerSilent, isThere},
            {"y of stage 1", "SAI\1y", true, all.mid(0, 5), partnerSilent, isThere},
            {"x of stage 2", "SAI\2x", true, all.mid(0, 6), partnerSilent, isThere},
            {"y of stage 2", "SAI\2y", true, all, partnerSilent, isThere}};
}

} // namespace

class TestOverlayFailures : public QObject
{
    Q_OBJECT

private slots:
    void failureIsToldAndTheStreamsGoOn_data();
    void failureIsToldAndTheStreamsGoOn();
    void positionsThatAreNoneAreMissing_data();
    void positionsThatAreNoneAreMissing();
    void partnerThatIsDownDoesNotRespond();
};

void TestOverlayFailures::failureIsToldAndTheStreamsGoOn_data()
{
    QTest::addColumn<QList<Rule>>("rulesOfCurrent");
    QTest::addColumn<QList<Rule>>("rulesOfPartner");
    QTest::addColumn<bool>("isPassing");
    QTest::addColumn<QByteArrayList>("sent");
    QTest::addColumn<QString>("message");
    QTest::addColumn<Flags>("after");
    for (const Step& step : steps()) {
        const bool failsAtCurrent = step.command == "GCA";
        for (const Failure& failure : failuresOf(step.command)) {
            const bool isPassing = failure.rule.times == 1;
            QList<Rule> ofCurrent;
            if (failsAtCurrent)
                ofCurrent.append(failure.rule);
            if (step.tells || isPassing)
                ofCurrent.append(tellPositions());
            QList<Rule> ofPartner;
            if (!failsAtCurrent)
                ofPartner.append(failure.rule);
            QTest::addRow("%s %s", step.name, failure.name)
                << ofCurrent << ofPartner << isPassing << step.sent << step.message << step.after;
        }
    }
}

void TestOverlayFailures::failureIsToldAndTheStreamsGoOn()
{
    QFETCH(QList<Rule>, rulesOfCurrent);
    QFETCH(QList<Rule>, rulesOfPartner);
    QFETCH(bool, isPassing);
    QFETCH(QByteArrayList, sent);
    QFETCH(QString, message);
    QFETCH(Flags, after);
    GroupBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.startStreams());
    bench.controller(current).setRules(rulesOfCurrent);
    bench.controller(partner).setRules(rulesOfPartner);
    QVERIFY(bench.clickImpatiently(align));
    QCOMPARE(bench.failure(), message);
    QCOMPARE(bench.heard(), stops() + sent + starts());
    QCOMPARE(bench.states[partner].isOnCommonPath, after);
    QCOMPARE(bench.states[current].isOnCommonPath, (Flags{false, false}));
    QVERIFY(bench.isStreaming(current) && bench.isStreaming(partner));
    QCOMPARE(bench.streamErrors, 0);
    QVERIFY(bench.areGroupButtonsEnabled());
    if (!isPassing)
        return;
    // What failed once works at the next click.
    bench.closeFailure();
    QVERIFY(bench.click(align));
    QVERIFY(bench.failure().isNull());
    QCOMPARE(bench.controller(partner).stage(2).adjustInYMv, 0x3B);
    QCOMPARE(bench.states[partner].isOnCommonPath, (Flags{true, true}));
    QVERIFY(bench.isStreaming(current) && bench.isStreaming(partner));
}

void TestOverlayFailures::positionsThatAreNoneAreMissing_data()
{
    QTest::addColumn<Rule>("rule");
    QTest::newRow("status alone") << Rule(on("GCA").cutTo(2));
    // What is longer than a status and not whole is dropped by the exchange.
    QTest::newRow("three bytes") << Rule(on("GCA").cutTo(3));
    QTest::newRow("ten bytes") << Rule(on("GCA").cutTo(10));
    QTest::newRow("behind a refusal") << Rule(on("GCA").reply(bytes("013bfc1800faec78003b3b")));
}

void TestOverlayFailures::positionsThatAreNoneAreMissing()
{
    QFETCH(Rule, rule);
    GroupBench bench;
    QVERIFY(bench.open());
    bench.controller(current).setRules({rule});
    QVERIFY(bench.clickImpatiently(align));
    QCOMPARE(bench.failure(), valuesMissing);
    QCOMPARE(bench.heard(), multiplexCommands() + overlayCommands().mid(0, 1));
    QVERIFY(bench.areGroupButtonsEnabled());
}

void TestOverlayFailures::partnerThatIsDownDoesNotRespond()
{
    GroupBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.startStream(current));
    // The window has not asked for its status since.
    bench.links[partner].client.disconnectController();
    QVERIFY(bench.click(align));
    QCOMPARE(bench.failure(), partnerSilent);
    QCOMPARE(bench.heard(), stops().mid(0, 1) + starts().mid(0, 1));
    QCOMPARE(bench.states[partner].isOnCommonPath, (Flags{false, false}));
    QCOMPARE(bench.streamErrors, 0);
    QVERIFY(bench.areGroupButtonsEnabled());
}

QTEST_MAIN(TestOverlayFailures)
#include "tst_overlayfailures.moc"
