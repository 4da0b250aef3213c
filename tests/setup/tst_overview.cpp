#include "images/images.h"
#include "link/tcpclient.h"
#include "overviewstatuses.h"
#include "setup/connectionoverviewdialog.h"
#include "setup/listwidget.h"
#include "setup/overviewwidget.h"
#include "widgettest.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QtTest>

#include <functional>

Q_DECLARE_METATYPE(std::function<void(ConnectionStatus&)>)

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

/// What the user can read in a row, and what can be pressed.
QStringList lookOf(const QWidget& row)
{
    QStringList look{named<QLabel>(row, "label").text(), named<QLabel>(row, "label").toolTip()};
    for (const char* name : {"active1", "active2"})
        look.append(named<QLabel>(row, name).toolTip());
    for (const char* name : {"enable1", "enable2", "xColor", "yColor", "iColor", "showCheckBox"}) {
        const auto& button = named<QAbstractButton>(row, name);
        look.append(button.text() + button.styleSheet());
        look.append(button.isEnabled() ? "enabled" : "disabled");
        look.append(button.isChecked() ? "checked" : "unchecked");
    }
    return look;
}

constexpr char redLight[] = ":/images/red_light.png";
constexpr char greenLight[] = ":/images/green_light.png";

} // namespace

class TestOverview final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { initImages(); }
    void init() { dialog = std::make_unique<ConnectionOverviewDialog>(); }
    void cleanup();

    void theHeaderShowsTheNamesAndARowTheValues();
    void headerAndRowsAlign();
    void whatHasNoEffectIsNeverShown();
    void theDialogComesAsItIsLaidDown();
    void rowsFollowTheStatuses();
    void withoutConnectionsOnlyTheHeaderIsLeft();
    void aRowShowsItsStatus();
    void aFreshRowShowsRedLights();
    void aRowIsTouchedOnlyByChanges();
    void aHiddenRowIsLeftAloneWhileItsStatusStays();
    void aHiddenRowFollowsItsStatus_data();
    void aHiddenRowFollowsItsStatus();
    void aHiddenRowFollowsItsConnection();
    void hiddenRowsFollowAClosedSystem();
    void aRowIsPutRightAfterTheDialogWasClosed();
    void anInvalidStatusDisablesTheControls();
    void coloursAreToldOnceWhenTheyComeFromTheStatus();
    void longLabelsAreNotCut();
    void tabFollowsTheEye();
    void closeAndEscapeClose();

private:
    using Change = std::function<void(ConnectionStatus&)>;

    ListWidget& list() const { return named<ListWidget>(*dialog, "listWidget"); }
    QWidget& row(int index) const { return *list().itemWidget(list().item(index)); }

    std::unique_ptr<ConnectionOverviewDialog> dialog;
};

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

void TestOverview::aHiddenRowIsLeftAloneWhileItsStatusStays()
{
    const QVector<ConnectionStatus> all = statuses({"a", "b"});
    dialog->update(all);
    // A row that is touched gets its controls enabled each time.
    auto& button = named<QPushButton>(row(2), "enable1");
    button.setEnabled(false);
    dialog->update(all);
    QVERIFY(!button.isEnabled());
    widgettest::show(*dialog);
    dialog->update(all);
    QVERIFY(button.isEnabled());
}

void TestOverview::aHiddenRowFollowsItsStatus_data()
{
    QTest::addColumn<Change>("change");
    const auto add = [](const char* name, const Change& change) { QTest::newRow(name) << change; };
    add("label", [](ConnectionStatus& s) { s.label = "other"; });
    add("address", [](ConnectionStatus& s) { s.address = "other"; });
    add("validity", [](ConnectionStatus& s) { s.statusValid = false; });
    add("stabilised 1", [](ConnectionStatus& s) { s.stabilised1 = true; });
    add("stabilised 2", [](ConnectionStatus& s) { s.stabilised2 = true; });
    add("active 1", [](ConnectionStatus& s) { s.active1 = true; });
    add("active 2", [](ConnectionStatus& s) { s.active2 = true; });
    add("colour x", [](ConnectionStatus& s) { s.colorX = Qt::cyan; });
    add("colour y", [](ConnectionStatus& s) { s.colorY = Qt::cyan; });
    add("colour of the intensity", [](ConnectionStatus& s) { s.colorI = Qt::cyan; });
    add("displayed", [](ConnectionStatus& s) { s.displayed = true; });
}

void TestOverview::aHiddenRowFollowsItsStatus()
{
    QFETCH(Change, change);
    QVector<ConnectionStatus> all = statuses({"a", "b"});
    dialog->update(all);
    const QStringList before = lookOf(row(2));
    const QStringList other = lookOf(row(1));
    change(all.last());
    dialog->update(all);
    const QStringList hidden = lookOf(row(2));
    QVERIFY(hidden != before);
    QCOMPARE(lookOf(row(1)), other);
    widgettest::show(*dialog);
    QCOMPARE(lookOf(row(2)), hidden);
    dialog->update(all);
    QCOMPARE(lookOf(row(2)), hidden);
}

/// Two systems that share an address can look alike.
void TestOverview::aHiddenRowFollowsItsConnection()
{
    TcpClient first;
    TcpClient second;
    QVector<ConnectionStatus> all = statuses({"a"});
    for (Connection* connection :
         {static_cast<Connection*>(&first), static_cast<Connection*>(&second)}) {
        all[0].connection = connection;
        dialog->update(all);
        QCOMPARE(static_cast<OverviewWidget&>(row(1)).connection(), connection);
    }
}

void TestOverview::hiddenRowsFollowAClosedSystem()
{
    QVector<ConnectionStatus> all = statuses({"a", "b", "c"});
    all[1].displayed = true;
    dialog->update(all);
    all.removeFirst();
    dialog->update(all);
    QCOMPARE(named<QLabel>(row(1), "label").text(), QStringLiteral("b"));
    QVERIFY(named<QCheckBox>(row(1), "showCheckBox").isChecked());
    QCOMPARE(named<QLabel>(row(2), "label").text(), QStringLiteral("c"));
    QVERIFY(!named<QCheckBox>(row(2), "showCheckBox").isChecked());
}

void TestOverview::aRowIsPutRightAfterTheDialogWasClosed()
{
    const QVector<ConnectionStatus> all = statuses({"a"});
    dialog->update(all);
    widgettest::show(*dialog);
    dialog->update(all);
    auto& box = named<QCheckBox>(row(1), "showCheckBox");
    QVERIFY(click(box));
    QVERIFY(box.isChecked());
    QVERIFY(click(named<QPushButton>(*dialog, "closePushButton")));
    // The wish was refused: the status is as before.
    dialog->update(all);
    QVERIFY(!box.isChecked());
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
