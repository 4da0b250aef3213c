#include "app/logging.h"
#include "link/connection.h"
#include "link/identification.h"
#include "model/connectionsettings.h"
#include "params/paramsdialog.h"
#include "plots/counter.h"
#include "plots/genericplot.h"
#include "recording/dataloggerdialog.h"
#include "service/servicedialog.h"
#include "setup/colors.h"
#include "setup/connectionoverviewdialog.h"
#include "setup/settingsdialog.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>

#include <algorithm>

namespace {

/// A controller on a line of this rate can not send faster.
constexpr int slowBaudRate = 115200;
constexpr int slowLineMaxRateHz = 430;
constexpr int fastLineMaxRateHz = 500;
constexpr qint64 reconnectMs = 300;
constexpr unsigned long settleMs = 2;

/// -1 if there is none.
template <typename Matches>
int indexWhere(const std::vector<std::unique_ptr<Connection>>& connections, Matches matches)
{
    const auto found = std::find_if(connections.begin(), connections.end(),
                                    [&matches](const auto& link) { return matches(*link); });
    return found == connections.end() ? -1 : int(found - connections.begin());
}

} // namespace

/// Keeps closed connections until the outermost of these is gone: while a connection's thread
/// ends, events are taken inside of it, and they can close it.
class MainWindow::KeepingClosed final
{
public:
    explicit KeepingClosed(MainWindow& owner)
        : window(owner)
    {
        ++window.keepingClosed;
    }
    ~KeepingClosed()
    {
        if (--window.keepingClosed > 0)
            return;
        // The end of each takes events, too: the list itself is in nobody's hands then.
        const std::vector<std::unique_ptr<Connection>> closed = std::move(window.keptClosed);
        window.keptClosed.clear();
    }
    KeepingClosed(const KeepingClosed&) = delete;
    KeepingClosed& operator=(const KeepingClosed&) = delete;

private:
    MainWindow& window;
};

int MainWindow::indexOf(const QString& address) const
{
    return indexWhere(connections, [&](const Connection& c) { return c.address() == address; });
}

int MainWindow::indexOf(const Connection* link) const
{
    return indexWhere(connections, [&](const Connection& c) { return &c == link; });
}

int MainWindow::indexOfConnected(const QString& address) const
{
    return indexWhere(connections, [&](const Connection& c) {
        return c.address() == address && c.isConnected();
    });
}

int MainWindow::indexMeantBy(const QString& address) const
{
    const int connected = indexOfConnected(address);
    return connected >= 0 ? connected : indexOf(address);
}

Connection* MainWindow::currentLink() const
{
    const auto index = std::size_t(currentConnection);
    return index < connections.size() ? connections[index].get() : nullptr;
}

void MainWindow::newConnection(std::unique_ptr<Connection> connection,
                               const ConnectionSettings& settings)
{
    // Who brought it up took events meanwhile, and the window was closed.
    if (left)
        return;
    const int n = int(connections.size());
    for (StageView& stage : stages) {
        stage.osciPlot->addCurve(n);
        stage.positionPlot->addCurve(2 * n);
        stage.positionPlot->addCurve(2 * n);
        stage.intensityPlot->addCurve(n);
    }
    watchLink(*connection);
    paramsDialog->appendDetectorPair(settings);

    ConnectionStatus status;
    status.connection = connection.get();
    status.colorX = toColor(settings.colorX);
    status.colorY = toColor(settings.colorY);
    status.colorI = toColor(settings.colorI);
    status.address = connection->address();
    status.label = connection->label();
    status.statusValid = connection->isConnected();
    connections.push_back(std::move(connection));
    statuses.append(status);
    statisticsSums.append(StatisticsSums());
    setCurveColors(n);
    connectionOverviewDialog->update(statuses);

    if (displayedConnections.size() < maxDisplayed && connectionAt(n).isConnected())
        showSystem(n);
    updateMaxRate();
}

