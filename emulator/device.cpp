#include "emulator/device.h"

#include "emulator/identity.h"
#include "emulator/noisesource.h"
#include "emulator/reply.h"

#include <cstddef>
#include <optional>
#include <variant>

namespace emulator {

namespace {

constexpr int lastFirmwareWithoutFlags = 10;
constexpr int lastFirmwareWithoutSensitivity = 30;
/// Value of both flag bytes of firmware without flags.
constexpr quint8 bytesAtRest = 0xFF;

constexpr double stage1IntensityMv = 4000.0;
constexpr double stage2IntensityMv = 3500.0;

/// While no stream runs, each command advances the beam by 10 ms.
constexpr int beamStepsPerCommand = beamStepsPerSecond / 100;

StageModel stageModel(const ControllerOptions& options, quint64 stage, double intensityMv)
{
    return StageModel(beamPreset(options.preset), options.stages[stage - 1], intensityMv,
                      derivedSeed(options.seed, stage), options.group);
}

/// Index of stage 1 or 2; nothing for other numbers.
std::optional<std::size_t> indexOf(int stage)
{
    if (stage < 1 || stage > Device::stages)
        return std::nullopt;
    return static_cast<std::size_t>(stage - 1);
}

} // namespace

Device::Device(const ControllerOptions& chosen, const QByteArray& key)
    : options(chosen)
    , deviceKey(key)
    , models{stageModel(chosen, 1, stage1IntensityMv), stageModel(chosen, 2, stage2IntensityMv)}
    , source(chosen.script, chosen.scriptRepeats, chosen.replay)
    , storedLabel(chosen.label.leftJustified(labelLength, ' ', true))
    , serialBaudRate(chosen.baudRate)
{
    for (StageModel& model : models)
        model.setPFactor(chosen.pFactorMv);
}

Answer Device::execute(const Command& command)
{
    if (!isStreaming()) {
        for (StageModel& model : models)
            model.advance(beamStepsPerCommand);
    }
    Answer answer = answerTo(command);
    if (answer.isRefused())
        refuse(command.mnemonic, answer.reason);
    return answer;
}

Answer Device::answerTo(const Command& command)
{
    const Operation* operation = operationOf(command.mnemonic);
    if (!operation)
        return RefusalCode::UnknownCommand;
    if (operation->supported && !(this->*operation->supported)())
        return RefusalCode::NotSupported;
    const auto read = readRequest(*operation, command.arguments);
    if (const auto* reason = std::get_if<RefusalCode>(&read))
        return *reason;
    return (this->*operation->handler)(std::get<Request>(read));
}

QByteArray Device::refuse(const QByteArray& mnemonic, RefusalCode code)
{
    failedMnemonic = mnemonic;
    failure = code;
    return refusal();
}

QByteArray Device::nextPacket()
{
    moveBeam();
    const bool silent = source.kind() == SampleSource::Kind::Script && !source.sample();
    QByteArray packet = silent ? QByteArray() : streamPacket(0);
    source.advance();
    return packet;
}

void Device::endStream()
{
    streaming = false;
    streamRate = 0;
}

/// Advances the beam by the time from one packet to the next.
void Device::moveBeam()
{
    if (source.kind() != SampleSource::Kind::Beam)
        return;
    const int steps = source.beamSteps();
    for (StageModel& model : models)
        model.advance(steps);
}

void Device::restart()
{
    endStream();
    for (StageModel& model : models)
        model.restart();
}

QByteArray Device::id() const
{
    return idText(options, deviceKey);
}

bool Device::stageOn(int stage) const
{
    const auto index = indexOf(stage);
    return index && models[*index].isOn();
}

void Device::setStage(int stage, bool on)
{
    if (const auto index = indexOf(stage))
        models[*index].setOn(on);
}

StageState Device::stageState(int stage) const
{
    StageState state;
    const auto index = indexOf(stage);
    if (!index)
        return state;
    const StageModel& model = models[*index];
    state.on = model.isOn();
    state.active = model.isActive();
    state.held = model.isHeld();
    state.multiplexed = model.isMultiplexed();
    state.frozen = frozen[*index];
    state.pFactorMv = model.pFactor();
    state.sensitivityMv = model.sensitivity();
    state.adjustInXMv = model.adjustIn(StageModel::X);
    state.adjustInYMv = model.adjustIn(StageModel::Y);
    state.inputs = model.inputs();
    const StageSignals told = measured()[*index];
    state.actuatorXMv = told.actuatorX;
    state.actuatorYMv = told.actuatorY;
    state.positionXMv = told.x;
    state.positionYMv = told.y;
    state.intensityMv = told.intensity;
    state.beamXUm = model.beamMicrometres(StageModel::X);
    state.beamYUm = model.beamMicrometres(StageModel::Y);
    return state;
}

void Device::setInputs(int stage, const ExternalInputs& inputs)
{
    if (const auto index = indexOf(stage))
        models[*index].setInputs(inputs);
}

void Device::setMultiplexed(int stage, bool on)
{
    if (const auto index = indexOf(stage))
        models[*index].setMultiplexed(on);
}

void Device::setScript(const QVector<PacketValues>& script, bool repeats)
{
    source = SampleSource(script, repeats, options.replay);
    source.rewind(streamRate);
}

bool Device::hasSensitivity() const
{
    return options.firmware > lastFirmwareWithoutSensitivity;
}

bool Device::hasStreamFlags() const
{
    return options.firmware > lastFirmwareWithoutFlags;
}

quint8 Device::stageFlags() const
{
    int flags = 0;
    flags |= models[0].isOn() ? Stage1On : 0;
    flags |= models[1].isOn() ? Stage2On : 0;
    flags |= models[0].isActive() ? Stage1Active : 0;
    flags |= models[1].isActive() ? Stage2Active : 0;
    return static_cast<quint8>(flags);
}

QByteArray Device::packetOf(const PacketValues& values, quint8 extraFlagsA,
                            quint8 extraFlagsB) const
{
    if (!hasStreamFlags())
        return encodePacket(values, bytesAtRest, bytesAtRest);
    int flagsB = 0;
    flagsB |= models[0].isMultiplexed() ? Multiplex1 : 0;
    flagsB |= models[1].isMultiplexed() ? Multiplex2 : 0;
    flagsB |= options.flagBBit2 ? NotToBeStored : 0;
    return encodePacket(values, static_cast<quint8>(stageFlags() | extraFlagsA),
                        static_cast<quint8>(flagsB | extraFlagsB));
}

/// The packet of a stream that is due.
QByteArray Device::streamPacket(quint8 extraFlagsA) const
{
    if (!showsCommonDetector())
        return packetOf(measured(), extraFlagsA, 0);
    const auto view = [](const StageModel& model) {
        return model.isMultiplexed() ? StageModel::View::Common : StageModel::View::Own;
    };
    return packetOf(measured({view(models[0]), view(models[1])}), extraFlagsA, NotToBeStored);
}

/// Firmware of the kind VM tells of the common detector in every second packet while a stage is
/// multiplexed. Only the flags tell such a packet from the others.
bool Device::showsCommonDetector() const
{
    const bool isMultiplexed = models[0].isMultiplexed() || models[1].isMultiplexed();
    const bool isItsTurn = source.packetNumber() % 2 == 1;
    return options.vm && options.group > 0 && hasStreamFlags() && isMultiplexed && isItsTurn
           && source.kind() == SampleSource::Kind::Beam;
}

/// What the controller measures at this moment.
PacketValues Device::measured(const Views& views) const
{
    if (source.kind() != SampleSource::Kind::Beam)
        return source.lastSample();
    PacketValues values;
    for (std::size_t i = 0; i < models.size(); ++i) {
        const StageModel& model = models[i];
        values[i].x = model.positionMv(StageModel::X, views[i]);
        values[i].y = model.positionMv(StageModel::Y, views[i]);
        values[i].intensity = model.intensityMv(views[i]);
        values[i].actuatorX = model.actuatorMv(StageModel::X);
        values[i].actuatorY = model.actuatorMv(StageModel::Y);
    }
    return values;
}

} // namespace emulator
