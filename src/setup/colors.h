#pragma once

#include <QColor>
#include <QString>

/// The colour that a name of the setup file stands for, "#rrggbb" or one that Qt knows. Not valid
/// if the name is empty or means no colour.
QColor toColor(const QString& name);

/// "#rrggbb"; empty for a colour that is not valid.
QString toName(const QColor& color);
