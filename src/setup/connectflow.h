#pragma once

#include "setup/flowparts.h"

#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

/// How the connecting of one controller ended.
enum class ConnectOutcome {
    Connected,
    /// The application is being ended: there is nobody to tell.
    Abandoned,
    /// The device has a line in the list already.
    DeviceInUse,
    /// The list of devices does not hold it any more.
    DeviceGone,
    /// No connection can take the port's name, found where the rate was to be changed.
    NoPortForRateChange,
    RateNotChanged,
    /// No connection can take the port's name.
    NoPort,
    /// The address has a line in the list already.
    AddressInUse,
    /// No connection can take the address or the port.
    BadAddress,
    NoLink,
    NotIdentified,
};

/// What a flow is about to do.
enum class ConnectStep {
    ChangingRate,
    Connecting,
    /// The controller is identified and has its line; the registry gets it next.
    Keeping,
};

/// The flow by which the user connects one controller. It makes the transport, brings it up, proves
/// who answers and hands it to the registry. A flow that fails leaves no line, no record and no
/// connection. Blocks and takes events meanwhile. GUI thread only.
class ConnectFlow final
{
public:
    using StepWatcher = std::function<void(ConnectStep, ConnectionType)>;

    /// `onStep` is called before each step.
    ConnectFlow(FlowParts& parts, StepWatcher onStep);
    ~ConnectFlow();

    /// Connects the found device `id` at `baudRate`, to which it is changed if it answers at
    /// another one.
    ConnectOutcome connectSerial(const QString& id, int baudRate, const QString& label);
    ConnectOutcome connectTcp(const QString& address, int port, const QString& label);

private:
    std::unique_ptr<Connection> makeSerial(const QString& port, int baudRate) const;
    std::optional<ConnectOutcome> changeRate(const FoundInterface& device, int baudRate);
    ConnectOutcome connectController(ConnectionType type, std::unique_ptr<Connection> connection,
                                     const QString& label);
    void keep(std::unique_ptr<Connection> connection, ConnectionSettings record);

    FlowParts& parts;
    StepWatcher onStep;
    /// Links over which a controller did not change its rate. They keep their ports open, as
    /// nothing is known of the rate at which the controller listens now.
    std::vector<std::unique_ptr<Connection>> unchangedLinks;
};
