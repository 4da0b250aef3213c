#pragma once

#include "model/detectorpair.h"
#include "model/measuresample.h"
#include "recording/recordfile.h"

#include <deque>
#include <vector>

class QDateTime;

/// What a record has to know of samples beside their values.
struct SamplePlace
{
    /// Whether its system is the last one in the order of display.
    bool lastDisplayed = false;
    /// Whether the packets of its system follow the pulses of a laser now.
    bool pulsedLaser = false;
};

/// The recording of one system: its file and which of its samples go there.
class SystemRecord final
{
public:
    /// Whether samples count wherever their system is displayed, or in the last place alone.
    enum class Counting { Everywhere, LastDisplayed };

    /// Opens the file and writes the header. The detectors are copied, so that all lines are in
    /// the units of the header, whatever is set meanwhile. Every `divider`-th sample is saved, with
    /// 0 the first one alone.
    SystemRecord(const QString& path, const DetectorPair& detectors, int divider, Counting counting,
                 const QDateTime& start);

    /// Keeps the samples, oldest first. Nothing is done with them yet, so that a tick does not wait
    /// however many there are.
    void take(std::vector<MeasureSample> samples, const SamplePlace& place);
    /// Forms the lines of the kept samples that are due, up to `most` of them, the oldest first.
    /// Returns how many.
    std::size_t form(std::size_t most);
    /// Whether kept samples wait for their lines.
    bool isBehind() const { return !kept.empty(); }

    RecordFile& file() { return recordFile; }
    const RecordFile& file() const { return recordFile; }

private:
    struct KeptSamples
    {
        std::vector<MeasureSample> samples;
        SamplePlace place;
        /// The first one that was not looked at yet.
        std::size_t next = 0;
    };

    std::size_t formFrom(KeptSamples& block, std::size_t most);
    bool countSample(const SamplePlace& place);
    void formLine(const MeasureSample& sample);

    RecordFile recordFile;
    DetectorPair detectors;
    qint64 divider;
    Counting counting;
    /// Samples from the last saved one on, that one included.
    qint64 counter;
    bool isFirstLine = true;
    quint64 startTimeMs = 0;
    std::deque<KeptSamples> kept;
};
