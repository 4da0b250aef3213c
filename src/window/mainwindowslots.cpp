// The registry, the slots and the end of the window.

#include "about/informationdialog.h"
#include "app/logging.h"
#include "link/connection.h"
#include "link/packet.h"
#include "model/connectionsettings.h"
#include "model/detectorpair.h"
#include "params/paramsdialog.h"
#include "recording/dataloggerdialog.h"
#include "service/servicedialog.h"
#include "setup/colors.h"
#include "setup/connectionoverviewdialog.h"
#include "setup/settingsdialog.h"
#include "setup/waitcursor.h"
#include "ui_mainwindow.h"
#include "window/mainwindow.h"
#include "window/usermanual.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMessageBox>

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

void open(QWidget& dialog)
{
    dialog.show();
    dialog.raise();
    dialog.activateWindow();
}

} // namespace

// The registry.

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

bool MainWindow::closeConnection(const Connection* connection)
{
    updateTimer.stop();
    const bool closed = systems.close(connection);
    displayTick.limitRatesToLines();
    updateTimer.start();
    return closed;
}

void MainWindow::onSystemClosed(int, const Connection* connection)
{
    if (serviceDialog->connection() == connection)
        serviceDialog->setConnection(nullptr);
    paramsDialog->removeDetectors(connection);
    // Whoever saves before the next tick needs the overview to know the same systems.
    connectionOverviewDialog->update(systems.statuses());
}

void MainWindow::relabelConnection(const Connection* connection, const QString& label)
{
    systems.relabel(connection, label);
}

ReconnectResult MainWindow::reconnect(const Connection* connection, const QString& expectedId)
{
    QString id = expectedId;
    return systems.reconnect(connection, id);
}

bool MainWindow::disconnectLink(const Connection* connection)
{
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
    return systems.disconnectLink(systems.find(address));
}

bool MainWindow::reconnectConnection(QString address, QString& boardID)
{
    return systems.reconnect(systems.find(address), boardID) == ReconnectResult::Reconnected;
}

void MainWindow::showConnection(QString id, bool show)
{
    showSystem(systems.find(id), show);
}

void MainWindow::showSystem(const Connection* connection, bool show)
{
    const WaitCursor waiting;
    const int index = systems.indexOf(connection);
    const bool waits =
        !show && index >= 0 && systems.isDisplayed(index) && stopsSlowly(*connection);
    if (waits)
        waitNotice.showDisconnecting();
    systems.show(connection, show);
    if (waits)
        waitNotice.hide();
}

void MainWindow::updateColorGraph(QString id, QColor color, int graph)
{
    systems.setColor(systems.find(id), color, graph);
}

void MainWindow::changeLabel(QString address, QString label)
{
    systems.relabel(systems.find(address), label);
}

void MainWindow::changeGroupId(QString name, int id)
{
    systems.setGroup(systems.find(name), id);
}

// Stages and acquisition.

void MainWindow::updateData()
{
    displayTick.run();
    connectionOverviewDialog->update(systems.statuses());
    updateTimer.start();
}

bool MainWindow::on_push_Stab1_clicked()
{
    stabilisation.switchAsClicked(stages[0]);
    return true;
}

bool MainWindow::on_push_Stab2_clicked()
{
    stabilisation.switchAsClicked(stages[1]);
    return true;
}

void MainWindow::activeStage(QString id, int stage, bool activate)
{
    for (int index = 0; index < systems.size(); ++index) {
        if (systems.connectionAt(index).address() == id)
            stabilisation.switchStage(&systems.connectionAt(index), stage, activate);
    }
}

bool MainWindow::getStabilAndActiveStatus()
{
    return stabilisation.readAndShow();
}

bool MainWindow::getActiveStatus(uchar flag)
{
    return stabilisation.showActive(flag);
}

void MainWindow::tellLinkFailed()
{
    acquisition.stop();
    QMessageBox::critical(this, tr("Error"),
                          tr("Too many communication errors.\nDevice disconnected."));
}

