#include "recording/systemrecord.h"

#include "recording/recordtext.h"

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
    recordtext::appendLine(recordFile.lines(), sample.timeMs - startTimeMs, sample, detectors);
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
