// Save in the parameter dialog: which detectors reach the setup file, and when none do.

#include "paramsbench.h"
#include "support/logcapture.h"

#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using emulator::on;
using emulator::Rule;

Q_DECLARE_METATYPE(emulator::Rule)

namespace {

constexpr char save[] = "pushButtonSave";
constexpr int rateHz = 300;
constexpr char notSaved[] = "The settings were not saved.";

} // namespace

class TestDialogSaving : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { home.reset(); }

    void savingAsksForTheIdentityOnly_data();
    void savingAsksForTheIdentityOnly();
    void runningStreamIsStartedAgain_data();
    void runningStreamIsStartedAgain();
    void whatWasAppliedIsSaved();
    void whatWasNotAppliedIsNotSaved();
    void otherRecordsAreKept();
    void recordsOfAnEarlierSaveAreForgotten();
    void controllerWithoutAnIdentityIsNotSaved_data();
    void controllerWithoutAnIdentityIsNotSaved();
    void systemThatIsDownIsNotSaved();

private:
    QString file() const { return home->filePath("ConnectionSetup.xml"); }
    ConnectionSettings stored(const ParamsBench& bench) const;

    std::unique_ptr<QTemporaryDir> home;
};

void TestDialogSaving::init()
{
    home = std::make_unique<QTemporaryDir>();
    switches::configDir = QDir(home->path());
}

/// What the file has of the bench's controller; without a known type if there is nothing.
ConnectionSettings TestDialogSaving::stored(const ParamsBench& bench) const
{
    Settings settings;
    ConnectionSettings record;
    record.id.set(bench.link.controller.id());
    record.model = {-1, -1};
    if (settings.read({}))
        settings.getDetectorData(record);
    return record;
}

void TestDialogSaving::savingAsksForTheIdentityOnly_data()
{
    addControllerKinds();
}

void TestDialogSaving::savingAsksForTheIdentityOnly()
{
    QFETCH(ControllerKind, kind);
    ParamsBench bench(kind.options, kind.record(1, 2));
    QVERIFY(bench.open());
    QVERIFY(bench.clickAndWait(save));
    QCOMPARE(bench.commands(), QByteArrayList{"GID;"});
    QVERIFY(bench.failure().isNull());
    QVERIFY(!bench.link.client.isStreaming());
    QCOMPARE(stored(bench).model, (std::array<int, 2>{1, 2}));
    QCOMPARE(stored(bench).pulsedLaser, kind.byTriggers);
}

void TestDialogSaving::runningStreamIsStartedAgain_data()
{
    addControllerKinds();
}

void TestDialogSaving::runningStreamIsStartedAgain()
{
    QFETCH(ControllerKind, kind);
    ParamsBench bench(kind.options, kind.record(1, 2));
    QVERIFY(bench.openStreaming(rateHz));
    QVERIFY(bench.clickAndWait(save));
    QCOMPARE(bench.commands(), (QByteArrayList{"CLS;", "GID;", kind.start(rateHz)}));
    QVERIFY(bench.streamsAgain(rateHz));
    QCOMPARE(bench.streamErrors, 0);
    QVERIFY(bench.failure().isNull());
    QCOMPARE(stored(bench).model, (std::array<int, 2>{1, 2}));
}

void TestDialogSaving::whatWasAppliedIsSaved()
{
    ConnectionSettings record = recordWithTypes(1, 4);
    record.beamDiameter = {12.5, 700};
    record.calculation = {1, 0};
    record.pulsedLaser = true;
    ParamsBench bench({}, record);
    QVERIFY(bench.open());
    QVERIFY(bench.clickAndWait(save));
    const ConnectionSettings saved = stored(bench);
    QCOMPARE(saved.model, record.model);
    QCOMPARE(saved.beamDiameter, record.beamDiameter);
    QCOMPARE(saved.calculation, record.calculation);
    QVERIFY(saved.pulsedLaser);
    QCOMPARE(saved.serial.text(), deviceKey(bench.link.controller.id()));
}

void TestDialogSaving::whatWasNotAppliedIsNotSaved()
{
    ParamsBench bench({}, recordWithTypes(1, 1));
    QVERIFY(bench.open());
    QVERIFY(bench.choose("comboBox_DetecType", 5));
    QVERIFY(bench.clickAndWait(save));
    QCOMPARE(stored(bench).model[0], 1);
    QVERIFY(bench.clickAndWait("pushButtonApply"));
    QCOMPARE(stored(bench).model[0], 1);
    QVERIFY(bench.clickAndWait(save));
    QCOMPARE(stored(bench).model[0], 5);
}

void TestDialogSaving::otherRecordsAreKept()
{
    ParamsBench first({}, recordWithTypes(1, 1));
    ParamsBench second({}, recordWithTypes(2, 2));
    QVERIFY(first.open() && second.open());
    QVERIFY(first.clickAndWait(save));
    QVERIFY(second.clickAndWait(save));
    QCOMPARE(stored(first).model[0], 1);
    QCOMPARE(stored(second).model[0], 2);
}

void TestDialogSaving::recordsOfAnEarlierSaveAreForgotten()
{
    ParamsBench bench;
    EmulatedLink other;
    QVERIFY(bench.open());
    QVERIFY(other.connectAndIdentify());
    bench.dialog.addDetectors(other.client, {});
    QVERIFY(bench.clickAndWait(save));
    QVERIFY(QFile::remove(file()));
    bench.dialog.openFor(&other.client);
    QTRY_VERIFY(bench.find<QPushButton>(save).isEnabled());
    QVERIFY(bench.clickAndWait(save));
    QCOMPARE(stored(bench).model[0], -1);
    bench.dialog.removeDetectors(&other.client);
}

void TestDialogSaving::controllerWithoutAnIdentityIsNotSaved_data()
{
    QTest::addColumn<Rule>("rule");
    QTest::newRow("refused") << Rule(on("GID").refuse());
    QTest::newRow("silent") << Rule(on("GID").ignore());
    QTest::newRow("cut") << Rule(on("GID").cutTo(49));
    QTest::newRow("another maker")
        << Rule(on("GID").reply(QByteArray("\0;Abc", 5) + QByteArray(44, 'x') + ';'));
    QTest::newRow("refused, with the maker's mark")
        << Rule(on("GID").reply(QByteArray("\1;Zev", 5) + QByteArray(44, 'x') + ';'));
    // 47 bytes that are two each as UTF-8 do not fit; a broken sequence becomes three.
    QTest::newRow("too long as text")
        << Rule(on("GID").reply(QByteArray("\0;Zev", 5) + QByteArray(44, '\xff') + ';'));
}

void TestDialogSaving::controllerWithoutAnIdentityIsNotSaved()
{
    QFETCH(Rule, rule);
    ParamsBench bench;
    QVERIFY(bench.openStreaming(rateHz));
    bench.link.controller.setRules({rule});
    const LogCapture log;
    QVERIFY(bench.clickAndWait(save));
    QCOMPARE(bench.failure(), QString(notSaved));
    QCOMPARE(log.lines().filter("warning: Detectors not saved").size(), 1);
    QVERIFY(!QFile::exists(file()));
    QVERIFY(bench.link.client.isStreaming());
}

void TestDialogSaving::systemThatIsDownIsNotSaved()
{
    ParamsBench bench;
    QVERIFY(bench.open());
    bench.link.client.disconnectController();
    QVERIFY(bench.click(save));
    QVERIFY(bench.failure().isNull());
    QVERIFY(!QFile::exists(file()));
}

QTEST_MAIN(TestDialogSaving)
#include "tst_dialogsaving.moc"
