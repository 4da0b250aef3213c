// The links of the registered systems: losses, disconnects, reconnects and what the controllers are
// told. The controllers are scripts in memory.

#include "link/streampause.h"
#include "systemsbench.h"

#include <QSignalSpy>
#include <QtTest>

Q_DECLARE_METATYPE(ReconnectResult)

namespace {

using Link = SystemsBench::Link;
using Mnemonics = QList<QByteArray>;

/// A stop that no stream answers takes one and a half of this.
constexpr int shortTimeoutMs = 60;

} // namespace

class TestLiveSystemsLinks final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench = std::make_unique<SystemsBench>(); }
    void cleanup() { bench.reset(); }

    void lossIsToldForTheMeantSystem_data();
    void lossIsToldForTheMeantSystem();
    void lossIsToldOnceToWhomDisconnects();
    void lossOfAClosedSystemIsNotTold();
    void lossOfADisconnectedSystemIsNotTold();
    void lossBeforeTheRegistrationIsTold();
    void hiddenSystemStopsItsStream();
    void closedSystemStopsItsStream();
    void closingAllStopsWhatStreams();
    void disconnectedSystemStaysRegistered();
    void labelGoesToTheMeantControllerPadded();
    void reconnectKeepsOnlyTheExpectedController_data();
    void reconnectKeepsOnlyTheExpectedController();
    void reconnectForgetsWhichDetectorsWereUsed();
    void reconnectOfOneLeavesTheOtherOfItsAddressAlone();

private:
    ScriptedConnection& addStreaming();
    LiveSystems& systems() const { return bench->systems; }

    std::unique_ptr<SystemsBench> bench;
};

ScriptedConnection& TestLiveSystemsLinks::addStreaming()
{
    ScriptedConnection& connection = bench->add(Link::Running);
    if (hasFailed(startStreamAtRate(connection, 100)) || !connection.isStreaming())
        qWarning("The stream does not start");
    connection.controller().forgetMessages();
    return connection;
}

void TestLiveSystemsLinks::lossIsToldForTheMeantSystem_data()
{
    QTest::addColumn<int>("meant");
    QTest::newRow("the first of one address") << 0;
    QTest::newRow("the second of one address") << 1;
}

void TestLiveSystemsLinks::lossIsToldForTheMeantSystem()
{
    QFETCH(int, meant);
    bench->add(Link::Running);
    bench->add(Link::Running);
    QList<const Connection*> lost;
    connect(&systems(), &LiveSystems::lost, this, [&](const Connection* connection) {
        lost.append(connection);
        systems().disconnectLink(connection);
    });
    bench->connection(meant).losePort();
    QCoreApplication::processEvents();
    QCOMPARE(lost, QList<const Connection*>{&bench->connection(meant)});
    QCOMPARE(systems().displayed(), QList<int>{1 - meant});
    QVERIFY(bench->connection(1 - meant).isRunning());
}

