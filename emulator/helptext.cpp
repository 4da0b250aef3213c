#include "emulator/helptext.h"

#include <QStringList>

namespace emulator {

namespace {

constexpr int lineWidth = 79;
constexpr int descriptionColumn = 24;

/// Names and value of an option, as "-h, --help" or "--firmware N".
QString titleOf(const QCommandLineOption& option)
{
    QStringList names;
    for (const QString& name : option.names())
        names.append((name.size() == 1 ? QStringLiteral("-") : QStringLiteral("--")) + name);
    const QString title = names.join(QStringLiteral(", "));
    return option.valueName().isEmpty() ? title : title + ' ' + option.valueName();
}

QString helpOf(const QCommandLineOption& option)
{
    const QString title = "  " + titleOf(option);
    const QString description = wrapped(option.description(), descriptionColumn);
    // A title that leaves no gap in front of the description has a line of its own.
    if (title.size() + 2 > descriptionColumn)
        return title + '\n' + description;
    return title.leftJustified(descriptionColumn) + description.mid(descriptionColumn);
}

QString helpOf(const OptionSection& section)
{
    QString text = section.title + ":\n";
    if (!section.note.isEmpty())
        text += wrapped(section.note, 2) + '\n';
    for (const QCommandLineOption& option : section.options)
        text += helpOf(option);
    return text;
}

} // namespace

QString wrapped(const QString& text, int indent)
{
    const QString margin(indent, ' ');
    QString lines;
    QString line = margin;
    for (const QString& word : text.split(' ')) {
        const bool isFirst = line.size() == indent;
        if (!isFirst && line.size() + 1 + word.size() > lineWidth) {
            lines += line + '\n';
            line = margin + word;
        } else {
            line += isFirst ? word : ' ' + word;
        }
    }
    return lines + line + '\n';
}

QString helpText(const QVector<OptionSection>& sections)
{
    QStringList texts;
    for (const OptionSection& section : sections)
        texts.append(helpOf(section));
    return texts.join('\n');
}

} // namespace emulator
