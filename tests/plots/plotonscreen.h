#pragma once

#include "plots/genericplot.h"
#include "plots/scrollbar.h"
#include "plots/zoomer.h"

#include <QApplication>
#include <QWindow>
#include <QtTest>

/// A plot on the screen, with its zoomer, and the mouse actions of a user.
class PlotOnScreen final
{
public:
    PlotOnScreen()
    {
        plot.resize(400, 400);
        plot.show();
        shown = QTest::qWaitForWindowExposed(&plot);
        QApplication::processEvents();
    }

    ScrollBar& hBar() { return *zoomer.horizontalScrollBar(); }
    ScrollBar& vBar() { return *zoomer.verticalScrollBar(); }

    QPoint pixelAt(double x, double y) const
    {
        return QPoint(qRound(plot.transform(QwtPlot::xBottom, x)),
                      qRound(plot.transform(QwtPlot::yLeft, y)));
    }

    void press(const QPoint& onCanvas, Qt::MouseButton button = Qt::LeftButton,
               Qt::KeyboardModifiers keys = Qt::NoModifier)
    {
        QTest::mousePress(window(), button, keys, inWindow(onCanvas));
    }
    void moveTo(const QPoint& onCanvas) { QTest::mouseMove(window(), inWindow(onCanvas)); }
    void release(const QPoint& onCanvas, Qt::MouseButton button = Qt::LeftButton,
                 Qt::KeyboardModifiers keys = Qt::NoModifier)
    {
        QTest::mouseRelease(window(), button, keys, inWindow(onCanvas));
    }

    void drag(const QPoint& from, const QPoint& to, Qt::MouseButton button = Qt::LeftButton,
              Qt::KeyboardModifiers keys = Qt::NoModifier)
    {
        press(from, button, keys);
        moveTo((from + to) / 2);
        moveTo(to);
        release(to, button, keys);
        QApplication::processEvents();
    }

    /// The corners of the rubber band while it is drawn.
    QPolygon band() const { return zoomer.selection(); }

    GenericPlot plot{nullptr};
    Zoomer& zoomer = *plot.canvas()->findChild<Zoomer*>();
    bool shown = false;

private:
    QWindow* window() const { return plot.windowHandle(); }
    QPoint inWindow(const QPoint& onCanvas) const { return plot.canvas()->mapTo(&plot, onCanvas); }
};
