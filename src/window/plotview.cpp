#include "about/informationdialog.h"
#include "link/connection.h"
#include "params/paramsdialog.h"
#include "plots/counter.h"
#include "plots/genericplot.h"
#include "recording/dataloggerdialog.h"
#include "service/servicedialog.h"
#include "setup/connectionoverviewdialog.h"
#include "setup/settingsdialog.h"
#include "ui_mainwindow.h"
#include "window/mainwindow.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QMessageBox>
#include <QSpinBox>
#include <QUrl>
#include <qwt_scale_draw.h>
#include <qwt_scale_widget.h>

namespace {

constexpr int timeAxisMinS = 0;
constexpr int timeAxisMaxS = 10;
constexpr double intensityMinV = 0.0;
constexpr double intensityMaxV = 8.0;
constexpr double msPerS = 1000.0;
constexpr int maxMajorTicks = 5;
constexpr int maxMinorTicks = 3;
/// Room for the widest numbers of the left axes, so that no canvas moves when they change and
/// those of one stage stand above each other.
constexpr double leftAxisExtentPx = 50.0;
constexpr QSize pointingDotSize(3, 3);
/// Below this the time axes could not be read; the window scrolls instead.
constexpr int minTimePlotWidthPx = 260;
/// Share of the window's width that the pointing plots take at most.
constexpr double maxOsciShare = 0.42;

void dressTimePlot(GenericPlot& plot, const char* background, QwtPlot::Axis timeAxis,
                   QwtPlot::Axis hiddenTimeAxis)
{
    plot.setMinimumWidth(minTimePlotWidthPx);
    plot.setKeepAllPoints(true);
    plot.setCanvasBackground(QColor(QLatin1String(background)));
    plot.disableZoomer();
    plot.canvas()->setCursor(Qt::ArrowCursor);
    plot.enableAxis(timeAxis, true);
    plot.enableAxis(hiddenTimeAxis, false);
    plot.enableAxis(QwtPlot::yRight, false);
    plot.setAxisScale(QwtPlot::xBottom, timeAxisMinS, timeAxisMaxS);
    plot.setAxisMaxMajor(QwtPlot::yLeft, maxMajorTicks);
    plot.axisScaleDraw(QwtPlot::yLeft)->setMinimumExtent(leftAxisExtentPx);
}

/// Room that a pointing plot needs for the scale of an axis. Those of the far sides keep the full
/// range while the plot is zoomed, so that their room is the same then.
int scaleThickness(const GenericPlot& plot, QwtPlot::Axis axis)
{
    const QwtScaleWidget& scale = *plot.axisWidget(axis);
    return scale.dimForLength(QWIDGETSIZE_MAX, scale.font());
}

} // namespace

void MainWindow::makeOsciPlots()
{
    const std::array<QVBoxLayout*, 2> layouts{ui->osciLayout1, ui->osciLayout2};
    for (std::size_t i = 0; i < stages.size(); ++i) {
        StageView& stage = stages[i];
        stage.osciPlot = new GenericPlot(this);
        stage.osciPlot->setObjectName(stage.widgetName("osciPlot"));
        stage.osciPlot->setKeepAllPoints(false);
        stage.osciPlot->drawCrossHairs();
        stage.osciPlot->setSymbolSize(pointingDotSize);
        layouts[i]->addWidget(stage.osciPlot);
        connect(stage.osciPlot, &GenericPlot::rangeChanged, this, &MainWindow::resizeGraphs);
        stage.timeWindowMs = timeAxisMaxS * msPerS;
    }
    ui->rescaler->installEventFilter(this);
}

