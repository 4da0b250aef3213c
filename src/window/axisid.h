#pragma once

#include <cstddef>
#include <optional>

enum class AxisKind { Position, Time, Intensity };

/// One axis of one stage.
struct StageAxis
{
    AxisKind kind;
    /// 0 or 1.
    std::size_t stage;
};

/// The axis that a number stands for in the rescale dialogs: 1 and 2 position of stage 1 and 2, 3
/// and 4 time, 5 and 6 intensity. Nothing for any other number.
constexpr std::optional<StageAxis> axisOfId(int axisId)
{
    switch (axisId) {
    case 1:
    case 2:
        return StageAxis{AxisKind::Position, std::size_t(axisId - 1)};
    case 3:
    case 4:
        return StageAxis{AxisKind::Time, std::size_t(axisId - 3)};
    case 5:
    case 6:
        return StageAxis{AxisKind::Intensity, std::size_t(axisId - 5)};
    default:
        return std::nullopt;
    }
}

/// The number of an axis; the reverse of `axisOfId`.
constexpr int idOfAxis(const StageAxis& axis)
{
    const int stage = int(axis.stage);
    switch (axis.kind) {
    case AxisKind::Position:
        break;
    case AxisKind::Time:
        return 3 + stage;
    case AxisKind::Intensity:
        return 5 + stage;
    }
    return 1 + stage;
}
