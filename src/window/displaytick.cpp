#include "link/connection.h"
#include "plots/counter.h"
#include "plots/genericplot.h"
#include "plots/rescaledialog.h"
#include "plots/thermoslider.h"
#include "setup/connectionoverviewdialog.h"
#include "window/decimation.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QLCDNumber>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>

#include <algorithm>

namespace {

/// Bounds one tick even after a stall; what is left is taken by the next one.
constexpr int maxSamplesPerTick = 501;
constexpr int intensityDecimals = 2;
constexpr int pulsedRateHz = 1000;

// The controller sends millivolts; these give volts.
constexpr double positionScale = 0.001;
constexpr double intensityScale = 0.001;
constexpr double piezoScale = 0.001;

} // namespace

bool MainWindow::Decimation::takes()
{
    if (++counter < every)
        return false;
    counter = 0;
    return true;
}

void MainWindow::updateData()
{
    updateDisplayUnits();
    updateRateLimits();
    if (startAction->isChecked() && startAction->isEnabled())
        showSamples(drainStores());
    pollStatuses();
    showStageStates();
    connectionOverviewDialog->update(statuses);
    startTicking();
}

std::vector<MainWindow::Block> MainWindow::drainStores()
{
    std::vector<Block> blocks;
    blocks.reserve(std::size_t(displayedConnections.size()));
    for (const int index : displayedConnections) {
        Block block{index, {}};
        MeasureSample sample;
        while (block.samples.size() < maxSamplesPerTick
               && connectionAt(index).takeLiveSample(sample) != 0)
            block.samples.push_back(sample);
        blocks.push_back(std::move(block));
    }
    return blocks;
}

void MainWindow::showSamples(const std::vector<Block>& blocks)
{
    const int rateHz = samplingRateCounter->spinBox->value();
    std::array<int, 2> every{};
    for (std::size_t i = 0; i < stages.size(); ++i)
        every[i] = plotDecimation(rateHz, stages[i].timeWindowMs, stages[i].positionPlot->width());

    const bool single = displayedConnections.size() == 1;
    for (std::size_t place = 0; place < blocks.size(); ++place) {
        const Block& block = blocks[place];
        const bool first = place == 0;
        const bool last = place + 1 == blocks.size();
        // The first sample of a connection in each tick is always plotted.
        std::array<Decimation, 2> decimations{{{every[0], every[0] - 1}, {every[1], every[1] - 1}}};

        for (const MeasureSample& sample : block.samples) {
            for (std::size_t i = 0; i < stages.size(); ++i)
                appendTimePoints(stages[i], sample, block.connection, decimations[i]);
            appendPointingPoints(sample, block.connection);
            if (single)
                showReadouts(sample, block.connection);
            if (first) {
                for (StageView& stage : stages)
                    wrapSweep(stage, sample.timeMs);
            }
            // The sample that ends a run tells no state: the controller is asked from now on.
            if (!countSample(block, first, last))
                break;
            if (&sample == &block.samples.back())
                takeStatus(sample, block.connection);
        }
    }
    replotAll();
}

void MainWindow::appendTimePoints(StageView& stage, const MeasureSample& sample, int connection,
                                  Decimation& decimation)
{
    const bool everySample = (*detectorPairs)[connection].pulsedLaser == 1;
    if (!decimation.takes() && !everySample)
        return;
    const auto number = unsigned(stage.number);
    const StageValues values = stageValues(sample, number - 1);
    const auto shown = [&](int raw) {
        return toDisplayValue(raw, values.intensity, connection, number, true);
    };
    const double t = secondsSince(stage.plotOriginMs, sample.timeMs);
    stage.positionPlot->appendData(2 * connection, QPointF(t, shown(values.x)));
    stage.positionPlot->appendData(2 * connection + 1, QPointF(t, shown(values.y)));
    stage.intensityPlot->appendData(connection, QPointF(t, values.intensity * intensityScale));
}

