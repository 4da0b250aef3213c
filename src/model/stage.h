#pragma once

#include <array>
#include <cstddef>

/// A stage of the controller. The value is its number on the wire, in names of widgets and in the
/// slots that take a number.
enum class Stage : int { One = 1, Two = 2 };

constexpr std::array<Stage, 2> bothStages{Stage::One, Stage::Two};

/// 1 or 2.
constexpr int numberOf(Stage stage)
{
    return static_cast<int>(stage);
}

/// 0 or 1: the place of a stage in an array of both.
constexpr std::size_t indexOf(Stage stage)
{
    return stage == Stage::One ? 0 : 1;
}
