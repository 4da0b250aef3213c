// What the rows of the overview ask for.

#include "link/tcpclient.h"
#include "overviewstatuses.h"
#include "setup/connectionoverviewdialog.h"
#include "setup/listwidget.h"
#include "setup/overviewwidget.h"
#include "widgettest.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QtTest>

using overviewstatuses::status;
using overviewstatuses::statuses;
using widgettest::click;
using widgettest::named;

class TestOverviewActions final : public QObject
{
    Q_OBJECT

private slots:
    void init() { dialog = std::make_unique<ConnectionOverviewDialog>(); }
    void cleanup();

    void stageButtonsAskForTheOppositeAndStayAsTheyAre();
    void showIsTold();
    void parametersAreAskedFor();
    void aChosenColourIsShownAndTold_data();
    void aChosenColourIsShownAndTold();
    void anInvalidColourIsIgnored();
    void aColourOfACommonDetectorDoesNothing();
    void theColourDialogOpensWindowModal();
    void aRowThatGoesTakesItsColourDialogWithIt();
    void hiddenControlsStillTell();
    void aRowTellsWhichOfTwoSystemsWithOneAddressIsMeant();

private:
    ListWidget& list() const { return named<ListWidget>(*dialog, "listWidget"); }
    QWidget& row(int index) const { return *list().itemWidget(list().item(index)); }

    std::unique_ptr<ConnectionOverviewDialog> dialog;
};

void TestOverviewActions::cleanup()
{
    dialog.reset();
    QVERIFY(widgettest::noWidgetIsLeft());
}

void TestOverviewActions::stageButtonsAskForTheOppositeAndStayAsTheyAre()
{
    dialog->update(statuses({"0"}));
    widgettest::show(*dialog);
    QSignalSpy spy(dialog.get(), &ConnectionOverviewDialog::changeStage);
    auto& first = named<QPushButton>(row(1), "enable1");
    QVERIFY(click(first));
    QVERIFY(click(first));
    QCOMPARE(spy.size(), 2);
    for (const QList<QVariant>& told : qAsConst(spy))
        QCOMPARE(told, QList<QVariant>({"ttyUSB0", 1, true}));
    QVERIFY(!first.isChecked());
    QCOMPARE(first.text(), QStringLiteral("OFF"));

    ConnectionStatus on = status("0");
    on.stabilised2 = true;
    dialog->update({on});
    QVERIFY(click(named<QPushButton>(row(1), "enable2")));
    QCOMPARE(spy.last(), QList<QVariant>({"ttyUSB0", 2, false}));
    QVERIFY(named<QPushButton>(row(1), "enable2").isChecked());
}

void TestOverviewActions::showIsTold()
{
    dialog->update(statuses({"0"}));
    widgettest::show(*dialog);
    QSignalSpy spy(dialog.get(), &ConnectionOverviewDialog::displayConnection);
    auto& box = named<QCheckBox>(row(1), "showCheckBox");
    QTest::mouseClick(&box, Qt::LeftButton, {}, QPoint(8, box.height() / 2));
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.last(), QList<QVariant>({"ttyUSB0", true}));
    // A status that says otherwise takes the mark away again.
    dialog->update(statuses({"0"}));
    QVERIFY(!box.isChecked());
    QCOMPARE(spy.size(), 1);
}

void TestOverviewActions::parametersAreAskedFor()
{
    dialog->update(statuses({"0", "1"}));
    widgettest::show(*dialog);
    QSignalSpy spy(dialog.get(), &ConnectionOverviewDialog::openParamDialog);
    QVERIFY(click(named<QPushButton>(row(2), "parameterPushButton")));
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.first().first().toString(), QStringLiteral("ttyUSB1"));
}

void TestOverviewActions::aChosenColourIsShownAndTold_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<int>("graph");
    QTest::newRow("x") << QByteArray("xColor") << 0;
    QTest::newRow("y") << QByteArray("yColor") << 1;
    QTest::newRow("intensity") << QByteArray("iColor") << 2;
}

void TestOverviewActions::aChosenColourIsShownAndTold()
{
    QFETCH(QByteArray, button);
    QFETCH(int, graph);
    dialog->update(statuses({"0"}));
    widgettest::show(*dialog);
    QSignalSpy spy(dialog.get(), &ConnectionOverviewDialog::changeColor);
    auto& colorButton = named<QPushButton>(row(1), button);
    QVERIFY(click(colorButton));

    auto* chooser = row(1).findChild<QColorDialog*>();
    QVERIFY(chooser && chooser->isVisible());
    QCOMPARE(chooser->windowTitle(), QStringLiteral("Please choose a color"));
    chooser->setCurrentColor(QColor(1, 2, 3));
    QTest::keyClick(chooser, Qt::Key_Return);
    QVERIFY(!chooser->isVisible());

    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.first(), QList<QVariant>({"ttyUSB0", QColor(1, 2, 3), graph}));
    QCOMPARE(colorButton.styleSheet(), QStringLiteral("background-color: #010203"));

    // The window stores it in the status, which then changes nothing more.
    ConnectionStatus stored = status("0");
    (graph == 0 ? stored.colorX : graph == 1 ? stored.colorY : stored.colorI) = QColor(1, 2, 3);
    dialog->update({stored});
    QCOMPARE(spy.size(), 1);
}

