#pragma once

/// A span of plot coordinates; `min` is the larger one on an axis that runs downwards.
struct PlotSpan
{
    double min = 0.0;
    double max = 1.0;
};

/// What a scroll bar must be set to, in ticks, to show a span.
struct SliderTicks
{
    int minimum = 0;
    int maximum = 0;
    int singleStep = 0;
    int pageStep = 0;
    int position = 0;
};

/// The arithmetic between plot coordinates and the integer ticks of a scroll bar. The slider's
/// value is the middle of the visible span, and its range is shorter by half a page at each end,
/// so its full travel moves the span from one end of the base to the other.
struct ScrollTicks
{
    /// Resolution of the bar over its whole base.
    static constexpr int baseTicks = 1000000;

    /// Plot coordinates at the two ends of the bar; they must differ.
    PlotSpan base;
    bool inverted = false;

    /// Truncated towards zero.
    int mapToTick(double value) const;
    double mapFromTick(int tick) const;
    /// The span that a slider at `value` with that page step shows.
    PlotSpan sliderRange(int value, int pageStep) const;
    SliderTicks sliderFor(const PlotSpan& visible) const;
};
