#include "emulator/packetfaults.h"

namespace emulator {

void PacketFaults::set(const Faults& faults)
{
    dropEvery = faults.dropByteEvery;
    insertEvery = faults.insertBytesEvery;
    insertCount = faults.insertCount;
    corruptEvery = faults.corruptByteEvery;
    faultyPlace = 0;
}

QByteArray PacketFaults::applyTo(QByteArray packet, qint64 number)
{
    constexpr char allBits = '\xFF';
    const auto isTurn = [number](int every) { return every > 0 && number % every == 0; };
    if (isTurn(corruptEvery) && !packet.isEmpty()) {
        const int place = static_cast<int>(faultyPlace++ % packet.size());
        packet[place] = static_cast<char>(packet[place] ^ allBits);
    }
    if (isTurn(dropEvery) && !packet.isEmpty())
        packet.remove(static_cast<int>(faultyPlace++ % packet.size()), 1);
    if (isTurn(insertEvery))
        packet.prepend(strayBytes(insertCount));
    return packet;
}

QByteArray PacketFaults::strayBytes(int count)
{
    constexpr int strayBit = 0x80;
    QByteArray bytes;
    for (int i = 0; i < count; ++i)
        bytes.append(static_cast<char>(strayBit | static_cast<int>(source.word() & 0x7F)));
    return bytes;
}

} // namespace emulator
