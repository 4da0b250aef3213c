#pragma once

#include "model/stage.h"

#include <QColor>
#include <QString>

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

/// Whether a stage measures with the common detector of its group.
inline bool& multiplexFlag(ConnectionStatus& status, Stage stage)
{
    return stage == Stage::One ? status.multiplex1 : status.multiplex2;
}
