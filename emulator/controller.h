#pragma once

#include "emulator/device.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <memory>

namespace emulator {

class WireLog;

/// What a controller needs of the port that it is reached through.
class Link
{
public:
    virtual ~Link() = default;

    virtual void write(const QByteArray& bytes) = 0;
    /// False while a stream packet would not arrive, since too much waits to be sent or nobody can
    /// hear it.
    virtual bool canSend() = 0;
    virtual void close() = 0;
    /// Closes the sending side alone, behind what was written.
    virtual void halfClose() = 0;
};

/// A controller on a byte stream: finds commands in what comes in, answers them, and sends the
/// stream's packets at their times. Its faults happen here. The port is the caller's; a serial
/// line and a socket differ only in their `Link`. Lives in the thread that made it.
class Controller final : public QObject
{
    Q_OBJECT

public:
    /// `link` outlives the controller, and so does `log`, which may be null.
    Controller(const ControllerOptions& options, Link& link, WireLog* log);
    ~Controller() override;

    /// Bytes from the host.
    void receive(const QByteArray& bytes);
    /// The link was made or has gone.
    void linkOpened();
    void linkClosed();
    /// As after a power cut.
    void restart();

    /// Another controller behind the same link. The link stays as it is, a stream ends.
    void setIdentity(const ControllerOptions& options);
    void setFaults(const Faults& faults);
    /// Neither reads nor sends, until it is called with false.
    void setPaused(bool paused);
    bool isPaused() const { return paused; }
    void sendRaw(const QByteArray& bytes);

    Device& device() { return *controlled; }
    const Device& device() const { return *controlled; }
    /// The rate that the controller speaks and listens at; a new one holds behind the reply to SBR.
    int baudRate() const { return lineBaudRate; }
    /// Packets sent since the controller was made, those with faults included.
    qint64 packetsSent() const { return packetCount; }
    /// Packets that were due while they could not be sent, or that a stall of the program left out.
    /// Together with those sent they are all that were due, but for those of a pause.
    qint64 packetsLost() const { return lostPackets; }

signals:
    void refused(const QByteArray& mnemonic);

private:
    void processInput();
    bool takeCommand();
    void carryOut(const Command& command);
    bool closesLinkOn(const QByteArray& mnemonic);
    void answer(const Command& command);
    void sendReply(const QByteArray& mnemonic, const QByteArray& reply);
    void dropUnfinishedCommand();

    QByteArray shortened(const QByteArray& mnemonic, const QByteArray& reply) const;

    void startPacing();
    void scheduleNextPacket();
    void sendDuePackets();
    void sendNextPacket();
    void sendPacket(const QByteArray& packet);
    QByteArray withFaults(QByteArray packet);
    qint64 packetsDue() const;
    void forgetBacklog();
    void write(const QByteArray& bytes, bool isPacket = false);

    Link& link;
    WireLog* const wireLog;
    std::unique_ptr<Device> controlled;
    Faults faults;
    NoiseSource faultNoise;
    QByteArray input;
    QTimer lateTimer;
    QTimer unfinishedTimer;
    QTimer paceTimer;
    /// Runs since the stream's time zero.
    QElapsedTimer streamClock;
    /// Packets of the running stream whose time has come so far.
    qint64 paced = 0;
    qint64 streamPackets = 0;
    qint64 faultyBytePlace = 0;
    qint64 packetCount = 0;
    qint64 lostPackets = 0;
    int lineBaudRate = 0;
    bool paused = false;
    bool lateCommandDue = false;
};

} // namespace emulator
