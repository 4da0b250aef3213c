#pragma once

#include <QString>

namespace emulator {

/// A symbolic link under which a pseudo terminal is found, as "/dev/ttyUSB77" for "/dev/pts/5".
/// Never takes the place of anything but a link that a killed run has left behind.
class DeviceLink final
{
public:
    DeviceLink() = default;
    ~DeviceLink() { remove(); }
    DeviceLink(const DeviceLink&) = delete;
    DeviceLink& operator=(const DeviceLink&) = delete;

    /// False on failure, which `error` tells.
    bool make(const QString& link, const QString& terminal, QString& error);
    /// Takes the link away, unless somebody else has put something in its place.
    void remove();

private:
    QString path;
    QString target;
};

} // namespace emulator
