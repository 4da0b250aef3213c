#include "emulator/commandline.h"

#include "emulator/helptext.h"
#include "emulator/optionreader.h"
#include "emulator/optionsections.h"
#include "emulator/optionsfile.h"
#include "emulator/placementreader.h"
#include "emulator/text.h"

#include <QCommandLineParser>

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace emulator {

namespace {

CommandLine failed(const QString& complaint)
{
    CommandLine line;
    line.wish = CommandLine::Wish::ShowError;
    line.text = complaint;
    return line;
}

void addOptions(QCommandLineParser& parser)
{
    parser.addOptions(programSection().options);
    for (const OptionSection& section : controllerSections())
        parser.addOptions(section.options);
}

/// Options that are given together: on the command line, or in a file that it names.
struct Source
{
    /// Stands in front of messages about them.
    QString place;
    QCommandLineParser parser;
};

/// The files in their order, and behind them the command line. A later one wins over those before.
using Sources = std::vector<std::unique_ptr<Source>>;

/// Empty on failure, with the reason in `error`.
std::unique_ptr<Source> makeSource(const QString& place, const QStringList& arguments,
                                   QString& error)
{
    auto source = std::make_unique<Source>();
    source->place = place;
    addOptions(source->parser);
    if (source->parser.parse(arguments))
        return source;
    error = place + source->parser.errorText();
    return nullptr;
}

std::unique_ptr<Source> readFile(const QString& file, QString& error)
{
    const QString place = QStringLiteral("--options: %1: ").arg(file);
    const std::optional<QStringList> arguments = readOptionsFile(file, error);
    if (!arguments) {
        error.prepend(place);
        return nullptr;
    }
    // The parser passes over the program's name.
    std::unique_ptr<Source> source = makeSource(place, QStringList{QString()} + *arguments, error);
    if (!source || !source->parser.isSet("options"))
        return source;
    error = place + Text::tr("a file of options can not name another one");
    return nullptr;
}

/// Reads the arguments and the files that they name. On failure `error` is set.
Sources readSources(const QStringList& arguments, QString& error)
{
    std::unique_ptr<Source> commandLine = makeSource({}, arguments, error);
    if (!commandLine)
        return {};
    Sources sources;
    for (const QString& file : commandLine->parser.values("options")) {
        std::unique_ptr<Source> source = readFile(file, error);
        if (!source)
            return {};
        sources.push_back(std::move(source));
    }
    sources.push_back(std::move(commandLine));
    return sources;
}

bool isSet(const Sources& sources, const QString& option)
{
    return std::any_of(sources.begin(), sources.end(),
                       [&](const auto& source) { return source->parser.isSet(option); });
}

/// Complains of an argument that belongs to no option; empty if there is none.
QString strayArgument(const Sources& sources)
{
    for (const auto& source : sources) {
        const QStringList stray = source->parser.positionalArguments();
        if (!stray.isEmpty())
            return source->place + Text::tr("unexpected argument \"%1\"").arg(stray.first());
    }
    return {};
}

/// What holds for all controllers.
ControllerOptions readCommonOptions(const Sources& sources, QString& error)
{
    ControllerOptions options;
    for (const auto& source : sources) {
        OptionReader reader(source->parser, source->place + "--");
        options = readControllerOptions(reader, options);
        if (error.isEmpty())
            error = reader.complaint();
    }
    return options;
}

QVector<Placement> readPlacements(const Sources& sources, const ControllerOptions& common,
                                  QString& error)
{
    QVector<Placement> placements;
    const auto add = [&](const Source& source, const QString& option, auto read) {
        for (const QString& text : source.parser.values(option)) {
            ControllerOptions options = common;
            // Every controller has beams of its own.
            options.seed += static_cast<quint64>(placements.size());
            std::optional<Placement> placement = read(text, options, error);
            if (!placement) {
                error.prepend(source.place);
                return;
            }
            placements.append(std::move(*placement));
        }
    };
    const auto addAll = [&](const QString& option, auto read) {
        for (const auto& source : sources) {
            if (error.isEmpty())
                add(*source, option, read);
        }
    };
    addAll("tcp", readTcpPlacement);
    addAll("pty", readPtyPlacement);
    if (error.isEmpty() && placements.isEmpty())
        error = Text::tr("no controller to emulate: give --tcp ADDRESS:PORT or --pty LINK");
    return placements;
}

QString wholeHelp()
{
    const QString usage = Text::tr("Usage: lumetra-emulator OPTION...");
    const QString purpose = Text::tr(
        "Emulates controllers for laser-beam position stabilisation. For each controller that "
        "is ready a line \"tcp ADDRESS:PORT KEY\" or \"pty LINK KEY\" is printed.");
    const QString manner =
        Text::tr("What describes a controller holds for all where it stands alone. Behind a "
                 "controller's place it holds for that one only, and wins:");
    const QString example = QStringLiteral("  lumetra-emulator --firmware 31 "
                                           "--tcp 127.0.0.11:2000,firmware=10,vm");
    return QStringList{usage + '\n', wrapped(purpose), wrapped(manner) + example + '\n',
                       helpText(QVector<OptionSection>{programSection()} + controllerSections())}
        .join('\n');
}

} // namespace

CommandLine readCommandLine(const QStringList& arguments)
{
    CommandLine line;
    QString error;
    const Sources sources = readSources(arguments, error);
    if (!error.isEmpty())
        return failed(error);
    if (isSet(sources, "help")) {
        line.wish = CommandLine::Wish::ShowHelp;
        line.text = wholeHelp();
        return line;
    }
    if (isSet(sources, "version")) {
        line.wish = CommandLine::Wish::ShowVersion;
        return line;
    }
    error = strayArgument(sources);
    const ControllerOptions common = readCommonOptions(sources, error);
    if (error.isEmpty())
        line.placements = readPlacements(sources, common, error);
    if (error.isEmpty() && !common.key.isEmpty() && line.placements.size() > 1)
        error =
            Text::tr("--key: stands alone, but there are several controllers; put it behind the "
                     "place of one, as in --pty LINK,key=KEY");
    line.quiet = isSet(sources, "quiet");
    return error.isEmpty() ? line : failed(error);
}

} // namespace emulator
