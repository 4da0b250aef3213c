// The service dialog in its window: who opens and closes it, and what goes on meanwhile.

#include "app/switches.h"
#include "link/tcpclient.h"
#include "plots/counter.h"
#include "service/servicedialog.h"
#include "setup/settings.h"
#include "setup/settingsdialog.h"
#include "support/userinput.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "tcptab.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTextBrowser>
#include <QtTest>

namespace {

/// Shows the menu of technicians in windows that are opened while it lives.
class ServiceMode final
{
public:
    ServiceMode() { switches::serviceMode = true; }
    ~ServiceMode() { switches::serviceMode = false; }
    ServiceMode(const ServiceMode&) = delete;
    ServiceMode& operator=(const ServiceMode&) = delete;
};

ServiceDialog& service(const WindowFixture& fixture)
{
    return *fixture.window().findChild<ServiceDialog*>();
}

bool open(const WindowFixture& fixture)
{
    fixture.find<QAction>("actionOperation_Tests")->trigger();
    return QTest::qWaitForWindowExposed(&service(fixture));
}

bool clickAndWait(const WindowFixture& fixture, const char* name)
{
    auto& button = in<QPushButton>(service(fixture), name);
    const auto isEnabled = [&] { return button.isEnabled(); };
    return QTest::qWaitFor(isEnabled) && user::click(&button) && QTest::qWaitFor(isEnabled);
}

QString results(const WindowFixture& fixture)
{
    return in<QTextBrowser>(service(fixture), "result_textBrowser").toPlainText();
}

/// Systems that the connection dialog knows, too. It stops each of them, idle, for whole time-outs.
bool openWithLines(WindowFixture& fixture, int systems)
{
    if (!fixture.open())
        return false;
    settingsDialog(fixture).setConnectionFactory([](ConnectionType) {
        constexpr int timeoutMs = 100;
        auto client = std::make_unique<TcpClient>();
        client->setTimeoutMs(timeoutMs);
        return client;
    });
    for (int number = 0; number < systems; ++number) {
        if (!connectByDialog(fixture, number, QStringLiteral("system %1").arg(number)))
            return false;
    }
    return true;
}

} // namespace

class TestService final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void menuOpensTheDialogByMouse();
    void menuOpensTheDialogByKeyboard();
    void withoutASystemTheMenuOpensNothing();
    void testsAreForTheCurrentSystem();
    void openingAgainAsksAgain();
    void acquisitionGoesOnBehindATest();
    void streamWithoutARateGetsThatOfTheToolBar();
    void dialogClosesWhenItsSystemIsDeleted();
    void dialogStaysWhenAnotherSystemIsDeleted();
    void dialogOutlivesTheLossOfItsLink();
    void dialogWorksAgainBehindAReconnect();
    void savingKeepsThePortOfAnAddressThatCanNotBeUsed();
    void windowClosesWithTheDialogOpen_data();
    void windowClosesWithTheDialogOpen();
};

void TestService::menuOpensTheDialogByMouse()
{
    const ServiceMode mode;
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    auto& menu = *fixture.find<QMenu>("menuService");
    auto& bar = *fixture.find<QMenuBar>("menubar");
    QVERIFY(user::click(&bar, bar.actionGeometry(menu.menuAction()).center()));
    QTRY_VERIFY(menu.isVisible());
    QVERIFY(user::click(&menu, menu.actionGeometry(menu.actions().first()).center()));
    QTRY_VERIFY(service(fixture).isVisible());
    QCOMPARE(in<QLabel>(service(fixture), "boardId_Label").text(), fixture.controller().id());
}

void TestService::menuOpensTheDialogByKeyboard()
{
    const ServiceMode mode;
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    auto& menu = *fixture.find<QMenu>("menuService");
    fixture.find<QMenuBar>("menubar")->setActiveAction(menu.menuAction());
    QTRY_VERIFY(menu.isVisible());
    QTest::keyClick(menu.windowHandle(), Qt::Key_Down);
    QTest::keyClick(menu.windowHandle(), Qt::Key_Return);
    QTRY_VERIFY(service(fixture).isVisible());
    QTest::keyClick(service(fixture).windowHandle(), Qt::Key_Escape);
    QVERIFY(!service(fixture).isVisible());
}

void TestService::withoutASystemTheMenuOpensNothing()
{
    WindowFixture fixture;
    QVERIFY(fixture.open());
    fixture.find<QAction>("actionOperation_Tests")->trigger();
    QVERIFY(!service(fixture).isVisible());
    QVERIFY(!service(fixture).connection());
}

void TestService::testsAreForTheCurrentSystem()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.openWithSystems());
    fixture.window().showConnection(fixture.connection(0).address(), false);
    QVERIFY(open(fixture));
    QCOMPARE(service(fixture).connection(), &fixture.connection(1));
    QVERIFY(clickAndWait(fixture, "buttonCTF_1"));
    QCOMPARE(fixture.controller(1).count("CTF"), 1);
    QCOMPARE(fixture.controller(0).count("CTF"), 0);
}

void TestService::openingAgainAsksAgain()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(open(fixture));
    QCOMPARE(fixture.controller().count("GID"), 1);
    QVERIFY(user::click(&in<QPushButton>(service(fixture), "buttonClose")));
    QVERIFY(!service(fixture).isVisible());
    QVERIFY(open(fixture));
    QCOMPARE(fixture.controller().count("GID"), 2);
    // Also of a dialog that is open.
    QVERIFY(open(fixture));
    QCOMPARE(fixture.controller().count("GID"), 3);
}

