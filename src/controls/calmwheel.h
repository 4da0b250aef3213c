#pragma once

#include <QWheelEvent>

/// A control that the wheel changes only while it has the focus, so that scrolling past it changes
/// nothing. `Control` is a class of widgets.
template <typename Control>
class CalmWheel : public Control
{
public:
    explicit CalmWheel(QWidget* parent = nullptr)
        : Control(parent)
    {
        // A wheel that turns over it does not give it the focus either.
        this->setFocusPolicy(Qt::StrongFocus);
    }

protected:
    void wheelEvent(QWheelEvent* event) override
    {
        if (this->hasFocus())
            Control::wheelEvent(event);
        else
            event->ignore();
    }
};
