#include "emulator/replay.h"

#include <QCoreApplication>
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

QString tr(const char* text)
{
    return QCoreApplication::translate("Replay", text);
}

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
    // A quadrant detector without light is recorded as not-a-number.
    return std::isnan(millivolts)
               ? Word(0)
               : static_cast<Word>(std::lround(std::clamp(millivolts, least, greatest)));
}

PacketValues valuesOf(const std::array<double, columns>& mv)
{
    PacketValues values;
    values.x1 = asWord<qint16>(mv[1]);
    values.y1 = asWord<qint16>(mv[2]);
    values.i1 = asWord<quint16>(mv[3]);
    values.x2 = asWord<qint16>(mv[4]);
    values.y2 = asWord<qint16>(mv[5]);
    values.i2 = asWord<quint16>(mv[6]);
    values.rx1 = asWord<qint16>(mv[7]);
    values.ry1 = asWord<qint16>(mv[8]);
    values.rx2 = asWord<qint16>(mv[9]);
    values.ry2 = asWord<qint16>(mv[10]);
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

bool readFields(const QString& line, const QVector<double>& scales,
                std::array<double, columns>& fields)
{
    const QStringList texts = line.split('\t');
    if (texts.size() != columns)
        return false;
    for (int column = 0; column < columns; ++column) {
        bool ok = false;
        fields[static_cast<std::size_t>(column)] = texts[column].toDouble(&ok) * scales[column];
        if (!ok)
            return false;
    }
    return fields[0] >= 0.0;
}

} // namespace

std::shared_ptr<const Replay> Replay::load(const QString& path, QString& error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = tr("%1: %2").arg(path, file.errorString());
        return nullptr;
    }
    QString reason;
    std::shared_ptr<const Replay> replay = read(file, reason);
    if (!replay)
        error = tr("%1: %2").arg(path, reason);
    return replay;
}

std::shared_ptr<const Replay> Replay::read(QIODevice& device, QString& error)
{
    QTextStream text(&device);
    text.setCodec("UTF-8");
    const QVector<double> scales = readHeader(text);
    if (scales.isEmpty()) {
        error = tr("not a recording file");
        return nullptr;
    }
    auto replay = std::make_shared<Replay>();
    constexpr int headerLines = 2;
    for (int number = headerLines + 1; !text.atEnd(); ++number) {
        const QString line = text.readLine();
        if (line.isEmpty())
            continue;
        std::array<double, columns> fields{};
        if (!readFields(line, scales, fields)) {
            error = tr("line %1 is not a line of a recording").arg(number);
            return nullptr;
        }
        replay->lines.append({static_cast<qint64>(fields[0]), valuesOf(fields)});
    }
    if (replay->lines.isEmpty()) {
        error = tr("the recording has no samples");
        return nullptr;
    }
    const qint64 last = replay->lines.last().timeMs;
    // The last line lasts as long as the lines do on average.
    replay->lengthMs = last + std::max<qint64>(1, last / std::max(1, replay->lines.size() - 1));
    return replay;
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
