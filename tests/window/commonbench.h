#pragma once

#include "monitorbench.h"
#include "recording/recorder.h"
#include "window/displaytick.h"
#include "window/systemsview.h"

/// Systems whose common detectors are shown, on stages whose acquisition runs. Nothing in the
/// application shows one: tests fill list and store.
struct CommonBench : MonitorBench
{
    static constexpr quint64 originMs = 1700000000000;
    /// At this rate the time plots would take every tenth sample.
    static constexpr int rateHz = 500;

    CommonBench()
    {
        samplingRate().setMaximum(rateHz);
        samplingRate().setValue(rateHz);
        for (StageView& stage : stages) {
            stage.plots().pointing().setKeepAllPoints(true);
            stage.plots().setOrigin(originMs);
        }
        pressStart(true);
    }

    /// A system that is on no plot.
    ScriptedConnection& addHidden()
    {
        ScriptedConnection& connection = add();
        show(connection, false);
        return connection;
    }
    /// A system of which only the common detector is on the plots.
    ScriptedConnection& addCommon(Link link = Link::Up)
    {
        ScriptedConnection& connection = add(link);
        takeOver(connection);
        return connection;
    }
    /// The same, and it streams.
    ScriptedConnection& addStreamingCommon()
    {
        ScriptedConnection& connection = addStreaming();
        takeOver(connection);
        return connection;
    }
    void show(const Connection& connection, bool on = true) { systems.show(&connection, on); }
    void showCommon(const Connection& connection, bool on = true)
    {
        systems.showCommon(&connection, on);
    }
    /// `stage` is 1 or 2.
    const StagePlots& plots(int stage = 1) const { return stages[std::size_t(stage - 1)].plots(); }

    SystemsView view{systems, stages, toolBar, statistics, parent};
    Recorder recorder;
    DisplayTick tick{systems, stages, toolBar, statistics, acquisition, recorder};

private:
    void takeOver(const Connection& connection)
    {
        showCommon(connection);
        show(connection, false);
    }
};
