#include "emulator/commandline.h"

#include "emulator/optionreader.h"
#include "emulator/optionsections.h"
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

QString helpText(const QCommandLineParser& parser)
{
    return parser.helpText();
}

} // namespace

CommandLine readCommandLine(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        tr("Emulates controllers for laser-beam position stabilisation.\n\n"
           "For each controller that is ready a line \"tcp ADDRESS:PORT KEY\" or "
           "\"pty LINK KEY\" is printed."));
    addOptions(parser);

    CommandLine line;
    if (!parser.parse(arguments))
        return failed(parser.errorText());
    if (parser.isSet("help")) {
        line.wish = CommandLine::Wish::ShowHelp;
        line.text = helpText(parser);
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
    QString error = reader.complaint();
    if (error.isEmpty())
        line.placements = readPlacements(parser, common, error);
    line.quiet = parser.isSet("quiet");
    return error.isEmpty() ? line : failed(error);
}

} // namespace emulator