void MainWindow::appendPointingPoints(const MeasureSample& sample, int connection)
{
    for (std::size_t i = 0; i < stages.size(); ++i) {
        const StageValues values = stageValues(sample, i);
        const auto shown = [&](int raw) {
            return toDisplayValue(raw, values.intensity, connection, unsigned(i + 1), true);
        };
        currentPosition[i] = QPointF(shown(values.x), shown(values.y));
        stages[i].osciPlot->appendData(connection, currentPosition[i]);
    }
}

void MainWindow::showReadouts(const MeasureSample& sample, int connection)
{
    const auto show = [](QLCDNumber& readout, double value, int decimals) {
        readout.display(QString::number(value, 'f', decimals));
    };
    for (std::size_t i = 0; i < stages.size(); ++i) {
        StageView& stage = stages[i];
        const StageValues values = stageValues(sample, i);
        const int decimals = (*detectorPairs)[connection][i]->displayDecimals();
        show(*stage.lcdX, stage.averageX.add(currentPosition[i].x()), decimals);
        show(*stage.lcdY, stage.averageY.add(currentPosition[i].y()), decimals);
        show(*stage.lcdI, stage.averageI.add(values.intensity * intensityScale), intensityDecimals);
        stage.thermoX->setValue(values.rx * piezoScale);
        stage.thermoY->setValue(values.ry * piezoScale);
    }
}

void MainWindow::wrapSweep(StageView& stage, quint64 timeMs)
{
    // Unsigned: a sample from before the origin begins a new sweep, too.
    if (double(timeMs - stage.plotOriginMs) <= stage.timeWindowMs)
        return;
    stage.positionPlot->clear();
    stage.intensityPlot->clear();
    stage.plotOriginMs = timeMs;
}

bool MainWindow::countSample(const Block& block, bool first, bool last)
{
    if (!startAction->isChecked() || samplesToTake < 0)
        return true;
    if (samplesToTake > samplesTaken) {
        if (first)
            ++samplesTaken;
        // The first system counts; until it has delivered there is nothing to divide by.
        if (samplesTaken > 0)
            updateStatistics(samplesTaken, block.connection, false);
    }
    if (samplesToTake > samplesTaken || !last)
        return true;
    updateStatistics(samplesTaken, block.connection, true);
    stopDrawingPlots();
    return false;
}

void MainWindow::takeStatus(const MeasureSample& sample, int connection)
{
    if (!packet::hasFlags(connectionAt(connection).firmwareVersion()))
        return;
    ConnectionStatus& status = statuses[connection];
    status.multiplex1 = sample.multiplex1 != 0;
    status.multiplex2 = sample.multiplex2 != 0;
    status.stabilised1 = sample.stabilised1 != 0;
    status.stabilised2 = sample.stabilised2 != 0;
    status.active1 = sample.active1 != 0;
    status.active2 = sample.active2 != 0;
    status.statusValid = true;
}

void MainWindow::replotAll()
{
    for (StageView& stage : stages) {
        stage.positionPlot->replot();
        stage.intensityPlot->replot();
        stage.osciPlot->replot();
    }
}

void MainWindow::pollStatuses()
{
    const auto isPolled = [](const Connection& connection) {
        return connection.isConnected() && !connection.isStreaming();
    };
    // All are asked first, so that they answer side by side.
    for (const auto& connection : connections) {
        if (isPolled(*connection))
            connection->getStatusFlags();
    }
    for (int i = 0; i < statuses.size(); ++i) {
        Connection& connection = connectionAt(i);
        ConnectionStatus& status = statuses[i];
        status.label = connection.label();
        status.address = connection.address();
        if (isPolled(connection)) {
            QByteArray reply;
            connection.fetchReply(reply);
            storeStatusReply(status, reply);
        }
        if (!connection.isConnected()) {
            status.statusValid = false;
            status.stabilised1 = false;
            status.stabilised2 = false;
            status.active1 = false;
            status.active2 = false;
        }
    }
}

