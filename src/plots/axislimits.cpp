#include "plots/axislimits.h"

#include <algorithm>

namespace axislimits {

Values ofValues(double lower, double upper)
{
    const auto [smaller, larger] = std::minmax(lower, upper);
    const bool tooClose = larger - smaller < leastSpan;
    return {smaller, tooClose ? smaller + leastSpan : larger};
}

Seconds ofTimes(int lower, int upper)
{
    return {lower, upper > lower ? upper : lower + leastSpanS};
}

} // namespace axislimits
