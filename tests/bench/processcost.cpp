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

qint64 residentBytes()
{
    // The second number counts pages.
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

} // namespace processcost
