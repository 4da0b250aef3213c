#include "setup/linkup.h"

#include "link/connection.h"
#include "link/identification.h"
#include "model/connectionsettings.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

namespace {

constexpr unsigned long pollMs = 1;

void waitForLink(const Connection& connection, LinkWait wait)
{
    if (wait.inOneGo) {
        takeEvents();
        QThread::msleep(static_cast<unsigned long>(wait.limitMs));
        takeEvents();
        return;
    }
    const QDeadlineTimer limit(wait.limitMs);
    while (!connection.isConnected() && connection.isRunning() && !limit.hasExpired()) {
        takeEvents();
        QThread::msleep(pollMs);
    }
}

/// A link that was lost keeps its state until it is disconnected: its end shows in the thread.
bool isUp(const Connection& connection)
{
    return connection.isConnected() && connection.isRunning();
}

/// Whether a record has room for the identification, which may hold any bytes.
bool canBeStored(const QString& id)
{
    return decltype(ConnectionSettings::id)::fits(id)
           && decltype(ConnectionSettings::serial)::fits(deviceKey(id));
}

} // namespace

void takeEvents()
{
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

LinkOutcome connectAndIdentify(Connection& connection, LinkWait wait, const QString& label,
                               QString& id)
{
    connection.start(QThread::InheritPriority);
    waitForLink(connection, wait);
    if (!connection.isConnected())
        return LinkOutcome::NoLink;

    const ControllerIdentity identity = identify(connection, LineClearing::TwoStops);
    const bool isExpected = id.isEmpty() || id == identity.id;
    if (!identity.isController || !canBeStored(identity.id) || !isExpected)
        return LinkOutcome::NotIdentified;
    id = identity.id;
    labelController(connection, label);
    return isUp(connection) ? LinkOutcome::Up : LinkOutcome::NoLink;
}
