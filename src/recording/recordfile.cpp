#include "recording/recordfile.h"

#include "app/logging.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace {

constexpr mode_t anybodyMayReadAndWrite = 0666;

/// To open and write a pipe or a device must not block the window.
int openForRecording(const QString& path)
{
    constexpr int flags = O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    int descriptor = -1;
    do {
        descriptor = ::open(QFile::encodeName(path).constData(), flags, anybodyMayReadAndWrite);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

/// How much of the `length` characters at `begin` are whole lines.
std::size_t wholeLines(const std::string& text, std::size_t begin, std::size_t length)
{
    const std::size_t end = length == 0 ? std::string::npos : text.rfind('\n', begin + length - 1);
    return end == std::string::npos || end < begin ? 0 : end + 1 - begin;
}

} // namespace

RecordFile::RecordFile(const QString& path)
    : filePath(path)
    , descriptor(openForRecording(path))
{
    struct stat state = {};
    if (!isOpen() || ::fstat(descriptor, &state) != 0) {
        fail(errno);
        return;
    }
    isRegular = S_ISREG(state.st_mode);
    countsLinks = state.st_nlink > 0;
    device = state.st_dev;
    inode = state.st_ino;
}

RecordFile::~RecordFile()
{
    close();
}

bool RecordFile::isSameAs(const RecordFile& other) const
{
    return isRegular && device == other.device && inode == other.inode;
}

void RecordFile::flush()
{
    if (isOpen())
        writeWaiting();
    if (isOpen() && isRemoved())
        fail(ENOENT);
}

void RecordFile::close()
{
    flush();
    if (isOpen() && !waiting.empty())
        fail(EAGAIN);
    if (!isOpen())
        return;
    // The descriptor is gone whatever the result; some file systems tell only now that they are
    // full.
    if (::close(std::exchange(descriptor, -1)) != 0)
        fail(errno);
}

void RecordFile::fail(int error)
{
    whyFailed = RecordFailure{filePath, qt_error_string(error)};
    waiting.clear();
    if (isOpen())
        ::close(std::exchange(descriptor, -1));
}

void RecordFile::writeWaiting()
{
    std::size_t count = 0;
    int error = 0;
    while (count < waiting.size() && error == 0) {
        const ssize_t taken = ::write(descriptor, waiting.data() + count, portion(count));
        if (taken > 0)
            count += std::size_t(taken);
        else if (taken == 0)
            error = EIO;
        else if (errno != EINTR)
            error = errno;
    }
    endWriting(count, error);
}

/// What is written at once from `begin` on. A pipe takes up to PIPE_BUF bytes as a whole or not at
/// all, so that its lines are never torn.
std::size_t RecordFile::portion(std::size_t begin) const
{
    const std::size_t rest = waiting.size() - begin;
    return isRegular ? rest : wholeLines(waiting, begin, std::min<std::size_t>(rest, PIPE_BUF));
}

void RecordFile::endWriting(std::size_t count, int error)
{
    const bool waitsForRoom =
        !isRegular && error == EAGAIN && waiting.size() - count <= maxWaitingBytes;
    if (error != 0 && !waitsForRoom) {
        if (isRegular)
            cutTo(written + off_t(wholeLines(waiting, 0, count)));
        fail(error);
        return;
    }
    written += off_t(count);
    waiting.erase(0, count);
}

/// A disk that is nearly full takes a part of a line.
void RecordFile::cutTo(off_t length)
{
    if (::ftruncate(descriptor, length) != 0)
        logMessage().warning() << "Can not cut" << qPrintable(filePath) << "to whole lines";
}

bool RecordFile::isRemoved() const
{
    struct stat state = {};
    return countsLinks && ::fstat(descriptor, &state) == 0 && state.st_nlink == 0;
}
