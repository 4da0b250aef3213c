#include "window/axisclicks.h"

#include "plots/genericplot.h"

#include <QMouseEvent>
#include <qwt_scale_widget.h>

namespace {

bool isPress(const QEvent& event)
{
    if (event.type() != QEvent::MouseButtonPress && event.type() != QEvent::MouseButtonDblClick)
        return false;
    return static_cast<const QMouseEvent&>(event).button() == Qt::LeftButton;
}

} // namespace

AxisClicks::AxisClicks(const Stages& stages)
{
    for (std::size_t i = 0; i < stages.size(); ++i) {
        GenericPlot& position = stages[i].plots().position();
        GenericPlot& intensity = stages[i].plots().intensity();
        watch(*position.axisWidget(QwtPlot::yLeft), {AxisKind::Position, i});
        watch(*position.axisWidget(QwtPlot::xTop), {AxisKind::Time, i});
        watch(*intensity.axisWidget(QwtPlot::yLeft), {AxisKind::Intensity, i});
        watch(*intensity.axisWidget(QwtPlot::xBottom), {AxisKind::Time, i});
    }
}

void AxisClicks::watch(QwtScaleWidget& scale, const StageAxis& axis)
{
    axisIds.insert(&scale, idOfAxis(axis));
    scale.setCursor(Qt::PointingHandCursor);
    scale.installEventFilter(this);
}

bool AxisClicks::eventFilter(QObject* object, QEvent* event)
{
    const auto axis = axisIds.constFind(object);
    if (axis == axisIds.constEnd() || !isPress(*event))
        return QObject::eventFilter(object, event);
    emit clicked(*axis);
    return true;
}
