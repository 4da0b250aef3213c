#pragma once

#include "emulator/face.h"

#include <QHostAddress>
#include <QTcpServer>
#include <QTimer>

class QTcpSocket;

namespace emulator {

/// A controller behind a TCP port, as behind an Ethernet adapter. One host at a time: a further
/// connection is closed at once.
///
/// The adapter speaks to the controller at the rate that its options name, and does not learn of
/// another one: after SBR each end is garbage to the other, until a restart brings the controller
/// back to the adapter's rate.
class TcpFace final : public Face
{
    Q_OBJECT

public:
    explicit TcpFace(const ControllerOptions& options, Logging logging = Logging::Off);
    ~TcpFace() override;

    /// Port 0 picks a free one. False on failure, see `errorString`.
    bool listen(const QHostAddress& address, quint16 port);
    QHostAddress address() const { return listenAddress; }
    quint16 port() const { return listenPort; }

    QString kind() const override { return QStringLiteral("tcp"); }
    QString place() const override;
    QString errorString() const override { return server.errorString(); }
    void stopListening() override;
    bool listenAgain() override;
    bool isConnected() const override;

private:
    void write(const QByteArray& bytes) override;
    bool canSend() override;
    void close() override;
    void halfClose() override;

    int adapterBaudRate() const { return controller().device().initialBaudRate(); }
    void takeConnections();
    void adopt(QTcpSocket* socket);
    void readInput() override;
    void endSending();
    void dropSocket();

    QTcpServer server;
    /// Limits the time that closing a connection may take.
    QTimer closeTimer;
    /// The connection of the host, owned by the server; null without a host.
    QTcpSocket* socket = nullptr;
    QHostAddress listenAddress;
    quint16 listenPort = 0;
    /// Nothing more is written to this host.
    bool halfClosed = false;
};

} // namespace emulator
