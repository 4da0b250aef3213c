#include "setup/safefile.h"

#include "app/switches.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTemporaryFile>
#include <QThread>

#include <memory>

namespace {

/// A full disk makes the write too short or the flush fail; it does not always set the error.
bool writeAll(QFileDevice& file, const QByteArray& content)
{
    return file.write(content) == content.size() && file.flush();
}

/// A write that stored only a part sets no error.
QString whyNotWritten(const QFileDevice& file)
{
    return file.error() == QFileDevice::NoError
               ? QStringLiteral("there is not enough room for all of it")
               : file.errorString();
}

/// A copy of the bytes in the first directory that takes one; null if none does. It is deleted with
/// the result unless it is told to stay.
std::unique_ptr<QTemporaryFile> keepCopy(const QString& path, const QByteArray& bytes)
{
    const QFileInfo file(path);
    for (const QString& directory :
         {file.absolutePath(), switches::configDir.absolutePath(), QDir::tempPath()}) {
        auto copy = std::make_unique<QTemporaryFile>(directory + QDir::separator() + file.fileName()
                                                     + ".old-XXXXXX");
        if (copy->open() && writeAll(*copy, bytes))
            return copy;
    }
    return nullptr;
}

bool overwrite(QFile& file, const QByteArray& content)
{
    return file.seek(0) && writeAll(file, content) && file.resize(content.size());
}

bool overwriteInPlace(const QString& path, const QByteArray& content, unsigned long pauseMs,
                      QString& reason)
{
    QFile file(path);
    // A buffer would keep what could not be written, and stand in the way of what is put back.
    if (!file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly | QIODevice::Unbuffered)) {
        reason = file.errorString();
        return false;
    }
    const QByteArray before = file.readAll();
    const std::unique_ptr<QTemporaryFile> copy = keepCopy(path, before);
    if (!copy) {
        reason = QStringLiteral("there is no room for a copy of the present file");
        return false;
    }
    const bool written = overwrite(file, content);
    if (!written) {
        reason = whyNotWritten(file);
        if (!overwrite(file, before)) {
            copy->setAutoRemove(false);
            reason += QStringLiteral("; what was in it is in ") + copy->fileName();
        }
    }
    QThread::msleep(pauseMs);
    return written;
}

} // namespace

namespace safefile {

std::optional<QByteArray> read(const QString& path, QString& reason)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly)) {
        reason = file.errorString();
        return std::nullopt;
    }
    return file.readAll();
}

bool replace(const QString& path, const QByteArray& content, unsigned long pauseMs, QString& reason)
{
    if (QFile::exists(path) && !read(path, reason))
        return false;
    QSaveFile file(path);
    // With a buffer, the error of a write that is too short has no text.
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        reason = file.errorString();
        return QFile::exists(path) && overwriteInPlace(path, content, pauseMs, reason);
    }
    const bool written = writeAll(file, content);
    if (!written) {
        reason = whyNotWritten(file);
        file.cancelWriting();
    }
    QThread::msleep(pauseMs);
    const bool replaced = file.commit() && written;
    if (written && !replaced)
        reason = file.errorString();
    return replaced;
}

} // namespace safefile
