#pragma once

#include "controls/calmwheel.h"

#include <QComboBox>

/// A choice that the wheel changes only while it has the focus.
class CalmComboBox final : public CalmWheel<QComboBox>
{
    Q_OBJECT

public:
    using CalmWheel::CalmWheel;
};
