#pragma once

#include <QFrame>

/// The three bands of a colour scale; their rectangles are in pixels of the frame.
struct ColorScaleBands
{
    QRect good;
    QRect upperLimit;
    QRect lowerLimit;
};

/// The bands for a frame of that height. Below 8 pixels all are empty.
ColorScaleBands colorScaleBands(int height);

/// The strip beside a piezo bar: green over the range that leaves room to steer, red at both ends.
class ColorScalesFrame final : public QFrame
{
    Q_OBJECT

public:
    using QFrame::QFrame;

protected:
    void paintEvent(QPaintEvent* event) override;
};
