#pragma once

#include <QList>
#include <QString>

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

    /// Adds a line. `registryAddress` is the address by which the connection is registered: empty
    /// for a stored address that no connection can take.
    ConnectionWidget& add(const QString& number, const QString& label, const QString& address,
                          const QString& registryAddress);
    void removeAt(int index);

    int size() const { return widgets.size(); }
    ConnectionWidget& at(int index) const { return *widgets.at(index); }
    QString registryAddressAt(int index) const { return registryAddresses.at(index); }

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
    QList<QString> registryAddresses;
};
