#include "window/mainwindow.h"

#include "about/informationdialog.h"
#include "app/logging.h"
#include "app/switches.h"
#include "images/images.h"
#include "link/connection.h"
#include "params/paramsdialog.h"
#include "plots/colorscalesframe.h"
#include "plots/genericplot.h"
#include "plots/rescaledialog.h"
#include "plots/rescaletimeaxisdlg.h"
#include "plots/thermoslider.h"
#include "recording/dataloggerdialog.h"
#include "service/servicedialog.h"
#include "setup/connectionoverviewdialog.h"
#include "setup/settingsdialog.h"
#include "ui_mainwindow.h"
#include "window/connectingnotice.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMessageBox>
#include <qwt_plot_shapeitem.h>
#include <qwt_plot_textlabel.h>

namespace {

constexpr int firstTickMs = 1000;
constexpr int initialMaxRateHz = 430;
/// The connections' threads are given this to write what was sent last.
constexpr unsigned long lastWriteMs = 3;

void dressReadout(QLCDNumber& readout)
{
    QPalette palette(Qt::black);
    palette.setColor(QPalette::WindowText, Qt::green);
    readout.setPalette(palette);
    readout.setAutoFillBackground(true);
    readout.setSegmentStyle(QLCDNumber::Flat);
    readout.display(QStringLiteral("0.00"));
}

QPalette buttonPalette(const char* color)
{
    QPalette palette;
    palette.setColor(QPalette::Button, QColor(QLatin1String(color)));
    // The colours are light whatever the desktop's are.
    palette.setColor(QPalette::ButtonText, Qt::black);
    return palette;
}

} // namespace

MainWindow::MainWindow(QWidget* parent)
    : QMainWindow(parent)
    , ui(std::make_unique<Ui::MainWindow>())
    , updateTimer(std::make_unique<QTimer>())
    , maxRate(initialMaxRateHz)
{
    logMessage().debug() << "Constructing main window";
    initImages();
    ui->setupUi(this);
    addServiceMenu();
    addToolBar();

    updateTimer->setTimerType(Qt::PreciseTimer);
    connect(updateTimer.get(), &QTimer::timeout, this, &MainWindow::updateData,
            Qt::DirectConnection);
    updateTimer->start(firstTickMs);

    makeStageViews();
    createDialogs();
    dressWindow();
    makeOsciPlots();
    makeTimePlots();
    makeStatisticsOverlay();
    makePiezoBars();
    wire();
    disableWhatNeedsAConnection();
    disableWhatIsNotOffered();
    loadSetupFile();
    // A pulsed system of the setup file holds the lock by now, and this is what it gives back.
    if (!pulsedRateLock)
        maxRate = initialMaxRateHz;
    logMessage().debug() << "Finished constructing main window";
}

