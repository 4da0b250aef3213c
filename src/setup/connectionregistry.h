#pragma once

#include "model/connectionsettings.h"

#include <QList>
#include <QString>

#include <memory>

class Connection;

/// Keeps the connections that the connection dialog makes. GUI thread only.
///
/// Most of them are told apart by their addresses. Those whose stored address is none share the
/// empty one: what has to find these, too, goes by the connection itself.
class ConnectionRegistry
{
public:
    virtual ~ConnectionRegistry() = default;

    /// Whether everything is being ended. Who makes connections stops then.
    virtual bool isLeaving() const = 0;
    /// Takes a connection, up or not, with its stored record. One that is not up has no running
    /// thread.
    virtual void newConnection(std::unique_ptr<Connection> connection,
                               const ConnectionSettings& settings) = 0;
    /// Ends and removes a connection; false if it is not there. It is only compared: it can be
    /// gone.
    virtual bool closeConnection(const Connection* connection) = 0;
    /// Renames a connection, at its controller, too, if it is up.
    virtual void relabelConnection(const Connection* connection, const QString& label) = 0;
    /// Brings a connection up again and tells who answered. Blocks for the exchanges. False if
    /// no controller did.
    virtual bool reconnectConnection(QString address, QString& boardID) = 0;
    /// Ends a connection's thread and keeps the connection; false if that failed.
    virtual bool disconnectConnection(QString address) = 0;
    /// Copies what the user has set live into the records, which are in the order in which the
    /// connections came; `position` of entry i becomes the index of the record shown at place i.
    /// False if the lists do not belong together.
    virtual bool updateSettingsAndParameters(QList<ConnectionSettings>& settings) = 0;
};
