#include "plots/durationtext.h"

#include <QStringList>

#include <limits>

namespace durationtext {

namespace {

constexpr int secondsPerMinute = 60;
constexpr int secondsPerHour = 3600;
constexpr int mostHours = 999;
constexpr int mostMinutes = 99;

QString withDigits(int number, int digits)
{
    return QString::number(number).rightJustified(digits, QLatin1Char('0'));
}

} // namespace

int toSeconds(const QString& text)
{
    const QStringList sections = text.split(QLatin1Char(':'));
    const auto number = [&sections](int place) { return qint64(sections.value(place).toInt()); };
    const qint64 seconds = number(0) * secondsPerHour + number(1) * secondsPerMinute + number(2);
    return int(qBound(qint64(std::numeric_limits<int>::min()), seconds,
                      qint64(std::numeric_limits<int>::max())));
}

QString fromSeconds(int seconds)
{
    const int whole = qBound(0, seconds, longestSeconds);
    const int hours = qMin(whole / secondsPerHour, mostHours);
    const int withoutHours = whole - hours * secondsPerHour;
    const int minutes = qMin(withoutHours / secondsPerMinute, mostMinutes);
    const int rest = withoutHours - minutes * secondsPerMinute;
    return withDigits(hours, 3) + QLatin1Char(':') + withDigits(minutes, 2) + QLatin1Char(':')
           + withDigits(rest, 2);
}

} // namespace durationtext
