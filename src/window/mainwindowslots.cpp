// The slots that pass on to the rooms behind the window.

#include "about/informationdialog.h"
#include "link/connection.h"
#include "params/paramsdialog.h"
#include "recording/dataloggerdialog.h"
#include "service/servicedialog.h"
#include "setup/connectionoverviewdialog.h"
#include "window/mainwindow.h"
#include "window/showontop.h"
#include "window/usermanual.h"

#include <QMessageBox>

// Stages and acquisition.

void MainWindow::updateData()
{
    displayTick.run();
    recording.writeSoon();
    connectionOverviewDialog->update(systems.statuses());
    updateTimer.start();
}

void MainWindow::updateDataCommon()
{
    displayTick.showCommonSamples();
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
            stabilisation.switchStage(&systems.connectionAt(index), Stage(stage), activate);
    }
}

void MainWindow::multiplexSystem(QString name, bool direction, int stage)
{
    multiplexing.switchStage(name, direction, stage);
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

// Recordings.

void MainWindow::startDataRecordingFromDlg(QString fileName, bool multiSave)
{
    recording.start(fileName, multiSave, dataLoggerDialog->saveRate());
}

void MainWindow::stopDataRecordingFromDlg()
{
    recording.end();
}

bool MainWindow::mayOverwrite(const QString& path)
{
    const auto answer =
        QMessageBox::question(dataLoggerDialog, tr("File with extension exist!"),
                              tr("File\n%1\n already exists!\n\nOverwrite the file?").arg(path),
                              QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Cancel);
    return answer == QMessageBox::Ok;
}

void MainWindow::tellRecordingFailed(const RecordFailure& failure)
{
    // The first line decides whether a box reads its text as markup, which a name can look like.
    recordingErrorBox->setInformativeText(tr("File\n%1\n%2").arg(failure.path, failure.reason));
    recordingErrorBox->show();
    recordingErrorBox->raise();
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
    showOnTop(*paramsDialog);
}

void MainWindow::closeParametersDialog()
{
    paramsDialog->close();
}

void MainWindow::showDataloggerDialog()
{
    // What is being recorded keeps its rate.
    if (!recording.isOngoing())
        dataLoggerDialog->setSaveRate(toolBar.samplingRateHz());
    showOnTop(*dataLoggerDialog);
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
    serviceDialog->setConnection(*system->connection);
    showOnTop(*serviceDialog);
}

void MainWindow::showAboutSoftwareDialog()
{
    showOnTop(*informationDialog);
}

void MainWindow::showUserManualSoftware()
{
    openUserManual(QStringLiteral("Manual_Zev-Qor-Software_vers2.3.pdf"), *this);
}

void MainWindow::showUserManualHardware()
{
    openUserManual(QStringLiteral("Manual_Lumetra_Compact_en_vers15.pdf"), *this);
}

void MainWindow::showRescaleDialog(int axisID, double max, double min)
{
    axisDialogs.askForValues(axisID, max, min);
}

void MainWindow::showRescaleTimeAxisDlg(int axisID, int min, int max)
{
    axisDialogs.askForTimes(axisID, min, max);
}
