#pragma once

#include <QCursor>
#include <QGuiApplication>

/// The pointer says that something waits, for as long as this lives.
class WaitCursor final
{
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }

    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};
