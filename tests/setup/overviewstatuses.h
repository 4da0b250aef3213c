#pragma once

#include "setup/connectionstatus.h"

#include <QStringList>
#include <QVector>

/// What the window tells the overview.
namespace overviewstatuses {

inline ConnectionStatus status(const QString& label)
{
    ConnectionStatus made;
    made.label = label;
    made.address = "ttyUSB" + label;
    made.statusValid = true;
    made.colorX = Qt::red;
    made.colorY = Qt::darkGreen;
    made.colorI = Qt::blue;
    return made;
}

inline QVector<ConnectionStatus> statuses(const QStringList& labels)
{
    QVector<ConnectionStatus> made;
    for (const QString& label : labels)
        made.append(status(label));
    return made;
}

} // namespace overviewstatuses
