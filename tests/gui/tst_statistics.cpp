// What the window shows of a run in pointing mode.

#include "link/connection.h"
#include "plots/counter.h"
#include "plots/curvedata.h"
#include "plots/genericplot.h"
#include "support/samplefeed.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QCheckBox>
#include <QLCDNumber>
#include <QSpinBox>
#include <QtTest>
#include <qwt_plot_shapeitem.h>
#include <qwt_plot_textlabel.h>

#include <cmath>
#include <random>

using emulator::PacketValues;
using emulator::StageSignals;

namespace {

const QString emptyText = QStringLiteral("\nx=\ny=\n#samples= 0\nRMS=");
constexpr double still = 0.0;

PacketValues sampleOf(int x1, int y1, int x2 = 0, int y2 = 0)
{
    PacketValues values;
    values[0].x = qint16(x1);
    values[0].y = qint16(y1);
    values[1].x = qint16(x2);
    values[1].y = qint16(y2);
    return values;
}

QVector<PacketValues> restlessBeam(int count)
{
    std::mt19937_64 generator(7);
    const auto around = [&generator](int middle, int range) {
        return middle + int(generator() % quint64(2 * range + 1)) - range;
    };
    QVector<PacketValues> samples;
    for (int i = 0; i < count; ++i)
        samples.append(
            sampleOf(around(800, 300), around(-400, 70), around(-2500, 20), around(30, 999)));
    return samples;
}

/// A stage's figures over samples in millivolts, worked out from the definition.
struct Expected
{
    Expected(const QVector<PacketValues>& samples, int stage)
        : count(samples.size())
    {
        const auto place = std::size_t(stage - 1);
        long double sumX = 0.0L;
        long double sumY = 0.0L;
        for (int k = 1; k <= count; ++k) {
            const StageSignals& sample = samples[k - 1][place];
            sumX += sample.x;
            sumY += sample.y;
            const long double dx = sumX / k - sample.x;
            const long double dy = sumY / k - sample.y;
            onePass += dx * dx + dy * dy;
            // What a mean hides that the sample itself has moved.
            if (k > 1)
                hidden += (dx * dx + dy * dy) / (k - 1);
        }
        meanX = sumX / count;
        meanY = sumY / count;
        for (const PacketValues& values : samples) {
            const StageSignals& sample = values[place];
            twoPasses +=
                (sample.x - meanX) * (sample.x - meanX) + (sample.y - meanY) * (sample.y - meanY);
        }
    }

    long double rms() const { return std::sqrt(onePass / count) / 1000.0L; }
    QString text() const
    {
        const auto number = [](long double value, int decimals) {
            return QString::number(double(value), 'f', decimals);
        };
        return "\nx=" + number(meanX / 1000.0L, 3) + " [V]\ny=" + number(meanY / 1000.0L, 3)
               + " [V]\n#samples=" + QString::number(count) + "\nRMS=" + number(rms(), 4) + " [V]";
    }

    int count;
    long double meanX = 0.0L;
    long double meanY = 0.0L;
    long double onePass = 0.0L;
    long double twoPasses = 0.0L;
    long double hidden = 0.0L;
};

/// The number behind "RMS=" of a statistics text.
double shownRms(const QString& text)
{
    return text.section("RMS=", 1).section(' ', 0, 0).toDouble();
}

int shownCount(const QString& text)
{
    return text.section("#samples=", 1).section('\n', 0, 0).toInt();
}

QRectF crossRect(const WindowFixture& fixture, int stage)
{
    const auto* cross = static_cast<const QwtPlotShapeItem*>(fixture.targetCross(stage));
    return cross ? cross->shape().boundingRect() : QRectF();
}

bool running(const WindowFixture& fixture)
{
    return fixture.find<QAction>("startAction")->isChecked();
}

/// Goes to pointing mode with both statistics boxes ticked, and starts a run over `count`
/// samples, none of which has come.
bool startRun(const WindowFixture& fixture, int count)
{
    return fixture.click("pointingRadio") && fixture.click("checkBox_Stats1")
           && fixture.click("checkBox_Stats2")
           && fixture.type("samplesToTakeCounter", QString::number(count))
           && SampleFeed(fixture).start();
}

/// Shows samples one by one until the text, which is built now and then, tells of them.
bool showUntilTextTells(const WindowFixture& fixture, const SampleFeed& feed, int atMost)
{
    for (int i = 0; i < atMost && shownCount(fixture.statisticsText(1)) == 0; ++i) {
        if (!feed.show(restlessBeam(1)))
            return false;
    }
    return shownCount(fixture.statisticsText(1)) > 0;
}

} // namespace

