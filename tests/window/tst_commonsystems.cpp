// The systems whose common detector is on the plots, beside those that are displayed: what the two
// lists say together.

#include "systemsbench.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

using Link = SystemsBench::Link;
using Mnemonics = QList<QByteArray>;

} // namespace

class TestCommonSystems final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench = std::make_unique<SystemsBench>(); }
    void cleanup() { bench.reset(); }

    void nothingIsShownByItself();
    void theyAreInTheOrderOfShowing();
    void systemThatIsDownIsNotShown();
    void eachIsShownOnce();
    void theirCurvesFollowThoseOfAllSystems();
    void bothListsCount();
    void singleSystemIsTheDisplayedOneOrElseTheOnlyCommonOne();
    void currentSystemIsTheOnlyOneOfBothLists();
    void currentSystemStaysWhileSeveralAreShown();
    void lastOneThatIsTakenOffStaysCurrent();
    void closingAMiddleOneMovesTheIndicesOfTheLater();
    void closedSystemLeavesBothListsBeforeItGoes();
    void disconnectedSystemIsTakenOff();
    void closingAllHidesThemFromTheLastToTheFirst();
    void hiddenSystemStreamsOnForItsCommonDetector();
    void systemOnNoPlotDoesNotStream();

private:
    void addHidden(int count);
    LiveSystems& systems() const { return bench->systems; }
    const Connection* connection(int index) const { return &bench->connection(index); }
    void show(int index, bool on = true) const { systems().show(connection(index), on); }
    void showCommon(int index, bool on = true) const
    {
        systems().showCommon(connection(index), on);
    }

    std::unique_ptr<SystemsBench> bench;
};

void TestCommonSystems::addHidden(int count)
{
    for (int i = 0; i < count; ++i) {
        bench->add();
        show(i, false);
    }
}

void TestCommonSystems::nothingIsShownByItself()
{
    bench->add();
    QVERIFY(systems().common().isEmpty());
    systems().showCommon(nullptr, true);
    QVERIFY(systems().common().isEmpty());
}

void TestCommonSystems::theyAreInTheOrderOfShowing()
{
    addHidden(3);
    const QSignalSpy shown(&systems(), &LiveSystems::commonShown);
    const QSignalSpy hidden(&systems(), &LiveSystems::commonHidden);
    for (const int index : {2, 0, 1})
        showCommon(index);
    QCOMPARE(systems().common(), QList<int>({2, 0, 1}));
    QCOMPARE(indicesOf(shown), QList<int>({2, 0, 1}));
    showCommon(0, false);
    QCOMPARE(systems().common(), QList<int>({2, 1}));
    // Told by its place.
    QCOMPARE(indicesOf(hidden), QList<int>{1});
    QVERIFY(systems().displayed().isEmpty());
}

void TestCommonSystems::systemThatIsDownIsNotShown()
{
    bench->add(Link::Down);
    showCommon(0);
    QVERIFY(systems().common().isEmpty());
}

void TestCommonSystems::eachIsShownOnce()
{
    addHidden(1);
    const QSignalSpy shown(&systems(), &LiveSystems::commonShown);
    const QSignalSpy hidden(&systems(), &LiveSystems::commonHidden);
    showCommon(0);
    showCommon(0);
    showCommon(0, false);
    showCommon(0, false);
    QCOMPARE(shown.count(), 1);
    QCOMPARE(hidden.count(), 1);
}

void TestCommonSystems::theirCurvesFollowThoseOfAllSystems()
{
    addHidden(3);
    QCOMPARE(systems().commonCurve(0), 3);
    QCOMPARE(systems().commonCurve(2), 5);
}

void TestCommonSystems::bothListsCount()
{
    addHidden(2);
    show(0);
    showCommon(0);
    showCommon(1);
    QCOMPARE(systems().shownCount(), 3);
    show(0, false);
    QCOMPARE(systems().shownCount(), 2);
}

