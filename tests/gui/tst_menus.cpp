// Every entry of the menus does what it says, and every dialog behind one is opened, used and
// closed without a mouse.

#include "app/switches.h"
#include "link/connection.h"
#include "support/boxanswers.h"
#include "support/desktop.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "tcptab.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSet>
#include <QTabBar>
#include <QWindow>
#include <QtTest>

#include <algorithm>
#include <memory>

namespace {

/// An entry of the menus and the title of the window that it opens.
struct Opening
{
    const char* action;
    const char* title;
};

/// Entries that open a dialog. A new one is added here; the tests below then ask of it what they
/// ask of the others.
constexpr Opening dialogs[] = {
    {"actionSetup", "Connection settings"},
    {"actionConfiguration", "System Configuration"},
    {"actionOpenDataLog", "Data recording"},
    {"actionAbout_the_Software", "About this software"},
    {"actionOperation_Tests", "Operation Tests Qor-Digital"},
};

/// Entries that say in a box that a file is missing, as it is beside this test.
constexpr Opening boxes[] = {
    {"actionSoftware", "File not found"},
    {"actionLumetra", "File not found"},
};

/// Entries that close something; each has a test of its own.
constexpr const char* closers[] = {"actionCloseDataLog", "actionExit"};

void addOpenings(const QVector<Opening>& openings)
{
    QTest::addColumn<QByteArray>("action");
    QTest::addColumn<QString>("title");
    for (const Opening& opening : openings)
        QTest::newRow(opening.action) << QByteArray(opening.action) << QString(opening.title);
}

/// Names of the entries that a user can choose, in the menus below as well.
QStringList choosableEntries(const QWidget& menu)
{
    QStringList names;
    const QList<QAction*> actions = menu.actions();
    for (const QAction* action : actions) {
        if (!action->isVisible() || !action->isEnabled() || action->isSeparator())
            continue;
        if (action->menu())
            names += choosableEntries(*action->menu());
        else
            names.append(action->objectName());
    }
    return names;
}

/// The entries that lead from a menu to an action, the action itself at the end.
QList<QAction*> roadTo(const QString& action, const QWidget& menu)
{
    const QList<QAction*> entries = menu.actions();
    for (QAction* entry : entries) {
        if (entry->objectName() == action)
            return {entry};
        if (!entry->menu())
            continue;
        const QList<QAction*> road = roadTo(action, *entry->menu());
        if (!road.isEmpty())
            return QList<QAction*>{entry} + road;
    }
    return {};
}

/// Presses a key until the entry is the active one of the menu or menu bar.
template <typename Menu>
bool moveTo(const Menu& menu, const QAction* entry, Qt::Key key)
{
    for (int step = 0; step <= menu.actions().size(); ++step) {
        if (menu.activeAction() == entry)
            return true;
        QTest::keyClick(menu.window()->windowHandle(), key);
    }
    return false;
}

/// A radio button that is not ticked is reached from the ticked one of its group, by arrow keys.
bool isReachedByArrows(const QWidget& widget)
{
    const auto* radio = qobject_cast<const QRadioButton*>(&widget);
    return radio && !radio->isChecked();
}

/// What a user can work in a dialog.
QSet<QWidget*> controlsOf(const QDialog& dialog)
{
    QSet<QWidget*> controls;
    const auto widgets = dialog.findChildren<QWidget*>();
    for (QWidget* widget : widgets) {
        const bool takesTab = widget->focusPolicy() & Qt::TabFocus;
        if (takesTab && widget->isVisible() && widget->isEnabled() && !widget->focusProxy()
            && !isReachedByArrows(*widget))
            controls.insert(widget);
    }
    return controls;
}

QString namesOf(const QSet<QWidget*>& widgets)
{
    QStringList names;
    for (const QWidget* widget : widgets)
        names.append(widget->metaObject()->className() + QLatin1Char(' ') + widget->objectName());
    names.sort();
    return names.join(", ");
}

} // namespace

class TestMenus final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void everyEntryIsInATableOfThisTest();
    void entriesOpenTheirDialogs_data() { addOpenings(dialogRows()); }
    void entriesOpenTheirDialogs();
    void tabReachesEveryControlOfADialog_data() { addOpenings(dialogRows()); }
    void tabReachesEveryControlOfADialog();
    void entriesTellWhatIsMissing_data() { addOpenings({std::begin(boxes), std::end(boxes)}); }
    void entriesTellWhatIsMissing();
    void closeEntryClosesTheRecordingDialog();
    void exitEntryClosesTheWindow();

    void keyboardAloneConnectsASystem();
    void keyboardAloneTakesASystemOffThePlots();
    void keyboardAloneOpensTheParametersOfASystem();
    void keyboardAloneNamesARecording();

