#pragma once

#include <QSizePolicy>
#include <QWidget>

/// Lets a widget have its room in the layout while it is hidden, too, so that nothing moves when it
/// appears.
inline void keepRoomWhenHidden(QWidget& widget)
{
    QSizePolicy policy = widget.sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    widget.setSizePolicy(policy);
}
