#include "app/messagelog.h"
#include "app/startup.h"
#include "app/switches.h"
#include "service/servicedialog.h"
#include "window/mainwindow.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QScreen>
#include <QStyle>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <omp.h>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace {

struct Box
{
    QString title;
    QString text;
    QMessageBox::Icon icon;
    QMessageBox::StandardButtons buttons;
    bool hasParent;
};

/// The boxes that came up, each of which was answered with Ok.
std::vector<Box> boxes;

void answerBox()
{
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (!box)
        return;
    boxes.push_back({box->windowTitle(), box->text(), box->icon(), box->standardButtons(),
                     box->parentWidget() != nullptr});
    box->button(QMessageBox::Ok)->click();
}

/// Runs with every application object, so that a box before the real one is answered, too.
void watchForBoxes()
{
    auto* watch = new QTimer(QCoreApplication::instance());
    QObject::connect(watch, &QTimer::timeout, watch, &answerBox);
    watch->start(10);
}

Q_COREAPP_STARTUP_FUNCTION(watchForBoxes)

/// Runs the application with the arguments until its window has been looked at.
int runWith(std::vector<QByteArray> arguments, const startup::WindowHook& look)
{
    arguments.insert(arguments.begin(), {"lumetra", "-a"});
    std::vector<char*> pointers;
    for (QByteArray& argument : arguments)
        pointers.push_back(argument.data());
    const int count = int(pointers.size());
    pointers.push_back(nullptr);
    return startup::run(count, pointers.data(), [&](MainWindow& window) {
        QTimer::singleShot(0, &window, &QWidget::close);
        look(window);
    });
}

} // namespace

class TestStartup final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void homeIsThatOfTheEnvironment();
    void withoutHomeTheUserDatabaseTellsIt_data();
    void withoutHomeTheUserDatabaseTellsIt();
    void configDirAndDataAreMade();
    void configDirThatExistsIsKept();
    void unusableHomeGivesABoxAndStartupGoesOn();

    void oneOfManyProcessorsIsLeftFree_data();
    void oneOfManyProcessorsIsLeftFree();
    void runtimeIsToldTheNumberOfWorkers_data();
    void runtimeIsToldTheNumberOfWorkers();

    void windowHasItsSizeOrTheAvailableOne_data();
    void windowHasItsSizeOrTheAvailableOne();
    void smallScreenIsFilledFromItsCorner();

    void serviceMenuIsShownOnlyInServiceMode_data();
    void serviceMenuIsShownOnlyInServiceMode();
    void attributesAreSet();
    void resultOfTheEventLoopIsReturned();
    void windowIsGoneAfterwards();

private:
    std::unique_ptr<QTemporaryDir> home;
    QtMessageHandler previous = nullptr;
};

void TestStartup::init()
{
    home = std::make_unique<QTemporaryDir>();
    qputenv("HOME", home->path().toLocal8Bit());
    boxes.clear();
    switches::serviceMode = false;
    previous = qInstallMessageHandler(writeToMessageLog);
}

void TestStartup::cleanup()
{
    qInstallMessageHandler(previous);
}

void TestStartup::homeIsThatOfTheEnvironment()
{
    QCOMPARE(startup::homeDirectory(), home->path());
}

void TestStartup::withoutHomeTheUserDatabaseTellsIt_data()
{
    QTest::addColumn<bool>("isSet");
    QTest::newRow("unset") << false;
    QTest::newRow("empty") << true;
}

void TestStartup::withoutHomeTheUserDatabaseTellsIt()
{
    QFETCH(const bool, isSet);
    qunsetenv("HOME");
    if (isSet)
        qputenv("HOME", "");
    QCOMPARE(startup::homeDirectory(), QString::fromLocal8Bit(getpwuid(getuid())->pw_dir));
}

void TestStartup::configDirAndDataAreMade()
{
    startup::prepareConfigDir(0, nullptr);
    QCOMPARE(switches::configDir.path(), home->filePath("Lumetra"));
    QVERIFY(QFileInfo(home->filePath("Lumetra/Data")).isDir());
}

void TestStartup::configDirThatExistsIsKept()
{
    QVERIFY(QDir(home->path()).mkpath("Lumetra/Data"));
    QFile setup(home->filePath("Lumetra/ConnectionSetup.xml"));
    QVERIFY(setup.open(QIODevice::WriteOnly));
    setup.write("kept");
    setup.close();
    startup::prepareConfigDir(0, nullptr);
    QVERIFY(setup.open(QIODevice::ReadOnly));
    QCOMPARE(setup.readAll(), QByteArray("kept"));
}

void TestStartup::unusableHomeGivesABoxAndStartupGoesOn()
{
    // Nobody can make a directory there, not even root.
    qputenv("HOME", "/proc/nowhere");
    std::size_t boxesBeforeTheWindow = 0;
    QString style;
    const int status = runWith({"-style", "windows"}, [&](MainWindow& window) {
        boxesBeforeTheWindow = boxes.size();
        style = window.style()->objectName();
    });
    QCOMPARE(status, 0);
    QCOMPARE(boxesBeforeTheWindow, std::size_t(1));
    QCOMPARE(boxes.size(), std::size_t(1));
    const Box& box = boxes.front();
    QCOMPARE(box.title, QStringLiteral("Can not create configuration directory"));
    QCOMPARE(box.text, QStringLiteral("The directory could not be created.\nPlease make sure that "
                                      "the configuration directory can be created."));
    QCOMPARE(box.icon, QMessageBox::Critical);
    QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QVERIFY(!box.hasParent);
    // Showing the box did not remove Qt's options from the application's arguments.
    QCOMPARE(style, QStringLiteral("windows"));
    QCOMPARE(switches::configDir.path(), QStringLiteral("/proc/nowhere/Lumetra"));
}

