#pragma once

#include "emulator/controlleroptions.h"
#include "emulator/stagestate.h"
#include "emulator/wirelog.h"

#include <QByteArrayList>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>
#include <memory>

namespace emulator {

class HostThread;
class Face;

/// A controller of an `EmulatorHost`. Copies refer to the same controller, and must not be used
/// after the host was deleted. All functions may be called from any thread; they return when the
/// controller's thread has done what was asked.
class ControllerHandle final
{
public:
    ControllerHandle() = default;
    /// Of a controller that lives in this thread, null if it could not be set up.
    ControllerHandle(HostThread* hostThread, Face* hostFace)
        : thread(hostThread)
        , owner(hostFace)
    {}

    /// False if the controller could not be set up, as with a port that is taken.
    bool isValid() const { return owner != nullptr; }

    /// Of a controller behind TCP; empty and 0 for others.
    QString address() const;
    quint16 port() const;
    /// Of a controller behind a pseudo terminal: its link, such as "/dev/ttyUSB77", or the terminal
    /// itself if there is no link, such as "/dev/pts/5". Empty for others.
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
    /// per reply and per stream packet to it. A command that is answered late stands at the time at
    /// which it came. Only the first 5000 packets are kept.
    QVector<WireEvent> wire() const;
    void clearWire();

    /// Replaces all faults, the rules among them. A warning names each rule that is
    /// replaced before it has acted, and each that has not acted when the controller ends.
    void setFaults(const Faults& faults);
    /// Replaces `Faults::rules` and leaves the other faults as they are. A command that is already
    /// waiting to be late keeps its rule.
    void setRules(const QList<Rule>& rules);
    /// Puts a rule behind those of `Faults::rules`.
    void addRule(const Rule& rule);
    /// Rules and lists that have not acted so far, in the words of `describe`.
    QStringList unplayedRules() const;
    /// See `ControllerOptions::script`. A running stream continues with the first sample of it.
    void setScript(const QVector<PacketValues>& script, bool repeats = false);
    /// Replaces the controller at this address by another one, with a new key unless one is given.
    /// The connection stays; a running stream ends.
    void setIdentity(const ControllerOptions& options);

    /// Power off: the host is disconnected, the stages are switched off, settings are kept. A
    /// pseudo terminal is removed together with its link; a controller behind TCP forgets SBR.
    void stopListening();
    /// Power on at the same port, or under the same link.
    void listenAgain();
    /// Both unplug a pseudo terminal.
    void closeConnection();
    void halfCloseConnection();
    /// True if a host is connected or has the pseudo terminal open.
    bool isConnected() const;
    /// Removes a pseudo terminal and its link: the host sees a hang-up, the controller keeps
    /// running.
    void unplug();
    /// Makes a new pseudo terminal with the same link. Without a link, `path` changes.
    void replug();
    /// Sends bytes that answer no command.
    void sendRaw(const QByteArray& bytes);
    /// A paused controller reads nothing and sends nothing, but keeps the connection. Stream
    /// packets that are due during the pause are skipped.
    void pause(bool paused);

    /// Number of stream packets sent so far, including those that answer a start or end a stream.
    qint64 packetsSent() const;
    /// Number of packets that were due but could not be sent, because the host did not read, did
    /// not have the serial port open, or had it open with the other flow control. Packets that were
    /// skipped after a stall of the machine count as well; packets of a pause do not.
    qint64 packetsLost() const;
    bool isStreaming() const;
    /// Packets per second of the running stream, 0 without one.
    int streamRate() const;

    bool stageOn(int stage) const;
    /// Switches a stage without a command, as somebody at the controller would.
    void setStage(int stage, bool on);
    /// The 25 bytes that SLA stored; blanks at first, unless the options say otherwise.
    QByteArray label() const;

    /// Everything about stage 1 or 2, without a command.
    StageState stage(int stage) const;
    /// What stands at the external inputs of a stage from now on.
    void setInputs(int stage, const ExternalInputs& inputs);
    /// Leads a stage to the common detector or back, without a command.
    void setMultiplexed(int stage, bool on);
    /// How many commands since the last `clearWire` begin with these bytes, such as "GSF" or
    /// "SPF\1".
    int count(const QByteArray& prefix) const;

private:
    template <typename Result>
    Result ask(const std::function<Result(Face&)>& question) const;
    void order(const std::function<void(Face&)>& change) const;

    HostThread* thread = nullptr;
    Face* owner = nullptr;
};

/// Runs emulated controllers in a thread of their own, for tests whose own thread blocks while it
/// waits for a controller.
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
    /// Adds a controller behind a pseudo terminal. `link` is the path of a symbolic link to it,
    /// which exists as long as the controller; empty for none. The handle is not valid if the link
    /// can not be made, for example because a file of that name exists.
    ControllerHandle addPty(const ControllerOptions& options = {}, const QString& link = {});

private:
    std::unique_ptr<HostThread> thread;
};

} // namespace emulator
