#include "controls/calmcombobox.h"

#include <QWheelEvent>

CalmComboBox::CalmComboBox(QWidget* parent)
    : QComboBox(parent)
{
    // A wheel that turns over it does not give it the focus either.
    setFocusPolicy(Qt::StrongFocus);
}

void CalmComboBox::wheelEvent(QWheelEvent* event)
{
    if (hasFocus())
        QComboBox::wheelEvent(event);
    else
        event->ignore();
}
