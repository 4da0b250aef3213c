#pragma once

#include "plots/canvasplace.h"
#include "plots/dotstamp.h"

#include <QImage>
#include <QObject>
#include <qwt_scale_map.h>

#include <cstddef>
#include <memory>
#include <vector>

class DotCurve;

/// The picture of all dots of one plot. It is kept, so that a replot paints only the dots appended
/// since the one before, and the picture costs the same after a second and after an hour.
///
/// The picture is that of the library, to the pixel: one dot of each curve is painted by the
/// library and then stamped wherever the library would paint it. Each pixel knows the rank of what
/// it shows, so that dots of a lower curve stay below those of a higher one whichever came first.
///
/// Whatever else the picture depends on is compared by value with each replot. If any of it has
/// changed, the picture begins anew. A long history is then stamped in slices, one a replot, its
/// newest dots first; `incomplete` asks for the next replot.
///
/// The layer stands in for its curves only where this is exact, see `beginPicture`; elsewhere they
/// draw themselves. GUI thread only.
class DotLayer final : public QObject
{
    Q_OBJECT

public:
    /// A curve that is shown, and its scales.
    struct Member
    {
        const DotCurve* curve;
        QwtScaleMap xMap;
        QwtScaleMap yMap;
    };

    /// Takes one to two milliseconds.
    static constexpr std::size_t usualDotsPerSlice = 50000;
    /// Drawing up to this many dots of a curve is as fast as copying the picture.
    static constexpr std::size_t fewDots = 10;

    explicit DotLayer(std::size_t sliceLength = usualDotsPerSlice);

    /// Brings the picture up to date for what is drawn until `endPicture`. `members` are all
    /// visible curves from the lowest to the highest, with nothing else between them.
    ///
    /// The layer stands in for none of them if one is translucent, antialiased or of several
    /// colours, if `CanvasPlace` knows no place for the painter, or if they all have few dots.
    void beginPicture(const QPainter& painter, const QRectF& canvasRect,
                      const std::vector<Member>& members);
    void endPicture() { standsIn = false; }

    /// True if the curve has nothing to draw: the lowest one's call draws the dots of all.
    bool standsInFor(const DotCurve& curve, QPainter& painter) const;

    /// Dots that the last picture added, those beyond its border included.
    std::size_t dotsAdded() const { return added; }
    /// False while older dots are missing.
    bool isComplete() const;

signals:
    /// Emitted for each picture that lacks older dots.
    void incomplete();

private:
    /// What is in the picture of a curve.
    struct Painted
    {
        bool continuesAs(const Member& member) const;

        Member member;
        DotLook look;
        quint64 generation;
        std::shared_ptr<const DotStamp> stamp;
        /// The samples from the first to before the second are in the picture.
        std::size_t begin;
        std::size_t end;
    };
    using Rank = quint16;

    bool continues(const CanvasPlace& newPlace, const std::vector<Member>& members) const;
    void beginAnew(const std::vector<Member>& members);
    void addMember(const Member& member, const std::vector<Painted>& known);
    std::shared_ptr<const DotStamp> stampOf(const Member& member,
                                            const std::vector<Painted>& known) const;
    void stampNewDots();
    void stampHistory();
    void stamp(std::size_t index, std::size_t begin, std::size_t end);

    const std::size_t dotsPerSlice;

    CanvasPlace place;
    QImage picture;
    /// One for each pixel of the picture; 0 where no dot is.
    std::vector<Rank> ranks;
    std::vector<Painted> curves;

    bool standsIn = false;
    std::size_t added = 0;
};
