#pragma once

#include <QCursor>
#include <QEvent>
#include <QWidget>
#include <QWindow>

/// Counts the moves of the pointer that come to a window, which has to be shown. They wait in the
/// queue of the window system as clicks and keys do, while events of a test come at once.
class PointerMoves final : public QObject
{
public:
    explicit PointerMoves(const QWidget& widget)
        : watched(widget)
    {
        watched.windowHandle()->installEventFilter(this);
    }

    /// Puts the pointer into the middle of the window, where it must not be yet.
    void move() const { QCursor::setPos(watched.mapToGlobal(watched.rect().center())); }
    int count() const { return moves; }

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        moves += event->type() == QEvent::MouseMove ? 1 : 0;
        return false;
    }

private:
    const QWidget& watched;
    int moves = 0;
};
