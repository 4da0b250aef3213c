#pragma once

#include "link/connection.h"

#include <QList>
#include <QPointer>
#include <QString>

class ConnectionWidget;
class QListWidget;
class QListWidgetItem;
struct ConnectionSettings;

/// The lines of one tab of the connection dialog. The list widget owns lines and items.
///
/// A line belongs to a connection. Addresses only look lines up, as two can have the same one.
class ConnectionList final
{
public:
    explicit ConnectionList(QListWidget& listWidget)
        : list(listWidget)
    {}

    /// Adds the line of a connection, with number, label and address of the record.
    ConnectionWidget& add(const ConnectionSettings& record, const Connection& connection);
    /// Removes the line of this connection; if it is null, those of deleted connections.
    void remove(const QPointer<const Connection>& connection);
    void clear();

    /// Null if the connection has no line here.
    ConnectionWidget* lineOf(const Connection* connection) const;
    bool hasAddress(const QString& address) const;
    bool hasNumber(const QString& number) const;
    /// Number of the lowest line; null without lines.
    QString lastNumber() const;
    /// Whose lines these are, from the top. An entry is null if its connection was deleted.
    QList<QPointer<const Connection>> connections() const;
    /// Those of the lines with this address, from the top.
    QList<const Connection*> connectionsAt(const QString& address) const;

private:
    struct Line
    {
        ConnectionWidget* widget;
        QListWidgetItem* item;
        /// A connection that is made later can get the memory of one that is gone.
        QPointer<const Connection> connection;
    };

    void removeFromScreen(const Line& line);

    QListWidget& list;
    QList<Line> lines;
};
