#pragma once

#include "plots/genericplot.h"
#include "plots/rescaledialog.h"
#include "plots/rescaletimeaxisdlg.h"
#include "support/userinput.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "window/mainwindow.h"

#include <QApplication>
#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QWindow>
#include <QtTest>
#include <qwt_scale_widget.h>

/// An axis that can be clicked, and the number that stands for it.
struct ClickableAxis
{
    int axisId;
    const char* plotKind;
    int stage;
    QwtPlot::Axis side;
    const char* title;
};

constexpr ClickableAxis clickableAxes[] = {
    {1, "positionPlot", 1, QwtPlot::yLeft, "Stage 1: Rescale x/y axis"},
    {2, "positionPlot", 2, QwtPlot::yLeft, "Stage 2: Rescale x/y axis"},
    {3, "positionPlot", 1, QwtPlot::xTop, "Stage 1:  Rescale Time Axis"},
    {3, "intensityPlot", 1, QwtPlot::xBottom, "Stage 1:  Rescale Time Axis"},
    {4, "positionPlot", 2, QwtPlot::xTop, "Stage 2:  Rescale Time Axis"},
    {4, "intensityPlot", 2, QwtPlot::xBottom, "Stage 2:  Rescale Time Axis"},
    {5, "intensityPlot", 1, QwtPlot::yLeft, "Stage 1: Rescale i axis"},
    {6, "intensityPlot", 2, QwtPlot::yLeft, "Stage 2: Rescale i axis"},
};

/// The real window, whose axes are clicked, and the dialogs that this opens.
class AxisBench final
{
public:
    explicit AxisBench(int controllers = 0)
        : fixture(controllers)
    {}

    bool open()
    {
        if (!fixture.open())
            return false;
        values = fixture.window().findChild<RescaleDialog*>();
        times = fixture.window().findChild<RescaleTimeAxisDlg*>();
        return values && times;
    }

    void scrollTo(QWidget& widget) const
    {
        fixture.find<QScrollArea>("scrollArea")->ensureWidgetVisible(&widget);
        QCoreApplication::processEvents();
    }
    /// The scale of an axis, scrolled into sight.
    QwtScaleWidget& scale(const ClickableAxis& axis) const
    {
        QwtScaleWidget* found = fixture.plot(axis.plotKind, axis.stage).axisWidget(axis.side);
        scrollTo(*found);
        return *found;
    }
    /// The first one with that number.
    QwtScaleWidget& scale(int axisId) const
    {
        const auto* found =
            std::find_if(std::begin(clickableAxes), std::end(clickableAxes),
                         [axisId](const ClickableAxis& axis) { return axis.axisId == axisId; });
        return scale(*found);
    }
    /// A left click on the axis opens its dialog; false if it does not.
    bool clickAxis(int axisId) const
    {
        return user::click(&scale(axisId)) && shown() && activate(*shown());
    }

    /// The dialog that is open; null if none is, or both.
    QDialog* shown() const
    {
        if (values->isVisible() == times->isVisible())
            return nullptr;
        return values->isVisible() ? static_cast<QDialog*>(values) : times;
    }
    bool isNoneShown() const { return !values->isVisible() && !times->isVisible(); }
    /// What the fields of the open dialog say: "lower .. upper".
    QString limitsShown() const
    {
        if (shown() == values)
            return values->findChild<QDoubleSpinBox*>("doubleSpinBox_LowerBound")->text() + " .. "
                   + values->findChild<QDoubleSpinBox*>("doubleSpinBox_UpperBound")->text();
        return times->findChild<QLineEdit*>("lineEdit_LowerTime")->text() + " .. "
               + times->findChild<QLineEdit*>("lineEdit_UpperTime")->text();
    }

    /// Keys for the dialog that is open.
    void press(Qt::Key key) const { QTest::keyClick(shown()->windowHandle(), key); }
    void type(const QString& keys) const
    {
        for (const QChar key : keys)
            QTest::keyClick(shown()->windowHandle(), key.toLatin1());
    }

    WindowFixture fixture;
    RescaleDialog* values = nullptr;
    RescaleTimeAxisDlg* times = nullptr;

private:
    static bool activate(QWidget& dialog)
    {
        QApplication::setActiveWindow(&dialog);
        return QTest::qWaitForWindowActive(&dialog);
    }
};
