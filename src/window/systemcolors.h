#pragma once

#include "setup/connectionstatus.h"

#include <QColor>

/// The colours of one set of curves. The pointing plots show that of the intensity.
struct SystemColors
{
    QColor x;
    QColor y;
    QColor intensity;
};

inline SystemColors colorsOf(const ConnectionStatus& status)
{
    return {status.colorX, status.colorY, status.colorI};
}

inline SystemColors commonColorsOf(const ConnectionStatus& status)
{
    return {status.commonColorX, status.commonColorY, status.commonColorI};
}
