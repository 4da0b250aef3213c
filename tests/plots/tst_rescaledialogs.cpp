// What the two dialogs for new limits have in common.

#include "plots/rescaledialog.h"
#include "plots/rescaletimeaxisdlg.h"
#include "rescalebench.h"
#include "support/widgetcheck.h"

#include <QDialogButtonBox>
#include <QFont>

namespace {

constexpr QSize formSize(260, 120);

/// Names of labels, boxes and buttons that have less room than their text needs.
QStringList cutTexts(const QDialog& dialog)
{
    QStringList cut;
    const QList<QWidget*> widgets = dialog.findChildren<QWidget*>();
    for (const QWidget* widget : widgets) {
        const bool hasText = qobject_cast<const QLabel*>(widget) != nullptr
                             || qobject_cast<const QAbstractButton*>(widget) != nullptr;
        const QSize needed = widget->sizeHint();
        if (hasText && (widget->width() < needed.width() || widget->height() < needed.height()))
            cut.append(widget->objectName());
    }
    return cut;
}

/// Names of fields whose content is wider than what is seen of it.
QStringList cutFields(const QDialog& dialog)
{
    QStringList cut;
    const QList<QLineEdit*> edits = dialog.findChildren<QLineEdit*>();
    for (const QLineEdit* edit : edits) {
        if (edit->fontMetrics().horizontalAdvance(edit->text()) >= edit->contentsRect().width())
            cut.append(edit->objectName());
    }
    return cut;
}

/// The place of a widget in its window.
QRect placeOf(const QWidget& widget)
{
    return {widget.mapTo(widget.window(), QPoint()), widget.size()};
}

bool overlapVertically(const QRect& one, const QRect& other)
{
    return one.top() <= other.bottom() && other.top() <= one.bottom();
}

} // namespace

class TestRescaleDialogs final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void dialogsAreToolsThatStopNobody();
    void dialogsHaveAnIconOfTheirOwn();
    void sizeIsFixed();
    void largerFontsGetMoreRoom();
    void widerNumbersGetMoreRoom();
    void labelsStandBesideTheirFields();
    void buttonsStandInOneRowInTheOrderOfThePlatform();

private:
    /// Runs the check over both dialogs, open.
    template <typename Check>
    static void forBoth(Check check);
};

template <typename Check>
void TestRescaleDialogs::forBoth(Check check)
{
    RescaleBench<RescaleDialog> values;
    QVERIFY(values.open());
    check(values.dialog);
    RescaleBench<RescaleTimeAxisDlg> times;
    QVERIFY(times.open());
    check(times.dialog);
}

void TestRescaleDialogs::cleanup()
{
    QCOMPARE(leftWidgets(), QString());
}

void TestRescaleDialogs::dialogsAreToolsThatStopNobody()
{
    forBoth([](const QDialog& dialog) {
        QCOMPARE(dialog.windowType(), Qt::Tool);
        QVERIFY(!dialog.isModal());
    });
}

void TestRescaleDialogs::dialogsHaveAnIconOfTheirOwn()
{
    forBoth([](const QDialog& dialog) { QVERIFY(dialog.testAttribute(Qt::WA_SetWindowIcon)); });
}

void TestRescaleDialogs::sizeIsFixed()
{
    forBoth([](const QDialog& dialog) {
        QCOMPARE(dialog.minimumSize(), dialog.size());
        QCOMPARE(dialog.maximumSize(), dialog.size());
        QCOMPARE(dialog.size(), dialog.size().expandedTo(formSize));
        QCOMPARE(cutTexts(dialog), QStringList());
        QCOMPARE(cutFields(dialog), QStringList());
    });
}

void TestRescaleDialogs::largerFontsGetMoreRoom()
{
    forBoth([](QDialog& dialog) {
        const QSize before = dialog.size();
        QFont font = dialog.font();
        font.setPointSize(2 * font.pointSize());
        dialog.setFont(font);
        QTRY_VERIFY(dialog.width() > before.width() && dialog.height() > before.height());
        QCOMPARE(dialog.maximumSize(), dialog.size());
        QCOMPARE(cutTexts(dialog), QStringList());
        QCOMPARE(cutFields(dialog), QStringList());
    });
}

void TestRescaleDialogs::widerNumbersGetMoreRoom()
{
    RescaleBench<RescaleDialog> bench;
    QVERIFY(bench.open());
    const int before = bench.dialog.width();
    constexpr double widest = 1e10;
    bench.dialog.setLimits(widest, -widest, widest, -widest);
    bench.dialog.setLowerValue(-widest);
    QTRY_VERIFY(bench.dialog.width() > before);
    QCOMPARE(cutFields(bench.dialog), QStringList());
}

void TestRescaleDialogs::labelsStandBesideTheirFields()
{
    forBoth([](const QDialog& dialog) {
        const QList<QLabel*> labels = dialog.findChildren<QLabel*>();
        QCOMPARE(labels.size(), 2);
        for (const QLabel* label : labels) {
            QVERIFY(label->buddy());
            const QRect text = placeOf(*label);
            const QRect field = placeOf(*label->buddy());
            QVERIFY(overlapVertically(text, field));
            QVERIFY(text.right() < field.left());
        }
        const QRect upper = placeOf(*labels[0]->buddy());
        const QRect lower = placeOf(*labels[1]->buddy());
        QCOMPARE(upper.left(), lower.left());
        QCOMPARE(upper.right(), lower.right());
        QVERIFY(!overlapVertically(upper, lower));
    });
}

void TestRescaleDialogs::buttonsStandInOneRowInTheOrderOfThePlatform()
{
    forBoth([](const QDialog& dialog) {
        QDialogButtonBox usual(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
        usual.show();
        const bool okComesFirst = placeOf(*usual.button(QDialogButtonBox::Ok)).left()
                                  < placeOf(*usual.button(QDialogButtonBox::Cancel)).left();
        const QList<QPushButton*> buttons = dialog.findChildren<QPushButton*>();
        QCOMPARE(buttons.size(), 2);
        const QRect ok = placeOf(*buttons[0]);
        const QRect cancel = placeOf(*buttons[1]);
        QCOMPARE(buttons[0]->text(), QString("OK"));
        QCOMPARE(buttons[1]->text(), QString("Cancel"));
        QCOMPARE(ok.left() < cancel.left(), okComesFirst);
        QCOMPARE(ok.top(), cancel.top());
        QCOMPARE(ok.size(), cancel.size());
    });
}

QTEST_MAIN(TestRescaleDialogs)
#include "tst_rescaledialogs.moc"