void MainWindow::startStopDataAcquisition()
{
    acquisition.startOrStop();
}

void MainWindow::startDrawingPlots()
{
    acquisition.startDrawing();
}

void MainWindow::stopDrawingPlots()
{
    acquisition.stop();
}

void MainWindow::showRunning(bool running)
{
    acquisition.showRunning(running);
}

void MainWindow::resetPlotsAndDisplays()
{
    acquisition.reset();
}

void MainWindow::errorStreamStart()
{
    streamErrorBox->show();
}

void MainWindow::enableSamplesCounter(bool on)
{
    acquisition.limitSamples(on);
}

void MainWindow::updateSamplesToTake(int value)
{
    statistics.run().setLimit(value);
}

// Statistics.

void MainWindow::updateStatistics(int count, int index, bool display)
{
    if (display)
        statistics.refresh(systems.at(index), count);
    else
        statistics.addLatest(systems.at(index), count);
}

void MainWindow::enableStatistics(bool on)
{
    statistics.enable(on);
}

void MainWindow::showStatistics1(bool on)
{
    statistics.show(stages[0], on);
}

void MainWindow::showStatistics2(bool on)
{
    statistics.show(stages[1], on);
}

void MainWindow::clearStatistics()
{
    statistics.clear();
}

// Plots.

void MainWindow::setPlotAttributes()
{
    plotFrame.dressPositionPlots();
}

void MainWindow::unZoomOsci1()
{
    stages[0].plots().resetPointingZoom();
}

void MainWindow::unZoomOsci2()
{
    stages[1].plots().resetPointingZoom();
}

void MainWindow::unZoomPlot1()
{
    plotFrame.resetTimePlots(stages[0]);
}

void MainWindow::unZoomPlot2()
{
    plotFrame.resetTimePlots(stages[1]);
}

void MainWindow::rescaleAxis(int axisId, double min, double max, bool pairCheck)
{
    plotFrame.rescaleAxis(axisId, min, max, pairCheck);
}

void MainWindow::rescaleTimeAxis(int axisId, int min, int max, bool pairCheck)
{
    plotFrame.rescaleTimeAxis(axisId, min, max, pairCheck);
}

void MainWindow::drawWhiteLine(double length)
{
    plotFrame.drawMidLine(length);
}

void MainWindow::resizeGraphs()
{
    plotFrame.resizePlots();
}

void MainWindow::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    resizeGraphs();
}

// Dialogs.

void MainWindow::showParametersDialog()
{
    open(*paramsDialog);
}

void MainWindow::closeParametersDialog()
{
    paramsDialog->close();
}

void MainWindow::showDataloggerDialog()
{
    dataLoggerDialog->setSaveRate(toolBar.samplingRateHz());
    open(*dataLoggerDialog);
}

void MainWindow::closeDataloggerDialog()
{
    if (dataLoggerDialog->isVisible())
        dataLoggerDialog->hide();
}

void MainWindow::showServiceDialog()
{
    const LiveSystem* system = systems.current();
    if (!system)
        return;
    serviceDialog->setConnection(system->connection.get());
    open(*serviceDialog);
}

void MainWindow::showAboutSoftwareDialog()
{
    open(*informationDialog);
}

void MainWindow::showUserManualSoftware()
{
    openUserManual(QStringLiteral("Manual_Zev-Qor-Software_vers2.3.pdf"), *this);
}

void MainWindow::showUserManualHardware()
{
    openUserManual(QStringLiteral("Manual_Lumetra_Compact_en_vers15.pdf"), *this);
}

// Leaving.

void MainWindow::on_actionExit_triggered()
{
    close();
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    // Stopping idle controllers takes a second each: nobody has to watch it.
    hide();
    leave();
    QApplication::closeAllWindows();
    event->accept();
}

void MainWindow::leave()
{
    if (leaving)
        return;
    leaving = true;
    const WaitCursor waiting;
    if (systems.anyConnected())
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
