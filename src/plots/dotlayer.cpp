#include "plots/dotlayer.h"

#include "plots/dotcurve.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

namespace {

/// A curve has one for its marks and one for its ellipses.
constexpr std::size_t ranksPerCurve = 2;
constexpr std::size_t mostCurves = std::numeric_limits<quint16>::max() / ranksPerCurve - 1;

bool hasFewDots(const DotLayer::Member& member)
{
    return member.curve->samples().size() <= DotLayer::fewDots;
}

/// Whether the library draws the curve in a way that the layer knows.
bool isKnownKind(const DotLayer::Member& member)
{
    return !member.curve->testRenderHint(QwtPlotItem::RenderAntialiased)
           && !member.xMap.transformation() && !member.yMap.transformation()
           && DotLook::describes(*member.curve);
}

/// Pixels with the ranks of what they show.
struct Surface
{
    void stamp(const DotStamp::Shape& shape, int x, int y, quint16 rank) const
    {
        const bool isInside = x + shape.bounds.left() >= 0 && y + shape.bounds.top() >= 0
                              && x + shape.bounds.right() < width
                              && y + shape.bounds.bottom() < height;
        for (const QPoint& pixel : shape.pixels) {
            const int px = x + pixel.x();
            const int py = y + pixel.y();
            if (!isInside && (px < 0 || py < 0 || px >= width || py >= height))
                continue;
            const std::ptrdiff_t at = std::ptrdiff_t(py) * width + px;
            // Equal ranks have equal colours.
            if (ranks[at] >= rank)
                continue;
            ranks[at] = rank;
            pixels[at] = shape.color;
        }
    }

    QRgb* pixels;
    quint16* ranks;
    int width;
    int height;
};

} // namespace

// No two curves have samples of the same generation.
bool DotLayer::Painted::continuesAs(const Member& now) const
{
    return generation == now.curve->samples().generation() && isSameScale(member.xMap, now.xMap)
           && isSameScale(member.yMap, now.yMap) && look.isThatOf(*now.curve);
}

DotLayer::DotLayer(std::size_t sliceLength)
    : dotsPerSlice(sliceLength)
{}

void DotLayer::beginPicture(const QPainter& painter, const QRectF& canvasRect,
                            const std::vector<Member>& members)
{
    standsIn = false;
    added = 0;
    if (std::all_of(members.begin(), members.end(), hasFewDots) || members.size() > mostCurves
        || !std::all_of(members.begin(), members.end(), isKnownKind))
        return;
    const std::optional<CanvasPlace> newPlace = CanvasPlace::of(painter, canvasRect);
    if (!newPlace)
        return;
    const bool isContinued = continues(*newPlace, members);
    place = *newPlace;
    if (!isContinued)
        beginAnew(members);
    for (std::size_t i = curves.size(); i < members.size(); ++i)
        addMember(members[i], {});
    if (!std::all_of(curves.begin(), curves.end(),
                     [](const Painted& painted) { return painted.stamp->isPlain(); }))
        return;

    standsIn = true;
    stampNewDots();
    stampHistory();
    if (!isComplete())
        emit incomplete();
}

bool DotLayer::standsInFor(const DotCurve& curve, QPainter& painter) const
{
    if (!standsIn)
        return false;
    if (curves.front().member.curve == &curve)
        place.drawPixels(painter, picture);
    return true;
}

bool DotLayer::isComplete() const
{
    return std::all_of(curves.begin(), curves.end(),
                       [](const Painted& painted) { return painted.begin == 0; });
}

/// Curves may have come above those that were there.
bool DotLayer::continues(const CanvasPlace& newPlace, const std::vector<Member>& members) const
{
    return newPlace.meetsPixelsAs(place) && !picture.isNull() && curves.size() <= members.size()
           && std::equal(curves.begin(), curves.end(), members.begin(),
                         [](const Painted& painted, const Member& member) {
                             return painted.continuesAs(member);
                         });
}

