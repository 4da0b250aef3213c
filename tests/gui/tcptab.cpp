#include "tcptab.h"

#include "link/tcpclient.h"
#include "setup/connectionwidget.h"
#include "setup/settingsdialog.h"
#include "support/userinput.h"
#include "support/windowfixture.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollBar>
#include <QTabWidget>
#include <QtTest>

SettingsDialog& settingsDialog(const WindowFixture& fixture)
{
    return *fixture.window().findChild<SettingsDialog*>();
}

void makeShortConnections(const WindowFixture& fixture)
{
    settingsDialog(fixture).setConnectionFactory([](ConnectionType) {
        auto client = std::make_unique<TcpClient>();
        client->setTimeoutMs(WindowFixture::shortTimeoutMs);
        return client;
    });
}

bool connectByDialog(const WindowFixture& fixture, int number, const QString& label)
{
    constexpr int tcpTab = 1;
    SettingsDialog& dialog = settingsDialog(fixture);
    fixture.find<QAction>("actionSetup")->trigger();
    in<QTabWidget>(dialog, "tabWidget").setCurrentIndex(tcpTab);
    QTest::keyClicks(&in<QLineEdit>(dialog, "addressTcpEdit"),
                     fixture.controller(number).address());
    in<QLineEdit>(dialog, "portLineEdit").clear();
    QTest::keyClicks(&in<QLineEdit>(dialog, "portLineEdit"),
                     QString::number(fixture.controller(number).port()));
    QTest::keyClicks(&in<QLineEdit>(dialog, "labelTcpEdit"), label);
    return user::click(&in<QPushButton>(dialog, "connectTcpButton"));
}

ConnectionWidget& line(const WindowFixture& fixture, int number)
{
    auto& list = in<QListWidget>(settingsDialog(fixture), "listWidgetTcp");
    return *qobject_cast<ConnectionWidget*>(list.itemWidget(list.item(number)));
}

bool clickInLine(const WindowFixture& fixture, int number, const char* name)
{
    auto& button = in<QPushButton>(line(fixture, number), name);
    // The screen of the tests is narrow: the line is scrolled as far as the button.
    in<QListWidget>(settingsDialog(fixture), "listWidgetTcp")
        .horizontalScrollBar()
        ->setValue(button.geometry().right());
    return user::click(&button);
}

QString lineButtonText(const WindowFixture& fixture, int number)
{
    return in<QPushButton>(line(fixture, number), "Button").text();
}

QString infoText(const WindowFixture& fixture)
{
    return in<QLabel>(settingsDialog(fixture), "infoLabel2").text();
}