private:
    static QVector<Opening> dialogRows() { return {std::begin(dialogs), std::end(dialogs)}; }
    QMenuBar& menuBar() const { return *fixture->find<QMenuBar>("menubar"); }

    /// Opens the menus by keys and chooses an entry.
    bool choose(const QByteArray& action) const;
    /// The visible dialog with the keyboard; null if there is none.
    QDialog* openDialog() const;
    /// A control in the row of the only system in the overview, which is the open dialog.
    const QWidget* inRow(const char* name) const;
    void press(Qt::Key key) const;
    /// Tabs to a control of the active window.
    bool tabTo(const QWidget* control) const;
    /// The controls of the open dialog that Tab does not come to; empty if there are none.
    QString missedByTab(const QDialog& dialog) const;

    std::unique_ptr<WindowFixture> fixture;
};

void TestMenus::init()
{
    switches::serviceMode = true;
    fixture = std::make_unique<WindowFixture>(1);
    QVERIFY(fixture->openWithSystems());
}

void TestMenus::cleanup()
{
    fixture.reset();
    switches::serviceMode = false;
    QCOMPARE(leftWidgets(), QString());
}

bool TestMenus::choose(const QByteArray& action) const
{
    const QList<QAction*> road = roadTo(action, menuBar());
    if (road.isEmpty())
        return false;
    QApplication::setActiveWindow(&fixture->window());
    press(Qt::Key_Alt);
    // After an entry was chosen by keys, Qt takes the first Alt for the end of that.
    if (!menuBar().activeAction())
        press(Qt::Key_Alt);
    if (!moveTo(menuBar(), road.first(), Qt::Key_Right))
        return false;
    press(Qt::Key_Down);
    for (int depth = 1; depth < road.size(); ++depth) {
        if (!moveTo(*road.at(depth - 1)->menu(), road.at(depth), Qt::Key_Down))
            return false;
        press(Qt::Key_Return);
    }
    return true;
}

QDialog* TestMenus::openDialog() const
{
    return qobject_cast<QDialog*>(QApplication::activeWindow());
}

const QWidget* TestMenus::inRow(const char* name) const
{
    const auto rows = openDialog()->findChildren<QWidget*>(QLatin1String(name));
    const auto shown = std::find_if(rows.begin(), rows.end(),
                                    [](const QWidget* control) { return control->isVisible(); });
    return shown == rows.end() ? nullptr : *shown;
}

void TestMenus::press(Qt::Key key) const
{
    const QWidget* popup = QApplication::activePopupWidget();
    const QWidget* receiver = popup ? popup : QApplication::activeWindow();
    QTest::keyClick(receiver->windowHandle(), key);
}

bool TestMenus::tabTo(const QWidget* control) const
{
    constexpr int patience = 100;
    for (int step = 0; control && step < patience; ++step) {
        if (control->hasFocus())
            return true;
        press(Qt::Key_Tab);
    }
    return false;
}

QString TestMenus::missedByTab(const QDialog& dialog) const
{
    QSet<QWidget*> missed = controlsOf(dialog);
    // Some controls have several stops, such as a label with several links.
    const int stops = 3 * missed.size();
    for (int step = 0; step < stops; ++step) {
        missed.remove(QApplication::focusWidget());
        press(Qt::Key_Tab);
    }
    return namesOf(missed);
}

void TestMenus::everyEntryIsInATableOfThisTest()
{
    QStringList known(std::begin(closers), std::end(closers));
    for (const Opening& opening : dialogs)
        known.append(opening.action);
    for (const Opening& opening : boxes)
        known.append(opening.action);
    QStringList offered = choosableEntries(menuBar());
    known.sort();
    offered.sort();
    QCOMPARE(offered, known);
}

void TestMenus::entriesOpenTheirDialogs()
{
    QFETCH(QByteArray, action);
    QFETCH(QString, title);
    for (int opening = 1; opening <= 2; ++opening) {
        QVERIFY(choose(action));
        QVERIFY(openDialog());
        QCOMPARE(openDialog()->windowTitle(), title);
        press(Qt::Key_Escape);
        QVERIFY(!openDialog());
    }
}

