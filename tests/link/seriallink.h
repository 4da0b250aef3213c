#pragma once

#include "emulator/emulatorhost.h"
#include "link/identification.h"
#include "link/serialport.h"
#include "support/pseudoport.h"

#include <QObject>
#include <QStringList>
#include <QtTest>

/// A `SerialPort` on a pseudo terminal, with short waits unless asked otherwise.
struct SerialLink
{
    static constexpr int shortTimeoutMs = 150;

    explicit SerialLink(const QString& portName, int timeoutMs = shortTimeoutMs)
    {
        client.setTimeoutMs(timeoutMs);
        client.init(portName, 115200);
        QObject::connect(&client, &Connection::hostDisconnected, &context,
                         [this](const QString& address) { lost.append(address); });
    }

    /// Starts the thread and waits until the link is up or has failed.
    bool connect()
    {
        client.start(QThread::InheritPriority);
        const auto isDecided = [this] { return client.isConnected() || !client.isRunning(); };
        return QTest::qWaitFor(isDecided) && client.isConnected();
    }

    bool connectAndIdentify()
    {
        return connect() && identify(client, LineClearing::TwoStops).isController;
    }

    QByteArray exchange(void (Connection::*command)())
    {
        (client.*command)();
        QByteArray reply;
        client.fetchReply(reply);
        return reply;
    }

    SerialPort client;
    /// The addresses that `hostDisconnected` told.
    QStringList lost;
    QObject context;
};

/// With an emulated controller at the other end.
struct EmulatedSerialLink
{
    explicit EmulatedSerialLink(const emulator::ControllerOptions& options = {},
                                int timeoutMs = SerialLink::shortTimeoutMs)
        : name(freePortName())
        , controller(host.addPty(options, "/dev/" + name))
        , link(name, timeoutMs)
        , client(link.client)
        , lost(link.lost)
    {}

    const QString name;
    emulator::EmulatorHost host;
    emulator::ControllerHandle controller;
    SerialLink link;
    SerialPort& client;
    QStringList& lost;
};
