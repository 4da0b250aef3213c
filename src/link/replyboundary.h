#pragma once

#include <QDeadlineTimer>

#include <functional>

class QIODevice;

/// How long a connection looks for the boundary.
constexpr int boundarySearchMs = 1000;

/// Re-finds the boundary of replies after one was lost: reads byte by byte until a refusal has
/// passed or `limit` is reached, and calls `pause` between two looks at the device.
///
/// An accepted reply of two bytes is followed by a wait for two more, of which the third is
/// tested; an array of two has none, so behind such a reply the search runs on to the limit.
/// That oddity is known and kept.
void findReplyBoundary(QIODevice& device, const QDeadlineTimer& limit,
                       const std::function<void()>& pause);
