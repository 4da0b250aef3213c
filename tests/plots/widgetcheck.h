#pragma once

#include <QApplication>
#include <QString>
#include <QStringList>
#include <QWidget>

/// Class names of the widgets that a test left behind. The screen's own widgets do not count: Qt
/// makes them for anyone who asks for a resolution in dots per inch, as Qwt does.
inline QString leftWidgets()
{
    QStringList names;
    const QWidgetList widgets = QApplication::allWidgets();
    for (const QWidget* widget : widgets) {
        if (!widget->inherits("QDesktopWidget") && !widget->inherits("QDesktopScreenWidget"))
            names.append(QString::fromLatin1(widget->metaObject()->className()));
    }
    return names.join(QLatin1String(", "));
}
