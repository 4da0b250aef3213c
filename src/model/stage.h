#pragma once

/// A stage of the controller. The value is its number on the wire, in names of widgets and in the
/// slots that take a number.
enum class Stage : int { One = 1, Two = 2 };

/// 1 or 2.
constexpr int numberOf(Stage stage)
{
    return static_cast<int>(stage);
}
