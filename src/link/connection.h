#pragma once

#include "link/endpoint.h"
#include "link/exchange.h"
#include "link/sendqueue.h"
#include "model/connectiontype.h"
#include "model/measurestore.h"

#include <QByteArray>
#include <QString>
#include <QThread>

#include <memory>
#include <mutex>
#include <vector>

class QIODevice;

/// The link to one controller: a thread of its own that owns the port, writes commands, collects
/// replies and decodes the measurement stream.
///
/// The GUI thread sends one command at a time through the wrappers below and takes its reply with
/// `fetchReply` before it sends again: that is the work of `Exchange`. The port is made and deleted
/// in `run()` and belongs to `Endpoint`, which only the connection's thread touches. What both see
/// is `LinkCondition`.
///
/// All public functions are for the GUI thread, unless they say otherwise.
class Connection : public QThread
{
    Q_OBJECT

public:
    static constexpr int defaultTimeoutMs = LinkCondition::defaultTimeoutMs;
    /// More than two seconds of the fastest stream.
    static constexpr int storeCapacity = 1040;

    Connection();
    ~Connection() override;

    /// Port name or host address: the key of this connection everywhere.
    virtual QString address() const = 0;
    /// The number of its `type`.
    virtual int connectionType() const = 0;
    ConnectionType type() const { return static_cast<ConnectionType>(connectionType()); }
    /// Where the thread shall connect to. Only while it does not run. Returns false for an
    /// address that can not be used.
    virtual bool init(const QString& address, int baudOrPort) = 0;
    virtual int portOrBaud() const = 0;
    /// Ends the thread and gives up the port for good. The object can only be destroyed
    /// afterwards; the destructor calls it, so that calling it is never required.
    virtual void releaseInPlace() = 0;

    /// Writes a command. On the connection's thread, by `TriggerObject`. A command that can not be
    /// sent now, because another one waits for its reply, a stream runs or the link is not up, is
    /// dropped silently.
    virtual void sendMessage(QByteArray message, int answerLength);
    /// Looks for the boundary of replies, `boundarySearchMs` at most. On the connection's thread.
    virtual void resync() = 0;

    /// Takes the reply of the last command into `out`. False, with `out` empty, if nothing was
    /// sent or nothing came within twice the time-out, counted from the moment of sending. True
    /// says only that the wait is over: a reply that was too short is empty, a refusal has two
    /// bytes, so callers test the bytes.
    bool fetchReply(QByteArray& out);

    /// Sends a command like its wrapper, but does not wait, except until a stop is written. False,
    /// and nothing is sent, while the reply of a poll is awaited.
    bool trySend(const CommandFrame& frame) { return exchange.trySend(frame); }
    /// Whether `fetchReply` would return at once.
    bool isSettled() const { return exchange.isSettled(); }
    /// Sleeps until it would.
    void waitUntilSettled() const { exchange.waitUntilSettled(); }

    /// Sends `GSF;` without waiting, for whoever must not be held up. Only an idle link is asked:
    /// nothing is sent during a stream, without a link, while the reply of a command is awaited, or
    /// until the last poll is settled, which it is once its reply was taken or it was given up.
    /// Every other command waits for the poll to settle, at most until that is given up, and throws
    /// its reply away.
    void pollStatus();
    /// Takes the reply of the last poll into `reply`, without waiting. False, with `reply` empty,
    /// if it is not there. A poll that is not answered within twice the time-out is given up here.
    bool takePolledStatus(QByteArray& reply);

    /// Starts the stream that firmware and trigger mode ask for; `argument` is that of
    /// `command::streamArgument`.
    void startStream(const QByteArray& argument);
    /// Sends `CLS;`, and once more if no reply came. Logs what the stream has lost.
    void stopStream();

    /// Ends the thread, without taking events, and frees the port. 1, or 0 if unconfirmed.
    int disconnectController();

    /// Moves the oldest sample of the stream to `out`; 0 if there is none.
    int takeLiveSample(MeasureSample& out);
    int takeCommonSample(MeasureSample& out);
    /// Moves up to `most` of the oldest samples behind those of `out`, in their order.
    void takeLiveSamples(std::vector<MeasureSample>& out, std::size_t most);
    void takeCommonSamples(std::vector<MeasureSample>& out, std::size_t most);

    // What was stored and what was lost, since this object was made. On any thread.
    /// Samples of the stream that were stored.
    quint64 samplesStored() const { return liveStore.storedCount(); }
    /// Stored samples that were not taken in time and were overwritten by newer ones.
    quint64 droppedSamples() const { return liveStore.droppedCount(); }
    /// Bytes of the stream that belonged to no packet.
    quint64 skippedBytes() const { return endpoint.decoder().skippedBytes(); }

