#pragma once

#include "link/packet.h"
#include "link/postedsend.h"
#include "model/measurestore.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QString>
#include <QThread>

#include <atomic>
#include <memory>
#include <mutex>

class QIODevice;
class TriggerObject;

/// State of the link. Only with `Connected` can anything be sent.
enum class LinkState : int {
    NotConnected = 0,
    OpenFailed = 1,
    Disconnected = 2,
    Connected = 3,
};

/// The link to one controller: a thread of its own that owns the port, writes commands, collects
/// replies and decodes the measurement stream.
///
/// The GUI thread sends one command at a time through the wrappers below and takes its reply with
/// `fetchReply` before it sends again. `device` and `trigger` are made and deleted in `run()`;
/// only the connection's thread touches `device`. What both threads see is atomic or guarded by
/// `sharedMutex`; a reply's bytes are written before the state that announces them.
///
/// All public functions are for the GUI thread, unless they say otherwise.
class Connection : public QThread
{
    Q_OBJECT

public:
    /// The wait from which all others are derived.
    static constexpr int defaultTimeoutMs = 750;
    /// More than two seconds of the fastest stream.
    static constexpr int storeCapacity = 1040;

    Connection();
    ~Connection() override;

    /// Port name or host address: the key of this connection everywhere.
    virtual QString address() const = 0;
    /// 0 for a serial line, 1 for TCP.
    virtual int connectionType() const = 0;
    /// Where the thread shall connect to. Only while it does not run. Returns false for an
    /// address that can not be used.
    virtual bool init(const QString& address, int baudOrPort) = 0;
    virtual int portOrBaud() const = 0;
    /// Ends the thread and gives up the port for good. The object can only be destroyed
    /// afterwards; the destructor calls it, so that calling it is never required.
    virtual void releaseInPlace() = 0;

    /// Writes a command. On the connection's thread, by `TriggerObject`. A command that can not be
    /// sent now, because another one waits for its reply, a stream runs or the link is not up, is
    /// dropped without a word.
    virtual void sendMessage(QByteArray message, int answerLength);
    /// Looks for the boundary of replies for up to a second. On the connection's thread.
    virtual void resync() = 0;

    /// Takes the reply of the last command into `out`. False, with `out` empty, if nothing was
    /// sent or nothing came within twice the time-out, counted from the moment of sending. True
    /// says only that the wait is over: a reply that was too short is empty, a refusal has two
    /// bytes, so callers test the bytes.
    bool fetchReply(QByteArray& out);

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
    /// Sends `CLS;`, and once more if no reply came.
    void stopStream();

    /// Ends the thread. 1 if it ended, 0 if that could not be confirmed.
    int disconnectController();

    /// Moves the oldest sample of the stream to `out`; 0 if there is none.
    int takeLiveSample(MeasureSample& out);
    int takeCommonSample(MeasureSample& out);
    /// Samples of the stream that were stored since this object was made.
    quint64 samplesStored() const { return samplesStored_; }

    bool isStreaming() const { return streaming_ != 0; }
    LinkState linkState() const { return linkState_; }
    bool isConnected() const { return linkState_ == LinkState::Connected; }
    int firmwareVersion() const { return firmwareVersion_; }
    void setFirmwareVersion(int version) { firmwareVersion_ = version; }
    bool vmFirmware() const { return vmFirmware_; }
    void setVmFirmware(bool vm) { vmFirmware_ = vm; }
    bool triggerMode() const { return triggerMode_; }
    void setTriggerMode(bool on) { triggerMode_ = on; }
    bool triggerCapable() const { return triggerCapable_; }
    void setTriggerCapable(bool capable) { triggerCapable_ = capable; }
    int baudRate() const { return baudRate_; }

    /// Packets per second; -1 before the first accepted one.
    int samplingRate() const { return samplingRate_; }
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
    enum class RequestState : int { Idle = 0, Pending = 1, Ready = 2 };
    enum class StreamState : int { None = 0, StartSent = 1, StopSent = 2, Answered = 3 };

    /// Drops what the port holds. On the connection's thread.
    virtual void discardInput() = 0;

    // For `run()` of the transports, on the connection's thread.
    void makeEndpoint(std::unique_ptr<QIODevice> port);
    void watchInput();
    void ignoreInput();
    void publishConnected();
    /// Deletes trigger and device. No other thread can reach them from its beginning on.
    void deleteEndpoint();
    /// Logs and tells once that the port is lost, and ends the thread.
    void reportLostPort();

    /// Ends the thread and releases what belongs to every connection. For `releaseInPlace`.
    void releaseCore();
    /// Ends the thread and returns what is left of 1500 polls of 10 ms; -1 if it never ended.
    int endThread();

    QIODevice* device() const { return device_.get(); }

    std::atomic<LinkState> linkState_{LinkState::NotConnected};
    std::atomic<int> timeoutMs_{defaultTimeoutMs};
    std::atomic<int> baudRate_{-1};

private:
    enum class DrainEnd { InputUsedUp, StopOfOldKind, LastPacket, Misaligned };

    void send(const CommandFrame& frame);
    void post(const CommandFrame& frame);
    void settlePoll();
    bool isSent() const;
    bool awaitReply(QByteArray& out);
    bool takeReply(QByteArray& out);
    void giveUpReply();
    void publishReply(const QByteArray& bytes);
    void clearReply();

    void receiveReply();
    void receiveStream();
    DrainEnd drainPackets();
    void storePacket(const PacketBytes& bytes, quint64 timeMs);
    void finishStreamWithEndMark();
    void finishStreamWithoutEndMark();
    bool stopsWithoutEndMark() const;
    /// Takes events until at least `count` bytes wait or `deadline` is over.
    bool awaitBytes(qint64 count);
    /// The same for the length of the answer to the latest command.
    bool awaitAnswer();
    bool isWaitOver() const;
    QByteArray takeRest();

    std::atomic<int> streaming_{0};
    std::atomic<RequestState> requestState_{RequestState::Idle};
    std::atomic<StreamState> streamState_{StreamState::None};
    std::atomic<bool> portOpen_{false};
    std::atomic<bool> vmFirmware_{false};
    std::atomic<bool> triggerMode_{false};
    std::atomic<bool> triggerCapable_{false};
    std::atomic<int> samplingRate_{-1};
    std::atomic<int> firmwareVersion_{1};
    std::atomic<qint64> lastPacketTime_{0};
    std::atomic<quint64> samplesStored_{0};

    /// Guards `trigger_`, `reply_` and `label_`, each for the length of a copy.
    mutable std::mutex sharedMutex;
    std::unique_ptr<TriggerObject> trigger_;
    QByteArray reply_;
    QString label_;

    /// Only the connection's thread touches these.
    std::unique_ptr<QIODevice> device_;
    QMetaObject::Connection readyRead;
    QDeadlineTimer deadline;
    int answerLength_ = 0;
    bool portLossTold = false;

    /// Only the GUI thread touches these.
    QDeadlineTimer replyDeadline;
    std::shared_ptr<SendDelivery> delivery;
    /// Whether the last command was a status poll that is not settled.
    bool isPolling = false;
    bool released = false;

    measureStore liveStore{storeCapacity};
    measureStore commonStore{storeCapacity};
};

/// How `disconnectController` reads the polls that were left when the thread had ended: only
/// ending on the very last one counts as failure, and never ending does not. Kept for those who
/// rely on the result.
constexpr bool endConfirmed(int pollsLeft)
{
    return pollsLeft != 0;
}
