// Two systems with one address: controllers at two ports of one host, of which both, one or none
// are up. Whatever is done to a line or a row reaches the system that it belongs to.

#include "link/connection.h"
#include "plots/genericplot.h"
#include "setup/connectionoverviewdialog.h"
#include "setup/connectionwidget.h"
#include "setup/overviewwidget.h"
#include "setup/settingsdialog.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "tcptab.h"
#include "window/mainwindow.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QtTest>

namespace {

constexpr int systems = 2;

int other(int system)
{
    return 1 - system;
}

/// The window with both systems, loaded from a file as the user does.
class Pair final
{
public:
    Pair(bool firstUp, bool secondUp)
    {
        fixture.addController();
        fixture.addNeighbour(0);
        QList<ConnectionSettings> records{fixture.record(0), fixture.record(1)};
        records[0].autoConnect = firstUp;
        records[1].autoConnect = secondUp;
        isLoaded = fixture.open() && load(records) && isUp(0) == firstUp && isUp(1) == secondUp;
    }

    /// Puts the records into a file and loads it.
    bool load(const QList<ConnectionSettings>& records)
    {
        makeShortConnections(fixture);
        return fixture.writeSetupFile(records) && loadSaved();
    }
    bool loadSaved() const
    {
        dialog().closeAllConnections();
        dialog().loadConnection(QString());
        return fixture.window().liveConnections().size() == systems;
    }

    SettingsDialog& dialog() const { return *fixture.window().findChild<SettingsDialog*>(); }
    template <typename Row, typename Dialog>
    Row& rowOf(const char* listName, int place) const
    {
        auto* list = fixture.window().findChild<Dialog*>()->template findChild<QListWidget*>(
            QLatin1String(listName));
        return *qobject_cast<Row*>(list->itemWidget(list->item(place)));
    }
    ConnectionWidget& line(int system) const
    {
        return rowOf<ConnectionWidget, SettingsDialog>("listWidgetTcp", system);
    }
    OverviewWidget& row(int system) const
    {
        fixture.tick();
        return rowOf<OverviewWidget, ConnectionOverviewDialog>("listWidget", 1 + system);
    }
    /// Presses a button, or ticks a box, of a line or a row.
    static void press(const QWidget& row, const char* name)
    {
        row.findChild<QAbstractButton*>(QLatin1String(name))->click();
    }
    QString buttonText(int system) const
    {
        return line(system).findChild<QPushButton*>(QStringLiteral("Button"))->text();
    }

    bool isUp(int system) const { return fixture.connection(system).isConnected(); }
    ConnectionStatus status(int system) const { return fixture.window().liveStatuses()[system]; }
    QString label(int system) const { return status(system).label; }
    QString idOf(int system) const { return line(system).number(); }

    void clearWires() const
    {
        for (int system = 0; system < systems; ++system)
            fixture.controller(system).clearWire();
    }
    /// Commands that a controller got, but for requests of its status.
    QByteArrayList commands(int system) const
    {
        QByteArrayList all = fixture.controller(system).commands();
        all.removeAll("GSF;");
        return all;
    }

    WindowFixture fixture;
    bool isLoaded = false;
};

void addPairs(bool onlyWithOneUp = false, bool onlyMeantUp = false)
{
    QTest::addColumn<bool>("firstUp");
    QTest::addColumn<bool>("secondUp");
    QTest::addColumn<int>("meant");
    for (const bool firstUp : {true, false}) {
        for (const bool secondUp : {true, false}) {
            for (const int meant : {0, 1}) {
                const bool meantUp = meant == 0 ? firstUp : secondUp;
                if ((onlyWithOneUp && firstUp == secondUp) || (onlyMeantUp && !meantUp))
                    continue;
                QTest::addRow("%s, %s, %s is meant", firstUp ? "first up" : "first down",
                              secondUp ? "second up" : "second down", meant ? "second" : "first")
                    << firstUp << secondUp << meant;
            }
        }
    }
}

} // namespace

#define FETCH_PAIR                                                                                 \
    QFETCH(bool, firstUp);                                                                         \
    QFETCH(bool, secondUp);                                                                        \
    QFETCH(int, meant);                                                                            \
    Pair pair(firstUp, secondUp);                                                                  \
    QVERIFY(pair.isLoaded);                                                                        \
    QCOMPARE(pair.status(0).address, pair.status(1).address)

