#pragma once

#include <QString>

/// What a recording of one system is going to cost.
struct RecordingEstimate
{
    /// Lines of data. Counted in 32 bits: beyond them the count starts again from the lowest
    /// negative number, and the size with it.
    qint32 blocks = 0;
    qint64 bytes = 0;

    /// Megabytes of 1024 x 1024 bytes, with one decimal and a point.
    QString megabytesText() const;
    /// Whether there are file systems that can not hold the file.
    bool isLarge() const;
};

/// `rateHz` lines per second for some seconds.
RecordingEstimate estimateRecording(int rateHz, int seconds);
