#pragma once

#include "model/connectionsettings.h"
#include "setup/setupdocument.h"

#include <QString>
#include <QStringList>

namespace records {

/// An identification text whose device key is `key`, which has 11 characters.
inline QString idWithKey(const QString& key)
{
    return QStringLiteral("Zev-V40-000000") + key + QStringLiteral("-rest of the text");
}

inline ConnectionSettings tcp(const QString& key, const QString& label)
{
    ConnectionSettings record;
    record.type = ConnectionType::Tcp;
    record.name.set(QStringLiteral("127.0.0.9"));
    record.label.set(label);
    record.id.set(idWithKey(key));
    record.baudRateOrPort = 2000;
    record.autoConnect = true;
    record.colorX = QStringLiteral("#ff0000");
    record.colorY = QStringLiteral("#008000");
    record.colorI = QStringLiteral("#0000ff");
    return record;
}

inline ConnectionSettings serial(const QString& key, const QString& label)
{
    ConnectionSettings record = tcp(key, label);
    record.type = ConnectionType::Serial;
    record.name.set(QStringLiteral("ttyUSB3"));
    record.baudRateOrPort = 921600;
    record.autoConnect = false;
    return record;
}

/// One that does not connect by itself.
inline ConnectionSettings quietTcp(const QString& key, const QString& address, const QString& label)
{
    ConnectionSettings record = tcp(key, label);
    record.autoConnect = false;
    record.name.set(address);
    return record;
}

inline ConnectionSettings quietSerial(const QString& key, const QString& port, const QString& label)
{
    ConnectionSettings record = serial(key, label);
    record.name.set(port);
    return record;
}

/// Labels of the systems of a setup file, in its order.
inline QStringList labelsIn(const QByteArray& xml)
{
    QStringList labels;
    const auto content = setupdocument::read(xml);
    if (content) {
        for (const ConnectionSettings& record : content->records)
            labels.append(record.label.text());
    }
    return labels;
}

/// A whole setup file.
inline QByteArray file(const QList<ConnectionSettings>& list)
{
    return *setupdocument::withDetectors(setupdocument::connections(list), list);
}

} // namespace records
