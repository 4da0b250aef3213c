#include "emulator/commandline.h"
#include "emulator/identity.h"
#include "emulator/ptyface.h"
#include "emulator/quitsignals.h"
#include "emulator/tcpface.h"
#include "emulator/text.h"

#include <QCoreApplication>

#include <cstdio>
#include <memory>
#include <utility>
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

void reportConnections(Face& face)
{
    const QString place = face.place();
    QObject::connect(&face, &Face::hostConnected, &face, [place](const QString& peer) {
        say(stderr, peer.isEmpty() ? Text::tr("%1: connected").arg(place)
                                   : Text::tr("%1: %2 connected").arg(place, peer));
    });
    QObject::connect(&face, &Face::hostDisconnected, &face,
                     [place] { say(stderr, Text::tr("%1: disconnected").arg(place)); });
    QObject::connect(
        &face.controller(), &Controller::refused, &face, [place](const QByteArray& mnemonic) {
            say(stderr, Text::tr("%1: refused %2").arg(place, QString::fromLatin1(mnemonic)));
        });
}

using Faces = std::vector<std::unique_ptr<Face>>;

/// The controller at its port, or null if that can not be had.
std::unique_ptr<Face> setUp(const Placement& placement)
{
    const auto kept = [](auto face, bool isOpen) -> std::unique_ptr<Face> {
        if (isOpen)
            return face;
        say(stderr,
            QStringLiteral("lumetra-emulator: %1: %2").arg(face->place(), face->errorString()));
        return nullptr;
    };
    if (placement.tcp) {
        auto face = std::make_unique<TcpFace>(placement.options);
        const bool isOpen = face->listen(placement.tcp->address, placement.tcp->port);
        return kept(std::move(face), isOpen);
    }
    auto face = std::make_unique<PtyFace>(placement.options);
    const bool isOpen = face->open(placement.link);
    return kept(std::move(face), isOpen);
}

/// False if a controller's address or link can not be had.
bool setUp(const CommandLine& line, Faces& faces)
{
    for (const Placement& placement : line.placements) {
        std::unique_ptr<Face> face = setUp(placement);
        if (!face)
            return false;
        if (!line.quiet)
            reportConnections(*face);
        faces.push_back(std::move(face));
    }
    return true;
}

void announce(const Faces& faces)
{
    for (const auto& face : faces) {
        const QByteArray key = face->controller().device().id().mid(keyPosition, keyLength);
        say(stdout,
            QStringLiteral("%1 %2 %3").arg(face->kind(), face->place(), QString::fromLatin1(key)));
    }
}

void reportUnplayedRules(const Faces& faces)
{
    for (const auto& face : faces) {
        for (const QString& rule : face->controller().unplayedRules())
            say(stderr, Text::tr("%1: %2 never acted").arg(face->place(), rule));
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
    const int result = QCoreApplication::exec();
    if (!line.quiet)
        reportUnplayedRules(faces);
    return result;
}
