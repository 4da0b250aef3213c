#pragma once

#include "emulator/answer.h"
#include "emulator/command.h"
#include "emulator/controlleroptions.h"
#include "emulator/operation.h"
#include "emulator/samplesource.h"
#include "emulator/stagemodel.h"
#include "emulator/stagestate.h"

#include <QByteArray>

#include <array>

namespace emulator {

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

    /// The row of a command in the table of commands; null for an unknown one.
    static const Operation* operationOf(const QByteArray& mnemonic);

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
    /// Everything about stage 1 or 2; a stage that is off in all respects for other numbers.
    StageState stageState(int stage) const;
    void setInputs(int stage, const ExternalInputs& inputs);
    void setMultiplexed(int stage, bool on);
    void setScript(const QVector<PacketValues>& script, bool repeats);

private:
    Answer answerTo(const Command& command);

    Answer identify(const Request&);
    Answer storeLabel(const Request& request);
    Answer tellLabel(const Request&);
    Answer setBaudRate(const Request& request);
    Answer singleSample(const Request&);
    Answer startStream(const Request& request);
    Answer startTriggeredStream(const Request&);
    Answer stopStream(const Request&);
    Answer tellStatus(const Request&);
    Answer tellActive(const Request&);
    Answer tellIntensity(const Request& request);
    Answer switchOn(const Request& request);
    Answer switchOff(const Request& request);
    Answer hold(const Request& request);
    Answer clearHold(const Request& request);
    Answer freeze(const Request& request);
    Answer clearFreeze(const Request& request);
    Answer setPFactor(const Request& request);
    Answer tellPFactor(const Request& request);
    Answer setAdjustIn(const Request& request);
    Answer tellAdjustIn(const Request& request);
    Answer setSensitivity(const Request& request);
    Answer tellSensitivity(const Request& request);
    Answer driveActuator(const Request& request);
    Answer tellActuators(const Request&);
    Answer multiplexOn(const Request& request);
    Answer multiplexOff(const Request& request);
    Answer tellMultiplex(const Request&);
    Answer tellPositions(const Request&);
    Answer tellError(const Request&);
    Answer tellMemory(const Request& request);
    Answer acknowledge(const Request&);

    template <typename Change>
    Answer changeStages(const Request& request, Change change);
    bool startsBySls() const { return !options.vm; }
    bool startsBySgs() const { return options.vm; }
    bool startsByTrigger() const { return options.triggerCapable; }
    bool hasSensitivity() const;
    bool hasStreamFlags() const;
    quint8 stageFlags() const;
    QByteArray packetOf(const PacketValues& values, quint8 extraFlagsA, quint8 extraFlagsB) const;
    QByteArray streamPacket(quint8 extraFlagsA) const;
    bool showsCommonDetector() const;
    using Views = std::array<StageModel::View, stages>;
    PacketValues measured(const Views& views = {StageModel::View::Own,
                                                StageModel::View::Own}) const;
    void moveBeam();
    QByteArray memoryImage() const;

    ControllerOptions options;
    QByteArray deviceKey;
    std::array<StageModel, stages> models;
    SampleSource source;
    QByteArray storedLabel;
    /// Trigger Freeze only shows in the memory image; the emulated loops do not react to triggers.
    std::array<bool, stages> frozen{};
    int serialBaudRate;
    QByteArray failedMnemonic;
    RefusalCode failure = RefusalCode::None;
    bool streaming = false;
    double streamRate = 0;
};

} // namespace emulator
