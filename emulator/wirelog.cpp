#include "emulator/wirelog.h"

#include <chrono>

namespace emulator {

void WireLog::add(WireEvent::Direction direction, const QByteArray& bytes, bool isPacket)
{
    if (isPacket && ++packetEvents > mostPackets)
        return;
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    kept.append({direction, bytes, std::chrono::nanoseconds(now).count()});
}

void WireLog::addCommand(const QByteArray& frame)
{
    commandFrames.append(frame);
}

void WireLog::clear()
{
    kept.clear();
    commandFrames.clear();
    packetEvents = 0;
}

} // namespace emulator
