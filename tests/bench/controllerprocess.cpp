#include "controllerprocess.h"

#include "beamcircle.h"
#include "emulator/tcpface.h"
#include "processcost.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <array>
#include <cstdlib>
#include <memory>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int samplesPerTurn = 500;
constexpr int firstHost = 11;
/// The request to be silent. The end of the way is the request to end.
constexpr char silenceRequest = 's';

using Faces = std::vector<std::unique_ptr<emulator::TcpFace>>;

Faces setUpControllers(int count)
{
    emulator::ControllerOptions options;
    options.script = beamCircle(samplesPerTurn);
    options.scriptRepeats = true;
    Faces faces;
    for (int number = 0; number < count; ++number) {
        const QString address = QStringLiteral("127.0.0.%1").arg(firstHost + number);
        faces.push_back(std::make_unique<emulator::TcpFace>(options));
        if (!faces.back()->listen(QHostAddress(address), 0))
            return {};
    }
    return faces;
}

void tellPlaces(const Faces& faces, std::FILE* talk)
{
    for (const auto& face : faces)
        std::fprintf(talk, "%s %d %s\n", qPrintable(face->address().toString()), face->port(),
                     face->controller().device().id().constData());
    if (faces.empty())
        std::fprintf(talk, "\n");
    std::fflush(talk);
}

void silenceAll(const Faces& faces, std::FILE* talk)
{
    StreamedPackets packets;
    for (const auto& face : faces) {
        face->setPaused(true);
        packets.sent += face->controller().packetsSent();
        packets.lost += face->controller().packetsLost();
    }
    packets.cpuS = processcost::processCpuS();
    std::fprintf(talk, "%lld %lld %f\n", packets.sent, packets.lost, packets.cpuS);
    std::fflush(talk);
}

/// The life of the process. One thread serves all controllers.
void runControllers(int count, int way)
{
    int argumentCount = 1;
    std::array<char, 1> name{};
    std::array<char*, 2> arguments{name.data(), nullptr};
    QCoreApplication application(argumentCount, arguments.data());
    const Faces faces = setUpControllers(count);
    std::FILE* talk = fdopen(way, "r+");
    tellPlaces(faces, talk);
    const QSocketNotifier requests(way, QSocketNotifier::Read);
    QObject::connect(&requests, &QSocketNotifier::activated, &application, [&] {
        char request = 0;
        if (::read(way, &request, 1) == 1 && request == silenceRequest)
            silenceAll(faces, talk);
        else
            QCoreApplication::quit();
    });
    QCoreApplication::exec();
    std::fclose(talk);
}

} // namespace

ControllerProcess::ControllerProcess(int count)
{
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
        return;
    process = fork();
    if (process == 0) {
        ::close(ends[0]);
        runControllers(count, ends[1]);
        std::_Exit(EXIT_SUCCESS);
    }
    ::close(ends[1]);
    talk = fdopen(ends[0], "r+");
    if (process > 0)
        readPlaces(count);
}

ControllerProcess::~ControllerProcess()
{
    if (talk)
        std::fclose(talk);
    if (process > 0)
        waitpid(process, nullptr, 0);
}

void ControllerProcess::readPlaces(int count)
{
    constexpr int lineLength = 256;
    std::array<char, lineLength> line{};
    QList<ControllerPlace> places;
    while (places.size() < count && std::fgets(line.data(), lineLength, talk)) {
        // The identification text has spaces of its own.
        const QString text = QString::fromUtf8(line.data()).remove(QLatin1Char('\n'));
        if (text.isEmpty())
            return;
        places.append({text.section(QLatin1Char(' '), 0, 0),
                       text.section(QLatin1Char(' '), 1, 1).toInt(),
                       text.section(QLatin1Char(' '), 2)});
    }
    if (places.size() == count)
        controllerPlaces = places;
}

StreamedPackets ControllerProcess::silence()
{
    StreamedPackets packets;
    std::fputc(silenceRequest, talk);
    std::fflush(talk);
    if (std::fscanf(talk, "%lld %lld %lf", &packets.sent, &packets.lost, &packets.cpuS) != 3)
        return {};
    return packets;
}
