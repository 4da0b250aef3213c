#include "window/mainwindow.h"

#include "about/informationdialog.h"
#include "app/logging.h"
#include "app/switches.h"
#include "images/images.h"
#include "link/connection.h"
#include "params/paramsdialog.h"
#include "plots/counter.h"
#include "plots/genericplot.h"
#include "recording/dataloggerdialog.h"
#include "service/servicedialog.h"
#include "setup/connectionoverviewdialog.h"
#include "setup/settingsdialog.h"
#include "ui_mainwindow.h"
#include "window/showontop.h"

#include <QMessageBox>
#include <QRadioButton>

MainWindow::MainWindow(QWidget* parent)
    : QMainWindow(parent)
    , ui(makeForm())
    , waitNotice(*this)
    , toolBar(*this)
    , stages{{{Stage::One, *this, stage1Widgets()}, {Stage::Two, *this, stage2Widgets()}}}
    , updateTimer(toolBar)
    , statistics(systems, stages)
    , acquisition(systems, stages, toolBar, statistics, updateTimer)
    , stabilisation(systems, stages, toolBar)
    , multiplexing(systems, toolBar, updateTimer)
    , recording(systems, toolBar, acquisition, recorder,
                [this](const QString& path) { return mayOverwrite(path); })
    , displayTick(systems, stages, toolBar, statistics, acquisition, recorder)
    , plotFrame(stages, {*ui->rescaler, *ui->rescaler_2, *ui->scrollArea})
    , axisDialogs(stages, plotFrame, *this)
    , systemsView(systems, stages, toolBar, statistics, *this)
{
    addServiceMenu();
    createDialogs();
    dressWindow();
    wireSystems();
    wireToolBar();
    wireOverview();
    wireDialogs();
    wireMenus();
    systemsView.enableControls(false);
    settingsDialog->loadConnection(QString());
    logMessage().debug() << "Finished constructing main window";
}

MainWindow::~MainWindow()
{
    logMessage().debug() << "Destroying main window";
    leave();
    logMessage().debug() << "Finished destroying main window";
}

std::unique_ptr<Ui::MainWindow> MainWindow::makeForm()
{
    logMessage().debug() << "Constructing main window";
    initImages();
    auto form = std::make_unique<Ui::MainWindow>();
    form->setupUi(this);
    return form;
}

StageView::Widgets MainWindow::stage1Widgets()
{
    return {{*ui->osciLayout1, *ui->positionLayout1, *ui->intensityLayout1},
            {*ui->lcd1x, *ui->lcd1y, *ui->lcd1i},
            {*ui->thermoXLayout1, *ui->thermoYLayout1},
            *ui->push_Stab1,
            *ui->label_ActiveIcon,
            *ui->label_ActiveText,
            *ui->checkBox_Stats1,
            *ui->xyLabel1,
            *ui->xLabel1,
            *ui->yLabel1,
            *ui->label_42,
            *ui->label_44,
            *ui->x_axis_label,
            *ui->y_axis_label,
            *ui->i_axis_label,
            {ui->stage1Frame_2, ui->frame_rightTop}};
}

StageView::Widgets MainWindow::stage2Widgets()
{
    return {{*ui->osciLayout2, *ui->positionLayout2, *ui->intensityLayout2},
            {*ui->lcd2x, *ui->lcd2y, *ui->lcd2i},
            {*ui->thermoXLayout2, *ui->thermoYLayout2},
            *ui->push_Stab2,
            *ui->label_ActiveIcon_2,
            *ui->label_ActiveText_2,
            *ui->checkBox_Stats2,
            *ui->xyLabel2,
            *ui->xLabel2,
            *ui->yLabel2,
            *ui->label_17,
            *ui->label_11,
            *ui->x_axis_label2,
            *ui->y_axis_label2,
            *ui->i_axis_label2,
            {ui->stage2Frame, ui->frame_rightBottom}};
}

void MainWindow::addServiceMenu()
{
    auto* menu = new QMenu(tr("Service"), ui->menubar);
    menu->setObjectName(QStringLiteral("menuService"));
    QAction* tests = menu->addAction(tr("Operation Tests"));
    tests->setObjectName(QStringLiteral("actionOperation_Tests"));
    connect(tests, &QAction::triggered, this, &MainWindow::showServiceDialog);
    ui->menubar->addMenu(menu);
    menu->menuAction()->setVisible(switches::serviceMode);
}

