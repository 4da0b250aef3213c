#include "images/images.h"
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

namespace {

QImage lightOf(const QWidget& row, const char* name)
{
    return named<QLabel>(row, name).pixmap(Qt::ReturnByValue).toImage();
}

QImage image(const char* name)
{
    return QPixmap(QLatin1String(name)).toImage();
}

constexpr char redLight[] = ":/images/red_light.png";
constexpr char greenLight[] = ":/images/green_light.png";

} // namespace

class TestOverview final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { initImages(); }
    void init();
    void cleanup();

    void theHeaderShowsTheNamesAndARowTheValues();
    void headerAndRowsAlign();
    void whatHasNoEffectIsNeverShown();
    void theDialogComesAsItIsLaidDown();
    void rowsFollowTheStatuses();
    void withoutConnectionsOnlyTheHeaderIsLeft();

    void aFreshRowShowsRedLights();
    void aRowShowsItsStatus();
    void aRowIsTouchedOnlyByChanges();
    void anInvalidStatusDisablesTheControls();
    void coloursAreToldOnceWhenTheyComeFromTheStatus();

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

    void aDragMovesTheEntryOfTheOrder_data();
    void aDragMovesTheEntryOfTheOrder();
    void anOrderOutOfRangeIsIgnored();
    void removingAConnectionErasesTheLastEntry();
    void onlyRowsCanBeDragged();
    void movedRowsKeepTheirWidgets();

    void longLabelsAreNotCut();
    void tabFollowsTheEye();
    void closeAndEscapeClose();

private:
    ListWidget& list() const { return named<ListWidget>(*dialog, "listWidget"); }
    QWidget& row(int index) const { return *list().itemWidget(list().item(index)); }

    std::unique_ptr<ConnectionOverviewDialog> dialog;
};

void TestOverview::init()
{
    dialog = std::make_unique<ConnectionOverviewDialog>();
}

void TestOverview::cleanup()
{
    dialog.reset();
    QVERIFY(widgettest::noWidgetIsLeft());
}

void TestOverview::theHeaderShowsTheNamesAndARowTheValues()
{
    dialog->update(statuses({"0"}));
    widgettest::show(*dialog);
    const QMap<QString, QString> headings{{"label_6", "Label"},
                                          {"label_4", "Start/Stop"},
                                          {"label_5", "Active"},
                                          {"label_2", "Stage 1"},
                                          {"label_3", "Stage 1"},
                                          {"label_7", "Stage 2"},
                                          {"label_8", "Stage 2"},
                                          {"xLabel", "X"},
                                          {"yLabel", "Y"},
                                          {"iLabel", "I"},
                                          {"configLabel", "Settings"},
                                          {"displayLabel", "Display"}};
    for (auto it = headings.cbegin(); it != headings.cend(); ++it) {
        const QString name = it.key();
        QVERIFY2(named<QLabel>(row(0), name).isVisible(), qPrintable(name));
        QCOMPARE(named<QLabel>(row(0), name).text(), it.value());
        QVERIFY2(!named<QLabel>(row(1), name).isVisible(), qPrintable(name));
    }
    for (const char* name : {"label", "enable1", "enable2", "active1", "active2", "xColor",
                             "yColor", "iColor", "parameterPushButton", "showCheckBox"}) {
        QVERIFY2(!named<QWidget>(row(0), name).isVisible(), name);
        QVERIFY2(named<QWidget>(row(1), name).isVisible(), name);
    }
    QCOMPARE(named<QPushButton>(row(1), "enable1").text(), QStringLiteral("OFF"));
    QCOMPARE(named<QPushButton>(row(1), "parameterPushButton").text(),
             QStringLiteral("Parameters"));
    QCOMPARE(named<QCheckBox>(row(1), "showCheckBox").text(), QStringLiteral("Show"));
}

