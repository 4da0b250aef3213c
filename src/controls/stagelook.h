#pragma once

#include <QPalette>
#include <QPixmap>
#include <QSize>

/// How the state of a stage looks in every window.

/// The palette of a button that switches a stabilisation.
QPalette stabilisationPalette(bool on);

/// The light of a stage. `size` is in logical pixels; the picture is sharp on a screen of twice the
/// density, too, if the application uses pixmaps of high density.
QPixmap stageLight(bool active, QSize size);
