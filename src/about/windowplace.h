#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

/// Where a window has its upper left corner to stand in the middle of an area as large as `area`.
/// The area's own corner is not added: beside a panel at the left or top edge of the screen, the
/// window stands further to the left or higher by half of the panel.
inline QPoint middlePlace(const QRect& area, const QSize& window)
{
    return {(area.width() - window.width()) / 2, (area.height() - window.height()) / 2};
}
