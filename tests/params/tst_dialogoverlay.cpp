// "Apply positions" in the parameter dialog: the beams of the partner are brought onto those of the
// system on display, and both streams go on. tst_overlayfailures.cpp has what goes wrong between
// them.

#include "overlayexpectations.h"
#include "support/bytes.h"

#include <QDoubleSpinBox>
#include <QtTest>

using emulator::ControllerOptions;
using emulator::on;
using emulator::Rule;
using Flags = std::array<bool, 2>;

Q_DECLARE_METATYPE(Flags)

namespace {

constexpr auto current = GroupBench::current;
constexpr auto partner = GroupBench::partner;

constexpr char align[] = "alignPushButton";

} // namespace

class TestDialogOverlay : public QObject
{
    Q_OBJECT

private slots:
    void positionsBecomeTheTargetsOfThePartner();
    void successChangesNothingInTheForm();
    void positionsOfTheControllerGoToThePartner();
    void partnerOnTheCommonPathIsNotLedThere();
    void partnerWithOneStageOnTheCommonPathIsLedThereWithBoth_data();
    void partnerWithOneStageOnTheCommonPathIsLedThereWithBoth();
    void streamsGoOn_data();
    void streamsGoOn();
    void onlyARunningStreamIsStopped_data();
    void onlyARunningStreamIsStopped();
    void firstByteOfThePositionsIsEnough();
    void firstByteOfTheMultiplexersIsEnough();
    void streamThatDoesNotStartAgainIsTold_data();
    void streamThatDoesNotStartAgainIsTold();
    void streamThatDoesNotStopIsLeftAlone_data();
    void streamThatDoesNotStopIsLeftAlone();
};

void TestDialogOverlay::positionsBecomeTheTargetsOfThePartner()
{
    GroupBench bench;
    QVERIFY(bench.open());
    bench.controller(current).setRules({tellPositions()});
    QVERIFY(bench.click(align));
    QCOMPARE(bench.heard(), multiplexCommands() + overlayCommands());
    QCOMPARE(bench.states[partner].isOnCommonPath, (Flags{true, true}));
    QCOMPARE(bench.states[current].isOnCommonPath, (Flags{false, false}));
    QCOMPARE(bench.controller(partner).stage(1).adjustInXMv, -1000);
    QCOMPARE(bench.controller(partner).stage(1).adjustInYMv, 250);
    QCOMPARE(bench.controller(partner).stage(2).adjustInXMv, -5000);
    QCOMPARE(bench.controller(partner).stage(2).adjustInYMv, 0x3B);
    QVERIFY(bench.failure().isNull());
    QCOMPARE(bench.streamErrors, 0);
    QVERIFY(bench.areGroupButtonsEnabled());
}

void TestDialogOverlay::successChangesNothingInTheForm()
{
    GroupBench bench;
    QVERIFY(bench.open());
    const auto values = [&] {
        QStringList texts;
        for (const auto* field : bench.dialog.findChildren<QDoubleSpinBox*>())
            texts.append(field->text());
        return texts;
    };
    const QStringList before = values();
    bench.controller(current).setRules({tellPositions()});
    QVERIFY(bench.click(align));
    QCOMPARE(values(), before);
    QCOMPARE(bench.text("partnerLabel"), QString());
    QCOMPARE(bench.text("detectorLabel1"), QString("Subsystem"));
}

void TestDialogOverlay::positionsOfTheControllerGoToThePartner()
{
    ControllerOptions options;
    options.preset = emulator::Preset::Still;
    options.stages[0].offsetXUm = -12.0;
    options.stages[1].offsetYUm = 5.0;
    GroupBench bench(2, options);
    QVERIFY(bench.open());
    QVERIFY(bench.click(align));
    // Without a group a controller tells of its own detectors, by 50 mV for a micrometre.
    QCOMPARE(bench.controller(partner).stage(1).adjustInXMv, -600);
    QCOMPARE(bench.controller(partner).stage(1).adjustInYMv, 0);
    QCOMPARE(bench.controller(partner).stage(2).adjustInXMv, 0);
    QCOMPARE(bench.controller(partner).stage(2).adjustInYMv, 250);
}

