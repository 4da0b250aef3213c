#include "window/livesystems.h"

#include "app/logging.h"
#include "link/connection.h"
#include "link/identification.h"
#include "link/linkup.h"
#include "model/connectionsettings.h"
#include "setup/colors.h"
#include "window/farewell.h"

#include <QPointer>
#include <QThread>

#include <algorithm>
#include <list>
#include <memory>
#include <utility>

namespace {

constexpr LinkWait reconnectWait{300, LinkWait::Manner::WithoutEvents};
constexpr unsigned long settleMs = 2;

ConnectionStatus initialStatus(Connection& connection, const ConnectionSettings& settings)
{
    ConnectionStatus status;
    status.connection = &connection;
    status.address = connection.address();
    status.label = connection.label();
    status.statusValid = connection.isConnected();
    status.groupId = settings.group;
    status.colorX = toColor(settings.colorX);
    status.colorY = toColor(settings.colorY);
    status.colorI = toColor(settings.colorI);
    return status;
}

void endThread(Connection& connection)
{
    connection.disconnectController();
    QThread::msleep(settleMs);
}

/// Asks who answers behind a link that is up.
Reconnection askIdentity(Connection& link, const QString& expectedId)
{
    const ControllerIdentity identity = identify(link, LineClearing::TwoStopsAndRepeat);
    if (!identity.isController)
        return {ReconnectResult::NoController, {}};
    if (expectedId.isEmpty() || expectedId == identity.id)
        return {ReconnectResult::Reconnected, identity.id};
    return {ReconnectResult::OtherController, {}};
}

/// Any other controller than the expected one leaves the link without a running thread.
Reconnection bringUpAgain(Connection& link, const QString& expectedId)
{
    Reconnection outcome;
    if (bringUp(link, reconnectWait))
        outcome = askIdentity(link, expectedId);
    if (outcome.result != ReconnectResult::Reconnected)
        link.disconnectController();
    return outcome;
}

} // namespace

LiveSystems::LiveSystems(QObject* parent)
    : QObject(parent)
{}

LiveSystems::~LiveSystems() = default;

int LiveSystems::indexOf(const Connection* connection) const
{
    const auto found = std::find_if(systems.begin(), systems.end(), [&](const LiveSystem& system) {
        return system.connection.get() == connection;
    });
    return found == systems.end() ? -1 : int(found - systems.begin());
}

Connection* LiveSystems::find(const QString& address) const
{
    Connection* first = nullptr;
    for (const LiveSystem& system : systems) {
        Connection& connection = *system.connection;
        if (connection.address() != address)
            continue;
        if (connection.isConnected())
            return &connection;
        if (!first)
            first = &connection;
    }
    return first;
}

LiveSystem* LiveSystems::single()
{
    const int index = onPlots.single();
    return index >= 0 ? &at(index) : nullptr;
}

LiveSystem* LiveSystems::current()
{
    return onPlots.current() < size() ? &at(onPlots.current()) : nullptr;
}

const LiveSystem* LiveSystems::current() const
{
    return onPlots.current() < size() ? &at(onPlots.current()) : nullptr;
}

QVector<ConnectionStatus> LiveSystems::statuses() const
{
    QVector<ConnectionStatus> copies;
    copies.reserve(size());
    for (const LiveSystem& system : systems)
        copies.append(system.status);
    return copies;
}

void LiveSystems::add(std::unique_ptr<Connection> connection, const ConnectionSettings& settings,
                      DetectorPair& detectors)
{
    const int index = size();
    watch(*connection);
    LiveSystem system;
    system.status = initialStatus(*connection, settings);
    system.detectors = &detectors;
    system.connection = std::move(connection);
    systems.push_back(std::move(system));
    emit added(index);
    if (connectionAt(index).isConnected())
        display(index);
}

/// A link that was lost before it was registered has told nobody. Its thread, which may still be
/// about to end, tells it then by its end.
void LiveSystems::watch(Connection& connection)
{
    const QPointer<Connection> watched(&connection);
    const auto tellIfLost = [this, watched] { tellLoss(watched); };
    connect(&connection, &Connection::hostDisconnected, this, tellIfLost);
    connect(&connection, &QThread::finished, this, tellIfLost);
    if (!connection.isRunning())
        QMetaObject::invokeMethod(this, tellIfLost, Qt::QueuedConnection);
}

/// Ignored if the connection was closed, disconnected or brought up anew before this call was
/// delivered.
void LiveSystems::tellLoss(const Connection* connection)
{
    if (indexOf(connection) >= 0 && connection->isConnected() && !connection->hasPort())
        emit lost(connection);
}

void LiveSystems::show(const Connection* connection, bool show)
{
    const int index = indexOf(connection);
    if (index < 0)
        return;
    if (!show)
        hide(index);
    else if (connection->isConnected())
        display(index);
}

