#pragma once

#include "demo/windowhand.h"

#include <QElapsedTimer>

#include <vector>

class Connection;
class MainWindow;

/// Shows the running application to somebody who has no display: starts the acquisition, takes
/// pictures and tells what each system delivered.
class Demonstration final
{
public:
    /// `pictures` is an existing folder.
    Demonstration(MainWindow& mainWindow, const QString& pictures);

    /// Runs for some seconds, in which events are taken, and prints a line per system. Returns the
    /// number of systems that delivered samples.
    int run();

private:
    struct Reading
    {
        Connection* connection;
        quint64 samples;
    };

    std::vector<Reading> readings() const;
    int report(const std::vector<Reading>& before, qint64 elapsedMs) const;

    MainWindow& window;
    WindowHand hand;
};
