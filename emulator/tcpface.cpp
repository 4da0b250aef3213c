#include "emulator/tcpface.h"

#include "emulator/serialline.h"

#include <QTcpSocket>

#include <poll.h>
#include <sys/socket.h>

namespace emulator {

namespace {

/// Packets are lost while more than this waits to be sent.
constexpr qint64 mostBytesPending = 65536;
/// How long a connection that is closed waits for a host that does not read.
constexpr int closeLimitMs = 1000;

bool hasHungUp(const QTcpSocket& socket)
{
    pollfd state{};
    state.fd = static_cast<int>(socket.socketDescriptor());
    state.events = POLLRDHUP;
    constexpr int noWaitMs = 0;
    return poll(&state, 1, noWaitMs) > 0 && (state.revents & (POLLRDHUP | POLLHUP | POLLERR)) != 0;
}

} // namespace

TcpFace::TcpFace(const ControllerOptions& options, Logging logging)
    : Face(options, logging)
{
    closeTimer.setSingleShot(true);
    closeTimer.setInterval(closeLimitMs);
    connect(&closeTimer, &QTimer::timeout, this, &TcpFace::dropSocket);
    connect(&server, &QTcpServer::newConnection, this, &TcpFace::takeConnections);
}

TcpFace::~TcpFace()
{
    dropSocket();
}

bool TcpFace::listen(const QHostAddress& address, quint16 port)
{
    listenAddress = address;
    listenPort = port;
    if (!server.listen(address, port))
        return false;
    listenAddress = server.serverAddress();
    listenPort = server.serverPort();
    return true;
}

QString TcpFace::place() const
{
    const bool hasColons = listenAddress.protocol() == QAbstractSocket::IPv6Protocol;
    return (hasColons ? QStringLiteral("[%1]:%2") : QStringLiteral("%1:%2"))
        .arg(listenAddress.toString())
        .arg(listenPort);
}

void TcpFace::stopListening()
{
    server.close();
    dropSocket();
    controller().restart();
    controller().resetBaudRate();
}

bool TcpFace::listenAgain()
{
    return server.isListening() || server.listen(listenAddress, listenPort);
}

bool TcpFace::isConnected() const
{
    return socket && socket->state() == QAbstractSocket::ConnectedState;
}

void TcpFace::write(const QByteArray& bytes)
{
    if (!isConnected() || halfClosed)
        return;
    socket->write(heardAt(adapterBaudRate(), bytes, controller().baudRate()));
    socket->flush();
}

bool TcpFace::canSend()
{
    return isConnected() && !halfClosed && socket->bytesToWrite() <= mostBytesPending;
}

void TcpFace::close()
{
    if (!socket)
        return;
    socket->disconnectFromHost();
    if (!socket)
        return;
    // Bytes that were written are still sent, but the controller no longer obeys this host.
    controller().linkClosed();
    closeTimer.start();
}

void TcpFace::halfClose()
{
    if (!isConnected() || halfClosed)
        return;
    halfClosed = true;
    endSending();
}

/// Closes the sending side once everything is sent.
void TcpFace::endSending()
{
    // This call can notice that the host has disconnected, and then sets `socket` to null.
    socket->flush();
    if (socket && socket->bytesToWrite() == 0)
        shutdown(static_cast<int>(socket->socketDescriptor()), SHUT_WR);
}

void TcpFace::takeConnections()
{
    while (QTcpSocket* connection = server.nextPendingConnection()) {
        // A host that reconnects can arrive before the end of its old connection was noticed.
        if (socket && (!isConnected() || hasHungUp(*socket)))
            dropSocket();
        if (socket) {
            connection->abort();
            connection->deleteLater();
        } else {
            adopt(connection);
        }
    }
}

void TcpFace::adopt(QTcpSocket* connection)
{
    socket = connection;
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    connect(connection, &QTcpSocket::readyRead, this, &TcpFace::readInput);
    connect(connection, &QTcpSocket::bytesWritten, this, [this] {
        if (halfClosed)
            endSending();
    });
    connect(connection, &QTcpSocket::disconnected, this, [this, connection] {
        if (socket == connection)
            dropSocket();
    });
    controller().linkOpened();
    emit hostConnected(connection->peerAddress().toString());
    readInput();
}

void TcpFace::readInput()
{
    if (!socket || controller().isPaused() || socket->bytesAvailable() == 0)
        return;
    const int hearingRate = controller().baudRate();
    controller().receive(heardAt(hearingRate, socket->readAll(), adapterBaudRate()));
}

void TcpFace::dropSocket()
{
    if (!socket)
        return;
    QTcpSocket* const gone = socket;
    socket = nullptr;
    halfClosed = false;
    closeTimer.stop();
    gone->disconnect(this);
    gone->abort();
    gone->deleteLater();
    controller().linkClosed();
    emit hostDisconnected();
}

} // namespace emulator
