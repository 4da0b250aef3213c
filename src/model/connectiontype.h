#pragma once

/// How a controller is connected. The value is the one in the setup file.
enum class ConnectionType : int { Serial = 0, Tcp = 1 };
