#include "window/shownsystems.h"

#include <QtTest>

class TestShownSystems final : public QObject
{
    Q_OBJECT

private slots:
    void nothingIsShownAtFirst();
    void systemsKeepTheOrderInWhichTheyWereShown();
    void displayedSystemKeepsItsPlace();
    void commonDetectorKeepsItsPlace();
    void noMoreThanFiftyAreDisplayed();
    void placeOfAHiddenCommonDetectorIsTold();
    void systemCanBeInBothLists();
    void onlyDisplayedSystemIsTheSingleOne();
    void commonDetectorIsTheSingleOneWhileNothingIsDisplayed();
    void onlyOneOnThePlotsIsCurrent();
    void currentOneStaysWhenOthersCome();
    void currentOneStaysWhileSeveralAreLeft();
    void lastOneThatIsLeftBecomesCurrent();
    void lastOneThatLeavesStaysCurrent();
    void systemsBehindAForgottenOneMoveUp();
    void firstDisplayedOneIsCurrentBehindAForgottenOne();
    void currentIndexMovesUpBehindAForgottenOne();
    void indexOfAForgottenCurrentOneGoesToTheNext();
};

namespace {

ShownSystems displaying(const QList<int>& indices)
{
    ShownSystems shown;
    for (const int index : indices)
        shown.display(index);
    return shown;
}

} // namespace

void TestShownSystems::nothingIsShownAtFirst()
{
    const ShownSystems shown;
    QCOMPARE(shown.count(), 0);
    QCOMPARE(shown.single(), -1);
    QCOMPARE(shown.current(), 0);
}

void TestShownSystems::systemsKeepTheOrderInWhichTheyWereShown()
{
    ShownSystems shown = displaying({4, 1, 3});
    shown.showCommon(2);
    shown.showCommon(0);
    QCOMPARE(shown.displayed(), QList<int>({4, 1, 3}));
    QCOMPARE(shown.common(), QList<int>({2, 0}));
    QCOMPARE(shown.count(), 5);
}

void TestShownSystems::displayedSystemKeepsItsPlace()
{
    ShownSystems shown = displaying({4, 1});
    QVERIFY(!shown.display(4));
    QCOMPARE(shown.displayed(), QList<int>({4, 1}));
}

void TestShownSystems::commonDetectorKeepsItsPlace()
{
    ShownSystems shown;
    QVERIFY(shown.showCommon(4));
    QVERIFY(shown.showCommon(1));
    QVERIFY(!shown.showCommon(4));
    QCOMPARE(shown.common(), QList<int>({4, 1}));
}

void TestShownSystems::noMoreThanFiftyAreDisplayed()
{
    ShownSystems shown;
    for (int index = 0; index < 50; ++index)
        QVERIFY(shown.display(index));
    QVERIFY(!shown.display(50));
    QCOMPARE(shown.displayed().size(), 50);
    QVERIFY(shown.hide(7));
    QVERIFY(shown.display(50));
    QCOMPARE(shown.displayed().last(), 50);
}

void TestShownSystems::placeOfAHiddenCommonDetectorIsTold()
{
    ShownSystems shown;
    for (const int index : {4, 1, 3})
        shown.showCommon(index);
    QCOMPARE(shown.hideCommon(1), 1);
    QCOMPARE(shown.hideCommon(3), 1);
    QCOMPARE(shown.hideCommon(1), -1);
    QCOMPARE(shown.common(), QList<int>({4}));
}

void TestShownSystems::systemCanBeInBothLists()
{
    ShownSystems shown = displaying({2});
    QVERIFY(shown.showCommon(2));
    QCOMPARE(shown.count(), 2);
    QVERIFY(shown.hide(2));
    QVERIFY(!shown.hide(2));
    QCOMPARE(shown.common(), QList<int>({2}));
}

void TestShownSystems::onlyDisplayedSystemIsTheSingleOne()
{
    ShownSystems shown = displaying({3});
    shown.showCommon(1);
    QCOMPARE(shown.single(), 3);
    shown.display(5);
    QCOMPARE(shown.single(), -1);
}

void TestShownSystems::commonDetectorIsTheSingleOneWhileNothingIsDisplayed()
{
    ShownSystems shown;
    shown.showCommon(1);
    QCOMPARE(shown.single(), 1);
    shown.showCommon(2);
    QCOMPARE(shown.single(), -1);
}

void TestShownSystems::onlyOneOnThePlotsIsCurrent()
{
    QCOMPARE(displaying({3}).current(), 3);
    ShownSystems shown;
    shown.showCommon(4);
    QCOMPARE(shown.current(), 4);
}

void TestShownSystems::currentOneStaysWhenOthersCome()
{
    ShownSystems shown = displaying({3, 1});
    shown.showCommon(2);
    QCOMPARE(shown.current(), 3);
}

void TestShownSystems::currentOneStaysWhileSeveralAreLeft()
{
    ShownSystems shown = displaying({3, 1, 2});
    shown.hide(3);
    QCOMPARE(shown.current(), 3);
}

void TestShownSystems::lastOneThatIsLeftBecomesCurrent()
{
    ShownSystems shown = displaying({3, 1});
    shown.hide(3);
    QCOMPARE(shown.current(), 1);
    shown.showCommon(2);
    shown.hide(1);
    QCOMPARE(shown.current(), 2);
}

void TestShownSystems::lastOneThatLeavesStaysCurrent()
{
    ShownSystems shown = displaying({3, 1});
    shown.hide(3);
    shown.hide(1);
    QCOMPARE(shown.current(), 1);
}

void TestShownSystems::systemsBehindAForgottenOneMoveUp()
{
    ShownSystems shown = displaying({4, 1});
    shown.showCommon(3);
    shown.showCommon(0);
    shown.forget(2);
    QCOMPARE(shown.displayed(), QList<int>({3, 1}));
    QCOMPARE(shown.common(), QList<int>({2, 0}));
}

void TestShownSystems::firstDisplayedOneIsCurrentBehindAForgottenOne()
{
    ShownSystems shown = displaying({5, 1, 4});
    shown.hide(5);
    shown.forget(5);
    QCOMPARE(shown.current(), 1);
}

void TestShownSystems::currentIndexMovesUpBehindAForgottenOne()
{
    ShownSystems shown = displaying({4});
    shown.hide(4);
    shown.forget(2);
    QCOMPARE(shown.current(), 3);
}

void TestShownSystems::indexOfAForgottenCurrentOneGoesToTheNext()
{
    ShownSystems shown = displaying({4});
    shown.hide(4);
    shown.forget(4);
    QCOMPARE(shown.current(), 4);
}

QTEST_GUILESS_MAIN(TestShownSystems)
#include "tst_shownsystems.moc"
