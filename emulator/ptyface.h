#pragma once

#include "emulator/devicelink.h"
#include "emulator/face.h"
#include "emulator/filedescriptor.h"
#include "emulator/pseudoterminal.h"

#include <QSocketNotifier>
#include <QTimer>

#include <memory>
#include <optional>

namespace emulator {

/// A controller behind a pseudo terminal, as behind a serial adapter. The line between them:
///
/// - The controller has a baud rate of its own, which SBR changes behind its acknowledgment. What
///   either end sends while the host's port is set to another rate is garbage to the other end.
///   The setting that counts is the one at the moment the bytes pass the emulator. If the host has
///   closed its port by then, it is the last one that was seen, since hosts put back at the end
///   what they found; if none was seen, the ends agree.
/// - The controller either does hardware flow control or does not. Where the two ends disagree the
///   line is dead in both directions: the end with flow control is never cleared to send, and the
///   other end is taken not to be heard either. So a search that tries both settings finds a
///   controller at its own one only.
/// - A host that closes its port and opens it again is not noticed: stream, rate and half a command
///   stay. What is sent while no host has the port open, and what the host had not read when it
///   closed it, is lost; packets that can not leave are counted as lost, and nothing is kept for
///   longer than the terminal's own buffer keeps it.
/// - Unplugging takes the terminal and its link away, so that the host sees a hang-up; the
///   controller has its own power and goes on.
///
/// The emulator does not keep the host's end open itself, because only so it can see whether a host
/// has it open. While none has, the emulator's end is in the hang-up state; this does not cost
/// time, since the emulator wakes only when the state changes.
class PtyFace final : public Face
{
    Q_OBJECT

public:
    explicit PtyFace(const ControllerOptions& options, Logging logging = Logging::Off);
    ~PtyFace() override;

    /// Makes the terminal, and a symbolic link to it unless `link` is empty. False on failure, see
    /// `errorString`.
    bool open(const QString& link);
    /// The link, or the terminal itself without one; stays while unplugged.
    QString path() const { return link.isEmpty() ? terminalPath : link; }

    void unplug();
    /// A new terminal under the same link. False on failure, see `errorString`.
    bool replug();

    QString kind() const override { return QStringLiteral("pty"); }
    QString place() const override { return path(); }
    QString errorString() const override { return error; }
    void stopListening() override;
    bool listenAgain() override { return replug(); }
    bool isConnected() const override;

private:
    void write(const QByteArray& bytes) override;
    bool canSend() override;
    void close() override { unplug(); }
    void halfClose() override { unplug(); }
    void readInput() override;

    bool watch();
    void take(const QByteArray& bytes);
    SerialSettings ownSettings() const;
    SerialSettings hostSettings();
    bool reachesHost();
    void sendUnsent();
    void noteHost();
    void setHostThere(bool there);

    DeviceLink deviceLink;
    std::unique_ptr<PseudoTerminal> terminal;
    /// Signals each change at the terminal once. The library's own notifier would fire continuously
    /// while no host is there.
    FileDescriptor changes;
    std::unique_ptr<QSocketNotifier> changeNotifier;
    QTimer retryTimer;
    /// Bytes that the terminal had no room for.
    QByteArray unsent;
    QString link;
    QString terminalPath;
    QString error;
    /// The host's settings when they were last read; empty while no host is there.
    std::optional<SerialSettings> lastSettings;
    bool hostThere = false;
};

} // namespace emulator