    bool isStreaming() const { return condition.streaming; }
    LinkState linkState() const { return condition.link; }
    bool isConnected() const { return linkState() == LinkState::Connected; }
    /// Whether the port is open. A connected link without one was lost, and is not disconnected
    /// yet.
    bool hasPort() const { return condition.portOpen; }
    int firmwareVersion() const { return condition.firmwareVersion; }
    void setFirmwareVersion(int version) { condition.firmwareVersion = version; }
    bool vmFirmware() const { return condition.vmFirmware; }
    void setVmFirmware(bool vm) { condition.vmFirmware = vm; }
    bool triggerMode() const { return condition.triggerMode; }
    void setTriggerMode(bool on) { condition.triggerMode = on; }
    bool triggerCapable() const { return condition.triggerCapable; }
    void setTriggerCapable(bool capable) { condition.triggerCapable = capable; }
    int baudRate() const { return condition.baudRate; }

    /// Packets per second; -1 before the first accepted one.
    int samplingRate() const { return condition.samplingRate; }
    /// Stores a rate of 1 to 500 and returns 1; any other value leaves it and returns 0.
    int setSamplingRate(int rateHz);
    /// Stores a time-out above 0 and returns 1; any other value leaves it and returns 0.
    int setTimeoutMs(int timeoutMs);

    QString label() const;
    void setLabel(const QString& label);

    // One wrapper for each command. An argument is one of namespace `command` and ends in ';'.
    void getControllerId();
    void storeLabel(const QByteArray& argument);
    void setControllerBaudRate(const QByteArray& argument);
    void triggerOneShot();
    void startRatedStream(const QByteArray& argument);
    void startVmStream(const QByteArray& argument);
    void startPulsedStream(const QByteArray& argument);
    void clearLiveStream();
    void getStatusFlags();
    void getActiveSignal();
    void getIntensity(const QByteArray& argument);
    void switchStabilisationOn(const QByteArray& argument);
    void switchStabilisationOff(const QByteArray& argument);
    void setAndHold(const QByteArray& argument);
    void clearSetAndHold(const QByteArray& argument);
    void setTriggerFreeze(const QByteArray& argument);
    void clearTriggerFreeze(const QByteArray& argument);
    void setPFactor(const QByteArray& argument);
    void getPFactor(const QByteArray& argument);
    void setAdjustIn(const QByteArray& argument);
    void getAdjustIn(const QByteArray& argument);
    void setDetectorSensitivity(const QByteArray& argument);
    void getDetectorSensitivity(const QByteArray& argument);
    void setDriveActuator(const QByteArray& argument);
    void switchMultiplexingOn(const QByteArray& argument);
    void switchMultiplexingOff(const QByteArray& argument);
    void setSubsystem(const QByteArray& argument);
    void getCommonAdjustment();
    void getError();
    void readFram(const QByteArray& argument);
    void sendGda();
    void sendShs();
    void sendChs();
    void sendGmf();
    void sendGla();
    void sendUnchanged(const QByteArray& message);

signals:
    /// The port was lost. Emitted on the connection's thread.
    void hostDisconnected(QString address);

public slots:
    /// Takes what has arrived: a reply, the stream, or the reply that ends it. On the
    /// connection's thread.
    virtual void saveReply();

protected:
    /// Drops what the port holds. On the connection's thread.
    virtual void discardInput() = 0;

    // For `run()` of the transports, on the connection's thread.
    void makeEndpoint(std::unique_ptr<QIODevice> port);
    void watchInput();
    void ignoreInput();
    void publishConnected();
    void publishOpenFailed();
    /// Deletes trigger and device. No other thread can reach them from its beginning on.
    void deleteEndpoint();
    /// Logs that the port is lost, emits `hostDisconnected` and ends the thread, all of it once.
    void reportLostPort();
    QIODevice* device() const { return endpoint.port(); }
    int timeoutMs() const { return condition.timeoutMs; }

    void setBaudRate(int baudRate) { condition.baudRate = baudRate; }
    /// What `takeCommonSample` takes. Nothing in the application stores anything there yet.
    measureStore& commonSamples() { return commonStore; }
    /// What `releaseInPlace` does, with the kind of the connection for the log. Does nothing the
    /// second time.
    void release(const char* kind);
    /// Ends the thread and returns what is left of 1500 polls of 10 ms; -1 if it never ended. Takes
    /// no events.
    int endThread();

private:
    void send(const CommandFrame& frame) { exchange.send(frame); }
    /// Those that the log does not have yet, if there are any.
    void logLosses();

    measureStore liveStore{storeCapacity};
    measureStore commonStore{storeCapacity};

    LinkCondition condition;
    SendQueue sendQueue;
    /// Only the GUI thread touches this.
    Exchange exchange{condition, sendQueue};
    /// Only the connection's thread touches this, but for the counts.
    Endpoint endpoint{condition, liveStore};

    /// Guards the label. Whoever locks it after the thread has ended sees all that the thread did.
    mutable std::mutex sharedMutex;
    QString labelText;

    /// Only the connection's thread touches these.
    QMetaObject::Connection readyRead;
    bool portLossReported = false;

    /// Of `droppedSamples` and `skippedBytes`, what the log has already.
    quint64 loggedSamples = 0;
    quint64 loggedBytes = 0;

    bool released = false;
};

/// How `disconnectController` reads the polls that were left when the thread had ended: only
/// ending on the very last one counts as failure, and never ending does not. Kept for those who
/// rely on the result.
constexpr bool endConfirmed(int pollsLeft)
{
    return pollsLeft != 0;
}