void TestCommonSystems::singleSystemIsTheDisplayedOneOrElseTheOnlyCommonOne()
{
    addHidden(3);
    showCommon(1);
    QCOMPARE(systems().single(), &systems().at(1));
    show(0);
    QCOMPARE(systems().single(), &systems().at(0));
    show(2);
    QVERIFY(!systems().single());
    show(0, false);
    show(2, false);
    QCOMPARE(systems().single(), &systems().at(1));
    showCommon(2);
    QVERIFY(!systems().single());
}

void TestCommonSystems::currentSystemIsTheOnlyOneOfBothLists()
{
    addHidden(3);
    showCommon(1);
    QCOMPARE(systems().current(), &systems().at(1));
    show(2);
    QCOMPARE(systems().current(), &systems().at(1));
    showCommon(1, false);
    QCOMPARE(systems().current(), &systems().at(2));
    showCommon(0);
    show(2, false);
    QCOMPARE(systems().current(), &systems().at(0));
}

void TestCommonSystems::currentSystemStaysWhileSeveralAreShown()
{
    addHidden(3);
    show(0);
    show(1);
    showCommon(2);
    show(0, false);
    QCOMPARE(systems().current(), &systems().at(0));
}

void TestCommonSystems::lastOneThatIsTakenOffStaysCurrent()
{
    addHidden(2);
    showCommon(0);
    showCommon(0, false);
    QCOMPARE(systems().current(), &systems().at(0));
    QCOMPARE(systems().shownCount(), 0);
}

void TestCommonSystems::closingAMiddleOneMovesTheIndicesOfTheLater()
{
    addHidden(3);
    showCommon(2);
    showCommon(0);
    systems().close(connection(1));
    QCOMPARE(systems().common(), QList<int>({1, 0}));
}

void TestCommonSystems::closedSystemLeavesBothListsBeforeItGoes()
{
    addHidden(2);
    show(0);
    for (const int index : {1, 0})
        showCommon(index);
    QStringList told;
    const QObject context;
    connect(&systems(), &LiveSystems::commonHidden, &context, [&](int place) {
        told.append(QStringLiteral("place %1 of %2").arg(place).arg(systems().size()));
    });
    connect(&systems(), &LiveSystems::hidden, &context, [&] { told.append("hidden"); });
    connect(&systems(), &LiveSystems::closed, &context, [&] { told.append("closed"); });
    systems().close(connection(0));
    QCOMPARE(told, QStringList({"place 1 of 2", "hidden", "closed"}));
    QCOMPARE(systems().common(), QList<int>{0});
    QVERIFY(systems().displayed().isEmpty());
}

void TestCommonSystems::disconnectedSystemIsTakenOff()
{
    addHidden(2);
    showCommon(0);
    showCommon(1);
    systems().disconnectLink(connection(0));
    QCOMPARE(systems().common(), QList<int>{1});
}

void TestCommonSystems::closingAllHidesThemFromTheLastToTheFirst()
{
    addHidden(2);
    show(0);
    for (const int index : {0, 1})
        showCommon(index);
    const QSignalSpy hidden(&systems(), &LiveSystems::commonHidden);
    systems().closeAll();
    QCOMPARE(systems().shownCount(), 0);
    QCOMPARE(indicesOf(hidden), QList<int>({1, 0}));
}

void TestCommonSystems::hiddenSystemStreamsOnForItsCommonDetector()
{
    ScriptedConnection& connection = bench->add(Link::Running);
    showCommon(0);
    show(0, false);
    QCOMPARE(connection.controller().mnemonics(), Mnemonics());
    showCommon(0, false);
    // It did not stream.
    QCOMPARE(connection.controller().mnemonics(), Mnemonics());
}

void TestCommonSystems::systemOnNoPlotDoesNotStream()
{
    ScriptedConnection& connection = bench->addStreaming();
    showCommon(0);
    show(0, false);
    QVERIFY(connection.isStreaming());
    showCommon(0, false);
    QVERIFY(!connection.isStreaming());
    QCOMPARE(connection.controller().mnemonics(), Mnemonics{"CLS"});

    const ScriptedConnection& displayed = bench->addStreaming();
    showCommon(1);
    showCommon(1, false);
    QVERIFY(displayed.isStreaming());
}

QTEST_GUILESS_MAIN(TestCommonSystems)
#include "tst_commonsystems.moc"
