#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace emulator {

/// The arguments in the text of a file of options. A line holds one or several, with blanks between
/// them; double quotes hold together what contains blanks. Lines that begin with # are comments.
/// Empty if a line leaves a double quote open, with the line in `error`.
std::optional<QStringList> argumentsIn(const QString& text, QString& error);

/// The arguments in a file, whose text is UTF-8. Empty on failure, with the reason in `error`.
std::optional<QStringList> readOptionsFile(const QString& path, QString& error);

} // namespace emulator
