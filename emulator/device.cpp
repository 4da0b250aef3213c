#include "emulator/device.h"

#include "emulator/identity.h"
#include "emulator/noisesource.h"
#include "emulator/reply.h"

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
                      derivedSeed(options.seed, stage));
}

} // namespace

Device::Device(const ControllerOptions& chosen, const QByteArray& key)
    : options(chosen)
    , deviceKey(key)
    , models{stageModel(chosen, 1, stage1IntensityMv), stageModel(chosen, 2, stage2IntensityMv)}
    , source(chosen.script, chosen.scriptRepeats, chosen.replay)
    , storedLabel(chosen.label.leftJustified(labelLength, ' ', true))
    , multiplex{chosen.stages[0].multiplexed, chosen.stages[1].multiplexed}
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
    QByteArray packet = silent ? QByteArray() : packetOf(measured(), 0);
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
    return stage >= 1 && stage <= stages && models[static_cast<std::size_t>(stage - 1)].isOn();
}

void Device::setStage(int stage, bool on)
{
    if (stage >= 1 && stage <= stages)
        models[static_cast<std::size_t>(stage - 1)].setOn(on);
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

QByteArray Device::packetOf(const PacketValues& values, quint8 extraFlags) const
{
    if (!hasStreamFlags())
        return encodePacket(values, bytesAtRest, bytesAtRest);
    int flagsB = 0;
    flagsB |= multiplex[0] ? Multiplex1 : 0;
    flagsB |= multiplex[1] ? Multiplex2 : 0;
    flagsB |= options.flagBBit2 ? NotToBeStored : 0;
    return encodePacket(values, static_cast<quint8>(stageFlags() | extraFlags),
                        static_cast<quint8>(flagsB));
}

/// What the controller measures at this moment.
PacketValues Device::measured() const
{
    if (source.kind() != SampleSource::Kind::Beam)
        return source.lastSample();
    PacketValues values;
    values.x1 = models[0].positionMv(StageModel::X);
    values.y1 = models[0].positionMv(StageModel::Y);
    values.i1 = models[0].intensityMv();
    values.x2 = models[1].positionMv(StageModel::X);
    values.y2 = models[1].positionMv(StageModel::Y);
    values.i2 = models[1].intensityMv();
    values.rx1 = models[0].actuatorMv(StageModel::X);
    values.ry1 = models[0].actuatorMv(StageModel::Y);
    values.rx2 = models[1].actuatorMv(StageModel::X);
    values.ry2 = models[1].actuatorMv(StageModel::Y);
    return values;
}

} // namespace emulator
