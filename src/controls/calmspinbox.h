#pragma once

#include "controls/calmwheel.h"

#include <QSpinBox>

/// A whole number that reads the same under every locale. The wheel changes it only while it has
/// the focus, so that scrolling past it changes nothing.
class CalmSpinBox final : public CalmWheel<QSpinBox>
{
    Q_OBJECT

public:
    explicit CalmSpinBox(QWidget* parent = nullptr);
};
