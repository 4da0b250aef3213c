#include "plots/rescaledialog.h"
#include "plots/rescaletimeaxisdlg.h"
#include "support/widgetcheck.h"

#include <QtTest>

class RescaleDialogsTest final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void unitIsKeptPerStage();
    void axisIsKept();
    void dialogsAreModelessTools();
};

void RescaleDialogsTest::unitIsKeptPerStage()
{
    RescaleDialog dialog;
    QCOMPARE(dialog.unit(1), 0);
    dialog.setUnit(2, 1);
    dialog.setUnit(1, 2);
    QCOMPARE(dialog.unit(1), 2);
    QCOMPARE(dialog.unit(2), 1);
}

void RescaleDialogsTest::axisIsKept()
{
    RescaleDialog dialog;
    dialog.setAxis(6);
    QCOMPARE(dialog.axis(), 6);
    RescaleTimeAxisDlg timeDialog;
    timeDialog.setAxis(4);
    QCOMPARE(timeDialog.axis(), 4);
}

void RescaleDialogsTest::dialogsAreModelessTools()
{
    const RescaleDialog dialog;
    QCOMPARE(dialog.windowType(), Qt::Tool);
    QVERIFY(!dialog.isModal());
    const RescaleTimeAxisDlg timeDialog;
    QCOMPARE(timeDialog.windowType(), Qt::Tool);
    QVERIFY(!timeDialog.isModal());
}

QTEST_MAIN(RescaleDialogsTest)
#include "tst_rescaledialogs.moc"
