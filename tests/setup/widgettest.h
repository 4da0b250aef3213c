#pragma once

#include <QApplication>
#include <QWidget>
#include <QWindow>
#include <QtTest>

namespace widgettest {

/// A click that goes through the window, as the user's does. False if the widget can not be seen,
/// is covered by something that is modal, or is disabled.
inline bool click(QWidget& widget)
{
    if (!widget.isVisible() || !widget.isEnabled() || !widget.window()->windowHandle())
        return false;
    const QPoint place = widget.mapTo(widget.window(), widget.rect().center());
    QTest::mouseClick(widget.window()->windowHandle(), Qt::LeftButton, {}, place);
    return true;
}

/// The named child. The test ends here if there is none.
template <typename Widget>
Widget& named(const QWidget& parent, const QString& name)
{
    auto* child = parent.findChild<Widget*>(name);
    if (!child)
        qFatal("There is no %s", qPrintable(name));
    return *child;
}

inline void show(QWidget& window)
{
    window.show();
    QApplication::setActiveWindow(&window);
    QVERIFY(QTest::qWaitForWindowExposed(&window));
}

/// For the end of each test: nothing may be left behind.
inline bool noWidgetIsLeft()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return QApplication::allWidgets().isEmpty();
}

} // namespace widgettest
