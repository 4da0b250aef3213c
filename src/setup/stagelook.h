#pragma once

#include <QPalette>
#include <QPixmap>
#include <QSize>

/// How the state of a stage looks in every window.

/// Palettes of a button that switches a stabilisation which is on or off.
QPalette onPalette();
QPalette offPalette();

/// The light of a stage that is active or not. `size` is in logical pixels; the picture is sharp on
/// a screen of twice the density, too, if the application uses pixmaps of high density.
QPixmap light(bool active, QSize size);
