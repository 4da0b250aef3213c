#include "controls/decimalspinbox.h"

#include <QLocale>
#include <QWheelEvent>

DecimalSpinBox::DecimalSpinBox(QWidget* parent)
    : QDoubleSpinBox(parent)
{
    setLocale(QLocale::c());
    // A wheel that turns over it does not give it the focus either.
    setFocusPolicy(Qt::StrongFocus);
}

QValidator::State DecimalSpinBox::validate(QString& text, int& cursor) const
{
    text.replace(QLatin1Char(','), QLatin1Char('.'));
    return QDoubleSpinBox::validate(text, cursor);
}

void DecimalSpinBox::wheelEvent(QWheelEvent* event)
{
    if (hasFocus())
        QDoubleSpinBox::wheelEvent(event);
    else
        event->ignore();
}
