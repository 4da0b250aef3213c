#include "link/interfacesearch.h"

#include "app/logging.h"
#include "link/baudrates.h"
#include "link/commandframe.h"
#include "link/identification.h"
#include "link/porterrors.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QSerialPort>
#include <QSerialPortInfo>

#include <optional>

namespace {

constexpr char knownManufacturer[] = "FTDI";
constexpr QSerialPort::FlowControl flowControls[] = {QSerialPort::HardwareControl,
                                                     QSerialPort::NoFlowControl};
constexpr int attempts = 2;
constexpr int answerLimitMs = 100;
constexpr int stopPollMs = 10;
constexpr int idPollMs = 20;
constexpr int idTextLength = command::idReplyLength - command::payloadOffset;

/// Asks who is at one interface, at every rate and flow control until a controller is found.
class InterfaceProbe final
{
public:
    explicit InterfaceProbe(const QString& name);

    /// Nothing if no controller was found.
    std::optional<FoundInterface> run();

private:
    bool open();
    QString controllerId();
    QByteArray stopReply();
    QByteArray idReply();
    QByteArray ask(const CommandFrame& frame, int pollMs);
    void close();

    QSerialPort port;
    bool refusalExplained = false;
};

InterfaceProbe::InterfaceProbe(const QString& name)
{
    logMessage().info() << "Trying to connect to interface " << name;
    port.setPortName(name);
}

std::optional<FoundInterface> InterfaceProbe::run()
{
    for (const int baudRate : baudrate::offered) {
        logMessage().info() << "Baud rate" << baudRate;
        port.setBaudRate(baudRate, QSerialPort::AllDirections);
        for (const QSerialPort::FlowControl flowControl : flowControls) {
            logMessage().info() << "Flow control" << int(flowControl);
            port.setFlowControl(flowControl);
            if (!open())
                continue;
            const QString id = controllerId();
            close();
            if (!id.isEmpty())
                return FoundInterface{id, port.portName(), baudRate, flowControl};
        }
    }
    return std::nullopt;
}

bool InterfaceProbe::open()
{
    if (port.open(QIODevice::ReadWrite))
        return true;
    logMessage().info() << "Cannot open interface" << port.errorString();
    const QString refusal = porterrors::explainRefusal(port.portName(), port.error());
    if (!refusal.isEmpty() && !refusalExplained) {
        logMessage().warning() << qPrintable(refusal);
        refusalExplained = true;
    }
    return false;
}

/// Empty if nothing answers, or something that is not a controller.
QString InterfaceProbe::controllerId()
{
    const QByteArray stopped = stopReply();
    if (stopped.isEmpty()) {
        logMessage().info() << "Connection timeout";
        return QString();
    }
    logMessage().debug() << "Received:" << stopped;
    const QByteArray reply = idReply();
    if (reply.size() != command::idReplyLength || !namesMaker(reply))
        return QString();
    // As text of its own: a text ends at the zero that the reply begins with.
    const QString id = QString::fromUtf8(reply.right(idTextLength)).remove(command::terminator);
    logMessage().info() << "Received ID" << id;
    return id;
}

/// Both attempts always run: the first one can be answered by the rest of a stream.
QByteArray InterfaceProbe::stopReply()
{
    QByteArray answer;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        logMessage().debug() << "Clear" << attempt;
        answer = ask(command::stop(), stopPollMs);
    }
    return answer;
}

QByteArray InterfaceProbe::idReply()
{
    QByteArray answer;
    for (int attempt = 0; attempt < attempts && answer.size() != command::idReplyLength;
         ++attempt) {
        logMessage().info() << "Requesting controller ID";
        answer = ask(command::identityRequest(), idPollMs);
    }
    return answer;
}

QByteArray InterfaceProbe::ask(const CommandFrame& frame, int pollMs)
{
    port.clear(QSerialPort::AllDirections);
    port.write(frame.message);
    QByteArray answer;
    const QDeadlineTimer limit(answerLimitMs, Qt::PreciseTimer);
    while (answer.size() < frame.answerLength) {
        const bool isFruitless = !port.waitForReadyRead(pollMs) && porterrors::isLoss(port.error());
        // A lost port answers at once, again and again.
        if (limit.hasExpired() || isFruitless)
            break;
        answer += port.read(frame.answerLength);
    }
    return answer;
}

void InterfaceProbe::close()
{
    port.clear(QSerialPort::AllDirections);
    port.close();
    logMessage().info() << "Interface closed";
}

/// Pseudo terminals are not tried: a serial connection does not accept their names.
void logPseudoInterfaces()
{
    const QStringList names = QDir(QStringLiteral("/dev/pts")).entryList(QDir::System);
    for (const QString& name : names)
        logMessage().info() << "Found pseudo interface " << QStringLiteral("pts/") + name;
}

QStringList candidates(const InterfaceLister& lister, bool anyDevice)
{
    QStringList names;
    const QList<SerialInterface> interfaces = lister();
    for (const SerialInterface& each : interfaces) {
        logMessage().info() << "Found interface " << each.name << each.description
                            << each.manufacturer;
        if (anyDevice || each.manufacturer == QLatin1String(knownManufacturer))
            names.append(each.name);
        else
            logMessage().info() << "Skipping interface";
    }
    return names;
}

} // namespace

QList<SerialInterface> availableInterfaces()
{
    QList<SerialInterface> interfaces;
    const QList<QSerialPortInfo> ports = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo& port : ports)
        interfaces.append({port.portName(), port.description(), port.manufacturer()});
    return interfaces;
}

QList<FoundInterface> searchInterfaces(bool includePseudo, bool anyDevice,
                                       const InterfaceLister& lister)
{
    logMessage().info() << "Searching for serial interfaces";
    if (includePseudo)
        logPseudoInterfaces();
    QList<FoundInterface> found;
    const QStringList names = candidates(lister, anyDevice);
    for (const QString& name : names) {
        if (const std::optional<FoundInterface> controller = InterfaceProbe(name).run())
            found.append(*controller);
    }
    logMessage().info() << "Search for controllers completed";
    return found;
}