class TestSharedAddress final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void aLabelIsThatOfItsLine_data() { addPairs(); }
    void aLabelIsThatOfItsLine();
    void aColourIsThatOfItsRow_data() { addPairs(); }
    void aColourIsThatOfItsRow();
    void hidingAndShowingReachTheirRow_data() { addPairs(false, true); }
    void hidingAndShowingReachTheirRow();
    void aStageIsSwitchedInItsRow_data() { addPairs(false, true); }
    void aStageIsSwitchedInItsRow();
    void disconnectAndReconnectReachTheirLine_data() { addPairs(false, true); }
    void disconnectAndReconnectReachTheirLine();
    void reconnectLeavesTheRunningOneAlone_data() { addPairs(true); }
    void reconnectLeavesTheRunningOneAlone();
    void anotherControllerIsNeverStarted();
    void aLossIsThatOfItsLine_data() { addPairs(false, true); }
    void aLossIsThatOfItsLine();
    void deletingRemovesItsLine_data() { addPairs(); }
    void deletingRemovesItsLine();
    void savedFileHasBothInTheirOrder_data() { addPairs(); }
    void savedFileHasBothInTheirOrder();
};

void TestSharedAddress::aLabelIsThatOfItsLine()
{
    FETCH_PAIR;
    pair.clearWires();
    const QString otherLabel = pair.label(other(meant));
    auto* edit = pair.line(meant).findChild<QLineEdit*>(QStringLiteral("lineEdit"));
    edit->clear();
    QTest::keyClicks(edit, "x");
    QCOMPARE(pair.label(meant), QStringLiteral("x"));
    QCOMPARE(pair.label(other(meant)), otherLabel);
    QCOMPARE(pair.commands(meant).size(), pair.isUp(meant) ? 1 : 0);
    QCOMPARE(pair.commands(other(meant)), QByteArrayList());
}

void TestSharedAddress::aColourIsThatOfItsRow()
{
    FETCH_PAIR;
    OverviewWidget& row = pair.row(meant);
    Pair::press(row, "xColor");
    auto* chooser = row.findChild<QColorDialog*>();
    chooser->setCurrentColor(Qt::magenta);
    chooser->accept();
    QCOMPARE(pair.status(meant).colorX, QColor(Qt::magenta));
    QCOMPARE(pair.status(other(meant)).colorX, QColor(Qt::red));
    for (const int stage : {1, 2}) {
        const GenericPlot& plot = pair.fixture.positionPlot(stage);
        QCOMPARE(plot.curveColor(2 * meant), QColor(Qt::magenta));
        QCOMPARE(plot.curveColor(2 * other(meant)), QColor(Qt::red));
    }
}

void TestSharedAddress::hidingAndShowingReachTheirRow()
{
    FETCH_PAIR;
    const QList<int> shown = pair.fixture.window().shownConnections();
    QVERIFY(shown.contains(meant));
    Pair::press(pair.row(meant), "showCheckBox");
    QList<int> rest = shown;
    rest.removeOne(meant);
    QCOMPARE(pair.fixture.window().shownConnections(), rest);
    Pair::press(pair.row(meant), "showCheckBox");
    QCOMPARE(pair.fixture.window().shownConnections(), rest + QList<int>{meant});
}

void TestSharedAddress::aStageIsSwitchedInItsRow()
{
    FETCH_PAIR;
    Pair::press(pair.row(meant), "enable2");
    QVERIFY(pair.fixture.controller(meant).stageOn(2));
    QVERIFY(!pair.fixture.controller(other(meant)).stageOn(2));
}

void TestSharedAddress::disconnectAndReconnectReachTheirLine()
{
    FETCH_PAIR;
    const bool otherUp = pair.isUp(other(meant));
    const QString id = pair.idOf(meant);
    Pair::press(pair.line(meant), "Button");
    QVERIFY(!pair.isUp(meant));
    QCOMPARE(pair.buttonText(meant), QStringLiteral("Reconnect"));
    QCOMPARE(pair.isUp(other(meant)), otherUp);
    QCOMPARE(pair.buttonText(other(meant)),
             otherUp ? QStringLiteral("Disconnect") : QStringLiteral("Reconnect"));

    Pair::press(pair.line(meant), "Button");
    QVERIFY(pair.isUp(meant));
    QCOMPARE(pair.buttonText(meant), QStringLiteral("Disconnect"));
    QCOMPARE(pair.idOf(meant), id);
    QCOMPARE(pair.isUp(other(meant)), otherUp);
}

