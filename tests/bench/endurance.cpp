// The application over many systems for a long time: the real window, from its start by the setup
// file on, and controllers in a process of their own. Nothing is judged here.

#include "app/startup.h"
#include "controllerprocess.h"
#include "endurancerun.h"
#include "setup/settings.h"
#include "window/mainwindow.h"

#include <QCommandLineParser>
#include <QDir>
#include <QTemporaryDir>

#include <array>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int usageFailure = 2;

EnduranceOptions readOptions(int argc, char** argv)
{
    EnduranceOptions options;
    const QCommandLineOption systems("systems", "How many controllers, up to 50.", "N", "1");
    const QCommandLineOption mode("mode", "oscilloscope or pointing.", "MODE", "oscilloscope");
    const QCommandLineOption samples("samples", "Samples to take in pointing mode.", "K",
                                     QString::number(options.samplesToTake));
    const QCommandLineOption seconds("seconds", "How long to watch.", "S",
                                     QString::number(options.seconds));
    QCommandLineParser parser;
    parser.addOptions({systems, mode, samples, seconds});
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    const bool isGood = parser.parse(arguments) && parser.positionalArguments().isEmpty();
    options.systems = parser.value(systems).toInt();
    options.pointing = parser.value(mode) == QLatin1String("pointing");
    options.samplesToTake = parser.value(samples).toInt();
    options.seconds = parser.value(seconds).toInt();
    const bool isMode = options.pointing || parser.value(mode) == QLatin1String("oscilloscope");
    if (!isGood || !isMode || options.systems < 1 || options.systems > ShownSystems::maxDisplayed
        || options.samplesToTake < 1 || options.seconds < 1) {
        std::fputs("Usage: lumetra-endurance [--systems N] [--mode oscilloscope|pointing] "
                   "[--samples K] [--seconds S]\n",
                   stderr);
        std::exit(usageFailure);
    }
    return options;
}

/// A home in which the setup file knows the controllers.
bool prepareHome(const QTemporaryDir& home, const QList<ControllerPlace>& places)
{
    if (!qEnvironmentVariableIsSet("XAUTHORITY"))
        qputenv("XAUTHORITY", QDir::home().filePath(".Xauthority").toLocal8Bit());
    qputenv("HOME", home.path().toLocal8Bit());
    QList<ConnectionSettings> records;
    for (const ControllerPlace& place : places)
        records.append(storedRecord(records.size(), place));
    Settings settings;
    settings.setList(records);
    const QDir folder(home.path());
    return folder.mkdir("Lumetra") && settings.save(folder.filePath("Lumetra/ConnectionSetup.xml"));
}

int fail(const char* text)
{
    std::fprintf(stderr, "lumetra-endurance: %s\n", text);
    return EXIT_FAILURE;
}

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const EnduranceOptions options = readOptions(argc, argv);
    ControllerProcess controllers(options.systems);
    if (controllers.places().isEmpty())
        return fail("the emulated controllers can not be set up");
    const QTemporaryDir home;
    if (!prepareHome(home, controllers.places()))
        return fail("the setup file can not be written");

    // The serial ports of this machine are left alone.
    std::array<char, 3> noSearch{'-', 'a', '\0'};
    std::array<char*, 3> arguments{argv[0], noSearch.data(), nullptr};
    bool hasStreamed = false;
    startup::run(2, arguments.data(), [&](MainWindow& window) {
        auto* run = new EnduranceRun(window, controllers, options, &window);
        QObject::connect(run, &EnduranceRun::ended, [&](bool all) { hasStreamed = all; });
        QTimer::singleShot(0, run, &EnduranceRun::start);
    });
    return hasStreamed ? EXIT_SUCCESS : fail("not all systems streamed");
}
