#include "support/userinput.h"

#include "plots/counter.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QRadioButton>
#include <QSpinBox>
#include <QToolBar>
#include <QWindow>
#include <QtTest>
#include <qwt_plot.h>

namespace {

bool refuse(const QWidget* widget, const char* why)
{
    qWarning("%s can not be used: %s", widget ? qPrintable(widget->objectName()) : "A widget", why);
    return false;
}

QPoint placeToClick(const QWidget& widget)
{
    const bool hasBoxAtTheLeft = qobject_cast<const QCheckBox*>(&widget) != nullptr
                                 || qobject_cast<const QRadioButton*>(&widget) != nullptr;
    constexpr int boxMiddlePx = 8;
    return hasBoxAtTheLeft ? QPoint(boxMiddlePx, widget.height() / 2) : widget.rect().center();
}

} // namespace

namespace user {

bool click(QWidget* widget)
{
    return widget ? click(widget, placeToClick(*widget)) : refuse(widget, "there is none");
}

bool click(QWidget* widget, const QPoint& where)
{
    if (!widget)
        return refuse(widget, "there is none");
    if (!widget->isVisible())
        return refuse(widget, "hidden");
    if (!widget->isEnabled())
        return refuse(widget, "disabled");
    if (!widget->visibleRegion().contains(where))
        return refuse(widget, "out of sight");
    QWidget* window = widget->window();
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, widget->mapTo(window, where));
    return true;
}

bool clickAction(QWidget& toolBar, const char* actionName)
{
    const auto& bar = dynamic_cast<const QToolBar&>(toolBar);
    const QList<QAction*> actions = bar.actions();
    for (QAction* action : actions) {
        if (action->objectName() == QLatin1String(actionName))
            return click(bar.widgetForAction(action));
    }
    return refuse(&toolBar, "no such action");
}

bool type(QWidget* widget, const QString& text)
{
    const auto* counter = qobject_cast<Counter*>(widget);
    if (!counter)
        return refuse(widget, "no counter");
    QSpinBox& box = *counter->spinBox;
    constexpr int intoThePixels = 6;
    if (!click(&box, QPoint(intoThePixels, box.height() / 2)))
        return false;
    box.selectAll();
    for (const QChar character : text)
        QTest::keyClick(box.window()->windowHandle(), character.toLatin1());
    QTest::keyClick(box.window()->windowHandle(), Qt::Key_Enter);
    return true;
}

void hover(QWidget& widget, const QPoint& where)
{
    QWidget* window = widget.window();
    QTest::mouseMove(window->windowHandle(), widget.mapTo(window, where));
    QCoreApplication::processEvents();
}

void dragBand(const QwtPlot& plot)
{
    const QWidget& canvas = *plot.canvas();
    QWidget* window = canvas.window();
    const QPoint middle = canvas.mapTo(window, canvas.rect().center());
    const QPoint reach(canvas.width() / 8, canvas.height() / 8);
    QTest::mousePress(window->windowHandle(), Qt::LeftButton, {}, middle - reach);
    QTest::mouseMove(window->windowHandle(), middle);
    QTest::mouseMove(window->windowHandle(), middle + reach);
    QTest::mouseRelease(window->windowHandle(), Qt::LeftButton, {}, middle + reach);
}

} // namespace user