void TestMenus::tabReachesEveryControlOfADialog()
{
    QFETCH(QByteArray, action);
    QVERIFY(choose(action));
    const QDialog* dialog = openDialog();
    QVERIFY(dialog);
    QVERIFY(!controlsOf(*dialog).isEmpty());
    QCOMPARE(missedByTab(*dialog), QString());
    QCOMPARE(QApplication::activeWindow(), dialog);
}

void TestMenus::entriesTellWhatIsMissing()
{
    QFETCH(QByteArray, action);
    QFETCH(QString, title);
    const Desktop desktop;
    const BoxAnswers answers;
    QVERIFY(choose(action));
    QCOMPARE(answers.titles(), QStringList{title});
    QVERIFY(desktop.opened.isEmpty());
}

void TestMenus::closeEntryClosesTheRecordingDialog()
{
    QVERIFY(choose("actionOpenDataLog"));
    const QDialog* dialog = openDialog();
    QVERIFY(dialog);
    QVERIFY(choose("actionCloseDataLog"));
    QVERIFY(!dialog->isVisible());
}

void TestMenus::exitEntryClosesTheWindow()
{
    QVERIFY(choose("actionExit"));
    QVERIFY(!fixture->window().isVisible());
}

void TestMenus::keyboardAloneConnectsASystem()
{
    fixture->addController();
    makeShortConnections(*fixture);
    QVERIFY(choose("actionSetup"));
    const QDialog& dialog = *openDialog();
    QVERIFY(tabTo(&in<QTabBar>(dialog, "qt_tabwidget_tabbar")));
    press(Qt::Key_Right);
    QVERIFY(tabTo(&in<QLineEdit>(dialog, "addressTcpEdit")));
    QTest::keyClicks(QApplication::focusWidget(), fixture->controller(1).address());
    QVERIFY(tabTo(&in<QLineEdit>(dialog, "portLineEdit")));
    QTest::keyClicks(QApplication::focusWidget(), QString::number(fixture->controller(1).port()));
    QVERIFY(tabTo(&in<QLineEdit>(dialog, "labelTcpEdit")));
    QTest::keyClicks(QApplication::focusWidget(), "Second");
    QVERIFY(tabTo(&in<QPushButton>(dialog, "connectTcpButton")));
    press(Qt::Key_Space);
    QTRY_COMPARE(fixture->window().liveSystems().size(), 2);
    QCOMPARE(fixture->connection(1).address(), fixture->controller(1).address());
}

void TestMenus::keyboardAloneTakesASystemOffThePlots()
{
    QCOMPARE(fixture->window().shownConnections(), QList<int>{0});
    QVERIFY(choose("actionConfiguration"));
    fixture->tick();
    QVERIFY(tabTo(inRow("showCheckBox")));
    press(Qt::Key_Space);
    QVERIFY(fixture->window().shownConnections().isEmpty());
}

void TestMenus::keyboardAloneOpensTheParametersOfASystem()
{
    QVERIFY(choose("actionConfiguration"));
    QDialog* overview = openDialog();
    for (int opening = 1; opening <= 2; ++opening) {
        QVERIFY(tabTo(inRow("parameterPushButton")));
        press(Qt::Key_Space);
        const QDialog* parameters = openDialog();
        QVERIFY(parameters && parameters != overview);
        QCOMPARE(parameters->windowTitle(), QString("Parameters"));
        QCOMPARE(missedByTab(*parameters), QString());
        press(Qt::Key_Escape);
        QVERIFY(!parameters->isVisible());
        QApplication::setActiveWindow(overview);
    }
}

void TestMenus::keyboardAloneNamesARecording()
{
    QVERIFY(choose("actionOpenDataLog"));
    const auto& name = in<QLineEdit>(*openDialog(), "lineEdit_FileName");
    const auto& every = in<QCheckBox>(*openDialog(), "checkBox");
    QVERIFY(tabTo(&name));
    QTest::keyClicks(QApplication::focusWidget(), "beam.csv");
    QCOMPARE(name.text(), QString("beam.csv"));
    const bool wasChecked = every.isChecked();
    QVERIFY(tabTo(&every));
    press(Qt::Key_Space);
    QCOMPARE(every.isChecked(), !wasChecked);
}

QTEST_MAIN(TestMenus)
#include "tst_menus.moc"
