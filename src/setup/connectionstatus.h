#pragma once

#include "model/stage.h"

#include <QColor>
#include <QString>

#include <tuple>

class Connection;

/// The live record of one connection: kept by the main window, shown by the system overview.
struct ConnectionStatus
{
    /// Whose status it is. Two connections can have the same address.
    Connection* connection = nullptr;
    QString label;
    QString address;
    /// Whether the flags below were read from a controller that is connected now.
    bool statusValid = false;
    bool stabilised1 = false;
    bool stabilised2 = false;
    bool active1 = false;
    bool active2 = false;
    QColor colorX;
    QColor colorY;
    QColor colorI;
    bool displayed = false;
    /// Colours of the display path of a common detector.
    QColor commonColorX;
    QColor commonColorY;
    QColor commonColorI;
    int groupId = 0;
    bool multiplex1 = false;
    bool multiplex2 = false;
};

inline bool operator==(const ConnectionStatus& one, const ConnectionStatus& other)
{
    const auto valuesOf = [](const ConnectionStatus& status) {
        return std::tie(status.connection, status.label, status.address, status.statusValid,
                        status.stabilised1, status.stabilised2, status.active1, status.active2,
                        status.colorX, status.colorY, status.colorI, status.displayed,
                        status.commonColorX, status.commonColorY, status.commonColorI,
                        status.groupId, status.multiplex1, status.multiplex2);
    };
    return valuesOf(one) == valuesOf(other);
}

/// Whether the stabilisation of a stage is on.
inline bool& stabilisedFlag(ConnectionStatus& status, Stage stage)
{
    return stage == Stage::One ? status.stabilised1 : status.stabilised2;
}

/// Whether a stage is active.
inline bool& activeFlag(ConnectionStatus& status, Stage stage)
{
    return stage == Stage::One ? status.active1 : status.active2;
}

/// Whether a stage measures with the common detector of its group.
inline bool& multiplexFlag(ConnectionStatus& status, Stage stage)
{
    return stage == Stage::One ? status.multiplex1 : status.multiplex2;
}
