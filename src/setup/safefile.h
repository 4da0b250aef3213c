#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// Files that are replaced as a whole, or stay as they are: also if the disk is full or the process
/// dies. GUI thread only.
namespace safefile {

/// The whole file; nothing, with the reason, if it can not be opened. It has to be writable, too,
/// although it is only read.
std::optional<QByteArray> read(const QString& path, QString& reason);

/// Replaces the file; false, with the reason and the old file in place, if that failed.
///
/// A file that is a mount point of its own can not be replaced, and is refused. Where the directory
/// takes no new file, the old one is overwritten in place. Its bytes are copied
/// first, beside it or else to the configuration or the temporary directory, and put back if the
/// overwriting fails. Only if that fails, too, the copy stays, and the reason tells where.
/// `pauseMs` lie between writing and closing.
bool replace(const QString& path, const QByteArray& content, unsigned long pauseMs,
             QString& reason);

} // namespace safefile
