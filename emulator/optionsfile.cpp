#include "emulator/optionsfile.h"

#include <QFile>
#include <QProcess>

namespace emulator {

QStringList argumentsIn(const QString& text)
{
    QStringList arguments;
    for (const QString& line : text.split('\n')) {
        if (!line.trimmed().startsWith('#'))
            arguments += QProcess::splitCommand(line);
    }
    return arguments;
}

std::optional<QStringList> readOptionsFile(const QString& path, QString& error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = file.errorString();
        return std::nullopt;
    }
    return argumentsIn(QString::fromUtf8(file.readAll()));
}

} // namespace emulator
