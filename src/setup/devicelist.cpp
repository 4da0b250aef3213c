#include "setup/devicelist.h"

#include <algorithm>

DeviceList::DeviceList(const QList<QStringList>& found)
{
    for (const QStringList& entry : found)
        devices.append({entry.value(0), entry.value(1), entry.value(2).toInt()});
}

QStringList DeviceList::ids() const
{
    QStringList all;
    for (const SerialDevice& device : devices)
        all.append(device.id);
    return all;
}

std::optional<SerialDevice> DeviceList::find(const QString& id) const
{
    const auto found = std::find_if(devices.cbegin(), devices.cend(),
                                    [&id](const SerialDevice& each) { return each.id == id; });
    return found == devices.cend() ? std::nullopt : std::make_optional(*found);
}

QStringList DeviceList::portsOf(const QString& id) const
{
    QStringList ports;
    for (const SerialDevice& device : devices) {
        if (device.id == id)
            ports.append(device.port);
    }
    return ports;
}

void DeviceList::setBaudRate(const QString& id, int baudRate)
{
    for (SerialDevice& device : devices) {
        if (device.id == id)
            device.baudRate = baudRate;
    }
}
