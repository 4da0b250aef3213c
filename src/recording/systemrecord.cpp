#include "recording/systemrecord.h"

#include "recording/recordtext.h"

#include <utility>

SystemRecord::SystemRecord(const QString& path, const DetectorPair& currentDetectors,
                           int saveDivider, Counting sampleCounting, const QDateTime& start)
    : recordFile(path)
    , detectors(currentDetectors)
    , divider(saveDivider)
    , counting(sampleCounting)
    , counter(saveDivider)
{
    if (!recordFile.isOpen())
        return;
    recordtext::appendHeader(recordFile.lines(), start, detectors);
    recordFile.flush();
}

void SystemRecord::take(std::vector<MeasureSample> samples, const SamplePlace& place)
{
    if (!samples.empty() && recordFile.isOpen())
        kept.push_back({std::move(samples), place});
}

std::size_t SystemRecord::form(std::size_t most)
{
    // Nothing more is written to a file that has failed.
    if (!recordFile.isOpen())
        kept.clear();
    std::size_t formed = 0;
    while (!kept.empty() && formed < most) {
        KeptSamples& oldest = kept.front();
        formed += formFrom(oldest, most - formed);
        if (oldest.next == oldest.samples.size())
            kept.pop_front();
    }
    return formed;
}

std::size_t SystemRecord::formFrom(KeptSamples& block, std::size_t most)
{
    std::size_t formed = 0;
    while (block.next < block.samples.size() && formed < most) {
        const MeasureSample& sample = block.samples[block.next++];
        if (!countSample(block.place))
            continue;
        formLine(sample);
        ++formed;
    }
    return formed;
}

/// Returns whether the line of this sample is due.
///
/// The recording of one system alone counts only while that system is displayed last: elsewhere it
/// ends with its first line, unless every sample is saved. This is kept as it always was.
bool SystemRecord::countSample(const SamplePlace& place)
{
    if (counter == divider || place.pulsedLaser) {
        counter = 1;
        return true;
    }
    if (counting == Counting::Everywhere || place.lastDisplayed)
        ++counter;
    return false;
}

void SystemRecord::formLine(const MeasureSample& sample)
{
    if (isFirstLine) {
        startTimeMs = sample.timeMs;
        isFirstLine = false;
    }
    recordtext::appendLine(recordFile.lines(), sample.timeMs - startTimeMs, sample, detectors);
}
