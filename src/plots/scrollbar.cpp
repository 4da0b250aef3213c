#include "plots/scrollbar.h"

#include <QSignalBlocker>
#include <QStyle>
#include <QStyleOptionSlider>

ScrollBar::ScrollBar(QWidget* parent)
    : ScrollBar(Qt::Vertical, parent)
{}

ScrollBar::ScrollBar(Qt::Orientation orientation, QWidget* parent)
    : QScrollBar(orientation, parent)
{
    ticks.inverted = orientation == Qt::Vertical;
    connect(this, &QScrollBar::valueChanged, this, &ScrollBar::catchValueChanged);
    connect(this, &QScrollBar::sliderMoved, this, &ScrollBar::catchSliderMoved);
}

ScrollBar::ScrollBar(Qt::Orientation orientation, double minBase, double maxBase, QWidget* parent)
    : ScrollBar(orientation, parent)
{
    ScrollBar::setBase(minBase, maxBase);
    ScrollBar::moveSlider(minBase, maxBase);
}

void ScrollBar::setInverted(bool inverted)
{
    if (ticks.inverted == inverted)
        return;
    ticks.inverted = inverted;
    moveSlider(minSliderValue(), maxSliderValue());
}

void ScrollBar::setBase(double min, double max)
{
    if (min == ticks.base.min && max == ticks.base.max)
        return;
    ticks.base = {min, max};
    moveSlider(minSliderValue(), maxSliderValue());
}

void ScrollBar::moveSlider(double min, double max)
{
    const SliderTicks slider = ticks.sliderFor({min, max});
    const QSignalBlocker blocker(this);
    setRange(slider.minimum, slider.maximum);
    setSingleStep(slider.singleStep);
    setPageStep(slider.pageStep);
    setSliderPosition(slider.position);
}

double ScrollBar::minSliderValue() const
{
    return ticks.sliderRange(value(), pageStep()).min;
}

double ScrollBar::maxSliderValue() const
{
    return ticks.sliderRange(value(), pageStep()).max;
}

int ScrollBar::extent() const
{
    QStyleOptionSlider option;
    initStyleOption(&option);
    return style()->pixelMetric(QStyle::PM_ScrollBarExtent, &option, this);
}

void ScrollBar::catchValueChanged(int value)
{
    const PlotSpan shown = ticks.sliderRange(value, pageStep());
    emit valueChanged(orientation(), shown.min, shown.max);
}

void ScrollBar::catchSliderMoved(int value)
{
    const PlotSpan shown = ticks.sliderRange(value, pageStep());
    emit sliderMoved(orientation(), shown.min, shown.max);
}
