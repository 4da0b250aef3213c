#pragma once

#include "plots/counter.h"
#include "stagebench.h"
#include "systemsbench.h"
#include "window/acquisition.h"
#include "window/monitortoolbar.h"
#include "window/statistics.h"
#include "window/ticktimer.h"

#include <QAction>
#include <QMainWindow>
#include <QRadioButton>
#include <QSpinBox>

/// Systems, stages and tool bar together, as the main window has them, but without it. Nothing
/// ticks unless events are taken for a second.
struct MonitorBench : SystemsBench, StageBench
{
    QSpinBox& samplingRate() const { return spinBox("samplingRateCounter"); }
    QSpinBox& updateRate() const { return spinBox("updateRateCounter"); }
    QSpinBox& samplesToTake() const { return spinBox("samplesToTakeCounter"); }
    QSpinBox& spinBox(const char* counterName) const { return *counter(counterName).spinBox; }
    Counter& counter(const char* name) const
    {
        auto* found = frame.findChild<Counter*>(QLatin1String(name));
        Q_ASSERT(found);
        return *found;
    }
    /// As the user does by a click, but without the start that follows it.
    void pressStart(bool on) const { toolBar.startAction().setChecked(on); }

    QMainWindow frame;
    MonitorToolBar toolBar{frame};
    TickTimer timer{toolBar};
    Statistics statistics{systems, stages};
    Acquisition acquisition{systems, stages, toolBar, statistics, timer};
};
