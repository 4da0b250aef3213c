#pragma once

#include "link/connection.h"
#include "setup/connectionregistry.h"

#include <QCursor>
#include <QGuiApplication>
#include <QStringList>

#include <algorithm>
#include <functional>
#include <memory>
#include <vector>

/// Whether the user is told to wait.
inline bool showsWaitPointer()
{
    const QCursor* pointer = QGuiApplication::overrideCursor();
    return pointer && pointer->shape() == Qt::WaitCursor;
}

/// A registry that keeps what it is given, notes every call, and answers as it is told.
class FakeRegistry final : public ConnectionRegistry
{
public:
    bool isLeaving() const override { return leaving; }

    void newConnection(std::unique_ptr<Connection> connection,
                       const ConnectionSettings& settings) override
    {
        calls.append("new " + connection->address());
        if (whenNew)
            whenNew(*connection);
        records.append(settings);
        statesWhenNew.append(connection->linkState());
        runningWhenNew.append(connection->isRunning());
        connections.push_back(std::move(connection));
    }

    void dismiss(const QList<const Connection*>& closing) override
    {
        for (const Connection* each : closing)
            dismissed.append(addressOf(each));
    }

    bool closeConnection(const Connection* connection) override
    {
        const auto found = find(connection);
        if (found == connections.end())
            return false;
        calls.append("close " + (*found)->address());
        if (!closes)
            return false;
        if (whenClosing)
            whenClosing();
        std::unique_ptr<Connection> closed = std::move(*found);
        connections.erase(found);
        if (keepsClosed)
            closedConnections.push_back(std::move(closed));
        // A registry may show what it does, which takes events. These find a whole list.
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        return true;
    }

    void relabelConnection(const Connection* connection, const QString& label) override
    {
        const auto found = find(connection);
        if (found == connections.end())
            return;
        if (whenRelabelled)
            whenRelabelled();
        (*found)->setLabel(label);
        relabelled.append(int(found - connections.begin()));
    }

    ReconnectResult reconnect(const Connection* connection, const QString& expectedId) override
    {
        calls.append("reconnect " + addressOf(connection));
        reconnected.append(indexOf(connection));
        if (!reconnects)
            return ReconnectResult::NoController;
        return answeringId == expectedId ? ReconnectResult::Reconnected
                                         : ReconnectResult::OtherController;
    }

    bool disconnectLink(const Connection* connection) override
    {
        calls.append("disconnect " + addressOf(connection));
        disconnected.append(indexOf(connection));
        if (whenDisconnecting)
            whenDisconnecting();
        return disconnects;
    }

    bool updateSettingsAndParameters(QList<ConnectionSettings>& settings) override
    {
        calls.append("update");
        for (int i = 0; i < settings.size(); ++i)
            settings[i].position = order.value(i, i);
        return updates;
    }

    QStringList calls;
    /// Addresses of the connections that were to be closed at one time, in this order.
    QStringList dismissed;
    /// Indices of the connections that were asked for, in the order of the calls; -1 for one that
    /// is not there.
    QList<int> relabelled;
    QList<int> reconnected;
    QList<int> disconnected;
    QList<ConnectionSettings> records;
    QList<LinkState> statesWhenNew;
    QList<bool> runningWhenNew;
    std::vector<std::unique_ptr<Connection>> connections;

    /// Called with every new connection.
    std::function<void(const Connection&)> whenNew;
    /// Called before a connection gets another label.
    std::function<void()> whenRelabelled;
    /// Called before a connection is closed.
    std::function<void()> whenClosing;
    /// Called before a link is ended.
    std::function<void()> whenDisconnecting;
    bool leaving = false;
    bool closes = true;
    /// Whether closed connections live on.
    bool keepsClosed = false;
    std::vector<std::unique_ptr<Connection>> closedConnections;
    bool reconnects = true;
    bool disconnects = true;
    bool updates = true;
    /// Who is there after reconnecting.
    QString answeringId;
    /// The order that the overview shows; empty: as made.
    QList<int> order;

    /// -1 for one that is not there.
    int indexOf(const Connection* connection)
    {
        const auto found = find(connection);
        return found == connections.end() ? -1 : int(found - connections.begin());
    }

private:
    QString addressOf(const Connection* connection)
    {
        const auto found = find(connection);
        return found == connections.end() ? QStringLiteral("nobody") : (*found)->address();
    }

    std::vector<std::unique_ptr<Connection>>::iterator find(const Connection* connection)
    {
        return std::find_if(connections.begin(), connections.end(),
                            [connection](const auto& each) { return each.get() == connection; });
    }
};
