#include "plots/genericplot.h"
#include "window/mainwindow.h"

#include <QCheckBox>
#include <qwt_plot_shapeitem.h>
#include <qwt_plot_textlabel.h>

namespace {

/// The text is built at most this often: that costs far more than the sums.
constexpr qint64 textPeriodMs = 11;

} // namespace

void MainWindow::updateStatistics(int count, int index, bool display)
{
    if (!display) {
        for (std::size_t i = 0; i < stages.size(); ++i)
            meanPosition[i] = statisticsSums[index][i].add(currentPosition[i], samplesTaken);
    }
    if (display || statisticsTime.elapsed() >= textPeriodMs) {
        for (std::size_t i = 0; i < stages.size(); ++i) {
            rms[i] = statisticsSums[index][i].rms(samplesTaken);
            stages[i].statisticsText.setText(
                statisticsText(meanPosition[i], rms[i], count, (*detectorPairs)[index][i]->unit()));
        }
        statisticsTime.restart();
        samplesShown = samplesTaken;
    }
    for (std::size_t i = 0; i < stages.size(); ++i) {
        stages[i].statisticsLabel->setText(stages[i].statisticsText);
        stages[i].targetCross->setShape(targetCrossShape(meanPosition[i], rms[i]));
    }
}

void MainWindow::enableStatistics(bool on)
{
    for (StageView& stage : stages) {
        stage.statisticsBox->setEnabled(on);
        if (!on)
            stage.statisticsBox->setChecked(false);
        showStatistics(stage, stage.statisticsBox->isChecked());
    }
}

void MainWindow::showStatistics1(bool on)
{
    showStatistics(stages[0], on);
}

void MainWindow::showStatistics2(bool on)
{
    showStatistics(stages[1], on);
}

void MainWindow::showStatistics(StageView& stage, bool on)
{
    if (on && displayedConnections.size() == 1 && samplesShown != 0)
        updateStatistics(samplesShown, displayedConnections.first(), true);
    stage.statisticsLabel->attach(on ? stage.osciPlot : nullptr);
    stage.targetCross->attach(on ? stage.osciPlot : nullptr);
    stage.osciPlot->replot();
}

void MainWindow::clearStatistics()
{
    for (StatisticsSums& sums : statisticsSums)
        sums = StatisticsSums();
    samplesTaken = 0;
    samplesShown = 0;
    rms.fill(0.0);
    for (StageView& stage : stages) {
        stage.statisticsText.setText(emptyStatisticsText());
        stage.statisticsLabel->setText(stage.statisticsText);
        stage.targetCross->setShape(restingCrossShape());
        stage.osciPlot->replot();
    }
}
