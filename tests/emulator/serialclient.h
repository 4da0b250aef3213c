#pragma once

#include "emulator/emulatorhost.h"

#include <QSerialPort>

/// Returns when the emulator has dealt with all that was sent to it, however busy the machine is.
inline void waitUntilHeard(const emulator::ControllerHandle& controller)
{
    // Each call takes a turn of the emulator's event loop, which looks at its ports once a turn.
    constexpr int turns = 4;
    for (int turn = 0; turn < turns; ++turn)
        controller.isStreaming();
}

/// The application's end of a serial line, as bare as it gets: writes bytes and waits for bytes.
class SerialClient final
{
public:
    explicit SerialClient(const QString& path, int baudRate = 115200, bool flowControl = true)
    {
        port.setPortName(path);
        port.setBaudRate(baudRate);
        port.setFlowControl(flowControl ? QSerialPort::HardwareControl
                                        : QSerialPort::NoFlowControl);
        port.open(QIODevice::ReadWrite);
    }

    bool isOpen() const { return port.isOpen(); }
    void setBaudRate(int baudRate) { port.setBaudRate(baudRate); }

    void send(const QByteArray& bytes)
    {
        port.write(bytes);
        port.flush();
    }

    /// The next `count` bytes, fewer if they do not come in time.
    QByteArray read(int count)
    {
        while (port.bytesAvailable() < count && port.waitForReadyRead(limitMs)) {}
        return port.read(count);
    }

    QByteArray exchange(const QByteArray& command, int replyLength)
    {
        send(command);
        return read(replyLength);
    }

    /// Everything that comes until nothing has come for a while.
    QByteArray readUntilQuiet(int quietMs = 150)
    {
        QByteArray bytes = port.readAll();
        while (port.waitForReadyRead(quietMs))
            bytes += port.readAll();
        return bytes;
    }

    QSerialPort port;

private:
    static constexpr int limitMs = 5000;
};
