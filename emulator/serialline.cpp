#include "emulator/serialline.h"

namespace emulator {

bool canTalk(const SerialSettings& one, const SerialSettings& other)
{
    return one.hardwareFlowControl == other.hardwareFlowControl;
}

QByteArray heardAt(int hearingRate, const QByteArray& bytes, int sendingRate)
{
    if (hearingRate == sendingRate)
        return bytes;
    constexpr int highBit = 0x80;
    constexpr int lowBits = 0x7F;
    constexpr int oddStep = 37;
    QByteArray garbage;
    garbage.reserve(bytes.size());
    for (int i = 0; i < bytes.size(); ++i) {
        const int scrambled = (bytes[i] ^ (oddStep * (i + 1))) & lowBits;
        garbage.append(static_cast<char>(highBit | scrambled));
    }
    return garbage;
}

} // namespace emulator