void MainWindow::makeTimePlots()
{
    const std::array<QVBoxLayout*, 2> positionLayouts{ui->positionLayout1, ui->positionLayout2};
    const std::array<QVBoxLayout*, 2> intensityLayouts{ui->intensityLayout1, ui->intensityLayout2};
    for (std::size_t i = 0; i < stages.size(); ++i) {
        StageView& stage = stages[i];
        stage.positionPlot = new GenericPlot(this);
        stage.positionPlot->setObjectName(stage.widgetName("positionPlot"));
        positionLayouts[i]->addWidget(stage.positionPlot);

        stage.intensityPlot = new GenericPlot(this);
        stage.intensityPlot->setObjectName(stage.widgetName("intensityPlot"));
        intensityLayouts[i]->addWidget(stage.intensityPlot);
        dressTimePlot(*stage.intensityPlot, "azure", QwtPlot::xBottom, QwtPlot::xTop);
        stage.intensityPlot->setAxisScale(QwtPlot::yLeft, intensityMinV, intensityMaxV);
        stage.intensityPlot->setAxisMaxMinor(QwtPlot::yLeft, maxMinorTicks);
    }
    setPlotAttributes();
    drawWhiteLine(stages[0].timeWindowMs);
}

void MainWindow::setPlotAttributes()
{
    constexpr int fontSizePt = 10;
    for (StageView& stage : stages) {
        GenericPlot& plot = *stage.positionPlot;
        dressTimePlot(plot, "lightblue", QwtPlot::xTop, QwtPlot::xBottom);
        plot.setAxisScale(QwtPlot::xTop, timeAxisMinS, timeAxisMaxS);
        plot.setAxisScale(QwtPlot::yLeft, stage.positionMin, stage.positionMax);
        plot.setFont(QFont(QStringLiteral("Sans Serif"), fontSizePt, QFont::Bold));
    }
}

void MainWindow::drawWhiteLine(double length)
{
    for (StageView& stage : stages)
        stage.positionPlot->addMidLine(QStringLiteral("Horizontale Mittellinie"),
                                       QRectF(0.0, 0.0, length, 0.0));
}

void MainWindow::rescaleAxis(int axisId, double min, double max, bool pairCheck)
{
    const bool sameUnit = ui->xyLabel1->text() == ui->xyLabel2->text();
    const auto rescale = [min, max](GenericPlot& plot) {
        plot.setAxisScale(QwtPlot::yLeft, min, max);
        plot.replot();
    };
    for (StageView& stage : stages) {
        const int positionAxis = stage.number;
        const int intensityAxis = 4 + stage.number;
        const bool positionFollows = pairCheck && sameUnit && (axisId == 1 || axisId == 2);
        const bool intensityFollows = pairCheck && (axisId == 5 || axisId == 6);
        if (axisId == positionAxis || positionFollows)
            rescale(*stage.positionPlot);
        if (axisId == intensityAxis || intensityFollows)
            rescale(*stage.intensityPlot);
    }
}

void MainWindow::rescaleTimeAxis(int axisId, int min, int max, bool pairCheck)
{
    if (axisId != 3 && axisId != 4)
        return;
    for (StageView& stage : stages) {
        if (axisId == 2 + stage.number || pairCheck)
            rescaleTime(stage, min, max);
    }
}

void MainWindow::rescaleTime(StageView& stage, int min, int max)
{
    // The sweep follows the upper limit only, whatever the lower one is.
    stage.timeWindowMs = max * msPerS;
    stage.positionPlot->setAxisScale(QwtPlot::xBottom, min, max);
    stage.positionPlot->setAxisScale(QwtPlot::xTop, min, max);
    stage.intensityPlot->setAxisScale(QwtPlot::xBottom, min, max);
    drawWhiteLine(stage.timeWindowMs);
    stage.positionPlot->replot();
    stage.intensityPlot->replot();
}

void MainWindow::unZoomOsci(StageView& stage)
{
    stage.osciPlot->resetZoom();
    stage.osciPlot->replot();
}

void MainWindow::unZoomPlot(StageView& stage)
{
    rescaleAxis(stage.number, stage.positionMin, stage.positionMax, false);
    rescaleTimeAxis(2 + stage.number, timeAxisMinS, timeAxisMaxS, false);
    rescaleAxis(4 + stage.number, intensityMinV, intensityMaxV, false);
}

