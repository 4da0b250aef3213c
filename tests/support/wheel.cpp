#include "support/wheel.h"

#include <QCoreApplication>
#include <QWheelEvent>
#include <QWidget>

void turnWheel(QWidget& widget)
{
    constexpr int oneNotch = 120;
    const QPointF middle = QRectF(widget.rect()).center();
    QWheelEvent event(middle, widget.mapToGlobal(middle.toPoint()), {}, {0, oneNotch}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&widget, &event);
}
