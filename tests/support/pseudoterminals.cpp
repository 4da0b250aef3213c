#include "support/pseudoterminals.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

bool canOpen(const char* path)
{
    const int end = ::open(path, O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (end >= 0)
        ::close(end);
    return end >= 0;
}

bool canOpenOtherEnd(int master)
{
    char path[64] = {};
    return ::grantpt(master) == 0 && ::unlockpt(master) == 0
           && ::ptsname_r(master, path, sizeof path) == 0 && canOpen(path);
}

} // namespace

QString pseudoTerminalProblem()
{
    QString problem;
    const int master = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (master < 0 || !canOpenOtherEnd(master))
        problem = QStringLiteral("no pseudo terminals here: %1")
                      .arg(QString::fromLocal8Bit(std::strerror(errno)));
    if (master >= 0)
        ::close(master);
    return problem;
}
