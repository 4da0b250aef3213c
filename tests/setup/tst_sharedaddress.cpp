// Two systems with one address: two controllers that are used in turn on one port, or two ports of
// one host. Each of their lines has to act on its own connection.

#include "dialogbench.h"
#include "fakeconnection.h"
#include "flowtools.h"
#include "records.h"

#include <QCheckBox>
#include <QtTest>

using flowtools::buttonOf;
using records::file;
using records::labelsIn;
using records::quietSerial;
using records::quietTcp;
using widgettest::named;

namespace {

constexpr char sharedPort[] = "ttyUSB0";
const QString offersReconnect = QStringLiteral("Reconnect");
const QString offersDisconnect = QStringLiteral("Disconnect");

} // namespace

class TestSharedAddress final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aLabelGoesToTheSystemOfItsLine_data() { addCases(); }
    void aLabelGoesToTheSystemOfItsLine();
    void autoConnectIsStoredForTheSystemOfItsLine_data() { addCases(); }
    void autoConnectIsStoredForTheSystemOfItsLine();
    void reconnectBringsUpTheSystemOfItsLine_data();
    void reconnectBringsUpTheSystemOfItsLine();
    void disconnectEndsTheSystemOfItsLine_data();
    void disconnectEndsTheSystemOfItsLine();
    void aLostLinkShowsInItsOwnLine_data();
    void aLostLinkShowsInItsOwnLine();
    void deletingTakesTheSystemOfItsLine_data() { addCases(); }
    void deletingTakesTheSystemOfItsLine();
    void aSystemThatTheRegistryDeletesLaterIsGoneAtOnce();

    void anAddressMeansTheConnectedSystem_data();
    void anAddressMeansTheConnectedSystem();
    void systemsWithOneAddressAreSavedAndLoadedInTheirOrder();
    void aNewSystemInTheMemoryOfADeletedOneIsNotTakenForIt();

private:
    /// Rows of `up` (which are up) and `index` (which one is used).
    void addCases();
    /// Loads two systems with one address, of which some are up.
    void loadPair(const QList<int>& up);
    FakeConnection& connection(int index) const
    {
        return static_cast<FakeConnection&>(*bench->registry.connections.at(std::size_t(index)));
    }
    ConnectionWidget& line(int index) const { return *bench->serialLines().at(index); }
    QList<bool> autoConnectInFile() const;

    std::unique_ptr<DialogBench> bench;
};

void TestSharedAddress::init()
{
    bench = std::make_unique<DialogBench>();
    bench->dialog.setConnectionFactory(
        [](ConnectionType type) { return std::make_unique<FakeConnection>(type); });
}

void TestSharedAddress::cleanup()
{
    bench.reset();
    QVERIFY(widgettest::noWidgetIsLeft());
}

void TestSharedAddress::addCases()
{
    QTest::addColumn<QList<int>>("up");
    QTest::addColumn<int>("index");
    for (const int index : {0, 1}) {
        const char* which = index == 0 ? "upper" : "lower";
        QTest::addRow("both down, the %s one", which) << QList<int>{} << index;
        QTest::addRow("the upper up, the %s one", which) << QList<int>{0} << index;
        QTest::addRow("the lower up, the %s one", which) << QList<int>{1} << index;
        QTest::addRow("both up, the %s one", which) << QList<int>{0, 1} << index;
    }
}

void TestSharedAddress::loadPair(const QList<int>& up)
{
    bench->put(bench->defaultFile(), file({quietSerial("AB000000001", sharedPort, "a"),
                                           quietSerial("CD000000002", sharedPort, "b")}));
    bench->dialog.loadConnection(QString());
    for (const int index : up) {
        connection(index).comeUp();
        line(index).setConnected(true);
    }
}

/// As a save writes it.
QList<bool> TestSharedAddress::autoConnectInFile() const
{
    bench->child<QPushButton>("saveConnectionButton").click();
    QList<bool> stored;
    const auto content = setupdocument::read(bench->contentOf(bench->defaultFile()));
    for (const ConnectionSettings& record : content->records)
        stored.append(record.autoConnect);
    return stored;
}

