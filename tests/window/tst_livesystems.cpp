// The list of systems: what is found, shown, hidden, closed, and told of it. Nothing here needs an
// answer of a controller; tst_livesystemslinks.cpp has the links.

#include "systemsbench.h"

#include <QColor>
#include <QSignalSpy>
#include <QtTest>

namespace {

using Link = SystemsBench::Link;

const QString sharedAddress = QStringLiteral("ttyUSB0");

} // namespace

class TestLiveSystems final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench = std::make_unique<SystemsBench>(); }
    void cleanup() { bench.reset(); }

    void unknownAddressFindsNothing();
    void recordOfANewSystemSaysWhatIsKnown();
    void groupOfTheRecordIsThatOfTheSystem();
    void commonPathIsNotedByStage_data();
    void commonPathIsNotedByStage();
    void commonPathOfAStrangerIsNotNoted();
    void systemThatIsDownIsRegisteredAndNotDisplayed();
    void eachGraphHasItsColour_data();
    void eachGraphHasItsColour();
    void colourOfAnUnknownGraphIsNotTold();
    void displayedAreInTheOrderOfShowing();
    void displayedSystemKeepsItsPlace();
    void closingAMiddleOneMovesTheIndicesOfTheLater_data();
    void closingAMiddleOneMovesTheIndicesOfTheLater();
    void fiftyFirstSystemIsNotDisplayed();
    void singleSystemIsTheOnlyDisplayedOne();
    void currentSystem();
    void currentSystemStaysWhenOneOfThreeIsHidden();
    void currentSystemStaysWhenAnEarlierOneIsClosed();
    void signalsComeWhenTheListIsConsistent();
    void closingAllGoesFromTheLastToTheFirst();

private:
    void addPair(Link link = Link::Up);
    LiveSystems& systems() const { return bench->systems; }
    const Connection* connection(int index) const { return &bench->connection(index); }

    std::unique_ptr<SystemsBench> bench;
};

void TestLiveSystems::addPair(Link link)
{
    bench->add(link, sharedAddress);
    bench->add(link, sharedAddress);
}

void TestLiveSystems::unknownAddressFindsNothing()
{
    QVERIFY(!systems().find(sharedAddress));
    bench->add(Link::Down, sharedAddress);
    QVERIFY(!systems().find(QStringLiteral("ttyUSB1")));
}

void TestLiveSystems::recordOfANewSystemSaysWhatIsKnown()
{
    ConnectionSettings settings;
    settings.colorX = QStringLiteral("#ff0000");
    settings.colorY = QStringLiteral("#00ff00");
    settings.colorI = QStringLiteral("#0000ff");
    const Connection& up = bench->add(Link::Up, QStringLiteral("ttyUSB1"), settings);
    bench->add(Link::Down);

    const QVector<ConnectionStatus> statuses = systems().statuses();
    QCOMPARE(statuses.size(), 2);
    QCOMPARE(statuses[0].connection, &up);
    QCOMPARE(statuses[0].address, QStringLiteral("ttyUSB1"));
    QCOMPARE(statuses[0].colorX, QColor(Qt::red));
    QCOMPARE(statuses[0].colorY, QColor(Qt::green));
    QCOMPARE(statuses[0].colorI, QColor(Qt::blue));
    QVERIFY(statuses[0].statusValid && statuses[0].displayed);
    QVERIFY(!statuses[1].statusValid && !statuses[1].displayed);
    QCOMPARE(systems().at(1).detectors, &bench->detectors[1]);
}

void TestLiveSystems::groupOfTheRecordIsThatOfTheSystem()
{
    ConnectionSettings grouped;
    grouped.group = 7;
    bench->add(Link::Up, sharedAddress, grouped);
    bench->add(Link::Down, sharedAddress, grouped);
    bench->add();
    QCOMPARE(systems().at(0).status.groupId, 7);
    QCOMPARE(systems().at(1).status.groupId, 7);
    QCOMPARE(systems().at(2).status.groupId, 0);
}

void TestLiveSystems::commonPathIsNotedByStage_data()
{
    QTest::addColumn<int>("stage");
    QTest::newRow("stage 1") << 1;
    QTest::newRow("stage 2") << 2;
}

