#pragma once

class QWidget;

/// Turns the wheel of the mouse by a notch, away from the user, over the middle of a widget.
void turnWheel(QWidget& widget);