void TestDialogOverlay::partnerOnTheCommonPathIsNotLedThere()
{
    GroupBench bench;
    bench.states[partner].isOnCommonPath = {true, true};
    QVERIFY(bench.open());
    bench.controller(current).setRules({tellPositions()});
    QVERIFY(bench.click(align));
    QCOMPARE(bench.heard(), overlayCommands());
    QCOMPARE(bench.states[partner].isOnCommonPath, (Flags{true, true}));
    QVERIFY(bench.failure().isNull());
}

void TestDialogOverlay::partnerWithOneStageOnTheCommonPathIsLedThereWithBoth_data()
{
    QTest::addColumn<Flags>("before");
    QTest::addColumn<QList<Rule>>("rules");
    const Flags first{true, false};
    const Flags second{false, true};
    QTest::newRow("stage 1 is there") << first << QList<Rule>{};
    QTest::newRow("stage 2 is there") << second << QList<Rule>{};
    // What refuses now has accepted before.
    QTest::newRow("stage 1 is there and refuses") << first << QList<Rule>{on("SMD\1").refuse()};
    QTest::newRow("stage 2 is there and refuses") << second << QList<Rule>{on("SMD\2").refuse()};
}

void TestDialogOverlay::partnerWithOneStageOnTheCommonPathIsLedThereWithBoth()
{
    QFETCH(Flags, before);
    QFETCH(QList<Rule>, rules);
    GroupBench bench;
    bench.states[partner].isOnCommonPath = before;
    QVERIFY(bench.open());
    bench.controller(current).setRules({tellPositions()});
    bench.controller(partner).setRules(rules);
    QVERIFY(bench.click(align));
    QCOMPARE(bench.heard(), multiplexCommands() + overlayCommands());
    QCOMPARE(bench.states[partner].isOnCommonPath, (Flags{true, true}));
    QVERIFY(bench.failure().isNull());
}

void TestDialogOverlay::streamsGoOn_data()
{
    addControllerKinds();
}

void TestDialogOverlay::streamsGoOn()
{
    QFETCH(ControllerKind, kind);
    GroupBench bench(2, kind.options);
    QVERIFY(bench.open());
    for (EmulatedLink& link : bench.links)
        link.client.setTriggerMode(kind.byTriggers);
    QVERIFY(bench.startStreams());
    bench.controller(current).setRules({tellPositions()});
    QVERIFY(bench.click(align));
    QCOMPARE(bench.heard(),
             stops() + multiplexCommands() + overlayCommands()
                 + (QByteArrayList{toCurrent(kind.start(GroupBench::rateHz(current))),
                                   toPartner(kind.start(GroupBench::rateHz(partner)))}));
    for (const std::size_t system : {current, partner})
        QVERIFY(bench.isStreaming(system));
    QCOMPARE(bench.streamErrors, 0);
    QVERIFY(bench.failure().isNull());
}

void TestDialogOverlay::onlyARunningStreamIsStopped_data()
{
    QTest::addColumn<std::size_t>("streaming");
    QTest::newRow("current") << current;
    QTest::newRow("partner") << partner;
}

void TestDialogOverlay::onlyARunningStreamIsStopped()
{
    QFETCH(std::size_t, streaming);
    GroupBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.startStream(streaming));
    bench.controller(current).setRules({tellPositions()});
    QVERIFY(bench.click(align));
    const int place = int(streaming);
    QCOMPARE(bench.heard(), stops().mid(place, 1) + multiplexCommands() + overlayCommands()
                                + starts().mid(place, 1));
    QVERIFY(bench.isStreaming(streaming));
    QVERIFY(!bench.controller(1 - streaming).isStreaming());
}

void TestDialogOverlay::firstByteOfThePositionsIsEnough()
{
    GroupBench bench;
    QVERIFY(bench.open());
    bench.controller(current).setRules({on("GCA").reply(bytes("00fffc1800faec78003bff"))});
    QVERIFY(bench.click(align));
    QCOMPARE(bench.heard(), multiplexCommands() + overlayCommands());
    QVERIFY(bench.failure().isNull());
}

