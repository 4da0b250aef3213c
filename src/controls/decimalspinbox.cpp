#include "controls/decimalspinbox.h"

#include <QLocale>

DecimalSpinBox::DecimalSpinBox(QWidget* parent)
    : CalmWheel(parent)
{
    setLocale(QLocale::c());
}

QValidator::State DecimalSpinBox::validate(QString& text, int& cursor) const
{
    text.replace(QLatin1Char(','), QLatin1Char('.'));
    return QDoubleSpinBox::validate(text, cursor);
}
