#include "link/connection.h"
#include "link/streampause.h"
#include "plots/counter.h"
#include "plots/genericplot.h"
#include "plots/thermoslider.h"
#include "recording/dataloggerdialog.h"
#include "setup/waitcursor.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QDateTime>
#include <QLCDNumber>
#include <QMessageBox>
#include <QRadioButton>
#include <QSpinBox>

namespace {

constexpr double msPerS = 1000.0;
constexpr int noLimit = -1;

quint64 nowMs()
{
    return quint64(QDateTime::currentMSecsSinceEpoch());
}

/// The order in which the plots go over to live painting and back.
std::array<GenericPlot*, 6> drawingOrder(const std::array<StageView, 2>& stages)
{
    const auto& [one, two] = stages;
    return {one.osciPlot,      one.positionPlot,  two.positionPlot,
            one.intensityPlot, two.intensityPlot, two.osciPlot};
}

} // namespace

void MainWindow::startTicking()
{
    if (updateTimer)
        updateTimer->start(int(msPerS / updateRateCounter->spinBox->value()));
}

void MainWindow::stopTicking()
{
    if (updateTimer)
        updateTimer->stop();
}

void MainWindow::startStopDataAcquisition()
{
    const WaitCursor waiting;
    if (!startAction->isChecked()) {
        dataLoggerDialog->emitStopSignal();
        stopDrawingPlots();
        showRunning(false);
        return;
    }

    stopTicking();
    for (const int index : displayedConnections)
        joinAcquisition(connectionAt(index));
    commErrorCount = 0;
    resetPlotsAndDisplays();
    statisticsTime.start();
    samplesToTake = pointingRadio->isChecked() ? wantedSamples() : noLimit;
    startDrawingPlots();
    showRunning(true);
}

void MainWindow::startDrawingPlots()
{
    for (GenericPlot* plot : drawingOrder(stages))
        plot->start();
}

void MainWindow::stopDrawingPlots()
{
    const WaitCursor waiting;
    for (const int index : displayedConnections)
        connectionAt(index).stopStream();
    startAction->setChecked(false);
    showRunning(false);
    const auto isPointing = [this](const GenericPlot* plot) {
        return plot == stages[0].osciPlot || plot == stages[1].osciPlot;
    };
    for (GenericPlot* plot : drawingOrder(stages)) {
        plot->stop();
        if (isPointing(plot))
            plot->replot();
    }
}

void MainWindow::showRunning(bool running)
{
    if (pointingRadio->isChecked())
        samplesToTakeCounter->setEnabled(true);
    samplingRateCounter->setEnabled(!running && !pulsedRateLock);
    startAction->setText(running ? tr("Stop") : tr("Start"));
    startAction->setIcon(QIcon(startAction->isChecked() ? QStringLiteral(":/images/stop.xpm")
                                                        : QStringLiteral(":/images/go.xpm")));
    startAction->setChecked(running);
}

void MainWindow::resetPlotsAndDisplays()
{
    stopTicking();
    for (StageView& stage : stages) {
        stage.clearCurves();
        stage.clearAverages();
        stage.plotOriginMs = nowMs();
    }
    clearStatistics();
    for (StageView& stage : stages) {
        for (QLCDNumber* readout : {stage.lcdX, stage.lcdY, stage.lcdI})
            readout->display(QString::number(0.0, 'f', 2));
        stage.thermoX->setValue(0.0);
        stage.thermoY->setValue(0.0);
    }
    startTicking();
}

void MainWindow::errorStreamStart()
{
    streamErrorBox->show();
}

void MainWindow::enableSamplesCounter(bool on)
{
    samplesToTakeCounter->setEnabled(on);
    if (!startAction->isChecked())
        return;
    if (on) {
        samplesTaken = 0;
        samplesToTake = wantedSamples();
        clearStatistics();
    } else {
        samplesToTake = noLimit;
    }
}

int MainWindow::wantedSamples()
{
    // What stands in the field counts, also before it was confirmed.
    samplesToTakeCounter->spinBox->interpretText();
    return samplesToTakeCounter->spinBox->value();
}

void MainWindow::updateSamplesToTake(int value)
{
    samplesToTake = value;
}

void MainWindow::joinAcquisition(Connection& connection)
{
    if (!startStreamAtRate(connection, samplingRateCounter->spinBox->value()))
        errorStreamStart();
}

void MainWindow::restart(StreamPause& pause)
{
    if (!pause.resume(samplingRateCounter->spinBox->value()))
        errorStreamStart();
}