void TestLiveSystemsLinks::lossIsToldOnceToWhomDisconnects()
{
    ScriptedConnection& connection = bench->add(Link::Running);
    QSignalSpy lost(&systems(), &LiveSystems::lost);
    connect(&systems(), &LiveSystems::lost, &systems(), &LiveSystems::disconnectLink);
    connection.losePort();
    QCOMPARE(lost.count(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(lost.count(), 1);
    QCoreApplication::processEvents();
    QCOMPARE(lost.count(), 1);
}

void TestLiveSystemsLinks::lossOfAClosedSystemIsNotTold()
{
    ScriptedConnection& connection = bench->add(Link::Running);
    const QSignalSpy lost(&systems(), &LiveSystems::lost);
    connection.losePort();
    QVERIFY(systems().close(&connection));
    QCoreApplication::processEvents();
    QCOMPARE(lost.count(), 0);
}

void TestLiveSystemsLinks::lossOfADisconnectedSystemIsNotTold()
{
    ScriptedConnection& connection = bench->add(Link::Running);
    const QSignalSpy lost(&systems(), &LiveSystems::lost);
    connection.losePort();
    QVERIFY(systems().disconnectLink(&connection));
    QCoreApplication::processEvents();
    QCOMPARE(lost.count(), 0);
}

void TestLiveSystemsLinks::lossBeforeTheRegistrationIsTold()
{
    auto made = std::make_unique<ScriptedConnection>();
    ScriptedConnection& connection = *made;
    QVERIFY(connection.startAndWait());
    connection.losePort();
    const QSignalSpy lost(&systems(), &LiveSystems::lost);
    bench->detectors.emplace_back();
    systems().add(std::move(made), {}, bench->detectors.back());
    QCOMPARE(lost.count(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(lost.count(), 1);
}

void TestLiveSystemsLinks::hiddenSystemStopsItsStream()
{
    ScriptedConnection& hidden = addStreaming();
    ScriptedConnection& other = addStreaming();
    bool streamedWhenTold = true;
    connect(&systems(), &LiveSystems::hidden, this,
            [&] { streamedWhenTold = hidden.isStreaming(); });
    systems().show(&hidden, false);
    QVERIFY(!streamedWhenTold);
    QCOMPARE(hidden.controller().mnemonics(), Mnemonics{"CLS"});
    QVERIFY(other.isStreaming());
    QCOMPARE(other.controller().mnemonics(), Mnemonics());
}

void TestLiveSystemsLinks::closedSystemStopsItsStream()
{
    addStreaming();
    ScriptedConnection& closing = addStreaming();
    Mnemonics told;
    bool streamed = true;
    connect(&systems(), &LiveSystems::closed, this, [&] {
        told = closing.controller().mnemonics();
        streamed = closing.isStreaming();
    });
    QVERIFY(systems().close(&closing));
    QCOMPARE(told, Mnemonics{"CLS"});
    QVERIFY(!streamed);
    QVERIFY(bench->connection(0).isStreaming());
}

void TestLiveSystemsLinks::closingAllStopsWhatStreams()
{
    ScriptedConnection& streaming = addStreaming();
    ScriptedConnection& idle = bench->add(Link::Running);
    QList<Mnemonics> told;
    connect(&systems(), &LiveSystems::closed, this, [&](int index) {
        told.append((index == 0 ? streaming : idle).controller().mnemonics());
    });
    systems().closeAll();
    QCOMPARE(told, QList<Mnemonics>({{}, {"CLS"}}));
}

void TestLiveSystemsLinks::disconnectedSystemStaysRegistered()
{
    ScriptedConnection& connection = bench->add(Link::Running);
    QVERIFY(systems().disconnectLink(&connection));
    QVERIFY(!connection.isRunning());
    QVERIFY(!connection.isConnected());
    QCOMPARE(systems().indexOf(&connection), 0);
    QVERIFY(!systems().displayed().contains(0));
    // A port that is gone can not be written to.
    QCOMPARE(connection.controller().mnemonics(), Mnemonics());
}

void TestLiveSystemsLinks::labelGoesToTheMeantControllerPadded()
{
    bench->add(Link::Running);
    bench->add(Link::Running);
    systems().relabel(&bench->connection(1), QStringLiteral("north"));
    QCOMPARE(bench->connection(1).controller().messages(),
             QList<QByteArray>{"SLAnorth                    ;"});
    QCOMPARE(bench->connection(0).controller().messages(), QList<QByteArray>());
}

void TestLiveSystemsLinks::reconnectKeepsOnlyTheExpectedController_data()
{
    const QString answering = replies::idWithKey("AB000000001");
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<ReconnectResult>("result");
    QTest::addColumn<QString>("identification");

    const QByteArray reply = replies::identity("AB000000001");
    QTest::newRow("the expected one")
        << reply << answering << ReconnectResult::Reconnected << answering;
    QTest::newRow("any") << reply << QString() << ReconnectResult::Reconnected << answering;
    QTest::newRow("another one") << reply << replies::idWithKey("CD000000002")
                                 << ReconnectResult::OtherController << QString();
    QTest::newRow("no controller") << QByteArray(reply).replace("Zev", "Xyz") << QString()
                                   << ReconnectResult::NoController << QString();
}

void TestLiveSystemsLinks::reconnectKeepsOnlyTheExpectedController()
{
    QFETCH(QByteArray, reply);
    QFETCH(QString, expected);
    QFETCH(ReconnectResult, result);
    ScriptedConnection& connection = bench->add(Link::Down);
    connection.setTimeoutMs(shortTimeoutMs);
    connection.controller().answer("GID", reply);
    const QSignalSpy shown(&systems(), &LiveSystems::shown);
    const bool up = result == ReconnectResult::Reconnected;

    const Reconnection outcome = systems().reconnect(&connection, expected);
    QCOMPARE(outcome.result, result);
    QTEST(outcome.id, "identification");
    QCOMPARE(connection.isRunning(), up);
    QCOMPARE(connection.isConnected(), up);
    QCOMPARE(systems().displayed().contains(0), up);
    QCOMPARE(systems().at(0).status.statusValid, up);
    QCOMPARE(shown.count(), up ? 1 : 0);
}

void TestLiveSystemsLinks::reconnectForgetsWhichDetectorsWereUsed()
{
    ScriptedConnection& connection = bench->add(Link::Down);
    connection.setTimeoutMs(shortTimeoutMs);
    for (const Stage stage : bothStages)
        systems().noteCommonPath(&connection, stage, true);
    connection.controller().answer("GID", replies::identity("AB000000001"));
    QCOMPARE(systems().reconnect(&connection, {}).result, ReconnectResult::Reconnected);
    QVERIFY(!systems().at(0).status.multiplex1);
    QVERIFY(!systems().at(0).status.multiplex2);
}

void TestLiveSystemsLinks::reconnectOfOneLeavesTheOtherOfItsAddressAlone()
{
    ScriptedConnection& running = addStreaming();
    ScriptedConnection& connection = bench->add(Link::Down);
    connection.setTimeoutMs(shortTimeoutMs);
    connection.controller().answer("GID", replies::identity("AB000000001"));
    QCOMPARE(systems().reconnect(&connection, {}).result, ReconnectResult::Reconnected);
    QCOMPARE(systems().displayed(), QList<int>({0, 1}));
    QVERIFY(running.isStreaming());
    QCOMPARE(running.controller().mnemonics(), Mnemonics());
    QVERIFY(connection.controller().mnemonics().startsWith("CLS"));
    QCOMPARE(connection.controller().mnemonics().last(), QByteArray("GID"));
}

QTEST_GUILESS_MAIN(TestLiveSystemsLinks)
#include "tst_livesystemslinks.moc"