void TestSharedAddress::aLabelGoesToTheSystemOfItsLine()
{
    QFETCH(QList<int>, up);
    QFETCH(int, index);
    loadPair(up);
    QTest::keyClicks(&named<QLineEdit>(line(index), "lineEdit"), "x");
    QCOMPARE(bench->registry.relabelled, QList<int>{index});
    QCOMPARE(connection(0).label(), QString(index == 0 ? "ax" : "a"));
    QCOMPARE(connection(1).label(), QString(index == 1 ? "bx" : "b"));
}

void TestSharedAddress::autoConnectIsStoredForTheSystemOfItsLine()
{
    QFETCH(QList<int>, up);
    QFETCH(int, index);
    loadPair(up);
    named<QCheckBox>(line(index), "checkBoxAutoConnect").click();
    QCOMPARE(autoConnectInFile(), QList<bool>({index == 0, index == 1}));
}

void TestSharedAddress::reconnectBringsUpTheSystemOfItsLine_data()
{
    QTest::addColumn<QList<int>>("up");
    QTest::addColumn<int>("index");
    QTest::newRow("both down, the upper one") << QList<int>{} << 0;
    QTest::newRow("both down, the lower one") << QList<int>{} << 1;
    QTest::newRow("the upper one while the lower runs") << QList<int>{1} << 0;
    QTest::newRow("the lower one while the upper runs") << QList<int>{0} << 1;
}

void TestSharedAddress::reconnectBringsUpTheSystemOfItsLine()
{
    QFETCH(QList<int>, up);
    QFETCH(int, index);
    loadPair(up);
    bench->registry.answeringId = line(index).number();
    named<QPushButton>(line(index), "Button").click();
    QCOMPARE(bench->registry.reconnected, QList<int>{index});
    QCOMPARE(buttonOf(line(index)), offersDisconnect);
    QCOMPARE(buttonOf(line(1 - index)), up.isEmpty() ? offersReconnect : offersDisconnect);
    QCOMPARE(bench->serialInfo(), QString());
}

void TestSharedAddress::disconnectEndsTheSystemOfItsLine_data()
{
    QTest::addColumn<int>("index");
    QTest::newRow("upper") << 0;
    QTest::newRow("lower") << 1;
}

void TestSharedAddress::disconnectEndsTheSystemOfItsLine()
{
    QFETCH(int, index);
    loadPair({0, 1});
    named<QPushButton>(line(index), "Button").click();
    QCOMPARE(bench->registry.disconnected, QList<int>{index});
    QCOMPARE(buttonOf(line(index)), offersReconnect);
    QCOMPARE(buttonOf(line(1 - index)), offersDisconnect);
}

void TestSharedAddress::aLostLinkShowsInItsOwnLine_data()
{
    QTest::addColumn<QList<int>>("up");
    QTest::addColumn<int>("lost");
    QTest::newRow("both up, the upper is lost") << QList<int>{0, 1} << 0;
    QTest::newRow("both up, the lower is lost") << QList<int>{0, 1} << 1;
    QTest::newRow("only the upper was up") << QList<int>{0} << 0;
    QTest::newRow("only the lower was up") << QList<int>{1} << 1;
}

void TestSharedAddress::aLostLinkShowsInItsOwnLine()
{
    QFETCH(QList<int>, up);
    QFETCH(int, lost);
    loadPair(up);
    bench->dialog.onLinkLost(&connection(lost));
    QCOMPARE(bench->registry.disconnected, QList<int>{lost});
    QCOMPARE(buttonOf(line(lost)), offersReconnect);
    QCOMPARE(buttonOf(line(1 - lost)), up.size() == 2 ? offersDisconnect : offersReconnect);
}

void TestSharedAddress::deletingTakesTheSystemOfItsLine()
{
    QFETCH(QList<int>, up);
    QFETCH(int, index);
    loadPair(up);
    const QString kept = index == 0 ? QStringLiteral("b") : QStringLiteral("a");
    named<QPushButton>(line(index), "deleteButton").click();
    QCOMPARE(bench->registry.connections.size(), std::size_t(1));
    QCOMPARE(connection(0).label(), kept);
    QCOMPARE(bench->serialLines().size(), 1);
    QCOMPARE(named<QLineEdit>(line(0), "lineEdit").text(), kept);
    bench->child<QPushButton>("saveConnectionButton").click();
    QCOMPARE(labelsIn(bench->contentOf(bench->defaultFile())), QStringList{kept});
}

