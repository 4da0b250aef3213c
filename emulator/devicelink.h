#pragma once

#include <QString>

namespace emulator {

/// A symbolic link to a pseudo terminal, such as "/dev/ttyUSB77" to "/dev/pts/5". It replaces
/// nothing that exists, except a link that was left by a run that was killed.
class DeviceLink final
{
public:
    DeviceLink() = default;
    ~DeviceLink() { remove(); }
    DeviceLink(const DeviceLink&) = delete;
    DeviceLink& operator=(const DeviceLink&) = delete;

    /// False on failure, with the reason in `error`.
    bool make(const QString& link, const QString& terminal, QString& error);
    /// Removes the link, unless somebody else has replaced it.
    void remove();

private:
    QString path;
    QString target;
};

} // namespace emulator
