#pragma once

#include "recording/recordplan.h"
#include "recording/systemrecord.h"

#include <memory>
#include <optional>
#include <vector>

/// Records the samples of systems to files, one for each system. It knows no window: who shows the
/// samples gives them to it, and asks it behind each tick to flush. A recording is planned first,
/// so that all questions about files that exist come before any file is opened. GUI thread only.
///
/// A system that is hidden or lost during a recording keeps its file, which goes on when the
/// system is shown again. One that comes during a recording is not recorded.
class Recorder final
{
public:
    /// A crash loses what was taken since the last flush. That stays well below a second, also
    /// where a tick comes late.
    static constexpr qint64 flushPeriodMs = 250;
    /// A quarter of a millisecond of work, and four times what 50 systems send between two usual
    /// ticks. A tick that comes late brings a hundred times as much, which would hold up the window
    /// if it were done at once.
    static constexpr std::size_t linesPerTurn = 1000;

    Recorder() = default;
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    /// Begins a recording, and ends one that runs. Opens the files of those planned systems that
    /// are still displayed, which the questions may have changed; without any, nothing is
    /// recorded. If a file can not be opened, all are closed again and the failure is returned.
    std::optional<RecordFailure> start(const RecordPlan& plan, const RecordableSystems& displayed,
                                       const RecordRates& rates, const QDateTime& now);
    bool isRecording() const { return !systems.empty(); }

    /// The record that takes the samples of a system, until the next start or stop. Null if the
    /// system is not recorded.
    SystemRecord* recordOf(const Connection* connection) const;

    /// Forms the lines of what was taken, up to `linesPerTurn`, and writes lines if it is time.
    /// Called behind every tick, also without new samples, and again while it is behind. `nowMs` is
    /// of any clock that only moves forward. Returns what failed, once for a recording, which
    /// should then be stopped.
    std::optional<RecordFailure> flush(qint64 nowMs);
    /// Whether samples were taken whose lines are not formed yet.
    bool isBehind() const;

    /// Writes the rest and closes all files. Returns a failure that was not returned before.
    std::optional<RecordFailure> stop();

    /// Must be called before a connection is deleted: another one may come to lie at its address.
    /// The file stays open until the stop.
    void forget(const Connection* connection);

private:
    struct System
    {
        const Connection* connection;
        std::unique_ptr<SystemRecord> record;
    };

    std::unique_ptr<SystemRecord> open(const QString& path, const RecordableSystem& system,
                                       const RecordRates& rates, SystemRecord::Counting counting,
                                       const QDateTime& now) const;
    void form(std::size_t most);
    std::optional<RecordFailure> newFailure();

    std::vector<System> systems;
    std::optional<qint64> flushedMs;
    /// Whether the last turn left samples without lines.
    bool isCatchingUp = false;
    /// The system that is the first one in the next turn.
    std::size_t nextSystem = 0;
    bool hasFailed = false;
};
