// What controllers are told before their connections are closed. Most are scripts in memory.

#include "support/emulatedlink.h"
#include "systemsbench.h"
#include "window/farewell.h"

#include <QtTest>

#include <list>

namespace {

using Link = SystemsBench::Link;
using Mnemonics = QList<QByteArray>;

/// A stop that no stream answers takes one and a half of this.
constexpr int shortTimeoutMs = 60;

} // namespace

class TestFarewell final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench = std::make_unique<SystemsBench>(); }
    void cleanup() { bench.reset(); }

    void aControllerIsStoppedAsOftenAsNeeded_data();
    void aControllerIsStoppedAsOftenAsNeeded();
    void allAreStoppedBeforeTheFirstIsClosed();
    void aDismissedSystemIsNotStoppedAgain();
    void whatIsNotRegisteredIsLeftOut();
    void aSystemWithoutALinkIsToldNothing();
    void aHiddenSystemIsToldNothing();
    void aHiddenSystemThatStillStreamsIsStoppedOnce();
    void anUnansweredPollHoldsOnlyItsOwnSystemUp();
    void systemsWithOneAddressAreStoppedInTurn();

private:
    ScriptedConnection& addIdle(const QString& address)
    {
        ScriptedConnection& connection = bench->add(Link::Running, address);
        connection.setTimeoutMs(shortTimeoutMs);
        return connection;
    }
    LiveSystems& systems() const { return bench->systems; }

    std::unique_ptr<SystemsBench> bench;
};

void TestFarewell::aControllerIsStoppedAsOftenAsNeeded_data()
{
    QTest::addColumn<bool>("streams");
    QTest::addColumn<bool>("answers");
    QTest::addColumn<bool>("isShown");
    QTest::addColumn<bool>("showsCommon");
    QTest::addColumn<int>("stops");
    QTest::newRow("shown, idle") << false << true << true << false << 1;
    QTest::newRow("shown, idle, silent") << false << false << true << false << 2;
    QTest::newRow("shown, streaming") << true << true << true << false << 1;
    // Once for leaving the plots and once for closing, and each is repeated.
    QTest::newRow("shown, streaming, silent") << true << false << true << false << 4;
    QTest::newRow("hidden, idle") << false << true << false << false << 0;
    QTest::newRow("common, idle") << false << true << false << true << 0;
    QTest::newRow("common, streaming") << true << true << false << true << 1;
    QTest::newRow("common, streaming, silent") << true << false << false << true << 4;
    QTest::newRow("both, idle") << false << true << true << true << 1;
    QTest::newRow("both, streaming") << true << true << true << true << 1;
}

void TestFarewell::aControllerIsStoppedAsOftenAsNeeded()
{
    QFETCH(bool, streams);
    QFETCH(bool, answers);
    QFETCH(bool, isShown);
    QFETCH(bool, showsCommon);
    QFETCH(int, stops);
    ScriptedConnection& connection = streams ? bench->addStreaming() : addIdle("ttyUSB0");
    connection.setTimeoutMs(shortTimeoutMs);
    if (showsCommon)
        systems().showCommon(&connection, true);
    if (!isShown) {
        // With a common detector on the plots hiding does not stop the stream.
        systems().show(&connection, false);
        QCOMPARE(connection.isStreaming(), streams);
    }
    if (!answers)
        connection.controller().stayQuiet("CLS");
    connection.controller().forgetMessages();
    systems().dismiss({&connection});
    QCOMPARE(connection.controller().mnemonics().count("CLS"), stops);
    QCOMPARE(connection.controller().mnemonics().size(), stops);

    // As closing alone tells it.
    int toldAtTheEnd = -1;
    connect(&systems(), &LiveSystems::closed, this,
            [&] { toldAtTheEnd = connection.controller().mnemonics().size(); });
    QVERIFY(systems().close(&connection));
    QCOMPARE(toldAtTheEnd, stops);
}