void MainWindow::createDialogs()
{
    paramsDialog =
        new ParamsDialog({[this](const Connection& connection) { return stateOf(connection); },
                          [this](const Connection& connection, Stage stage, bool isOnCommonPath) {
                              systems.noteCommonPath(&connection, stage, isOnCommonPath);
                          },
                          [this] { return toolBar.samplingRateHz(); }},
                         this);
    serviceDialog = new ServiceDialog([this] { return toolBar.samplingRateHz(); }, this);
    dataLoggerDialog = new DataLoggerDialog(this);
    settingsDialog = new SettingsDialog(*this, this);
    informationDialog = new InformationDialog(this);
    connectionOverviewDialog = new ConnectionOverviewDialog(this);

    streamErrorBox = new QMessageBox(QMessageBox::NoIcon, tr("Information"),
                                     tr("Streaming error has occurred."), QMessageBox::Ok, this);
    streamErrorBox->setObjectName(QStringLiteral("streamErrorBox"));
    recordingErrorBox = new QMessageBox(QMessageBox::Critical, tr("Error"),
                                        tr("The recording has ended. A file can not be written."),
                                        QMessageBox::Ok, this);
    recordingErrorBox->setObjectName(QStringLiteral("recordingErrorBox"));
    for (QMessageBox* box : {streamErrorBox, recordingErrorBox}) {
        box->setDefaultButton(QMessageBox::Ok);
        box->setModal(false);
    }
}

void MainWindow::dressWindow()
{
    setWindowTitle(tr("Zev Lumetra"));
    setWindowFlags(Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowMinimizeButtonHint
                   | Qt::WindowMaximizeButtonHint | Qt::WindowCloseButtonHint);
    setWindowIcon(QIcon(QStringLiteral(":/images/Zevlogo1_freigestellt.gif")));
    setContextMenuPolicy(Qt::NoContextMenu);
    ui->actionConnect->setVisible(false);
    ui->actionDisconnect->setVisible(false);
    ui->menubar->removeAction(ui->menuParameters->menuAction());
}

void MainWindow::wireSystems()
{
    connect(&systems, &LiveSystems::added, connectionOverviewDialog,
            [this] { connectionOverviewDialog->update(systems.statuses()); });
    connect(&systems, &LiveSystems::closed, this, &MainWindow::onSystemClosed);
    connect(&systems, &LiveSystems::shown, &acquisition, &Acquisition::joinIfRunning);
    connect(&systems, &LiveSystems::disconnected, paramsDialog, &ParamsDialog::closeIfDisconnected);
    connect(&systems, &LiveSystems::lost, settingsDialog, &SettingsDialog::onLinkLost);
    connect(&systemsView, &SystemsView::controlsEnabled, dataLoggerDialog,
            &DataLoggerDialog::setRecordingEnabled);

    connect(&updateTimer, &TickTimer::timeout, this, &MainWindow::updateData);
    connect(&displayTick, &DisplayTick::unitShown, &axisDialogs, &AxisDialogs::showUnit);
    connect(&acquisition, &Acquisition::started, &stabilisation, &Stabilisation::forgetFailures);
    connect(&acquisition, &Acquisition::aboutToStop, dataLoggerDialog,
            &DataLoggerDialog::emitStopSignal);
    connect(&acquisition, &Acquisition::stopping, this, [this] {
        if (recording.isOngoing())
            emit stopRecording();
    });
    connect(&acquisition, &Acquisition::streamFailed, this, &MainWindow::errorStreamStart);
    connect(&stabilisation, &Stabilisation::streamFailed, this, &MainWindow::errorStreamStart);
    connect(&multiplexing, &Multiplexing::streamFailed, this, &MainWindow::errorStreamStart);
    connect(&stabilisation, &Stabilisation::linkFailed, this, &MainWindow::tellLinkFailed);
}

void MainWindow::wireToolBar()
{
    const QRadioButton* pointing = &toolBar.pointingRadio();
    connect(&toolBar.startAction(), &QAction::triggered, this,
            &MainWindow::startStopDataAcquisition);
    connect(&toolBar.clearAction(), &QAction::triggered, this, &MainWindow::resetPlotsAndDisplays);
    connect(pointing, &QRadioButton::toggled, this, &MainWindow::enableSamplesCounter);
    connect(pointing, &QRadioButton::toggled, &stages[0].plots().pointing(),
            &GenericPlot::setKeepAllPoints);
    connect(pointing, &QRadioButton::toggled, this, &MainWindow::enableStatistics);
    connect(pointing, &QRadioButton::toggled, &stages[1].plots().pointing(),
            &GenericPlot::setKeepAllPoints);
    connect(&toolBar.samplesToTakeCounter(), &Counter::valueChanged, this,
            &MainWindow::updateSamplesToTake);

    connect(ui->pushButton_Zoom1, &QPushButton::clicked, this, &MainWindow::unZoomOsci1);
    connect(ui->pushButton_Zoom2, &QPushButton::clicked, this, &MainWindow::unZoomOsci2);
    connect(ui->pushButton_Zoom3, &QPushButton::clicked, this, &MainWindow::unZoomPlot1);
    connect(ui->pushButton_Zoom4, &QPushButton::clicked, this, &MainWindow::unZoomPlot2);
    connect(ui->checkBox_Stats1, &QCheckBox::toggled, this, &MainWindow::showStatistics1);
    connect(ui->checkBox_Stats2, &QCheckBox::toggled, this, &MainWindow::showStatistics2);
}