void TestDialogOverlay::firstByteOfTheMultiplexersIsEnough()
{
    GroupBench bench;
    QVERIFY(bench.open());
    bench.controller(current).setRules({tellPositions()});
    bench.controller(partner).setRules({on("SMD").reply(bytes("00ff"))});
    QVERIFY(bench.click(align));
    QCOMPARE(bench.heard(), multiplexCommands() + overlayCommands());
    QCOMPARE(bench.states[partner].isOnCommonPath, (Flags{true, true}));
}

void TestDialogOverlay::streamThatDoesNotStartAgainIsTold_data()
{
    QTest::addColumn<QList<Rule>>("rules");
    QTest::addColumn<int>("ofCurrent");
    QTest::addColumn<int>("ofPartner");
    for (const Failure& failure : failuresOf("SLS")) {
        const QList<Rule> rules{failure.rule};
        QTest::addRow("current %s", failure.name) << rules << 1 << 0;
        QTest::addRow("partner %s", failure.name) << rules << 0 << 1;
    }
    QTest::newRow("both refused") << QList<Rule>{on("SLS").refuse()} << 1 << 1;
}

void TestDialogOverlay::streamThatDoesNotStartAgainIsTold()
{
    QFETCH(QList<Rule>, rules);
    QFETCH(int, ofCurrent);
    QFETCH(int, ofPartner);
    GroupBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.startStreams());
    bench.controller(current).setRules(QList<Rule>{tellPositions()} + rules.mid(0, ofCurrent));
    bench.controller(partner).setRules(rules.mid(0, ofPartner));
    QVERIFY(bench.clickImpatiently(align));
    QCOMPARE(bench.streamErrors, ofCurrent + ofPartner);
    QCOMPARE(bench.heard(), stops() + multiplexCommands() + overlayCommands() + starts());
    QCOMPARE(bench.isStreaming(current), ofCurrent == 0);
    QCOMPARE(bench.isStreaming(partner), ofPartner == 0);
    QVERIFY(bench.failure().isNull());
    QVERIFY(bench.areGroupButtonsEnabled());
}

void TestDialogOverlay::streamThatDoesNotStopIsLeftAlone_data()
{
    QTest::addColumn<std::size_t>("system");
    QTest::addColumn<Rule>("rule");
    QTest::addColumn<QByteArrayList>("sent");
    QTest::addColumn<QString>("message");
    const QByteArrayList all = multiplexCommands() + overlayCommands();
    const auto rows = [&](std::size_t system, const QByteArrayList& sent, const QString& message) {
        const char* name = system == current ? "current" : "partner";
        const QByteArrayList again = stops().mid(int(system), 1);
        QTest::addRow("%s unanswered once", name)
            << system << Rule(on("CLS").ignore().once()) << all << QString();
        QTest::addRow("%s refused once", name)
            << system << Rule(on("CLS").refuse().once()) << all << QString();
        QTest::addRow("%s unanswered", name)
            << system << Rule(on("CLS").ignore()) << sent << message;
        QTest::addRow("%s refused", name) << system << Rule(on("CLS").refuse()) << sent << message;
    };
    rows(current, multiplexCommands(), valuesMissing);
    rows(partner, {}, partnerSilent);
}

void TestDialogOverlay::streamThatDoesNotStopIsLeftAlone()
{
    QFETCH(std::size_t, system);
    QFETCH(Rule, rule);
    QFETCH(QByteArrayList, sent);
    QFETCH(QString, message);
    const bool stopsAtLast = message.isNull();
    GroupBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.startStreams());
    if (stopsAtLast)
        bench.controller(current).setRules({tellPositions()});
    bench.controller(system).addRule(rule);
    QVERIFY(bench.clickImpatiently(align));
    QCOMPARE(bench.failure(), message);
    QByteArrayList stopping = stops();
    stopping.insert(int(system), stops()[int(system)]);
    QByteArrayList starting = starts();
    // A stream that still runs takes no start.
    if (!stopsAtLast)
        starting.removeAt(int(system));
    QCOMPARE(bench.heard(), stopping + sent + starting);
    QCOMPARE(bench.streamErrors, stopsAtLast ? 0 : 1);
    QVERIFY(bench.isStreaming(current) && bench.isStreaming(partner));
    QVERIFY(bench.areGroupButtonsEnabled());
}

QTEST_MAIN(TestDialogOverlay)
#include "tst_dialogoverlay.moc"
