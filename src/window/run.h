#pragma once

#include "model/stagevalues.h"
#include "window/statisticssums.h"

#include <QtGlobal>

#include <array>

/// The counting of a run: how many samples it takes, how many it has, and the figures of each
/// stage. The first system on the plots counts the samples; the sums belong to each system.
///
/// Times are milliseconds on any clock that never goes back.
class Run final
{
public:
    static constexpr int noLimit = -1;
    /// The text is built at most this often: that costs far more than the sums.
    static constexpr qint64 textPeriodMs = 11;

    /// Forgets what was counted. The limit stays.
    void clear();
    /// Samples to take, or `noLimit`.
    void setLimit(int samples) { limit = samples; }
    bool hasLimit() const { return limit >= 0; }
    /// Whether a run with a limit still takes samples.
    bool isCounting() const { return limit > taken; }
    int samplesTaken() const { return taken; }
    /// Number of samples when the text was built last.
    int samplesShown() const { return shown; }

    void startClock(qint64 nowMs) { textTimeMs = nowMs; }

    /// Counts a sample of the first system on the plots.
    void countSample() { ++taken; }
    /// Adds a sample of a system to its sums. Only behind the first counted sample.
    void add(StatisticsSums& sums, const StagePositions& positions);
    /// Whether the text is due.
    bool isTextDue(qint64 nowMs) const { return nowMs - textTimeMs >= textPeriodMs; }
    /// Works out the RMS of a system for a text that is built at `nowMs`.
    void refresh(const StatisticsSums& sums, qint64 nowMs);

    /// Positions of the sample that was added last.
    const StagePositions& latest() const { return latestPositions; }
    /// Mean behind the sample that was added last, and the RMS of the latest refresh.
    const std::array<StageFigures, 2>& figures() const { return stageFigures; }

private:
    int taken = 0;
    int limit = noLimit;
    int shown = 0;
    qint64 textTimeMs = 0;
    StagePositions latestPositions;
    std::array<StageFigures, 2> stageFigures;
};
