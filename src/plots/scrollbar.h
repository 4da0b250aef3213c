#pragma once

#include "plots/scrollticks.h"

#include <QScrollBar>

/// A scroll bar in plot coordinates: its ends are the base, its slider is the visible span.
class ScrollBar : public QScrollBar
{
    Q_OBJECT

public:
    explicit ScrollBar(QWidget* parent = nullptr);
    explicit ScrollBar(Qt::Orientation orientation, QWidget* parent = nullptr);
    /// Shows the whole base.
    ScrollBar(Qt::Orientation orientation, double minBase, double maxBase,
              QWidget* parent = nullptr);

    /// The slider of an inverted bar moves down or right for falling values. Vertical bars are
    /// inverted by default.
    void setInverted(bool inverted);
    bool isInverted() const { return ticks.inverted; }

    double minBaseValue() const { return ticks.base.min; }
    double maxBaseValue() const { return ticks.base.max; }
    double minSliderValue() const;
    double maxSliderValue() const;

    /// Thickness of the bar in pixels.
    int extent() const;

signals:
    void sliderMoved(Qt::Orientation orientation, double min, double max);
    void valueChanged(Qt::Orientation orientation, double min, double max);

public slots:
    /// Sets the plot coordinates at the bar's ends. The slider stays where it is on the bar, so it
    /// shows another span.
    virtual void setBase(double min, double max);
    /// Shows the span from `min` to `max` without a signal.
    virtual void moveSlider(double min, double max);

private slots:
    void catchValueChanged(int value);
    void catchSliderMoved(int value);

private:
    ScrollTicks ticks;
};
