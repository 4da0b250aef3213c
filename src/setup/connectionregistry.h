#pragma once

#include "model/connectionsettings.h"

#include <QList>
#include <QString>

#include <memory>

class Connection;

enum class ReconnectResult {
    /// The expected controller answers, and its link is up.
    Reconnected,
    /// The link did not come up, or nobody behind it said that it is a controller.
    NoController,
    /// A controller answers, but not the expected one.
    OtherController,
};

/// Keeps the connections that the connection dialog makes. GUI thread only.
///
/// A connection is named by its pointer, because two connections can have the same address. The
/// pointers are only compared, so they may name a connection that is gone: nothing happens then.
class ConnectionRegistry
{
public:
    virtual ~ConnectionRegistry() = default;

    /// Whether the application is being ended. Whoever makes connections stops then.
    virtual bool isLeaving() const = 0;
    /// Takes a connection, up or not, with its stored record. One that is not up has no running
    /// thread.
    virtual void newConnection(std::unique_ptr<Connection> connection,
                               const ConnectionSettings& settings) = 0;
    /// Stops the controllers of connections that are closed next and in this order. Closing them
    /// one after the other does the same, but here their waits pass at the same time.
    virtual void dismiss(const QList<const Connection*>& closing) = 0;
    /// Ends and removes a connection; false if it is not there.
    virtual bool closeConnection(const Connection* connection) = 0;
    /// Renames a connection, at its controller, too, if it is up.
    virtual void relabelConnection(const Connection* connection, const QString& label) = 0;
    /// Brings a connection up again and proves that the controller `expectedId` answers there.
    /// Blocks for the exchanges. Any other result than `Reconnected` leaves the connection without
    /// a running thread and shows nothing of it.
    virtual ReconnectResult reconnect(const Connection* connection, const QString& expectedId) = 0;
    /// Ends a connection's thread and keeps the connection; false if that failed.
    virtual bool disconnectLink(const Connection* connection) = 0;
    /// Copies what the user has set live into the records, which are in the order in which the
    /// connections came; `position` of entry i becomes the index of the record shown at place i.
    /// False if the lists do not belong together.
    virtual bool updateSettingsAndParameters(QList<ConnectionSettings>& settings) = 0;
};
