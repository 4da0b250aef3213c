#pragma once

#include "link/connection.h"

#include <QHostAddress>

#include <memory>

class QTcpSocket;
class QTimer;

/// A connection over TCP, for a controller behind an Ethernet adapter that carries the byte
/// stream of the serial line. It comes up on its own or ends its thread after the time-out.
class TcpClient final : public Connection
{
    Q_OBJECT

public:
    static constexpr int defaultPort = 2000;

    TcpClient();
    ~TcpClient() override;

    QString address() const override { return hostText; }
    int connectionType() const override { return int(ConnectionType::Tcp); }
    /// Takes a numeric address, not a name, and a port below 65536.
    bool init(const QString& address, int baudOrPort) override;
    int portOrBaud() const override { return port; }
    void releaseInPlace() override;
    void resync() override;

public slots:
    void sendMessage(QByteArray message, int answerLength) override;

protected:
    void run() override;
    void discardInput() override;

private slots:
    void firstTalk();
    void checkConnection();
    void handleDisCon();

private:
    QTcpSocket* socket() const;

    // Written only while the thread does not run.
    QHostAddress hostAddress;
    /// Asked for at every display tick.
    QString hostText;
    int port = defaultPort;
    /// Lives on the connection's thread.
    std::unique_ptr<QTimer> connectTimer;
};