void TestOverviewActions::anInvalidColourIsIgnored()
{
    OverviewWidget data(false);
    data.updateRow(status("0"));
    QSignalSpy spy(&data, &OverviewWidget::newColor);
    data.on_colorSelected(QColor());
    QCOMPARE(spy.size(), 0);
    QCOMPARE(named<QPushButton>(data, "xColor").styleSheet(),
             QStringLiteral("background-color: #ff0000"));
}

void TestOverviewActions::aColourOfACommonDetectorDoesNothing()
{
    OverviewWidget data(false);
    data.updateRow(status("0"));
    QSignalSpy spy(&data, &OverviewWidget::newColor);
    named<QPushButton>(data, "iColor2").click();
    data.on_colorSelected(Qt::black);
    QCOMPARE(spy.size(), 0);
    named<QPushButton>(data, "iColor").click();
    data.on_colorSelected(Qt::black);
    QCOMPARE(spy.size(), 1);
}

void TestOverviewActions::theColourDialogOpensWindowModal()
{
    dialog->update(statuses({"0"}));
    widgettest::show(*dialog);
    QVERIFY(click(named<QPushButton>(row(1), "yColor")));
    auto* chooser = row(1).findChild<QColorDialog*>();
    QVERIFY(chooser->isVisible());
    QCOMPARE(chooser->windowModality(), Qt::WindowModal);
    QCOMPARE(chooser->currentColor(), QColor(Qt::darkGreen));
    QTest::keyClick(chooser, Qt::Key_Escape);
    QVERIFY(!chooser->isVisible());
    QVERIFY(dialog->isVisible());
}

void TestOverviewActions::aRowThatGoesTakesItsColourDialogWithIt()
{
    dialog->update(statuses({"0"}));
    widgettest::show(*dialog);
    QVERIFY(click(named<QPushButton>(row(1), "yColor")));
    const QPointer<QColorDialog> chooser = row(1).findChild<QColorDialog*>();
    QVERIFY(chooser->isVisible());
    dialog->update({});
    QVERIFY(!chooser);
    // Nothing modal keeps the user from the window.
    QVERIFY(click(named<QPushButton>(*dialog, "closePushButton")));
    QVERIFY(!dialog->isVisible());
}

void TestOverviewActions::hiddenControlsStillTell()
{
    dialog->update(statuses({"0"}));
    QSignalSpy multiplexing(dialog.get(), &ConnectionOverviewDialog::multiplexDetectors);
    QSignalSpy groups(dialog.get(), &ConnectionOverviewDialog::newGroupId);
    named<QComboBox>(row(1), "typeComboBox").setCurrentIndex(1);
    QCOMPARE(multiplexing.last(), QList<QVariant>({"ttyUSB0", true, 1}));
    named<QComboBox>(row(1), "type2ComboBox").setCurrentIndex(1);
    QCOMPARE(multiplexing.last(), QList<QVariant>({"ttyUSB0", true, 2}));
    named<QComboBox>(row(1), "type2ComboBox").setCurrentIndex(0);
    QCOMPARE(multiplexing.last(), QList<QVariant>({"ttyUSB0", false, 2}));
    named<QComboBox>(row(1), "type2ComboBox").setCurrentIndex(-1);
    QCOMPARE(multiplexing.size(), 3);
    named<QSpinBox>(row(1), "groupSpinBox").setValue(7);
    QCOMPARE(groups.last(), QList<QVariant>({"ttyUSB0", 7}));
}

void TestOverviewActions::aRowTellsWhichOfTwoSystemsWithOneAddressIsMeant()
{
    TcpClient first;
    TcpClient second;
    ConnectionStatus upper = status("0");
    upper.connection = &first;
    ConnectionStatus lower = status("0");
    lower.connection = &second;
    using Dialog = ConnectionOverviewDialog;
    QList<Connection*> colored;
    QList<Connection*> told;
    connect(dialog.get(), &Dialog::systemColored, this, [&](Connection* s) { colored.append(s); });
    connect(dialog.get(), &Dialog::systemDisplayed, this, [&](Connection* s) { told.append(s); });
    connect(dialog.get(), &Dialog::systemStageChanged, this,
            [&](Connection* s) { told.append(s); });
    connect(dialog.get(), &Dialog::systemParametersWanted, this,
            [&](Connection* s) { told.append(s); });
    dialog->update({upper, lower});
    QCOMPARE(colored, QList<Connection*>({&first, &first, &first, &second, &second, &second}));

    for (const char* name : {"showCheckBox", "enable1", "enable2", "parameterPushButton"})
        named<QAbstractButton>(row(2), name).click();
    QCOMPARE(told, QList<Connection*>({&second, &second, &second, &second}));
    told.clear();
    // The upper one goes, and the lower one moves into its row.
    dialog->update({lower});
    named<QAbstractButton>(row(1), "parameterPushButton").click();
    QCOMPARE(told, QList<Connection*>({&second}));
}

QTEST_MAIN(TestOverviewActions)
#include "tst_overviewactions.moc"
