// Whose detectors the parameter dialog keeps, and on which system it stands.

#include "model/connectionsettings.h"
#include "params/paramsdialog.h"
#include "support/scriptedconnection.h"

#include <QtTest>

#include <deque>

namespace {

const QString address = QStringLiteral("ttyUSB0");
const QString otherAddress = QStringLiteral("ttyUSB1");

ConnectionSettings settingsWithDiameter(double diameterUm)
{
    ConnectionSettings settings;
    settings.beamDiameter[0] = diameterUm;
    return settings;
}

} // namespace

class TestParamsDialog final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench = std::make_unique<Bench>(); }
    void cleanup() { bench.reset(); }

    void detectorsAreThoseOfTheStoredRecord();
    void detectorsStayWhereTheyAreWhenOthersComeAndGo();
    void removedSystemClosesTheDialogThatStandsOnIt();
    void removalOfAnotherSystemLeavesTheDialogOpen();
    void removalOfASystemWithoutDetectorsDoesNothing();
    void dialogClosesWhenItsSystemIsDown();
    void dialogStaysWhileItsSystemIsConnected();
    void withoutASystemALostLinkClosesNothing();
    void removedSystemIsNotAskedForItsLink();
    void addressStandsForItsSystem();
    void ofTwoWithOneAddressTheFirstIsMeant_data();
    void ofTwoWithOneAddressTheFirstIsMeant();
    void unknownAddressKeepsTheSystem();
    void openingClosesAVisibleDialogFirst_data();
    void openingClosesAVisibleDialogFirst();
    void openDialogIsNotModal();
    void strangerIsNotOpened();

private:
    enum class Link { Down, Up };

    struct Bench
    {
        /// They have to live longer than their detectors.
        std::deque<ScriptedConnection> connections;
        ParamsDialog dialog{{[](const Connection&) { return SystemState(); },
                             [](const Connection&, Stage, bool) {}, [] { return 100; }},
                            nullptr};
    };

    ScriptedConnection& add(const QString& name = address, Link link = Link::Up);
    ParamsDialog& dialog() const { return bench->dialog; }
    /// Whether the dialog, shown now, is closed when the detectors of this connection go.
    bool standsOn(const Connection& connection) const;

    std::unique_ptr<Bench> bench;
};

ScriptedConnection& TestParamsDialog::add(const QString& name, Link link)
{
    ScriptedConnection& connection = bench->connections.emplace_back(name);
    if (link == Link::Up)
        connection.comeUp();
    dialog().addDetectors(connection, {});
    return connection;
}

bool TestParamsDialog::standsOn(const Connection& connection) const
{
    dialog().show();
    dialog().removeDetectors(&connection);
    return !dialog().isVisible();
}

void TestParamsDialog::detectorsAreThoseOfTheStoredRecord()
{
    ScriptedConnection connection;
    ConnectionSettings settings = settingsWithDiameter(1234.5);
    settings.pulsedLaser = true;
    const DetectorPair& detectors = dialog().addDetectors(connection, settings);
    QCOMPARE(detectors[0]->beamDiameter, 1234.5);
    QCOMPARE(detectors.pulsedLaser, 1);
}

void TestParamsDialog::detectorsStayWhereTheyAreWhenOthersComeAndGo()
{
    const Connection& before = add();
    ScriptedConnection watched;
    const DetectorPair& detectors = dialog().addDetectors(watched, settingsWithDiameter(1234.5));
    const Detector* stage = detectors[0];
    for (int i = 0; i < 100; ++i)
        add();
    dialog().removeDetectors(&before);
    for (const ScriptedConnection& other : bench->connections)
        dialog().removeDetectors(&other);
    QCOMPARE(detectors[0], stage);
    QCOMPARE(detectors[0]->beamDiameter, 1234.5);
    dialog().removeDetectors(&watched);
}

void TestParamsDialog::removedSystemClosesTheDialogThatStandsOnIt()
{
    add();
    const Connection& shown = add();
    dialog().openFor(&shown);
    QVERIFY(standsOn(shown));
}

void TestParamsDialog::removalOfAnotherSystemLeavesTheDialogOpen()
{
    const Connection& other = add();
    const Connection& shown = add();
    dialog().openFor(&shown);
    QVERIFY(!standsOn(other));
    QVERIFY(standsOn(shown));
}

