#include "servicebench.h"

#include "support/userinput.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTextBrowser>
#include <QtTest>

ServiceBench::ServiceBench(const emulator::ControllerOptions& options)
    : link(options)
    , dialog([] { return windowRateHz; }, nullptr)
{}

bool ServiceBench::open()
{
    return link.connectAndIdentify() && show();
}

bool ServiceBench::openStreaming()
{
    return link.connectAndIdentify() && link.startStream(streamRateHz) && show() && streams();
}

bool ServiceBench::show()
{
    dialog.setConnection(link.client);
    dialog.show();
    QApplication::setActiveWindow(&dialog);
    const bool isShown =
        QTest::qWaitForWindowExposed(&dialog) && QTest::qWaitFor([this] { return isReady(); });
    link.controller.clearWire();
    return isShown;
}

bool ServiceBench::isReady() const
{
    return find<QPushButton>("buttonGIN_1").isEnabled();
}

bool ServiceBench::press(const QString& control) const
{
    return user::click(&find<QWidget>(control));
}

bool ServiceBench::click(const QString& button)
{
    link.controller.clearWire();
    find<QTextBrowser>("result_textBrowser").clear();
    return press(button) && QTest::qWaitFor([this] { return isReady(); });
}

bool ServiceBench::clickUnder(const QList<emulator::Rule>& rules, const QString& button)
{
    link.controller.setRules(rules);
    link.client.setTimeoutMs(faultyTimeoutMs);
    const bool isClicked = click(button);
    link.client.setTimeoutMs(EmulatedLink::shortTimeoutMs);
    return isClicked && link.controller.unplayedRules().isEmpty();
}

QString ServiceBench::results() const
{
    return find<QTextBrowser>("result_textBrowser").toPlainText();
}

QString ServiceBench::labelText(const QString& name) const
{
    return find<QLabel>(name).text();
}

bool ServiceBench::streams() const
{
    return link.client.isStreaming() && link.client.samplingRate() == streamRateHz
           && link.controller.isStreaming() && link.controller.streamRate() == streamRateHz;
}

bool ServiceBench::isQuiet() const
{
    return !link.client.isStreaming() && !link.controller.isStreaming();
}

QByteArray streamStart(int rateHz)
{
    return QByteArray("SLS\0\0", 5).append(char(rateHz >> 8)).append(char(rateHz)).append(';');
}
