#include "support/privatedev.h"

#include "support/pseudoterminals.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <linux/capability.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

QString problem;

bool write(const char* path, const QByteArray& text)
{
    QFile file(QString::fromLatin1(path));
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.flush();
}

bool enterNamespace()
{
    const QByteArray user = QByteArray::number(::geteuid());
    const QByteArray group = QByteArray::number(::getegid());
    return ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 && write("/proc/self/setgroups", "deny")
           && write("/proc/self/uid_map", user + " " + user + " 1")
           && write("/proc/self/gid_map", group + " " + group + " 1")
           && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

bool bind(const QByteArray& folder, const char* name)
{
    const QByteArray target = folder + "/" + name;
    const QByteArray source = QByteArray("/dev/") + name;
    const int file = ::open(target.constData(), O_CREAT | O_WRONLY | O_CLOEXEC, 0666);
    if (file < 0)
        return false;
    ::close(file);
    return ::mount(source.constData(), target.constData(), nullptr, MS_BIND, nullptr) == 0;
}

/// Fills a folder with what a program needs of /dev and puts it in the place of /dev.
bool replaceDev()
{
    const QByteArray folder = "/dev/shm";
    const QByteArray terminals = folder + "/pts";
    if (::mount("tmpfs", folder.constData(), "tmpfs", 0, "mode=0755") != 0)
        return false;
    for (const char* name : {"null", "zero", "random", "urandom"}) {
        if (!bind(folder, name))
            return false;
    }
    return ::mkdir(terminals.constData(), 0755) == 0
           && ::mount("devpts", terminals.constData(), "devpts", 0, "newinstance,ptmxmode=0666")
                  == 0
           && ::symlink("pts/ptmx", (folder + "/ptmx").constData()) == 0
           && ::mount(folder.constData(), "/dev", nullptr, MS_MOVE, nullptr) == 0
           && ::mkdir("/dev/shm", 01777) == 0;
}

/// Inside the namespace this user could do everything: a test of missing rights must fail to.
bool giveUpRights()
{
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct none[_LINUX_CAPABILITY_U32S_3]{};
    return ::syscall(SYS_capset, &header, none) == 0;
}

} // namespace

void prepareDevFolder()
{
    if (!QFileInfo(QStringLiteral("/dev")).isWritable()
        && (!enterNamespace() || !replaceDev() || !giveUpRights()))
        problem = QStringLiteral("no rights for /dev, nor for one of our own: %1")
                      .arg(QString::fromLocal8Bit(std::strerror(errno)));
    else if (!QFileInfo(QStringLiteral("/run/lock")).isWritable()
             && !QFileInfo(QStringLiteral("/var/lock")).isWritable()
             && !QFileInfo(QStringLiteral("/tmp")).isWritable())
        problem = QStringLiteral("no folder for the lock files of ports");
    else
        problem = pseudoTerminalProblem();
}

QString devFolderProblem()
{
    return problem;
}
