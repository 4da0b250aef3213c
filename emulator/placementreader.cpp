#include "emulator/placementreader.h"

#include "emulator/optionreader.h"
#include "emulator/optionsections.h"
#include "emulator/text.h"

#include <QCommandLineParser>
#include <QRegularExpression>

#include <algorithm>
#include <utility>

namespace emulator {

namespace {

/// A place and the options behind it, each a name or NAME=VALUE.
struct Pieces
{
    QString place;
    QStringList options;
};

Pieces piecesOf(const QString& text)
{
    const QStringList pieces = text.split(',');
    return {pieces.first(), pieces.mid(1)};
}

/// An address in full and a port. An IPv6 address stands in brackets, since it has colons of its
/// own.
std::optional<TcpPlace> tcpPlace(const QString& text)
{
    static const QRegularExpression form(QRegularExpression::anchoredPattern(
        QStringLiteral("(?:\\[([^\\]\\s]+)\\]|([0-9]+(?:\\.[0-9]+){3})):([0-9]+)")));
    const QRegularExpressionMatch match = form.match(text);
    const QString bracketed = match.captured(1);
    const QString plain = match.captured(2);
    const auto protocol =
        plain.isEmpty() ? QAbstractSocket::IPv6Protocol : QAbstractSocket::IPv4Protocol;
    bool isPort = false;
    TcpPlace place;
    place.port = match.captured(3).toUShort(&isPort);
    const bool isAddress = place.address.setAddress(plain.isEmpty() ? bracketed : plain)
                           && place.address.protocol() == protocol;
    return isAddress && isPort ? std::make_optional(place) : std::nullopt;
}

/// What is wrong with the form of an option, a NAME or NAME=VALUE; empty if it is right.
QString formError(const QString& text, const QList<QCommandLineOption>& known)
{
    const QString name = text.section('=', 0, 0);
    const auto option =
        std::find_if(known.begin(), known.end(), [&](const QCommandLineOption& candidate) {
            return candidate.names().contains(name);
        });
    if (option == known.end())
        return Text::tr("there is no option \"%1\"").arg(name);
    const bool takesValue = !option->valueName().isEmpty();
    const bool hasValue = text.contains('=');
    if (takesValue && !hasValue)
        return Text::tr("%1: a value is missing").arg(name);
    if (hasValue && !takesValue)
        return Text::tr("%1: takes no value").arg(name);
    return {};
}

/// The options as they would stand alone on a command line. On failure `error` is set.
QStringList argumentsOf(const QStringList& options, const QList<QCommandLineOption>& known,
                        QString& error)
{
    // The parser passes over the program's name.
    QStringList arguments{QString()};
    for (const QString& option : options) {
        error = formError(option, known);
        if (!error.isEmpty())
            return {};
        arguments.append(QStringLiteral("--") + option);
    }
    return arguments;
}

std::optional<ControllerOptions> ownOptions(const QStringList& options, const QString& place,
                                            const ControllerOptions& common, QString& error)
{
    QList<QCommandLineOption> known;
    for (const OptionSection& section : controllerSections())
        known += section.options;
    const QStringList arguments = argumentsOf(options, known, error);
    if (!error.isEmpty()) {
        error.prepend(place);
        return std::nullopt;
    }
    QCommandLineParser parser;
    parser.addOptions(known);
    parser.parse(arguments);
    OptionReader reader(parser, place);
    const ControllerOptions read = readControllerOptions(reader, common);
    error = reader.complaint();
    return error.isEmpty() ? std::make_optional(read) : std::nullopt;
}

/// Reads the options of a controller whose place is right.
std::optional<Placement> withOptions(Placement placement, const QString& option,
                                     const Pieces& pieces, const ControllerOptions& common,
                                     QString& error)
{
    const QString place = QStringLiteral("--%1 %2: ").arg(option, pieces.place);
    std::optional<ControllerOptions> own = ownOptions(pieces.options, place, common, error);
    if (!own)
        return std::nullopt;
    placement.options = std::move(*own);
    return placement;
}

} // namespace

std::optional<Placement> readTcpPlacement(const QString& text, const ControllerOptions& common,
                                          QString& error)
{
    const Pieces pieces = piecesOf(text);
    Placement placement;
    placement.tcp = tcpPlace(pieces.place);
    if (!placement.tcp) {
        error = Text::tr("--tcp: \"%1\" is not a numeric address and a port, as in 127.0.0.1:2000")
                    .arg(pieces.place);
        return std::nullopt;
    }
    return withOptions(placement, "tcp", pieces, common, error);
}

std::optional<Placement> readPtyPlacement(const QString& text, const ControllerOptions& common,
                                          QString& error)
{
    const Pieces pieces = piecesOf(text);
    Placement placement;
    placement.link = pieces.place;
    if (placement.link.isEmpty()) {
        error = Text::tr("--pty: the link has no name");
        return std::nullopt;
    }
    return withOptions(placement, "pty", pieces, common, error);
}

} // namespace emulator
