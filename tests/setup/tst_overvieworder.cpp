// The order of the rows. Drags with the mouse need another platform and have a program of their
// own.

#include "overviewstatuses.h"
#include "setup/connectionoverviewdialog.h"
#include "setup/listwidget.h"
#include "widgettest.h"

#include <QLabel>
#include <QtTest>

using overviewstatuses::statuses;
using widgettest::named;

class TestOverviewOrder final : public QObject
{
    Q_OBJECT

private slots:
    void init() { dialog = std::make_unique<ConnectionOverviewDialog>(); }
    void cleanup();

    void aDragMovesTheEntryOfTheOrder_data();
    void aDragMovesTheEntryOfTheOrder();
    void anOrderOutOfRangeIsIgnored();
    void removingAConnectionErasesTheLastEntry();
    void onlyRowsCanBeDragged();
    void movedRowsKeepTheirWidgets();

private:
    ListWidget& list() const { return named<ListWidget>(*dialog, "listWidget"); }
    QWidget& row(int index) const { return *list().itemWidget(list().item(index)); }

    std::unique_ptr<ConnectionOverviewDialog> dialog;
};

void TestOverviewOrder::cleanup()
{
    dialog.reset();
    QVERIFY(widgettest::noWidgetIsLeft());
}

void TestOverviewOrder::aDragMovesTheEntryOfTheOrder_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<QList<int>>("order");
    QTest::newRow("first to last") << 0 << 2 << QList<int>{1, 2, 0};
    QTest::newRow("last to first") << 2 << 0 << QList<int>{2, 0, 1};
    QTest::newRow("to its own place") << 1 << 1 << QList<int>{0, 1, 2};
}

void TestOverviewOrder::aDragMovesTheEntryOfTheOrder()
{
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(QList<int>, order);
    dialog->update(statuses({"a", "b", "c"}));
    emit list().indexChanged(from, to);
    QCOMPARE(dialog->order(), order);
    // Statuses and rows still belong together by their place.
    dialog->update(statuses({"a", "b", "c"}));
    QCOMPARE(dialog->order(), order);
    QCOMPARE(named<QLabel>(row(1), "label").text(), QStringLiteral("a"));
}

void TestOverviewOrder::anOrderOutOfRangeIsIgnored()
{
    dialog->update(statuses({"a", "b"}));
    dialog->changeOrder(-1, 0);
    dialog->changeOrder(2, 0);
    QCOMPARE(dialog->order(), QList<int>({0, 1}));
    dialog->changeOrder(0, 9);
    QCOMPARE(dialog->order(), QList<int>({1, 0}));
    dialog->changeOrder(1, -1);
    QCOMPARE(dialog->order(), QList<int>({0, 1}));
}

void TestOverviewOrder::removingAConnectionErasesTheLastEntry()
{
    dialog->update(statuses({"a", "b", "c"}));
    dialog->changeOrder(0, 2);
    QCOMPARE(dialog->order(), QList<int>({1, 2, 0}));
    // It is the last entry, not that of the connection that went.
    dialog->update(statuses({"a", "b"}));
    QCOMPARE(dialog->order(), QList<int>({1, 2}));
}

void TestOverviewOrder::onlyRowsCanBeDragged()
{
    dialog->update(statuses({"a"}));
    QVERIFY(!list().item(0)->flags().testFlag(Qt::ItemIsDragEnabled));
    QVERIFY(list().item(1)->flags().testFlag(Qt::ItemIsDragEnabled));
}

void TestOverviewOrder::movedRowsKeepTheirWidgets()
{
    dialog->update(statuses({"a", "b", "c"}));
    widgettest::show(*dialog);
    list().setCurrentRow(1);
    QVERIFY(list().model()->moveRow({}, 1, {}, 4));
    QCOMPARE(list().currentRow(), 3);
    QCOMPARE(named<QLabel>(row(3), "label").text(), QStringLiteral("a"));
    QCOMPARE(named<QLabel>(row(1), "label").text(), QStringLiteral("b"));
    dialog->update(statuses({"a", "b"}));
    QCOMPARE(list().count(), 3);
}

QTEST_MAIN(TestOverviewOrder)
#include "tst_overvieworder.moc"
