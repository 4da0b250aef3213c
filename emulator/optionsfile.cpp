#include "emulator/optionsfile.h"

#include "emulator/text.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>

namespace emulator {

namespace {

/// True if a double quote is opened and not closed. Three of them in a row are a quote in the text.
bool hasOpenQuote(const QString& line)
{
    static const QRegularExpression quotes(QStringLiteral("\"+"));
    constexpr int literalQuote = 3;
    bool isOpen = false;
    QRegularExpressionMatchIterator matches = quotes.globalMatch(line);
    while (matches.hasNext()) {
        if (matches.next().capturedLength() % literalQuote == 1)
            isOpen = !isOpen;
    }
    return isOpen;
}

} // namespace

std::optional<QStringList> argumentsIn(const QString& text, QString& error)
{
    QStringList arguments;
    int number = 0;
    for (const QString& line : text.split('\n')) {
        ++number;
        if (line.trimmed().startsWith('#'))
            continue;
        if (hasOpenQuote(line)) {
            error = Text::tr("line %1: a double quote is not closed").arg(number);
            return std::nullopt;
        }
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
    return argumentsIn(QString::fromUtf8(file.readAll()), error);
}

} // namespace emulator
