#pragma once

#include "emulator/filedescriptor.h"
#include "emulator/serialline.h"

#include <QByteArray>
#include <QString>

#include <memory>

namespace emulator {

/// The controller's end of a pseudo terminal whose other end a host opens like a serial port. The
/// host's settings are seen here, and outlive the host's closing it. Nothing blocks.
class PseudoTerminal final
{
public:
    /// A new one, raw in both directions; null on failure, which `error` tells. `initial` is what
    /// the host's port is set to until a host sets it.
    static std::unique_ptr<PseudoTerminal> make(const SerialSettings& initial, QString& error);

    /// The host's end, as in "/dev/pts/5".
    QString path() const { return hostPath; }
    /// To be watched for input, and for the host's leaving.
    int descriptor() const { return ownEnd.get(); }

    /// Whether anybody has the host's end open.
    bool isHostThere() const;
    SerialSettings hostSettings() const;

    /// Some of what the host has sent; empty if there is nothing.
    QByteArray read();
    /// Number of bytes that were taken from the beginning of `bytes`.
    int write(const QByteArray& bytes);
    /// Drops what was written and not read by the host.
    void discardUnread();

private:
    PseudoTerminal(FileDescriptor own, const QString& path);
    FileDescriptor openHostEnd() const;
    bool setUp(const SerialSettings& initial) const;

    FileDescriptor ownEnd;
    QString hostPath;
};

} // namespace emulator
