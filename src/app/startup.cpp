#include "app/startup.h"

#include "about/release.h"
#include "app/logging.h"
#include "app/messagelog.h"
#include "app/switches.h"
#include "controls/windowplace.h"
#include "recording/recordingname.h"
#include "window/mainwindow.h"

#include <QApplication>
#include <QMessageBox>
#include <QScreen>

#include <csignal>
#include <omp.h>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace startup {

namespace {

constexpr QSize initialSize(1280, 960);

/// Numbers are read and printed with a decimal point, whatever the locale.
void useDecimalPoint()
{
    // LC_ALL overrides LC_NUMERIC. LANG sets the same locale, but only where no other variable
    // does.
    const QByteArray all = qgetenv("LC_ALL");
    if (!all.isEmpty()) {
        qputenv("LANG", all);
        qunsetenv("LC_ALL");
    }
    qputenv("LC_NUMERIC", "C");
}

void prepareWorkers()
{
    omp_set_dynamic(0);
    const int threads = workerThreads(omp_get_max_threads());
    if (threads > 0)
        omp_set_num_threads(threads);
}

void readArguments(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i)
        switches::readArgument(argv[i]);
}

} // namespace

QString homeDirectory()
{
    const QString fromEnvironment = qEnvironmentVariable("HOME");
    if (!fromEnvironment.isEmpty())
        return fromEnvironment;
    const passwd* user = getpwuid(getuid());
    if (user && user->pw_dir && *user->pw_dir)
        return QString::fromLocal8Bit(user->pw_dir);
    return QDir::currentPath();
}

void prepareConfigDir(int argc, char** argv)
{
    switches::configDir = QDir(homeDirectory());
    switches::configDir.setPath(switches::configDir.path() + QDir::separator()
                                + QStringLiteral("Lumetra"));
    if (!switches::configDir.exists() && !switches::configDir.mkpath(QStringLiteral("."))) {
        // Qt removes its own options from the vector that it gets. This is a copy, so that the
        // application's own object still finds them.
        int count = argc;
        std::vector<char*> arguments(argv, argv + argc);
        arguments.push_back(nullptr);
        const QApplication forTheBox(count, arguments.data());
        QMessageBox::critical(
            nullptr, QObject::tr("Can not create configuration directory"),
            QObject::tr("The directory could not be created.\nPlease make sure that the "
                        "configuration directory can be created."),
            QMessageBox::Ok);
    }
    const QDir recordings(recordingname::folder(switches::configDir.path()));
    if (!recordings.exists())
        recordings.mkpath(QStringLiteral("."));
}

int workerThreads(int processors)
{
    constexpr int manyProcessors = 8;
    if (processors >= manyProcessors)
        return processors - 1;
    return processors >= 2 ? processors : 0;
}

QSize windowSize(const QSize& wanted, const QSize& available)
{
    const bool tooLarge =
        wanted.width() > available.width() || wanted.height() > available.height();
    return tooLarge ? available : wanted;
}

int run(int argc, char** argv, const WindowHook& whenShown)
{
    useDecimalPoint();
    // A write beyond the limit of a file's size shall fail and not end the program.
    std::signal(SIGXFSZ, SIG_IGN);
    prepareConfigDir(argc, argv);
    prepareWorkers();
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling, true);
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi);
    // Without this attribute icons are drawn at one pixel per point, which blurs on a scaled
    // screen.
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    qInstallMessageHandler(writeToMessageLog);
    readArguments(argc, argv);
    logMessage().info() << "Starting" << release::version << release::build;

    const int argumentsPassed = argc - 1;
    QApplication application(argc, argv);
    logMessage().debug() << "Number of command line arguments passed:" << argumentsPassed;

    // One pixel less than the available area in both directions: the difference of the corners.
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    const QSize available(screen.right() - screen.left(), screen.bottom() - screen.top());

    MainWindow window;
    window.resize(initialSize);
    window.resize(windowSize(window.size(), available));
    window.move(middlePlace(available, window.size()));
    window.show();
    window.resizeGraphs();
    window.raise();
    if (whenShown)
        whenShown(window);
    return QApplication::exec();
}

} // namespace startup
