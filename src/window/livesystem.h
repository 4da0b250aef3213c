#pragma once

#include "setup/connectionstatus.h"
#include "window/statisticssums.h"

#include <memory>

class Connection;
class DetectorPair;

/// All that belongs to one registered connection.
struct LiveSystem
{
    std::unique_ptr<Connection> connection;
    ConnectionStatus status;
    /// Kept by the parameter dialog for as long as the connection is registered. Never null.
    DetectorPair* detectors = nullptr;
    StatisticsSums sums;
    /// Whether the controller was stopped already, because its connection is closed next.
    bool isDismissed = false;
};
