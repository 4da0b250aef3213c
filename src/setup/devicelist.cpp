#include "setup/devicelist.h"

#include <algorithm>

DeviceList::DeviceList(const QList<FoundInterface>& found)
    : devices(found)
{}

QStringList DeviceList::ids() const
{
    QStringList all;
    for (const FoundInterface& device : devices)
        all.append(device.id);
    return all;
}

std::optional<FoundInterface> DeviceList::find(const QString& id) const
{
    const auto found = std::find_if(devices.cbegin(), devices.cend(),
                                    [&id](const FoundInterface& each) { return each.id == id; });
    return found == devices.cend() ? std::nullopt : std::make_optional(*found);
}

QStringList DeviceList::portsOf(const QString& id) const
{
    QStringList ports;
    for (const FoundInterface& device : devices) {
        if (device.id == id)
            ports.append(device.port);
    }
    return ports;
}

void DeviceList::setBaudRate(const QString& id, int baudRate)
{
    for (FoundInterface& device : devices) {
        if (device.id == id)
            device.baudRate = baudRate;
    }
}
