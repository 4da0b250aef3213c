#pragma once

#include "model/connectionsettings.h"
#include "setup/connectionlist.h"
#include "setup/connectionregistry.h"

#include <QList>
#include <QObject>
#include <QPointer>

#include <array>
#include <memory>

/// The systems that the connection dialog knows: the lines of both tabs, and the records in the
/// order in which the registry got its connections. Whatever a line asks for goes by its
/// connection. GUI thread only.
///
/// A registry may take events at its work, and these may remove systems. Pointers that are passed
/// in have to name an existing connection or to be null; nothing happens for one without a line,
/// except where a function says otherwise.
class SystemLines final : public QObject
{
    Q_OBJECT

public:
    /// Registry and lists have to live longer than this.
    SystemLines(ConnectionRegistry& registry, QListWidget& serialList, QListWidget& tcpList);
    ~SystemLines() override;

    /// Adds the line of a connection, which is registered later.
    void addLine(const ConnectionSettings& record, const Connection& connection);
    /// Keeps the record and hands the connection to the registry.
    void registerSystem(std::unique_ptr<Connection> connection, ConnectionSettings record);

    const ConnectionList& lines(ConnectionType type) const;
    /// Whether a line of either tab shows this identification.
    bool hasNumber(const QString& number) const;
    /// The connected one of the systems with this address, else the first; null if there is none.
    const Connection* meantBy(const QString& address) const;
    /// The working copies, in the order of the registry.
    QList<ConnectionSettings> records() const;

    /// Takes over what the user has set live. False if the registry refuses.
    bool updateRecords();
    void setAutoConnect(const Connection* connection, bool isActive);
    /// Shows in the line whether its connection is up.
    void showConnected(const Connection* connection, bool isConnected);

    /// Lets the registry bring a connection up again. Its line follows the result. Blocks.
    ReconnectResult reconnect(const Connection* connection);
    /// Lets the registry end the link, also of a connection without a line; its line follows.
    /// False if the registry could not. Blocks.
    bool disconnectLink(const Connection* connection);
    /// Removes line and record if the registry closes the connection. Blocks.
    void remove(const Connection* connection);
    /// Removes every system with a line: the serial ones from the bottom line to the top, then the
    /// others likewise.
    void removeAll();

signals:
    void lineAdded(ConnectionWidget* line);
    /// The user edited the label of the line with this address; the system has it already.
    void labelEdited(QString address, QString label);
    void reconnectWanted(const Connection* connection);
    void disconnectWanted(const Connection* connection);
    void removalWanted(const Connection* connection);

private:
    struct System
    {
        ConnectionSettings record;
        QPointer<const Connection> connection;
    };

    void watchLine(const ConnectionWidget& line, const Connection& connection);
    ConnectionWidget* lineOf(const Connection* connection) const;
    void relabel(const Connection* connection, const QString& label);

    ConnectionRegistry& registry;
    /// Those of the serial tab, then those of the other one.
    std::array<ConnectionList, 2> lists;
    QList<System> systems;
};