void TestService::acquisitionGoesOnBehindATest()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.clickAction("startAction"));
    QVERIFY(open(fixture));
    QVERIFY(clickAndWait(fixture, "buttonCTF_1"));
    QVERIFY(fixture.find<QAction>("startAction")->isChecked());
    const quint64 before = fixture.connection().samplesStored();
    QVERIFY(QTest::qWaitFor([&] { return fixture.connection().samplesStored() > before; }));
    // The tool bar is not blocked.
    QVERIFY(fixture.clickAction("startAction"));
    QVERIFY(!fixture.find<QAction>("startAction")->isChecked());
    QVERIFY(service(fixture).isVisible());
}

/// As of pulsed lasers, whose rate no connection keeps.
void TestService::streamWithoutARateGetsThatOfTheToolBar()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.type("samplingRateCounter", "77"));
    Connection& connection = fixture.connection();
    connection.startStream(QByteArray("\0\0\0\x05;", 5));
    QByteArray reply;
    QVERIFY(connection.fetchReply(reply));
    QCOMPARE(connection.samplingRate(), -1);
    QVERIFY(open(fixture));
    QCOMPARE(fixture.controller().streamRate(), 77);
}

void TestService::dialogClosesWhenItsSystemIsDeleted()
{
    WindowFixture fixture(2);
    QVERIFY(openWithLines(fixture, 2));
    QVERIFY(open(fixture));
    QCOMPARE(service(fixture).connection(), &fixture.connection(0));
    QVERIFY(clickInLine(fixture, 0, "deleteButton"));
    QVERIFY(!service(fixture).isVisible());
    QVERIFY(!service(fixture).connection());
    QVERIFY(open(fixture));
    QCOMPARE(service(fixture).connection(), &fixture.connection(0));
    QCOMPARE(in<QLabel>(service(fixture), "boardId_Label").text(), fixture.controller(1).id());
}

void TestService::dialogStaysWhenAnotherSystemIsDeleted()
{
    WindowFixture fixture(2);
    QVERIFY(openWithLines(fixture, 2));
    QVERIFY(open(fixture));
    QVERIFY(clickInLine(fixture, 1, "deleteButton"));
    QVERIFY(service(fixture).isVisible());
    QVERIFY(clickAndWait(fixture, "buttonCTF_1"));
    QCOMPARE(results(fixture), QString("Clear Trigger Freeze Stage 1: Success\n"));
}

void TestService::dialogOutlivesTheLossOfItsLink()
{
    WindowFixture fixture(1);
    QVERIFY(openWithLines(fixture, 1));
    QVERIFY(open(fixture));
    fixture.controller(0).closeConnection();
    QTRY_COMPARE(lineButtonText(fixture, 0), QString("Reconnect"));
    QVERIFY(service(fixture).isVisible());
    QVERIFY(clickAndWait(fixture, "buttonCTF_1"));
    QCOMPARE(results(fixture), QString("Clear Trigger Freeze Stage 1: Failed\n"));
}

void TestService::dialogWorksAgainBehindAReconnect()
{
    WindowFixture fixture(1);
    QVERIFY(openWithLines(fixture, 1));
    QVERIFY(open(fixture));
    QVERIFY(clickInLine(fixture, 0, "Button"));
    QCOMPARE(lineButtonText(fixture, 0), QString("Reconnect"));
    QVERIFY(clickInLine(fixture, 0, "Button"));
    QCOMPARE(lineButtonText(fixture, 0), QString("Disconnect"));
    QVERIFY(clickAndWait(fixture, "buttonCTF_1"));
    QCOMPARE(results(fixture), QString("Clear Trigger Freeze Stage 1: Success\n"));
}

/// Its connection knows no port. Only the rate of a serial one is taken from the connection.
void TestService::savingKeepsThePortOfAnAddressThatCanNotBeUsed()
{
    constexpr int port = 3000;
    WindowFixture fixture(1);
    ConnectionSettings record = fixture.record();
    record.name.set(QStringLiteral("no address"));
    record.baudRateOrPort = port;
    QVERIFY(fixture.writeSetupFile({record}));
    QVERIFY(fixture.open());
    fixture.find<QAction>("actionSetup")->trigger();
    QVERIFY(user::click(&in<QPushButton>(settingsDialog(fixture), "saveConnectionButton")));
    Settings settings;
    QList<ConnectionSettings> records;
    QVERIFY(settings.read(QString()));
    settings.getList(records);
    QCOMPARE(records.size(), 1);
    QCOMPARE(records[0].baudRateOrPort, port);
}

void TestService::windowClosesWithTheDialogOpen_data()
{
    QTest::addColumn<bool>("isClosed");
    QTest::newRow("closed") << true;
    QTest::newRow("destroyed") << false;
}

void TestService::windowClosesWithTheDialogOpen()
{
    QFETCH(bool, isClosed);
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.clickAction("startAction"));
    QVERIFY(open(fixture));
    fixture.controller().clearWire();
    if (isClosed) {
        QVERIFY(fixture.window().close());
        QVERIFY(!service(fixture).isVisible());
        QVERIFY(!service(fixture).connection());
    }
    fixture.destroyWindow();
    QCOMPARE(fixture.controller().count("SLS"), 0);
    QVERIFY(!fixture.controller().isStreaming());
}

QTEST_MAIN(TestService)
#include "tst_service.moc"
