#include "setup/systemlines.h"

#include "controls/waitcursor.h"
#include "setup/connectionwidget.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

std::size_t tabOf(ConnectionType type)
{
    return type == ConnectionType::Tcp ? 1 : 0;
}

} // namespace

SystemLines::SystemLines(ConnectionRegistry& connectionRegistry, QListWidget& serialList,
                         QListWidget& tcpList)
    : registry(connectionRegistry)
    , lists{{ConnectionList(serialList), ConnectionList(tcpList)}}
{}

SystemLines::~SystemLines()
{
    for (ConnectionList& list : lists)
        list.clear();
}

const ConnectionList& SystemLines::lines(ConnectionType type) const
{
    return lists[tabOf(type)];
}

void SystemLines::addLine(const ConnectionSettings& record, const Connection& connection)
{
    ConnectionWidget& line = lists[tabOf(record.type)].add(record, connection);
    watchLine(line, connection);
    emit lineAdded(&line);
}

/// What the user does to a line is meant for its connection, whoever else has the address.
void SystemLines::watchLine(const ConnectionWidget& line, const Connection& connection)
{
    const QPointer<const Connection> owner(&connection);
    connect(&line, &ConnectionWidget::labelChanged, this,
            [this, owner](const QString& address, const QString& label) {
                relabel(owner, label);
                emit labelEdited(address, label);
            });
    connect(&line, &ConnectionWidget::autoConnectChanged, this,
            [this, owner](bool isActive) { setAutoConnect(owner, isActive); });
    connect(&line, &ConnectionWidget::reconnectC, this,
            [this, owner] { emit reconnectWanted(owner); });
    connect(&line, &ConnectionWidget::disconnectC, this,
            [this, owner] { emit disconnectWanted(owner); });
    connect(&line, &ConnectionWidget::deleteConnection, this,
            [this, owner] { emit removalWanted(owner); });
}

void SystemLines::relabel(const Connection* connection, const QString& label)
{
    const WaitCursor waiting;
    registry.relabelConnection(connection, label);
}

/// Record and connection come together, so that the records stay in step with the registry
/// whatever happens between two connections.
void SystemLines::registerSystem(std::unique_ptr<Connection> connection, ConnectionSettings record)
{
    const WaitCursor waiting;
    record.position = systems.size();
    systems.append({record, connection.get()});
    registry.newConnection(std::move(connection), record);
}

bool SystemLines::hasNumber(const QString& number) const
{
    return std::any_of(lists.cbegin(), lists.cend(),
                       [&number](const ConnectionList& list) { return list.hasNumber(number); });
}

const Connection* SystemLines::meantBy(const QString& address) const
{
    QList<const Connection*> candidates;
    for (const ConnectionList& list : lists)
        candidates += list.connectionsAt(address);
    const auto connected =
        std::find_if(candidates.cbegin(), candidates.cend(),
                     [](const Connection* candidate) { return candidate->isConnected(); });
    return connected == candidates.cend() ? candidates.value(0) : *connected;
}

QList<ConnectionSettings> SystemLines::records() const
{
    QList<ConnectionSettings> list;
    for (const System& system : systems)
        list.append(system.record);
    return list;
}

bool SystemLines::updateRecords()
{
    QList<ConnectionSettings> list = records();
    if (!registry.updateSettingsAndParameters(list))
        return false;
    for (int i = 0; i < systems.size(); ++i)
        systems[i].record = list.at(i);
    return true;
}

void SystemLines::setAutoConnect(const Connection* connection, bool isActive)
{
    for (System& system : systems) {
        if (system.connection && system.connection == connection)
            system.record.autoConnect = isActive;
    }
}

ConnectionWidget* SystemLines::lineOf(const Connection* connection) const
{
    for (const ConnectionList& list : lists) {
        if (ConnectionWidget* line = list.lineOf(connection))
            return line;
    }
    return nullptr;
}

void SystemLines::showConnected(const Connection* connection, bool isConnected)
{
    if (ConnectionWidget* line = lineOf(connection))
        line->setConnected(isConnected);
}

ReconnectResult SystemLines::reconnect(const Connection* connection)
{
    const ConnectionWidget* line = lineOf(connection);
    if (!line)
        return ReconnectResult::NoController;
    const WaitCursor waiting;
    const QPointer<const Connection> meant(connection);
    const ReconnectResult result = registry.reconnect(connection, line->number());
    showConnected(meant, result == ReconnectResult::Reconnected);
    return result;
}

bool SystemLines::disconnectLink(const Connection* connection)
{
    const QPointer<const Connection> meant(connection);
    if (!registry.disconnectLink(connection))
        return false;
    showConnected(meant, false);
    return true;
}

void SystemLines::remove(const Connection* connection)
{
    const WaitCursor waiting;
    const QPointer<const Connection> closed(connection);
    if (!registry.closeConnection(connection))
        return;
    // `closed` is null if the registry has deleted it, as are the pointers to it here.
    const auto isGone = [&closed](const System& system) { return system.connection == closed; };
    systems.erase(std::remove_if(systems.begin(), systems.end(), isGone), systems.end());
    for (ConnectionList& list : lists)
        list.remove(closed);
}

void SystemLines::removeAll()
{
    QList<QPointer<const Connection>> leaving;
    for (const ConnectionList& list : lists) {
        const QList<QPointer<const Connection>> present = list.connections();
        std::copy_if(present.crbegin(), present.crend(), std::back_inserter(leaving),
                     [](const QPointer<const Connection>& each) { return !each.isNull(); });
    }
    const WaitCursor waiting;
    registry.dismiss({leaving.cbegin(), leaving.cend()});
    for (const QPointer<const Connection>& each : qAsConst(leaving)) {
        if (each)
            remove(each);
    }
}
