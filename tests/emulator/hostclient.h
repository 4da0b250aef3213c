#pragma once

#include "emulator/emulatorhost.h"

#include <QTcpSocket>

/// The application's end of the wire, as bare as it gets: writes bytes and waits for bytes.
class HostClient final
{
public:
    explicit HostClient(const emulator::ControllerHandle& controller)
    {
        socket.connectToHost(controller.address(), controller.port());
        socket.waitForConnected(limitMs);
    }

    bool isConnected() const { return socket.state() == QAbstractSocket::ConnectedState; }

    void send(const QByteArray& bytes)
    {
        socket.write(bytes);
        socket.flush();
    }

    /// The next `count` bytes, fewer if they do not come in time.
    QByteArray read(int count)
    {
        while (socket.bytesAvailable() < count && socket.waitForReadyRead(limitMs)) {}
        return socket.read(count);
    }

    QByteArray exchange(const QByteArray& command, int replyLength)
    {
        send(command);
        return read(replyLength);
    }

    /// Everything that comes until nothing has come for a while.
    QByteArray readUntilQuiet(int quietMs = 150)
    {
        QByteArray bytes = socket.readAll();
        while (socket.waitForReadyRead(quietMs))
            bytes += socket.readAll();
        return bytes;
    }

    bool waitForDisconnected() { return !isConnected() || socket.waitForDisconnected(limitMs); }

    QTcpSocket socket;

private:
    static constexpr int limitMs = 5000;
};
