#pragma once

#include "emulator/controlleroptions.h"
#include "emulator/noisesource.h"

#include <QByteArray>

namespace emulator {

/// Makes the faults of a stream in its packets. Which bytes are put in depends on the seed alone.
class PacketFaults final
{
public:
    explicit PacketFaults(quint64 seed)
        : source(seed)
    {}

    /// Takes the faults of streams from `faults`; the places of missing and inverted bytes start
    /// again.
    void set(const Faults& faults);

    /// The packet as it is sent. The first one of a stream has the number 1.
    QByteArray applyTo(QByteArray packet, qint64 number);
    /// Bytes that can not be mistaken for the marks of a packet or a reply.
    QByteArray strayBytes(int count);

private:
    NoiseSource source;
    int dropEvery = 0;
    int insertEvery = 0;
    int insertCount = 0;
    int corruptEvery = 0;
    qint64 faultyPlace = 0;
};

} // namespace emulator
