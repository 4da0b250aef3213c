#include "recording/systemrecord.h"

#include "recording/recordtext.h"

#include <algorithm>

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

void SystemRecord::take(const MeasureSample& sample, const SamplePlace& place)
{
    if (!isDue(place) || !recordFile.isOpen())
        return;
    counter = 1;
    if (isFirstLine) {
        startTimeMs = sample.timeMs;
        isFirstLine = false;
    }
    kept.push_back(sample);
}

std::size_t SystemRecord::form(std::size_t most)
{
    // What a file that has failed would have got is nobody's.
    const std::size_t wanted = recordFile.isOpen() ? kept.size() - formed : 0;
    const std::size_t count = std::min(most, wanted);
    for (const std::size_t end = formed + count; formed < end; ++formed) {
        const MeasureSample& sample = kept[formed];
        recordtext::appendLine(recordFile.lines(), sample.timeMs - startTimeMs, sample, detectors);
    }
    if (!recordFile.isOpen())
        formed = kept.size();
    // Given back by halves, which costs little and bounds them.
    if (formed > kept.size() / 2) {
        kept.erase(kept.begin(), kept.begin() + std::ptrdiff_t(formed));
        formed = 0;
    }
    return count;
}

/// The recording of one system alone counts only while that system is displayed last: elsewhere it
/// ends with its first line, unless every sample is saved. This is kept as it always was.
bool SystemRecord::isDue(const SamplePlace& place)
{
    if (counter == divider || place.pulsedLaser)
        return true;
    if (counting == Counting::Everywhere || place.lastDisplayed)
        ++counter;
    return false;
}
