// Starting and stopping the streams of the displayed systems. The controllers are scripts in
// memory.

#include "monitorbench.h"

#include <QDateTime>
#include <QSignalSpy>
#include <QtTest>
#include <qwt_plot_canvas.h>

namespace {

using Link = SystemsBench::Link;
using Mnemonics = QList<QByteArray>;

/// A refused start is told after this.
constexpr int shortTimeoutMs = 30;

bool hasBackingStore(GenericPlot& plot)
{
    return qobject_cast<QwtPlotCanvas*>(plot.canvas())
        ->testPaintAttribute(QwtPlotCanvas::BackingStore);
}

} // namespace

class TestAcquisition final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench = std::make_unique<MonitorBench>(); }
    void cleanup() { bench.reset(); }

    void startCarriesTheRateToTheDisplayedSystems();
    void refusedStartIsToldAndTheOthersGoOn();
    void startSetsTheLimitOfTheMode_data();
    void startSetsTheLimitOfTheMode();
    void startAndStopChangeHowPlotsArePainted();
    void stopEndsTheStreamsOfTheDisplayedSystems();
    void stopBringsTheStartPictureBack();
    void clickThatStopsIsToldBeforeTheStreamsEnd();
    void shownSystemJoinsOnlyWhileRunning();
    void resetEmptiesTheStagesAndBeginsAtTimeZero();
    void resetLeavesTheStreamAlone();
    void pointingModeBeginsANewCountWhileRunning();
    void modeChangesNoLimitWhileIdle();
    void lockedRateStaysDisabledWhileIdle();

private:
    Acquisition& acquisition() const { return bench->acquisition; }
    void click(bool on) const
    {
        bench->pressStart(on);
        acquisition().startOrStop();
    }

    std::unique_ptr<MonitorBench> bench;
};

void TestAcquisition::startCarriesTheRateToTheDisplayedSystems()
{
    ScriptedConnection& shown = bench->add(Link::Running);
    ScriptedConnection& hidden = bench->add(Link::Up);
    bench->systems.show(&hidden, false);
    bench->samplingRate().setValue(430);
    const QSignalSpy failed(&acquisition(), &Acquisition::streamFailed);
    QSignalSpy started(&acquisition(), &Acquisition::started);
    click(true);
    QCOMPARE(shown.controller().messages(),
             QList<QByteArray>{QByteArray("SLS\x00\x00\x01\xAE;", 8)});
    QVERIFY(shown.isStreaming());
    QCOMPARE(shown.samplingRate(), 430);
    QCOMPARE(hidden.samplingRate(), -1);
    QCOMPARE(started.count(), 1);
    QCOMPARE(failed.count(), 0);
    QCOMPARE(bench->toolBar.startAction().text(), QStringLiteral("Stop"));
    QVERIFY(!bench->samplingRate().isEnabled());
}

void TestAcquisition::refusedStartIsToldAndTheOthersGoOn()
{
    ScriptedConnection& refusing = bench->add(Link::Running);
    refusing.setTimeoutMs(shortTimeoutMs);
    refusing.controller().answer("SLS", QByteArray("\x01;", 2));
    ScriptedConnection& other = bench->add(Link::Running);
    const QSignalSpy failed(&acquisition(), &Acquisition::streamFailed);
    click(true);
    QCOMPARE(failed.count(), 1);
    QVERIFY(!refusing.isStreaming());
    QVERIFY(other.isStreaming());
    QVERIFY(bench->toolBar.isRunning());
}

void TestAcquisition::startSetsTheLimitOfTheMode_data()
{
    QTest::addColumn<bool>("pointing");
    QTest::newRow("oscilloscope") << false;
    QTest::newRow("pointing") << true;
}

void TestAcquisition::startSetsTheLimitOfTheMode()
{
    QFETCH(bool, pointing);
    Run& run = bench->statistics.run();
    run.setLimit(7);
    for (int i = 0; i < 7; ++i)
        run.countSample();
    bench->samplesToTake().setValue(20);
    bench->toolBar.pointingRadio().setChecked(pointing);
    click(true);
    QCOMPARE(run.hasLimit(), pointing);
    QCOMPARE(run.isCounting(), pointing);
    QCOMPARE(run.samplesTaken(), 0);
    for (int i = 0; i < 20; ++i)
        run.countSample();
    QVERIFY(!run.isCounting());
}

void TestAcquisition::startAndStopChangeHowPlotsArePainted()
{
    click(true);
    for (StageView& stage : bench->stages) {
        for (GenericPlot* plot :
             {&stage.plots().pointing(), &stage.plots().position(), &stage.plots().intensity()})
            QVERIFY(!hasBackingStore(*plot));
    }
    click(false);
    for (StageView& stage : bench->stages) {
        for (GenericPlot* plot :
             {&stage.plots().pointing(), &stage.plots().position(), &stage.plots().intensity()})
            QVERIFY(hasBackingStore(*plot));
    }
}

