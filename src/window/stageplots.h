#pragma once

#include "model/stage.h"
#include "window/decimation.h"

#include <QPointF>
#include <QtGlobal>

class GenericPlot;
class QBoxLayout;
class QWidget;
struct SystemColors;

/// The three plots of one stage: pointing, position over time, intensity over time. All displayed
/// systems share them; system n has curve n in the pointing and the intensity plot, and the curves
/// 2n for x and 2n + 1 for y in the position plot. The common detectors that are shown have curves
/// of the same kind behind those of all systems.
///
/// The time plots are swept: when a sweep is full they are emptied, and begin anew.
class StagePlots final
{
public:
    /// Where the plots are put.
    struct Layouts
    {
        QBoxLayout& pointing;
        QBoxLayout& position;
        QBoxLayout& intensity;
    };

    static constexpr int timeAxisMinS = 0;
    static constexpr int timeAxisMaxS = 10;
    static constexpr double intensityMinV = 0.0;
    static constexpr double intensityMaxV = 8.0;

    /// The stage's number ends the plots' object names. The plots belong to `parent`, which has to
    /// live longer than this.
    StagePlots(Stage stage, QWidget& parent, const Layouts& layouts);
    StagePlots(const StagePlots&) = delete;
    StagePlots& operator=(const StagePlots&) = delete;

    GenericPlot& pointing() const { return *pointingPlot; }
    GenericPlot& position() const { return *positionPlot; }
    GenericPlot& intensity() const { return *intensityPlot; }

    /// Adds the curves of a system; `index` is the number of systems so far. What follows moves on.
    void addCurves(int index);
    void removeCurves(int index);
    void clearCurves(int index);
    void clearAllCurves();
    /// Takes effect with the next points.
    void setCurveColors(int index, const SystemColors& colors);

    /// `timeMs` is that of the sample, `intensityV` in volts.
    void appendTimePoints(int index, quint64 timeMs, const QPointF& position, double intensityV,
                          TimeSteps steps = TimeSteps::Milliseconds);
    void appendPointingPoint(int index, const QPointF& position);
    /// Begins a new sweep at `timeMs` if the present one is full by then, or began later.
    void wrapSweep(quint64 timeMs);
    /// Makes `timeMs` the time 0 of the time plots.
    void setOrigin(quint64 timeMs) { originMs = timeMs; }
    /// Every how many samples the time plots take a point; at least 1.
    int decimation(int samplingRateHz) const;

    /// Sets the position range of both position axes and takes the pointing plot's zoom back.
    void setPositionRange(double max, double min);
    double positionMax() const { return rangeMax; }
    double positionMin() const { return rangeMin; }
    void rescalePosition(double min, double max);
    void rescaleIntensity(double min, double max);
    /// Seconds. The length of a sweep follows `maxS` only.
    void rescaleTime(int minS, int maxS);
    double timeWindowMs() const { return sweepMs; }
    void resetPointingZoom();
    /// Gives the position plot its usual look and axes.
    void dressPositionPlot();

    /// Replots those that have new points, scales or lines.
    void replot();

private:
    GenericPlot* pointingPlot;
    GenericPlot* positionPlot;
    GenericPlot* intensityPlot;

    double rangeMax = 5.0;
    double rangeMin = -5.0;
    double sweepMs = timeAxisMaxS * 1000.0;
    quint64 originMs = 0;
};
