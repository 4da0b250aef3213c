// Two systems with one address: what is meant for one of them reaches only that one.

#include "systemsbench.h"

#include <QColor>
#include <QSignalSpy>
#include <QtTest>

namespace {

using Link = SystemsBench::Link;

const QString sharedAddress = QStringLiteral("ttyUSB0");

} // namespace

class TestSharedAddress final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench = std::make_unique<SystemsBench>(); }
    void cleanup() { bench.reset(); }

    void ofTwoWithOneAddressTheConnectedOneIsFound_data();
    void ofTwoWithOneAddressTheConnectedOneIsFound();
    void hidingReachesOnlyTheMeantSystem_data() { addIndices(); }
    void hidingReachesOnlyTheMeantSystem();
    void showingReachesOnlyTheMeantSystem_data() { addIndices(); }
    void showingReachesOnlyTheMeantSystem();
    void closingReachesOnlyTheMeantSystem_data() { addIndices(); }
    void closingReachesOnlyTheMeantSystem();
    void colourReachesOnlyTheMeantSystem_data() { addIndices(); }
    void colourReachesOnlyTheMeantSystem();
    void labelAndGroupReachOnlyTheMeantSystem_data() { addIndices(); }
    void labelAndGroupReachOnlyTheMeantSystem();
    void unknownConnectionDoesNothing();

private:
    static void addIndices();
    void addPair(Link link = Link::Up);
    LiveSystems& systems() const { return bench->systems; }
    const Connection* connection(int index) const { return &bench->connection(index); }

    std::unique_ptr<SystemsBench> bench;
};

void TestSharedAddress::addIndices()
{
    QTest::addColumn<int>("meant");
    QTest::newRow("the first of one address") << 0;
    QTest::newRow("the second of one address") << 1;
}

void TestSharedAddress::addPair(Link link)
{
    bench->add(link, sharedAddress);
    bench->add(link, sharedAddress);
}

void TestSharedAddress::ofTwoWithOneAddressTheConnectedOneIsFound_data()
{
    QTest::addColumn<QList<int>>("up");
    QTest::addColumn<int>("found");
    QTest::newRow("none up: the first") << QList<int>{} << 0;
    QTest::newRow("both up: the first") << QList<int>{0, 1} << 0;
    QTest::newRow("the first up") << QList<int>{0} << 0;
    QTest::newRow("the second up") << QList<int>{1} << 1;
}

void TestSharedAddress::ofTwoWithOneAddressTheConnectedOneIsFound()
{
    QFETCH(QList<int>, up);
    bench->add(Link::Up, QStringLiteral("ttyUSB7"));
    for (int i = 0; i < 2; ++i)
        bench->add(up.contains(i) ? Link::Up : Link::Down, sharedAddress);
    QTEST(systems().indexOf(systems().find(sharedAddress)) - 1, "found");
}

void TestSharedAddress::hidingReachesOnlyTheMeantSystem()
{
    QFETCH(int, meant);
    addPair();
    systems().show(connection(meant), false);
    QCOMPARE(systems().displayed(), QList<int>{1 - meant});
    QVERIFY(!systems().at(meant).status.displayed);
    QVERIFY(systems().at(1 - meant).status.displayed);
}

void TestSharedAddress::showingReachesOnlyTheMeantSystem()
{
    QFETCH(int, meant);
    addPair();
    systems().show(connection(0), false);
    systems().show(connection(1), false);
    systems().show(connection(meant), true);
    QCOMPARE(systems().displayed(), QList<int>{meant});
    QVERIFY(systems().at(meant).status.displayed);
    QVERIFY(!systems().at(1 - meant).status.displayed);
}

void TestSharedAddress::closingReachesOnlyTheMeantSystem()
{
    QFETCH(int, meant);
    addPair();
    const Connection* kept = connection(1 - meant);
    QVERIFY(systems().close(connection(meant)));
    QCOMPARE(systems().size(), 1);
    QCOMPARE(connection(0), kept);
    QCOMPARE(systems().at(0).detectors, &bench->detectors[std::size_t(1 - meant)]);
    QCOMPARE(systems().displayed(), QList<int>{0});
}

void TestSharedAddress::colourReachesOnlyTheMeantSystem()
{
    QFETCH(int, meant);
    addPair();
    const QSignalSpy colored(&systems(), &LiveSystems::colored);
    systems().setColor(connection(meant), Qt::red, Graph::X);
    QCOMPARE(systems().at(meant).status.colorX, QColor(Qt::red));
    QVERIFY(systems().at(1 - meant).status.colorX != QColor(Qt::red));
    QCOMPARE(indicesOf(colored), QList<int>{meant});
}

void TestSharedAddress::labelAndGroupReachOnlyTheMeantSystem()
{
    QFETCH(int, meant);
    addPair();
    systems().relabel(connection(meant), QStringLiteral("north"));
    systems().setGroup(connection(meant), 3);
    QCOMPARE(systems().at(meant).status.label, QStringLiteral("north"));
    QCOMPARE(connection(meant)->label(), QStringLiteral("north"));
    QCOMPARE(systems().at(meant).status.groupId, 3);
    QCOMPARE(systems().at(1 - meant).status.label, QString());
    QCOMPARE(connection(1 - meant)->label(), QString());
    QCOMPARE(systems().at(1 - meant).status.groupId, 0);
}

void TestSharedAddress::unknownConnectionDoesNothing()
{
    addPair();
    const ScriptedConnection stranger(sharedAddress);
    for (const Connection* unknown :
         {static_cast<const Connection*>(&stranger), static_cast<const Connection*>(nullptr)}) {
        QCOMPARE(systems().indexOf(unknown), -1);
        systems().show(unknown, false);
        systems().setColor(unknown, Qt::red, Graph::X);
        systems().setGroup(unknown, 3);
        systems().relabel(unknown, QStringLiteral("north"));
        QVERIFY(!systems().close(unknown));
        QVERIFY(!systems().disconnectLink(unknown));
        QCOMPARE(systems().reconnect(unknown, {}).result, ReconnectResult::NoController);
    }
    QCOMPARE(systems().displayed(), QList<int>({0, 1}));
    for (const ConnectionStatus& status : systems().statuses()) {
        QVERIFY(status.colorX != QColor(Qt::red));
        QCOMPARE(status.groupId, 0);
        QCOMPARE(status.label, QString());
        QVERIFY(status.connection->isConnected());
    }
}

QTEST_GUILESS_MAIN(TestSharedAddress)
#include "tst_sharedaddress.moc"