/// The overview tells which system it means by an address, too; only the connection is certain.
/// Groups and their multiplexers go by the address alone.
void MainWindow::wireOverview()
{
    using Overview = ConnectionOverviewDialog;
    Overview* overview = connectionOverviewDialog;
    connect(overview, &Overview::systemDisplayed, this, &MainWindow::showSystem);
    connect(overview, &Overview::systemColored, &systems, &LiveSystems::setColor);
    connect(overview, &Overview::systemStageChanged, &stabilisation, &Stabilisation::switchStage);
    connect(overview, &Overview::systemParametersWanted, paramsDialog, &ParamsDialog::openFor);
    connect(overview, &Overview::multiplexDetectors, this, &MainWindow::multiplexSystem);
    connect(overview, &Overview::newGroupId, this, &MainWindow::changeGroupId);
    connect(this, &MainWindow::changeDisplayConnection, overview, &Overview::setDisplayConnection);
    connect(ui->actionConfiguration, &QAction::triggered, overview,
            [overview] { showOnTop(*overview); });
}

void MainWindow::wireDialogs()
{
    connect(this, &MainWindow::stopRecording, dataLoggerDialog, &DataLoggerDialog::emitStopSignal);
    connect(this, &MainWindow::startTimer, dataLoggerDialog, &DataLoggerDialog::startTimerSaving);
    connect(dataLoggerDialog, qOverload<QString, bool>(&DataLoggerDialog::dataRecordingStarted),
            this, &MainWindow::startDataRecordingFromDlg);
    connect(dataLoggerDialog, &DataLoggerDialog::dataRecordingStopped, this,
            &MainWindow::stopDataRecordingFromDlg);
    connect(&recording, &LiveRecording::endWanted, this, &MainWindow::stopRecording);
    connect(&recording, &LiveRecording::begun, this, &MainWindow::startTimer);
    connect(&recording, &LiveRecording::saveRateCut, dataLoggerDialog,
            &DataLoggerDialog::setSaveRate);
    connect(&recording, &LiveRecording::failed, this, &MainWindow::tellRecordingFailed);
    connect(paramsDialog, &ParamsDialog::errorStream, this, &MainWindow::errorStreamStart);
    connect(serviceDialog, &ServiceDialog::baudRateChanged, this, &MainWindow::onBaudRateChanged);
    connect(&axisDialogs, &AxisDialogs::valuesChosen, this, &MainWindow::rescaleAxis);
    connect(&axisDialogs, &AxisDialogs::timesChosen, this, &MainWindow::rescaleTimeAxis);

    for (QAction* action : {ui->actionOpenParams, ui->actionCloseParams}) {
        connect(settingsDialog, &SettingsDialog::connected, action, &QAction::setEnabled);
        connect(settingsDialog, &SettingsDialog::disconnected, action, &QAction::setEnabled);
    }
    connect(settingsDialog, &SettingsDialog::connected, ui->actionConnect, &QAction::setEnabled);
    connect(settingsDialog, &SettingsDialog::disconnected, ui->actionDisconnect,
            &QAction::setEnabled);
    connect(settingsDialog, &SettingsDialog::connectingTo, &waitNotice,
            &WaitNotice::showConnecting);
    connect(settingsDialog, &SettingsDialog::systemUp, &waitNotice, &WaitNotice::showConnecting);
    connect(settingsDialog, &SettingsDialog::loadingFinished, &waitNotice, &QWidget::hide);
}

void MainWindow::wireMenus()
{
    connect(ui->actionConnect, &QAction::triggered, settingsDialog, &SettingsDialog::tryConnect);
    connect(ui->actionDisconnect, &QAction::triggered, settingsDialog,
            &SettingsDialog::tryDisconnect);
    connect(ui->actionSetup, &QAction::triggered, settingsDialog,
            [this] { showOnTop(*settingsDialog); });
    connect(ui->actionOpenDataLog, &QAction::triggered, this, &MainWindow::showDataloggerDialog);
    connect(ui->actionCloseDataLog, &QAction::triggered, this, &MainWindow::closeDataloggerDialog);
    connect(ui->actionOpenParams, &QAction::triggered, this, &MainWindow::showParametersDialog);
    connect(ui->actionCloseParams, &QAction::triggered, this, &MainWindow::closeParametersDialog);
    connect(ui->actionAbout_the_Software, &QAction::triggered, this,
            &MainWindow::showAboutSoftwareDialog);
    connect(ui->actionSoftware, &QAction::triggered, this, &MainWindow::showUserManualSoftware);
    connect(ui->actionLumetra, &QAction::triggered, this, &MainWindow::showUserManualHardware);
}