void TestLiveSystems::commonPathIsNotedByStage()
{
    QFETCH(int, stage);
    addPair();
    systems().noteCommonPath(connection(1), Stage(stage), true);
    const ConnectionStatus& status = systems().at(1).status;
    QCOMPARE(status.multiplex1, stage == 1);
    QCOMPARE(status.multiplex2, stage == 2);
    QVERIFY(!systems().at(0).status.multiplex1 && !systems().at(0).status.multiplex2);
    systems().noteCommonPath(connection(1), Stage(stage), false);
    QVERIFY(!status.multiplex1 && !status.multiplex2);
}

void TestLiveSystems::commonPathOfAStrangerIsNotNoted()
{
    bench->add();
    const ScriptedConnection stranger(sharedAddress, 921600);
    systems().noteCommonPath(&stranger, Stage::One, true);
    systems().noteCommonPath(nullptr, Stage::One, true);
    QVERIFY(!systems().at(0).status.multiplex1);
}

void TestLiveSystems::systemThatIsDownIsRegisteredAndNotDisplayed()
{
    const QSignalSpy shown(&systems(), &LiveSystems::shown);
    bench->add(Link::Down);
    systems().show(connection(0), true);
    QCOMPARE(systems().size(), 1);
    QVERIFY(!systems().displayed().contains(0));
    QCOMPARE(shown.count(), 0);
}

void TestLiveSystems::eachGraphHasItsColour_data()
{
    QTest::addColumn<int>("graph");
    QTest::newRow("x") << 0;
    QTest::newRow("y") << 1;
    QTest::newRow("intensity") << 2;
}

void TestLiveSystems::eachGraphHasItsColour()
{
    QFETCH(int, graph);
    bench->add();
    systems().setColor(connection(0), Qt::red, Graph(graph));
    const ConnectionStatus& status = systems().at(0).status;
    QCOMPARE(status.colorX == QColor(Qt::red), graph == 0);
    QCOMPARE(status.colorY == QColor(Qt::red), graph == 1);
    QCOMPARE(status.colorI == QColor(Qt::red), graph == 2);
}

void TestLiveSystems::colourOfAnUnknownGraphIsNotTold()
{
    bench->add();
    const QSignalSpy colored(&systems(), &LiveSystems::colored);
    systems().setColor(connection(0), Qt::red, Graph(3));
    systems().setColor(connection(0), Qt::red, Graph(-1));
    QCOMPARE(colored.count(), 0);
}

void TestLiveSystems::displayedAreInTheOrderOfShowing()
{
    for (int i = 0; i < 3; ++i)
        bench->add();
    systems().show(connection(0), false);
    systems().show(connection(0), true);
    QCOMPARE(systems().displayed(), QList<int>({1, 2, 0}));
}

void TestLiveSystems::displayedSystemKeepsItsPlace()
{
    addPair();
    const QSignalSpy shown(&systems(), &LiveSystems::shown);
    systems().show(connection(0), true);
    QCOMPARE(systems().displayed(), QList<int>({0, 1}));
    QCOMPARE(shown.count(), 0);
}

void TestLiveSystems::closingAMiddleOneMovesTheIndicesOfTheLater_data()
{
    QTest::addColumn<QList<int>>("order");
    QTest::addColumn<QList<int>>("behind");
    QTest::newRow("only the others displayed") << QList<int>{0, 2} << QList<int>{0, 1};
    QTest::newRow("the later one first") << QList<int>{2, 0} << QList<int>{1, 0};
    QTest::newRow("all displayed") << QList<int>{2, 1, 0} << QList<int>{1, 0};
}

void TestLiveSystems::closingAMiddleOneMovesTheIndicesOfTheLater()
{
    QFETCH(QList<int>, order);
    for (int i = 0; i < 3; ++i)
        bench->add();
    for (int i = 0; i < 3; ++i)
        systems().show(connection(i), false);
    for (const int index : order)
        systems().show(connection(index), true);
    const Connection* last = connection(2);
    QVERIFY(systems().close(connection(1)));
    QTEST(systems().displayed(), "behind");
    QCOMPARE(systems().indexOf(last), 1);
    QCOMPARE(systems().current(), &systems().at(systems().displayed().first()));
}

void TestLiveSystems::fiftyFirstSystemIsNotDisplayed()
{
    for (int i = 0; i < 51; ++i)
        bench->add();
    QCOMPARE(systems().displayed().size(), 50);
    QVERIFY(!systems().displayed().contains(50));
    systems().at(50).status.displayed = true;
    systems().show(connection(50), true);
    QVERIFY(!systems().displayed().contains(50));
    QVERIFY(!systems().at(50).status.displayed);

    systems().show(connection(7), false);
    systems().show(connection(50), true);
    QVERIFY(systems().displayed().contains(50));
}

