#include "processcost.h"

#include <QFile>

#include <ctime>
#include <unistd.h>

namespace processcost {

namespace {

double secondsOf(clockid_t clock)
{
    timespec time{};
    clock_gettime(clock, &time);
    return double(time.tv_sec) + double(time.tv_nsec) * 1e-9;
}

} // namespace

double threadCpuS()
{
    return secondsOf(CLOCK_THREAD_CPUTIME_ID);
}

double processCpuS()
{
    return secondsOf(CLOCK_PROCESS_CPUTIME_ID);
}

double ageS()
{
    // The 22nd field counts clock ticks from the start of the machine on. The second one, a name
    // in parentheses, may have blanks in it.
    QFile file(QStringLiteral("/proc/self/stat"));
    if (!file.open(QIODevice::ReadOnly))
        return 0.0;
    const QByteArray line = file.readAll();
    constexpr int fieldBehindTheName = 22 - 2;
    const double startedTicks =
        line.mid(line.lastIndexOf(')')).split(' ').value(fieldBehindTheName).toDouble();
    return secondsOf(CLOCK_BOOTTIME) - startedTicks / double(sysconf(_SC_CLK_TCK));
}

qint64 residentBytes()
{
    // The second number counts pages.
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

} // namespace processcost