void LiveSystems::display(int index)
{
    const bool isNew = onPlots.display(index);
    at(index).status.displayed = onPlots.displayed().contains(index);
    if (isNew)
        emit shown(index);
}

void LiveSystems::hide(int index)
{
    if (!onPlots.hide(index))
        return;
    at(index).status.displayed = false;
    if (connectionAt(index).isConnected() && !common().contains(index) && !at(index).isDismissed)
        connectionAt(index).stopStream();
    emit hidden(index);
}

void LiveSystems::showCommon(const Connection* connection, bool show)
{
    const int index = indexOf(connection);
    if (index < 0)
        return;
    if (!show)
        hideCommon(index);
    else if (connection->isConnected())
        displayCommon(index);
}

void LiveSystems::displayCommon(int index)
{
    if (onPlots.showCommon(index))
        emit commonShown(index);
}

void LiveSystems::hideCommon(int index)
{
    const int place = onPlots.hideCommon(index);
    if (place < 0)
        return;
    if (!displayed().contains(index) && connectionAt(index).isStreaming() && !at(index).isDismissed)
        connectionAt(index).stopStream();
    emit commonHidden(place);
}

void LiveSystems::dismiss(const QList<const Connection*>& closing)
{
    std::list<Farewell> farewells;
    for (const Connection* each : closing) {
        const int index = indexOf(each);
        if (index >= 0 && !std::exchange(at(index).isDismissed, true))
            farewells.emplace_back(connectionAt(index), isStoppedByHiding(index));
    }
    sayFarewell(std::move(farewells));
}

/// A displayed system is stopped even if it is idle.
bool LiveSystems::isStoppedByHiding(int index) const
{
    const Connection& connection = connectionAt(index);
    return displayed().contains(index) ? connection.isConnected()
                                       : common().contains(index) && connection.isStreaming();
}

bool LiveSystems::close(const Connection* connection)
{
    const int index = indexOf(connection);
    if (index < 0)
        return false;
    dismiss({connection});
    hideCommon(index);
    hide(index);
    connectionAt(index).disconnect(this);

    const std::unique_ptr<Connection> closing = std::move(at(index).connection);
    systems.erase(systems.begin() + index);
    onPlots.forget(index);
    emit closed(index, closing.get());
    return true;
}

void LiveSystems::closeAll()
{
    onPlots.hideAllDisplayed();
    QList<const Connection*> closing;
    for (const LiveSystem& system : systems)
        closing.prepend(system.connection.get());
    dismiss(closing);
    for (const Connection* each : qAsConst(closing))
        close(each);
}

bool LiveSystems::disconnectLink(const Connection* connection)
{
    const int index = indexOf(connection);
    if (index < 0)
        return false;
    endThread(connectionAt(index));
    hideCommon(index);
    hide(index);
    emit disconnected(index);
    return !connection->isConnected();
}

Reconnection LiveSystems::reconnect(const Connection* connection, const QString& expectedId)
{
    logMessage().info() << "Reconnecting";
    Reconnection outcome;
    const int index = indexOf(connection);
    if (index >= 0) {
        // A link that was lost has no thread and still counts as connected.
        if (connection->isRunning() || connection->isConnected())
            disconnectLink(connection);
        outcome = bringUpAgain(connectionAt(index), expectedId);
    }
    const bool isUp = outcome.result == ReconnectResult::Reconnected;
    if (isUp)
        noteReconnected(index);
    logMessage().info() << (isUp ? "Successfully reconnected" : "Reconnecting failed");
    return outcome;
}

void LiveSystems::noteReconnected(int index)
{
    ConnectionStatus& status = at(index).status;
    status.statusValid = true;
    // Nobody asks for these, and a controller that was off begins on detectors of its own.
    for (const Stage stage : bothStages)
        multiplexFlag(status, stage) = false;
    display(index);
}

void LiveSystems::setColor(const Connection* connection, const QColor& color, Graph graph)
{
    const int index = indexOf(connection);
    if (index < 0)
        return;
    ConnectionStatus& status = at(index).status;
    switch (graph) {
    case Graph::X:
        status.colorX = color;
        break;
    case Graph::Y:
        status.colorY = color;
        break;
    case Graph::Intensity:
        status.colorI = color;
        break;
    default:
        return;
    }
    emit colored(index);
}

void LiveSystems::setGroup(const Connection* connection, int group)
{
    const int index = indexOf(connection);
    if (index >= 0)
        at(index).status.groupId = group;
}

void LiveSystems::noteCommonPath(const Connection* connection, Stage stage, bool isOnCommonPath)
{
    const int index = indexOf(connection);
    if (index >= 0)
        multiplexFlag(at(index).status, stage) = isOnCommonPath;
}

void LiveSystems::relabel(const Connection* connection, const QString& label)
{
    const int index = indexOf(connection);
    if (index < 0)
        return;
    labelController(connectionAt(index), label);
    at(index).status.label = label;
}
