#pragma once

#include "controllerprocess.h"
#include "tickwatch.h"

#include <QObject>
#include <QTimer>

class MainWindow;

struct EnduranceOptions
{
    int systems = 1;
    bool pointing = false;
    /// The run ends by itself after these; pointing mode only.
    int samplesToTake = 1000000;
    int seconds = 30;
};

/// What the process has used at a moment.
struct EnduranceState
{
    double guiCpuS = 0.0;
    double processCpuS = 0.0;
    qint64 residentBytes = 0;
    qint64 keptPoints = 0;
};

/// An acquisition of the real window at 500 samples and 100 ticks a second, watched while the
/// window's own timer ticks in the application's event loop, and told of on the standard output.
/// The window is closed at the end.
class EnduranceRun final : public QObject
{
    Q_OBJECT

public:
    EnduranceRun(MainWindow& window, ControllerProcess& controllers,
                 const EnduranceOptions& options, QObject* parent);

    /// Presses Start; everything else follows from timers.
    void start();

signals:
    /// The window is closed next. `haveStreamed` is false if not all systems did, of which nothing
    /// is told then.
    void ended(bool haveStreamed);

private:
    bool doAllStream() const;
    EnduranceState stateNow() const;
    void begin();
    void tellProgress() const;
    void finish();
    void tellResult();
    void tellTicks() const;
    void tellProcessor() const;
    void tellSamples() const;
    void tellMemory() const;

    MainWindow& window;
    ControllerProcess& controllers;
    const EnduranceOptions options;
    TickWatch ticks;
    EnduranceState atBegin;
    EnduranceState atEnd;
    StreamedPackets packets;
    QTimer progress;
    bool isOver = false;
    double upS = 0.0;
};
