#pragma once

#include "link/linkup.h"
#include "model/connectionsettings.h"
#include "setup/devicelist.h"
#include "setup/recordroom.h"

#include <functional>
#include <memory>

class Connection;
class ConnectionRegistry;
class Settings;
class SystemLines;

using ConnectionFactory = std::function<std::unique_ptr<Connection>(ConnectionType)>;

/// How links are brought up. Tests put functions in their place that need no controller.
struct LinkActions
{
    std::function<LinkOutcome(Connection&, LinkWait, const QString& label, QString& id)> connect =
        [](Connection& connection, LinkWait wait, const QString& label, QString& id) {
            return connectAndIdentify(connection, wait, label, id, &canBeStored);
        };
    std::function<Arrival(Connection&, int limitMs, const QString& label, const QString& id)>
        beginArrival =
            [](Connection& connection, int limitMs, const QString& label, const QString& id) {
                return ::beginArrival(connection, limitMs, label, id, &canBeStored);
            };
    std::function<bool(Connection&, LinkWait, int baudRate)> changeRate = changeBaudRate;
};

/// What the flows that make connections work with. They share it with the connection dialog.
struct FlowParts
{
    ConnectionRegistry& registry;
    SystemLines& systems;
    Settings& settings;
    ConnectionFactory makeTransport;
    DeviceList devices;
    LinkActions link;
};
