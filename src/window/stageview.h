#pragma once

#include "model/stage.h"
#include "window/stageplots.h"
#include "window/stagereadouts.h"
#include "window/stageswitch.h"
#include "window/statisticsoverlay.h"

#include <QList>

#include <array>

class QColor;
class QLabel;
struct UnitChoice;

/// The display of one stage: its plots, readouts, switch and statistics, and the labels that name
/// the unit and the axes.
class StageView final
{
public:
    /// The widgets of the form that belong to the stage. They have to live longer than the view.
    struct Widgets
    {
        StagePlots::Layouts plots;
        StageReadouts::Numbers numbers;
        StageReadouts::BarLayouts bars;
        QPushButton& stabilisation;
        QLabel& activeIcon;
        QLabel& activeText;
        QCheckBox& statisticsBox;
        /// Shows the unit in use and is where it is read back from.
        QLabel& unitLabel;
        QLabel& xLabel;
        QLabel& yLabel;
        QLabel& positionXLabel;
        QLabel& positionYLabel;
        QLabel& xAxisLabel;
        QLabel& yAxisLabel;
        QLabel& intensityAxisLabel;
        /// What is visible only while exactly one system is displayed.
        QList<QWidget*> singleSystemWidgets;
    };

    /// Plots and bars are made as children of `parent`.
    StageView(Stage stage, QWidget& parent, const Widgets& widgets);
    StageView(const StageView&) = delete;
    StageView& operator=(const StageView&) = delete;

    Stage stage() const { return ownStage; }
    StagePlots& plots() { return stagePlots; }
    const StagePlots& plots() const { return stagePlots; }
    StageReadouts& readouts() { return stageReadouts; }
    StageSwitch& stabilisation() { return stageSwitch; }
    StatisticsOverlay& statistics() { return overlay; }

    /// Shows positions in the unit and range of `choice`, and empties the plots for it. False if
    /// that changes nothing: the stage shows them already, or no system is displayed whose unit
    /// could count.
    bool showUnit(const UnitChoice& choice, bool anySystemDisplayed);
    /// Whether all displayed systems show this stage in one length unit.
    bool unitsAgree() const { return agreement; }
    QString unitText() const;

    void setSingleSystemVisible(bool visible);
    /// Colours the names at the axes like the curves that they stand for.
    void setAxisColors(const QColor& x, const QColor& y, const QColor& intensity);

private:
    Stage ownStage;
    Widgets widgets;
    StagePlots stagePlots;
    StageReadouts stageReadouts;
    StageSwitch stageSwitch;
    StatisticsOverlay overlay;
    bool agreement = true;
};

/// Stage 1 and 2.
using Stages = std::array<StageView, 2>;
