#include "emulator/commandtable.h"

#include "emulator/device.h"
#include "emulator/packet.h"

#include <algorithm>
#include <iterator>

namespace emulator {

namespace {

constexpr int bareReply = 2;
constexpr StageRule noStage = StageRule::None;
constexpr StageRule oneStage = StageRule::One;
constexpr StageRule anyStages = StageRule::OneOrBoth;
constexpr AxisRule noAxis = AxisRule::None;
constexpr AxisRule anyAxis = AxisRule::XOrY;
constexpr ValueRule noValue = {};

// The place of a value tells what stands before it: a stage, a stage and an axis, or two zero
// bytes.
constexpr ValueRule pFactorMv = {1, 0, 5000};
constexpr ValueRule sensitivityMv = {1, 0, 5000};
constexpr ValueRule adjustInMv = {2, -5000, 5000};
constexpr ValueRule driveMv = {2, -5000, 5000};
constexpr ValueRule packetsPerSecond = {2, Device::leastRate, Device::greatestRate};

} // namespace

// The commands that controllers know, one row each.
const Operation* Device::operationOf(const QByteArray& mnemonic)
{
    static constexpr Operation operations[] = {
        {"GID", 0, 50, &Device::identify},
        {"SLA", labelLength, bareReply, &Device::storeLabel},
        {"GLA", 0, 29, &Device::tellLabel},
        {"SBR", 1, bareReply, &Device::setBaudRate},
        {"S1S", 0, packetLength, &Device::singleSample},
        {"SLS", 4, packetLength, &Device::startStream, noStage, noAxis, packetsPerSecond,
         &Device::startsBySls},
        {"SGS", 4, packetLength, &Device::startStream, noStage, noAxis, packetsPerSecond,
         &Device::startsBySgs},
        {"SPS", 2, bareReply, &Device::startTriggeredStream, noStage, noAxis, noValue,
         &Device::startsByTrigger},
        {"CLS", 0, bareReply, &Device::stopStream},
        {"GSF", 0, 4, &Device::tellStatus},
        {"GAS", 0, 5, &Device::tellActive},
        {"GIN", 1, 5, &Device::tellIntensity, oneStage},
        {"SEA", 1, bareReply, &Device::switchOn, anyStages},
        {"CEA", 1, bareReply, &Device::switchOff, anyStages},
        {"SSH", 1, bareReply, &Device::hold, anyStages},
        {"CSH", 1, bareReply, &Device::clearHold, anyStages},
        {"SHS", 0, bareReply, &Device::acknowledge},
        {"CHS", 0, bareReply, &Device::acknowledge},
        {"STF", 1, bareReply, &Device::freeze, anyStages},
        {"CTF", 1, bareReply, &Device::clearFreeze, anyStages},
        {"SPF", 3, bareReply, &Device::setPFactor, anyStages, noAxis, pFactorMv},
        {"GPF", 1, 5, &Device::tellPFactor, oneStage},
        {"SAI", 4, bareReply, &Device::setAdjustIn, anyStages, anyAxis, adjustInMv},
        {"GAI", 2, 5, &Device::tellAdjustIn, oneStage, anyAxis},
        {"SDS", 3, bareReply, &Device::setSensitivity, anyStages, noAxis, sensitivityMv,
         &Device::hasSensitivity},
        {"GDS", 1, 5, &Device::tellSensitivity, oneStage, noAxis, noValue, &Device::hasSensitivity},
        {"SDA", 4, bareReply, &Device::driveActuator, anyStages, anyAxis, driveMv},
        {"GDA", 0, 11, &Device::tellActuators},
        {"SMD", 1, bareReply, &Device::multiplexOn, anyStages},
        {"CMD", 1, bareReply, &Device::multiplexOff, anyStages},
        // A subsystem that is locked leaves the path of the common detector.
        {"SSE", 1, bareReply, &Device::multiplexOff, anyStages},
        {"GMF", 0, 4, &Device::tellMultiplex},
        {"GCA", 0, 11, &Device::tellPositions},
        {"GER", 0, 7, &Device::tellError},
        {"RFR", 3, 258, &Device::tellMemory},
    };
    const auto found =
        std::find_if(std::begin(operations), std::end(operations),
                     [&](const Operation& operation) { return mnemonic == operation.mnemonic; });
    return found == std::end(operations) ? nullptr : found;
}

int argumentLength(const QByteArray& mnemonic)
{
    const Operation* operation = Device::operationOf(mnemonic);
    return operation ? operation->argumentLength : -1;
}

bool hasAxis(const QByteArray& mnemonic)
{
    const Operation* operation = Device::operationOf(mnemonic);
    return operation && operation->axis != AxisRule::None;
}

int replyLength(const QByteArray& mnemonic)
{
    const Operation* operation = Device::operationOf(mnemonic);
    return operation ? operation->replyLength : bareReply;
}

} // namespace emulator
