#pragma once

#include "link/connection.h"

#include <QSerialPort>

/// A connection over a serial line. It is up, or has failed, as soon as its thread has opened the
/// port.
class SerialPort final : public Connection
{
    Q_OBJECT

public:
    SerialPort() = default;
    ~SerialPort() override;

    QString address() const override { return portName; }
    int connectionType() const override { return int(ConnectionType::Serial); }
    /// Stores name and rate; returns whether the name is that of a serial adapter or port. The
    /// name has no directory.
    bool init(const QString& address, int baudOrPort) override;
    int portOrBaud() const override { return baudRate(); }
    void releaseInPlace() override;
    void resync() override;

public slots:
    void sendMessage(QByteArray message, int answerLength) override;
    /// Turns on the low-latency mode of the driver, for which the port is closed and opened again.
    /// False if the port was not open or could not be opened for the request.
    bool setlowlatency();

protected:
    void run() override;
    void discardInput() override;

private slots:
    void handleDisCon();

private:
    QSerialPort* port() const;
    bool openPort();
    void logRefusal(QSerialPort::SerialPortError error) const;

    // Written only while the thread does not run.
    QString portName;
};
