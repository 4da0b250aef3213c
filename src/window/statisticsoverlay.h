#pragma once

#include "model/stage.h"
#include "window/statisticssums.h"

#include <qwt_plot_shapeitem.h>
#include <qwt_plot_textlabel.h>
#include <qwt_text.h>

class GenericPlot;
class QCheckBox;

/// The statistics text in the corner of a pointing plot and the cross over its points, and the box
/// with which the user shows them.
class StatisticsOverlay final
{
public:
    /// Plot and box have to live longer than this.
    StatisticsOverlay(Stage stage, GenericPlot& plot, QCheckBox& box);
    ~StatisticsOverlay();
    StatisticsOverlay(const StatisticsOverlay&) = delete;
    StatisticsOverlay& operator=(const StatisticsOverlay&) = delete;

    /// Enables the box; without `on` it is unchecked, too. Then shows what the box says.
    void enable(bool on);
    bool isWanted() const;
    /// Puts text and cross on the plot or takes them away, and replots.
    void show(bool on);

    /// Takes effect with the next replot.
    void setText(const QString& text);
    void moveCross(const StageFigures& figures);
    /// The text and the cross of a run without a sample.
    void clear();

private:
    void noteChange();

    GenericPlot& plot;
    QCheckBox& box;
    QwtText text;
    QwtPlotTextLabel label;
    QwtPlotShapeItem cross;
};