class TestStatistics final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void figuresOfTwoSamples();
    void figuresOfARestlessBeamToTheLastDigit();
    void figuresOfAStreamFromTheController();
    void aRunOfAMillionSamplesEndsAtTheSampleTold();
    void theTextIsNotBuiltForEverySample();
    void aStillBeamHasNoRmsAndAPointForACross();
    void aRunEndsAtTheSampleTold();
    void aNewRunCountsFromZero();
    void aRunCanBeCutWhileItRuns();
    void typingALongerRunDoesNotEndIt();
    void whatIsTypedCountsWithoutEnter();
    void theCrossStandsAroundTheMean();
    void untickingTakesTextAndCrossAwayAndCountingGoesOn();
    void tickingShowsTheFiguresOfAStoppedRun();
    void leavingPointingModeUnticksAndDisablesBothBoxes();
    void enteringPointingModeOffersTheBoxesOfASingleSystem();
    void clearingEmptiesTextAndCross();
    void switchingToPointingModeCountsFromZero();
    void switchingToPointingModeAgainCountsFromZero();
    void switchingBackEndsTheLimit();
    void aSecondSystemTakesTheStatisticsAway();
    void withTwoSystemsTheFirstOneCountsAndTheLastOneEndsTheRun();
    void eachOfTwoSystemsHasSumsOfItsOwn_data();
    void eachOfTwoSystemsHasSumsOfItsOwn();
    void textIsRedAndInTheCorner();
};

void TestStatistics::figuresOfTwoSamples()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(startRun(fixture, 2));
    const SampleFeed feed(fixture);
    QVERIFY(feed.show({sampleOf(1000, 0), sampleOf(3000, 0)}));
    QVERIFY(!running(fixture));
    QCOMPARE(fixture.statisticsText(1),
             QString("\nx=2.000 [V]\ny=0.000 [V]\n#samples=2\nRMS=0.7071 [V]"));
    QCOMPARE(fixture.statisticsText(2),
             QString("\nx=0.000 [V]\ny=0.000 [V]\n#samples=2\nRMS=0.0000 [V]"));
}

void TestStatistics::figuresOfARestlessBeamToTheLastDigit()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const QVector<PacketValues> samples = restlessBeam(2400);
    QVERIFY(startRun(fixture, samples.size()));
    const SampleFeed feed(fixture);
    constexpr int perTick = 400;
    for (int from = 0; from < samples.size(); from += perTick)
        QVERIFY(feed.show(samples.mid(from, perTick)));
    QVERIFY(!running(fixture));

    const Expected one(samples, 1);
    const Expected two(samples, 2);
    QCOMPARE(fixture.statisticsText(1), one.text());
    QCOMPARE(fixture.statisticsText(2), two.text());

    // Two passes differ by what the running means hide, and by nothing else.
    constexpr double lastDigit = 0.5e-4;
    for (int stage = 1; stage <= 2; ++stage) {
        const Expected& expected = stage == 1 ? one : two;
        const double shown = shownRms(fixture.statisticsText(stage));
        const double about =
            double(std::sqrt((expected.twoPasses - expected.hidden) / samples.size()) / 1000.0L);
        QVERIFY(std::abs(shown - about) <= lastDigit * 1.001);
        QVERIFY(shown < double(std::sqrt(expected.twoPasses / samples.size()) / 1000.0L));
    }
}

void TestStatistics::aRunOfAMillionSamplesEndsAtTheSampleTold()
{
    constexpr int samplesToTake = 1000000;
    constexpr int perTick = 500;
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(startRun(fixture, samplesToTake));
    // Unseen: painting the growing cloud would take longer than all the rest.
    fixture.window().hide();
    const SampleFeed feed(fixture);
    const QVector<PacketValues> samples = restlessBeam(perTick);
    for (int sent = perTick; sent < samplesToTake; sent += perTick)
        QVERIFY(feed.show(samples));
    QVERIFY(feed.show(samples.mid(0, perTick - 1)));
    QVERIFY(running(fixture));
    QVERIFY(feed.show(samples.mid(0, 2)));
    QVERIFY(!running(fixture));
    QVERIFY(fixture.statisticsText(1).contains("#samples=1000000\n"));
    QCOMPARE(fixture.pointingPlot(1).curveData(0).samples().size(), samplesToTake);
}

