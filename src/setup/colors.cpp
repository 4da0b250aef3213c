#include "setup/colors.h"

QColor toColor(const QString& name)
{
    // The constructor writes a warning for a name that it does not know.
    return QColor::isValidColor(name) ? QColor(name) : QColor();
}

QString toName(const QColor& color)
{
    return color.isValid() ? color.name() : QString();
}
