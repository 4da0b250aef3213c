#pragma once

#include <QPointF>
#include <QRect>

#include <limits>

class QwtScaleMap;

/// The part of a plot, in its units, within which dots have come or gone.
class ChangedArea final
{
public:
    /// A coordinate that is NaN changes nothing.
    void include(const QPointF& point)
    {
        left = point.x() < left ? point.x() : left;
        right = point.x() > right ? point.x() : right;
        least = point.y() < least ? point.y() : least;
        greatest = point.y() > greatest ? point.y() : greatest;
    }
    void clear() { *this = ChangedArea(); }

    /// The places of a canvas that show the area and up to `reach` places around it, within
    /// `bounds`. Empty if none of them does.
    QRect places(const QwtScaleMap& xMap, const QwtScaleMap& yMap, int reach,
                 const QRect& bounds) const;

private:
    static constexpr double infinity = std::numeric_limits<double>::infinity();

    double left = infinity;
    double right = -infinity;
    double least = infinity;
    double greatest = -infinity;
};
