#include "emulator/devicelink.h"

#include "emulator/text.h"

#include <QFile>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>

namespace emulator {

namespace {

/// Target of a symbolic link; empty for anything else.
QString targetOf(const QString& link)
{
    std::array<char, PATH_MAX> text;
    const ssize_t length = readlink(QFile::encodeName(link).constData(), text.data(), text.size());
    return length > 0 ? QFile::decodeName(QByteArray(text.data(), static_cast<int>(length)))
                      : QString();
}

bool makeLink(const QString& link, const QString& target)
{
    return symlink(QFile::encodeName(target).constData(), QFile::encodeName(link).constData()) == 0;
}

bool isEarlier(const timespec& one, const timespec& other)
{
    return std::tie(one.tv_sec, one.tv_nsec) < std::tie(other.tv_sec, other.tv_nsec);
}

/// True for a link to a terminal that no longer exists. The terminal's number may have been given
/// to another terminal since; that one is younger than the link.
bool isStale(const QString& link, const QString& terminal)
{
    const QString target = targetOf(link);
    if (target == terminal)
        return true;
    if (!target.startsWith("/dev/pts/"))
        return false;
    struct stat ofLink
    {};
    struct stat ofTarget
    {};
    const QByteArray path = QFile::encodeName(link);
    return lstat(path.constData(), &ofLink) == 0
           && (stat(path.constData(), &ofTarget) != 0
               || isEarlier(ofLink.st_mtim, ofTarget.st_ctim));
}

/// Renames a new link over the old one, so that a link exists at every moment.
bool replaceLink(const QString& link, const QString& terminal)
{
    const QString fresh = QStringLiteral("%1.%2").arg(link).arg(getpid());
    if (!makeLink(fresh, terminal))
        return false;
    const QByteArray from = QFile::encodeName(fresh);
    if (std::rename(from.constData(), QFile::encodeName(link).constData()) == 0)
        return true;
    const int reason = errno;
    unlink(from.constData());
    errno = reason;
    return false;
}

} // namespace

bool DeviceLink::make(const QString& link, const QString& terminal, QString& error)
{
    remove();
    bool made = makeLink(link, terminal);
    if (!made && errno == EEXIST) {
        if (!isStale(link, terminal)) {
            const QString inTheWay = targetOf(link);
            error = inTheWay.isEmpty() ? Text::tr("exists")
                                       : Text::tr("exists, and leads to %1").arg(inTheWay);
            return false;
        }
        made = replaceLink(link, terminal);
    }
    if (!made) {
        error = qt_error_string(errno);
        return false;
    }
    path = link;
    target = terminal;
    return true;
}

void DeviceLink::remove()
{
    if (!path.isEmpty() && targetOf(path) == target)
        unlink(QFile::encodeName(path).constData());
    path.clear();
    target.clear();
}

} // namespace emulator
