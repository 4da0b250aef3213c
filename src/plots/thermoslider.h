#pragma once

#include <qwt_thermo.h>

/// A vertical bar that shows a piezo voltage from 0 to 10 V.
class ThermoSlider final : public QwtThermo
{
    Q_OBJECT

public:
    explicit ThermoSlider(QWidget* parent);
};