void TestOverview::headerAndRowsAlign()
{
    dialog->update(statuses({"0", "a_label_that_is_longer_xxx"}));
    widgettest::show(*dialog);
    const QList<QPair<const char*, const char*>> columns{{"label_2", "enable1"},
                                                         {"label_7", "enable2"},
                                                         {"label_3", "active1"},
                                                         {"label_8", "active2"},
                                                         {"xLabel", "xColor"},
                                                         {"yLabel", "yColor"},
                                                         {"iLabel", "iColor"},
                                                         {"configLabel", "parameterPushButton"},
                                                         {"displayLabel", "showCheckBox"}};
    for (const auto& [head, control] : columns) {
        for (const int index : {1, 2}) {
            const QWidget& upper = named<QWidget>(row(0), head);
            const QWidget& lower = named<QWidget>(row(index), control);
            QCOMPARE(lower.mapTo(dialog.get(), QPoint()).x(),
                     upper.mapTo(dialog.get(), QPoint()).x());
            QCOMPARE(lower.width(), upper.width());
        }
    }
}

void TestOverview::whatHasNoEffectIsNeverShown()
{
    dialog->update(statuses({"0"}));
    widgettest::show(*dialog);
    for (const int index : {0, 1}) {
        for (const char* name : {"typeComboBox", "type2ComboBox", "commonLabel", "xColor2",
                                 "yColor2", "iColor2", "showCheckBox2", "groupSpinBox",
                                 "groupLabel", "label_10", "label_9", "label_12", "line"})
            QVERIFY2(!named<QWidget>(row(index), name).isVisible(), name);
    }
    QCOMPARE(named<QSpinBox>(row(1), "groupSpinBox").maximum(), 50);
    QCOMPARE(named<QComboBox>(row(1), "typeComboBox").itemText(1), QStringLiteral("Common"));
}

