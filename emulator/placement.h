#pragma once

#include "emulator/controlleroptions.h"

#include <QHostAddress>
#include <QString>

#include <optional>

namespace emulator {

/// A numeric address and a port.
struct TcpPlace
{
    QHostAddress address;
    /// 0 picks a free one.
    quint16 port = 0;
};

/// A controller that is asked for: where it is to be reached, and what it is.
struct Placement
{
    /// Empty for a controller behind a pseudo terminal.
    std::optional<TcpPlace> tcp;
    /// Path of the link to the pseudo terminal.
    QString link;
    ControllerOptions options;
};

} // namespace emulator
