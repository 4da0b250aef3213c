#pragma once

#include <QString>

/// Arithmetic of the clock that ends a recording. Intervals are milliseconds.
namespace recordingclock {

/// The length of an interval that is given in seconds. It is counted in 32 bits with a sign: from
/// 2147484 s (596:31:24) on it is negative, which as an interval is longer than any recording.
quint64 intervalMs(int seconds);

/// Whether the interval is one of those that were negative: such a recording does not end by
/// itself.
bool isEndless(quint64 intervalMs);

/// The share of the interval that is over, 0 .. 100. 0 for an interval of 0.
int percentDone(quint64 remainingMs, quint64 intervalMs);

/// The time that remains as "hhh:mm:ss", rounded to seconds: what is shown each second goes down in
/// steps of one, although no timer is quite on time.
QString remainingText(quint64 remainingMs);

} // namespace recordingclock
