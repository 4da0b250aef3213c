#pragma once

/// What this release is called: in the box behind "About the Software" and in the log.
namespace release {

constexpr char version[] = "2.3.1";
constexpr char build[] = "B10624";
constexpr char date[] = "2025-04-15";

} // namespace release
