#pragma once

#include <QPoint>
#include <QSize>

/// Where a window has its upper left corner to stand in the middle of an area that begins at 0,0.
/// Negative if the window is larger than the area.
///
/// The available area of a screen is taken as one that begins there: beside a panel at the left or
/// top edge of the screen, the window stands further to the left or higher by half of the panel.
inline QPoint middlePlace(const QSize& area, const QSize& window)
{
    return {(area.width() - window.width()) / 2, (area.height() - window.height()) / 2};
}
