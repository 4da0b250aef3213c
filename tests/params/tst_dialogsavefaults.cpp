// Save in the parameter dialog while the controller refuses, ignores or answers short the question
// who it is: nothing is stored, and the next Save works.

#include "app/switches.h"
#include "faultbench.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using emulator::on;
using emulator::Rule;

namespace {

constexpr char save[] = "pushButtonSave";

} // namespace

class TestDialogSaveFaults : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { home.reset(); }

    void nothingIsStoredUntilTheIdentityIsTold_data();
    void nothingIsStoredUntilTheIdentityIsTold();

private:
    bool hasFile() const { return QFile::exists(home->filePath("ConnectionSetup.xml")); }

    std::unique_ptr<QTemporaryDir> home;
};

void TestDialogSaveFaults::init()
{
    home = std::make_unique<QTemporaryDir>();
    switches::configDir = QDir(home->path());
}

void TestDialogSaveFaults::nothingIsStoredUntilTheIdentityIsTold_data()
{
    QTest::addColumn<Rule>("always");
    QTest::addColumn<Rule>("once");
    QTest::addColumn<bool>("streams");
    constexpr int wholeIdentity = 50;
    QVector<Fault> faults = faultsOf("GID");
    faults.append({"cut by a byte", on("GID").cutTo(wholeIdentity - 1)});
    for (Fault& fault : faults) {
        const Rule always = fault.rule;
        const Rule once = fault.rule.once();
        for (const bool streams : {false, true})
            QTest::addRow("%s, %s", fault.name, streams ? "stream" : "quiet")
                << always << once << streams;
    }
}

void TestDialogSaveFaults::nothingIsStoredUntilTheIdentityIsTold()
{
    QFETCH(Rule, always);
    QFETCH(Rule, once);
    QFETCH(bool, streams);
    FaultBench faults;
    QVERIFY(streams ? faults.openStreaming() : faults.open());
    for (const Rule& rule : {always, once}) {
        QVERIFY(faults.clickUnder(rule, save));
        QCOMPARE(faults.bench.failure(), QString("The settings were not saved."));
        QCOMPARE(faults.warnings(), QStringList{"warning: Detectors not saved: the controller did "
                                                "not say who it is"});
        QVERIFY(!hasFile());
        QCOMPARE(faults.difference(FaultBench::formOfController()), QString());
        QVERIFY(streams ? faults.streams() : faults.isQuiet());
        QVERIFY(faults.hasButtons());
    }
    QVERIFY(faults.click(save));
    QVERIFY(hasFile());
    QCOMPARE(faults.warnings(), QStringList());
    QVERIFY(streams ? faults.streams() : faults.isQuiet());
    QCOMPARE(faults.bench.streamErrors, 0);
    QVERIFY(faults.hasButtons());
}

QTEST_MAIN(TestDialogSaveFaults)
#include "tst_dialogsavefaults.moc"
