#include "controls/calmspinbox.h"

#include <QLocale>

CalmSpinBox::CalmSpinBox(QWidget* parent)
    : CalmWheel(parent)
{
    setLocale(QLocale::c());
}
