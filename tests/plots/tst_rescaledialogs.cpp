#include "plots/rescaledialog.h"
#include "plots/rescaletimeaxisdlg.h"
#include "support/widgetcheck.h"

#include <QtTest>

class TestRescaleDialogs final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void unitIsKeptPerStage();
    void axisIsKept();
    void dialogsAreModelessTools();
};

void TestRescaleDialogs::unitIsKeptPerStage()
{
    RescaleDialog dialog;
    QCOMPARE(dialog.unit(1), 0);
    dialog.setUnit(2, 1);
    dialog.setUnit(1, 2);
    QCOMPARE(dialog.unit(1), 2);
    QCOMPARE(dialog.unit(2), 1);
}

void TestRescaleDialogs::axisIsKept()
{
    RescaleDialog dialog;
    dialog.setAxis(6);
    QCOMPARE(dialog.axis(), 6);
    RescaleTimeAxisDlg timeDialog;
    timeDialog.setAxis(4);
    QCOMPARE(timeDialog.axis(), 4);
}

void TestRescaleDialogs::dialogsAreModelessTools()
{
    const RescaleDialog dialog;
    QCOMPARE(dialog.windowType(), Qt::Tool);
    QVERIFY(!dialog.isModal());
    const RescaleTimeAxisDlg timeDialog;
    QCOMPARE(timeDialog.windowType(), Qt::Tool);
    QVERIFY(!timeDialog.isModal());
}

QTEST_MAIN(TestRescaleDialogs)
#include "tst_rescaledialogs.moc"
