#pragma once

#include <QPointer>
#include <qwt_plot.h>
#include <qwt_plot_zoomer.h>

class ScrollBar;

/// A rubber-band zoomer with two scroll bars on the canvas while the plot is zoomed. The axes xTop
/// and yRight give their room to the bars for that time. The bars and the corner widget between
/// them are made on first need and belong to the canvas.
class ScrollZoomer : public QwtPlotZoomer
{
    Q_OBJECT

public:
    /// On the side of the zoomed axis, or on the side across.
    enum ScrollBarPosition {
        AttachedToScale = 0,
        OppositeToScale = 1,
    };

    explicit ScrollZoomer(QWidget* canvas);
    ~ScrollZoomer() override;

    Qt::ScrollBarPolicy hScrollBarMode() const { return hScrollData.mode; }
    Qt::ScrollBarPolicy vScrollBarMode() const { return vScrollData.mode; }
    void setHScrollBarMode(Qt::ScrollBarPolicy mode) { setMode(Qt::Horizontal, mode); }
    void setVScrollBarMode(Qt::ScrollBarPolicy mode) { setMode(Qt::Vertical, mode); }

    ScrollBarPosition hScrollBarPosition() const { return hScrollData.position; }
    ScrollBarPosition vScrollBarPosition() const { return vScrollData.position; }
    void setHScrollBarPosition(ScrollBarPosition position)
    {
        setPosition(Qt::Horizontal, position);
    }
    void setVScrollBarPosition(ScrollBarPosition position) { setPosition(Qt::Vertical, position); }

    /// Null before first need.
    ScrollBar* horizontalScrollBar() const;
    ScrollBar* verticalScrollBar() const;
    QWidget* cornerWidget() const;
    /// Takes the widget over and deletes the one before.
    virtual void setCornerWidget(QWidget* widget);

    /// The axis across the plot; a value that is no axis is returned as it is.
    static int oppositeAxis(int axis);

    bool eventFilter(QObject* object, QEvent* event) override;

protected:
    /// Makes the bar if it does not exist.
    virtual ScrollBar* scrollBar(Qt::Orientation orientation);
    /// Brings the bars in line with the zoom stack.
    virtual void updateScrollBars();
    /// Places the bars and the corner in the canvas rectangle.
    virtual void layoutScrollBars(const QRect& rect);
    void rescale() override;

    bool needScrollBar(Qt::Orientation orientation) const;

private slots:
    void scrollBarMoved(Qt::Orientation o, double min, double max);

private:
    struct ScrollData
    {
        QPointer<ScrollBar> scrollBar;
        ScrollBarPosition position = OppositeToScale;
        Qt::ScrollBarPolicy mode = Qt::ScrollBarAsNeeded;
    };

    ScrollData& scrollData(Qt::Orientation orientation);
    const ScrollData& scrollData(Qt::Orientation orientation) const;
    void setMode(Qt::Orientation orientation, Qt::ScrollBarPolicy mode);
    void setPosition(Qt::Orientation orientation, ScrollBarPosition position);

    int zoomedAxis(Qt::Orientation orientation) const;
    int scrollBarAxis(Qt::Orientation orientation) const;
    QPalette plotPalette() const;
    bool isShown(const ScrollBar* bar) const;
    void showScrollBar(Qt::Orientation orientation);
    void hideScrollBar(Qt::Orientation orientation);
    void growCanvasMargin(int axis, int pixels);
    void updateScrollBar(Qt::Orientation orientation);
    void updateCorner();

    void enterZoom();
    void leaveZoom();

    QPointer<QWidget> corner;
    ScrollData hScrollData;
    ScrollData vScrollData;
    bool inZoom = false;
    /// As they were when the zoom was entered.
    bool alignCanvasToScales[QwtPlot::axisCnt] = {};
};
