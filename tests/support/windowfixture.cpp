#include "support/windowfixture.h"

#include "app/switches.h"
#include "link/tcpclient.h"
#include "plots/curvedata.h"
#include "plots/genericplot.h"
#include "setup/settings.h"
#include "support/emulatedlink.h"
#include "support/userinput.h"
#include "window/mainwindow.h"

#include <QApplication>
#include <QToolBar>
#include <QtTest>
#include <qwt_plot_shapeitem.h>
#include <qwt_plot_textlabel.h>

#include <unistd.h>

namespace {

constexpr QSize shownSize(1280, 960);
constexpr int desktopFontPt = 9;

/// Each process has 256 addresses of its own, so that tests which run side by side never meet.
QString addressOf(int number)
{
    constexpr int firstHost = 11;
    const auto process = static_cast<unsigned>(getpid());
    return QStringLiteral("127.%1.%2.%3")
        .arg(1 + (process >> 8 & 0x7FU))
        .arg(process & 0xFFU)
        .arg(firstHost + number);
}

/// Only the first of each kind on a pointing plot: it has one text, and one shape that is red.
template <typename Matches>
const QwtPlotItem* findItem(const GenericPlot& plot, int rtti, Matches matches)
{
    const QwtPlotItemList items = plot.itemList(rtti);
    for (const QwtPlotItem* item : items) {
        if (matches(*item))
            return item;
    }
    return nullptr;
}

} // namespace

WindowFixture::WindowFixture(int count, const emulator::ControllerOptions& options)
{
    switches::configDir = QDir(home.path());
    switches::autoSerialSearch = false;
    // The offscreen platform's own font is larger than that of a desktop.
    QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), desktopFontPt));
    for (int i = 0; i < count; ++i)
        addController(options);
}

WindowFixture::~WindowFixture()
{
    // Leaving stops every system, which takes a wait for one that is idle.
    constexpr int leavingTimeoutMs = 20;
    if (mainWindow) {
        for (const auto& connection : mainWindow->liveConnections())
            connection->setTimeoutMs(leavingTimeoutMs);
    }
    destroyWindow();
}

emulator::ControllerHandle WindowFixture::addController(const emulator::ControllerOptions& options)
{
    controllers.push_back(host.addTcp(options, addressOf(int(controllers.size()))));
    return controllers.back();
}

emulator::ControllerHandle WindowFixture::addNeighbour(int number)
{
    controllers.push_back(host.addTcp({}, controller(number).address()));
    return controllers.back();
}

emulator::ControllerHandle WindowFixture::controller(int number) const
{
    return controllers.at(std::size_t(number));
}

ConnectionSettings WindowFixture::record(int number) const
{
    const emulator::ControllerHandle& controller = controllers.at(std::size_t(number));
    ConnectionSettings settings;
    settings.type = ConnectionType::Tcp;
    settings.name.set(controller.address());
    settings.baudRateOrPort = controller.port();
    settings.label.set(QStringLiteral("System_%1").arg(number + 1));
    settings.id.set(controller.id());
    settings.serial.set(deviceKey(controller.id()));
    settings.autoConnect = true;
    settings.colorX = QStringLiteral("#ff0000");
    settings.colorY = QStringLiteral("#008000");
    settings.colorI = QStringLiteral("#0000ff");
    return settings;
}

bool WindowFixture::writeSetupFile(const QList<ConnectionSettings>& records)
{
    Settings settings;
    return settings.setList(records) && settings.save(QString());
}

bool WindowFixture::open()
{
    mainWindow = std::make_unique<MainWindow>();
    mainWindow->resize(shownSize);
    mainWindow->show();
    mainWindow->resizeGraphs();
    QApplication::setActiveWindow(mainWindow.get());
    return QTest::qWaitForWindowExposed(mainWindow.get());
}

void WindowFixture::destroyWindow()
{
    mainWindow.reset();
}

bool WindowFixture::registerSystem(int number, int timeoutMs)
{
    return registerSystem(record(number), number, timeoutMs);
}

bool WindowFixture::registerSystem(const ConnectionSettings& settings, int number, int timeoutMs)
{
    auto client = std::make_unique<TcpClient>();
    client->setLabel(settings.label.text());
    if (!client->init(controller(number).address(), controller(number).port()))
        return false;
    client->start(QThread::InheritPriority);
    TcpClient& link = *client;
    if (!waitWithoutEvents([&link] { return link.isConnected(); }))
        return false;
    if (!askIdentity(*client))
        return false;
    client->setTimeoutMs(timeoutMs);
    client->setTriggerMode(settings.pulsedLaser);
    mainWindow->newConnection(std::move(client), settings);
    controller(number).clearWire();
    return true;
}

bool WindowFixture::openWithSystems()
{
    if (!open())
        return false;
    for (int number = 0; number < int(controllers.size()); ++number) {
        if (!registerSystem(number))
            return false;
    }
    return true;
}

Connection& WindowFixture::connection(int index) const
{
    return *mainWindow->liveConnections().at(std::size_t(index));
}

QObject* WindowFixture::findObject(const char* objectName) const
{
    return mainWindow->findChild<QObject*>(QLatin1String(objectName));
}

bool WindowFixture::click(const char* objectName) const
{
    return user::click(find<QWidget>(objectName));
}

bool WindowFixture::clickAction(const char* actionName) const
{
    return user::clickAction(*find<QToolBar>("toolBar"), actionName);
}

bool WindowFixture::type(const char* counterName, const QString& text) const
{
    return user::type(find<QWidget>(counterName), text);
}

void WindowFixture::tick() const
{
    const bool called =
        QMetaObject::invokeMethod(mainWindow.get(), "updateData", Qt::DirectConnection);
    Q_ASSERT(called);
    Q_UNUSED(called)
}

bool WindowFixture::tickUntil(const std::function<bool()>& condition, int limitMs) const
{
    return QTest::qWaitFor(
        [&] {
            if (isOpen())
                tick();
            return condition();
        },
        limitMs);
}

GenericPlot& WindowFixture::plot(const char* kind, int stage) const
{
    const QByteArray name = kind + QByteArray::number(stage);
    return *find<GenericPlot>(name.constData());
}

QString WindowFixture::statisticsText(int stage) const
{
    const auto any = [](const QwtPlotItem&) { return true; };
    const QwtPlotItem* item = findItem(pointingPlot(stage), QwtPlotItem::Rtti_PlotTextLabel, any);
    return item ? static_cast<const QwtPlotTextLabel*>(item)->text().text() : QString();
}

const QwtPlotItem* WindowFixture::targetCross(int stage) const
{
    const auto isRed = [](const QwtPlotItem& item) {
        return static_cast<const QwtPlotShapeItem&>(item).pen().color() == QColor(Qt::red);
    };
    return findItem(pointingPlot(stage), QwtPlotItem::Rtti_PlotShape, isRed);
}

bool waitWithoutEvents(const std::function<bool()>& condition, int limitMs)
{
    const QDeadlineTimer limit(limitMs);
    while (!condition()) {
        if (limit.hasExpired())
            return false;
        QThread::msleep(1);
    }
    return true;
}

QVector<QPointF> pointsOf(const GenericPlot& plot, int curve)
{
    return plot.curveData(curve).samples();
}