void TestOverview::theDialogComesAsItIsLaidDown()
{
    QCOMPARE(dialog->windowTitle(), QStringLiteral("System Configuration"));
    QCOMPARE(dialog->width(), 580);
    QVERIFY(dialog->minimumWidth() >= 215);
    QCOMPARE(dialog->maximumWidth(), 900);
    QCOMPARE(list().dragDropMode(), QAbstractItemView::InternalMove);
    QCOMPARE(list().defaultDropAction(), Qt::MoveAction);
    QCOMPARE(list().selectionMode(), QAbstractItemView::SingleSelection);
    QCOMPARE(list().editTriggers(), QAbstractItemView::NoEditTriggers);
    QVERIFY(list().showDropIndicator());
    QCOMPARE(list().minimumWidth(), list().sizeHintForColumn(0));
    QVERIFY(!dialog->windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
    widgettest::show(*dialog);
    QCOMPARE(dialog->width(), 580);
}

void TestOverview::rowsFollowTheStatuses()
{
    QCOMPARE(list().count(), 1);
    dialog->update(statuses({"a", "b", "c"}));
    QCOMPARE(list().count(), 4);
    QCOMPARE(dialog->order(), QList<int>({0, 1, 2}));
    QCOMPARE(named<QLabel>(row(3), "label").text(), QStringLiteral("c"));

    dialog->update(statuses({"b", "c"}));
    QCOMPARE(list().count(), 3);
    QCOMPARE(named<QLabel>(row(1), "label").text(), QStringLiteral("b"));
    QCOMPARE(named<QLabel>(row(2), "label").text(), QStringLiteral("c"));
    QCOMPARE(dialog->order(), QList<int>({0, 1}));
}

void TestOverview::withoutConnectionsOnlyTheHeaderIsLeft()
{
    dialog->update(statuses({"a", "b"}));
    dialog->update({});
    QCOMPARE(list().count(), 1);
    QVERIFY(dialog->order().isEmpty());
    QCOMPARE(named<QLabel>(row(0), "label_6").text(), QStringLiteral("Label"));
    QVERIFY(!named<QLabel>(row(0), "label_6").isHidden());
}

void TestOverview::aRowShowsItsStatus()
{
    OverviewWidget data(false);
    ConnectionStatus shown = status("0");
    shown.stabilised2 = true;
    shown.displayed = true;
    data.updateRow(shown);

    QCOMPARE(named<QLabel>(data, "label").text(), QStringLiteral("0"));
    auto& first = named<QPushButton>(data, "enable1");
    auto& second = named<QPushButton>(data, "enable2");
    QCOMPARE(first.text(), QStringLiteral("OFF"));
    QVERIFY(!first.isChecked());
    QCOMPARE(first.palette().button().color(), QColor("lightcoral"));
    QCOMPARE(second.text(), QStringLiteral("ON"));
    QVERIFY(second.isChecked());
    QCOMPARE(second.palette().button().color(), QColor("lightgreen"));
    QCOMPARE(named<QPushButton>(data, "yColor").styleSheet(),
             QStringLiteral("background-color: #008000"));
    QVERIFY(named<QCheckBox>(data, "showCheckBox").isChecked());
    QCOMPARE(named<QLabel>(data, "active1").toolTip(), QStringLiteral("Inactive"));
    QCOMPARE(lightOf(data, "active1"), image(redLight));
    QCOMPARE(lightOf(data, "active2"), image(redLight));

    shown.stabilised2 = false;
    shown.active1 = true;
    shown.displayed = false;
    data.updateRow(shown);
    QCOMPARE(second.text(), QStringLiteral("OFF"));
    QVERIFY(!second.isChecked());
    QCOMPARE(second.palette().button().color(), QColor("lightcoral"));
    QVERIFY(!named<QCheckBox>(data, "showCheckBox").isChecked());
    QCOMPARE(named<QLabel>(data, "active1").toolTip(), QStringLiteral("Active"));
    QCOMPARE(named<QLabel>(data, "active2").toolTip(), QStringLiteral("Inactive"));
    QCOMPARE(lightOf(data, "active1"), image(greenLight));
    QCOMPARE(lightOf(data, "active2"), image(redLight));

    shown.active1 = false;
    shown.active2 = true;
    data.updateRow(shown);
    QCOMPARE(lightOf(data, "active1"), image(redLight));
    QCOMPARE(lightOf(data, "active2"), image(greenLight));
}

void TestOverview::aFreshRowShowsRedLights()
{
    const OverviewWidget data(false);
    QVERIFY(!image(redLight).isNull());
    QVERIFY(image(redLight) != image(greenLight));
    QCOMPARE(lightOf(data, "active1"), image(redLight));
    QCOMPARE(lightOf(data, "active2"), image(redLight));
}

void TestOverview::aRowIsTouchedOnlyByChanges()
{
    OverviewWidget data(false);
    data.updateRow(status("0"));
    // What is changed behind its back stays: equal values are not set again.
    named<QLabel>(data, "label").setText("other");
    named<QPushButton>(data, "enable1").setText("other");
    named<QCheckBox>(data, "showCheckBox").setChecked(true);
    data.updateRow(status("0"));
    QCOMPARE(named<QLabel>(data, "label").text(), QStringLiteral("other"));
    QCOMPARE(named<QPushButton>(data, "enable1").text(), QStringLiteral("other"));
    QVERIFY(named<QCheckBox>(data, "showCheckBox").isChecked());
}

void TestOverview::anInvalidStatusDisablesTheControls()
{
    OverviewWidget data(false);
    ConnectionStatus shown = status("0");
    const QStringList controls{
        "enable1", "enable2", "active1", "active2", "parameterPushButton", "showCheckBox"};
    for (const bool valid : {true, false, true}) {
        shown.statusValid = valid;
        data.updateRow(shown);
        for (const QString& name : controls)
            QCOMPARE(named<QWidget>(data, name).isEnabled(), valid);
        QVERIFY(named<QPushButton>(data, "xColor").isEnabled());
    }
}

void TestOverview::coloursAreToldOnceWhenTheyComeFromTheStatus()
{
    QSignalSpy spy(dialog.get(), &ConnectionOverviewDialog::changeColor);
    dialog->update(statuses({"0"}));
    QCOMPARE(spy.size(), 3);
    for (int graph = 0; graph < 3; ++graph) {
        QCOMPARE(spy.at(graph).at(0).toString(), QStringLiteral("ttyUSB0"));
        QCOMPARE(spy.at(graph).at(2).toInt(), graph);
    }
    QCOMPARE(spy.at(1).at(1).value<QColor>(), QColor(Qt::darkGreen));
    dialog->update(statuses({"0"}));
    QCOMPARE(spy.size(), 3);
}

void TestOverview::stageButtonsAskForTheOppositeAndStayAsTheyAre()
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

void TestOverview::showIsTold()
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

void TestOverview::parametersAreAskedFor()
{
    dialog->update(statuses({"0", "1"}));
    widgettest::show(*dialog);
    QSignalSpy spy(dialog.get(), &ConnectionOverviewDialog::openParamDialog);
    QVERIFY(click(named<QPushButton>(row(2), "parameterPushButton")));
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.first().first().toString(), QStringLiteral("ttyUSB1"));
}

