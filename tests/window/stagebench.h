#pragma once

#include "images/images.h"
#include "plots/curvedata.h"
#include "plots/genericplot.h"
#include "plots/thermoslider.h"
#include "window/stageview.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QFrame>
#include <QLCDNumber>
#include <QLabel>
#include <QPushButton>
#include <QVector>

/// The widgets that a form has for one stage, outside of any window.
struct StageForm
{
    StageForm()
    {
        unit.setText(QStringLiteral(" [V]"));
        stabilisation.setCheckable(true);
    }

    StageView::Widgets widgets()
    {
        return {{pointingLayout, positionLayout, intensityLayout},
                {lcdX, lcdY, lcdIntensity},
                {barXLayout, barYLayout},
                stabilisation,
                activeIcon,
                activeText,
                statisticsBox,
                unit,
                x,
                y,
                positionX,
                positionY,
                xAxis,
                yAxis,
                intensityAxis,
                {&singleFrame, &otherSingleFrame}};
    }

    QHBoxLayout pointingLayout;
    QHBoxLayout positionLayout;
    QHBoxLayout intensityLayout;
    QLCDNumber lcdX;
    QLCDNumber lcdY;
    QLCDNumber lcdIntensity;
    QHBoxLayout barXLayout;
    QHBoxLayout barYLayout;
    QPushButton stabilisation;
    QLabel activeIcon;
    QLabel activeText;
    QCheckBox statisticsBox;
    QLabel unit;
    QLabel x;
    QLabel y;
    QLabel positionX;
    QLabel positionY;
    QLabel xAxis;
    QLabel yAxis;
    QLabel intensityAxis;
    QFrame singleFrame;
    QFrame otherSingleFrame;
};

/// Both stages, without a window. Their time plots are 500 pixels wide, so that at 500 Hz they take
/// every tenth sample of their 10 s.
struct StageBench
{
    static constexpr int timePlotWidthPx = 500;

    StageBench()
    {
        for (StageView& stage : stages)
            stage.plots().position().resize(timePlotWidthPx, 100);
    }

    const ThermoSlider& bar(const char* name) const
    {
        const auto* found = parent.findChild<ThermoSlider*>(QLatin1String(name));
        Q_ASSERT(found);
        return *found;
    }

    /// Makes the pictures known before any widget asks for one.
    bool pictures = (initImages(), true);
    QWidget parent;
    std::array<StageForm, 2> forms;
    Stages stages{
        {{Stage::One, parent, forms[0].widgets()}, {Stage::Two, parent, forms[1].widgets()}}};
};

/// The points of a curve, oldest first.
inline QVector<QPointF> pointsOf(const GenericPlot& plot, int curve)
{
    return plot.curveData(curve).samples();
}
