#include "params/paramsdialog.h"
#include "plots/counter.h"
#include "plots/genericplot.h"
#include "plots/rescaledialog.h"
#include "plots/rescaletimeaxisdlg.h"
#include "recording/dataloggerdialog.h"
#include "setup/connectionoverviewdialog.h"
#include "setup/settingsdialog.h"
#include "ui_mainwindow.h"
#include "window/mainwindow.h"

#include <QRadioButton>

void MainWindow::wire()
{
    wireDialogs();
    ui->actionConnect->setVisible(false);
    ui->actionDisconnect->setVisible(false);
    ui->menubar->removeAction(ui->menuParameters->menuAction());
    wireToolBar();
    wireActions();
}

void MainWindow::wireDialogs()
{
    connect(this, &MainWindow::stopRecording, dataLoggerDialog, &DataLoggerDialog::emitStopSignal);
    connect(this, &MainWindow::startTimer, dataLoggerDialog, &DataLoggerDialog::startTimerSaving);

    ConnectionOverviewDialog* overview = connectionOverviewDialog;
    connect(overview, &ConnectionOverviewDialog::displayConnection, this,
            &MainWindow::showConnection);
    connect(this, &MainWindow::changeDisplayConnection, overview,
            &ConnectionOverviewDialog::setDisplayConnection);
    connect(overview, &ConnectionOverviewDialog::changeColor, this, &MainWindow::updateColorGraph);
    connect(overview, &ConnectionOverviewDialog::changeStage, this, &MainWindow::activeStage);
    connect(overview, &ConnectionOverviewDialog::openParamDialog, paramsDialog,
            &ParamsDialog::openDialog);
    connect(ui->actionConfiguration, &QAction::triggered, overview, &QDialog::show);
    connect(ui->actionConfiguration, &QAction::triggered, overview, &QWidget::raise);
    connect(ui->actionConfiguration, &QAction::triggered, overview, &QWidget::activateWindow);

    connect(paramsDialog, &ParamsDialog::errorStream, this, &MainWindow::errorStreamStart);
    connect(rescaleDialog, &RescaleDialog::axisRescaled, this, &MainWindow::rescaleAxis);
    connect(rescaleTimeAxisDlg, &RescaleTimeAxisDlg::axisRescaled, this,
            &MainWindow::rescaleTimeAxis);
}

void MainWindow::wireToolBar()
{
    connect(startAction, &QAction::triggered, this, &MainWindow::startStopDataAcquisition);
    connect(clearAction, &QAction::triggered, this, &MainWindow::resetPlotsAndDisplays);
    connect(pointingRadio, &QRadioButton::toggled, this, &MainWindow::enableSamplesCounter);
    connect(pointingRadio, &QRadioButton::toggled, stages[0].osciPlot,
            &GenericPlot::setKeepAllPoints);
    connect(pointingRadio, &QRadioButton::toggled, this, &MainWindow::enableStatistics);
    connect(pointingRadio, &QRadioButton::toggled, stages[1].osciPlot,
            &GenericPlot::setKeepAllPoints);
    connect(samplesToTakeCounter, &Counter::valueChanged, this, &MainWindow::updateSamplesToTake);

    connect(ui->pushButton_Zoom1, &QPushButton::clicked, this, &MainWindow::unZoomOsci1);
    connect(ui->pushButton_Zoom2, &QPushButton::clicked, this, &MainWindow::unZoomOsci2);
    connect(ui->pushButton_Zoom3, &QPushButton::clicked, this, &MainWindow::unZoomPlot1);
    connect(ui->pushButton_Zoom4, &QPushButton::clicked, this, &MainWindow::unZoomPlot2);
    connect(ui->checkBox_Stats1, &QCheckBox::toggled, this, &MainWindow::showStatistics1);
    connect(ui->checkBox_Stats2, &QCheckBox::toggled, this, &MainWindow::showStatistics2);
}

void MainWindow::wireActions()
{
    connect(ui->actionConnect, &QAction::triggered, settingsDialog, &SettingsDialog::tryConnect);
    connect(ui->actionDisconnect, &QAction::triggered, settingsDialog,
            &SettingsDialog::tryDisconnect);
    for (QAction* action : {ui->actionOpenParams, ui->actionCloseParams}) {
        connect(settingsDialog, &SettingsDialog::connected, action, &QAction::setEnabled);
        connect(settingsDialog, &SettingsDialog::disconnected, action, &QAction::setEnabled);
    }
    connect(settingsDialog, &SettingsDialog::connected, ui->actionConnect, &QAction::setEnabled);
    connect(settingsDialog, &SettingsDialog::disconnected, ui->actionDisconnect,
            &QAction::setEnabled);

    connect(ui->actionSetup, &QAction::triggered, settingsDialog, &QDialog::show);
    connect(ui->actionSetup, &QAction::triggered, settingsDialog, &QWidget::activateWindow);
    connect(ui->actionSetup, &QAction::triggered, settingsDialog, &QWidget::raise);
    connect(ui->actionOpenDataLog, &QAction::triggered, this, &MainWindow::showDataloggerDialog);
    connect(ui->actionCloseDataLog, &QAction::triggered, this, &MainWindow::closeDataloggerDialog);
    connect(ui->actionOpenParams, &QAction::triggered, this, &MainWindow::showParametersDialog);
    connect(ui->actionCloseParams, &QAction::triggered, this, &MainWindow::closeParametersDialog);
    connect(ui->actionAbout_the_Software, &QAction::triggered, this,
            &MainWindow::showAboutSoftwareDialog);
    connect(ui->actionSoftware, &QAction::triggered, this, &MainWindow::showUserManualSoftware);
    connect(ui->actionLumetra, &QAction::triggered, this, &MainWindow::showUserManualHardware);
}
