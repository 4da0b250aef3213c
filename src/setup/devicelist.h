#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

/// A controller at a serial interface.
struct SerialDevice
{
    /// The controller's identification text.
    QString id;
    QString port;
    /// The rate at which it answers.
    int baudRate = 0;
};

/// The controllers that the latest search found at the serial interfaces.
class DeviceList final
{
public:
    DeviceList() = default;
    /// Takes the result of a search: identification text, port name and baud rate of each.
    explicit DeviceList(const QList<QStringList>& found);

    QStringList ids() const;
    /// The first one with this identification; nothing if there is none.
    std::optional<SerialDevice> find(const QString& id) const;
    /// Ports of all with this identification.
    QStringList portsOf(const QString& id) const;
    /// Notes the rate to which a controller was changed.
    void setBaudRate(const QString& id, int baudRate);

private:
    QList<SerialDevice> devices;
};
