#include "plots/durationtext.h"
#include "plots/rescaletimeaxisdlg.h"
#include "rescalebench.h"
#include "support/widgetcheck.h"

namespace {

constexpr const char* lowerEdit = "lineEdit_LowerTime";
constexpr const char* upperEdit = "lineEdit_UpperTime";

} // namespace

class TestRescaleTimeAxisDlg final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench = std::make_unique<RescaleBench<RescaleTimeAxisDlg>>(); }
    void cleanup();

    void formShowsTenSeconds();
    void secondsAreShownAsTime_data();
    void secondsAreShownAsTime();
    void okTellsTheSeconds_data();
    void okTellsTheSeconds();
    void okTellsTheAxisAndTheBox();
    void enterPressesOk_data();
    void enterPressesOk();
    void deletedDigitsCountZero();
    void fieldsAreTypedOverAtEachOpening();
    void dialogIsUsedByKeyboardAlone();
    void escapeAndCancelTellNothing_data();
    void escapeAndCancelTellNothing();

private:
    QLineEdit& lower() const { return bench->find<QLineEdit>(lowerEdit); }
    QLineEdit& upper() const { return bench->find<QLineEdit>(upperEdit); }
    QString lastRescaled() const;

    std::unique_ptr<RescaleBench<RescaleTimeAxisDlg>> bench;
};

void TestRescaleTimeAxisDlg::cleanup()
{
    bench.reset();
    QCOMPARE(leftWidgets(), QString());
}

/// "axis lower upper", and "both" with the tick.
QString TestRescaleTimeAxisDlg::lastRescaled() const
{
    if (bench->rescaled.isEmpty())
        return QStringLiteral("nothing");
    const QList<QVariant> told = bench->rescaled.last();
    const QString text =
        QStringLiteral("%1 %2 %3").arg(told[0].toInt()).arg(told[1].toInt()).arg(told[2].toInt());
    return told[3].toBool() ? text + QStringLiteral(" both") : text;
}

void TestRescaleTimeAxisDlg::formShowsTenSeconds()
{
    QCOMPARE(bench->text("label"), QString("Lower limit [hhh:mm:ss]"));
    QCOMPARE(bench->text("label_2"), QString("Upper limit [hhh:mm:ss]"));
    QCOMPARE(lower().text(), QString("000:00:00"));
    QCOMPARE(upper().text(), QString("000:00:10"));
    for (const QLineEdit* edit : {&lower(), &upper()}) {
        QCOMPARE(edit->inputMask(), QString("999:99:99"));
        QCOMPARE(edit->maxLength(), 9);
        QVERIFY(edit->alignment().testFlag(Qt::AlignRight));
    }
    QCOMPARE(bench->find<QCheckBox>("checkBox").text(), QString("Apply also for other Stage"));
    QVERIFY(!bench->find<QCheckBox>("checkBox").isChecked());
    QVERIFY(bench->find<QPushButton>("pushButton_OK").autoDefault());
}

void TestRescaleTimeAxisDlg::secondsAreShownAsTime_data()
{
    QTest::addColumn<int>("seconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << 0 << "000:00:00";
    QTest::newRow("one of each") << 3661 << "001:01:01";
    QTest::newRow("ten hours") << 36000 << "010:00:00";
    QTest::newRow("a hundred hours") << 360000 << "100:00:00";
    QTest::newRow("the longest") << durationtext::longestSeconds << "999:99:99";
}

void TestRescaleTimeAxisDlg::secondsAreShownAsTime()
{
    QFETCH(int, seconds);
    bench->dialog.setUpperTime(seconds);
    QTEST(upper().text(), "text");
    QCOMPARE(lower().text(), QString("000:00:00"));
    bench->dialog.setUpperTime(0);
    bench->dialog.setLowerTime(seconds);
    QTEST(lower().text(), "text");
    QCOMPARE(upper().text(), QString("000:00:00"));
}

void TestRescaleTimeAxisDlg::okTellsTheSeconds_data()
{
    QTest::addColumn<QString>("lowerDigits");
    QTest::addColumn<QString>("upperDigits");
    QTest::addColumn<QString>("told");
    QTest::newRow("in order") << "0000100"
                              << "0010000"
                              << "3 60 3600";
    QTest::newRow("equal") << "0000010"
                           << "0000010"
                           << "3 10 11";
    QTest::newRow("crossed") << "0000020"
                             << "0000010"
                             << "3 20 21";
    QTest::newRow("minutes and seconds above 59") << "0000000"
                                                  << "0009999"
                                                  << "3 0 6039";
    QTest::newRow("the longest") << "9999999"
                                 << "9999999"
                                 << "3 3602439 3602440";
}

void TestRescaleTimeAxisDlg::okTellsTheSeconds()
{
    QFETCH(QString, lowerDigits);
    QFETCH(QString, upperDigits);
    bench->dialog.setAxis(3);
    QVERIFY(bench->open());
    bench->type(lowerDigits);
    bench->press(Qt::Key_Tab);
    bench->type(upperDigits);
    QVERIFY(bench->click("pushButton_OK"));
    QTEST(lastRescaled(), "told");
    QCOMPARE(bench->rescaled.count(), 1);
    QVERIFY(!bench->dialog.isVisible());
}

void TestRescaleTimeAxisDlg::okTellsTheAxisAndTheBox()
{
    bench->dialog.setAxis(4);
    QCOMPARE(bench->dialog.axis(), 4);
    QVERIFY(bench->open());
    QVERIFY(bench->click("checkBox"));
    QVERIFY(bench->click("pushButton_OK"));
    QCOMPARE(lastRescaled(), QString("4 0 10 both"));
}

void TestRescaleTimeAxisDlg::enterPressesOk_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<QString>("where");
    for (const char* where : {lowerEdit, upperEdit, "checkBox", "pushButton_OK"}) {
        QTest::addRow("Return in %s", where) << Qt::Key_Return << where;
        QTest::addRow("Enter in %s", where) << Qt::Key_Enter << where;
    }
}

