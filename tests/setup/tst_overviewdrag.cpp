// Dragging the rows of the overview. The platform of the other tests has no drags.

#include "overviewstatuses.h"
#include "setup/connectionoverviewdialog.h"
#include "setup/listwidget.h"
#include "widgettest.h"

#include <QDrag>
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QSignalSpy>
#include <QTimer>
#include <QtTest>

using overviewstatuses::statuses;
using widgettest::named;

namespace {

void drop(ListWidget& list, double y)
{
    QMimeData data;
    QDropEvent event(QPointF(5, y), Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    list.dropEvent(&event);
}

/// Drags the row, counted with the header, and drops it. The list knows the drag for its own.
void drag(ListWidget& list, int row, double y)
{
    list.setCurrentRow(row);
    auto* held = new QDrag(&list);
    held->setMimeData(list.model()->mimeData({list.model()->index(row, 0)}));
    QTimer::singleShot(0, &list, [&list, y] {
        drop(list, y);
        QDrag::cancel();
    });
    held->exec(Qt::MoveAction);
}

double lowerHalf(const ListWidget& list, int row)
{
    const QRect place = list.visualItemRect(list.item(row));
    return place.bottom() - place.height() / 8.0;
}

QStringList shownLabels(const ListWidget& list)
{
    QStringList labels;
    for (int i = 1; i < list.count(); ++i)
        labels.append(named<QLabel>(*list.itemWidget(list.item(i)), "label").text());
    return labels;
}

} // namespace

class TestOverviewDrag final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void aDragOfARowMovesIt_data();
    void aDragOfARowMovesIt();
    void aDropOntoTheHeaderIsDropped();
    void aDropRightBelowTheMarginIsTaken_data();
    void aDropRightBelowTheMarginIsTaken();
    void draggingTheHeaderDoesNothing();
    void theShownOrderFollowsTheScreenAfterADragARemovalAndANewRow();

private:
    void open();
    ListWidget& list() const { return named<ListWidget>(*dialog, "listWidget"); }

    std::unique_ptr<ConnectionOverviewDialog> dialog;
};

void TestOverviewDrag::open()
{
    dialog = std::make_unique<ConnectionOverviewDialog>();
    dialog->update(statuses({"a", "b", "c"}));
    widgettest::show(*dialog);
    // All rows are in sight, also the highest.
    dialog->resize(dialog->width(), 900);
    QCoreApplication::processEvents();
}

void TestOverviewDrag::cleanup()
{
    dialog.reset();
    QVERIFY(widgettest::noWidgetIsLeft());
}

void TestOverviewDrag::aDragOfARowMovesIt_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("below");
    QTest::addColumn<QList<QVariant>>("told");
    QTest::addColumn<QList<int>>("order");
    QTest::addColumn<QStringList>("shown");
    QTest::newRow("first to last")
        << 1 << 3 << QList<QVariant>{0, 2} << QList<int>{1, 2, 0} << QStringList{"b", "c", "a"};
    QTest::newRow("last to first")
        << 3 << 0 << QList<QVariant>{2, 0} << QList<int>{2, 0, 1} << QStringList{"c", "a", "b"};
    QTest::newRow("one down") << 1 << 2 << QList<QVariant>{0, 1} << QList<int>{1, 0, 2}
                              << QStringList{"b", "a", "c"};
    QTest::newRow("to its own place")
        << 2 << 1 << QList<QVariant>{1, 1} << QList<int>{0, 1, 2} << QStringList{"a", "b", "c"};
}

void TestOverviewDrag::aDragOfARowMovesIt()
{
    QFETCH(int, row);
    QFETCH(int, below);
    QFETCH(QList<QVariant>, told);
    QFETCH(QList<int>, order);
    QFETCH(QStringList, shown);
    open();
    QSignalSpy spy(&list(), &ListWidget::indexChanged);
    drag(list(), row, lowerHalf(list(), below));
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.first(), told);
    QCOMPARE(dialog->order(), order);
    QCOMPARE(dialog->shownOrder(), order);
    QCOMPARE(shownLabels(list()), shown);
}

void TestOverviewDrag::aDropOntoTheHeaderIsDropped()
{
    open();
    QSignalSpy spy(&list(), &ListWidget::indexChanged);
    for (const double y : {0.0, 23.0, 23.4}) {
        drag(list(), 3, y);
        QCOMPARE(spy.size(), 0);
        QCOMPARE(dialog->order(), QList<int>({0, 1, 2}));
        QCOMPARE(shownLabels(list()), QStringList({"a", "b", "c"}));
    }
}

void TestOverviewDrag::aDropRightBelowTheMarginIsTaken_data()
{
    QTest::addColumn<double>("y");
    QTest::addColumn<int>("fontPt");
    QTest::newRow("exactly there") << 24.0 << 9;
    QTest::newRow("less than half a pixel above") << 23.5 << 9;
    // A row never comes above the header, however high that is.
    QTest::newRow("on the upper half of a high header") << 24.0 << 40;
}

void TestOverviewDrag::aDropRightBelowTheMarginIsTaken()
{
    QFETCH(double, y);
    QFETCH(int, fontPt);
    const QFont before = QApplication::font();
    QFont font = before;
    font.setPointSize(fontPt);
    QApplication::setFont(font);
    open();
    QApplication::setFont(before);
    const QRect header = list().visualItemRect(list().item(0));
    QCOMPARE(header.top(), 0);
    QCOMPARE(y < header.center().y(), fontPt == 40);

    QSignalSpy spy(&list(), &ListWidget::indexChanged);
    drag(list(), 3, y);
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.first(), QList<QVariant>({2, 0}));
    QCOMPARE(dialog->order(), QList<int>({2, 0, 1}));
    QCOMPARE(shownLabels(list()), QStringList({"c", "a", "b"}));
    QCOMPARE(list().currentRow(), 1);
    QVERIFY(named<QLabel>(*list().itemWidget(list().item(0)), "label_6").isVisible());
}

void TestOverviewDrag::draggingTheHeaderDoesNothing()
{
    open();
    QSignalSpy spy(&list(), &ListWidget::indexChanged);
    drag(list(), 0, lowerHalf(list(), 2));
    QCOMPARE(spy.size(), 0);
    QCOMPARE(shownLabels(list()), QStringList({"a", "b", "c"}));
    QCOMPARE(dialog->order(), QList<int>({0, 1, 2}));
}

void TestOverviewDrag::theShownOrderFollowsTheScreenAfterADragARemovalAndANewRow()
{
    open();
    drag(list(), 1, lowerHalf(list(), 3));
    QCOMPARE(dialog->shownOrder(), QList<int>({1, 2, 0}));
    dialog->update(statuses({"a", "b"}));
    QCOMPARE(shownLabels(list()), QStringList({"b", "a"}));
    QCOMPARE(dialog->shownOrder(), QList<int>({1, 0}));
    // The other order names a connection that is gone.
    QCOMPARE(dialog->order(), QList<int>({1, 2}));
    dialog->update(statuses({"a", "b", "new"}));
    QCOMPARE(shownLabels(list()), QStringList({"b", "a", "new"}));
    QCOMPARE(dialog->shownOrder(), QList<int>({1, 0, 2}));
}

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "minimal:enable_fonts");
    QApplication application(argc, argv);
    TestOverviewDrag test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_overviewdrag.moc"
