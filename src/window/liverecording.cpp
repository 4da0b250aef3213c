#include "window/liverecording.h"

#include "link/connection.h"
#include "window/acquisition.h"
#include "window/livesystems.h"
#include "window/monitortoolbar.h"

#include <QAction>
#include <QDateTime>

#include <algorithm>
#include <utility>

LiveRecording::LiveRecording(LiveSystems& liveSystems, MonitorToolBar& bar, Acquisition& streams,
                             Recorder& files, Question question)
    : systems(liveSystems)
    , toolBar(bar)
    , acquisition(streams)
    , recorder(files)
    , mayOverwrite(std::move(question))
{
    // The plan whose questions are open may hold the system that was closed: it is refused.
    connect(&systems, &LiveSystems::closed, this, [this] { isAsking = false; });
    clock.start();
    writing.setSingleShot(true);
    connect(&writing, &QTimer::timeout, this, &LiveRecording::write);
}

void LiveRecording::start(const QString& fileName, bool everySystem, int saveRateHz)
{
    if (isOngoing()) {
        emit endWanted();
        return;
    }
    startAcquisition();
    const RecordPlan plan = planFor(fileName, everySystem);
    if (mayWriteAll(plan))
        begin(plan, saveRateHz);
    if (!recorder.isRecording())
        emit endWanted();
}

void LiveRecording::startAcquisition()
{
    if (toolBar.isRunning())
        return;
    toolBar.startAction().setChecked(true);
    acquisition.startOrStop();
}

RecordableSystems LiveRecording::displayedSystems() const
{
    RecordableSystems recordable;
    for (const int index : systems.displayed()) {
        const LiveSystem& system = systems.at(index);
        recordable.append({system.connection.get(), system.status.label, system.detectors});
    }
    return recordable;
}

RecordPlan LiveRecording::planFor(const QString& fileName, bool everySystem) const
{
    if (everySystem)
        return planForAll(fileName, displayedSystems());
    const LiveSystem* current = systems.current();
    return planForOne(fileName, displayedSystems(), current ? current->connection.get() : nullptr);
}

/// All questions come before any file is touched, so that a refusal leaves every file whole. What
/// ends the recording meanwhile refuses, too.
bool LiveRecording::mayWriteAll(const RecordPlan& plan)
{
    if (!plan.everySystem)
        return true;
    isAsking = true;
    const QStringList existing = plan.existingFiles();
    const bool allowed = std::all_of(existing.begin(), existing.end(), [this](const QString& path) {
        return isAsking && mayOverwrite(path);
    });
    return std::exchange(isAsking, false) && allowed;
}

void LiveRecording::begin(const RecordPlan& plan, int saveRateHz)
{
    const int samplingRateHz = toolBar.samplingRateHz();
    const RecordRates rates{samplingRateHz, std::min(saveRateHz, samplingRateHz)};
    const auto failure =
        recorder.start(plan, displayedSystems(), rates, QDateTime::currentDateTime());
    if (failure)
        emit failed(*failure);
    if (!recorder.isRecording())
        return;
    emit begun();
    toolBar.showRecording(true);
    if (saveRateHz > samplingRateHz)
        emit saveRateCut(samplingRateHz);
}

void LiveRecording::end()
{
    isAsking = false;
    toolBar.showRecording(false);
    if (const auto failure = recorder.stop())
        emit failed(*failure);
}

void LiveRecording::writeSoon()
{
    if (recorder.isRecording())
        writing.start();
}

void LiveRecording::write()
{
    if (const auto failure = recorder.flush(clock.elapsed())) {
        emit endWanted();
        emit failed(*failure);
    }
    if (recorder.isBehind())
        writing.start();
}
