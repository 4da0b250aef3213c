#pragma once

#include "link/interfacesearch.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

/// The controllers that the latest search found at the serial interfaces.
class DeviceList final
{
public:
    DeviceList() = default;
    explicit DeviceList(const QList<FoundInterface>& found);

    QStringList ids() const;
    /// The first one with this identification; nothing if there is none.
    std::optional<FoundInterface> find(const QString& id) const;
    /// Ports of all with this identification.
    QStringList portsOf(const QString& id) const;
    /// Notes the rate to which a controller was changed.
    void setBaudRate(const QString& id, int baudRate);

private:
    QList<FoundInterface> devices;
};
