#pragma once

/// The limits of an axis, as a dialog asks for them: what was typed is repaired, not refused.
namespace axislimits {

struct Values
{
    double lower;
    double upper;
};

struct Seconds
{
    int lower;
    int upper;
};

/// What the limits of an axis of values are apart at least, in units of the axis.
constexpr double leastSpan = 0.001;
/// The same for time axes.
constexpr int leastSpanS = 1;

/// The smaller number becomes the lower limit. Where the two are closer than `leastSpan`, the upper
/// limit moves up.
Values ofValues(double lower, double upper);
/// An upper limit that is not above the lower one becomes `leastSpanS` more than that. Crossed
/// times are not exchanged, unlike crossed values.
Seconds ofTimes(int lower, int upper);

} // namespace axislimits
