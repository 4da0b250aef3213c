#include "emulator/packet.h"

#include "emulator/command.h"

namespace emulator {

void appendWord(QByteArray& bytes, int value)
{
    bytes.append(static_cast<char>((value >> 8) & 0xFF));
    bytes.append(static_cast<char>(value & 0xFF));
}

QByteArray encodePacket(const PacketValues& values, quint8 flagsA, quint8 flagsB)
{
    QByteArray packet;
    packet.reserve(packetLength);
    packet.append('\0');
    packet.append(terminator);
    packet.append(static_cast<char>(flagsA));
    packet.append(static_cast<char>(flagsB));
    for (const StageSignals& stage : values) {
        appendWord(packet, stage.x);
        appendWord(packet, stage.y);
        appendWord(packet, stage.intensity);
    }
    for (const StageSignals& stage : values) {
        appendWord(packet, stage.actuatorX);
        appendWord(packet, stage.actuatorY);
    }
    packet.append(terminator);
    return packet;
}

} // namespace emulator