/// A link that was lost before it came here has told so to nobody. Its thread, which may still be
/// on its way out, then tells it by its end.
void MainWindow::watchLink(Connection& link)
{
    const QPointer<Connection> watched(&link);
    const auto takeOver = [this, watched] { takeLoss(watched); };
    const auto takeOverIfEnded = [this, watched] {
        if (watched && !watched->isRunning())
            takeLoss(watched);
    };
    connect(&link, &Connection::hostDisconnected, this, takeOver);
    connect(&link, &QThread::finished, this, takeOverIfEnded);
    if (!link.isRunning())
        QMetaObject::invokeMethod(this, takeOverIfEnded, Qt::QueuedConnection);
}

/// Told behind the back of one that was closed or disconnected meanwhile, a loss is no news.
void MainWindow::takeLoss(const Connection* link)
{
    if (link && indexOf(link) >= 0 && link->isConnected())
        settingsDialog->onLinkLost(link);
}

void MainWindow::setCurveColors(int index)
{
    const ConnectionStatus& status = statuses[index];
    for (StageView& stage : stages) {
        stage.positionPlot->setCurveColor(status.colorX, 2 * index);
        stage.positionPlot->setCurveColor(status.colorY, 2 * index + 1);
        stage.intensityPlot->setCurveColor(status.colorI, index);
        stage.osciPlot->setCurveColor(status.colorI, index);
    }
}

void MainWindow::updateMaxRate()
{
    const bool slowLine = std::any_of(connections.begin(), connections.end(),
                                      [](const auto& c) { return c->baudRate() == slowBaudRate; });
    maxRate = slowLine ? slowLineMaxRateHz : fastLineMaxRateHz;
    samplingRateCounter->spinBox->setMaximum(maxRate);
    updateRateCounter->spinBox->setMaximum(maxRate);
}

void MainWindow::showConnection(QString id, bool show)
{
    if (!show) {
        for (int position = displayedConnections.size() - 1; position >= 0; --position) {
            if (connectionAt(displayedConnections[position]).address() == id)
                hideDisplayed(position);
        }
        return;
    }

    showSystem(indexOfConnected(id));
}

void MainWindow::showSystem(int index)
{
    // One that is shown already keeps its place.
    if (index < 0 || displayedConnections.contains(index))
        return;
    if (displayedConnections.size() >= maxDisplayed) {
        statuses[index].displayed = false;
        return;
    }
    displayedConnections.append(index);
    statuses[index].displayed = true;
    if (displayedConnections.size() == 1) {
        showForSingleSystem(index);
        enableControls(true);
    } else if (displayedConnections.size() == 2) {
        hideSingleSystemWidgets();
    }
    if (startAction->isChecked() && !connectionAt(index).isStreaming())
        joinAcquisition(connectionAt(index));
}

void MainWindow::hideIfDisplayed(int index)
{
    const int position = displayedConnections.indexOf(index);
    if (position >= 0)
        hideDisplayed(position);
}

void MainWindow::hideDisplayed(int position)
{
    const int index = displayedConnections.takeAt(position);
    statuses[index].displayed = false;
    if (displayedConnections.size() == 1)
        showForSingleSystem(displayedConnections.first());
    if (displayedConnections.isEmpty()) {
        enableControls(false);
        currentConnection = index;
        enableStatistics(false);
        blackenAxisLabels();
    }
    if (connectionAt(index).isConnected())
        connectionAt(index).stopStream();
    clearCurvesOf(index);
}

void MainWindow::showForSingleSystem(int index)
{
    setSingleSystemWidgetsVisible(true);
    for (StageView& stage : stages)
        stage.clearAverages();
    if (pointingRadio->isChecked())
        enableStatistics(true);
    colorAxisLabels(statuses[index]);
    currentConnection = index;
}

