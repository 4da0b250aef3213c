#pragma once

#include "window/mainwindow.h"

#include <QTemporaryDir>

#include <memory>

class GenericPlot;

/// The monitoring window on the screen, in its usual size and with an empty setup. Its own timer
/// ticks once a second at most; whoever measures ticks calls `tick`.
class BenchWindow final : public QObject
{
    Q_OBJECT

public:
    BenchWindow();

    MainWindow& window() const { return *monitor; }
    GenericPlot& plot(const char* name) const;

    /// Runs the display tick once. Paints nothing.
    void tick();
    /// Paints what has changed, which the application does when it is back in its event loop.
    void paint();
    /// How often the canvas of one of the plots was painted.
    int canvasesPainted() const { return paintCount; }

    bool eventFilter(QObject* object, QEvent* event) override;

private:
    QTemporaryDir home;
    std::unique_ptr<MainWindow> monitor;
    int paintCount = 0;
};
