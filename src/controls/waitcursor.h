#pragma once

#include <QCursor>
#include <QGuiApplication>

/// Shows the wait pointer for as long as this object exists.
class WaitCursor final
{
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }

    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};
