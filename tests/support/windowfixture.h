#pragma once

#include "emulator/emulatorhost.h"
#include "model/connectionsettings.h"

#include <QList>
#include <QTemporaryDir>
#include <QVector>

#include <functional>
#include <memory>
#include <vector>

class Connection;
class GenericPlot;
class MainWindow;
class QPointF;
class QwtPlotItem;

/// The real window over emulated controllers, in a configuration directory of its own.
///
/// The window ticks by itself only while events are taken: 1 s after it was made for the first
/// time, then at its update rate. A test that waits with `waitWithoutEvents` and calls `tick`
/// decides alone which samples come into a tick.
class WindowFixture final
{
public:
    /// Wait of the connections that `registerSystem` makes; a reply may take twice as long.
    static constexpr int shortTimeoutMs = 300;

    explicit WindowFixture(int controllers = 0, const emulator::ControllerOptions& options = {});
    /// Closes the window and ends the controllers.
    ~WindowFixture();
    WindowFixture(const WindowFixture&) = delete;
    WindowFixture& operator=(const WindowFixture&) = delete;

    /// Controllers have addresses that no other test process uses.
    emulator::ControllerHandle addController(const emulator::ControllerOptions& options = {});
    /// Adds a controller at the address of controller `number`, at a port of its own.
    emulator::ControllerHandle addNeighbour(int number);
    emulator::ControllerHandle controller(int number = 0) const;

    /// What the setup file would hold of a controller, marked for connecting.
    ConnectionSettings record(int number = 0) const;
    /// Writes the default setup file. Before `open`.
    bool writeSetupFile(const QList<ConnectionSettings>& records);

    /// Makes the window and shows it with 1280 x 960. With a setup file its systems are connected
    /// with real waits.
    bool open();
    /// Destroys the window.
    void destroyWindow();
    bool isOpen() const { return mainWindow != nullptr; }
    MainWindow& window() const { return *mainWindow; }

    /// Connects to a controller, identifies it and gives the connection to the window, as the
    /// connection dialog does. The wire log begins behind that.
    bool registerSystem(int number = 0, int timeoutMs = shortTimeoutMs);
    bool registerSystem(const ConnectionSettings& record, int number,
                        int timeoutMs = shortTimeoutMs);
    /// `open` and `registerSystem` for all controllers.
    bool openWithSystems();
    Connection& connection(int index = 0) const;

    /// A widget or object of the window by its object name; null, with a warning, if there is none.
    template <typename T>
    T* find(const char* objectName) const;

    /// Clicks a widget of the window, a button of the tool bar, or sets a counter.
    bool click(const char* objectName) const;
    bool clickAction(const char* actionName) const;
    bool type(const char* counterName, const QString& text) const;

    /// One display tick, now.
    void tick() const;
    /// Ticks until the condition holds; takes events in between.
    bool tickUntil(const std::function<bool()>& condition, int limitMs = 10000) const;

    GenericPlot& plot(const char* kind, int stage) const;
    GenericPlot& pointingPlot(int stage) const { return plot("osciPlot", stage); }
    GenericPlot& positionPlot(int stage) const { return plot("positionPlot", stage); }
    GenericPlot& intensityPlot(int stage) const { return plot("intensityPlot", stage); }

    /// Text in the corner of a pointing plot; null while it is not shown.
    QString statisticsText(int stage) const;
    /// The cross on a pointing plot; null while it is not shown.
    const QwtPlotItem* targetCross(int stage) const;

private:
    QObject* findObject(const char* objectName) const;

    QTemporaryDir home;
    emulator::EmulatorHost host;
    std::vector<emulator::ControllerHandle> controllers;
    std::unique_ptr<MainWindow> mainWindow;
};

/// Waits until the condition holds, without taking events.
bool waitWithoutEvents(const std::function<bool()>& condition, int limitMs = 10000);

/// The points of a curve, oldest first.
QVector<QPointF> pointsOf(const GenericPlot& plot, int curve);

template <typename T>
T* WindowFixture::find(const char* objectName) const
{
    T* found = qobject_cast<T*>(findObject(objectName));
    if (!found)
        qWarning("The window has no %s of that kind", objectName);
    return found;
}
