#pragma once

#include "emulator/command.h"
#include "emulator/controlleroptions.h"
#include "emulator/samplesource.h"
#include "emulator/stagemodel.h"

#include <QByteArray>

#include <array>
#include <memory>
#include <optional>

namespace emulator {

/// Why a command was refused; the code that GER tells.
enum class RefusalCode : qint8 {
    None = 0,
    UnknownCommand = 1,
    NoSuchStage = 2,
    NoSuchAxis = 3,
    ValueOutOfRange = 4,
    NotSupported = 5,
    Rejected = 6,
};

/// What a controller answers to a command.
struct Answer
{
    enum class Stream { Unchanged, Started, StartedByTrigger, Stopped };

    QByteArray reply;
    /// Packet that goes out ahead of the reply to CLS.
    QByteArray lastPacket;
    Stream stream = Stream::Unchanged;
};

/// The controller itself: its settings, its two stages and what it answers, without any port or
/// clock. The beam moves by the steps of the stream, and by a fixed number of steps with each
/// command while no stream runs, so that the same dialogue gives the same answers. Not thread
/// safe.
class Device final
{
public:
    static constexpr int stages = 2;
    static constexpr int labelLength = 25;
    static constexpr int leastRate = 1;
    static constexpr int greatestRate = 1000;

    /// `key` is used as given.
    Device(const ControllerOptions& options, const QByteArray& key);

    Answer execute(const Command& command);
    /// The refusal 0x01 ';'. Mnemonic and code are stored for GER.
    QByteArray refuse(const QByteArray& mnemonic, RefusalCode code);

    /// The next packet of the running stream; empty when a script has come to its end.
    QByteArray nextPacket();
    /// Ends the stream without sending anything, as when the link is lost.
    void endStream();
    /// As after a power cut: settings are kept, stages and stream are off.
    void restart();

    bool isStreaming() const { return streaming; }
    /// Packets per second, 0 without a stream; the rate of the pulses if these drive it, which
    /// may be 0.
    double rate() const { return streamRate; }

    /// The 47 characters.
    QByteArray id() const;
    QByteArray label() const { return storedLabel; }
    int baudRate() const { return serialBaudRate; }
    /// The rate before SBR changed it.
    int initialBaudRate() const { return options.baudRate; }
    void resetBaudRate() { serialBaudRate = options.baudRate; }
    bool hasFlowControl() const { return options.hardwareFlowControl; }
    bool stageOn(int stage) const;
    void setStage(int stage, bool on);
    void setScript(const QVector<PacketValues>& script, bool repeats);

private:
    using Handler = QByteArray (Device::*)(const QByteArray& arguments);
    struct Operation;
    static const Operation* operationOf(const QByteArray& mnemonic);

    QByteArray identify(const QByteArray&);
    QByteArray storeLabel(const QByteArray& arguments);
    QByteArray tellLabel(const QByteArray&);
    QByteArray setBaudRate(const QByteArray& arguments);
    QByteArray singleSample(const QByteArray&);
    QByteArray tellStatus(const QByteArray&);
    QByteArray tellActive(const QByteArray&);
    QByteArray tellIntensity(const QByteArray& arguments);
    QByteArray switchOn(const QByteArray& arguments);
    QByteArray switchOff(const QByteArray& arguments);
    QByteArray hold(const QByteArray& arguments);
    QByteArray clearHold(const QByteArray& arguments);
    QByteArray freeze(const QByteArray& arguments);
    QByteArray clearFreeze(const QByteArray& arguments);
    QByteArray setPFactor(const QByteArray& arguments);
    QByteArray tellPFactor(const QByteArray& arguments);
    QByteArray setAdjustIn(const QByteArray& arguments);
    QByteArray tellAdjustIn(const QByteArray& arguments);
    QByteArray setSensitivity(const QByteArray& arguments);
    QByteArray tellSensitivity(const QByteArray& arguments);
    QByteArray driveActuator(const QByteArray& arguments);
    QByteArray tellActuators(const QByteArray&);
    QByteArray multiplexOn(const QByteArray& arguments);
    QByteArray multiplexOff(const QByteArray& arguments);
    QByteArray tellMultiplex(const QByteArray&);
    QByteArray tellPositions(const QByteArray&);
    QByteArray tellError(const QByteArray&);
    QByteArray tellMemory(const QByteArray& arguments);
    QByteArray acknowledge(const QByteArray&);

    Answer startStream(const Command& command);
    Answer startTriggeredStream();
    Answer stopStream();

    QByteArray refused(RefusalCode code);
    template <typename Change>
    QByteArray changeStages(char stageByte, Change change);
    std::optional<int> singleStage(char stageByte);
    std::optional<StageModel::Axis> axisOf(char axisByte);
    bool hasSensitivity() const;
    bool hasStreamFlags() const;
    quint8 stageFlags() const;
    QByteArray packetOf(const PacketValues& values, quint8 extraFlags) const;
    PacketValues measured() const;
    void moveBeam();
    QByteArray memoryImage() const;

    ControllerOptions options;
    QByteArray deviceKey;
    std::array<StageModel, stages> models;
    SampleSource source;
    QByteArray storedLabel;
    std::array<bool, stages> multiplex{};
    /// Trigger Freeze only shows in the memory image; the emulated loops do not react to triggers.
    std::array<bool, stages> frozen{};
    int serialBaudRate;
    QByteArray failedMnemonic;
    RefusalCode failure = RefusalCode::None;
    QByteArray current;
    bool streaming = false;
    double streamRate = 0;
};

} // namespace emulator
