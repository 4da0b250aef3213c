#include "link/tcpclient.h"

#include "app/logging.h"
#include "link/baudrates.h"
#include "link/replyboundary.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTcpSocket>
#include <QTimer>

#include <memory>

namespace {

constexpr int portLimit = 65536;

} // namespace

TcpClient::TcpClient()
{
    // The adapter talks to the controller at this rate, whatever the network does.
    setBaudRate(baudrate::fast);
}

TcpClient::~TcpClient()
{
    TcpClient::releaseInPlace();
}

void TcpClient::releaseInPlace()
{
    release("TCP");
}

bool TcpClient::init(const QString& address, int baudOrPort)
{
    logMessage().debug() << "Initializing TCP connection" << address;
    if (address.isEmpty() || baudOrPort >= portLimit)
        return false;
    QHostAddress parsed;
    if (!parsed.setAddress(address))
        return false;
    hostAddress = parsed;
    hostText = parsed.toString();
    port = baudOrPort;
    return true;
}

QTcpSocket* TcpClient::socket() const
{
    return static_cast<QTcpSocket*>(device());
}

void TcpClient::run()
{
    makeEndpoint(std::make_unique<QTcpSocket>());
    connect(socket(), &QTcpSocket::connected, this, &TcpClient::firstTalk, Qt::DirectConnection);
    connect(socket(), &QTcpSocket::disconnected, this, &TcpClient::handleDisCon,
            Qt::DirectConnection);

    connectTimer = std::make_unique<QTimer>();
    connectTimer->setTimerType(Qt::PreciseTimer);
    connect(connectTimer.get(), &QTimer::timeout, this, &TcpClient::checkConnection,
            Qt::DirectConnection);
    connectTimer->start(timeoutMs());
    socket()->connectToHost(hostAddress, static_cast<quint16>(port), QIODevice::ReadWrite);

    exec();

    disconnect(socket(), &QTcpSocket::disconnected, this, nullptr);
    ignoreInput();
    disconnect(socket(), &QTcpSocket::connected, this, nullptr);
    logMessage().debug() << "Closing connection" << label();
    socket()->disconnectFromHost();
    QCoreApplication::processEvents();
    connectTimer.reset();
    deleteEndpoint();
}

void TcpClient::firstTalk()
{
    connectTimer->stop();
    disconnect(connectTimer.get(), &QTimer::timeout, this, nullptr);
    watchInput();
    discardInput();
    publishConnected();
}

void TcpClient::checkConnection()
{
    disconnect(connectTimer.get(), &QTimer::timeout, this, nullptr);
    // A link that comes up now, before the event loop has ended, comes too late.
    disconnect(socket(), &QTcpSocket::connected, this, nullptr);
    exit(0);
}

void TcpClient::handleDisCon()
{
    reportLostPort();
}

void TcpClient::sendMessage(QByteArray message, int answerLength)
{
    Connection::sendMessage(message, answerLength);
    if (device())
        socket()->flush();
}

void TcpClient::discardInput()
{
    if (device() && device()->isOpen())
        device()->readAll();
}

void TcpClient::resync()
{
    logMessage().debug() << "Resyncing (TCP)";
    const CommandFrame question = command::statusRequest();
    if (!isStreaming())
        sendMessage(question.message, question.answerLength);
    findReplyBoundary(*device(), QDeadlineTimer(boundarySearchMs), [] { msleep(1); });
    logMessage().debug() << "Finished resyncing (TCP)";
}
