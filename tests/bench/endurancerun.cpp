#include "endurancerun.h"

#include "figure.h"
#include "link/connection.h"
#include "plots/counter.h"
#include "plots/genericplot.h"
#include "processcost.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QRadioButton>
#include <QSpinBox>
#include <qwt_plot_curve.h>

#include <algorithm>

namespace {

constexpr int samplingRateHz = 500;
constexpr int updateRateHz = 100;
/// The axes are drawn and the first sweeps have begun by then.
constexpr int settleMs = 1000;
constexpr int msPerS = 1000;
constexpr int msPerMinute = 60000;
constexpr double sPerMinute = 60.0;
constexpr double percent = 100.0;
/// Samples that are on the way when the controllers fall silent arrive, and ticks take them.
constexpr int drainMs = 500;
constexpr QSize windowSize(1280, 960);

void setCounter(const MainWindow& window, const char* name, int value)
{
    window.findChild<Counter*>(name)->spinBox->setValue(value);
}

} // namespace

using figure::tell;

EnduranceRun::EnduranceRun(MainWindow& mainWindow, ControllerProcess& process,
                           const EnduranceOptions& wanted, QObject* parent)
    : QObject(parent)
    , window(mainWindow)
    , controllers(process)
    , options(wanted)
{
    window.resize(windowSize);
    window.resizeGraphs();
}

void EnduranceRun::start()
{
    // The window is made when all systems of its setup file are up.
    upS = processcost::ageS();
    setCounter(window, "samplingRateCounter", samplingRateHz);
    setCounter(window, "updateRateCounter", updateRateHz);
    if (options.pointing) {
        window.findChild<QRadioButton*>("pointingRadio")->click();
        setCounter(window, "samplesToTakeCounter", options.samplesToTake);
    }
    window.findChild<QAction*>("startAction")->trigger();
    QTimer::singleShot(settleMs, this, &EnduranceRun::begin);
}

bool EnduranceRun::doAllStream() const
{
    const std::vector<Connection*> all = window.liveConnections();
    return int(all.size()) == options.systems
           && std::all_of(all.begin(), all.end(), [](const Connection* each) {
                  return each->isStreaming() && each->samplingRate() == samplingRateHz;
              });
}

EnduranceState EnduranceRun::stateNow() const
{
    EnduranceState state;
    state.guiCpuS = processcost::threadCpuS();
    state.processCpuS = processcost::processCpuS();
    state.residentBytes = processcost::residentBytes();
    for (const char* name : {"osciPlot1", "osciPlot2"}) {
        const auto& plot = *window.findChild<GenericPlot*>(name);
        for (int curve = 0; curve < plot.curveCount(); ++curve)
            state.keptPoints += qint64(plot.curve(curve).dataSize());
    }
    return state;
}

void EnduranceRun::begin()
{
    if (!doAllStream()) {
        emit ended(false);
        window.close();
        return;
    }
    atBegin = stateNow();
    ticks.start();
    connect(&progress, &QTimer::timeout, this, &EnduranceRun::tellProgress);
    progress.start(msPerMinute);
    QTimer::singleShot(options.seconds * msPerS, Qt::PreciseTimer, this, &EnduranceRun::finish);
    // A run of counted samples ends by itself.
    connect(window.findChild<QAction*>("startAction"), &QAction::toggled, this,
            &EnduranceRun::finish);
}

void EnduranceRun::tellProgress() const
{
    const double elapsedS = ticks.elapsedS();
    const double cpuS = processcost::threadCpuS() - atBegin.guiCpuS;
    std::fprintf(stderr, "%.0f min: %.2f ticks/s, %.1f %% of a processor for the window\n",
                 elapsedS / sPerMinute, ticks.ticks() / elapsedS, percent * cpuS / elapsedS);
}

void EnduranceRun::finish()
{
    if (isOver)
        return;
    isOver = true;
    ticks.stop();
    progress.stop();
    atEnd = stateNow();
    packets = controllers.silence();
    QTimer::singleShot(drainMs, this, &EnduranceRun::tellResult);
}

void EnduranceRun::tellResult()
{
    tell("systems", qint64(options.systems), options.pointing ? "pointing" : "oscilloscope");
    tell("process start until all are up", upS, 2, "s");
    tell("watched", ticks.elapsedS(), 1, "s");
    tellTicks();
    tellProcessor();
    tellSamples();
    tellMemory();
    std::fflush(stdout);
    emit ended(true);
    window.close();
}

void EnduranceRun::tellTicks() const
{
    constexpr double median = 0.5;
    constexpr double nearlyAll = 0.99;
    tell("ticks", ticks.ticks() / ticks.elapsedS(), 2, "/s");
    tell("ticks in the worst second", qint64(ticks.ticksOfWorstSecond()), "/s");
    tell("between ticks, median", ticks.intervalMs(median), 2, "ms");
    tell("between ticks, 99th percentile", ticks.intervalMs(nearlyAll), 2, "ms");
}

void EnduranceRun::tellProcessor() const
{
    const double guiS = atEnd.guiCpuS - atBegin.guiCpuS;
    const double processS = atEnd.processCpuS - atBegin.processCpuS;
    const double minutes = ticks.elapsedS() / sPerMinute;
    tell("processor, thread of the window", guiS / minutes, 2, "s/min");
    tell("share of a processor", percent * guiS / ticks.elapsedS(), 1, "%");
    tell("processor, whole application", processS / minutes, 2, "s/min");
    tell("processor, controllers, since their start", packets.cpuS, 2, "s");
}

void EnduranceRun::tellSamples() const
{
    qint64 stored = 0;
    qint64 dropped = 0;
    qint64 skippedBytes = 0;
    qint64 left = 0;
    for (Connection* each : window.liveConnections()) {
        stored += qint64(each->samplesStored());
        dropped += qint64(each->droppedSamples());
        skippedBytes += qint64(each->skippedBytes());
        MeasureSample sample;
        while (each->takeLiveSample(sample) != 0)
            ++left;
    }
    // The packet that answers a start is no sample.
    tell("packets that the controllers could not send", packets.lost, "");
    tell("samples sent", packets.sent - options.systems, "");
    tell("samples stored", stored, "");
    tell("samples dropped", dropped, "");
    tell("bytes skipped", skippedBytes, "");
    tell("samples taken", stored - dropped - left, "");
    // Those that arrive behind the end of a run of counted samples are left.
    tell("samples left", left, "");
}

void EnduranceRun::tellMemory() const
{
    constexpr double bytesPerMb = 1e6;
    const qint64 grownBytes = atEnd.residentBytes - atBegin.residentBytes;
    const qint64 grownPoints = atEnd.keptPoints - atBegin.keptPoints;
    tell("points kept in both pointing plots", atEnd.keptPoints, "");
    tell("resident memory, first", double(atBegin.residentBytes) / bytesPerMb, 1, "MB");
    tell("resident memory, last", double(atEnd.residentBytes) / bytesPerMb, 1, "MB");
    if (grownPoints > 0)
        tell("memory for each kept point", double(grownBytes) / double(grownPoints), 1, "bytes");
}
