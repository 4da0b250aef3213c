// Takes the pictures of docs/screenshots: the real window on emulated controllers, worked by mouse
// and keyboard.

#include "app/switches.h"
#include "demo/picturefolder.h"
#include "demo/systems.h"
#include "demo/windowhand.h"
#include "emulator/emulatorhost.h"
#include "link/connection.h"
#include "model/detector.h"
#include "params/paramsdialog.h"
#include "plots/counter.h"
#include "plots/genericplot.h"
#include "setup/connectionoverviewdialog.h"
#include "setup/overviewwidget.h"
#include "setup/settings.h"
#include "window/mainwindow.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDeadlineTimer>
#include <QDialog>
#include <QLCDNumber>
#include <QLineEdit>
#include <QSpinBox>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QtTest>
#include <qwt_plot_curve.h>
#include <qwt_scale_widget.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>

namespace {

constexpr QSize normalSize(1280, 960);
constexpr QSize smallestSize(600, 450);
constexpr int patienceMs = 5000;
/// Most of the ten seconds that the time plots show.
constexpr int sweepMs = 9000;
constexpr int dialogMs = 500;
constexpr double zoomMargin = 1.3;

void show(MainWindow& window, int system, bool on)
{
    window.showConnection(window.liveConnections()[std::size_t(system)]->address(), on);
}

/// Waits until the condition holds; a picture is taken even if it never does.
void await(const std::function<bool()>& condition)
{
    const QDeadlineTimer patience(patienceMs);
    while (!condition() && !patience.hasExpired())
        QTest::qWait(1);
}

/// Lets the time plots begin anew and fill.
void fillSweep(const WindowHand& hand)
{
    hand.click("clearAction");
    QTest::qWait(sweepMs);
}

/// A beam at rest is shown as 0.00 or -0.00 by turns; the second looks like a mistake.
bool readsNoNegativeZero(const MainWindow& window)
{
    for (const char* name : {"lcd1x", "lcd1y"}) {
        const double value = window.findChild<QLCDNumber*>(name)->value();
        if (std::fpclassify(value) == FP_ZERO && std::signbit(value))
            return false;
    }
    return true;
}

/// Draws a rubber band around what the first curve of a plot shows.
void zoomToPoints(MainWindow& window, const char* name)
{
    const auto* plot = window.findChild<GenericPlot*>(name);
    const QRectF points = plot->curve(0).boundingRect();
    const double reach = zoomMargin * std::max(points.width(), points.height()) / 2;
    const QPointF middle = points.center();
    const auto pixel = [&](double x, double y) {
        const QPointF onCanvas(plot->transform(QwtPlot::xBottom, x),
                               plot->transform(QwtPlot::yLeft, y));
        return plot->canvas()->mapTo(&window, onCanvas.toPoint());
    };
    const QPoint from = pixel(middle.x() - reach, middle.y() + reach);
    const QPoint to = pixel(middle.x() + reach, middle.y() - reach);
    QWindow* native = window.windowHandle();
    QTest::mousePress(native, Qt::LeftButton, {}, from);
    QTest::mouseMove(native, (from + to) / 2);
    QTest::mouseMove(native, to);
    QTest::mouseRelease(native, Qt::LeftButton, {}, to);
}

void takeOneSystem(MainWindow& window, const WindowHand& hand)
{
    show(window, 1, false);
    show(window, 2, false);
    window.findChild<Counter*>("samplingRateCounter")->spinBox->setValue(500);
    hand.take(window, "idle");

    hand.click("startAction");
    QTest::qWait(sweepMs / 2);
    hand.clickOn(*window.findChild<QWidget*>("push_Stab1"));
    QTest::qWait(sweepMs / 2);
    await([&window] { return readsNoNegativeZero(window); });
    hand.takeNow(window, "one-system");
}

void takePointingMode(MainWindow& window, const WindowHand& hand)
{
    hand.clickOn(*window.findChild<QWidget*>("push_Stab1"));
    hand.clickMark("pointingRadio");
    for (const char* box : {"checkBox_Stats1", "checkBox_Stats2"})
        hand.clickMark(box);
    fillSweep(hand);
    zoomToPoints(window, "osciPlot1");
    hand.take(window, "pointing-zoomed");
    hand.clickOn(*window.findChild<QWidget*>("pushButton_Zoom1"));
    hand.clickMark("oscilloscopeRadio");
}

void takeThreeSystems(MainWindow& window, const WindowHand& hand)
{
    show(window, 1, true);
    show(window, 2, true);
    fillSweep(hand);
    hand.take(window, "three-systems");
}

/// Opens a dialog of the window, prepares it, takes its picture and closes it.
void takeDialog(
    MainWindow& window, const WindowHand& hand, const QString& name,
    const std::function<void()>& open,
    const std::function<void(QDialog&)>& prepare = [](QDialog&) {})
{
    open();
    const auto dialogs = window.findChildren<QDialog*>();
    const auto dialog = std::find_if(dialogs.begin(), dialogs.end(),
                                     [](const QDialog* one) { return one->isVisible(); });
    prepare(**dialog);
    QTest::qWait(dialogMs);
    hand.take(**dialog, name);
    (*dialog)->close();
}

void takeOverviewAndParameters(MainWindow& window, const WindowHand& hand)
{
    auto* overview = window.findChild<ConnectionOverviewDialog*>();
    window.findChild<QAction*>("actionConfiguration")->trigger();
    QTest::qWait(dialogMs);
    for (auto* row : overview->findChildren<OverviewWidget*>()) {
        QTest::mouseClick(row->findChild<QWidget*>("enable1"), Qt::LeftButton);
        QTest::qWait(dialogMs);
    }
    hand.take(*overview, "overview");
    const auto buttons = overview->findChildren<QWidget*>("parameterPushButton");
    const auto shown = std::find_if(buttons.begin(), buttons.end(),
                                    [](const QWidget* button) { return button->isVisible(); });
    QTest::mouseClick(*shown, Qt::LeftButton);
    auto* parameters = window.findChild<ParamsDialog*>();
    QTest::qWait(dialogMs);
    for (const QString stage : {"", "_2"})
        parameters->findChild<QComboBox*>("comboBox_DetecType" + stage)
            ->setCurrentIndex(PsdDetector);
    parameters->findChild<QAbstractButton*>("radioButtonPositionInLength")->click();
    QTest::qWait(dialogMs);
    hand.take(*parameters, "parameters");
    parameters->close();
    overview->close();
}

void takeOtherDialogs(MainWindow& window, const WindowHand& hand)
{
    const auto entry = [&window](const char* action) {
        return [&window, action] { window.findChild<QAction*>(action)->trigger(); };
    };
    takeDialog(window, hand, "recording", entry("actionOpenDataLog"), [](QDialog& dialog) {
        dialog.findChild<QLineEdit*>("lineEdit_FileName")->setText(QStringLiteral("beam.csv"));
    });
    takeDialog(window, hand, "connections", entry("actionSetup"),
               [](QDialog& dialog) { dialog.findChild<QTabWidget*>()->setCurrentIndex(1); });
    takeDialog(window, hand, "service", entry("actionOperation_Tests"), [](QDialog& dialog) {
        for (const char* test : {"buttonGAS", "buttonS1S", "buttonSDA_1x"}) {
            dialog.findChild<QAbstractButton*>(test)->click();
            QTest::qWait(dialogMs);
        }
    });
    takeDialog(window, hand, "about", entry("actionAbout_the_Software"));
}

void takeLimits(MainWindow& window, const WindowHand& hand)
{
    const auto axis = [&window, &hand](int side) {
        return [&window, &hand, side] {
            hand.clickOn(*window.findChild<GenericPlot*>("positionPlot1")->axisWidget(side));
        };
    };
    takeDialog(window, hand, "axis-limits", axis(QwtPlot::yLeft));
    takeDialog(window, hand, "time-limits", axis(QwtPlot::xTop));
}

void takeSmallest(MainWindow& window, const WindowHand& hand)
{
    show(window, 1, false);
    show(window, 2, false);
    window.resize(smallestSize);
    fillSweep(hand);
    hand.take(window, "smallest");
}

} // namespace

int main(int argc, char** argv)
{
    startAsTheApplication();
    const QApplication application(argc, argv);
    const QString pictures = pictureFolder("Takes pictures of the application at work.");
    const QTemporaryDir home;
    switches::configDir = QDir(home.path());
    switches::autoSerialSearch = false;
    emulator::EmulatorHost host;
    QList<ConnectionSettings> records;
    for (int number = 0; number < demosystems::pictured; ++number) {
        emulator::ControllerOptions options;
        options.seed = quint64(number) + 1;
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
    const WindowHand hand(window, pictures);
    takeOneSystem(window, hand);
    takePointingMode(window, hand);
    takeThreeSystems(window, hand);
    takeOverviewAndParameters(window, hand);
    takeOtherDialogs(window, hand);
    takeLimits(window, hand);
    takeSmallest(window, hand);
    return 0;
}
