// How long a user waits for the window: from the start of a process to the end of the first
// painting, with an empty setup file. The process goes the way of the application and is started
// several times.

#include "app/startup.h"
#include "figure.h"
#include "processcost.h"
#include "setup/settings.h"

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>
#include <QTimer>
#include <QWidget>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int starts = 11;
constexpr int childArguments = 2;
constexpr double nsPerMs = 1e6;
constexpr double msPerS = 1000.0;

/// Monotonic, and the same in all processes.
qint64 nowNs()
{
    return std::chrono::steady_clock::now().time_since_epoch().count();
}

qint64 startedAtNs = 0;

/// The painting is complete when the event loop is reached again.
class FirstPaint final : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() == QEvent::Paint && object->isWidgetType()) {
            QCoreApplication::instance()->removeEventFilter(this);
            QTimer::singleShot(0, this, [] {
                std::printf("%lld %f\n", nowNs() - startedAtNs, processcost::processCpuS());
                std::fflush(stdout);
                QCoreApplication::quit();
            });
        }
        return QObject::eventFilter(object, event);
    }
};

/// From the making of the application object on: a platform can paint before a window is told to
/// be shown.
void watchPainting()
{
    auto* application = QCoreApplication::instance();
    if (startedAtNs != 0)
        application->installEventFilter(new FirstPaint(application));
}

Q_COREAPP_STARTUP_FUNCTION(watchPainting)

int runApplication(char* name)
{
    // The serial ports of this machine are left alone.
    std::array<char, 3> noSearch{'-', 'a', '\0'};
    std::array<char*, 3> arguments{name, noSearch.data(), nullptr};
    return startup::run(2, arguments.data());
}

struct Start
{
    double tookMs = 0.0;
    double cpuMs = 0.0;
};

/// Nothing if the process did not paint.
std::optional<Start> startOnce(char* name)
{
    std::array<int, 2> way{};
    if (pipe(way.data()) != 0)
        return std::nullopt;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, way[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, way[0]);
    posix_spawn_file_actions_addclose(&actions, way[1]);
    std::string since = std::to_string(nowNs());
    std::array<char*, 3> arguments{name, since.data(), nullptr};
    pid_t process = 0;
    const int failed =
        posix_spawn(&process, "/proc/self/exe", &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(way[1]);
    qint64 tookNs = 0;
    double cpuS = 0.0;
    std::FILE* output = fdopen(way[0], "r");
    const bool hasPainted = failed == 0 && std::fscanf(output, "%lld %lf", &tookNs, &cpuS) == 2;
    std::fclose(output);
    if (failed == 0)
        waitpid(process, nullptr, 0);
    if (!hasPainted)
        return std::nullopt;
    return Start{double(tookNs) / nsPerMs, cpuS * msPerS};
}

double medianOf(const std::vector<Start>& all, double Start::*value)
{
    std::vector<double> values;
    for (const Start& each : all)
        values.push_back(each.*value);
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

bool prepareHome(const QTemporaryDir& home)
{
    if (!qEnvironmentVariableIsSet("XAUTHORITY"))
        qputenv("XAUTHORITY", QDir::home().filePath(".Xauthority").toLocal8Bit());
    qputenv("HOME", home.path().toLocal8Bit());
    const QDir folder(home.path());
    return folder.mkdir("Lumetra")
           && Settings().save(folder.filePath("Lumetra/ConnectionSetup.xml"));
}

int fail(const char* text)
{
    std::fprintf(stderr, "lumetra-firstpaint: %s\n", text);
    return EXIT_FAILURE;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == childArguments) {
        startedAtNs = std::atoll(argv[1]);
        return runApplication(argv[0]);
    }
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir home;
    if (!prepareHome(home))
        return fail("the setup file can not be written");
    std::vector<Start> all;
    for (int i = 0; i < starts; ++i) {
        const std::optional<Start> start = startOnce(argv[0]);
        if (!start)
            return fail("the window was not painted");
        all.push_back(*start);
    }
    figure::tell("process start to first paint", medianOf(all, &Start::tookMs), 1, "ms");
    figure::tell("processor until first paint", medianOf(all, &Start::cpuMs), 1, "ms");
    return EXIT_SUCCESS;
}
