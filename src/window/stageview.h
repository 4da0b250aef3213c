#pragma once

#include "model/measuresample.h"
#include "window/readoutaverage.h"

#include <QList>
#include <QString>
#include <QtGlobal>
#include <qwt_text.h>

#include <memory>

class GenericPlot;
class QCheckBox;
class QColor;
class QLabel;
class QLCDNumber;
class QPushButton;
class QWidget;
class QwtPlotShapeItem;
class QwtPlotTextLabel;
class ThermoSlider;

/// The values of one stage in a sample, in millivolts.
struct StageValues
{
    int x;
    int y;
    unsigned intensity;
    int rx;
    int ry;
};

/// `stage` is 0 or 1.
StageValues stageValues(const MeasureSample& sample, std::size_t stage);

/// The widgets of one stage, and what its display remembers. The widgets belong to the window.
struct StageView
{
    StageView();
    ~StageView();
    StageView(const StageView&) = delete;
    StageView& operator=(const StageView&) = delete;

    /// 1 or 2, as the controller counts.
    int number = 0;

    GenericPlot* osciPlot = nullptr;
    GenericPlot* positionPlot = nullptr;
    GenericPlot* intensityPlot = nullptr;
    ThermoSlider* thermoX = nullptr;
    ThermoSlider* thermoY = nullptr;
    QLCDNumber* lcdX = nullptr;
    QLCDNumber* lcdY = nullptr;
    QLCDNumber* lcdI = nullptr;

    QPushButton* stabilisation = nullptr;
    QLabel* activeIcon = nullptr;
    QLabel* activeText = nullptr;
    QCheckBox* statisticsBox = nullptr;

    /// Shows the unit in use and is where it is read back from.
    QLabel* unitLabel = nullptr;
    QLabel* xLabel = nullptr;
    QLabel* yLabel = nullptr;
    QLabel* positionXLabel = nullptr;
    QLabel* positionYLabel = nullptr;
    QLabel* xAxisLabel = nullptr;
    QLabel* yAxisLabel = nullptr;
    QLabel* iAxisLabel = nullptr;
    /// What is visible only while exactly one system is displayed.
    QList<QWidget*> singleSystemWidgets;

    QwtText statisticsText;
    // Owned here, as no plot owns what is not shown on it.
    std::unique_ptr<QwtPlotTextLabel> statisticsLabel;
    std::unique_ptr<QwtPlotShapeItem> targetCross;

    double timeWindowMs = 0.0;
    /// Position range in the unit that the stage shows.
    double positionMax = 0.0;
    double positionMin = 0.0;
    bool unitsAgree = true;
    /// Time of the sample that stands at 0 of the time plots.
    quint64 plotOriginMs = 0;

    ReadoutAverage averageX;
    ReadoutAverage averageY;
    ReadoutAverage averageI;

    /// Object name of a widget of this stage: "lcd" and "x" make "lcd1x" on stage 1.
    QString widgetName(const char* before, const char* after = "") const;

    void clearAverages();
    void clearCurves();
    void setActive(bool active);
    bool showsActive() const;
    /// Colours the names at the axes like the curves that they stand for.
    void setAxisColors(const QColor& x, const QColor& y, const QColor& intensity);
};
