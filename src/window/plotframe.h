#pragma once

#include "window/axisid.h"
#include "window/stageview.h"

#include <QObject>
#include <qwt_interval.h>

class QScrollArea;

/// The axes of the plots of both stages, and the room that the plots take in the window.
class PlotFrame final : public QObject
{
    Q_OBJECT

public:
    /// What the form has around the pointing plots: the boxes of stage 1 and 2, and the area that
    /// scrolls them.
    struct Room
    {
        QWidget& box1;
        QWidget& box2;
        QScrollArea& scrollArea;
    };

    PlotFrame(Stages& stages, const Room& room);

    /// What an axis shows at present, times in seconds; invalid for other numbers.
    QwtInterval limits(int axisId) const;
    /// Rescales a position or intensity axis; other numbers do nothing. With `pairCheck` the other
    /// stage follows, for positions only if it shows the same unit.
    void rescaleAxis(int axisId, double min, double max, bool pairCheck);
    /// Rescales a time axis, in seconds; other numbers do nothing. With `pairCheck` both stages
    /// follow.
    void rescaleTimeAxis(int axisId, int minS, int maxS, bool pairCheck);
    /// The time plots of a stage back to their usual axes.
    void resetTimePlots(StageView& stage);
    /// Gives the position plots their usual look.
    void dressPositionPlots();
    /// Marks zero on the position plots over `length`, in plot units.
    void drawMidLine(double length);
    /// Keeps the pointing plots square and the columns of both stages equal.
    void resizePlots();

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    Stages& stages;
    Room room;
};
