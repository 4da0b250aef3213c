#pragma once

#include "recording/recorder.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <functional>

class Acquisition;
class LiveSystems;
class MonitorToolBar;

/// Starts and ends the recordings that the recording dialog asks for, and shows in the tool bar
/// whether one runs. A recording runs only with the acquisition, which it starts. The samples reach
/// the recorder in the display tick. GUI thread only.
class LiveRecording final : public QObject
{
    Q_OBJECT

public:
    /// Asks the user about a file that exists; takes events meanwhile.
    using Question = std::function<bool(const QString& path)>;

    LiveRecording(LiveSystems& systems, MonitorToolBar& toolBar, Acquisition& acquisition,
                  Recorder& recorder, Question mayOverwrite);

    /// Records the system that the stabilisation buttons address to this file, or every displayed
    /// system to a file of its own. A start during a recording ends it. The files of several
    /// systems are asked for here; that of one system was settled by who asks.
    void start(const QString& fileName, bool everySystem, int saveRateHz);
    /// Closes the files. The acquisition goes on.
    void end();
    /// Whether a recording runs or its questions are asked.
    bool isOngoing() const { return isAsking || recorder.isRecording(); }
    /// Behind each tick: what was recorded becomes lines and reaches the disk between the events
    /// that follow, so that no tick waits for it. A failure ends the recording.
    void writeSoon();

signals:
    /// Asks for the ordinary end.
    void endWanted();
    /// The first data can come.
    void begun();
    /// The samples come slower than they were to be saved.
    void saveRateCut(int rateHz);
    void failed(const RecordFailure& failure);

private:
    void startAcquisition();
    RecordableSystems displayedSystems() const;
    RecordPlan planFor(const QString& fileName, bool everySystem) const;
    bool mayWriteAll(const RecordPlan& plan);
    void begin(const RecordPlan& plan, int saveRateHz);
    void write();

    LiveSystems& systems;
    MonitorToolBar& toolBar;
    Acquisition& acquisition;
    Recorder& recorder;
    Question mayOverwrite;
    bool isAsking = false;
    /// Tells the recorder when to write.
    QElapsedTimer clock;
    /// Fires once the events that wait are taken.
    QTimer writing;
};
