// Takes the pictures of docs/manual/pictures: the real window goes through the first ten minutes of
// the user manual on one emulated controller, worked by mouse and keyboard.

#include "app/switches.h"
#include "demo/picturefolder.h"
#include "demo/systems.h"
#include "demo/windowhand.h"
#include "emulator/emulatorhost.h"
#include "link/connection.h"
#include "link/interfacesearch.h"
#include "recording/dataloggerdialog.h"
#include "setup/settingsdialog.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QToolBar>
#include <QtTest>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr QSize windowSize(1280, 960);
/// The connection dialog fills the screen: most of it would be an empty list.
constexpr int dialogHeightPx = 300;
constexpr int dialogMs = 500;
constexpr int patienceMs = 5000;
/// Most of the ten seconds that the time plots show.
constexpr int sweepMs = 9000;
constexpr int halfMinuteMs = 30000;
const char* const address = "127.0.0.11";
constexpr quint16 port = 2000;

/// The first ten minutes, in the order of the manual.
class FirstMinutes final
{
public:
    FirstMinutes(MainWindow& mainWindow, const WindowHand& windowHand, const QString& controllerId)
        : window(mainWindow)
        , hand(windowHand)
        , id(controllerId)
    {}

    /// False if the controller can not be connected.
    bool run();

private:
    void type(QWidget& dialog, const char* field, const QString& text) const;
    void openSettings();
    void takeSerial();
    bool connectTcp();
    void takeWindow();
    void takeRecording();

    MainWindow& window;
    const WindowHand& hand;
    QString id;
    SettingsDialog* settings = nullptr;
};

void FirstMinutes::type(QWidget& dialog, const char* field, const QString& text) const
{
    auto* edit = dialog.findChild<QLineEdit*>(QLatin1String(field));
    edit->clear();
    QTest::keyClicks(edit, text);
}

void FirstMinutes::openSettings()
{
    settings = window.findChild<SettingsDialog*>();
    // An adapter that this machine need not have.
    settings->setInterfaceSearch([this](bool, bool) {
        return QList<FoundInterface>{{id, QStringLiteral("ttyUSB0"), 921600, 1}};
    });
    window.findChild<QAction*>("actionSetup")->trigger();
    QTest::qWait(dialogMs);
    settings->resize(settings->width(), dialogHeightPx);
}

void FirstMinutes::takeSerial()
{
    hand.clickOn(*settings->findChild<QWidget*>("rescanButton"));
    settings->findChild<QComboBox*>("baudrateComboBox")->setCurrentIndex(1);
    type(*settings, "serialPortLabel_2", demosystems::label(0));
    hand.take(*settings, "connect-serial");
}

bool FirstMinutes::connectTcp()
{
    settings->findChild<QTabWidget*>()->setCurrentIndex(1);
    type(*settings, "addressTcpEdit", QLatin1String(address));
    type(*settings, "labelTcpEdit", demosystems::label(0));
    hand.take(*settings, "connect-tcp");
    const auto* info = settings->findChild<QLabel*>("infoLabel2");
    hand.clickOn(*settings->findChild<QWidget*>("connectTcpButton"));
    const bool isConnected =
        QTest::qWaitFor([info] { return info->text() == QLatin1String("Connected"); }, patienceMs);
    hand.take(*settings, "connected");
    settings->close();
    return isConnected;
}

void FirstMinutes::takeWindow()
{
    hand.click("startAction");
    QTest::qWait(sweepMs / 2);
    hand.clickOn(*window.findChild<QWidget*>("push_Stab1"));
    QTest::qWait(sweepMs / 2);
    hand.takeNow(*window.findChild<QWidget*>("frame"), "stage");
    hand.take(*window.findChild<QToolBar*>("toolBar"), "tool-bar");
}

void FirstMinutes::takeRecording()
{
    auto* recording = window.findChild<DataLoggerDialog*>();
    window.findChild<QAction*>("actionOpenDataLog")->trigger();
    type(*recording, "lineEdit_FileName", QStringLiteral("first"));
    hand.clickOn(*recording->findChild<QWidget*>("pushButton_Start"));
    QTest::qWait(halfMinuteMs);
    hand.take(*recording, "recording-running");
    hand.clickOn(*recording->findChild<QWidget*>("pushButton_Stop"));
    recording->close();
}

bool FirstMinutes::run()
{
    hand.take(window, "first-start");
    openSettings();
    takeSerial();
    if (!connectTcp())
        return false;
    takeWindow();
    takeRecording();
    return true;
}

int fail(const char* what)
{
    std::fprintf(stderr, "%s\n", what);
    return EXIT_FAILURE;
}

} // namespace

int main(int argc, char** argv)
{
    startAsTheApplication();
    const QApplication application(argc, argv);
    const QString pictures =
        QDir(pictureFolder("Takes the pictures of the user manual.")).absolutePath();
    const QTemporaryDir home;
    // The path of the recording is on a picture, so it must not be that of the temporary folder.
    QDir::setCurrent(home.path());
    switches::configDir = QDir(QStringLiteral("Lumetra"));
    switches::configDir.mkpath(QStringLiteral("Data"));
    switches::autoSerialSearch = false;
    emulator::EmulatorHost host;
    const emulator::ControllerHandle controller = host.addTcp({}, QLatin1String(address), port);
    if (!controller.isValid())
        return fail("Can not put a controller on 127.0.0.11:2000, where the manual says it is");

    MainWindow window;
    window.resize(windowSize);
    window.show();
    window.resizeGraphs();
    const WindowHand hand(window, pictures);
    return FirstMinutes(window, hand, controller.id()).run() ? 0 : fail("Can not connect");
}
