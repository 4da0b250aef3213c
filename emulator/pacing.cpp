#include "emulator/pacing.h"

#include <algorithm>
#include <chrono>

namespace emulator {

namespace {

constexpr qint64 nsPerMs = 1000000;
constexpr double nsPerSecond = 1e9;
/// Controllers wake on a common grid, so that many of them share a wake-up.
constexpr qint64 wakeGridNs = 2 * nsPerMs;
/// After a stall at most this much of the stream is sent late; the rest is skipped.
constexpr double greatestBacklogSeconds = 0.5;

} // namespace

void Pacing::start(double packetsPerSecond)
{
    rate = packetsPerSecond;
    taken = 0;
    clock.start();
}

qint64 Pacing::due() const
{
    return static_cast<qint64>(static_cast<double>(clock.nsecsElapsed()) / nsPerSecond * rate);
}

bool Pacing::takeOne(qint64 dueSoFar)
{
    if (taken >= dueSoFar)
        return false;
    ++taken;
    return true;
}

qint64 Pacing::skipBacklog(qint64 dueSoFar)
{
    const auto most = static_cast<qint64>(rate * greatestBacklogSeconds) + 1;
    const qint64 skipped = std::max<qint64>(0, dueSoFar - most - taken);
    taken += skipped;
    return skipped;
}

std::optional<int> Pacing::msToNext() const
{
    if (rate <= 0.0)
        return std::nullopt;
    const auto dueNs = static_cast<qint64>(static_cast<double>(taken + 1) * nsPerSecond / rate);
    const qint64 nowNs =
        std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
    const qint64 wakeNs = nowNs + std::max<qint64>(0, dueNs - clock.nsecsElapsed());
    const qint64 onGridNs = (wakeNs / wakeGridNs + 1) * wakeGridNs;
    return static_cast<int>((onGridNs - nowNs + nsPerMs - 1) / nsPerMs);
}

} // namespace emulator
