#pragma once

#include <QPointer>
#include <qwt_plot.h>
#include <qwt_plot_zoomer.h>

class ScrollBar;

/// A rubber-band zoomer with two scroll bars on the canvas while the plot is zoomed. The axes xTop
/// and yRight are hidden for that time, to make room for the bars. The bars and the corner widget
/// between them are created on first use and owned by the canvas.
class ScrollZoomer : public QwtPlotZoomer
{
    Q_OBJECT

public:
    /// On the side of the zoomed axis, or on the opposite side.
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

    /// Null until it is created by the first zoom that needs it.
    ScrollBar* horizontalScrollBar() const;
    ScrollBar* verticalScrollBar() const;
    QWidget* cornerWidget() const;
    /// Takes ownership of the widget and deletes the previous one.
    virtual void setCornerWidget(QWidget* widget);

    /// The axis on the opposite side of the plot; a value that is no axis is returned unchanged.
    static int oppositeAxis(int axis);

    bool eventFilter(QObject* object, QEvent* event) override;

protected:
    /// Creates the bar if it does not exist.
    virtual ScrollBar* scrollBar(Qt::Orientation orientation);
    /// Shows, hides and sets the bars as the current zoom requires.
    virtual void updateScrollBars();
    /// Places the bars and the corner in the canvas rectangle.
    virtual void layoutScrollBars(const QRect& rect);
    void rescale() override;

    bool needScrollBar(Qt::Orientation orientation) const;

private slots:
    void scrollBarMoved(Qt::Orientation orientation, double min, double max);

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
    /// The plot's layout flags at the time when the zoom was entered, to restore them later.
    bool alignCanvasToScales[QwtPlot::axisCnt] = {};
};
