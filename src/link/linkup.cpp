#include "link/linkup.h"

#include "link/connection.h"
#include "link/identification.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

#include <atomic>
#include <memory>

namespace {

constexpr unsigned long pollMs = 1;

/// Remembers that a link was lost. The state of the link says so only after it was disconnected.
class LossWatch final
{
public:
    explicit LossWatch(const Connection& watched)
        : connection(watched)
        , noted(std::make_shared<std::atomic<bool>>(false))
        , watching(QObject::connect(
              &watched, &Connection::hostDisconnected, &watched,
              [flag = noted](const QString&) { *flag = true; }, Qt::DirectConnection))
    {}
    ~LossWatch() { QObject::disconnect(watching); }
    LossWatch(const LossWatch&) = delete;
    LossWatch& operator=(const LossWatch&) = delete;

    /// Gives the connection's thread the time to report what ended the last exchange.
    bool isLost() const
    {
        QThread::msleep(settleMs);
        return *noted || !connection.isRunning();
    }

private:
    static constexpr unsigned long settleMs = 20;

    const Connection& connection;
    /// Shared with the connection's thread, which can still be about to set it.
    std::shared_ptr<std::atomic<bool>> noted;
    QMetaObject::Connection watching;
};

} // namespace

void takeEvents()
{
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

bool waitForLink(const Connection& connection, LinkWait wait)
{
    if (wait.manner == LinkWait::Manner::InOneGo) {
        takeEvents();
        QThread::msleep(static_cast<unsigned long>(wait.limitMs));
        takeEvents();
        return connection.isConnected();
    }
    const QDeadlineTimer limit(wait.limitMs);
    while (!connection.isConnected() && connection.isRunning() && !limit.hasExpired()) {
        if (wait.manner == LinkWait::Manner::TakingEvents)
            takeEvents();
        QThread::msleep(pollMs);
    }
    return connection.isConnected();
}

bool bringUp(Connection& connection, LinkWait wait)
{
    connection.start(QThread::InheritPriority);
    return waitForLink(connection, wait);
}

bool changeBaudRate(Connection& connection, LinkWait wait, int baudRate)
{
    // Without a link the command is given all the same, with nothing to say, and is dropped.
    QByteArray argument;
    if (bringUp(connection, wait)) {
        clearLine(connection, LineClearing::TwoStops);
        argument = command::baudRateArgument(baudRate);
    }
    connection.setControllerBaudRate(argument);
    QByteArray reply;
    connection.fetchReply(reply);
    return !reply.isEmpty() && reply.at(0) == 0;
}

LinkOutcome connectAndIdentify(Connection& connection, LinkWait wait, const QString& label,
                               QString& id, const std::function<bool(const QString&)>& isUsable)
{
    const LossWatch watch(connection);
    if (!bringUp(connection, wait))
        return LinkOutcome::NoLink;

    const ControllerIdentity identity = identify(connection, LineClearing::TwoStops);
    const bool isExpected = id.isEmpty() || id == identity.id;
    if (!identity.isController || !isUsable(identity.id) || !isExpected)
        return LinkOutcome::NotIdentified;
    id = identity.id;
    labelController(connection, label);
    return watch.isLost() ? LinkOutcome::NoLink : LinkOutcome::Up;
}
