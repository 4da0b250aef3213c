#pragma once

#include "emulator/controller.h"
#include "emulator/wirelog.h"

#include <QHostAddress>
#include <QObject>
#include <QTcpServer>

class QTcpSocket;

namespace emulator {

/// A controller behind a TCP port. One host at a time: a further connection is closed at once.
/// Lives in the thread that made it.
class TcpFace final : public QObject, private Link
{
    Q_OBJECT

public:
    enum class Logging { Off, On };

    explicit TcpFace(const ControllerOptions& options, Logging logging = Logging::Off);
    ~TcpFace() override;

    /// Port 0 picks a free one. False on failure, see `errorString`.
    bool listen(const QHostAddress& address, quint16 port);
    QString errorString() const { return server.errorString(); }
    QHostAddress address() const { return listenAddress; }
    quint16 port() const { return listenPort; }

    /// Power off: nobody can connect, and a host that is connected is cut off.
    void stopListening();
    /// Power on, at the same address and port.
    bool listenAgain();
    void closeConnection();
    void halfCloseConnection();
    bool isConnected() const;

    void setPaused(bool paused);

    Controller& controller() { return ownController; }
    WireLog& wireLog() { return log; }

signals:
    void hostConnected(const QString& peer);
    void hostDisconnected();

private:
    void write(const QByteArray& bytes) override;
    qint64 bytesPending() const override;
    void close() override;
    void halfClose() override;

    void takeConnections();
    void adopt(QTcpSocket* socket);
    void readInput();
    void dropSocket();

    WireLog log;
    Controller ownController;
    QTcpServer server;
    /// The host's; owned by the server, null without a host.
    QTcpSocket* socket = nullptr;
    QHostAddress listenAddress;
    quint16 listenPort = 0;
};

} // namespace emulator
