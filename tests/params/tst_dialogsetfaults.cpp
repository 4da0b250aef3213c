// Apply in the parameter dialog while the controller refuses, ignores or answers short each of its
// commands in turn: which source the form falls back to, and what is told.

#include "faultbench.h"

#include <QtTest>

using emulator::Rule;

namespace {

constexpr char apply[] = "pushButtonApply";

/// A command of Apply.
struct Setting
{
    const char* name;
    QByteArray command;
    /// What is told if a value is not taken.
    QString failure;
    /// What the form then shows in place of what the user has wished.
    Form fallback;
    /// The place of the command that goes external with it, if any.
    int companion = -1;
};

/// What the user wishes: nothing that the controller has.
Form wishes()
{
    return {{"AdjustX", "0.500"},
            {"AdjustY", "-0.500"},
            {"AdjustX_2", "1.000"},
            {"AdjustY_2", "-1.000"},
            {"PFactor", "2.00"},
            {"PFactor_2", "3.00"},
            {"sens_1", "1.00"},
            {"sens_2", "2.50"},
            {"SetHoldX", "0.250"},
            {"SetHoldY", "-0.001"},
            {"SetHoldX_2", "-4.000"},
            {"SetHoldY_2", "1.000"},
            {"PFactor source", "software"},
            {"PFactor source_2", "software"},
            {"Adjust source", "software"},
            {"Adjust source_2", "software"},
            {"sensitivity source", "software"},
            {"sensitivity source_2", "software"}};
}

QByteArrayList commandsOfWishes()
{
    return {QByteArray::fromHex("5350460107d03b"),   QByteArray::fromHex("535046020bb83b"),
            QByteArray::fromHex("5344530103e83b"),   QByteArray::fromHex("5344530209c43b"),
            QByteArray::fromHex("534149017801f43b"), QByteArray::fromHex("5341490179fe0c3b"),
            QByteArray::fromHex("534149027803e83b"), QByteArray::fromHex("5341490279fc183b")};
}

/// The same command for the external input.
QByteArray external(const QByteArray& command)
{
    const int valueAt = command.size() - 3;
    return command.left(valueAt) + QByteArray("\0\0;", 3);
}

const QVector<Setting>& settings()
{
    const Form pFactors{{"PFactor source", "external"}, {"PFactor source_2", "external"}};
    const Form adjust{{"Adjust source", "external"}};
    const Form adjust2{{"Adjust source_2", "external"}};
    static const QVector<Setting> all{
        {"SPF 1", "SPF\1", "P-Factor of stage 1 wasn't set!", pFactors, 1},
        {"SPF 2", "SPF\2", "P-Factor of stage 2 wasn't set!", pFactors},
        {"SDS 1",
         "SDS\1",
         "Sensitivity cable of detector 1 is not connected!",
         {{"sensitivity source", "external"}, {"sens_1", "0.00"}}},
        {"SDS 2",
         "SDS\2",
         "Sensitivity cable of detector 2 is not connected!",
         {{"sensitivity source_2", "external"}, {"sens_2", "0.00"}}},
        {"SAI 1x", "SAI\1x", "x-adjust value of stage 1 has not been accepted ", adjust, 5},
        {"SAI 1y", "SAI\1y", "y-adjust value of stage 1 has not been accepted ", adjust},
        {"SAI 2x", "SAI\2x", "x-adjust value of stage 2 has not been accepted ", adjust2, 7},
        {"SAI 2y", "SAI\2y", "y-adjust value of stage 2 has not been accepted ", adjust2},
    };
    return all;
}

/// Their replies have two bytes, so three are never too few.
QVector<Fault> faults(const QByteArray& command)
{
    return faultsOf(command).mid(0, 3);
}

QByteArrayList withStream(const QByteArrayList& commands)
{
    return QByteArrayList{"CLS;"} + commands + QByteArrayList{QByteArray("SLS\0\0\x01\x2c;", 8)};
}

QByteArrayList commandsWithout(const Setting& setting)
{
    QByteArrayList commands = commandsOfWishes();
    if (setting.companion >= 0)
        commands[setting.companion] = external(commands[setting.companion]);
    return commands;
}

Form formWithout(const Setting& setting)
{
    Form form = wishes();
    for (auto control = setting.fallback.cbegin(); control != setting.fallback.cend(); ++control)
        form[control.key()] = control.value();
    return form;
}

/// What the controller has of a stage, in the order in which it is set.
QVector<int> valuesOf(const FaultBench& bench, int number)
{
    const emulator::StageState stage = bench.bench.link.controller.stage(number);
    return {stage.pFactorMv, stage.sensitivityMv, stage.adjustInXMv, stage.adjustInYMv};
}

} // namespace

Q_DECLARE_METATYPE(Setting)

class TestDialogSetFaults : public QObject
{
    Q_OBJECT

private slots:
    void valueFallsBackUntilItIsTaken_data();
    void valueFallsBackUntilItIsTaken();
};

void TestDialogSetFaults::valueFallsBackUntilItIsTaken_data()
{
    QTest::addColumn<Setting>("setting");
    QTest::addColumn<Rule>("always");
    QTest::addColumn<Rule>("once");
    QTest::addColumn<bool>("streams");
    for (const Setting& setting : settings()) {
        for (Fault& fault : faults(setting.command)) {
            const Rule always = fault.rule;
            const Rule once = fault.rule.once();
            for (const bool streams : {false, true})
                QTest::addRow("%s %s, %s", setting.name, fault.name, streams ? "stream" : "quiet")
                    << setting << always << once << streams;
        }
    }
}

void TestDialogSetFaults::valueFallsBackUntilItIsTaken()
{
    QFETCH(Setting, setting);
    QFETCH(Rule, always);
    QFETCH(Rule, once);
    QFETCH(bool, streams);
    FaultBench faults;
    QVERIFY(streams ? faults.openStreaming() : faults.open());
    for (const Rule& rule : {always, once}) {
        faults.fill(wishes());
        QVERIFY(faults.clickUnder(rule, apply));
        const QByteArrayList commands = commandsWithout(setting);
        QCOMPARE(faults.bench.commands(), streams ? withStream(commands) : commands);
        QCOMPARE(faults.bench.failure(), setting.failure);
        QCOMPARE(faults.warnings(), QStringList{"warning: " + setting.failure});
        QCOMPARE(faults.difference(formWithout(setting)), QString());
        QVERIFY(streams ? faults.streams() : faults.isQuiet());
        QVERIFY(faults.hasButtons());
    }
    faults.fill(wishes());
    QVERIFY(faults.click(apply));
    QCOMPARE(faults.warnings(), QStringList());
    QCOMPARE(faults.difference(wishes()), QString());
    QCOMPARE(valuesOf(faults, 1), (QVector<int>{2000, 1000, 500, -500}));
    QCOMPARE(valuesOf(faults, 2), (QVector<int>{3000, 2500, 1000, -1000}));
    QVERIFY(streams ? faults.streams() : faults.isQuiet());
    QCOMPARE(faults.bench.streamErrors, 0);
    QVERIFY(faults.hasButtons());
}

QTEST_MAIN(TestDialogSetFaults)
#include "tst_dialogsetfaults.moc"
