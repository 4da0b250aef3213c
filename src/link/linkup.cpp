#include "link/linkup.h"

#include "link/ask.h"
#include "link/connection.h"
#include "link/identification.h"
#include "link/introduction.h"
#include "link/replyforms.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QThread>

#include <memory>
#include <utility>

namespace {

/// A link on its way up, and the introduction behind it.
class LinkArrival final
{
public:
    LinkArrival(Connection& newLink, int limitMs, const QString& label, const QString& id,
                const std::function<bool(const QString&)>& isUsable)
        : connection(newLink)
        , introduction(newLink, label, id, isUsable)
        , limit(limitMs)
    {
        connection.start(QThread::InheritPriority);
    }

    std::optional<LinkOutcome> advance()
    {
        if (!isUp) {
            isUp = connection.isConnected();
            if (!isUp && connection.isRunning() && !limit.hasExpired())
                return std::nullopt;
            if (!isUp)
                return LinkOutcome::NoLink;
        }
        if (!introduction.advance())
            return std::nullopt;
        return introduction.outcome();
    }

private:
    Connection& connection;
    Introduction introduction;
    const QDeadlineTimer limit;
    bool isUp = false;
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
        QThread::msleep(talkPaceMs);
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
    const QByteArray reply = ask(connection, &Connection::setControllerBaudRate, argument);
    return command::isAcceptedByOne(reply);
}

LinkOutcome connectAndIdentify(Connection& connection, LinkWait wait, const QString& label,
                               QString& id, const std::function<bool(const QString&)>& isUsable)
{
    Introduction introduction(connection, label, id, isUsable);
    if (!bringUp(connection, wait))
        return LinkOutcome::NoLink;
    finish(introduction, connection);
    if (introduction.outcome() == LinkOutcome::Up)
        id = introduction.foundId();
    return introduction.outcome();
}

Arrival beginArrival(Connection& connection, int limitMs, const QString& label, const QString& id,
                     const std::function<bool(const QString&)>& isUsable)
{
    const auto arrival = std::make_shared<LinkArrival>(connection, limitMs, label, id, isUsable);
    return [arrival] { return arrival->advance(); };
}
