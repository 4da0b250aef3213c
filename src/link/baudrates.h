#pragma once

#include <array>

/// Rates of the serial line, bits per second.
namespace baudrate {

constexpr int slow = 115200;
constexpr int middle = 460800;
constexpr int fast = 921600;

/// At which controllers are searched for and connected. A controller is moved to `middle` by hand
/// only.
constexpr std::array<int, 2> offered{slow, fast};

} // namespace baudrate
