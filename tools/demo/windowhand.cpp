#include "demo/windowhand.h"

#include "window/mainwindow.h"

#include <QAbstractButton>
#include <QAction>
#include <QToolBar>
#include <QtTest>

#include <cstdio>
#include <cstdlib>

namespace {

/// What a click has set off is seen after this time.
constexpr int settleMs = 200;
/// From the left edge of a button, well inside of its mark.
constexpr int markPx = 8;

} // namespace

WindowHand::WindowHand(MainWindow& mainWindow, const QString& pictures)
    : window(mainWindow)
    , folder(pictures)
{}

void WindowHand::take(QWidget& widget, const QString& name) const
{
    QTest::qWait(settleMs);
    takeNow(widget, name);
}

void WindowHand::takeNow(QWidget& widget, const QString& name) const
{
    const QString path = folder.absoluteFilePath(name + QStringLiteral(".png"));
    if (!widget.grab().save(path)) {
        std::fprintf(stderr, "Can not write %s\n", qPrintable(path));
        // Connections are running: nothing that they use may be destroyed by the way.
        std::quick_exit(EXIT_FAILURE);
    }
}

void WindowHand::click(const char* action) const
{
    auto* bar = window.findChild<QToolBar*>(QStringLiteral("toolBar"));
    clickOn(*bar->widgetForAction(window.findChild<QAction*>(QString::fromLatin1(action))));
}

void WindowHand::clickOn(QWidget& widget) const
{
    QTest::mouseClick(&widget, Qt::LeftButton);
    QTest::qWait(settleMs);
}

void WindowHand::clickMark(const char* button) const
{
    auto* marked = window.findChild<QAbstractButton*>(QString::fromLatin1(button));
    QTest::mouseClick(marked, Qt::LeftButton, {}, QPoint(markPx, marked->height() / 2));
}
