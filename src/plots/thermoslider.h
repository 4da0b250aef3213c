#pragma once

#include <QRect>
#include <qwt_thermo.h>

/// A vertical bar that shows a piezo voltage from 0 to 10 V.
///
/// A new value is painted in the pipe alone, and only if it moves the level by a pixel: the scale
/// with its numbers costs many times as much, and a value comes with each display tick.
class ThermoSlider final : public QwtThermo
{
    Q_OBJECT

public:
    explicit ThermoSlider(QWidget* parent);

    void setValue(double value) override;

protected:
    void drawLiquid(QPainter* painter, const QRect& pipe) const override;
    void changeEvent(QEvent* event) override;

private:
    QRect level() const;

    /// Where the pipe was painted last. Whatever moves it asks for a painting of the whole bar.
    mutable QRect paintedPipe;
};