void TestSharedAddress::reconnectLeavesTheRunningOneAlone()
{
    FETCH_PAIR;
    const int running = firstUp ? 0 : 1;
    if (meant == running)
        QVERIFY(pair.fixture.clickAction("startAction"));
    pair.clearWires();
    Pair::press(pair.line(other(running)), "Button");
    QVERIFY(pair.isUp(other(running)));
    QVERIFY(pair.isUp(running));
    QCOMPARE(pair.commands(running), QByteArrayList());
    QCOMPARE(pair.fixture.controller(running).isStreaming(), meant == running);
    // A system that comes up while an acquisition runs joins it, under its own label.
    QCOMPARE(pair.fixture.controller(other(running)).isStreaming(), meant == running);
    QCOMPARE(pair.label(other(running)), pair.fixture.record(other(running)).label.text());
}

void TestSharedAddress::anotherControllerIsNeverStarted()
{
    Pair pair(true, false);
    QVERIFY(pair.isLoaded);
    QVERIFY(pair.fixture.clickAction("startAction"));
    pair.fixture.controller(1).setIdentity({});
    pair.clearWires();
    Pair::press(pair.line(1), "Button");
    QVERIFY(!pair.isUp(1));
    QCOMPARE(pair.buttonText(1), QStringLiteral("Reconnect"));
    QCOMPARE(infoText(pair.fixture),
             QStringLiteral("Could not establish connection. Controller ID mismatch."));
    const QByteArrayList commands = pair.commands(1);
    QVERIFY(commands.contains("GID;"));
    for (const QByteArray& command : commands)
        QVERIFY2(command == "CLS;" || command == "GID;", command.constData());
    QCOMPARE(pair.fixture.window().shownConnections(), QList<int>{0});
    QVERIFY(pair.fixture.controller(0).isStreaming());
}

void TestSharedAddress::aLossIsThatOfItsLine()
{
    FETCH_PAIR;
    const bool otherUp = pair.isUp(other(meant));
    pair.fixture.controller(meant).closeConnection();
    QTRY_COMPARE(pair.buttonText(meant), QStringLiteral("Reconnect"));
    QVERIFY(!pair.isUp(meant));
    QCOMPARE(pair.isUp(other(meant)), otherUp);
    QCOMPARE(pair.buttonText(other(meant)),
             otherUp ? QStringLiteral("Disconnect") : QStringLiteral("Reconnect"));
    QVERIFY(!pair.fixture.window().shownConnections().contains(meant));
    QCOMPARE(pair.fixture.window().shownConnections().contains(other(meant)), otherUp);
}

void TestSharedAddress::deletingRemovesItsLine()
{
    FETCH_PAIR;
    const QString restLabel = pair.label(other(meant));
    const QString restId = pair.idOf(other(meant));
    const bool restUp = pair.isUp(other(meant));
    Pair::press(pair.line(meant), "deleteButton");
    QCOMPARE(int(pair.fixture.window().liveConnections().size()), 1);
    QCOMPARE(pair.label(0), restLabel);
    QCOMPARE(pair.idOf(0), restId);
    QCOMPARE(pair.isUp(0), restUp);
    QTRY_VERIFY(!pair.fixture.controller(meant).isConnected());
    QCOMPARE(pair.fixture.controller(other(meant)).isConnected(), restUp);
}

void TestSharedAddress::savedFileHasBothInTheirOrder()
{
    FETCH_PAIR;
    const QStringList ids{pair.idOf(0), pair.idOf(1)};
    const bool wasTicked = meant == 0 ? firstUp : secondUp;
    Pair::press(pair.line(meant), "checkBoxAutoConnect");
    pair.dialog().on_saveConnectionButton_clicked();
    QCOMPARE(infoText(pair.fixture), QStringLiteral("Connection setup saved"));
    QVERIFY(pair.loadSaved());
    QCOMPARE((QStringList{pair.idOf(0), pair.idOf(1)}), ids);
    QCOMPARE(pair.isUp(meant), !wasTicked);
    QCOMPARE(pair.isUp(other(meant)), meant == 0 ? secondUp : firstUp);
    for (int system = 0; system < systems; ++system)
        QCOMPARE(pair.label(system), pair.fixture.record(system).label.text());
}

QTEST_MAIN(TestSharedAddress)

#include "tst_sharedaddress.moc"
