#include "link/packet.h"

namespace packet {

namespace {

constexpr std::size_t separatorOffset = 1;
constexpr std::size_t flagsAOffset = command::payloadOffset;
constexpr std::size_t flagsBOffset = flagsAOffset + 1;
constexpr std::size_t endMarkOffset = command::packetLength - 1;

constexpr quint8 multiplex1 = 0x01;
constexpr quint8 multiplex2 = 0x02;
constexpr quint8 withheldFromVm = 0x04;

bool isSet(char flags, quint8 mask)
{
    return (static_cast<quint8>(flags) & mask) != 0;
}

} // namespace

bool isAligned(const PacketBytes& bytes)
{
    return bytes[0] == '\0' && bytes[separatorOffset] == command::terminator
           && bytes[endMarkOffset] == command::terminator;
}

bool isLast(const PacketBytes& bytes, int firmwareVersion)
{
    return hasFlags(firmwareVersion) && isSet(bytes[flagsAOffset], statusflag::lastPacket);
}

bool isWithheld(const PacketBytes& bytes, int firmwareVersion, bool vmFirmware)
{
    return vmFirmware && hasFlags(firmwareVersion) && isSet(bytes[flagsBOffset], withheldFromVm);
}

MeasureSample toSample(const PacketBytes& bytes, int firmwareVersion, quint64 timeMs)
{
    const auto signedAt = [&](int offset) { return command::signedValueAt(bytes.data(), offset); };
    const auto unsignedAt = [&](int offset) { return static_cast<quint16>(signedAt(offset)); };

    constexpr ValueOffsets one = offsetsOf(Stage::One);
    constexpr ValueOffsets two = offsetsOf(Stage::Two);

    MeasureSample sample;
    sample.timeMs = timeMs;
    sample.x1 = signedAt(one.x);
    sample.y1 = signedAt(one.y);
    sample.intensity1 = unsignedAt(one.intensity);
    sample.rx1 = signedAt(one.rangeX);
    sample.ry1 = signedAt(one.rangeY);
    sample.x2 = signedAt(two.x);
    sample.y2 = signedAt(two.y);
    sample.intensity2 = unsignedAt(two.intensity);
    sample.rx2 = signedAt(two.rangeX);
    sample.ry2 = signedAt(two.rangeY);

    if (hasFlags(firmwareVersion)) {
        const auto flagsA = static_cast<quint8>(bytes[flagsAOffset]);
        const char flagsB = bytes[flagsBOffset];
        sample.stabilised1 = statusflag::isStabilised(flagsA, Stage::One);
        sample.stabilised2 = statusflag::isStabilised(flagsA, Stage::Two);
        sample.active1 = statusflag::isActive(flagsA, Stage::One);
        sample.active2 = statusflag::isActive(flagsA, Stage::Two);
        sample.multiplex1 = isSet(flagsB, multiplex1);
        sample.multiplex2 = isSet(flagsB, multiplex2);
    }
    return sample;
}

} // namespace packet
