#pragma once

#include "link/connection.h"
#include "setup/connectionregistry.h"

#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

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
            whenNew();
        records.append(settings);
        statesWhenNew.append(connection->linkState());
        runningWhenNew.append(connection->isRunning());
        connections.push_back(std::move(connection));
    }

    bool closedConnection(QString address) override
    {
        calls.append("close " + address);
        for (auto it = connections.begin(); closes && it != connections.end(); ++it) {
            if ((*it)->address() != address)
                continue;
            connections.erase(it);
            return true;
        }
        return false;
    }

    bool reconnectConnection(QString address, QString& boardID) override
    {
        calls.append("reconnect " + address);
        boardID = answeringId;
        return reconnects;
    }

    bool disconnectConnection(QString address) override
    {
        calls.append("disconnect " + address);
        return disconnects;
    }

    bool updateSettingsAndParameters(QList<ConnectionSettings>& settings) override
    {
        calls.append("update");
        for (int i = 0; i < qMin(settings.size(), order.size()); ++i)
            settings[i].position = order.at(i);
        return updates;
    }

    QStringList calls;
    QList<ConnectionSettings> records;
    QList<LinkState> statesWhenNew;
    QList<bool> runningWhenNew;
    std::vector<std::unique_ptr<Connection>> connections;

    /// Called with every new connection.
    std::function<void()> whenNew;
    bool leaving = false;
    bool closes = true;
    bool reconnects = true;
    bool disconnects = true;
    bool updates = true;
    /// Who is there after reconnecting.
    QString answeringId;
    /// The order that the overview shows; empty: as made.
    QList<int> order;
};