void MainWindow::unZoomOsci1()
{
    unZoomOsci(stages[0]);
}

void MainWindow::unZoomOsci2()
{
    unZoomOsci(stages[1]);
}

void MainWindow::unZoomPlot1()
{
    unZoomPlot(stages[0]);
}

void MainWindow::unZoomPlot2()
{
    unZoomPlot(stages[1]);
}

bool MainWindow::eventFilter(QObject* object, QEvent* event)
{
    if (object == ui->rescaler && event->type() == QEvent::Resize)
        resizeGraphs();
    return QMainWindow::eventFilter(object, event);
}

void MainWindow::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    resizeGraphs();
}

void MainWindow::resizeGraphs()
{
    // The stage with the shorter numbers gets the room of the longer ones, and so the same canvas.
    int numbersWidth = 0;
    for (const StageView& stage : stages)
        numbersWidth = qMax(numbersWidth, scaleThickness(*stage.osciPlot, QwtPlot::yRight));
    for (const StageView& stage : stages) {
        const int missing = numbersWidth - scaleThickness(*stage.osciPlot, QwtPlot::yRight);
        stage.osciPlot->setContentsMargins(missing, 0, missing, 0);
    }
    // Numbers beside the canvas are wider than those above it are high.
    const int numbersHeight = scaleThickness(*stages[0].osciPlot, QwtPlot::xTop);
    const int extraWidth = 2 * (numbersWidth - numbersHeight);

    const int widest = int(ui->scrollArea->viewport()->width() * maxOsciShare);
    const int smallest = ui->rescaler->minimumHeight();
    const int height = qBound(smallest, ui->rescaler->height(), qMax(smallest, widest));
    for (QWidget* box : {ui->rescaler, ui->rescaler_2})
        box->setFixedWidth(height + extraWidth);
    for (StageView& stage : stages)
        stage.osciPlot->setMaximumHeight(height);
}

void MainWindow::showParametersDialog()
{
    paramsDialog->show();
    paramsDialog->raise();
    paramsDialog->activateWindow();
}

void MainWindow::closeParametersDialog()
{
    paramsDialog->close();
}

void MainWindow::showDataloggerDialog()
{
    dataLoggerDialog->setSaveRate(samplingRateCounter->spinBox->value());
    dataLoggerDialog->show();
    dataLoggerDialog->raise();
    dataLoggerDialog->activateWindow();
}

void MainWindow::closeDataloggerDialog()
{
    if (dataLoggerDialog->isVisible())
        dataLoggerDialog->hide();
}

void MainWindow::showServiceDialog()
{
    Connection* connection = currentLink();
    if (!connection)
        return;
    serviceDialog->setConnection(connection);
    serviceDialog->show();
    serviceDialog->raise();
    serviceDialog->activateWindow();
}

void MainWindow::showAboutSoftwareDialog()
{
    informationDialog->show();
    informationDialog->raise();
    informationDialog->activateWindow();
}

void MainWindow::showUserManualSoftware()
{
    openManual(QStringLiteral("Manual_Zev-Qor-Software_vers2.3.pdf"));
}

void MainWindow::showUserManualHardware()
{
    openManual(QStringLiteral("Manual_Lumetra_Compact_en_vers15.pdf"));
}

void MainWindow::openManual(const QString& fileName)
{
    const QString path = QDir(QCoreApplication::applicationDirPath()).filePath(fileName);
    if (!QFileInfo::exists(path)) {
        QMessageBox::warning(this, tr("File not found"),
                             tr("Cannot open user manual.\n\n"
                                "Please check if the pdf file is in the program folder."));
        return;
    }
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        QMessageBox::warning(this, windowTitle(), tr("Error with opening user manual"));
}

void MainWindow::disableWhatIsNotOffered()
{
    for (QAction* action :
         {ui->actionOpenDataLog, ui->actionCloseDataLog, ui->actionAbout_the_Software})
        action->setEnabled(false);
    findChild<QAction*>(QStringLiteral("actionOperation_Tests"))->setEnabled(false);
}
