#pragma once

#include <QPoint>
#include <QString>

class QAction;
class QWidget;
class QwtPlot;

/// What a person does with mouse and keyboard. The events go through the window that holds the
/// widget, so that boxes and other widgets in front of it stop them. All return false, and say why,
/// if nobody could have done that: the widget is hidden, disabled or covered.
namespace user {

/// Clicks into the middle, or for check boxes and radio buttons on what can be ticked.
bool click(QWidget* widget);
bool click(QWidget* widget, const QPoint& where);
/// Clicks the button of an action in a tool bar.
bool clickAction(QWidget& toolBar, const char* actionName);
/// Replaces the number of a `Counter` and ends the input with Enter.
bool type(QWidget* counter, const QString& text);
/// Moves the pointer to a place in the widget without a button.
void hover(QWidget& widget, const QPoint& where);
/// Draws a rubber band over the middle of a plot's canvas.
void dragBand(const QwtPlot& plot);

} // namespace user