void TestFarewell::allAreStoppedBeforeTheFirstIsClosed()
{
    const QList<const Connection*> closing{&addIdle("ttyUSB0"), &addIdle("ttyUSB1"),
                                           &addIdle("ttyUSB2")};
    systems().dismiss(closing);
    for (int i = 0; i < closing.size(); ++i) {
        QCOMPARE(bench->connection(i).controller().mnemonics(), Mnemonics{"CLS"});
        QVERIFY(bench->connection(i).isRunning());
        QVERIFY(bench->connection(i).isSettled());
    }
    QCOMPARE(systems().displayed(), QList<int>({0, 1, 2}));
}

void TestFarewell::aDismissedSystemIsNotStoppedAgain()
{
    ScriptedConnection& connection = addIdle("ttyUSB0");
    systems().dismiss({&connection});
    systems().dismiss({&connection});
    QCOMPARE(connection.controller().mnemonics(), Mnemonics{"CLS"});
}

void TestFarewell::whatIsNotRegisteredIsLeftOut()
{
    const ScriptedConnection stranger;
    ScriptedConnection& connection = addIdle("ttyUSB0");
    systems().dismiss({&stranger, nullptr, &connection});
    QCOMPARE(connection.controller().mnemonics(), Mnemonics{"CLS"});
}

void TestFarewell::aSystemWithoutALinkIsToldNothing()
{
    ScriptedConnection& connection = bench->add(Link::Down);
    systems().dismiss({&connection});
    QCOMPARE(connection.controller().mnemonics(), Mnemonics());
}

void TestFarewell::aHiddenSystemIsToldNothing()
{
    ScriptedConnection& connection = addIdle("ttyUSB0");
    systems().show(&connection, false);
    connection.controller().forgetMessages();
    systems().dismiss({&connection});
    QCOMPARE(connection.controller().mnemonics(), Mnemonics());
}

void TestFarewell::aHiddenSystemThatStillStreamsIsStoppedOnce()
{
    ScriptedConnection& connection = bench->addStreaming();
    connection.setTimeoutMs(shortTimeoutMs);
    connection.controller().stayQuiet("CLS");
    systems().show(&connection, false);
    QVERIFY(connection.isStreaming());
    connection.controller().forgetMessages();
    systems().dismiss({&connection});
    // It is repeated, as nothing answers.
    QCOMPARE(connection.controller().mnemonics(), Mnemonics({"CLS", "CLS"}));
}

void TestFarewell::anUnansweredPollHoldsOnlyItsOwnSystemUp()
{
    ScriptedConnection& silent = addIdle("ttyUSB0");
    ScriptedConnection& other = addIdle("ttyUSB1");
    silent.setTimeoutMs(Connection::defaultTimeoutMs);
    silent.controller().stayQuiet("GSF");
    silent.pollStatus();
    QTRY_COMPARE(silent.controller().mnemonics(), Mnemonics{"GSF"});
    Farewell held(silent, true);
    Farewell free(other, true);
    QVERIFY(!held.advance());
    QVERIFY(!free.advance());
    QTRY_COMPARE(other.controller().mnemonics(), Mnemonics{"CLS"});
    QCOMPARE(silent.controller().mnemonics(), Mnemonics{"GSF"});
    QVERIFY(!held.advance());
    finish(free, other);
    QCOMPARE(silent.controller().mnemonics(), Mnemonics{"GSF"});
}

void TestFarewell::systemsWithOneAddressAreStoppedInTurn()
{
    EmulatedLink first;
    EmulatedLink second;
    QVERIFY(first.connect() && second.connect());
    QCOMPARE(first.client.address(), second.client.address());
    std::list<Farewell> farewells;
    farewells.emplace_back(first.client, true);
    farewells.emplace_back(second.client, true);
    sayFarewell(std::move(farewells));
    QCOMPARE(first.controller.commands(), QByteArrayList{"CLS;"});
    QCOMPARE(second.controller.commands(), QByteArrayList{"CLS;"});
    // How long a stop that no stream answers is waited for.
    constexpr qint64 waitNs = EmulatedLink::shortTimeoutMs * 3LL / 2 * 1000000;
    const qint64 firstNs = first.controller.wire().first().timeNs;
    QVERIFY(second.controller.wire().first().timeNs - firstNs >= waitNs);
}

QTEST_GUILESS_MAIN(TestFarewell)
#include "tst_farewell.moc"
