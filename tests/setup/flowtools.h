#pragma once

#include "emulator/emulatorhost.h"
#include "model/connectionsettings.h"
#include "setup/connectionwidget.h"
#include "widgettest.h"

#include <QByteArrayList>
#include <QPushButton>

#include <vector>

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

/// A way in which a controller lets a flow down.
struct Failure
{
    const char* name;
    emulator::Faults faults;
    /// Whether the flow finds the link lost; otherwise the controller was not identified.
    bool losesLink = false;
};

inline std::vector<Failure> failures()
{
    std::vector<Failure> all;
    const auto add = [&all](const char* name, bool losesLink = false) -> emulator::Faults& {
        all.push_back({name, {}, losesLink});
        return all.back().faults;
    };
    add("silent").silent = {"CLS", "GID"};
    add("silent when asked who it is").silent = {"GID"};
    add("garbage").garbageReplies = true;
    add("refuses to tell who it is").refuse = {"GID"};
    add("tells only a part").shortBytes = {{"GID", 20}};
    add("goes at the stop").closeOn = {"CLS"};
    add("goes when asked who it is").closeOn = {"GID"};
    add("goes when it gets its label", true).closeOn = {"SLA"};
    return all;
}

/// Whether a record looks as that of a system that the user has just connected.
inline bool isFresh(const ConnectionSettings& record)
{
    return record.autoConnect && record.colorX == "#ff0000" && record.colorY == "#008000"
           && record.colorI == "#0000ff";
}

inline QString buttonOf(const ConnectionWidget& line)
{
    return widgettest::named<QPushButton>(line, "Button").text();
}

} // namespace flowtools
