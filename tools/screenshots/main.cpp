// Takes the pictures of docs/screenshots: the real window on emulated controllers, worked by mouse
// and keyboard.

#include "app/messagelog.h"
#include "app/switches.h"
#include "demo/systems.h"
#include "demo/windowhand.h"
#include "emulator/emulatorhost.h"
#include "link/connection.h"
#include "plots/counter.h"
#include "setup/connectionoverviewdialog.h"
#include "setup/settings.h"
#include "setup/settingsdialog.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QApplication>
#include <QCommandLineParser>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QtTest>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr QSize normalSize(1280, 960);
constexpr QSize smallestSize(600, 450);

void show(MainWindow& window, int system, bool on)
{
    window.showConnection(window.liveConnections()[std::size_t(system)]->address(), on);
}

/// Draws a rubber band around the middle of a plot.
void zoom(MainWindow& window, const char* plot, double share)
{
    QWidget* canvas = window.findChild<QWidget*>(plot)->findChild<QWidget*>("QwtPlotCanvas");
    QWindow* native = window.windowHandle();
    const QPoint middle = canvas->mapTo(&window, canvas->rect().center());
    const QPoint reach(int(canvas->width() * share / 2), int(canvas->height() * share / 2));
    QTest::mousePress(native, Qt::LeftButton, {}, middle - reach);
    QTest::mouseMove(native, middle);
    QTest::mouseMove(native, middle + reach);
    QTest::mouseRelease(native, Qt::LeftButton, {}, middle + reach);
}

void takeAll(MainWindow& window, const QString& folder)
{
    const WindowHand hand(window, folder);
    show(window, 1, false);
    show(window, 2, false);
    window.findChild<Counter*>("samplingRateCounter")->spinBox->setValue(500);
    hand.take(window, "idle");

    hand.click("startAction");
    QTest::qWait(5000);
    hand.clickOn(*window.findChild<QWidget*>("push_Stab1"));
    QTest::qWait(4000);
    hand.take(window, "one-system");

    hand.clickMark("pointingRadio");
    hand.clickOn(*window.findChild<QWidget*>("push_Stab1"));
    QTest::qWait(2500);
    zoom(window, "osciPlot1", 0.12);
    for (const char* box : {"checkBox_Stats1", "checkBox_Stats2"})
        hand.clickMark(box);
    QTest::qWait(1000);
    hand.take(window, "pointing-zoomed");
    hand.clickOn(*window.findChild<QWidget*>("pushButton_Zoom1"));
    hand.clickMark("oscilloscopeRadio");

    show(window, 1, true);
    show(window, 2, true);
    QTest::qWait(6000);
    hand.take(window, "three-systems");

    auto* overview = window.findChild<ConnectionOverviewDialog*>();
    window.findChild<QAction*>("actionConfiguration")->trigger();
    QTest::qWait(500);
    hand.take(*overview, "overview");
    overview->close();

    auto* settings = window.findChild<SettingsDialog*>();
    window.findChild<QAction*>("actionSetup")->trigger();
    settings->findChild<QTabWidget*>()->setCurrentIndex(1);
    QTest::qWait(500);
    hand.take(*settings, "connections");
    settings->close();

    hand.click("startAction");
    show(window, 1, false);
    show(window, 2, false);
    window.resize(smallestSize);
    hand.take(window, "smallest");
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("LC_NUMERIC", "C");
    qInstallMessageHandler(writeToMessageLog);
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription("Takes pictures of the application at work.");
    parser.addHelpOption();
    parser.addPositionalArgument("folder", "Where the pictures go; it must exist.");
    parser.process(application);
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(1);

    const QTemporaryDir home;
    switches::configDir = QDir(home.path());
    switches::autoSerialSearch = false;
    emulator::EmulatorHost host;
    QList<ConnectionSettings> records;
    for (int number = 0; number < demosystems::pictured; ++number) {
        emulator::ControllerOptions options;
        options.seed = quint64(number + 1);
        options.preset = number == 2 ? emulator::Preset::Noisy : emulator::Preset::Typical;
        const QString address = QStringLiteral("127.0.0.%1").arg(11 + number);
        const emulator::ControllerHandle controller = host.addTcp(options, address);
        records.append(demosystems::record(number, ConnectionType::Tcp, controller.address(),
                                           controller.port(), controller.id()));
    }
    Settings settings;
    settings.setList(records);
    if (!settings.save(QString())) {
        std::fprintf(stderr, "Can not write the setup file\n");
        return EXIT_FAILURE;
    }

    MainWindow window;
    window.resize(normalSize);
    window.show();
    window.resizeGraphs();
    takeAll(window, parser.positionalArguments().first());
    return 0;
}