void TestStartup::oneOfManyProcessorsIsLeftFree_data()
{
    QTest::addColumn<int>("processors");
    QTest::addColumn<int>("told");
    QTest::newRow("none") << 0 << 0;
    QTest::newRow("one keeps the default") << 1 << 0;
    QTest::newRow("two") << 2 << 2;
    QTest::newRow("seven") << 7 << 7;
    QTest::newRow("eight") << 8 << 7;
    QTest::newRow("sixty-four") << 64 << 63;
}

void TestStartup::oneOfManyProcessorsIsLeftFree()
{
    QFETCH(const int, processors);
    QTEST(startup::workerThreads(processors), "told");
}

void TestStartup::runtimeIsToldTheNumberOfWorkers_data()
{
    QTest::addColumn<int>("processors");
    QTest::addColumn<int>("workers");
    QTest::newRow("one") << 1 << 1;
    QTest::newRow("seven") << 7 << 7;
    QTest::newRow("eight") << 8 << 7;
}

void TestStartup::runtimeIsToldTheNumberOfWorkers()
{
    QFETCH(const int, processors);
    omp_set_dynamic(1);
    omp_set_num_threads(processors);
    int workers = 0;
    runWith({}, [&](MainWindow&) { workers = omp_get_max_threads(); });
    QTEST(workers, "workers");
    QCOMPARE(omp_get_dynamic(), 0);
}

void TestStartup::windowHasItsSizeOrTheAvailableOne_data()
{
    QTest::addColumn<QSize>("available");
    QTest::addColumn<QSize>("window");
    QTest::newRow("large") << QSize(1919, 1079) << QSize(1280, 960);
    QTest::newRow("just fits") << QSize(1280, 960) << QSize(1280, 960);
    QTest::newRow("too narrow") << QSize(1279, 1079) << QSize(1279, 1079);
    QTest::newRow("too low") << QSize(1919, 959) << QSize(1919, 959);
    QTest::newRow("small") << QSize(1023, 767) << QSize(1023, 767);
}

void TestStartup::windowHasItsSizeOrTheAvailableOne()
{
    QFETCH(const QSize, available);
    QTEST(startup::windowSize(QSize(1280, 960), available), "window");
}

void TestStartup::smallScreenIsFilledFromItsCorner()
{
    QRect screen;
    QRect geometry;
    runWith({}, [&](MainWindow& window) {
        screen = QGuiApplication::primaryScreen()->availableGeometry();
        geometry = QRect(window.pos(), window.size());
    });
    QVERIFY2(screen.width() < 1280 && screen.height() < 960, "The screen is too large to tell.");
    // The available size is kept one smaller than the area.
    QCOMPARE(geometry, QRect(0, 0, screen.width() - 1, screen.height() - 1));
}

void TestStartup::serviceMenuIsShownOnlyInServiceMode_data()
{
    QTest::addColumn<QByteArray>("option");
    QTest::addColumn<bool>("visible");
    QTest::newRow("without") << QByteArray("-e") << false;
    QTest::newRow("with") << QByteArray("-s") << true;
}

void TestStartup::serviceMenuIsShownOnlyInServiceMode()
{
    QFETCH(const QByteArray, option);
    bool visible = false;
    bool hasDialog = false;
    runWith({option}, [&](MainWindow& window) {
        visible = window.findChild<QMenu*>("menuService")->menuAction()->isVisible();
        hasDialog = window.findChild<ServiceDialog*>() != nullptr;
    });
    QTEST(visible, "visible");
    QVERIFY(hasDialog);
}

void TestStartup::attributesAreSet()
{
    qputenv("LC_NUMERIC", "de_DE.UTF-8");
    runWith({}, [](MainWindow&) {});
    QVERIFY(QCoreApplication::testAttribute(Qt::AA_EnableHighDpiScaling));
    QVERIFY(QCoreApplication::testAttribute(Qt::AA_Use96Dpi));
    QVERIFY(QCoreApplication::testAttribute(Qt::AA_UseHighDpiPixmaps));
    QCOMPARE(qgetenv("LC_NUMERIC"), QByteArray("C"));
}

void TestStartup::resultOfTheEventLoopIsReturned()
{
    const int status = runWith({}, [](MainWindow& window) {
        QTimer::singleShot(0, &window, [] { QCoreApplication::exit(7); });
    });
    QCOMPARE(status, 7);
}

void TestStartup::windowIsGoneAfterwards()
{
    QPointer<MainWindow> seen;
    runWith({}, [&](MainWindow& window) { seen = &window; });
    QVERIFY(seen.isNull());
    QVERIFY(!QCoreApplication::instance());
}

// `run` makes the application object.
QTEST_APPLESS_MAIN(TestStartup)
#include "tst_startup.moc"