void TestParamsDialog::removalOfASystemWithoutDetectorsDoesNothing()
{
    const ScriptedConnection stranger;
    const Connection& shown = add();
    dialog().openFor(&shown);
    QVERIFY(!standsOn(stranger));
    QVERIFY(standsOn(shown));
}

void TestParamsDialog::dialogClosesWhenItsSystemIsDown()
{
    dialog().openFor(&add(address, Link::Down));
    dialog().show();
    dialog().closeIfDisconnected();
    QVERIFY(!dialog().isVisible());
}

void TestParamsDialog::dialogStaysWhileItsSystemIsConnected()
{
    const Connection& shown = add(address, Link::Up);
    add(address, Link::Down);
    dialog().openFor(&shown);
    dialog().show();
    dialog().closeIfDisconnected();
    QVERIFY(dialog().isVisible());
}

void TestParamsDialog::withoutASystemALostLinkClosesNothing()
{
    add(address, Link::Down);
    dialog().show();
    dialog().closeIfDisconnected();
    QVERIFY(dialog().isVisible());
}

void TestParamsDialog::removedSystemIsNotAskedForItsLink()
{
    const Connection& gone = add(address, Link::Down);
    dialog().openFor(&gone);
    dialog().removeDetectors(&gone);
    dialog().show();
    dialog().closeIfDisconnected();
    QVERIFY(dialog().isVisible());
}

void TestParamsDialog::addressStandsForItsSystem()
{
    const Connection& other = add(address);
    const Connection& meant = add(otherAddress);
    dialog().openDialog(otherAddress);
    QVERIFY(!standsOn(other));
    QVERIFY(standsOn(meant));
}

void TestParamsDialog::ofTwoWithOneAddressTheFirstIsMeant_data()
{
    QTest::addColumn<bool>("firstIsUp");
    QTest::addColumn<bool>("secondIsUp");
    QTest::newRow("both up") << true << true;
    QTest::newRow("both down") << false << false;
    QTest::newRow("first up") << true << false;
    QTest::newRow("second up") << false << true;
}

void TestParamsDialog::ofTwoWithOneAddressTheFirstIsMeant()
{
    QFETCH(bool, firstIsUp);
    QFETCH(bool, secondIsUp);
    const Connection& first = add(address, firstIsUp ? Link::Up : Link::Down);
    const Connection& second = add(address, secondIsUp ? Link::Up : Link::Down);
    dialog().openDialog(address);
    QVERIFY(!standsOn(second));
    QVERIFY(standsOn(first));
}

void TestParamsDialog::unknownAddressKeepsTheSystem()
{
    const Connection& shown = add(address);
    dialog().openFor(&shown);
    dialog().openDialog(otherAddress);
    QVERIFY(standsOn(shown));
}

void TestParamsDialog::openingClosesAVisibleDialogFirst_data()
{
    QTest::addColumn<QString>("opened");
    QTest::addColumn<bool>("isOpenBehind");
    QTest::newRow("same address") << address << true;
    QTest::newRow("another address") << otherAddress << true;
    QTest::newRow("unknown address") << QStringLiteral("ttyUSB7") << false;
}

void TestParamsDialog::openingClosesAVisibleDialogFirst()
{
    QFETCH(QString, opened);
    add(address);
    add(otherAddress);
    dialog().openDialog(address);
    QVERIFY(dialog().isVisible());
    const QSignalSpy closed(&dialog(), &QDialog::finished);
    dialog().openDialog(opened);
    QCOMPARE(closed.count(), 1);
    QTEST(dialog().isVisible(), "isOpenBehind");
}

void TestParamsDialog::openDialogIsNotModal()
{
    dialog().openFor(&add());
    QVERIFY(!dialog().isModal());
    QCOMPARE(dialog().windowModality(), Qt::NonModal);
}

void TestParamsDialog::strangerIsNotOpened()
{
    const ScriptedConnection stranger;
    dialog().openFor(&stranger);
    QVERIFY(!dialog().isVisible());
}

QTEST_MAIN(TestParamsDialog)
#include "tst_paramsdialog.moc"
