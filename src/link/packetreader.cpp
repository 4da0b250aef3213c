#include "link/packetreader.h"

#include <QIODevice>

#include <algorithm>
#include <utility>

namespace packetreader {

Result read(QIODevice& device)
{
    Result result;
    PacketBytes& bytes = result.bytes;
    device.read(bytes.data(), command::packetLength);

    while (!packet::isAligned(bytes) && device.bytesAvailable() > 0) {
        std::move(bytes.begin() + 1, bytes.end(), bytes.begin());
        device.read(&bytes.back(), 1);
        ++result.skipped;
    }
    result.found = packet::isAligned(bytes);
    return result;
}

} // namespace packetreader
