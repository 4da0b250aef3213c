// The stop of a running stream before each exchange of the parameter dialog, and its start behind
// it, while the controller refuses, ignores or answers them short: of Refresh, Apply and Save.

#include "app/switches.h"
#include "faultbench.h"

#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using emulator::ControllerOptions;
using emulator::on;
using emulator::Rule;

namespace {

/// An exchange that a button begins.
struct DialogExchange
{
    const char* name;
    QString button;
    QByteArray firstCommand;
    // If no command gets through: what the box and the log say, and what the form then shows in
    // place of what the controller has.
    QString failure;
    QStringList warnings;
    Form form;
};

QString notRead()
{
    return "warning: Not read from \"127.0.0.1\" (missing values are shown as 0): \""
           + namesOf(questions()) + '"';
}

/// Behind a P-factor that failed, the other one is set external.
QStringList notApplied()
{
    return {"warning: P-Factor of stage 1 wasn't set!",
            "warning: P-Factor of stage 2 wasn't set external!",
            "warning: Sensitivity cable of detector 1 is not connected!",
            "warning: Sensitivity cable of detector 2 is not connected!",
            "warning: x-adjust value of stage 1 has not been accepted ",
            "warning: y-adjust value of stage 1 has not been accepted ",
            "warning: x-adjust value of stage 2 has not been accepted ",
            "warning: y-adjust value of stage 2 has not been accepted "};
}

Form formNotRead()
{
    Form form;
    for (const char* field : {"AdjustX", "AdjustY", "AdjustX_2", "AdjustY_2"})
        form[field] = "0.000";
    for (const char* field : {"PFactor", "PFactor_2"})
        form[field] = "0.01";
    for (const char* field : {"sens_1", "sens_2"})
        form[field] = "0.00";
    for (const char* source : {"sensitivity source", "sensitivity source_2"})
        form[source] = "external";
    return form;
}

Form formNotApplied()
{
    Form form{{"sens_1", "0.00"}, {"sens_2", "0.00"}};
    for (const char* source : {"PFactor source", "PFactor source_2", "Adjust source",
                               "Adjust source_2", "sensitivity source", "sensitivity source_2"})
        form[source] = "external";
    return form;
}

Form formOfController(const Form& exceptions)
{
    Form form = FaultBench::formOfController();
    for (auto control = exceptions.cbegin(); control != exceptions.cend(); ++control)
        form[control.key()] = control.value();
    return form;
}

const QVector<DialogExchange>& exchanges()
{
    static const QVector<DialogExchange> all{
        {"refresh", "pushButtonRefresh", "GSF;", {}, {notRead()}, formNotRead()},
        {"apply", "pushButtonApply", QByteArray::fromHex("5350460105dc3b"),
         "y-adjust value of stage 2 has not been accepted ", notApplied(), formNotApplied()},
        {"save",
         "pushButtonSave",
         "GID;",
         "The settings were not saved.",
         {"warning: Detectors not saved: the controller did not say who it is"},
         {}},
    };
    return all;
}

/// Rows of every exchange with each of these rules, in the columns "exchange" and "rule".
void addRows(const QVector<Fault>& faults)
{
    QTest::addColumn<DialogExchange>("exchange");
    QTest::addColumn<Rule>("rule");
    for (const DialogExchange& exchange : exchanges()) {
        for (const Fault& fault : faults)
            QTest::addRow("%s, %s", exchange.name, fault.name) << exchange << Rule(fault.rule);
    }
}

ControllerOptions oldController()
{
    ControllerOptions options;
    options.firmware = 10;
    return options;
}

} // namespace

Q_DECLARE_METATYPE(DialogExchange)

class TestDialogPauseFaults : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { home.reset(); }

    void stopThatFailsOnceIsRepeated_data();
    void stopThatFailsOnceIsRepeated();
    void streamThatDoesNotStopIsToldAndLetsNothingThrough_data();
    void streamThatDoesNotStopIsToldAndLetsNothingThrough();
    void stopOfOldFirmwareIsNotRepeated_data();
    void stopOfOldFirmwareIsNotRepeated();
    void streamThatDoesNotStartAgainIsTold_data();
    void streamThatDoesNotStartAgainIsTold();
    void silentStartHoldsEverythingBackUntilTheLinkIsMadeAgain_data();
    void silentStartHoldsEverythingBackUntilTheLinkIsMadeAgain();

private:
    std::unique_ptr<QTemporaryDir> home;
};

void TestDialogPauseFaults::init()
{
    home = std::make_unique<QTemporaryDir>();
    switches::configDir = QDir(home->path());
}

void TestDialogPauseFaults::stopThatFailsOnceIsRepeated_data()
{
    addRows({{"refused", on("CLS").refuse().once()}, {"ignored", on("CLS").ignore().once()}});
}

void TestDialogPauseFaults::stopThatFailsOnceIsRepeated()
{
    QFETCH(DialogExchange, exchange);
    QFETCH(Rule, rule);
    FaultBench faults;
    QVERIFY(faults.openStreaming());
    QVERIFY(faults.clickUnder(rule, exchange.button));
    QCOMPARE(faults.bench.commands().mid(0, 3),
             (QByteArrayList{"CLS;", "CLS;", exchange.firstCommand}));
    QCOMPARE(faults.warnings(), QStringList());
    QVERIFY(faults.bench.failure().isNull());
    QVERIFY(faults.streams());
    QCOMPARE(faults.bench.streamErrors, 0);
    QVERIFY(faults.hasButtons());
}

void TestDialogPauseFaults::streamThatDoesNotStopIsToldAndLetsNothingThrough_data()
{
    addRows({{"refused", on("CLS").refuse()}, {"ignored", on("CLS").ignore()}});
}