void TestAcquisition::stopEndsTheStreamsOfTheDisplayedSystems()
{
    ScriptedConnection& first = bench->addStreaming();
    ScriptedConnection& second = bench->addStreaming();
    bench->pressStart(true);
    acquisition().stop();
    for (ScriptedConnection* connection : {&first, &second}) {
        QCOMPARE(connection->controller().mnemonics(), Mnemonics{"CLS"});
        QVERIFY(!connection->isStreaming());
    }
    QVERIFY(!bench->toolBar.isRunning());
    QCOMPARE(bench->toolBar.startAction().text(), QStringLiteral("Start"));
    QVERIFY(bench->samplingRate().isEnabled());
}

void TestAcquisition::stopBringsTheStartPictureBack()
{
    const QAction& start = bench->toolBar.startAction();
    const auto picture = [&] { return start.icon().pixmap(22).toImage(); };
    const QImage idle = picture();
    click(true);
    QVERIFY(picture() != idle);
    acquisition().stop();
    QCOMPARE(picture(), idle);
}

void TestAcquisition::clickThatStopsIsToldBeforeTheStreamsEnd()
{
    ScriptedConnection& connection = bench->addStreaming();
    bool streamedWhenTold = false;
    connect(&acquisition(), &Acquisition::aboutToStop, this,
            [&] { streamedWhenTold = connection.isStreaming(); });
    click(false);
    QVERIFY(streamedWhenTold);
    QVERIFY(!connection.isStreaming());
}

void TestAcquisition::shownSystemJoinsOnlyWhileRunning()
{
    ScriptedConnection& connection = bench->add(Link::Running);
    acquisition().joinIfRunning(0);
    QVERIFY(!connection.isStreaming());
    bench->pressStart(true);
    acquisition().joinIfRunning(0);
    QVERIFY(connection.isStreaming());
    const QSignalSpy failed(&acquisition(), &Acquisition::streamFailed);
    acquisition().joinIfRunning(0);
    QCOMPARE(failed.count(), 0);
    QCOMPARE(connection.controller().mnemonics(), Mnemonics{"SLS"});
}

void TestAcquisition::resetEmptiesTheStagesAndBeginsAtTimeZero()
{
    StagePlots& plots = bench->stages[1].plots();
    plots.addCurves(0);
    plots.appendPointingPoint(0, QPointF(1.0, 1.0));
    plots.appendTimePoints(0, 0, QPointF(1.0, 1.0), 1.0);
    bench->stages[1].readouts().take(QPointF(1.0, 1.0), {0, 0, 1000, 1000, 1000});
    bench->stages[1].readouts().show(2);
    bench->statistics.run().countSample();
    acquisition().reset();
    QVERIFY(pointsOf(plots.pointing(), 0).isEmpty());
    QVERIFY(pointsOf(plots.position(), 0).isEmpty());
    QVERIFY(pointsOf(plots.intensity(), 0).isEmpty());
    QCOMPARE(bench->forms[1].lcdX.value(), 0.0);
    QCOMPARE(bench->bar("thermoRY2").value(), 0.0);
    QCOMPARE(bench->statistics.run().samplesTaken(), 0);

    plots.appendTimePoints(0, quint64(QDateTime::currentMSecsSinceEpoch()), QPointF(), 0.0);
    const double seconds = pointsOf(plots.position(), 0).first().x();
    QVERIFY2(seconds >= 0.0 && seconds < 60.0, qPrintable(QString::number(seconds)));
}

void TestAcquisition::resetLeavesTheStreamAlone()
{
    ScriptedConnection& connection = bench->addStreaming();
    acquisition().reset();
    QVERIFY(connection.isStreaming());
    QCOMPARE(connection.controller().mnemonics(), Mnemonics());
}

void TestAcquisition::pointingModeBeginsANewCountWhileRunning()
{
    Run& run = bench->statistics.run();
    bench->samplesToTake().setValue(20);
    bench->pressStart(true);
    run.countSample();
    acquisition().limitSamples(true);
    QVERIFY(run.isCounting());
    QCOMPARE(run.samplesTaken(), 0);
    QVERIFY(bench->samplesToTake().isEnabled());
    acquisition().limitSamples(false);
    QVERIFY(!run.hasLimit());
    QVERIFY(!bench->samplesToTake().isEnabled());
}

void TestAcquisition::modeChangesNoLimitWhileIdle()
{
    Run& run = bench->statistics.run();
    run.countSample();
    acquisition().limitSamples(true);
    QVERIFY(!run.hasLimit());
    QCOMPARE(run.samplesTaken(), 1);
    QVERIFY(bench->samplesToTake().isEnabled());
}

void TestAcquisition::lockedRateStaysDisabledWhileIdle()
{
    acquisition().setRateLocked(true);
    acquisition().showRunning(false);
    QVERIFY(!bench->samplingRate().isEnabled());
    acquisition().setRateLocked(false);
    acquisition().showRunning(false);
    QVERIFY(bench->samplingRate().isEnabled());
}

QTEST_MAIN(TestAcquisition)
#include "tst_acquisition.moc"
