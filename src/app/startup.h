#pragma once

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

// The steps of `run`, in their order. They need no application object; `prepareConfigDir` makes one
// of its own for as long as it shows its message box.

/// The environment's "HOME"; without it the home directory of the user database, and without that
/// the current directory.
QString homeDirectory();
/// Makes "Lumetra" in the home directory the configuration directory, with the folder of recordings
/// in it. If the directory can not be created it says so in a box and goes on.
void prepareConfigDir(int argc, char** argv);
/// Number of threads for the OpenMP runtime on a machine with that number of processors. From 8 on,
/// one processor is left free. 0 means that the runtime's own number stays.
int workerThreads(int processors);

/// The wanted size; the available size if the wanted one exceeds it in either direction.
QSize windowSize(const QSize& wanted, const QSize& available);

} // namespace startup