void TestOverview::aChosenColourIsShownAndTold_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<int>("graph");
    QTest::newRow("x") << QByteArray("xColor") << 0;
    QTest::newRow("y") << QByteArray("yColor") << 1;
    QTest::newRow("intensity") << QByteArray("iColor") << 2;
}

void TestOverview::aChosenColourIsShownAndTold()
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

void TestOverview::anInvalidColourIsIgnored()
{
    OverviewWidget data(false);
    data.updateRow(status("0"));
    QSignalSpy spy(&data, &OverviewWidget::newColor);
    data.on_colorSelected(QColor());
    QCOMPARE(spy.size(), 0);
    QCOMPARE(named<QPushButton>(data, "xColor").styleSheet(),
             QStringLiteral("background-color: #ff0000"));
}

void TestOverview::aColourOfACommonDetectorDoesNothing()
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

void TestOverview::theColourDialogOpensWindowModal()
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

void TestOverview::aRowThatGoesTakesItsColourDialogWithIt()
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

void TestOverview::hiddenControlsStillTell()
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

void TestOverview::aRowTellsWhichOfTwoSystemsWithOneAddressIsMeant()
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

void TestOverview::aDragMovesTheEntryOfTheOrder_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<QList<int>>("order");
    QTest::newRow("first to last") << 0 << 2 << QList<int>{1, 2, 0};
    QTest::newRow("last to first") << 2 << 0 << QList<int>{2, 0, 1};
    QTest::newRow("to its own place") << 1 << 1 << QList<int>{0, 1, 2};
}

void TestOverview::aDragMovesTheEntryOfTheOrder()
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

void TestOverview::anOrderOutOfRangeIsIgnored()
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

void TestOverview::removingAConnectionErasesTheLastEntry()
{
    dialog->update(statuses({"a", "b", "c"}));
    dialog->changeOrder(0, 2);
    QCOMPARE(dialog->order(), QList<int>({1, 2, 0}));
    // It is the last entry, not that of the connection that went.
    dialog->update(statuses({"a", "b"}));
    QCOMPARE(dialog->order(), QList<int>({1, 2}));
}

void TestOverview::onlyRowsCanBeDragged()
{
    dialog->update(statuses({"a"}));
    QVERIFY(!list().item(0)->flags().testFlag(Qt::ItemIsDragEnabled));
    QVERIFY(list().item(1)->flags().testFlag(Qt::ItemIsDragEnabled));
}

void TestOverview::movedRowsKeepTheirWidgets()
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

void TestOverview::longLabelsAreNotCut()
{
    const QString longest(25, 'W');
    dialog->update(statuses({"a", "b"}));
    widgettest::show(*dialog);
    dialog->update(statuses({"a", longest}));
    QCoreApplication::processEvents();
    const QLabel& label = named<QLabel>(row(2), "label");
    QVERIFY(label.width() >= label.fontMetrics().horizontalAdvance(longest));
    QCOMPARE(row(0).width(), row(2).width());
    QVERIFY(!row(2).rect().isEmpty());
    QVERIFY(label.geometry().right() < named<QWidget>(row(2), "enable1").geometry().left());
}

void TestOverview::tabFollowsTheEye()
{
    dialog->update(statuses({"a", "b"}));
    widgettest::show(*dialog);
    named<QWidget>(row(1), "enable1").setFocus();
    QStringList visited;
    for (int i = 0; i < 15 && visited.value(visited.size() - 1) != "closePushButton"; ++i) {
        visited.append(QApplication::focusWidget()->objectName());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    const QStringList ofARow{
        "enable1", "enable2", "xColor", "yColor", "iColor", "parameterPushButton", "showCheckBox"};
    QCOMPARE(visited, ofARow + ofARow + QStringList{"closePushButton"});
}

void TestOverview::closeAndEscapeClose()
{
    widgettest::show(*dialog);
    QVERIFY(click(named<QPushButton>(*dialog, "closePushButton")));
    QVERIFY(!dialog->isVisible());
    widgettest::show(*dialog);
    QTest::keyClick(dialog.get(), Qt::Key_Escape);
    QVERIFY(!dialog->isVisible());
}

QTEST_MAIN(TestOverview)
#include "tst_overview.moc"