MainWindow::~MainWindow()
{
    logMessage().debug() << "Destroying main window";
    leave();
    logMessage().debug() << "Finished destroying main window";
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

void MainWindow::makeStageViews()
{
    StageView& one = stages[0];
    one.number = 1;
    one.lcdX = ui->lcd1x;
    one.lcdY = ui->lcd1y;
    one.lcdI = ui->lcd1i;
    one.stabilisation = ui->push_Stab1;
    one.activeIcon = ui->label_ActiveIcon;
    one.activeText = ui->label_ActiveText;
    one.statisticsBox = ui->checkBox_Stats1;
    one.unitLabel = ui->xyLabel1;
    one.xLabel = ui->xLabel1;
    one.yLabel = ui->yLabel1;
    one.positionXLabel = ui->label_42;
    one.positionYLabel = ui->label_44;
    one.xAxisLabel = ui->x_axis_label;
    one.yAxisLabel = ui->y_axis_label;
    one.iAxisLabel = ui->i_axis_label;
    one.singleSystemWidgets = {ui->stage1Frame_2, ui->frame_rightTop};

    StageView& two = stages[1];
    two.number = 2;
    two.lcdX = ui->lcd2x;
    two.lcdY = ui->lcd2y;
    two.lcdI = ui->lcd2i;
    two.stabilisation = ui->push_Stab2;
    two.activeIcon = ui->label_ActiveIcon_2;
    two.activeText = ui->label_ActiveText_2;
    two.statisticsBox = ui->checkBox_Stats2;
    two.unitLabel = ui->xyLabel2;
    two.xLabel = ui->xLabel2;
    two.yLabel = ui->yLabel2;
    two.positionXLabel = ui->label_17;
    two.positionYLabel = ui->label_11;
    two.xAxisLabel = ui->x_axis_label2;
    two.yAxisLabel = ui->y_axis_label2;
    two.iAxisLabel = ui->i_axis_label2;
    two.singleSystemWidgets = {ui->stage2Frame, ui->frame_rightBottom};
}

void MainWindow::createDialogs()
{
    rescaleDialog = new RescaleDialog(this);
    rescaleTimeAxisDlg = new RescaleTimeAxisDlg(this);
    paramsDialog = new ParamsDialog(connections, statuses, this);
    detectorPairs = paramsDialog->detectorPairs();
    serviceDialog = new ServiceDialog(this);
    dataLoggerDialog = new DataLoggerDialog(this);
    settingsDialog = new SettingsDialog(*this, this);
    informationDialog = new InformationDialog(this);
    connectionOverviewDialog = new ConnectionOverviewDialog(this);

    streamErrorBox = new QMessageBox(QMessageBox::NoIcon, tr("Information"),
                                     tr("Streaming error has occurred."), QMessageBox::Ok, this);
    streamErrorBox->setObjectName(QStringLiteral("streamErrorBox"));
    streamErrorBox->setDefaultButton(QMessageBox::Ok);
    streamErrorBox->setModal(false);
}

void MainWindow::dressWindow()
{
    setWindowTitle(tr("Zev Lumetra"));
    setWindowFlags(Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowMinimizeButtonHint
                   | Qt::WindowMaximizeButtonHint | Qt::WindowCloseButtonHint);
    setWindowIcon(QIcon(QStringLiteral(":/images/Zevlogo1_freigestellt.gif")));
    setContextMenuPolicy(Qt::NoContextMenu);

    paletteOn = buttonPalette("lightgreen");
    paletteOff = buttonPalette("lightcoral");
    for (StageView& stage : stages) {
        stage.stabilisation->setPalette(paletteOff);
        for (QLCDNumber* readout : {stage.lcdX, stage.lcdY, stage.lcdI})
            dressReadout(*readout);
        stage.setActive(false);
        stage.positionMax = UnitChoice().maxPosition();
        stage.positionMin = UnitChoice().minPosition();
    }
    blackenAxisLabels();
}

void MainWindow::makeStatisticsOverlay()
{
    constexpr int textSizePt = 8;
    constexpr double crossWidth = 2.0;
    const char* const crossNames[] = {"Zielkreuz mit Varianz-Kreis",
                                      "Zielkreuz2 mit Varianz-Kreis"};

    for (StageView& stage : stages) {
        stage.statisticsText.setFont(QFont(QStringLiteral("Sans Serif"), textSizePt));
        stage.statisticsText.setColor(Qt::red);
        stage.statisticsText.setRenderFlags(Qt::AlignLeft | Qt::AlignTop);
        stage.statisticsLabel = std::make_unique<QwtPlotTextLabel>();
        stage.statisticsLabel->setText(stage.statisticsText);

        stage.targetCross = std::make_unique<QwtPlotShapeItem>(
            QString(QLatin1String(crossNames[stage.number - 1])));
        stage.targetCross->setPen(QPen(Qt::red, crossWidth));
        stage.targetCross->setShape(restingCrossShape());
        // Over the points that it sums up.
        stage.targetCross->setZ(stage.statisticsLabel->z());
    }
}

void MainWindow::makePiezoBars()
{
    const std::array<std::array<QHBoxLayout*, 2>, 2> layouts{
        {{ui->thermoXLayout1, ui->thermoYLayout1}, {ui->thermoXLayout2, ui->thermoYLayout2}}};

    for (std::size_t i = 0; i < stages.size(); ++i) {
        StageView& stage = stages[i];
        stage.thermoX = new ThermoSlider(this);
        stage.thermoY = new ThermoSlider(this);
        stage.thermoX->setObjectName(stage.widgetName("thermoRX"));
        stage.thermoY->setObjectName(stage.widgetName("thermoRY"));
        constexpr int stripWidthPx = 14;
        const std::array<ThermoSlider*, 2> bars{stage.thermoX, stage.thermoY};
        for (std::size_t axis = 0; axis < bars.size(); ++axis) {
            auto* strip = new ColorScalesFrame(this);
            strip->setFixedWidth(stripWidthPx);
            layouts[i][axis]->addWidget(strip);
            layouts[i][axis]->addWidget(bars[axis]);
        }
    }
}

void MainWindow::disableWhatNeedsAConnection()
{
    enableControls(false);
}

void MainWindow::loadSetupFile()
{
    connectingNotice = std::make_unique<ConnectingNotice>();
    connect(settingsDialog, &SettingsDialog::connectingTo, connectingNotice.get(),
            &ConnectingNotice::showSystem);
    connect(settingsDialog, &SettingsDialog::loadingFinished, connectingNotice.get(),
            &ConnectingNotice::hide);
    settingsDialog->loadConnection(QString());
}

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
    if (left)
        return;
    left = true;
    settingsDialog->closeAllConnections();
    stopDrawingPlots();
    QThread::msleep(lastWriteMs);
    updateTimer->disconnect(this);
    updateTimer.reset();
    displayedConnections.clear();
    enableControls(false);
    // What the dialog does not know of was registered by somebody else. One by one: the end of
    // each takes events, and these must find whole lists.
    while (!connections.empty())
        closeConnection(connections.back().get());
}
