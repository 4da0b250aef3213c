#include "about/linkcolor.h"

#include <QColor>
#include <QPalette>

#include <algorithm>
#include <cmath>

namespace {

/// Least contrast at which a text of normal size counts as readable.
constexpr double readableContrast = 4.5;
constexpr int mixingSteps = 10;

/// Light that a channel from 0 to 1 gives, from 0 to 1.
double light(double channel)
{
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

/// From 0 for black to 1 for white.
double luminance(const QColor& color)
{
    return 0.2126 * light(color.redF()) + 0.7152 * light(color.greenF())
           + 0.0722 * light(color.blueF());
}

/// From `from`, at a share of 0, to `to`, at a share of 1.
QColor mixed(const QColor& from, const QColor& to, double share)
{
    const auto channel = [share](double a, double b) { return a + share * (b - a); };
    return QColor::fromRgbF(channel(from.redF(), to.redF()), channel(from.greenF(), to.greenF()),
                            channel(from.blueF(), to.blueF()));
}

} // namespace

double contrastRatio(const QColor& one, const QColor& other)
{
    // What a screen reflects of the light in the room.
    constexpr double reflection = 0.05;
    const auto [darker, brighter] = std::minmax({luminance(one), luminance(other)});
    return (brighter + reflection) / (darker + reflection);
}

QColor readableLinkColor(const QPalette& palette)
{
    const QColor window = palette.color(QPalette::Window);
    const QColor text = palette.color(QPalette::WindowText);
    QColor color = palette.color(QPalette::Link);
    for (int step = 1; step <= mixingSteps && contrastRatio(color, window) < readableContrast;
         ++step)
        color = mixed(palette.color(QPalette::Link), text, double(step) / mixingSteps);
    return color;
}
