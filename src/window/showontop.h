#pragma once

#include <QWidget>

/// Shows a dialog in front of everything else and gives it the keyboard, also if it is open.
inline void showOnTop(QWidget& dialog)
{
    dialog.show();
    dialog.raise();
    dialog.activateWindow();
}
