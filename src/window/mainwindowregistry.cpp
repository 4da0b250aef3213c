// The list of systems: what the dialogs and the slots with an address ask of it, and its end.

#include "controls/waitcursor.h"
#include "link/connection.h"
#include "link/packet.h"
#include "model/connectionsettings.h"
#include "model/detectorpair.h"
#include "params/paramsdialog.h"
#include "service/servicedialog.h"
#include "setup/colors.h"
#include "setup/connectionoverviewdialog.h"
#include "setup/settingsdialog.h"
#include "window/mainwindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMessageBox>
#include <QThread>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace {

/// The connections' threads are given this to write what was sent last.
constexpr unsigned long lastWriteMs = 3;

/// Whether stopping a connected system waits for more than a second: so does a stop that no stream
/// answers, and that of a firmware whose stream has no end mark.
bool stopsSlowly(const Connection& connection)
{
    return connection.isConnected()
           && (!connection.isStreaming() || !packet::hasFlags(connection.firmwareVersion()));
}

} // namespace

std::vector<Connection*> MainWindow::liveConnections() const
{
    std::vector<Connection*> connections;
    for (int i = 0; i < systems.size(); ++i)
        connections.push_back(&systems.connectionAt(i));
    return connections;
}

void MainWindow::newConnection(std::unique_ptr<Connection> connection,
                               const ConnectionSettings& settings)
{
    // Whoever brought it up took events meanwhile, and the window was closed.
    if (leaving)
        return;
    DetectorPair& detectors = paramsDialog->addDetectors(*connection, settings);
    systems.add(std::move(connection), settings, detectors);
    displayTick.limitRatesToLines();
}

void MainWindow::dismiss(const QList<const Connection*>& closing)
{
    systems.dismiss(closing);
}

bool MainWindow::closeConnection(const Connection* connection)
{
    if (systems.indexOf(connection) < 0)
        return false;
    updateTimer.stop();
    showConnectionCommonDetector(connection->address(), false);
    systems.close(connection);
    displayTick.limitRatesToLines();
    updateTimer.start();
    return true;
}

void MainWindow::onSystemClosed(int, const Connection* connection)
{
    serviceDialog->forget(connection);
    recorder.forget(connection);
    paramsDialog->removeDetectors(connection);
    // Whoever saves before the next tick needs the overview to know the same systems.
    connectionOverviewDialog->update(systems.statuses());
}

void MainWindow::onBaudRateChanged(const Connection* connection)
{
    displayTick.limitRatesToLines();
    // Its port was refused: nobody else tells, as it was not up when its thread ended.
    if (!connection->isRunning())
        settingsDialog->onLinkLost(connection);
}

void MainWindow::relabelConnection(const Connection* connection, const QString& label)
{
    systems.relabel(connection, label);
}

ReconnectResult MainWindow::reconnect(const Connection* connection, const QString& expectedId)
{
    return systems.reconnect(connection, expectedId).result;
}

bool MainWindow::disconnectLink(const Connection* connection)
{
    if (systems.indexOf(connection) >= 0)
        showConnectionCommonDetector(connection->address(), false);
    return systems.disconnectLink(connection);
}

bool MainWindow::updateSettingsAndParameters(QList<ConnectionSettings>& settings)
{
    if (systems.size() != settings.size())
        return false;
    updateTimer.stop();
    const QList<int> order = connectionOverviewDialog->shownOrder();
    // The timer stays stopped: an overview that lost count is not shown as if it were right.
    if (order.size() != settings.size())
        return false;
    for (int i = 0; i < settings.size(); ++i) {
        const LiveSystem& system = systems.at(i);
        settings[i].label.set(system.status.label);
        settings[i].colorX = toName(system.status.colorX);
        settings[i].colorY = toName(system.status.colorY);
        settings[i].colorI = toName(system.status.colorI);
        system.detectors->copyTo(settings[i]);
        // At any other rate the next start would not reach the controller.
        if (settings[i].type == ConnectionType::Serial)
            settings[i].baudRateOrPort = system.connection->portOrBaud();
        settings[i].position = order[i];
    }
    updateTimer.start();
    return true;
}

bool MainWindow::closedConnection(QString address)
{
    return closeConnection(systems.find(address));
}

bool MainWindow::disconnectConnection(QString address)
{
    return disconnectLink(systems.find(address));
}

bool MainWindow::reconnectConnection(QString address, QString& boardID)
{
    const Reconnection outcome = systems.reconnect(systems.find(address), boardID);
    if (outcome.result != ReconnectResult::Reconnected)
        return false;
    boardID = outcome.id;
    return true;
}

void MainWindow::showConnection(QString id, bool show)
{
    showSystem(systems.find(id), show);
}

void MainWindow::showConnectionCommonDetector(QString, bool) {}

void MainWindow::showSystem(const Connection* connection, bool show)
{
    const WaitCursor waiting;
    const int index = systems.indexOf(connection);
    const bool stops =
        !show && systems.displayed().contains(index) && !systems.common().contains(index);
    const bool waits = stops && stopsSlowly(*connection);
    if (waits)
        waitNotice.showDisconnecting();
    systems.show(connection, show);
    if (waits)
        waitNotice.hide();
}

SystemState MainWindow::stateOf(const Connection& connection) const
{
    const ConnectionStatus& status = systems.at(systems.indexOf(&connection)).status;
    return {status.label,
            status.statusValid,
            {status.stabilised1, status.stabilised2},
            {status.multiplex1, status.multiplex2},
            status.groupId};
}

void MainWindow::updateColorGraph(QString id, QColor color, int graph)
{
    systems.setColor(systems.find(id), color, Graph(graph));
}

void MainWindow::changeLabel(QString address, QString label)
{
    systems.relabel(systems.find(address), label);
}

void MainWindow::changeGroupId(QString name, int id)
{
    systems.setGroup(systems.find(name), id);
}

void MainWindow::on_actionExit_triggered()
{
    close();
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    // Stopping idle controllers takes a second: nobody has to watch it.
    hide();
    const bool wasTold = recordingErrorBox->isVisible();
    leave();
    if (recordingErrorBox->isVisible() && !wasTold)
        letRecordingErrorBeRead();
    QApplication::closeAllWindows();
    event->accept();
}

/// The last lines of a recording can fail when the window closes, and take the box with them.
void MainWindow::letRecordingErrorBeRead()
{
    recordingErrorBox->hide();
    recordingErrorBox->exec();
}

void MainWindow::leave()
{
    if (leaving)
        return;
    leaving = true;
    const WaitCursor waiting;
    const std::vector<Connection*> all = liveConnections();
    if (std::any_of(all.begin(), all.end(), [](const auto* each) { return each->isConnected(); }))
        waitNotice.showDisconnecting();
    settingsDialog->closeAllConnections();
    acquisition.stop();
    QThread::msleep(lastWriteMs);
    updateTimer.end();
    systemsView.enableControls(false);
    // What the dialog does not know of was registered by somebody else.
    systems.closeAll();
    waitNotice.hide();
}
