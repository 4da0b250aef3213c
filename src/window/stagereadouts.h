#pragma once

#include "model/stage.h"
#include "model/stagevalues.h"
#include "window/readoutaverage.h"

class QHBoxLayout;
class QLCDNumber;
class QWidget;
class ThermoSlider;

/// The numbers and the piezo bars of one stage. They stand for a single system.
class StageReadouts final
{
public:
    struct Numbers
    {
        QLCDNumber& x;
        QLCDNumber& y;
        QLCDNumber& intensity;
    };
    /// Where the bars are put.
    struct BarLayouts
    {
        QHBoxLayout& x;
        QHBoxLayout& y;
    };

    /// Dresses the numbers and makes the bars, which belong to `parent`. The stage's number ends
    /// their object names. All widgets have to live longer than this.
    StageReadouts(Stage stage, const Numbers& numbers, const BarLayouts& layouts, QWidget& parent);
    StageReadouts(const StageReadouts&) = delete;
    StageReadouts& operator=(const StageReadouts&) = delete;

    /// Takes a sample into the means; `position` is in the unit of the stage. Shows nothing yet: a
    /// tick shows its last sample alone.
    void take(const QPointF& position, const StageValues& values,
              std::size_t averagedSamples = ReadoutAverage::usualLength);
    /// Shows the means over the latest samples, positions with `decimals` behind the point, and the
    /// piezo drives of the last one.
    void show(int decimals);
    /// The next sample begins a new mean.
    void clearAverages();
    /// Shows 0 everywhere.
    void reset();

private:
    Numbers numbers;
    ThermoSlider& barX;
    ThermoSlider& barY;
    ReadoutAverage averageX;
    ReadoutAverage averageY;
    ReadoutAverage averageI;
    StageValues latest;
};
