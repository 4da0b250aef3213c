#include "plots/scrollticks.h"

#include <QtGlobal>

namespace {

/// A page is scrolled in this many single steps, as far as the ticks reach.
constexpr int stepsPerPage = 200;

} // namespace

int ScrollTicks::mapToTick(double value) const
{
    return static_cast<int>((value - base.min) / (base.max - base.min) * baseTicks);
}

double ScrollTicks::mapFromTick(int tick) const
{
    return tick * (base.max - base.min) / baseTicks + base.min;
}

PlotSpan ScrollTicks::sliderRange(int value, int pageStep) const
{
    const int middle = inverted ? baseTicks - value : value;
    const int half = pageStep / 2;
    return {mapFromTick(middle - half), mapFromTick(middle + half)};
}

SliderTicks ScrollTicks::sliderFor(const PlotSpan& visible) const
{
    const double length = visible.max - visible.min;
    const int page = qRound(length / (base.max - base.min) * baseTicks);
    const int middle = mapToTick(visible.min + length * 0.5);

    SliderTicks slider;
    slider.minimum = page / 2;
    slider.maximum = baseTicks - page / 2;
    slider.singleStep = page < stepsPerPage ? 1 : page / stepsPerPage;
    slider.pageStep = page;
    slider.position = inverted ? baseTicks - middle : middle;
    return slider;
}