void MainWindow::hideSingleSystemWidgets()
{
    setSingleSystemWidgetsVisible(false);
    enableStatistics(false);
    blackenAxisLabels();
}

void MainWindow::setSingleSystemWidgetsVisible(bool visible)
{
    for (StageView& stage : stages) {
        for (QWidget* widget : qAsConst(stage.singleSystemWidgets))
            widget->setVisible(visible);
    }
}

void MainWindow::enableControls(bool on)
{
    for (StageView& stage : stages)
        stage.stabilisation->setEnabled(on);
    startAction->setEnabled(on);
    dataLoggerDialog->setRecordingEnabled(on);
}

void MainWindow::colorAxisLabels(const ConnectionStatus& status)
{
    for (StageView& stage : stages)
        stage.setAxisColors(status.colorX, status.colorY, status.colorI);
}

void MainWindow::blackenAxisLabels()
{
    // On a dark desktop black could not be read.
    const bool darkDesktop = palette().color(QPalette::Window).lightnessF() < 0.5;
    const QColor text = darkDesktop ? palette().color(QPalette::WindowText) : QColor(Qt::black);
    for (StageView& stage : stages)
        stage.setAxisColors(text, text, text);
}

void MainWindow::clearCurvesOf(int index)
{
    for (StageView& stage : stages) {
        stage.positionPlot->clear(2 * index);
        stage.positionPlot->clear(2 * index + 1);
        stage.osciPlot->clear(index);
        stage.intensityPlot->clear(index);
    }
}

bool MainWindow::closedConnection(QString address)
{
    const int n = indexOf(address);
    return n >= 0 && closeConnection(&connectionAt(n));
}

bool MainWindow::closeConnection(const Connection* connection)
{
    const int n = indexOf(connection);
    if (n < 0)
        return false;
    stopTicking();
    hideIfDisplayed(n);
    if (connectionAt(n).isStreaming())
        connectionAt(n).stopStream();
    connectionAt(n).disconnect(this);

    for (int& displayed : displayedConnections) {
        if (displayed > n)
            --displayed;
    }
    if (!displayedConnections.isEmpty())
        currentConnection = displayedConnections.first();
    statuses.removeAt(n);
    statisticsSums.removeAt(n);
    for (StageView& stage : stages) {
        stage.osciPlot->removeCurve(n);
        stage.intensityPlot->removeCurve(n);
        stage.positionPlot->removeCurve(2 * n + 1);
        stage.positionPlot->removeCurve(2 * n);
    }
    // Its thread ends when all lists are in step again: ending it takes events.
    std::unique_ptr<Connection> closed = std::move(connections[std::size_t(n)]);
    connections.erase(connections.begin() + n);
    if (serviceDialog->connection() == closed.get())
        serviceDialog->setConnection(nullptr);
    paramsDialog->removeDetectorPair(n);
    // Who saves before the next tick needs the overview in step.
    connectionOverviewDialog->update(statuses);
    updateMaxRate();
    startTicking();
    if (keepingClosed > 0)
        keptClosed.push_back(std::move(closed));
    return true;
}

bool MainWindow::disconnectConnection(QString address)
{
    const int index = indexMeantBy(address);
    return index >= 0 && disconnectLink(&connectionAt(index));
}

bool MainWindow::disconnectLink(const Connection* connection)
{
    const int index = indexOf(connection);
    if (index < 0)
        return false;
    const KeepingClosed keeping(*this);
    Connection& link = connectionAt(index);
    endLink(link);
    return !link.isConnected();
}

void MainWindow::endLink(Connection& link)
{
    link.disconnectController();
    QThread::msleep(settleMs);
    // That has taken events: it can stand elsewhere now, or nowhere.
    const int index = indexOf(&link);
    if (index < 0)
        return;
    hideIfDisplayed(index);
    paramsDialog->closeIfDisconnected();
    statuses[index].displayed = false;
}

