#include "recording/recordtext.h"

#include "model/detectorpair.h"
#include "model/displayvalue.h"
#include "model/stage.h"
#include "model/stagevalues.h"

#include <QDateTime>

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

constexpr char fieldEnd = '\t';
constexpr char lineEnd = '\n';
/// Of intensities and piezo drives.
constexpr int signalDecimals = 2;

constexpr std::size_t maxTimeLength = std::numeric_limits<quint64>::digits10 + 1;
constexpr std::size_t numbersPerLine = 10;
/// A number is formed where it will stand, and may need more room until its length is known.
constexpr std::size_t scratchLength = 64;
constexpr std::size_t maxLineLength =
    maxTimeLength + numbersPerLine * (1 + recordtext::maxFieldLength) + 1;

/// By the number of decimals.
constexpr std::array<quint32, 5> powersOfTen{1, 10, 100, 1000, 10000};
/// The digits of this number fit a field with a sign and a point.
constexpr double digitsLimit = 9999999.0;
/// A number that was multiplied by a power of ten and is below `digitsLimit` is wrong by 1e-9 at
/// most. So only a rest nearer than this to one half leaves open how the exact number is rounded.
constexpr double tieTolerance = 1e-6;

char* putDigits(char* at, quint32 digits, int decimals)
{
    const quint32 power = powersOfTen[std::size_t(decimals)];
    at = std::to_chars(at, at + scratchLength, digits / power).ptr;
    if (decimals == 0)
        return at;
    *at = '.';
    quint32 fraction = digits % power;
    for (char* place = at + decimals; place > at; --place, fraction /= 10)
        *place = char('0' + fraction % 10);
    return at + 1 + decimals;
}

/// The usual numbers by arithmetic of integers, which takes a quarter of the time. Null for those
/// that need more care.
char* putUsualNumber(char* at, double value, int decimals)
{
    if (std::size_t(decimals) >= powersOfTen.size())
        return nullptr;
    const double scaled = std::abs(value) * powersOfTen[std::size_t(decimals)];
    // The comparison is false for NaN, too.
    if (!(scaled < digitsLimit))
        return nullptr;
    const auto whole = quint32(scaled);
    const double rest = scaled - whole;
    if (std::abs(rest - 0.5) < tieTolerance)
        return nullptr;
    if (std::signbit(value))
        *at++ = '-';
    return putDigits(at, rest > 0.5 ? whole + 1 : whole, decimals);
}

char* putAnyNumber(char* at, double value, int decimals)
{
    for (int kept = decimals; kept >= 0; --kept) {
        const std::to_chars_result result =
            std::to_chars(at, at + scratchLength, value, std::chars_format::fixed, kept);
        if (result.ec == std::errc() && result.ptr <= at + recordtext::maxFieldLength)
            return result.ptr;
    }
    const char* infinite = value < 0.0 ? "-inf" : "inf";
    const std::size_t length = std::strlen(infinite);
    std::memcpy(at, infinite, length);
    return at + length;
}

/// Writes behind `at`, where `scratchLength` characters have room, and returns the new end.
char* putNumber(char* at, double value, int decimals)
{
    char* end = putUsualNumber(at, value, decimals);
    return end ? end : putAnyNumber(at, value, decimals);
}

char* putField(char* at, double value, int decimals)
{
    *at++ = fieldEnd;
    return putNumber(at, value, decimals);
}

char* putStage(char* at, const StageValues& values, const Detector& detector)
{
    const int decimals = detector.recordDecimals();
    // A recording keeps the unit of each system, whatever the plots have in common.
    constexpr bool ownUnit = true;
    at = putField(at, toDisplayValue(values.x, values.intensity, detector, ownUnit), decimals);
    at = putField(at, toDisplayValue(values.y, values.intensity, detector, ownUnit), decimals);
    return putField(at, values.intensity * intensityScale, signalDecimals);
}

char* putDrives(char* at, const StageValues& values)
{
    at = putField(at, values.rx * piezoScale, signalDecimals);
    return putField(at, values.ry * piezoScale, signalDecimals);
}

char* putLine(char* at, quint64 ms, const MeasureSample& sample, const DetectorPair& detectors)
{
    at = std::to_chars(at, at + maxTimeLength, ms).ptr;
    for (const Stage stage : bothStages)
        at = putStage(at, stageValues(sample, indexOf(stage)), *detectors[indexOf(stage)]);
    for (const Stage stage : bothStages)
        at = putDrives(at, stageValues(sample, indexOf(stage)));
    *at++ = lineEnd;
    return at;
}

QString withoutFolders(QString label)
{
    return label.replace('/', '_');
}

} // namespace

namespace recordtext {

QStringList fileNames(const QString& name, const QStringList& labels)
{
    // The first dot of the whole path counts, also that of a folder. This is kept, as names that
    // people have in their scripts follow from it.
    const int dot = name.indexOf('.');
    const QString base = name.left(dot);
    const QString extension = dot < 0 ? QString() : name.mid(dot);

    QStringList names;
    for (const QString& label : labels) {
        const QString stem = base + '_' + withoutFolders(label);
        QString candidate = stem + extension;
        for (int number = 2; names.contains(candidate); ++number)
            candidate = stem + '_' + QString::number(number) + extension;
        names.append(candidate);
    }
    return names;
}

void appendHeader(std::string& text, const QDateTime& start, const DetectorPair& detectors)
{
    QString columns = QStringLiteral("ms\t");
    for (const Stage stage : bothStages)
        columns += QStringLiteral("X%1(%2)\tY%1(%2)\tI%1(V)\t")
                       .arg(QString::number(numberOf(stage)), detectors[indexOf(stage)]->unit());
    columns += QStringLiteral("RX1(V)\tRY1(V)\tRX2(V)\tRY2(V)\n\n");
    text += "Start: " + start.toLocalTime().toString(Qt::ISODate).toStdString() + lineEnd
            + columns.toStdString();
}

void appendLine(std::string& text, quint64 ms, const MeasureSample& sample,
                const DetectorPair& detectors)
{
    const std::size_t before = text.size();
    text.resize(before + maxLineLength + scratchLength);
    const char* end = putLine(&text[before], ms, sample, detectors);
    text.resize(std::size_t(end - text.data()));
}

void appendNumber(std::string& text, double value, int decimals)
{
    char field[scratchLength];
    text.append(field, putNumber(field, value, decimals));
}

} // namespace recordtext
