#pragma once

#include <QString>

#include <optional>
#include <string>
#include <sys/types.h>

/// Why a recording could not go on.
struct RecordFailure
{
    QString path;
    /// In the words of the system.
    QString reason;
};

/// One file that lines are recorded to. What is appended waits until the next flush. What stands in
/// a regular file are whole lines, also behind an error or a crash. Only the end of the process in
/// the very moment of a write can cut a line, as the system writes page by page. One thread only.
///
/// A file that has failed is closed and takes nothing any more. A pipe that is full does not block:
/// its lines wait here, up to a limit.
class RecordFile final
{
public:
    /// What may wait for room in a pipe: half a minute at 500 lines a second.
    static constexpr std::size_t maxWaitingBytes = 1024 * 1024;

    /// Opens for reading and writing; what the file held is gone. Failed if that can not be done.
    explicit RecordFile(const QString& path);
    /// Flushes and closes.
    ~RecordFile();
    RecordFile(const RecordFile&) = delete;
    RecordFile& operator=(const RecordFile&) = delete;

    bool isOpen() const { return descriptor >= 0; }
    /// Unset while all is well.
    const std::optional<RecordFailure>& failure() const { return whyFailed; }
    /// Whether both are one regular file, which can have several names.
    bool isSameAs(const RecordFile& other) const;

    /// Where whole lines are appended to while the file is open.
    std::string& lines() { return waiting; }
    /// Writes what waits. Fails if that can not be done, and if the file was removed.
    void flush();
    /// Flushes and closes.
    void close();
    /// Closes and has failed for this error of the system.
    void fail(int error);

private:
    void writeWaiting();
    std::size_t portion(std::size_t begin) const;
    void endWriting(std::size_t count, int error);
    void cutTo(off_t length);
    bool isRemoved() const;

    QString filePath;
    int descriptor = -1;
    std::string waiting;
    /// Bytes in the file; the last one ends a line.
    off_t written = 0;
    bool isRegular = false;
    /// Some file systems count no links.
    bool countsLinks = false;
    dev_t device = 0;
    ino_t inode = 0;
    std::optional<RecordFailure> whyFailed;
};
