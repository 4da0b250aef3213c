#pragma once

#include <QPoint>
#include <QSize>
#include <QString>

#include <functional>

class MainWindow;

/// Start and end of the process.
namespace startup {

/// Called with the window once it is shown and before events are processed.
using WindowHook = std::function<void(MainWindow&)>;

/// Runs the application and returns its exit status.
int run(int argc, char** argv, const WindowHook& whenShown = {});

// The steps of `run`, in their order. They need no application object but the box that the second
// one may show, for which it makes one and destroys it again.

/// The environment's "HOME"; without it the home directory of the user database, and without that
/// the current directory.
QString homeDirectory();
/// Makes "Lumetra" in the home directory the configuration directory, with "Data" in it. If that
/// can not be created it says so in a box and goes on.
void prepareConfigDir(int argc, char** argv);
/// Threads for the OpenMP runtime on a machine of `processors`: from 8 on one is left free. 0
/// leaves the runtime's own number.
int workerThreads(int processors);

/// The wanted size, or the available one if that is too small in either direction.
QSize windowSize(const QSize& wanted, const QSize& available);
/// Puts a window in the middle of an area that begins at 0,0; left of it or above if it is larger.
QPoint windowCorner(const QSize& window, const QSize& available);

} // namespace startup
