#pragma once

#include "support/userinput.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QWindow>
#include <QtTest>

/// One of the two dialogs for new limits, as the window opens it, with the hands of a user.
template <typename Dialog>
class RescaleBench final
{
public:
    bool open()
    {
        dialog.show();
        QApplication::setActiveWindow(&dialog);
        dialog.startInput();
        return QTest::qWaitForWindowActive(&dialog);
    }

    template <typename Widget = QWidget>
    Widget& find(const QString& name) const
    {
        auto* child = dialog.template findChild<Widget*>(name);
        if (!child)
            qFatal("The dialog has no %s of that kind", qPrintable(name));
        return *child;
    }
    QString text(const QString& labelName) const { return find<QLabel>(labelName).text(); }

    void press(Qt::Key key) { QTest::keyClick(dialog.windowHandle(), key); }
    /// Keys for whatever has the focus.
    void type(const QString& keys)
    {
        for (const QChar key : keys)
            QTest::keyClick(dialog.windowHandle(), key.toLatin1());
    }
    bool click(const QString& name) { return user::click(&find(name)); }

    QString focused() const
    {
        const QWidget* widget = dialog.focusWidget();
        return widget && widget->hasFocus() ? widget->objectName() : QString();
    }

    Dialog dialog;
    QSignalSpy rescaled{&dialog, &Dialog::axisRescaled};
};
