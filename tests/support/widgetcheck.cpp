#include "support/widgetcheck.h"

#include <QApplication>
#include <QStringList>
#include <QWidget>

QString leftWidgets()
{
    QStringList names;
    const QWidgetList widgets = QApplication::allWidgets();
    for (const QWidget* widget : widgets) {
        if (!widget->inherits("QDesktopWidget") && !widget->inherits("QDesktopScreenWidget"))
            names.append(QString::fromLatin1(widget->metaObject()->className()));
    }
    return names.join(QLatin1String(", "));
}
