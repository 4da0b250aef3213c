// Apply in the parameter dialog while the controller refuses, ignores or answers short each of its
// commands in turn: which source the form falls back to, and what is told.

#include "faultbench.h"

#include <QtTest>

using emulator::on;
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
    /// What is told if there is no reply to the choice of the external input.
    QString externalFailure = {};
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

QByteArrayList externalCommands()
{
    QByteArrayList commands;
    for (const QByteArray& command : commandsOfWishes())
        commands.append(external(command));
    return commands;
}

const QVector<Setting>& settings()
{
    const auto adjust = [](const char* name, const QByteArray& command, int companion) {
        const QString axis{QLatin1Char(command[4])};
        const QString stage = QString::number(int(command[3]));
        const QString failure =
            axis + "-adjust value of stage " + stage + " has not been accepted ";
        const QString source = stage == "1" ? "Adjust source" : "Adjust source_2";
        return Setting{name, command, failure, {{source, "external"}}, companion, failure};
    };
    const Form externalPFactors{{"PFactor source", "external"}, {"PFactor source_2", "external"}};
    static const QVector<Setting> all{
        {"P-factor 1", "SPF\1", "P-Factor of stage 1 wasn't set!", externalPFactors, 1,
         "P-Factor of stage 1 wasn't set external!"},
        {"P-factor 2", "SPF\2", "P-Factor of stage 2 wasn't set!", externalPFactors, -1,
         "P-Factor of stage 2 wasn't set external!"},
        {"sensitivity 1",
         "SDS\1",
         "Sensitivity cable of detector 1 is not connected!",
         {{"sensitivity source", "external"}, {"sens_1", "0.00"}}},
        {"sensitivity 2",
         "SDS\2",
         "Sensitivity cable of detector 2 is not connected!",
         {{"sensitivity source_2", "external"}, {"sens_2", "0.00"}}},
        adjust("x of stage 1", "SAI\1x", 5),
        adjust("y of stage 1", "SAI\1y", -1),
        adjust("x of stage 2", "SAI\2x", 7),
        adjust("y of stage 2", "SAI\2y", -1),
    };
    return all;
}

/// Their replies have two bytes.
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
    void valueThatIsNotTakenFallsBackAndTheOthersAreSet_data();
    void valueThatIsNotTakenFallsBackAndTheOthersAreSet();
    void valueThatIsNotTakenOnceIsSetTheNextTime_data();
    void valueThatIsNotTakenOnceIsSetTheNextTime();
    void externalInputThatIsNotTaken_data();
    void externalInputThatIsNotTaken();
};

void TestDialogSetFaults::valueThatIsNotTakenFallsBackAndTheOthersAreSet_data()
{
    QTest::addColumn<Setting>("setting");
    QTest::addColumn<Rule>("rule");
    QTest::addColumn<bool>("streams");
    for (const Setting& setting : settings()) {
        for (const Fault& fault : faults(setting.command)) {
            for (const bool streams : {false, true})
                QTest::addRow("%s %s, %s", setting.name, fault.name, streams ? "stream" : "quiet")
                    << setting << Rule(fault.rule) << streams;
        }
    }
}

void TestDialogSetFaults::valueThatIsNotTakenFallsBackAndTheOthersAreSet()
{
    QFETCH(Setting, setting);
    QFETCH(Rule, rule);
    QFETCH(bool, streams);
    FaultBench faults;
    QVERIFY(streams ? faults.openStreaming() : faults.open());
    faults.fill(wishes());
    QVERIFY(faults.clickUnder(rule, apply));
    const QByteArrayList commands = commandsWithout(setting);
    QCOMPARE(faults.bench.commands(), streams ? withStream(commands) : commands);
    QCOMPARE(faults.bench.failure(), setting.failure);
    QCOMPARE(faults.warnings(), QStringList{"warning: " + setting.failure});
    QCOMPARE(faults.difference(formWithout(setting)), QString());
    QVERIFY(streams ? faults.streams() : faults.isQuiet());
    QCOMPARE(faults.bench.streamErrors, 0);
    QVERIFY(faults.hasButtons());
}

void TestDialogSetFaults::valueThatIsNotTakenOnceIsSetTheNextTime_data()
{
    QTest::addColumn<Setting>("setting");
    QTest::addColumn<Rule>("rule");
    for (const Setting& setting : settings()) {
        for (Fault& fault : faults(setting.command))
            QTest::addRow("%s %s", setting.name, fault.name) << setting << Rule(fault.rule.once());
    }
}

void TestDialogSetFaults::valueThatIsNotTakenOnceIsSetTheNextTime()
{
    QFETCH(Setting, setting);
    QFETCH(Rule, rule);
    FaultBench faults;
    QVERIFY(faults.openStreaming());
    faults.fill(wishes());
    QVERIFY(faults.clickUnder(rule, apply));
    QCOMPARE(faults.warnings(), QStringList{"warning: " + setting.failure});
    QCOMPARE(faults.difference(formWithout(setting)), QString());
    QVERIFY(faults.streams());

    faults.fill(wishes());
    QVERIFY(faults.click(apply));
    QCOMPARE(faults.bench.commands(), withStream(commandsOfWishes()));
    QCOMPARE(faults.warnings(), QStringList());
    QCOMPARE(faults.difference(wishes()), QString());
    QCOMPARE(valuesOf(faults, 1), (QVector<int>{2000, 1000, 500, -500}));
    QCOMPARE(valuesOf(faults, 2), (QVector<int>{3000, 2500, 1000, -1000}));
    QVERIFY(faults.streams());
    QCOMPARE(faults.bench.streamErrors, 0);
    QVERIFY(faults.hasButtons());
}

void TestDialogSetFaults::externalInputThatIsNotTaken_data()
{
    QTest::addColumn<Rule>("rule");
    QTest::addColumn<QString>("failure");
    for (const Setting& setting : settings()) {
        for (const Fault& fault : faults(setting.command)) {
            // Of a P-factor only silence is told; of adjust-in every reply that is not good.
            const Rule rule = fault.rule;
            const bool isTold =
                rule.deed == emulator::Deed::Ignore || setting.command.startsWith("SAI");
            QTest::addRow("%s %s", setting.name, fault.name)
                << rule << (isTold ? setting.externalFailure : QString());
        }
    }
}

void TestDialogSetFaults::externalInputThatIsNotTaken()
{
    QFETCH(Rule, rule);
    QFETCH(QString, failure);
    FaultBench faults;
    QVERIFY(faults.open());
    Form form = wishes();
    for (QString& shown : form) {
        if (shown == "software")
            shown = "external";
    }
    faults.fill(form);
    QVERIFY(faults.clickUnder(rule, apply));
    QCOMPARE(faults.bench.commands(), externalCommands());
    QCOMPARE(faults.bench.failure(), failure);
    QCOMPARE(faults.warnings().join('\n'), failure.isNull() ? QString() : "warning: " + failure);
    QCOMPARE(faults.difference(form), QString());
    QVERIFY(faults.hasButtons());
}

QTEST_MAIN(TestDialogSetFaults)
#include "tst_dialogsetfaults.moc"
