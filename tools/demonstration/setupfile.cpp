// Writes the setup file of the demonstration: asks each controller who it is, so that the
// application knows it again.

#include "app/messagelog.h"
#include "demo/systems.h"
#include "link/linkup.h"
#include "link/serialport.h"
#include "link/tcpclient.h"
#include "setup/recordroom.h"
#include "setup/settings.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>
#include <memory>
#include <optional>

namespace {

constexpr LinkWait controllerWait{2000};
/// Enough on this machine's own network. A controller that streams nothing leaves the stops that
/// clear the line unanswered, so each costs the wait.
constexpr int replyTimeoutMs = 100;

struct Place
{
    ConnectionType type;
    QString address;
    int portOrBaudRate;
};

/// "ADDRESS:PORT" or "NAME@BAUDRATE".
Place placeIn(const QString& text)
{
    const bool isSerial = text.contains(QLatin1Char('@'));
    const int divider = text.lastIndexOf(QLatin1Char(isSerial ? '@' : ':'));
    return {isSerial ? ConnectionType::Serial : ConnectionType::Tcp, text.left(divider),
            text.mid(divider + 1).toInt()};
}

std::unique_ptr<Connection> transportTo(const Place& place)
{
    if (place.type == ConnectionType::Serial)
        return std::make_unique<SerialPort>();
    return std::make_unique<TcpClient>();
}

std::optional<ConnectionSettings> recordOf(int number, const QString& text)
{
    const Place place = placeIn(text);
    const std::unique_ptr<Connection> connection = transportTo(place);
    connection->setTimeoutMs(replyTimeoutMs);
    QString id;
    if (!connection->init(place.address, place.portOrBaudRate)
        || connectAndIdentify(*connection, controllerWait, demosystems::label(number), id,
                              &canBeStored)
               != LinkOutcome::Up) {
        return std::nullopt;
    }
    return demosystems::record(number, place.type, connection->address(), connection->portOrBaud(),
                               id);
}

int complain(const QString& text)
{
    std::fprintf(stderr, "lumetra-demo-setup: %s\n", qPrintable(text));
    return 1;
}

} // namespace

int main(int argc, char** argv)
{
    qInstallMessageHandler(writeToMessageLog);
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Writes a setup file for up to %1 controllers.").arg(demosystems::count));
    parser.addHelpOption();
    parser.addPositionalArgument("FILE", "The setup file; its folder must exist.");
    parser.addPositionalArgument("PLACE...", "Where the controllers are: ADDRESS:PORT, or "
                                             "NAME@BAUDRATE for that of a serial port.");
    parser.process(application);
    QStringList places = parser.positionalArguments();
    if (places.size() < 2 || places.size() > 1 + demosystems::count)
        parser.showHelp(1);
    const QString file = places.takeFirst();

    QList<ConnectionSettings> records;
    for (const QString& place : qAsConst(places)) {
        const std::optional<ConnectionSettings> record = recordOf(records.size(), place);
        if (!record)
            return complain(QStringLiteral("no controller answers at %1").arg(place));
        records.append(*record);
    }
    Settings settings;
    settings.setList(records);
    if (!settings.save(file))
        return complain(QStringLiteral("can not write %1").arg(file));
    return 0;
}
