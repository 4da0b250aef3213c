// Takes the pictures of docs/screenshots: the real window on emulated controllers, worked by mouse
// and keyboard.

#include "app/switches.h"
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
#include <QRadioButton>
#include <QScreen>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTextStream>
#include <QToolBar>
#include <QToolButton>
#include <QtTest>

namespace {

constexpr QSize normalSize(1280, 960);
constexpr QSize smallestSize(600, 450);
constexpr int systemCount = 3;
constexpr int settleMs = 200;

/// Colours of x, y and intensity of the three systems, told apart on a light canvas.
const char* const curveColors[systemCount][3] = {{"#ff0000", "#008000", "#0000ff"},
                                                 {"#c2570c", "#0f766e", "#6d28d9"},
                                                 {"#b91c5c", "#4d7c0f", "#1e3a8a"}};
const char* const labels[systemCount] = {"Table_1", "Table_2", "Amplifier"};

ConnectionSettings recordOf(const emulator::ControllerHandle& controller, int number)
{
    ConnectionSettings record;
    record.type = ConnectionType::Tcp;
    record.name.set(controller.address());
    record.baudRateOrPort = controller.port();
    record.label.set(labels[number]);
    record.id.set(controller.id());
    record.serial.set(deviceKey(controller.id()));
    record.autoConnect = true;
    record.colorX = QColor(curveColors[number][0]);
    record.colorY = QColor(curveColors[number][1]);
    record.colorI = QColor(curveColors[number][2]);
    return record;
}

class Photographer
{
public:
    Photographer(MainWindow& mainWindow, const QString& targetFolder)
        : window(mainWindow)
        , folder(targetFolder)
    {}

    void take(QWidget& widget, const QString& name)
    {
        QTest::qWait(settleMs);
        const QString path = folder.filePath(name + ".png");
        if (!widget.grab().save(path))
            qFatal("Can not write %s", qPrintable(path));
        QTextStream(stdout) << path << '\n';
    }

    void click(const char* action)
    {
        auto* bar = window.findChild<QToolBar*>("toolBar");
        clickOn(*bar->widgetForAction(window.findChild<QAction*>(action)));
    }

    void clickOn(QWidget& widget)
    {
        QTest::mouseClick(&widget, Qt::LeftButton);
        QTest::qWait(settleMs);
    }

    void clickRadio(const char* name)
    {
        auto* radio = window.findChild<QRadioButton*>(name);
        QTest::mouseClick(radio, Qt::LeftButton, {}, QPoint(8, radio->height() / 2));
    }

    void show(int system, bool on)
    {
        window.showConnection(window.liveConnections()[std::size_t(system)]->address(), on);
    }

    /// Draws a rubber band around the middle of the pointing plot.
    void zoom(const char* plot, double share)
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

private:
    MainWindow& window;
    QDir folder;
};

void takeAll(MainWindow& window, const QString& folder)
{
    Photographer photographer(window, folder);
    photographer.show(1, false);
    photographer.show(2, false);
    window.findChild<Counter*>("samplingRateCounter")->spinBox->setValue(500);
    photographer.take(window, "idle");

    photographer.click("startAction");
    QTest::qWait(5000);
    photographer.clickOn(*window.findChild<QWidget*>("push_Stab1"));
    QTest::qWait(4000);
    photographer.take(window, "one-system");

    photographer.clickRadio("pointingRadio");
    photographer.clickOn(*window.findChild<QWidget*>("push_Stab1"));
    QTest::qWait(2500);
    photographer.zoom("osciPlot1", 0.12);
    for (const char* box : {"checkBox_Stats1", "checkBox_Stats2"}) {
        auto* check = window.findChild<QWidget*>(box);
        QTest::mouseClick(check, Qt::LeftButton, {}, QPoint(8, check->height() / 2));
    }
    QTest::qWait(1000);
    photographer.take(window, "pointing-zoomed");
    photographer.clickOn(*window.findChild<QWidget*>("pushButton_Zoom1"));
    photographer.clickRadio("oscilloscopeRadio");

    photographer.show(1, true);
    photographer.show(2, true);
    QTest::qWait(6000);
    photographer.take(window, "three-systems");

    auto* overview = window.findChild<ConnectionOverviewDialog*>();
    window.findChild<QAction*>("actionConfiguration")->trigger();
    QTest::qWait(500);
    photographer.take(*overview, "overview");
    overview->close();

    auto* settings = window.findChild<SettingsDialog*>();
    window.findChild<QAction*>("actionSetup")->trigger();
    settings->findChild<QTabWidget*>()->setCurrentIndex(1);
    QTest::qWait(500);
    photographer.take(*settings, "connections");
    settings->close();

    photographer.click("startAction");
    photographer.show(1, false);
    photographer.show(2, false);
    window.resize(smallestSize);
    photographer.take(window, "smallest");
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("LC_NUMERIC", "C");
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
    for (int number = 0; number < systemCount; ++number) {
        emulator::ControllerOptions options;
        options.seed = quint64(number + 1);
        options.preset = number == 2 ? emulator::Preset::Noisy : emulator::Preset::Typical;
        const QString address = QStringLiteral("127.0.0.%1").arg(11 + number);
        records.append(recordOf(host.addTcp(options, address), number));
    }
    Settings settings;
    settings.setList(records);
    if (!settings.write(QString()) || !settings.writeDetectors(QString()))
        qFatal("Can not write the setup file");

    MainWindow window;
    window.resize(normalSize);
    window.show();
    window.resizeGraphs();
    takeAll(window, parser.positionalArguments().first());
    return 0;
}
