#include "plots/changedarea.h"

#include <qwt_scale_map.h>

#include <algorithm>
#include <cmath>

namespace {

struct Span
{
    int first;
    int last;
};

/// The whole places from one value to another, which a scale may turn round; nothing beyond the
/// limits, and before the first place where nothing is within them.
Span placesOf(const QwtScaleMap& map, double one, double other, int reach, Span limits)
{
    const auto [low, high] = std::minmax({map.transform(one), map.transform(other)});
    const auto within = [&](double place) {
        return int(std::clamp(place, limits.first - 1.0, limits.last + 1.0));
    };
    return {std::max(within(std::floor(low) - reach), limits.first),
            std::min(within(std::ceil(high) + reach), limits.last)};
}

} // namespace

QRect ChangedArea::places(const QwtScaleMap& xMap, const QwtScaleMap& yMap, int reach,
                          const QRect& bounds) const
{
    if (left > right || least > greatest)
        return {};
    const Span x = placesOf(xMap, left, right, reach, {bounds.left(), bounds.right()});
    const Span y = placesOf(yMap, least, greatest, reach, {bounds.top(), bounds.bottom()});
    const QRect places(QPoint(x.first, y.first), QPoint(x.last, y.last));
    return places.isValid() ? places : QRect();
}
