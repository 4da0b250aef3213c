#pragma once

#include "emulator/filedescriptor.h"
#include "emulator/serialline.h"

#include <QByteArray>
#include <QString>

#include <memory>

namespace emulator {

/// The controller's end of a pseudo terminal. A host opens the other end like a serial port. The
/// host's settings can be read here, and stay when the host closes its end. No function blocks.
class PseudoTerminal final
{
public:
    /// Makes a terminal, raw in both directions. Null on failure, with the reason in `error`. The
    /// host's end has the settings `initial` until a host changes them.
    static std::unique_ptr<PseudoTerminal> make(const SerialSettings& initial, QString& error);

    /// The host's end, as in "/dev/pts/5".
    QString path() const { return hostPath; }
    /// To be watched for input, and for the host closing its end.
    int descriptor() const { return ownEnd.get(); }

    /// Whether anybody has the host's end open.
    bool isHostThere() const;
    SerialSettings hostSettings() const;

    /// Some of what the host has sent; empty if there is nothing.
    QByteArray read();
    /// Writes as many bytes from the beginning of `bytes` as fit, and returns their number.
    int write(const QByteArray& bytes);
    /// Drops all bytes that were written and that the host has not read.
    void discardUnread();

private:
    PseudoTerminal(FileDescriptor own, const QString& path);
    FileDescriptor openHostEnd() const;
    bool setUp(const SerialSettings& initial) const;

    FileDescriptor ownEnd;
    QString hostPath;
};

} // namespace emulator