void MainWindow::showStageStates()
{
    if (displayedConnections.size() != 1)
        return;
    const ConnectionStatus& status = statuses[displayedConnections.first()];
    const std::array<bool, 2> stabilised{status.stabilised1, status.stabilised2};
    const std::array<bool, 2> active{status.active1, status.active2};
    for (std::size_t i = 0; i < stages.size(); ++i) {
        StageView& stage = stages[i];
        const bool on = stage.stabilisation->text() == tr("ON");
        if (on != stabilised[i] || stage.stabilisation->isChecked() != stabilised[i])
            showSwitch(stage, stabilised[i]);
        if (stage.showsActive() != active[i])
            stage.setActive(active[i]);
    }
}

double MainWindow::toDisplayValue(int raw, unsigned intensityRaw, int connectionIndex,
                                  unsigned stage, bool respectAgreement) const
{
    const double volts = raw * positionScale;
    if (respectAgreement && !stages[stage - 1].unitsAgree)
        return volts;
    const Detector& detector = *(*detectorPairs)[connectionIndex][stage - 1];
    if (detector.calculation == 0)
        return volts;
    return detector.calculatePosition(volts, intensityRaw * intensityScale);
}

void MainWindow::updateDisplayUnits()
{
    const std::array<UnitChoice, 2> choices =
        chooseUnits(*detectorPairs, displayedConnections, currentConnection);
    for (std::size_t i = 0; i < stages.size(); ++i) {
        stages[i].unitsAgree = choices[i].unitsAgree;
        showUnit(stages[i], choices[i]);
    }
}

void MainWindow::showUnit(StageView& stage, const UnitChoice& choice)
{
    const QString unit = choice.unit();
    const QString text = QStringLiteral(" [") + unit + QLatin1Char(']');
    const bool sameText = stage.unitLabel->text() == text;
    if (sameText && stage.positionMax == choice.maxPosition())
        return;
    if (!sameText && choice.unitsAgree && displayedConnections.isEmpty())
        return;

    stage.unitLabel->setText(text);
    stage.xLabel->setText(tr("X [%1]").arg(unit));
    stage.yLabel->setText(tr("Y [%1]").arg(unit));
    stage.positionXLabel->setText(tr("Position x [%1]").arg(unit));
    stage.positionYLabel->setText(tr("Position y [%1]").arg(unit));
    stage.positionMax = choice.maxPosition();
    stage.positionMin = choice.minPosition();
    rescaleDialog->setUnit(choice.unitCode(), stage.number);
    stage.positionPlot->setAxisScale(QwtPlot::yLeft, stage.positionMin, stage.positionMax);
    stage.osciPlot->setRange(stage.positionMax, stage.positionMin);
    stage.osciPlot->resetZoom();
    stage.clearCurves();
    stage.clearAverages();
    if (pointingRadio->isChecked())
        clearStatistics();
}

bool MainWindow::allDisplayedArePulsed() const
{
    return !displayedConnections.isEmpty()
           && std::all_of(displayedConnections.begin(), displayedConnections.end(),
                          [this](int index) { return (*detectorPairs)[index].pulsedLaser == 1; });
}

void MainWindow::updateRateLimits()
{
    QSpinBox& rate = *samplingRateCounter->spinBox;
    if (!pulsedRateLock) {
        savedSamplingRate = rate.value();
        maxRate = rate.maximum();
    }
    if (allDisplayedArePulsed()) {
        lockRateToPulses();
        return;
    }
    if (pulsedRateLock) {
        pulsedRateLock = false;
        if (maxRate > 0 && maxRate <= pulsedRateHz)
            rate.setMaximum(maxRate);
        rate.setValue(savedSamplingRate);
    }
    samplingRateCounter->setEnabled(!startAction->isChecked());
}

void MainWindow::lockRateToPulses()
{
    pulsedRateLock = true;
    samplingRateCounter->spinBox->setMaximum(pulsedRateHz);
    samplingRateCounter->spinBox->setValue(pulsedRateHz);
    samplingRateCounter->setEnabled(false);
}
