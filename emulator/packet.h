#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <array>

namespace emulator {

constexpr int packetLength = 25;

/// What a stream packet tells of one stage, millivolts.
struct StageSignals
{
    qint16 x = 0;
    qint16 y = 0;
    quint16 intensity = 0;
    qint16 actuatorX = 0;
    qint16 actuatorY = 0;
};

/// The values of a stream packet, of stage 1 and of stage 2. On the wire the actuators of both
/// stand behind the rest.
using PacketValues = std::array<StageSignals, 2>;

/// Bits 3 to 6 have the same meaning in a packet's first flag byte and in the reply to GSF.
enum StatusFlag : quint8 {
    PFactorBySoftware = 0x01,
    AdjustIn1BySoftware = 0x02,
    AdjustIn2BySoftware = 0x04,
    Stage1On = 0x08,
    Stage2On = 0x10,
    Stage1Active = 0x20,
    Stage2Active = 0x40,
    LastPacket = 0x80,
};

enum MultiplexFlag : quint8 {
    Multiplex1 = 0x01,
    Multiplex2 = 0x02,
    NotToBeStored = 0x04,
};

/// Appends a 16-bit value, high byte first.
void appendWord(QByteArray& bytes, int value);

QByteArray encodePacket(const PacketValues& values, quint8 flagsA, quint8 flagsB);

} // namespace emulator
