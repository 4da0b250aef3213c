#pragma once

#include "paramsbench.h"

#include <QDoubleSpinBox>
#include <QPushButton>

/// What Set & Hold of a stage is expected to find, send and ask.

/// The ending of the names of a stage's controls.
inline QString endingOf(Stage stage)
{
    return stage == Stage::One ? QString() : QStringLiteral("_2");
}

inline QString setButton(Stage stage)
{
    return "pushButton_SetHold" + endingOf(stage);
}

inline bool isSetEnabled(const ParamsBench& bench, Stage stage)
{
    return bench.find<QPushButton>(setButton(stage)).isEnabled();
}

/// Whether the controller holds the stage at a position.
inline bool isHeld(const ParamsBench& bench, Stage stage)
{
    return bench.link.controller.stage(numberOf(stage)).held;
}

inline QByteArray holdCommand(Stage stage)
{
    return QByteArray("SSH").append(char(numberOf(stage))).append(';');
}

/// What is sent for Set. The first stage reads the position before, the second behind it.
inline QByteArrayList holding(Stage stage)
{
    if (stage == Stage::One)
        return {"S1S;", holdCommand(stage)};
    return {holdCommand(stage), "S1S;"};
}

/// What firmware above 30 is asked when the dialog is read.
inline QByteArrayList reading()
{
    return {"GSF;",      "S1S;",     "GAI\x01x;", "GAI\x01y;", "GAI\x02x;",
            "GAI\x02y;", "GPF\x01;", "GPF\x02;",  "GDS\x01;",  "GDS\x02;"};
}
