#pragma once

/// What a colour belongs to. Signals and slots of the overview carry it as a number.
enum class Graph : int { X = 0, Y = 1, Intensity = 2 };