void TestStatistics::figuresOfAStreamFromTheController()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.type("samplingRateCounter", "500"));
    const QVector<PacketValues> samples = restlessBeam(300);
    QVERIFY(startRun(fixture, samples.size()));
    fixture.controller().setScript(samples);
    // The window ticks by itself as it likes.
    QTRY_VERIFY_WITH_TIMEOUT(!running(fixture), 10000);
    QCOMPARE(fixture.statisticsText(1), Expected(samples, 1).text());
    QCOMPARE(fixture.statisticsText(2), Expected(samples, 2).text());
    QCOMPARE(pointsOf(fixture.pointingPlot(1), 0).size(), samples.size());
}

void TestStatistics::theTextIsNotBuiltForEverySample()
{
    constexpr int ticks = 20;
    constexpr int samplesPerTick = 400;
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(startRun(fixture, 2 * ticks * samplesPerTick));
    const SampleFeed feed(fixture);
    int ticksBehind = 0;
    for (int tick = 1; tick <= ticks; ++tick) {
        QVERIFY(feed.show(restlessBeam(samplesPerTick)));
        if (shownCount(fixture.statisticsText(1)) < tick * samplesPerTick)
            ++ticksBehind;
    }
    QVERIFY(ticksBehind > 0);
}

void TestStatistics::aStillBeamHasNoRmsAndAPointForACross()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(startRun(fixture, 250));
    const SampleFeed feed(fixture);
    QVERIFY(feed.show(QVector<PacketValues>(250, sampleOf(1250, -500))));
    QVERIFY(!running(fixture));
    QCOMPARE(fixture.statisticsText(1),
             QString("\nx=1.250 [V]\ny=-0.500 [V]\n#samples=250\nRMS=0.0000 [V]"));
    QCOMPARE(crossRect(fixture, 1).size(), QSizeF(still, still));
}

void TestStatistics::aRunEndsAtTheSampleTold()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(startRun(fixture, 699));
    const SampleFeed feed(fixture);
    const QVector<PacketValues> samples = restlessBeam(1000);
    fixture.controller().clearWire();
    QVERIFY(feed.show(samples));
    QVERIFY(running(fixture));
    QCOMPARE(pointsOf(fixture.pointingPlot(1), 0).size(), 501);
    fixture.tick();
    QVERIFY(!running(fixture));
    QVERIFY(fixture.controller().commands().startsWith("CLS;"));
    QVERIFY(!fixture.controller().isStreaming());
    // Not one more is plotted or counted.
    QCOMPARE(pointsOf(fixture.pointingPlot(1), 0).size(), 699);
    QCOMPARE(fixture.statisticsText(1), Expected(samples.mid(0, 699), 1).text());
    fixture.tick();
    QCOMPARE(pointsOf(fixture.pointingPlot(1), 0).size(), 699);
}

void TestStatistics::aNewRunCountsFromZero()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(startRun(fixture, 300));
    const SampleFeed feed(fixture);
    QVERIFY(showUntilTextTells(fixture, feed, 200));
    QVERIFY(fixture.clickAction("startAction"));
    QVERIFY(!running(fixture));
    const auto* readout = fixture.find<QLCDNumber>("lcd1x");
    QVERIFY(readout->value() != 0.0);

    // The controller answers the start and sends nothing yet.
    fixture.find<QAction>("startAction")->trigger();
    QVERIFY(running(fixture));
    for (int stage = 1; stage <= 2; ++stage) {
        QVERIFY(pointsOf(fixture.pointingPlot(stage), 0).isEmpty());
        QVERIFY(pointsOf(fixture.positionPlot(stage), 0).isEmpty());
        QVERIFY(pointsOf(fixture.positionPlot(stage), 1).isEmpty());
        QVERIFY(pointsOf(fixture.intensityPlot(stage), 0).isEmpty());
        QCOMPARE(fixture.statisticsText(stage), emptyText);
    }
    QCOMPARE(readout->value(), 0.0);
    const QVector<PacketValues> still300(300, sampleOf(1, 2));
    QVERIFY(feed.show(still300.mid(0, 299)));
    QVERIFY(running(fixture));
    QVERIFY(feed.show(still300.mid(299)));
    QVERIFY(!running(fixture));
    QCOMPARE(fixture.statisticsText(1),
             QString("\nx=0.001 [V]\ny=0.002 [V]\n#samples=300\nRMS=0.0000 [V]"));
}

