#pragma once

#include <QString>

/// Durations as they are typed and shown in fields with the mask "999:99:99": hours, minutes and
/// seconds.
namespace durationtext {

/// What "999:99:99" means: minutes and seconds may go up to 99.
constexpr int longestSeconds = 999 * 3600 + 99 * 60 + 99;

/// Seconds of a text such as "001:30:00". A section that is missing or no number counts 0, and what
/// goes beyond an `int` is held to its range.
int toSeconds(const QString& text);

/// "hhh:mm:ss" for seconds, which are held to 0 .. `longestSeconds`. Minutes and seconds are below
/// 60 as long as 999 hours are enough, and go up to 99 beyond.
QString fromSeconds(int seconds);

} // namespace durationtext
