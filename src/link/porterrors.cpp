#include "link/porterrors.h"

#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QStringList>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace {

/// Where `QSerialPort` and other programs keep the lock files of ports.
const QStringList& lockFolders()
{
    static const QStringList folders{QStringLiteral("/var/lock"),
                                     QStringLiteral("/etc/locks"),
                                     QStringLiteral("/var/spool/locks"),
                                     QStringLiteral("/var/spool/uucp"),
                                     QStringLiteral("/tmp"),
                                     QStringLiteral("/var/tmp"),
                                     QStringLiteral("/var/lock/lockdev"),
                                     QStringLiteral("/run/lock")};
    return folders;
}

/// Rights of the effective user, which are those that `open` goes by.
bool mayUse(const QString& path)
{
    return ::faccessat(AT_FDCWD, QFile::encodeName(path).constData(), R_OK | W_OK, AT_EACCESS) == 0
           || (errno != EACCES && errno != EPERM);
}

bool canLock()
{
    const auto isUsable = [](const QString& folder) {
        const QFileInfo info(folder);
        return info.isReadable() && info.isWritable();
    };
    return std::any_of(lockFolders().cbegin(), lockFolders().cend(), isUsable);
}

/// The program that holds the lock of a port; empty if there is no lock.
QString lockHolder(const QString& portName)
{
    const QString file = QStringLiteral("/LCK..") + QString(portName).replace('/', '_');
    for (const QString& folder : lockFolders()) {
        qint64 process = 0;
        QString host;
        QString program;
        if (QLockFile(folder + file).getLockInfo(&process, &host, &program))
            return QStringLiteral("%1 (process %2)")
                .arg(program.isEmpty() ? QStringLiteral("another program") : program)
                .arg(process);
    }
    return QString();
}

} // namespace

namespace porterrors {

bool isLoss(QSerialPort::SerialPortError error)
{
    return error != QSerialPort::NoError && error != QSerialPort::TimeoutError
           && error != QSerialPort::UnsupportedOperationError;
}

QString explainRefusal(const QString& portName, QSerialPort::SerialPortError error)
{
    if (error != QSerialPort::PermissionError)
        return QString();
    const QString path = QStringLiteral("/dev/") + portName;
    if (!mayUse(path))
        return QStringLiteral("This user has no rights to use %1. Membership in the group "
                              "\"dialout\" or the udev rule gives them: see \"Serial ports\" in "
                              "the README")
            .arg(path);
    if (!canLock())
        return QStringLiteral("%1 can not be locked: there is no folder for lock files that this "
                              "user may write to, such as /run/lock")
            .arg(path);
    const QString holder = lockHolder(portName);
    return QStringLiteral("%1 is in use by %2")
        .arg(path, holder.isEmpty() ? QStringLiteral("another program") : holder);
}

} // namespace porterrors