void TestStatistics::aRunCanBeCutWhileItRuns()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(startRun(fixture, 1000));
    const SampleFeed feed(fixture);
    QVERIFY(feed.show(restlessBeam(50)));
    QVERIFY(fixture.type("samplesToTakeCounter", "60"));
    QVERIFY(running(fixture));
    QVERIFY(feed.show(restlessBeam(50)));
    QVERIFY(!running(fixture));
    QVERIFY(fixture.statisticsText(1).contains("\n#samples=60\n"));
}

void TestStatistics::typingALongerRunDoesNotEndIt()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(startRun(fixture, 100));
    const SampleFeed feed(fixture);
    QVERIFY(feed.show(restlessBeam(50)));
    // On the way to 2000 the digits read 2 and 20.
    QSpinBox& box = *fixture.find<Counter>("samplesToTakeCounter")->spinBox;
    box.setFocus();
    box.selectAll();
    for (const char* key : {"2", "0", "0", "0"}) {
        QTest::keyClick(fixture.window().windowHandle(), key[0]);
        QVERIFY(feed.show(restlessBeam(5)));
        QVERIFY(running(fixture));
    }
    QTest::keyClick(fixture.window().windowHandle(), Qt::Key_Enter);
    QVERIFY(feed.show(restlessBeam(100)));
    QVERIFY(running(fixture));
}

void TestStatistics::whatIsTypedCountsWithoutEnter()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.click("pointingRadio"));
    QSpinBox& box = *fixture.find<Counter>("samplesToTakeCounter")->spinBox;
    box.setFocus();
    box.selectAll();
    for (const char key : {'1', '2'})
        QTest::keyClick(fixture.window().windowHandle(), key);
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.show(restlessBeam(11)));
    QVERIFY(running(fixture));
    QVERIFY(feed.show(restlessBeam(1)));
    QVERIFY(!running(fixture));
}

void TestStatistics::theCrossStandsAroundTheMean()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(startRun(fixture, 2));
    const SampleFeed feed(fixture);
    QVERIFY(feed.show({sampleOf(1000, 500, -1000, 0), sampleOf(3000, 500, -1000, 4000)}));
    const double reach = 1.3 * std::sqrt(0.5);
    QCOMPARE(crossRect(fixture, 1), QRectF(2.0 - reach, 0.5 - reach, 2 * reach, 2 * reach));
    const double reach2 = 1.3 * std::sqrt(2.0);
    QCOMPARE(crossRect(fixture, 2), QRectF(-1.0 - reach2, 2.0 - reach2, 2 * reach2, 2 * reach2));
}

void TestStatistics::untickingTakesTextAndCrossAwayAndCountingGoesOn()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(startRun(fixture, 100));
    const SampleFeed feed(fixture);
    QVERIFY(feed.show(restlessBeam(10)));
    QVERIFY(fixture.targetCross(1));
    QVERIFY(fixture.click("checkBox_Stats1"));
    QVERIFY(!fixture.targetCross(1));
    QVERIFY(fixture.statisticsText(1).isNull());
    QVERIFY(fixture.targetCross(2));
    QVERIFY(feed.show(restlessBeam(90)));
    QVERIFY(!running(fixture));
    QVERIFY(fixture.click("checkBox_Stats1"));
    QVERIFY(fixture.targetCross(1));
    QVERIFY(fixture.statisticsText(1).contains("\n#samples=100\n"));
}

void TestStatistics::tickingShowsTheFiguresOfAStoppedRun()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(startRun(fixture, 40));
    QVERIFY(fixture.click("checkBox_Stats1"));
    QVERIFY(fixture.click("checkBox_Stats2"));
    const QVector<PacketValues> samples = restlessBeam(40);
    QVERIFY(SampleFeed(fixture).show(samples));
    QVERIFY(!running(fixture));
    QVERIFY(fixture.click("checkBox_Stats2"));
    QCOMPARE(fixture.statisticsText(2), Expected(samples, 2).text());
    QVERIFY(fixture.statisticsText(1).isNull());
}

