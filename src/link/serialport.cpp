#include "link/serialport.h"

#include "app/logging.h"
#include "link/porterrors.h"
#include "link/replyboundary.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

#include <cerrno>
#include <fcntl.h>
#include <linux/serial.h>
#include <memory>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

/// A driver without these requests changes nothing, which does no harm.
void requestLowLatency(int descriptor)
{
    serial_struct settings{};
    ioctl(descriptor, TIOCGSERIAL, &settings);
    settings.flags |= ASYNC_LOW_LATENCY;
    ioctl(descriptor, TIOCSSERIAL, &settings);
}

} // namespace

SerialPort::~SerialPort()
{
    SerialPort::releaseInPlace();
}

void SerialPort::releaseInPlace()
{
    release("serial");
}

bool SerialPort::init(const QString& address, int baudOrPort)
{
    logMessage().debug() << "Initializing serial connection" << address;
    portName = address;
    setBaudRate(baudOrPort);
    return address.startsWith(QLatin1String("ttyUSB"))
           || address.startsWith(QLatin1String("ttyACM"))
           || address.startsWith(QLatin1String("COM")) || address.startsWith(QLatin1String("ttyS"));
}

QSerialPort* SerialPort::port() const
{
    return static_cast<QSerialPort*>(device());
}

bool SerialPort::openPort()
{
    port()->setPortName(portName);
    port()->setBaudRate(baudRate(), QSerialPort::AllDirections);
    port()->setFlowControl(QSerialPort::HardwareControl);
    port()->setDataBits(QSerialPort::Data8);
    port()->setParity(QSerialPort::NoParity);
    port()->setStopBits(QSerialPort::OneStop);
    if (port()->open(QIODevice::ReadWrite))
        setlowlatency();
    // The low-latency mode closes the port and opens it again, which can fail.
    if (port()->isOpen())
        return true;
    logRefusal(port()->error());
    return false;
}

void SerialPort::logRefusal(QSerialPort::SerialPortError error) const
{
    const QString refusal = porterrors::explainRefusal(portName, error);
    if (!refusal.isEmpty())
        logMessage().warning() << qPrintable(refusal);
}

void SerialPort::run()
{
    makeEndpoint(std::make_unique<QSerialPort>());
    if (!openPort()) {
        publishOpenFailed();
        deleteEndpoint();
        return;
    }

    connect(
        port(), &QSerialPort::errorOccurred, this,
        [this](QSerialPort::SerialPortError error) {
            if (porterrors::isLoss(error))
                handleDisCon();
        },
        Qt::DirectConnection);
    watchInput();
    discardInput();
    // Discarding the input can already show that the port is lost.
    if (port()->isOpen())
        publishConnected();

    exec();

    ignoreInput();
    disconnect(port(), &QSerialPort::errorOccurred, this, nullptr);
    QCoreApplication::processEvents();
    logMessage().debug() << "Closing connection" << label();
    port()->close();
    deleteEndpoint();
}

bool SerialPort::setlowlatency()
{
    if (!device() || !device()->isOpen())
        return false;
    port()->close();
    const QByteArray path = QByteArray("/dev/") + portName.toLocal8Bit();
    const int descriptor = ::open(path.constData(), O_RDWR | O_NOCTTY | O_NONBLOCK);
    if (descriptor < 0) {
        if (errno == EACCES || errno == EPERM)
            logRefusal(QSerialPort::PermissionError);
        return false;
    }
    requestLowLatency(descriptor);
    ::close(descriptor);
    port()->open(QIODevice::ReadWrite);
    return true;
}

void SerialPort::handleDisCon()
{
    reportLostPort();
    // An open port repeats its error without end.
    port()->close();
}

void SerialPort::sendMessage(QByteArray message, int answerLength)
{
    Connection::sendMessage(message, answerLength);
    if (device() && device()->isOpen())
        port()->flush();
}

void SerialPort::discardInput()
{
    port()->readAll();
    port()->clear(QSerialPort::AllDirections);
}

void SerialPort::resync()
{
    logMessage().debug() << "Resyncing (serial)";
    const CommandFrame question = command::statusRequest();
    sendMessage(question.message, question.answerLength);
    findReplyBoundary(*device(), QDeadlineTimer(boundarySearchMs), [] {
        QCoreApplication::processEvents();
        msleep(1);
    });
    logMessage().debug() << "Finished resyncing";
}
