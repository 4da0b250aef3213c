#include "emulator/device.h"

#include "emulator/identity.h"
#include "emulator/noisesource.h"

#include <algorithm>
#include <iterator>

namespace emulator {

namespace {

constexpr char accepted = '\0';
constexpr char refusal = '\1';
constexpr int bothStages = 3;
constexpr int lastFirmwareWithoutFlags = 10;
constexpr int lastFirmwareWithoutSensitivity = 30;
/// Firmware without flags leaves the two bytes at rest.
constexpr quint8 bytesAtRest = 0xFF;

constexpr int greatestPFactorMv = 5000;
constexpr int greatestSensitivityMv = 5000;
constexpr int greatestAdjustInMv = 5000;
constexpr int greatestDriveMv = 5000;

constexpr double stage1IntensityMv = 4000.0;
constexpr double stage2IntensityMv = 3500.0;

/// With each command the beam goes on by 10 ms while no stream moves it.
constexpr int beamStepsPerCommand = beamStepsPerSecond / 100;

constexpr int factoryBaudRate = 921600;
constexpr int memoryBytes = 255;

QByteArray payload(const QByteArray& bytes)
{
    QByteArray reply;
    reply.append(accepted);
    reply.append(terminator);
    reply.append(bytes);
    reply.append(terminator);
    return reply;
}

QByteArray bareReply(char status)
{
    QByteArray reply;
    reply.append(status);
    reply.append(terminator);
    return reply;
}

QByteArray words(std::initializer_list<int> values)
{
    QByteArray bytes;
    for (const int value : values)
        appendWord(bytes, value);
    return payload(bytes);
}

int byteAt(const QByteArray& bytes, int index)
{
    return static_cast<quint8>(bytes[index]);
}

int unsignedWordAt(const QByteArray& bytes, int index)
{
    return byteAt(bytes, index) * 256 + byteAt(bytes, index + 1);
}

int signedWordAt(const QByteArray& bytes, int index)
{
    return static_cast<qint16>(unsignedWordAt(bytes, index));
}

/// Baud rate of a code of SBR, 0 for an unknown code.
int baudRateOf(int code)
{
    switch (code) {
    case 1:
        return 115200;
    case 4:
        return 460800;
    case 9:
        return 921600;
    default:
        return 0;
    }
}

StageModel stageModel(const ControllerOptions& options, quint64 stage, double intensityMv)
{
    return StageModel(beamPreset(options.preset), options.detector, intensityMv,
                      derivedSeed(options.seed, stage));
}

} // namespace

struct Device::Operation
{
    const char* mnemonic;
    Handler handler;
};

const Device::Operation* Device::operationOf(const QByteArray& mnemonic)
{
    static constexpr Operation operations[] = {
        {"GID", &Device::identify},
        {"SLA", &Device::storeLabel},
        {"GLA", &Device::tellLabel},
        {"SBR", &Device::setBaudRate},
        {"S1S", &Device::singleSample},
        {"GSF", &Device::tellStatus},
        {"GAS", &Device::tellActive},
        {"GIN", &Device::tellIntensity},
        {"SEA", &Device::switchOn},
        {"CEA", &Device::switchOff},
        {"SSH", &Device::hold},
        {"CSH", &Device::clearHold},
        {"SHS", &Device::acknowledge},
        {"CHS", &Device::acknowledge},
        {"STF", &Device::freeze},
        {"CTF", &Device::clearFreeze},
        {"SPF", &Device::setPFactor},
        {"GPF", &Device::tellPFactor},
        {"SAI", &Device::setAdjustIn},
        {"GAI", &Device::tellAdjustIn},
        {"SDS", &Device::setSensitivity},
        {"GDS", &Device::tellSensitivity},
        {"SDA", &Device::driveActuator},
        {"GDA", &Device::tellActuators},
        {"SMD", &Device::multiplexOn},
        {"CMD", &Device::multiplexOff},
        // A subsystem that is locked leaves the path of the common detector.
        {"SSE", &Device::multiplexOff},
        {"GMF", &Device::tellMultiplex},
        {"GCA", &Device::tellPositions},
        {"GER", &Device::tellError},
        {"RFR", &Device::tellMemory},
    };
    const auto found =
        std::find_if(std::begin(operations), std::end(operations),
                     [&](const Operation& operation) { return mnemonic == operation.mnemonic; });
    return found == std::end(operations) ? nullptr : found;
}

Device::Device(const ControllerOptions& chosen, const QByteArray& key)
    : options(chosen)
    , deviceKey(key)
    , models{stageModel(chosen, 1, stage1IntensityMv), stageModel(chosen, 2, stage2IntensityMv)}
    , source(chosen.script, chosen.scriptRepeats, chosen.replay)
    , storedLabel(labelLength, ' ')
    , multiplex{chosen.multiplex1, chosen.multiplex2}
    , serialBaudRate(factoryBaudRate)
{
    for (StageModel& model : models)
        model.setPFactor(StageModel::nominalPFactorMv);
}

Answer Device::execute(const Command& command)
{
    current = command.mnemonic;
    if (!isStreaming()) {
        for (StageModel& model : models)
            model.advance(beamStepsPerCommand);
    }
    if (command.mnemonic == "SLS" || command.mnemonic == "SGS")
        return startStream(command);
    if (command.mnemonic == "SPS")
        return startTriggeredStream();
    if (command.mnemonic == "CLS")
        return stopStream();
    const Operation* operation = operationOf(command.mnemonic);
    Answer answer;
    answer.reply = operation ? (this->*operation->handler)(command.arguments)
                             : refused(RefusalCode::UnknownCommand);
    return answer;
}

QByteArray Device::refuse(const QByteArray& mnemonic, RefusalCode code)
{
    current = mnemonic;
    return refused(code);
}

QByteArray Device::refused(RefusalCode code)
{
    failedMnemonic = current;
    failure = code;
    return bareReply(refusal);
}

Answer Device::startStream(const Command& command)
{
    Answer answer;
    const bool startOfVm = command.mnemonic == "SGS";
    const int wanted = unsignedWordAt(command.arguments, 2);
    if (startOfVm != options.vm) {
        answer.reply = refused(RefusalCode::NotSupported);
    } else if (wanted < leastRate || wanted > greatestRate) {
        answer.reply = refused(RefusalCode::ValueOutOfRange);
    } else {
        streaming = true;
        streamRate = wanted;
        source.rewind(streamRate);
        answer.reply = nextPacket();
        answer.stream = Answer::Stream::Started;
    }
    return answer;
}

Answer Device::startTriggeredStream()
{
    Answer answer;
    if (!options.triggerCapable) {
        answer.reply = refused(RefusalCode::NotSupported);
        return answer;
    }
    streaming = true;
    streamRate = options.triggerRateHz;
    source.rewind(streamRate);
    answer.reply = bareReply(accepted);
    answer.stream = Answer::Stream::StartedByTrigger;
    return answer;
}

Answer Device::stopStream()
{
    Answer answer;
    answer.reply = bareReply(accepted);
    answer.stream = Answer::Stream::Stopped;
    if (streaming && hasStreamFlags()) {
        moveBeam();
        answer.lastPacket = packetOf(measured(), LastPacket);
    }
    endStream();
    return answer;
}

QByteArray Device::nextPacket()
{
    moveBeam();
    const bool silent = source.kind() == SampleSource::Kind::Script && !source.sample();
    const QByteArray packet = silent ? QByteArray() : packetOf(measured(), 0);
    source.advance();
    return packet;
}

void Device::endStream()
{
    streaming = false;
    streamRate = 0;
}

/// Lets the time of one packet pass.
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
    for (StageModel& model : models) {
        model.setOn(false);
        model.clearHold();
    }
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

template <typename Change>
QByteArray Device::changeStages(char stageByte, Change change)
{
    const int wanted = static_cast<quint8>(stageByte);
    if (wanted < 1 || wanted > bothStages)
        return refused(RefusalCode::NoSuchStage);
    for (std::size_t i = 0; i < models.size(); ++i) {
        if (wanted == bothStages || wanted == static_cast<int>(i) + 1)
            change(i);
    }
    return bareReply(accepted);
}

std::optional<int> Device::singleStage(char stageByte)
{
    if (stageByte == 1 || stageByte == 2)
        return stageByte - 1;
    refused(RefusalCode::NoSuchStage);
    return std::nullopt;
}

std::optional<StageModel::Axis> Device::axisOf(char axisByte)
{
    if (axisByte == 'x')
        return StageModel::X;
    if (axisByte == 'y')
        return StageModel::Y;
    refused(RefusalCode::NoSuchAxis);
    return std::nullopt;
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

QByteArray Device::identify(const QByteArray&)
{
    return payload(id());
}

QByteArray Device::storeLabel(const QByteArray& arguments)
{
    storedLabel = arguments;
    return bareReply(accepted);
}

QByteArray Device::tellLabel(const QByteArray&)
{
    // The memory keeps the label with a closing zero, and tells both.
    return payload(storedLabel + '\0');
}

QByteArray Device::setBaudRate(const QByteArray& arguments)
{
    const int wanted = baudRateOf(byteAt(arguments, 0));
    if (wanted == 0)
        return refused(RefusalCode::ValueOutOfRange);
    serialBaudRate = wanted;
    return bareReply(accepted);
}

QByteArray Device::singleSample(const QByteArray&)
{
    return packetOf(measured(), 0);
}

QByteArray Device::tellStatus(const QByteArray&)
{
    const auto adjusted = [](const StageModel& model) {
        return model.adjustIn(StageModel::X) != 0 || model.adjustIn(StageModel::Y) != 0;
    };
    int flags = stageFlags();
    flags |= models[0].pFactor() != 0 && models[1].pFactor() != 0 ? PFactorBySoftware : 0;
    flags |= adjusted(models[0]) ? AdjustIn1BySoftware : 0;
    flags |= adjusted(models[1]) ? AdjustIn2BySoftware : 0;
    return payload(QByteArray(1, static_cast<char>(flags)));
}

QByteArray Device::tellActive(const QByteArray&)
{
    QByteArray bytes;
    for (const StageModel& model : models)
        bytes.append(model.isActive() ? '\1' : '\0');
    return payload(bytes);
}

QByteArray Device::tellIntensity(const QByteArray& arguments)
{
    const std::optional<int> stage = singleStage(arguments[0]);
    if (!stage)
        return bareReply(refusal);
    const PacketValues values = measured();
    return words({*stage == 0 ? values.i1 : values.i2});
}

QByteArray Device::switchOn(const QByteArray& arguments)
{
    return changeStages(arguments[0], [this](std::size_t i) { models[i].setOn(true); });
}

QByteArray Device::switchOff(const QByteArray& arguments)
{
    return changeStages(arguments[0], [this](std::size_t i) { models[i].setOn(false); });
}

QByteArray Device::hold(const QByteArray& arguments)
{
    return changeStages(arguments[0], [this](std::size_t i) { models[i].setHold(); });
}

QByteArray Device::clearHold(const QByteArray& arguments)
{
    return changeStages(arguments[0], [this](std::size_t i) { models[i].clearHold(); });
}

QByteArray Device::freeze(const QByteArray& arguments)
{
    return changeStages(arguments[0], [this](std::size_t i) { frozen[i] = true; });
}

QByteArray Device::clearFreeze(const QByteArray& arguments)
{
    return changeStages(arguments[0], [this](std::size_t i) { frozen[i] = false; });
}

QByteArray Device::setPFactor(const QByteArray& arguments)
{
    const int millivolts = signedWordAt(arguments, 1);
    if (millivolts < 0 || millivolts > greatestPFactorMv)
        return refused(RefusalCode::ValueOutOfRange);
    return changeStages(arguments[0], [&](std::size_t i) { models[i].setPFactor(millivolts); });
}

QByteArray Device::tellPFactor(const QByteArray& arguments)
{
    const std::optional<int> stage = singleStage(arguments[0]);
    return stage ? words({models[static_cast<std::size_t>(*stage)].pFactor()}) : bareReply(refusal);
}

QByteArray Device::setAdjustIn(const QByteArray& arguments)
{
    const std::optional<StageModel::Axis> axis = axisOf(arguments[1]);
    if (!axis)
        return bareReply(refusal);
    const int millivolts = signedWordAt(arguments, 2);
    if (millivolts < -greatestAdjustInMv || millivolts > greatestAdjustInMv)
        return refused(RefusalCode::ValueOutOfRange);
    return changeStages(arguments[0],
                        [&](std::size_t i) { models[i].setAdjustIn(*axis, millivolts); });
}

QByteArray Device::tellAdjustIn(const QByteArray& arguments)
{
    const std::optional<int> stage = singleStage(arguments[0]);
    if (!stage)
        return bareReply(refusal);
    const std::optional<StageModel::Axis> axis = axisOf(arguments[1]);
    return axis ? words({models[static_cast<std::size_t>(*stage)].adjustIn(*axis)})
                : bareReply(refusal);
}

QByteArray Device::setSensitivity(const QByteArray& arguments)
{
    if (!hasSensitivity())
        return refused(RefusalCode::NotSupported);
    const int millivolts = signedWordAt(arguments, 1);
    if (millivolts < 0 || millivolts > greatestSensitivityMv)
        return refused(RefusalCode::ValueOutOfRange);
    return changeStages(arguments[0], [&](std::size_t i) { models[i].setSensitivity(millivolts); });
}

QByteArray Device::tellSensitivity(const QByteArray& arguments)
{
    if (!hasSensitivity())
        return refused(RefusalCode::NotSupported);
    const std::optional<int> stage = singleStage(arguments[0]);
    return stage ? words({models[static_cast<std::size_t>(*stage)].sensitivity()})
                 : bareReply(refusal);
}

QByteArray Device::driveActuator(const QByteArray& arguments)
{
    const std::optional<StageModel::Axis> axis = axisOf(arguments[1]);
    if (!axis)
        return bareReply(refusal);
    const int millivolts = signedWordAt(arguments, 2);
    if (millivolts < -greatestDriveMv || millivolts > greatestDriveMv)
        return refused(RefusalCode::ValueOutOfRange);
    return changeStages(arguments[0],
                        [&](std::size_t i) { models[i].driveActuator(*axis, millivolts); });
}

QByteArray Device::tellActuators(const QByteArray&)
{
    const PacketValues values = measured();
    return words({values.rx1, values.ry1, values.rx2, values.ry2});
}

QByteArray Device::multiplexOn(const QByteArray& arguments)
{
    return changeStages(arguments[0], [this](std::size_t i) { multiplex[i] = true; });
}

QByteArray Device::multiplexOff(const QByteArray& arguments)
{
    return changeStages(arguments[0], [this](std::size_t i) { multiplex[i] = false; });
}

QByteArray Device::tellMultiplex(const QByteArray&)
{
    const int flags = (multiplex[0] ? Multiplex1 : 0) | (multiplex[1] ? Multiplex2 : 0);
    return payload(QByteArray(1, static_cast<char>(flags)));
}

QByteArray Device::tellPositions(const QByteArray&)
{
    const PacketValues values = measured();
    return words({values.x1, values.y1, values.x2, values.y2});
}

QByteArray Device::tellError(const QByteArray&)
{
    QByteArray bytes = failedMnemonic.leftJustified(3, '-', true);
    bytes.append(static_cast<char>(failure));
    return payload(bytes);
}

QByteArray Device::tellMemory(const QByteArray& arguments)
{
    const bool whole = unsignedWordAt(arguments, 0) == 0 && byteAt(arguments, 2) == memoryBytes;
    return whole ? payload(memoryImage()) : refused(RefusalCode::ValueOutOfRange);
}

QByteArray Device::acknowledge(const QByteArray&)
{
    return bareReply(accepted);
}

/// What a look into the memory finds: key, label and settings, and unused bytes as they came from
/// the factory.
QByteArray Device::memoryImage() const
{
    QByteArray image = deviceKey + storedLabel;
    for (const StageModel& model : models) {
        appendWord(image, model.pFactor());
        appendWord(image, model.sensitivity());
        appendWord(image, model.adjustIn(StageModel::X));
        appendWord(image, model.adjustIn(StageModel::Y));
    }
    const auto flags = [](const std::array<bool, stages>& set) {
        return static_cast<char>((set[0] ? 1 : 0) | (set[1] ? 2 : 0));
    };
    image.append(flags(multiplex));
    image.append(flags(frozen));
    for (quint64 unused = 0; image.size() < memoryBytes; ++unused)
        image.append(static_cast<char>(derivedSeed(options.seed, unused) & 0xFF));
    return image.left(memoryBytes);
}

} // namespace emulator
