#pragma once

#include <QByteArray>
#include <QtGlobal>

namespace emulator {

constexpr int packetLength = 25;

/// The ten values of a stream packet, millivolts, in the order of the wire.
struct PacketValues
{
    qint16 x1 = 0;
    qint16 y1 = 0;
    quint16 i1 = 0;
    qint16 x2 = 0;
    qint16 y2 = 0;
    quint16 i2 = 0;
    qint16 rx1 = 0;
    qint16 ry1 = 0;
    qint16 rx2 = 0;
    qint16 ry2 = 0;
};

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