void TestStatistics::leavingPointingModeUnticksAndDisablesBothBoxes()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(startRun(fixture, 100));
    QVERIFY(fixture.targetCross(1) && fixture.targetCross(2));
    QVERIFY(fixture.click("oscilloscopeRadio"));
    for (const char* name : {"checkBox_Stats1", "checkBox_Stats2"}) {
        const auto* box = fixture.find<QCheckBox>(name);
        QVERIFY(!box->isChecked());
        QVERIFY(!box->isEnabled());
    }
    QVERIFY(!fixture.targetCross(1) && !fixture.targetCross(2));
    QVERIFY(fixture.statisticsText(1).isNull() && fixture.statisticsText(2).isNull());
}

void TestStatistics::enteringPointingModeOffersTheBoxesOfASingleSystem()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const auto* box = fixture.find<QCheckBox>("checkBox_Stats1");
    QVERIFY(!box->isEnabled());
    QVERIFY(!fixture.click("checkBox_Stats1"));
    QVERIFY(fixture.click("pointingRadio"));
    QVERIFY(box->isEnabled() && !box->isChecked());
    QVERIFY(fixture.click("checkBox_Stats1"));
    QVERIFY(fixture.statisticsText(1).isEmpty());
    QCOMPARE(crossRect(fixture, 1), QRectF(-0.75, -0.75, 1.5, 1.5));
    // The text comes with the first clearing.
    QVERIFY(fixture.clickAction("clearAction"));
    QCOMPARE(fixture.statisticsText(1), emptyText);
}

void TestStatistics::clearingEmptiesTextAndCross()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(startRun(fixture, 20));
    QVERIFY(SampleFeed(fixture).show(restlessBeam(20)));
    QVERIFY(fixture.statisticsText(1) != emptyText);
    QVERIFY(fixture.clickAction("clearAction"));
    for (int stage = 1; stage <= 2; ++stage) {
        QCOMPARE(fixture.statisticsText(stage), emptyText);
        QCOMPARE(crossRect(fixture, stage), QRectF(-0.75, -0.75, 1.5, 1.5));
    }
    // Nothing was counted since, so that there is nothing to bring back.
    QVERIFY(fixture.click("checkBox_Stats1"));
    QVERIFY(fixture.click("checkBox_Stats1"));
    QCOMPARE(fixture.statisticsText(1), emptyText);
}

void TestStatistics::switchingToPointingModeCountsFromZero()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.show(restlessBeam(200)));
    QVERIFY(fixture.click("pointingRadio"));
    QVERIFY(fixture.type("samplesToTakeCounter", "30"));
    QVERIFY(feed.show(restlessBeam(29)));
    QVERIFY(running(fixture));
    QVERIFY(feed.show(restlessBeam(5)));
    QVERIFY(!running(fixture));
}

void TestStatistics::switchingToPointingModeAgainCountsFromZero()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(startRun(fixture, 300));
    const SampleFeed feed(fixture);
    QVERIFY(showUntilTextTells(fixture, feed, 200));
    QVERIFY(fixture.click("oscilloscopeRadio"));
    QVERIFY(fixture.click("pointingRadio"));
    QVERIFY(fixture.click("checkBox_Stats1"));
    QCOMPARE(fixture.statisticsText(1), emptyText);
    const QVector<PacketValues> still300(300, sampleOf(1, 2));
    QVERIFY(feed.show(still300.mid(0, 299)));
    QVERIFY(running(fixture));
    QVERIFY(feed.show(still300.mid(299)));
    QVERIFY(!running(fixture));
    QCOMPARE(fixture.statisticsText(1),
             QString("\nx=0.001 [V]\ny=0.002 [V]\n#samples=300\nRMS=0.0000 [V]"));
}

void TestStatistics::switchingBackEndsTheLimit()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(startRun(fixture, 30));
    const SampleFeed feed(fixture);
    QVERIFY(feed.show(restlessBeam(20)));
    QVERIFY(fixture.click("oscilloscopeRadio"));
    QVERIFY(feed.show(restlessBeam(400)));
    QVERIFY(running(fixture));
}