void DotLayer::beginAnew(const std::vector<Member>& members)
{
    if (picture.size() != place.devicePixels)
        picture = QImage(place.devicePixels, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    ranks.assign(std::size_t(picture.width()) * std::size_t(picture.height()), 0);
    const std::vector<Painted> known = std::move(curves);
    curves.clear();
    for (const Member& member : members)
        addMember(member, known);
}

void DotLayer::addMember(const Member& member, const std::vector<Painted>& known)
{
    const CurveData& samples = member.curve->samples();
    curves.push_back({member, DotLook::of(*member.curve), samples.generation(),
                      stampOf(member, known), samples.size(), samples.size()});
}

/// Takes over the stamp of a curve that looked the same so far.
std::shared_ptr<const DotStamp> DotLayer::stampOf(const Member& member,
                                                  const std::vector<Painted>& known) const
{
    const auto same = std::find_if(known.begin(), known.end(), [&](const Painted& painted) {
        return painted.member.curve == member.curve && painted.look.isThatOf(*member.curve)
               && painted.stamp->grid() == place.grid;
    });
    return same != known.end() ? same->stamp
                               : std::make_shared<DotStamp>(DotLook::of(*member.curve), place.grid);
}

void DotLayer::stampNewDots()
{
    for (std::size_t i = 0; i < curves.size(); ++i) {
        Painted& painted = curves[i];
        const std::size_t size = painted.member.curve->samples().size();
        if (size - painted.end > dotsPerSlice) {
            // Too many to be stamped at once. What is there already is stamped once more.
            painted.begin = painted.end = size;
            continue;
        }
        stamp(i, painted.end, size);
        painted.end = size;
    }
}

/// Each curve gets its share of the slice, so that all of them grow backwards side by side.
void DotLayer::stampHistory()
{
    while (added < dotsPerSlice && !isComplete()) {
        const auto missing = std::count_if(curves.begin(), curves.end(),
                                           [](const Painted& p) { return p.begin > 0; });
        const std::size_t share =
            std::max<std::size_t>(1, (dotsPerSlice - added) / std::size_t(missing));
        for (std::size_t i = 0; i < curves.size() && added < dotsPerSlice; ++i) {
            const std::size_t end = curves[i].begin;
            const std::size_t begin = end - std::min(end, share);
            stamp(i, begin, end);
            curves[i].begin = begin;
        }
    }
}

// This runs for every dot, so it stays short. The library leaves out what lies beyond the canvas
// after it rounded the place.
void DotLayer::stamp(std::size_t index, std::size_t begin, std::size_t end)
{
    const Painted& painted = curves[index];
    const auto markRank = Rank(index * ranksPerCurve + 1);
    const auto ellipseRank = Rank(markRank + 1);
    const Surface surface{reinterpret_cast<QRgb*>(picture.bits()), ranks.data(), picture.width(),
                          picture.height()};
    const double left = place.canvas.left() - 1.0;
    const double top = place.canvas.top() - 1.0;
    const double right = place.canvas.right() + 1.0;
    const double bottom = place.canvas.bottom() + 1.0;
    const QPointF* const samples = painted.member.curve->samples().first();
    for (const QPointF* sample = samples + begin; sample != samples + end; ++sample) {
        const double exactX = painted.member.xMap.transform(sample->x());
        const double exactY = painted.member.yMap.transform(sample->y());
        // The comparisons are false for NaN, too.
        if (!(exactX > left && exactX < right && exactY > top && exactY < bottom))
            continue;
        const int x = qRound(exactX);
        const int y = qRound(exactY);
        if (x < place.canvas.left() || x > place.canvas.right() || y < place.canvas.top()
            || y > place.canvas.bottom())
            continue;
        const int deviceX = place.origin.x() + x * place.grid.step;
        const int deviceY = place.origin.y() + y * place.grid.step;
        const DotStamp::Shapes& shapes =
            painted.stamp->shapes(PixelGrid::phaseOf(deviceX), PixelGrid::phaseOf(deviceY));
        const int pixelX = PixelGrid::floorPixels(deviceX);
        const int pixelY = PixelGrid::floorPixels(deviceY);
        surface.stamp(shapes.mark, pixelX, pixelY, markRank);
        surface.stamp(shapes.ellipse, pixelX, pixelY, ellipseRank);
    }
    added += end - begin;
}
