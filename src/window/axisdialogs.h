#pragma once

#include "model/detector.h"
#include "window/axisclicks.h"

class PlotFrame;
class RescaleDialog;
class RescaleTimeAxisDlg;

/// The dialogs that ask for new limits of the axes that are clicked: one for positions and
/// intensities, one for times. It changes no axis itself.
class AxisDialogs final : public QObject
{
    Q_OBJECT

public:
    /// Stages and frame have to live longer; the dialogs are children of `window`.
    AxisDialogs(const Stages& stages, const PlotFrame& frame, QWidget& window);

    /// Asks for limits of axis 1, 2, 5 or 6, beginning with `max` and `min`. Does nothing for other
    /// axes.
    void askForValues(int axisId, double max, double min);
    /// Asks for limits of axis 3 or 4, in seconds. Does nothing for other axes.
    void askForTimes(int axisId, int minS, int maxS);
    /// Names the unit of a stage's positions.
    void showUnit(PositionUnit unit, Stage stage);

signals:
    void valuesChosen(int axisId, double min, double max, bool alsoOtherStage);
    void timesChosen(int axisId, int minS, int maxS, bool alsoOtherStage);

private:
    void askFor(int axisId);

    const Stages& stages;
    const PlotFrame& frame;
    AxisClicks clicks;
    // Children of the window.
    RescaleDialog* valueDialog;
    RescaleTimeAxisDlg* timeDialog;
};
