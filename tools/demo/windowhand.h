#pragma once

#include <QDir>
#include <QString>

class MainWindow;
class QWidget;

/// Works the main window with the mouse, as a person does, and takes pictures of it.
class WindowHand final
{
public:
    /// `pictures` is an existing folder. The window has to live longer than the hand.
    WindowHand(MainWindow& mainWindow, const QString& pictures);

    /// Writes `name`.png, which shows the widget as it is after a moment. Ends the process if the
    /// file can not be written.
    void take(QWidget& widget, const QString& name) const;
    /// The same for the widget as it is now.
    void takeNow(QWidget& widget, const QString& name) const;

    /// Clicks the tool bar button of the action with this object name.
    void click(const char* action) const;
    void clickOn(QWidget& widget) const;
    /// Clicks on the mark of a radio button or a check box.
    void clickMark(const char* button) const;

private:
    MainWindow& window;
    QDir folder;
};
