#pragma once

/// Which colour of a system: that of x, of y, or of the intensity.
enum class Graph : int { X = 0, Y = 1, Intensity = 2 };
