#pragma once

#include "emulator/packet.h"

#include <QByteArray>
#include <QVector>

/// What tests of the emulator say in the protocol's own bytes.
namespace wiretools {

constexpr int packetBytes = 25;

inline QByteArray hex(const char* digits)
{
    return QByteArray::fromHex(digits);
}

inline QByteArray accepted()
{
    return hex("00 3b");
}

inline QByteArray refused()
{
    return hex("01 3b");
}

inline QByteArray startAt(int rate, const QByteArray& mnemonic = "SLS")
{
    QByteArray command = mnemonic + hex("0000");
    command.append(static_cast<char>(rate / 256));
    command.append(static_cast<char>(rate % 256));
    return command + ';';
}

/// Signed 16-bit value, high byte first.
inline int wordAt(const QByteArray& bytes, int index)
{
    return static_cast<qint16>(static_cast<quint8>(bytes[index]) * 256
                               + static_cast<quint8>(bytes[index + 1]));
}

inline bool isFramed(const QByteArray& packet)
{
    return packet.size() == packetBytes && packet.startsWith(accepted()) && packet.endsWith(';');
}

/// Samples whose x of stage 1 counts from 1, and y down from -1.
inline QVector<emulator::PacketValues> countingScript(int samples)
{
    QVector<emulator::PacketValues> script;
    for (int i = 1; i <= samples; ++i) {
        emulator::PacketValues values;
        values[0].x = static_cast<qint16>(i);
        values[0].y = static_cast<qint16>(-i);
        values[0].intensity = static_cast<quint16>(40000 + i);
        script.append(values);
    }
    return script;
}

} // namespace wiretools
