// Links that break while nobody listens, and what the rows of the connection dialog say then.

#include "link/tcpclient.h"
#include "setup/connectionwidget.h"
#include "setup/settingsdialog.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "tcptab.h"
#include "window/mainwindow.h"

#include <QLabel>
#include <QLineEdit>
#include <QtTest>

namespace {

std::unique_ptr<TcpClient> clientOf(const WindowFixture& fixture, int number)
{
    auto client = std::make_unique<TcpClient>();
    client->setTimeoutMs(WindowFixture::shortTimeoutMs);
    client->init(fixture.controller(number).address(), fixture.controller(number).port());
    return client;
}

/// Breaks the link and waits until the connection's thread is gone, without taking events.
bool breakLink(const WindowFixture& fixture, const Connection& connection, int number = 0)
{
    // The host can be connected before the controller has accepted it.
    if (!waitWithoutEvents([&] { return fixture.controller(number).isConnected(); }))
        return false;
    fixture.controller(number).closeConnection();
    return waitWithoutEvents([&] { return !connection.isRunning(); });
}

} // namespace

class TestLostSystem final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void aLostSystemSaysReconnect();
    void aSystemThatWasLostBeforeItCameSaysReconnect();
    void aSystemThatWasLostBeforeItCameIsTakenOffThePlots();
    void aLinkLostDuringTheStopOfAClosedSystemIsNotTold();
    void ofTwoWithOneAddressTheConnectedOneIsShown();
    void ofTwoWithOneAddressTheConnectedOneIsLost();
};

void TestLostSystem::aLostSystemSaysReconnect()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.open());
    makeShortConnections(fixture);
    QVERIFY(connectByDialog(fixture, 0, "bench"));
    QCOMPARE(lineButtonText(fixture, 0), QStringLiteral("Disconnect"));
    fixture.controller().closeConnection();
    QTRY_COMPARE(lineButtonText(fixture, 0), QStringLiteral("Reconnect"));
    QCOMPARE(infoText(fixture), QString());
    QVERIFY(fixture.window().shownConnections().isEmpty());
}

void TestLostSystem::aSystemThatWasLostBeforeItCameSaysReconnect()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.open());
    const Connection* made = nullptr;
    settingsDialog(fixture).setConnectionFactory([&made](ConnectionType) {
        auto client = std::make_unique<TcpClient>();
        client->setTimeoutMs(WindowFixture::shortTimeoutMs);
        made = client.get();
        return client;
    });
    // The dialog clears the field between identifying a controller and handing it over.
    bool broken = false;
    connect(&in<QLineEdit>(settingsDialog(fixture), "labelTcpEdit"), &QLineEdit::textChanged, this,
            [&](const QString& text) {
                if (text.isEmpty() && made)
                    broken = breakLink(fixture, *made);
            });
    QVERIFY(connectByDialog(fixture, 0, "bench"));
    QVERIFY(broken);
    QTRY_COMPARE(lineButtonText(fixture, 0), QStringLiteral("Reconnect"));
    QVERIFY(fixture.window().shownConnections().isEmpty());
    QCOMPARE(fixture.connection().linkState(), LinkState::Disconnected);
}

void TestLostSystem::aSystemThatWasLostBeforeItCameIsTakenOffThePlots()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.open());
    auto client = clientOf(fixture, 0);
    client->start();
    QVERIFY(waitWithoutEvents([&] { return client->isConnected(); }));
    QVERIFY(breakLink(fixture, *client));
    fixture.window().newConnection(std::move(client), fixture.record());
    QTRY_COMPARE(fixture.connection().linkState(), LinkState::Disconnected);
    QVERIFY(fixture.window().shownConnections().isEmpty());
}

void TestLostSystem::aLinkLostDuringTheStopOfAClosedSystemIsNotTold()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.open());
    makeShortConnections(fixture);
    QVERIFY(connectByDialog(fixture, 0, "bench"));
    QCOMPARE(infoText(fixture), QStringLiteral("Connected"));
    emulator::Faults faults;
    faults.closeOn = {"CLS"};
    fixture.controller().setFaults(faults);
    QVERIFY(clickInLine(fixture, 0, "deleteButton"));
    QTRY_VERIFY(fixture.window().liveConnections().empty());
    QCoreApplication::processEvents();
    QCOMPARE(infoText(fixture), QStringLiteral("Connected"));
    QCOMPARE(in<QLabel>(settingsDialog(fixture), "infoLabel").text(), QString());
}

void TestLostSystem::ofTwoWithOneAddressTheConnectedOneIsShown()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.open());
    fixture.window().newConnection(clientOf(fixture, 0), fixture.record());
    QVERIFY(fixture.registerSystem());
    QCOMPARE(fixture.window().shownConnections(), QList<int>{1});
}

void TestLostSystem::ofTwoWithOneAddressTheConnectedOneIsLost()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.open());
    fixture.window().newConnection(clientOf(fixture, 0), fixture.record());
    QVERIFY(fixture.registerSystem());
    fixture.controller().closeConnection();
    QTRY_COMPARE(fixture.connection(1).linkState(), LinkState::Disconnected);
    QCOMPARE(fixture.connection(0).linkState(), LinkState::NotConnected);
    QVERIFY(fixture.window().shownConnections().isEmpty());
}

QTEST_MAIN(TestLostSystem)
#include "tst_lostsystem.moc"
