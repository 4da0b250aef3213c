#pragma once

#include "emulator/controlleroptions.h"
#include "emulator/wirelog.h"

#include <QByteArrayList>
#include <QString>
#include <QVector>

#include <functional>
#include <memory>

namespace emulator {

class HostThread;
class Face;

/// A controller of an `EmulatorHost`: a value that may be copied, and that is of use for as long as
/// the host lives. Every call may come from any thread, and returns when it is done.
class ControllerHandle final
{
public:
    ControllerHandle() = default;

    /// False if the controller could not be set up, as with a port that is taken.
    bool isValid() const { return owner != nullptr; }

    /// Of a controller behind TCP; empty and 0 for others.
    QString address() const;
    quint16 port() const;
    /// Of a controller behind a pseudo terminal: the link, as "/dev/ttyUSB77", or the terminal
    /// itself without one, as "/dev/pts/5". Empty for others.
    QString path() const;
    /// The rate that the controller's serial port is set to.
    int baudRate() const;
    QByteArray key() const;
    /// The 50 bytes that answer GID.
    QByteArray idReply() const;
    /// The 47 characters in them.
    QString id() const;

    /// Commands received since the last `clearWire`, in order, one whole frame each, unknown ones
    /// included.
    QByteArrayList commands() const;
    /// Everything that passed since the last `clearWire`: one event per command from the host, one
    /// per reply and per stream packet to it. Only the first 5000 packets are kept.
    QVector<WireEvent> wire() const;
    void clearWire();

    void setFaults(const Faults& faults);
    /// As `ControllerOptions::script`; a running stream goes over to it from its first sample.
    void setScript(const QVector<PacketValues>& script, bool repeats = false);
    /// Puts another controller behind the same address, with another key unless one is given. The
    /// link stays, a stream ends.
    void setIdentity(const ControllerOptions& options);

    /// Power off; the host is cut off. Stages are off afterwards, settings are kept. A pseudo
    /// terminal goes away together with its link.
    void stopListening();
    /// Power on at the same port, or under the same link.
    void listenAgain();
    /// Both unplug a pseudo terminal.
    void closeConnection();
    void halfCloseConnection();
    /// A host is connected, or has the pseudo terminal open.
    bool isConnected() const;
    /// Takes a pseudo terminal and its link away: the host sees a hang-up, the controller goes on.
    void unplug();
    /// A new pseudo terminal under the same link; without a link `path` changes.
    void replug();
    /// Bytes that nobody asked for.
    void sendRaw(const QByteArray& bytes);
    /// Frozen: reads nothing and sends nothing, and keeps the connection. What a stream owed
    /// meanwhile is left out.
    void pause(bool paused);

    /// Stream packets sent so far, the ones that answer a start and the last ones included.
    qint64 packetsSent() const;
    /// Packets that were due while they could not be sent: the host did not read, or did not have
    /// the serial port open, or open with the other flow control. What a stall of the machine left
    /// out counts, too; what a pause left out does not.
    qint64 packetsLost() const;
    bool isStreaming() const;
    /// Packets per second of the running stream, 0 without one.
    int streamRate() const;

    bool stageOn(int stage) const;
    /// As if somebody else had switched it.
    void setStage(int stage, bool on);
    /// The 25 bytes that SLA stored; blanks at first.
    QByteArray label() const;

private:
    friend class EmulatorHost;
    ControllerHandle(HostThread* hostThread, Face* hostFace)
        : thread(hostThread)
        , owner(hostFace)
    {}

    template <typename Result>
    Result ask(const std::function<Result(Face&)>& question) const;
    void order(const std::function<void(Face&)>& change) const;

    HostThread* thread = nullptr;
    Face* owner = nullptr;
};

/// Emulated controllers in a thread of their own, for tests whose own thread blocks while it waits
/// for a controller.
class EmulatorHost final
{
public:
    EmulatorHost();
    /// Closes every connection and ends the thread.
    ~EmulatorHost();
    EmulatorHost(const EmulatorHost&) = delete;
    EmulatorHost& operator=(const EmulatorHost&) = delete;

    /// Adds a controller that listens at a numeric address. Port 0 picks a free one.
    ControllerHandle addTcp(const ControllerOptions& options = {},
                            const QString& address = QStringLiteral("127.0.0.1"), quint16 port = 0);
    /// Adds a controller behind a pseudo terminal. `link` is the path of a symbolic link that is
    /// made to it and taken away at the end; empty for none. The handle is not valid if the link
    /// can not be made, as where a file is in the way.
    ControllerHandle addPty(const ControllerOptions& options = {}, const QString& link = {});

private:
    std::unique_ptr<HostThread> thread;
};

} // namespace emulator