void TestLiveSystems::singleSystemIsTheOnlyDisplayedOne()
{
    QVERIFY(!systems().single());
    addPair();
    QVERIFY(!systems().single());
    systems().show(connection(0), false);
    QCOMPARE(systems().single(), &systems().at(1));
    systems().show(connection(1), false);
    QVERIFY(!systems().single());
}

void TestLiveSystems::currentSystem()
{
    QVERIFY(!systems().current());
    addPair();
    QCOMPARE(systems().current(), &systems().at(0));
    systems().show(connection(0), false);
    QCOMPARE(systems().current(), &systems().at(1));
    systems().show(connection(0), true);
    QCOMPARE(systems().current(), &systems().at(1));
    systems().show(connection(1), false);
    QCOMPARE(systems().current(), &systems().at(0));
    // With none displayed it is the one that was hidden last.
    systems().show(connection(0), false);
    QCOMPARE(systems().current(), &systems().at(0));
    systems().show(connection(1), true);
    QCOMPARE(systems().current(), &systems().at(1));
}

void TestLiveSystems::currentSystemStaysWhenOneOfThreeIsHidden()
{
    for (int i = 0; i < 3; ++i)
        bench->add();
    systems().show(connection(0), false);
    QCOMPARE(systems().current(), &systems().at(0));
}

void TestLiveSystems::currentSystemStaysWhenAnEarlierOneIsClosed()
{
    bench->add(Link::Down);
    bench->add(Link::Down);
    bench->add(Link::Up);
    // It stays current though none is displayed any more.
    const Connection* current = connection(2);
    systems().show(current, false);
    systems().close(connection(0));
    QCOMPARE(systems().current(), &systems().at(1));
    QCOMPARE(&systems().connectionAt(1), current);
}

void TestLiveSystems::signalsComeWhenTheListIsConsistent()
{
    QStringList told;
    const QObject context;
    connect(&systems(), &LiveSystems::added, &context, [&](int index) {
        told.append(QStringLiteral("added %1 of %2").arg(index).arg(systems().size()));
    });
    connect(&systems(), &LiveSystems::shown, &context, [&](int index) {
        const bool consistent = systems().displayed().contains(index)
                                && systems().at(index).status.displayed && systems().current();
        told.append(QStringLiteral("shown %1 %2").arg(index).arg(consistent));
    });
    connect(&systems(), &LiveSystems::hidden, &context, [&](int index) {
        const bool consistent =
            !systems().displayed().contains(index) && !systems().at(index).status.displayed;
        told.append(QStringLiteral("hidden %1 %2").arg(index).arg(consistent));
    });
    connect(&systems(), &LiveSystems::closed, &context, [&](int index, const Connection* closed) {
        const bool consistent = systems().indexOf(closed) < 0 && closed->address() == sharedAddress;
        told.append(QStringLiteral("closed %1 %2").arg(index).arg(consistent));
    });
    connect(&systems(), &LiveSystems::disconnected, &context, [&](int index) {
        const bool consistent =
            !systems().displayed().contains(index) && !systems().connectionAt(index).isConnected();
        told.append(QStringLiteral("disconnected %1 %2").arg(index).arg(consistent));
    });
    addPair();
    systems().disconnectLink(connection(0));
    systems().close(connection(1));
    QCOMPARE(told, QStringList({"added 0 of 1", "shown 0 1", "added 1 of 2", "shown 1 1",
                                "hidden 0 1", "disconnected 0 1", "hidden 1 1", "closed 1 1"}));
}

void TestLiveSystems::closingAllGoesFromTheLastToTheFirst()
{
    for (int i = 0; i < 3; ++i)
        bench->add();
    const QSignalSpy closed(&systems(), &LiveSystems::closed);
    const QSignalSpy hidden(&systems(), &LiveSystems::hidden);
    systems().closeAll();
    QCOMPARE(indicesOf(closed), QList<int>({2, 1, 0}));
    QCOMPARE(hidden.count(), 0);
    QCOMPARE(systems().size(), 0);
    QVERIFY(systems().displayed().isEmpty());
    QVERIFY(!systems().current());
}

QTEST_GUILESS_MAIN(TestLiveSystems)
#include "tst_livesystems.moc"
