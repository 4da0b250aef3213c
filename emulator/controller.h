#pragma once

#include "emulator/command.h"
#include "emulator/device.h"
#include "emulator/pacing.h"
#include "emulator/packetfaults.h"
#include "emulator/rulebook.h"

#include <QByteArray>
#include <QObject>
#include <QTimer>

#include <memory>
#include <optional>

namespace emulator {

class WireLog;

/// What a controller needs from the port at which hosts reach it.
class Link
{
public:
    virtual ~Link() = default;

    virtual void write(const QByteArray& bytes) = 0;
    /// False while a stream packet would be lost: too many bytes wait to be sent, or no host can
    /// receive them.
    virtual bool canSend() = 0;
    virtual void close() = 0;
    /// Closes only the sending side, after everything that was written.
    virtual void halfClose() = 0;
};

/// A controller on a byte stream: finds commands in the received bytes, does with them what the
/// rules say, and sends the stream's packets at their times, with their faults. The caller owns the
/// port; a serial line and a socket differ only in their `Link`. Lives in the thread that made it.
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
    /// Replaces all faults, the rules among them.
    void setFaults(const Faults& faults);
    /// Replaces `Faults::rules` and leaves the other faults as they are. A command that is already
    /// waiting to be late keeps its rule.
    void setRules(const QList<Rule>& rules);
    /// Puts a rule behind those of `Faults::rules`.
    void addRule(const Rule& rule);
    /// Rules and lists that have not acted so far, see `RuleBook::unplayed`.
    QStringList unplayedRules() const;
    /// A paused controller neither reads nor sends.
    void setPaused(bool paused);
    bool isPaused() const { return paused; }
    void sendRaw(const QByteArray& bytes);

    Device& device() { return *controlled; }
    const Device& device() const { return *controlled; }
    /// The rate at which the controller sends and receives. A new one applies after the reply to
    /// SBR.
    int baudRate() const { return lineBaudRate; }
    /// Undoes SBR.
    void resetBaudRate()
    {
        controlled->resetBaudRate();
        lineBaudRate = controlled->baudRate();
    }
    /// Packets sent since the controller was made, those with faults included.
    qint64 packetsSent() const { return packetCount; }
    /// Packets that were due while they could not be sent, and packets that were skipped after the
    /// program had stalled. Sent and lost packets together are all that were due outside of pauses.
    qint64 packetsLost() const { return lostPackets; }

signals:
    void refused(const QByteArray& mnemonic);
    /// A rule is replaced, or the controller ends, before the rule has acted. A test that waits for
    /// it plays nothing.
    void ruleUnplayed(const QString& rule);

private:
    /// A command that is carried out later.
    struct LateCommand
    {
        Rule rule;
        ParseResult parsed;
    };

    void processInput();
    bool takeCommand();
    void dropUnfinishedCommand();
    void dropInput(int length);
    void forgetCommands();
    Rule takeRuleFor(const QByteArray& frame);
    void obey(const Rule& rule, const ParseResult& parsed);
    void answer(const Rule& rule, const ParseResult& parsed);
    void refuse(const Rule& rule, const QByteArray& mnemonic, RefusalCode code);
    void carryOut(const Rule& rule, const Command& command);
    void reportUnplayed(const RuleBook& book);

    void startPacing();
    void scheduleNextPacket();
    void sendDuePackets();
    void sendNextPacket();
    void sendPacket(const QByteArray& packet);
    void write(const QByteArray& bytes, bool isPacket = false);

    Link& link;
    WireLog* const wireLog;
    std::unique_ptr<Device> controlled;
    RuleBook rules;
    RuleBook rulesOfLists;
    std::optional<LateCommand> lateCommand;
    PacketFaults packetFaults;
    QByteArray input;
    QTimer lateTimer;
    QTimer unfinishedTimer;
    QTimer paceTimer;
    Pacing pacing;
    qint64 streamPackets = 0;
    qint64 packetCount = 0;
    qint64 lostPackets = 0;
    int lineBaudRate = 0;
    /// See `Faults`.
    bool garbageReplies = false;
    int closeAfterPackets = 0;
    bool paused = false;
};

} // namespace emulator
