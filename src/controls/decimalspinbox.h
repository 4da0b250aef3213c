#pragma once

#include "controls/calmwheel.h"

#include <QDoubleSpinBox>

/// A number with decimals that reads the same everywhere: a comma that is typed is a decimal
/// point, whatever the locale, and never parts thousands. The wheel changes it only while it has
/// the focus, so that scrolling past it changes nothing.
class DecimalSpinBox final : public CalmWheel<QDoubleSpinBox>
{
    Q_OBJECT

public:
    explicit DecimalSpinBox(QWidget* parent = nullptr);

    QValidator::State validate(QString& text, int& cursor) const override;
};
