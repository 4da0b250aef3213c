#pragma once

#include "emulator/emulatorhost.h"
#include "model/connectionsettings.h"
#include "setup/connectionwidget.h"
#include "widgettest.h"

#include <QByteArrayList>
#include <QPushButton>

/// What the tests of the flows know of controllers and lines.
namespace flowtools {

/// What a controller gets to store a label.
inline QByteArray labelFrame(const QByteArray& label)
{
    return "SLA" + label.leftJustified(25, ' ') + ";";
}

inline QByteArrayList framesOfAConnect(const QByteArray& label)
{
    return {"CLS;", "CLS;", "GID;", labelFrame(label)};
}

/// The stored record of a controller on the network.
inline ConnectionSettings stored(const emulator::ControllerHandle& controller, const QString& label)
{
    ConnectionSettings record;
    record.type = ConnectionType::Tcp;
    record.name.set(controller.address());
    record.baudRateOrPort = controller.port();
    record.id.set(controller.id());
    record.label.set(label);
    record.autoConnect = true;
    return record;
}

inline QString buttonOf(const ConnectionWidget& line)
{
    return widgettest::named<QPushButton>(line, "Button").text();
}

} // namespace flowtools
