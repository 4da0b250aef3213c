#include "emulator/commandline.h"

#include "emulator/helptext.h"
#include "emulator/optionreader.h"
#include "emulator/optionsections.h"
#include "emulator/optionsfile.h"
#include "emulator/placementreader.h"

#include <QCommandLineParser>
#include <QCoreApplication>

namespace emulator {

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("CommandLine", text);
}

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

QVector<Placement> readPlacements(const QCommandLineParser& parser, const ControllerOptions& common,
                                  QString& error)
{
    QVector<Placement> placements;
    const auto add = [&](const QString& option, auto read) {
        for (const QString& text : parser.values(option)) {
            ControllerOptions options = common;
            // Every controller has beams of its own.
            options.seed += static_cast<quint64>(placements.size());
            const std::optional<Placement> placement = read(text, options, error);
            if (!placement)
                return;
            placements.append(*placement);
        }
    };
    add("tcp", readTcpPlacement);
    if (error.isEmpty())
        add("pty", readPtyPlacement);
    if (error.isEmpty() && placements.isEmpty())
        error = tr("no controller to emulate: give --tcp ADDRESS:PORT or --pty LINK");
    return placements;
}

/// What is wrong with the arguments of a file, read for themselves: a value that is missing at the
/// end of a file must not be taken from what follows. Empty if nothing is.
QString fileError(const QStringList& arguments)
{
    QCommandLineParser parser;
    addOptions(parser);
    // The parser passes over the program's name.
    if (!parser.parse(QStringList{QString()} + arguments))
        return parser.errorText();
    return parser.isSet("options") ? tr("a file of options can not name another one") : QString();
}

/// The arguments in the files, one file after the other. Empty on failure, with the reason in
/// `error`.
QStringList argumentsOfFiles(const QStringList& files, QString& error)
{
    QStringList arguments;
    for (const QString& file : files) {
        const std::optional<QStringList> read = readOptionsFile(file, error);
        if (read)
            error = fileError(*read);
        if (!error.isEmpty()) {
            error = QStringLiteral("--options: %1: %2").arg(file, error);
            return {};
        }
        arguments += *read;
    }
    return arguments;
}

/// Reads the arguments and the files that they name. False on failure, with the reason in `error`.
bool parse(QCommandLineParser& parser, const QStringList& arguments, QString& error)
{
    if (!parser.parse(arguments)) {
        error = parser.errorText();
        return false;
    }
    const QStringList added = argumentsOfFiles(parser.values("options"), error);
    // In front of the other arguments, so that what the command line says wins.
    return error.isEmpty() && parser.parse(arguments.mid(0, 1) + added + arguments.mid(1));
}

QString wholeHelp()
{
    const QString usage = tr("Usage: lumetra-emulator OPTION...");
    const QString purpose =
        tr("Emulates controllers for laser-beam position stabilisation. For each controller that "
           "is ready a line \"tcp ADDRESS:PORT KEY\" or \"pty LINK KEY\" is printed.");
    const QString manner =
        tr("What describes a controller holds for all where it stands alone. Behind a "
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
    QCommandLineParser parser;
    addOptions(parser);

    CommandLine line;
    QString error;
    if (!parse(parser, arguments, error))
        return failed(error);
    if (parser.isSet("help")) {
        line.wish = CommandLine::Wish::ShowHelp;
        line.text = wholeHelp();
        return line;
    }
    if (parser.isSet("version")) {
        line.wish = CommandLine::Wish::ShowVersion;
        return line;
    }
    if (!parser.positionalArguments().isEmpty())
        return failed(tr("what is \"%1\"?").arg(parser.positionalArguments().first()));
    OptionReader reader(parser, "--");
    const ControllerOptions common = readControllerOptions(reader, {});
    error = reader.complaint();
    if (error.isEmpty())
        line.placements = readPlacements(parser, common, error);
    line.quiet = parser.isSet("quiet");
    return error.isEmpty() ? line : failed(error);
}

} // namespace emulator
