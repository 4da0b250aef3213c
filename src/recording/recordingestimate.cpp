#include "recording/recordingestimate.h"

namespace {

/// Eleven columns of usual width.
constexpr qint64 bytesPerBlock = 65;
constexpr double megabytesPerByte = 1.0 / (1024 * 1024);
/// 2 GB, the limit of files with a signed 32-bit length.
constexpr qint64 largestSafeBytes = qint64(2) * 1024 * 1024 * 1024;

} // namespace

QString RecordingEstimate::megabytesText() const
{
    return QString::number(double(bytes) * megabytesPerByte, 'f', 1);
}

bool RecordingEstimate::isLarge() const
{
    return bytes > largestSafeBytes;
}

RecordingEstimate estimateRecording(int rateHz, int seconds)
{
    RecordingEstimate estimate;
    // Cut to 32 bits, as the count of blocks always was: more than 2147483647 are shown negative.
    estimate.blocks = qint32(qint64(rateHz) * seconds);
    estimate.bytes = estimate.blocks * bytesPerBlock;
    return estimate;
}
