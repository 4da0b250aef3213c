#include "setup/connectflow.h"

#include "app/logging.h"
#include "controls/waitcursor.h"
#include "link/connection.h"
#include "setup/colors.h"
#include "setup/connectionregistry.h"
#include "setup/settings.h"
#include "setup/systemlines.h"

#include <utility>

namespace {

constexpr LinkWait serialWait{200};
constexpr LinkWait tcpWait{300, LinkWait::Manner::InOneGo};

bool fitsRecord(const QString& name)
{
    return decltype(ConnectionSettings::name)::fits(name);
}

ConnectionSettings newRecord(ConnectionType type, const Connection& connection,
                             const QString& label, const QString& id)
{
    ConnectionSettings record;
    record.type = type;
    record.name.set(connection.address());
    record.id.set(id);
    record.label.set(label);
    record.baudRateOrPort = connection.portOrBaud();
    record.autoConnect = true;
    record.colorX = toName(Qt::red);
    record.colorY = toName(Qt::darkGreen);
    record.colorI = toName(Qt::blue);
    return record;
}

} // namespace

ConnectFlow::ConnectFlow(FlowParts& flowParts, StepWatcher stepWatcher)
    : parts(flowParts)
    , onStep(std::move(stepWatcher))
{}

ConnectFlow::~ConnectFlow() = default;

ConnectOutcome ConnectFlow::connectSerial(const QString& id, int baudRate, const QString& label)
{
    if (parts.systems.lines(ConnectionType::Serial).hasNumber(id))
        return ConnectOutcome::DeviceInUse;
    // A copy: changing the rate takes events, and a scan among these replaces the list.
    const std::optional<FoundInterface> device = parts.devices.find(id);
    if (!device)
        return ConnectOutcome::DeviceGone;
    if (device->baudRate != baudRate) {
        if (const std::optional<ConnectOutcome> failure = changeRate(*device, baudRate))
            return *failure;
    }
    std::unique_ptr<Connection> connection = makeSerial(device->port, baudRate);
    if (!connection) {
        logMessage().warning() << "Serial port is not suitable for communication";
        return ConnectOutcome::NoPort;
    }
    logMessage().info() << "Connecting";
    return connectController(ConnectionType::Serial, std::move(connection), label);
}

ConnectOutcome ConnectFlow::connectTcp(const QString& address, int port, const QString& label)
{
    std::unique_ptr<Connection> connection = parts.makeTransport(ConnectionType::Tcp);
    if (!connection->init(address, port) || !fitsRecord(connection->address()))
        return ConnectOutcome::BadAddress;
    // An address can be written in more than one way.
    if (parts.systems.lines(ConnectionType::Tcp).hasAddress(connection->address()))
        return ConnectOutcome::AddressInUse;
    return connectController(ConnectionType::Tcp, std::move(connection), label);
}

/// Null if no connection can take the port's name.
std::unique_ptr<Connection> ConnectFlow::makeSerial(const QString& port, int baudRate) const
{
    std::unique_ptr<Connection> connection = parts.makeTransport(ConnectionType::Serial);
    if (!connection->init(port, baudRate) || !fitsRecord(port))
        return nullptr;
    return connection;
}

/// Moves a controller from the rate at which it was found to the wanted one. Nothing if it can be
/// connected at that rate now.
std::optional<ConnectOutcome> ConnectFlow::changeRate(const FoundInterface& device, int baudRate)
{
    const WaitCursor waiting;
    std::unique_ptr<Connection> connection = makeSerial(device.port, device.baudRate);
    if (!connection)
        return ConnectOutcome::NoPortForRateChange;
    onStep(ConnectStep::ChangingRate, ConnectionType::Serial);
    if (!parts.link.changeRate(*connection, serialWait, baudRate)) {
        unchangedLinks.push_back(std::move(connection));
        return ConnectOutcome::RateNotChanged;
    }
    parts.devices.setBaudRate(device.id, baudRate);
    connection->disconnectController();
    if (parts.registry.isLeaving())
        return ConnectOutcome::Abandoned;
    return std::nullopt;
}

ConnectOutcome ConnectFlow::connectController(ConnectionType type,
                                              std::unique_ptr<Connection> connection,
                                              const QString& label)
{
    const WaitCursor waiting;
    onStep(ConnectStep::Connecting, type);
    const LinkWait wait = type == ConnectionType::Tcp ? tcpWait : serialWait;
    QString id;
    const LinkOutcome outcome = parts.link.connect(*connection, wait, label, id);
    if (parts.registry.isLeaving())
        return ConnectOutcome::Abandoned;
    if (outcome == LinkOutcome::Up) {
        logMessage().info() << "Connected";
        const ConnectionSettings record = newRecord(type, *connection, label, id);
        keep(std::move(connection), record);
        return ConnectOutcome::Connected;
    }
    const bool noLink = outcome == LinkOutcome::NoLink;
    logMessage().warning() << (noLink ? "Connection could not be established"
                                      : "System identification failed");
    // Ends the thread while the pointer still tells to wait.
    connection.reset();
    return noLink ? ConnectOutcome::NoLink : ConnectOutcome::NotIdentified;
}

void ConnectFlow::keep(std::unique_ptr<Connection> connection, ConnectionSettings record)
{
    parts.systems.addLine(record, *connection);
    parts.systems.showConnected(connection.get(), true);
    onStep(ConnectStep::Keeping, record.type);
    // A controller that was known before gets its detectors again.
    parts.settings.read(QString());
    parts.settings.getDetectorData(record);
    connection->setTriggerMode(record.pulsedLaser);
    parts.systems.registerSystem(std::move(connection), record);
}
