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
class TcpFace;

/// A controller of an `EmulatorHost`: a value that may be copied, and that is of use for as long as
/// the host lives. Every call may come from any thread, and returns when it is done.
class ControllerHandle final
{
public:
    ControllerHandle() = default;

    /// False if the controller could not be set up, as with a port that is taken.
    bool isValid() const { return face != nullptr; }

    QString address() const;
    quint16 port() const;
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

    /// Power off; the host is cut off. Stages are off afterwards, settings are kept.
    void stopListening();
    /// Power on at the same port.
    void listenAgain();
    void closeConnection();
    void halfCloseConnection();
    bool isConnected() const;
    /// Bytes that nobody asked for.
    void sendRaw(const QByteArray& bytes);
    /// Frozen: reads nothing and sends nothing, and keeps the connection. What a stream owed
    /// meanwhile is left out.
    void pause(bool paused);

    /// Stream packets sent so far, the ones that answer a start and the last ones included.
    qint64 packetsSent() const;
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
    ControllerHandle(HostThread* hostThread, TcpFace* tcpFace)
        : thread(hostThread)
        , face(tcpFace)
    {}

    template <typename Result>
    Result ask(const std::function<Result(TcpFace&)>& question) const;
    void order(const std::function<void(TcpFace&)>& change) const;

    HostThread* thread = nullptr;
    TcpFace* face = nullptr;
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

private:
    std::unique_ptr<HostThread> thread;
};

} // namespace emulator