/// A running stream lets no command through, not even the one that starts it.
void TestDialogPauseFaults::streamThatDoesNotStopIsToldAndLetsNothingThrough()
{
    QFETCH(DialogExchange, exchange);
    QFETCH(Rule, rule);
    FaultBench faults;
    QVERIFY(faults.openStreaming());
    QVERIFY(faults.clickUnder(rule, exchange.button));
    QCOMPARE(faults.bench.commands(), (QByteArrayList{"CLS;", "CLS;"}));
    QCOMPARE(faults.warnings(), exchange.warnings);
    QCOMPARE(faults.bench.failure(), exchange.failure);
    QCOMPARE(faults.difference(formOfController(exchange.form)), QString());
    QCOMPARE(faults.bench.streamErrors, 1);
    QVERIFY(faults.streams());
    QVERIFY(faults.hasButtons());

    faults.bench.link.controller.setRules({});
    faults.fill(FaultBench::formOfController());
    QVERIFY(faults.click(exchange.button));
    QCOMPARE(faults.bench.commands().value(1), exchange.firstCommand);
    QCOMPARE(faults.warnings(), QStringList());
    QVERIFY(faults.streams());
    QCOMPARE(faults.bench.streamErrors, 1);
}

void TestDialogPauseFaults::stopOfOldFirmwareIsNotRepeated_data()
{
    addRows({{"refused once", on("CLS").refuse().once()},
             {"ignored once", on("CLS").ignore().once()},
             {"cut to 1 byte once", on("CLS").cutTo(1).once()}});
}

/// Its stop is looked for at the end of a wait, so that there always is a reply, which is empty.
void TestDialogPauseFaults::stopOfOldFirmwareIsNotRepeated()
{
    QFETCH(DialogExchange, exchange);
    QFETCH(Rule, rule);
    FaultBench faults(oldController());
    QVERIFY(faults.openStreaming());
    QVERIFY(faults.clickUnder(rule, exchange.button));
    QCOMPARE(faults.bench.commands(), QByteArrayList{"CLS;"});
    QCOMPARE(faults.bench.failure(), exchange.failure);
    QCOMPARE(faults.bench.streamErrors, 1);
    QVERIFY(faults.bench.link.client.isStreaming());
    QVERIFY(faults.hasButtons());

    QVERIFY(faults.click(exchange.button));
    QVERIFY(faults.streams());
    QCOMPARE(faults.bench.streamErrors, 1);
}

void TestDialogPauseFaults::streamThatDoesNotStartAgainIsTold_data()
{
    // Cut short, a start that is carried out runs into the packets behind it.
    const auto answer = [](int length) {
        return on("SLS").reply(QByteArray("\0;\0", 3).left(length));
    };
    addRows({{"refused", on("SLS").refuse()},
             {"refused once", on("SLS").refuse().once()},
             {"1 byte", answer(1)},
             {"1 byte once", answer(1).once()},
             {"3 bytes", answer(3)},
             {"3 bytes once", answer(3).once()}});
}

void TestDialogPauseFaults::streamThatDoesNotStartAgainIsTold()
{
    QFETCH(DialogExchange, exchange);
    QFETCH(Rule, rule);
    FaultBench faults;
    QVERIFY(faults.openStreaming());
    QVERIFY(faults.clickUnder(rule, exchange.button));
    QCOMPARE(faults.warnings(), QStringList());
    QVERIFY(faults.bench.failure().isNull());
    QCOMPARE(faults.bench.streamErrors, 1);
    QVERIFY(faults.isQuiet());
    QVERIFY(faults.hasButtons());

    // Now there is no stream to be started again.
    QVERIFY(faults.click(exchange.button));
    QCOMPARE(faults.bench.commands().value(0), exchange.firstCommand);
    QCOMPARE(faults.bench.link.controller.count("SLS"), 0);
    QCOMPARE(faults.warnings(), QStringList());
    QCOMPARE(faults.bench.streamErrors, 1);
}

void TestDialogPauseFaults::silentStartHoldsEverythingBackUntilTheLinkIsMadeAgain_data()
{
    addRows({{"ignored", on("SLS").ignore()}, {"ignored once", on("SLS").ignore().once()}});
}

/// Kept: a start that nothing answers is awaited for as long as the link is up, and holds back what
/// follows.
void TestDialogPauseFaults::silentStartHoldsEverythingBackUntilTheLinkIsMadeAgain()
{
    QFETCH(DialogExchange, exchange);
    QFETCH(Rule, rule);
    FaultBench faults;
    QVERIFY(faults.openStreaming());
    QVERIFY(faults.clickUnder(rule, exchange.button));
    QCOMPARE(faults.warnings(), QStringList());
    QCOMPARE(faults.bench.streamErrors, 1);
    QVERIFY(faults.hasButtons());

    QVERIFY(faults.click(exchange.button));
    QVERIFY(faults.bench.commands().isEmpty());
    QCOMPARE(faults.warnings(), exchange.warnings);
    QCOMPARE(faults.bench.failure(), exchange.failure);
    QCOMPARE(faults.difference(formOfController(exchange.form)), QString());
    QVERIFY(faults.hasButtons());

    QCOMPARE(faults.bench.link.client.disconnectController(), 1);
    QVERIFY(faults.bench.link.connect());
    faults.fill(FaultBench::formOfController());
    QVERIFY(faults.click(exchange.button));
    QCOMPARE(faults.bench.commands().value(0), exchange.firstCommand);
    QCOMPARE(faults.warnings(), QStringList());
    QCOMPARE(faults.difference(FaultBench::formOfController()), QString());
}

QTEST_MAIN(TestDialogPauseFaults)
#include "tst_dialogpausefaults.moc"
