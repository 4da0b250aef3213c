#pragma once

#include <QList>
#include <QString>

class Connection;
class ConnectionWidget;
class QListWidget;
class QListWidgetItem;

/// The lines of one tab of the connection dialog. The list widget owns lines and items.
class ConnectionList final
{
public:
    explicit ConnectionList(QListWidget& listWidget)
        : list(listWidget)
    {}

    /// Adds the line of a connection. Its own address is empty if the stored one is none.
    ConnectionWidget& add(const QString& number, const QString& label, const QString& address,
                          const Connection& connection);
    void removeAt(int index);

    int size() const { return widgets.size(); }
    ConnectionWidget& at(int index) const { return *widgets.at(index); }
    /// The address by which the connection is registered.
    QString registryAddressAt(int index) const { return registryAddresses.at(index); }
    /// Whose lines these are, in their order. They can be gone.
    const QList<const Connection*>& connections() const { return owners; }

    /// Index of the first line with this address or number; -1 if there is none.
    int indexOfAddress(const QString& address) const;
    int indexOfNumber(const QString& number) const;

    /// Marks the lines of an address; if a number is given, only those that have it, too. Returns
    /// whether there was one.
    bool markConnected(const QString& address, bool isConnected) const;
    bool markConnected(const QString& address, const QString& number, bool isConnected) const;

private:
    QListWidget& list;
    // Same indices.
    QList<ConnectionWidget*> widgets;
    QList<QListWidgetItem*> items;
    QList<const Connection*> owners;
    QList<QString> registryAddresses;
};
