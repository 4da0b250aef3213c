#include "plots/thermoslider.h"

#include <QBrush>
#include <QFont>

ThermoSlider::ThermoSlider(QWidget* parent)
    : QwtThermo(parent)
{
    setOrientation(Qt::Vertical);
    setScalePosition(QwtThermo::TrailingScale);
    setFillBrush(QBrush(Qt::darkCyan));
    setScale(0.0, 10.0);
    setPipeWidth(4);
    setSpacing(0);
    setValue(0.0);
    setFont(QFont(QStringLiteral("Sans Serif"), 8));
    setScaleMaxMinor(0);
}