void TestSharedAddress::aSystemThatTheRegistryDeletesLaterIsGoneAtOnce()
{
    loadPair({0, 1});
    bench->registry.keepsClosed = true;
    named<QPushButton>(line(1), "deleteButton").click();
    QCOMPARE(bench->registry.closedConnections.size(), std::size_t(1));
    QCOMPARE(bench->serialLines().size(), 1);
    QCOMPARE(line(0).number(), records::idWithKey("AB000000001"));
    bench->child<QPushButton>("saveConnectionButton").click();
    QCOMPARE(labelsIn(bench->contentOf(bench->defaultFile())), QStringList{"a"});
}

void TestSharedAddress::anAddressMeansTheConnectedSystem_data()
{
    QTest::addColumn<QList<int>>("up");
    QTest::addColumn<int>("meant");
    QTest::newRow("both down: the first") << QList<int>{} << 0;
    QTest::newRow("both up: the first") << QList<int>{0, 1} << 0;
    QTest::newRow("the upper up") << QList<int>{0} << 0;
    QTest::newRow("the lower up") << QList<int>{1} << 1;
}

void TestSharedAddress::anAddressMeansTheConnectedSystem()
{
    QFETCH(QList<int>, up);
    QFETCH(int, meant);
    loadPair(up);
    bench->dialog.on_WidgetDisconnect(sharedPort);
    QCOMPARE(bench->registry.disconnected, QList<int>{meant});
    QVERIFY(QMetaObject::invokeMethod(&bench->dialog, "on_WidgetReconnect",
                                      Q_ARG(QString, sharedPort)));
    QCOMPARE(bench->registry.reconnected, QList<int>{meant});
    QVERIFY(QMetaObject::invokeMethod(&bench->dialog, "autoConnectChanged",
                                      Q_ARG(QString, sharedPort), Q_ARG(bool, true)));
    QCOMPARE(autoConnectInFile(), QList<bool>({meant == 0, meant == 1}));
    bench->dialog.deleteConnectionSlot(sharedPort);
    QCOMPARE(connection(0).label(), QString(meant == 0 ? "b" : "a"));
}

void TestSharedAddress::systemsWithOneAddressAreSavedAndLoadedInTheirOrder()
{
    loadPair({1});
    bench->registry.order = {1, 0};
    bench->child<QPushButton>("saveConnectionButton").click();
    QCOMPARE(labelsIn(bench->contentOf(bench->defaultFile())), QStringList({"b", "a"}));

    bench->dialog.closeAllConnections();
    bench->dialog.loadConnection(QString());
    QCOMPARE(connection(0).label(), QStringLiteral("b"));
    QCOMPARE(connection(1).label(), QStringLiteral("a"));
    QCOMPARE(line(0).number(), records::idWithKey("CD000000002"));
    QCOMPARE(line(1).number(), records::idWithKey("AB000000001"));
}

void TestSharedAddress::aNewSystemInTheMemoryOfADeletedOneIsNotTakenForIt()
{
    loadPair({});
    // The dialog is not told: line and record of the deleted connection are still there.
    const void* const memory = bench->registry.connections.front().get();
    bench->registry.connections.erase(bench->registry.connections.begin());
    bench->put(bench->path("more.xml"), file({quietTcp("EF000000003", "127.0.0.79", "c")}));
    bench->dialog.loadConnection(bench->path("more.xml"));
    QCOMPARE(static_cast<const void*>(bench->registry.connections.back().get()), memory);
    named<QPushButton>(line(0), "Button").click();
    named<QPushButton>(line(0), "deleteButton").click();
    QVERIFY(bench->registry.reconnected.isEmpty());
    QCOMPARE(bench->registry.connections.size(), std::size_t(2));
    QCOMPARE(bench->tcpLines().size(), 1);
}

QTEST_MAIN(TestSharedAddress)
#include "tst_sharedaddress.moc"