void TestRescaleTimeAxisDlg::enterPressesOk()
{
    QFETCH(Qt::Key, key);
    QFETCH(QString, where);
    bench->dialog.setAxis(3);
    QVERIFY(bench->open());
    bench->find(where).setFocus();
    bench->press(key);
    QCOMPARE(lastRescaled(), QString("3 0 10"));
    QCOMPARE(bench->rescaled.count(), 1);
    QVERIFY(!bench->dialog.isVisible());
}

void TestRescaleTimeAxisDlg::deletedDigitsCountZero()
{
    bench->dialog.setAxis(3);
    bench->dialog.setLowerTime(5);
    QVERIFY(bench->open());
    bench->press(Qt::Key_Delete);
    QCOMPARE(lower().text(), QString("::"));
    bench->press(Qt::Key_Enter);
    QCOMPARE(lastRescaled(), QString("3 0 10"));
}

void TestRescaleTimeAxisDlg::fieldsAreTypedOverAtEachOpening()
{
    for (int opening = 0; opening < 2; ++opening) {
        bench->dialog.setLowerTime(7);
        QVERIFY(bench->open());
        QCOMPARE(bench->focused(), QString(lowerEdit));
        QCOMPARE(lower().selectedText(), QString("000:00:07"));
        bench->type("0000003");
        QCOMPARE(lower().text(), QString("000:00:03"));
        bench->press(Qt::Key_Tab);
        QCOMPARE(bench->focused(), QString(upperEdit));
        bench->press(Qt::Key_Escape);
        QVERIFY(!bench->dialog.isVisible());
    }
}

void TestRescaleTimeAxisDlg::dialogIsUsedByKeyboardAlone()
{
    bench->dialog.setAxis(3);
    QVERIFY(bench->open());
    bench->type("0000001");
    bench->press(Qt::Key_Tab);
    bench->type("0000020");
    bench->press(Qt::Key_Tab);
    QCOMPARE(bench->focused(), QString("checkBox"));
    bench->press(Qt::Key_Space);
    bench->press(Qt::Key_Tab);
    bench->press(Qt::Key_Tab);
    QVERIFY(bench->focused().startsWith("pushButton_"));
    bench->press(Qt::Key_Tab);
    QCOMPARE(bench->focused(), QString(lowerEdit));
    bench->press(Qt::Key_Enter);
    QCOMPARE(lastRescaled(), QString("3 1 20 both"));
}

void TestRescaleTimeAxisDlg::escapeAndCancelTellNothing_data()
{
    QTest::addColumn<bool>("byKey");
    QTest::newRow("Escape") << true;
    QTest::newRow("Cancel") << false;
}

void TestRescaleTimeAxisDlg::escapeAndCancelTellNothing()
{
    QFETCH(bool, byKey);
    QVERIFY(bench->open());
    bench->type("0000003");
    if (byKey)
        bench->press(Qt::Key_Escape);
    else
        QVERIFY(bench->click("pushButton_Cancel"));
    QVERIFY(!bench->dialog.isVisible());
    QCOMPARE(bench->rescaled.count(), 0);
}

QTEST_MAIN(TestRescaleTimeAxisDlg)
#include "tst_rescaletimeaxisdlg.moc"
