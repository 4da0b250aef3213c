// Apply in the parameter dialog with the external inputs chosen everywhere, while the controller
// refuses, ignores or answers short each command in turn: what counts as failure, and what not.

#include "faultbench.h"

#include <QtTest>

using emulator::on;
using emulator::Rule;

namespace {

Form externalForm()
{
    Form form = FaultBench::formOfController();
    for (QString& shown : form) {
        if (shown == "software")
            shown = "external";
    }
    return form;
}

QByteArrayList externalCommands()
{
    return {QByteArray::fromHex("5350460100003b"),   QByteArray::fromHex("5350460200003b"),
            QByteArray::fromHex("5344530100003b"),   QByteArray::fromHex("5344530200003b"),
            QByteArray::fromHex("534149017800003b"), QByteArray::fromHex("534149017900003b"),
            QByteArray::fromHex("534149027800003b"), QByteArray::fromHex("534149027900003b")};
}

/// Which of the ways to fail is told; the others are none.
enum class Told { Never, Silence, Always };

} // namespace

class TestDialogExternalFaults : public QObject
{
    Q_OBJECT

private slots:
    void commandThatFailsIsToldIfItCounts_data();
    void commandThatFailsIsToldIfItCounts();
};

void TestDialogExternalFaults::commandThatFailsIsToldIfItCounts_data()
{
    QTest::addColumn<Rule>("rule");
    QTest::addColumn<QString>("failure");
    const auto rows = [](const char* name, const QByteArray& command, Told told,
                         const QString& failure) {
        QTest::addRow("%s refused", name)
            << Rule(on(command).refuse()) << (told == Told::Always ? failure : QString());
        QTest::addRow("%s ignored", name)
            << Rule(on(command).ignore()) << (told != Told::Never ? failure : QString());
        QTest::addRow("%s cut to 1 byte", name)
            << Rule(on(command).cutTo(1)) << (told == Told::Always ? failure : QString());
    };
    rows("SPF 1", "SPF\1", Told::Silence, "P-Factor of stage 1 wasn't set external!");
    rows("SPF 2", "SPF\2", Told::Silence, "P-Factor of stage 2 wasn't set external!");
    rows("SDS 1", "SDS\1", Told::Never, {});
    rows("SDS 2", "SDS\2", Told::Never, {});
    rows("SAI 1x", "SAI\1x", Told::Always, "x-adjust value of stage 1 has not been accepted ");
    rows("SAI 1y", "SAI\1y", Told::Always, "y-adjust value of stage 1 has not been accepted ");
    rows("SAI 2x", "SAI\2x", Told::Always, "x-adjust value of stage 2 has not been accepted ");
    rows("SAI 2y", "SAI\2y", Told::Always, "y-adjust value of stage 2 has not been accepted ");
}

void TestDialogExternalFaults::commandThatFailsIsToldIfItCounts()
{
    QFETCH(Rule, rule);
    QFETCH(QString, failure);
    FaultBench faults;
    QVERIFY(faults.open());
    faults.fill(externalForm());
    QVERIFY(faults.clickUnder(rule, "pushButtonApply"));
    QCOMPARE(faults.bench.commands(), externalCommands());
    QCOMPARE(faults.bench.failure(), failure);
    QCOMPARE(faults.warnings().join('\n'), failure.isNull() ? QString() : "warning: " + failure);
    QCOMPARE(faults.difference(externalForm()), QString());
    QVERIFY(faults.hasButtons());
}

QTEST_MAIN(TestDialogExternalFaults)
#include "tst_dialogexternalfaults.moc"