void TestStatistics::aSecondSystemTakesTheStatisticsAway()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.open());
    QVERIFY(fixture.registerSystem(0));
    QVERIFY(fixture.click("pointingRadio"));
    QVERIFY(fixture.click("checkBox_Stats1"));
    QVERIFY(fixture.registerSystem(1));
    const auto* box = fixture.find<QCheckBox>("checkBox_Stats1");
    QVERIFY(!box->isEnabled() && !box->isChecked());
    QVERIFY(!fixture.targetCross(1));
    fixture.window().showConnection(fixture.controller(1).address(), false);
    QVERIFY(box->isEnabled() && !box->isChecked());
}

void TestStatistics::withTwoSystemsTheFirstOneCountsAndTheLastOneEndsTheRun()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.click("pointingRadio"));
    QVERIFY(fixture.type("samplesToTakeCounter", "10"));
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    QVERIFY(feed.send(restlessBeam(15), 0));
    fixture.tick();
    // The rest of the first block is plotted; the last system has not delivered yet.
    QCOMPARE(pointsOf(fixture.pointingPlot(1), 0).size(), 15);
    QVERIFY(running(fixture));
    QVERIFY(feed.send(restlessBeam(6), 1));
    fixture.tick();
    QVERIFY(!running(fixture));
    QCOMPARE(pointsOf(fixture.pointingPlot(1), 1).size(), 1);
    QVERIFY(!fixture.controller(0).isStreaming());
    QVERIFY(!fixture.controller(1).isStreaming());
}

void TestStatistics::eachOfTwoSystemsHasSumsOfItsOwn_data()
{
    QTest::addColumn<int>("hidden");
    QTest::addColumn<double>("rms");
    // The mean of k samples at 1 V that all 20 are counted for stands at k / 20.
    double squares = 0.0;
    for (int k = 1; k <= 20; ++k)
        squares += (1.0 - k / 20.0) * (1.0 - k / 20.0);
    QTest::newRow("the first one") << 1 << still;
    QTest::newRow("the second one") << 0 << std::sqrt(squares / 20.0);
}

void TestStatistics::eachOfTwoSystemsHasSumsOfItsOwn()
{
    QFETCH(int, hidden);
    QFETCH(double, rms);
    WindowFixture fixture(2);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.click("pointingRadio"));
    const SampleFeed feed(fixture);
    QVERIFY(feed.start());
    waitForNextText();
    QVERIFY(feed.send(QVector<PacketValues>(20, sampleOf(0, 0)), 0));
    QVERIFY(feed.send(QVector<PacketValues>(20, sampleOf(1000, 0)), 1));
    fixture.tick();

    fixture.window().showConnection(fixture.controller(hidden).address(), false);
    QVERIFY(fixture.click("checkBox_Stats1"));
    const QString text = fixture.statisticsText(1);
    QVERIFY2(text.endsWith("\nRMS=" + QString::number(rms, 'f', 4) + " [V]"), qPrintable(text));
}

void TestStatistics::textIsRedAndInTheCorner()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.click("pointingRadio"));
    QVERIFY(fixture.click("checkBox_Stats1"));
    QVERIFY(fixture.click("checkBox_Stats2"));
    const char* const titles[] = {"Zielkreuz mit Varianz-Kreis", "Zielkreuz2 mit Varianz-Kreis"};
    for (int stage = 1; stage <= 2; ++stage) {
        const QwtPlotItemList labels =
            fixture.pointingPlot(stage).itemList(QwtPlotItem::Rtti_PlotTextLabel);
        QCOMPARE(labels.size(), 1);
        const QwtText text = static_cast<const QwtPlotTextLabel*>(labels.first())->text();
        QCOMPARE(text.color(), QColor(Qt::red));
        QCOMPARE(text.font().family(), QString("Sans Serif"));
        QCOMPARE(text.font().pointSize(), 8);
        QCOMPARE(text.renderFlags(), int(Qt::AlignLeft | Qt::AlignTop));
        const auto* cross = static_cast<const QwtPlotShapeItem*>(fixture.targetCross(stage));
        QCOMPARE(cross->title().text(), QString(titles[stage - 1]));
        QCOMPARE(cross->pen().color(), QColor(Qt::red));
        QCOMPARE(cross->pen().widthF(), 2.0);
    }
}

QTEST_MAIN(TestStatistics)
#include "tst_statistics.moc"
