#include "controls/calmspinbox.h"

#include <QLocale>
#include <QWheelEvent>

CalmSpinBox::CalmSpinBox(QWidget* parent)
    : QSpinBox(parent)
{
    setLocale(QLocale::c());
    // A wheel that turns over it does not give it the focus either.
    setFocusPolicy(Qt::StrongFocus);
}

void CalmSpinBox::wheelEvent(QWheelEvent* event)
{
    if (hasFocus())
        QSpinBox::wheelEvent(event);
    else
        event->ignore();
}