bool MainWindow::reconnectConnection(QString address, QString& boardID)
{
    const int index = indexMeantBy(address);
    if (index < 0)
        return false;
    const KeepingClosed keeping(*this);
    return bringBack(connectionAt(index), QString(), boardID) == ReconnectResult::Reconnected;
}

ReconnectResult MainWindow::reconnect(const Connection* connection, const QString& expectedId)
{
    const int index = indexOf(connection);
    if (index < 0)
        return ReconnectResult::NoController;
    const KeepingClosed keeping(*this);
    QString id;
    return bringBack(connectionAt(index), expectedId, id);
}

ReconnectResult MainWindow::bringBack(Connection& link, const QString& expectedId, QString& id)
{
    logMessage().info() << "Reconnecting";
    if (link.isRunning())
        endLink(link);
    // Ending a link takes events, and these can have closed it.
    if (indexOf(&link) < 0 || !comesUp(link)) {
        logMessage().info() << "Reconnecting failed";
        return ReconnectResult::NoController;
    }
    const ControllerIdentity identity = identify(link, LineClearing::TwoStopsAndRepeat);
    const bool isExpected = expectedId.isEmpty() || identity.id == expectedId;
    if (!identity.isController || !isExpected) {
        endLink(link);
        logMessage().info() << "Reconnecting failed";
        return identity.isController ? ReconnectResult::OtherController
                                     : ReconnectResult::NoController;
    }
    const int index = indexOf(&link);
    statuses[index].statusValid = true;
    if (displayedConnections.size() < maxDisplayed)
        showSystem(index);
    id = identity.id;
    logMessage().info() << "Successfully reconnected";
    return ReconnectResult::Reconnected;
}

/// Takes no events until the link is up.
bool MainWindow::comesUp(Connection& link)
{
    link.start(QThread::InheritPriority);
    const QDeadlineTimer limit(reconnectMs);
    while (!link.isConnected() && !limit.hasExpired())
        QThread::msleep(1);
    if (link.isConnected())
        return true;
    link.disconnectController();
    return false;
}

void MainWindow::updateColorGraph(QString id, QColor color, int graph)
{
    const int n = indexOf(id);
    if (n < 0)
        return;
    ConnectionStatus& status = statuses[n];
    switch (graph) {
    case 0:
        status.colorX = color;
        break;
    case 1:
        status.colorY = color;
        break;
    case 2:
        status.colorI = color;
        break;
    default:
        return;
    }
    setCurveColors(n);
    if (displayedConnections.size() == 1)
        colorAxisLabels(statuses[displayedConnections.first()]);
}

void MainWindow::changeLabel(QString address, QString label)
{
    const int n = indexOf(address);
    if (n >= 0)
        relabelConnection(&connectionAt(n), label);
}

void MainWindow::relabelConnection(const Connection* connection, const QString& label)
{
    const int n = indexOf(connection);
    if (n < 0)
        return;
    labelController(connectionAt(n), label);
    statuses[n].label = label;
}

void MainWindow::changeGroupId(QString name, int id)
{
    for (ConnectionStatus& status : statuses) {
        if (status.address == name)
            status.groupId = id;
    }
}

bool MainWindow::updateSettingsAndParameters(QList<ConnectionSettings>& settings)
{
    if (statuses.size() != settings.size())
        return false;
    stopTicking();
    const QList<int> order = connectionOverviewDialog->shownOrder();
    // The timer stays stopped: an overview that lost count is not shown as if it were in step.
    if (order.size() != settings.size())
        return false;
    for (int i = 0; i < settings.size(); ++i) {
        settings[i].label.set(statuses[i].label);
        settings[i].colorX = toName(statuses[i].colorX);
        settings[i].colorY = toName(statuses[i].colorY);
        settings[i].colorI = toName(statuses[i].colorI);
        (*detectorPairs)[i].copyTo(settings[i]);
        settings[i].position = order[i];
    }
    startTicking();
    return true;
}
