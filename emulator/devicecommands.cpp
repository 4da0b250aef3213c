// What the controller does and answers for each command.

#include "emulator/device.h"
#include "emulator/noisesource.h"
#include "emulator/reply.h"

namespace emulator {

namespace {

constexpr int bothStages = 3;
constexpr int memoryBytes = 255;
constexpr int greatestPFactorMv = 5000;
constexpr int greatestSensitivityMv = 5000;
constexpr int greatestAdjustInMv = 5000;
constexpr int greatestDriveMv = 5000;

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

bool namesStages(char stageByte)
{
    return stageByte >= 1 && stageByte <= bothStages;
}

} // namespace

template <typename Change>
QByteArray Device::changeStages(char stageByte, Change change)
{
    if (!namesStages(stageByte))
        return refused(RefusalCode::NoSuchStage);
    for (std::size_t i = 0; i < models.size(); ++i) {
        if (stageByte == bothStages || stageByte == static_cast<int>(i) + 1)
            change(i);
    }
    return acceptance();
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

QByteArray Device::identify(const QByteArray&)
{
    return payload(id());
}

QByteArray Device::storeLabel(const QByteArray& arguments)
{
    storedLabel = arguments;
    return acceptance();
}

QByteArray Device::tellLabel(const QByteArray&)
{
    // The memory holds the label with a terminating zero byte, and GLA answers with both.
    return payload(storedLabel + '\0');
}

QByteArray Device::setBaudRate(const QByteArray& arguments)
{
    const int wanted = baudRateOf(byteAt(arguments, 0));
    if (wanted == 0)
        return refused(RefusalCode::ValueOutOfRange);
    serialBaudRate = wanted;
    return acceptance();
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
        return refusal();
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
    // A stage that does not exist is reported before any other error in the arguments.
    if (!namesStages(arguments[0]))
        return refused(RefusalCode::NoSuchStage);
    const int millivolts = signedWordAt(arguments, 1);
    if (millivolts < 0 || millivolts > greatestPFactorMv)
        return refused(RefusalCode::ValueOutOfRange);
    return changeStages(arguments[0], [&](std::size_t i) { models[i].setPFactor(millivolts); });
}

QByteArray Device::tellPFactor(const QByteArray& arguments)
{
    const std::optional<int> stage = singleStage(arguments[0]);
    return stage ? words({models[static_cast<std::size_t>(*stage)].pFactor()}) : refusal();
}

QByteArray Device::setAdjustIn(const QByteArray& arguments)
{
    if (!namesStages(arguments[0]))
        return refused(RefusalCode::NoSuchStage);
    const std::optional<StageModel::Axis> axis = axisOf(arguments[1]);
    if (!axis)
        return refusal();
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
        return refusal();
    const std::optional<StageModel::Axis> axis = axisOf(arguments[1]);
    return axis ? words({models[static_cast<std::size_t>(*stage)].adjustIn(*axis)}) : refusal();
}

QByteArray Device::setSensitivity(const QByteArray& arguments)
{
    if (!hasSensitivity())
        return refused(RefusalCode::NotSupported);
    if (!namesStages(arguments[0]))
        return refused(RefusalCode::NoSuchStage);
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
    return stage ? words({models[static_cast<std::size_t>(*stage)].sensitivity()}) : refusal();
}

QByteArray Device::driveActuator(const QByteArray& arguments)
{
    if (!namesStages(arguments[0]))
        return refused(RefusalCode::NoSuchStage);
    const std::optional<StageModel::Axis> axis = axisOf(arguments[1]);
    if (!axis)
        return refusal();
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
    return acceptance();
}

/// Contents of the memory: key, label and settings, then unused bytes, which the seed determines.
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
