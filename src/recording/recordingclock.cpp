#include "recording/recordingclock.h"

#include "plots/durationtext.h"

#include <limits>

namespace recordingclock {

namespace {

constexpr quint64 msPerSecond = 1000;

} // namespace

quint64 intervalMs(int seconds)
{
    return quint64(qint64(qint32(qint64(seconds) * qint64(msPerSecond))));
}

bool isEndless(quint64 intervalMs)
{
    return intervalMs > quint64(std::numeric_limits<qint32>::max());
}

int percentDone(quint64 remainingMs, quint64 intervalMs)
{
    if (intervalMs == 0)
        return 0;
    return qRound((1.0F - float(remainingMs) / float(intervalMs)) * 100.0F);
}

QString remainingText(quint64 remainingMs)
{
    const quint64 seconds =
        remainingMs / msPerSecond + (remainingMs % msPerSecond >= msPerSecond / 2 ? 1 : 0);
    return durationtext::fromSeconds(int(qMin(seconds, quint64(durationtext::longestSeconds))));
}

} // namespace recordingclock
