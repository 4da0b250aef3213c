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
    for (const int value :
         {int(values.x1), int(values.y1), int(values.i1), int(values.x2), int(values.y2),
          int(values.i2), int(values.rx1), int(values.ry1), int(values.rx2), int(values.ry2)})
        appendWord(packet, value);
    packet.append(terminator);
    return packet;
}

} // namespace emulator
