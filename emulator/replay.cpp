#include "emulator/replay.h"

#include "emulator/text.h"

#include <QFile>
#include <QTextStream>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace emulator {

namespace {

constexpr int columns = 11;
constexpr double mvPerVolt = 1000.0;
constexpr double mvPerMillimetre = 1200.0;
constexpr double mvPerMicrometre = 50.0;
/// The last line lasts at most as long as all lines before it together.
constexpr qint64 greatestTimeMs = std::numeric_limits<qint64>::max() / 2;

/// Millivolts per unit of a column, from the unit in brackets of its name; 0 if it is unknown.
double scaleOf(const QString& columnName)
{
    const int open = columnName.lastIndexOf('(');
    const QString unit = columnName.mid(open + 1, columnName.size() - open - 2);
    if (unit == "V")
        return mvPerVolt;
    if (unit == "mm")
        return mvPerMillimetre;
    // The first letter of µm depends on the locale that the file was written under.
    if (unit.size() == 2 && unit[1] == 'm' && !unit[0].isLetter())
        return mvPerMicrometre;
    if (unit == QStringLiteral("µm"))
        return mvPerMicrometre;
    return 0.0;
}

template <typename Word>
Word asWord(double millivolts)
{
    constexpr double least = std::numeric_limits<Word>::min();
    constexpr double greatest = std::numeric_limits<Word>::max();
    // A quadrant detector without light, or with a signal beyond it, is recorded as not-a-number.
    return std::isnan(millivolts)
               ? Word(0)
               : static_cast<Word>(std::lround(std::clamp(millivolts, least, greatest)));
}

PacketValues valuesOf(const std::array<double, columns>& mv)
{
    // Behind the time stand the signals of stage 1, those of stage 2, and the actuators of both.
    constexpr std::size_t firstSignal = 1;
    constexpr std::size_t firstActuator = 7;
    PacketValues values;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::size_t signal = firstSignal + 3 * i;
        const std::size_t actuator = firstActuator + 2 * i;
        values[i].x = asWord<qint16>(mv[signal]);
        values[i].y = asWord<qint16>(mv[signal + 1]);
        values[i].intensity = asWord<quint16>(mv[signal + 2]);
        values[i].actuatorX = asWord<qint16>(mv[actuator]);
        values[i].actuatorY = asWord<qint16>(mv[actuator + 1]);
    }
    return values;
}

/// Reads the two lines in front of the data; the scales of the columns, none on failure.
QVector<double> readHeader(QTextStream& text)
{
    if (!text.readLine().startsWith("Start: "))
        return {};
    const QStringList names = text.readLine().split('\t');
    if (names.size() != columns || names.first() != "ms")
        return {};
    QVector<double> scales{1.0};
    for (int column = 1; column < columns; ++column)
        scales.append(scaleOf(names[column]));
    return scales.contains(0.0) ? QVector<double>() : scales;
}

/// C libraries print a not-a-number with its sign, which the conversion does not know.
bool isNotANumber(const QString& text)
{
    return text == "nan" || text == "-nan" || text == "+nan";
}

double readNumber(const QString& text, bool& ok)
{
    ok = true;
    return isNotANumber(text) ? std::numeric_limits<double>::quiet_NaN() : text.toDouble(&ok);
}

/// Reads everything but the time, which stands in the first column; false on failure.
bool readValues(const QStringList& texts, const QVector<double>& scales,
                std::array<double, columns>& fields)
{
    for (int column = 1; column < columns; ++column) {
        bool ok = false;
        fields[static_cast<std::size_t>(column)] = readNumber(texts[column], ok) * scales[column];
        if (!ok)
            return false;
    }
    return true;
}

} // namespace

std::shared_ptr<const Replay> Replay::load(const QString& path, QString& error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = Text::tr("%1: %2").arg(path, file.errorString());
        return nullptr;
    }
    QString reason;
    std::shared_ptr<const Replay> replay = read(file, reason);
    if (!replay)
        error = Text::tr("%1: %2").arg(path, reason);
    return replay;
}

std::shared_ptr<const Replay> Replay::read(QIODevice& device, QString& error)
{
    QTextStream text(&device);
    text.setCodec("UTF-8");
    const QVector<double> scales = readHeader(text);
    if (scales.isEmpty()) {
        error = Text::tr("not a recording file");
        return nullptr;
    }
    auto replay = std::make_shared<Replay>();
    constexpr int headerLines = 2;
    for (int number = headerLines + 1; !text.atEnd(); ++number) {
        const QString line = text.readLine();
        if (line.isEmpty())
            continue;
        const QString complaint = replay->append(line.split('\t'), scales);
        if (!complaint.isEmpty()) {
            error = complaint.arg(number);
            return nullptr;
        }
    }
    if (replay->lines.isEmpty()) {
        error = Text::tr("the recording has no samples");
        return nullptr;
    }
    const qint64 last = replay->lines.last().timeMs;
    // The last line lasts as long as the lines do on average.
    replay->lengthMs = last + std::max<qint64>(1, last / std::max(1, replay->lines.size() - 1));
    return replay;
}

/// Appends one line of the file. Returns an error message with a place for the line's number; empty
/// if the line is good.
QString Replay::append(const QStringList& texts, const QVector<double>& scales)
{
    const QString noLine = Text::tr("line %1 is not a line of a recording");
    if (texts.size() != columns)
        return noLine;
    bool ok = false;
    const qint64 timeMs = texts.first().toLongLong(&ok);
    std::array<double, columns> fields{};
    if (!ok || timeMs < 0 || timeMs > greatestTimeMs || !readValues(texts, scales, fields))
        return noLine;
    if (!lines.isEmpty() && timeMs < lines.last().timeMs)
        return Text::tr("line %1 is earlier than the line before");
    lines.append({timeMs, valuesOf(fields)});
    return {};
}

PacketValues Replay::at(qint64 timeMs) const
{
    const qint64 wrapped = timeMs % lengthMs;
    const auto behind =
        std::upper_bound(lines.begin(), lines.end(), wrapped,
                         [](qint64 time, const Line& line) { return time < line.timeMs; });
    return behind == lines.begin() ? behind->values : std::prev(behind)->values;
}

} // namespace emulator
