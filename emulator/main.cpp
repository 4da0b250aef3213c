#include "emulator/commandline.h"
#include "emulator/identity.h"
#include "emulator/quitsignals.h"
#include "emulator/tcpface.h"

#include <QCoreApplication>

#include <cstdio>
#include <memory>
#include <vector>

using namespace emulator;

namespace {

constexpr int failure = 1;
constexpr int usageFailure = 2;

void say(FILE* where, const QString& text)
{
    std::fprintf(where, "%s\n", text.toLocal8Bit().constData());
    std::fflush(where);
}

QString placeOf(const QHostAddress& address, quint16 port)
{
    const bool hasColons = address.protocol() == QAbstractSocket::IPv6Protocol;
    return (hasColons ? QStringLiteral("[%1]:%2") : QStringLiteral("%1:%2"))
        .arg(address.toString())
        .arg(port);
}

void reportConnections(TcpFace& face)
{
    const QString place = placeOf(face.address(), face.port());
    QObject::connect(&face, &TcpFace::hostConnected, &face, [place](const QString& peer) {
        say(stderr, QCoreApplication::translate("Program", "%1: %2 connected").arg(place, peer));
    });
    QObject::connect(&face, &TcpFace::hostDisconnected, &face, [place] {
        say(stderr, QCoreApplication::translate("Program", "%1: disconnected").arg(place));
    });
    QObject::connect(&face.controller(), &Controller::refused, &face,
                     [place](const QByteArray& mnemonic) {
                         say(stderr, QCoreApplication::translate("Program", "%1: refused %2")
                                         .arg(place, QString::fromLatin1(mnemonic)));
                     });
}

using Faces = std::vector<std::unique_ptr<TcpFace>>;

/// False if a controller's address can not be had.
bool setUp(const CommandLine& line, Faces& faces)
{
    ControllerOptions options = line.options;
    for (const TcpPlace& place : line.places) {
        faces.push_back(std::make_unique<TcpFace>(options));
        TcpFace& face = *faces.back();
        if (!face.listen(place.address, place.port)) {
            say(stderr, QStringLiteral("lumetra-emulator: %1: %2")
                            .arg(placeOf(place.address, place.port), face.errorString()));
            return false;
        }
        if (!line.quiet)
            reportConnections(face);
        ++options.seed;
    }
    return true;
}

void announce(const Faces& faces)
{
    for (const auto& face : faces) {
        const QByteArray key = face->controller().device().id().mid(keyPosition, keyLength);
        say(stdout, QStringLiteral("tcp %1 %2")
                        .arg(placeOf(face->address(), face->port()), QString::fromLatin1(key)));
    }
}

} // namespace

int main(int argc, char* argv[])
{
    QuitSignals quitSignals;
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("lumetra-emulator"));
    QCoreApplication::setApplicationVersion(QStringLiteral(LUMETRA_VERSION));

    const CommandLine line = readCommandLine(QCoreApplication::arguments());
    switch (line.wish) {
    case CommandLine::Wish::ShowHelp:
        say(stdout, line.text.trimmed());
        return 0;
    case CommandLine::Wish::ShowVersion:
        say(stdout, QStringLiteral("lumetra-emulator " LUMETRA_VERSION));
        return 0;
    case CommandLine::Wish::ShowError:
        say(stderr, QStringLiteral("lumetra-emulator: %1").arg(line.text));
        return usageFailure;
    case CommandLine::Wish::Run:
        break;
    }
    Faces faces;
    if (!setUp(line, faces))
        return failure;
    quitSignals.watch();
    announce(faces);
    return QCoreApplication::exec();
}
