// What the controller does and answers for each command.

#include "emulator/device.h"
#include "emulator/noisesource.h"
#include "emulator/reply.h"

#include <array>

namespace emulator {

namespace {

constexpr int memoryBytes = 255;

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

} // namespace

template <typename Change>
Answer Device::changeStages(const Request& request, Change change)
{
    for (std::size_t i = 0; i < models.size(); ++i) {
        if (request.names(i))
            change(i);
    }
    return acceptance();
}

Answer Device::identify(const Request&)
{
    return payload(id());
}

Answer Device::storeLabel(const Request& request)
{
    storedLabel = request.arguments;
    return acceptance();
}

Answer Device::tellLabel(const Request&)
{
    // The memory holds the label with a terminating zero byte, and GLA answers with both.
    return payload(storedLabel + '\0');
}

Answer Device::setBaudRate(const Request& request)
{
    const int wanted = baudRateOf(byteAt(request.arguments, 0));
    if (wanted == 0)
        return RefusalCode::ValueOutOfRange;
    serialBaudRate = wanted;
    return acceptance();
}

Answer Device::singleSample(const Request&)
{
    return packetOf(measured(), 0, 0);
}

Answer Device::startStream(const Request& request)
{
    streaming = true;
    streamRate = request.value;
    source.rewind(streamRate);
    Answer answer = nextPacket();
    answer.stream = Answer::Stream::Started;
    return answer;
}

Answer Device::startTriggeredStream(const Request&)
{
    streaming = true;
    streamRate = options.triggerRateHz;
    source.rewind(streamRate);
    Answer answer = acceptance();
    answer.stream = Answer::Stream::StartedByTrigger;
    return answer;
}

Answer Device::stopStream(const Request&)
{
    Answer answer = acceptance();
    answer.stream = Answer::Stream::Stopped;
    if (streaming && hasStreamFlags()) {
        moveBeam();
        answer.lastPacket = streamPacket(LastPacket);
    }
    endStream();
    return answer;
}

Answer Device::tellStatus(const Request&)
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

Answer Device::tellActive(const Request&)
{
    QByteArray bytes;
    for (const StageModel& model : models)
        bytes.append(model.isActive() ? '\1' : '\0');
    return payload(bytes);
}

Answer Device::tellIntensity(const Request& request)
{
    return words({measured()[request.stage].intensity});
}

Answer Device::switchOn(const Request& request)
{
    return changeStages(request, [this](std::size_t i) { models[i].setOn(true); });
}

Answer Device::switchOff(const Request& request)
{
    return changeStages(request, [this](std::size_t i) { models[i].setOn(false); });
}

Answer Device::hold(const Request& request)
{
    return changeStages(request, [this](std::size_t i) { models[i].setHold(); });
}

Answer Device::clearHold(const Request& request)
{
    return changeStages(request, [this](std::size_t i) { models[i].clearHold(); });
}

Answer Device::freeze(const Request& request)
{
    return changeStages(request, [this](std::size_t i) { frozen[i] = true; });
}

Answer Device::clearFreeze(const Request& request)
{
    return changeStages(request, [this](std::size_t i) { frozen[i] = false; });
}

Answer Device::setPFactor(const Request& request)
{
    return changeStages(request, [&](std::size_t i) { models[i].setPFactor(request.value); });
}

Answer Device::tellPFactor(const Request& request)
{
    return words({models[request.stage].pFactor()});
}

Answer Device::setAdjustIn(const Request& request)
{
    return changeStages(request,
                        [&](std::size_t i) { models[i].setAdjustIn(request.axis, request.value); });
}

Answer Device::tellAdjustIn(const Request& request)
{
    return words({models[request.stage].adjustIn(request.axis)});
}

Answer Device::setSensitivity(const Request& request)
{
    return changeStages(request, [&](std::size_t i) { models[i].setSensitivity(request.value); });
}

Answer Device::tellSensitivity(const Request& request)
{
    return words({models[request.stage].sensitivity()});
}

Answer Device::driveActuator(const Request& request)
{
    return changeStages(
        request, [&](std::size_t i) { models[i].driveActuator(request.axis, request.value); });
}

Answer Device::tellActuators(const Request&)
{
    const PacketValues values = measured();
    return words(
        {values[0].actuatorX, values[0].actuatorY, values[1].actuatorX, values[1].actuatorY});
}

Answer Device::multiplexOn(const Request& request)
{
    return changeStages(request, [this](std::size_t i) { models[i].setMultiplexed(true); });
}

Answer Device::multiplexOff(const Request& request)
{
    return changeStages(request, [this](std::size_t i) { models[i].setMultiplexed(false); });
}

Answer Device::tellMultiplex(const Request&)
{
    const int flags =
        (models[0].isMultiplexed() ? Multiplex1 : 0) | (models[1].isMultiplexed() ? Multiplex2 : 0);
    return payload(QByteArray(1, static_cast<char>(flags)));
}

Answer Device::tellPositions(const Request&)
{
    const PacketValues values = measured({StageModel::View::Common, StageModel::View::Common});
    return words({values[0].x, values[0].y, values[1].x, values[1].y});
}

Answer Device::tellError(const Request&)
{
    QByteArray bytes = failedMnemonic.leftJustified(3, '-', true);
    bytes.append(static_cast<char>(failure));
    return payload(bytes);
}

Answer Device::tellMemory(const Request& request)
{
    const bool whole =
        unsignedWordAt(request.arguments, 0) == 0 && byteAt(request.arguments, 2) == memoryBytes;
    if (!whole)
        return RefusalCode::ValueOutOfRange;
    return payload(memoryImage());
}

Answer Device::acknowledge(const Request&)
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
    image.append(flags({models[0].isMultiplexed(), models[1].isMultiplexed()}));
    image.append(flags(frozen));
    for (quint64 unused = 0; image.size() < memoryBytes; ++unused)
        image.append(static_cast<char>(derivedSeed(options.seed, unused) & 0xFF));
    return image.left(memoryBytes);
}

} // namespace emulator
