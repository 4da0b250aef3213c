#include "monitorbench.h"
#include "support/widgetcheck.h"
#include "window/ratelimits.h"

#include <QtTest>

namespace {

QString shown(const RateField& field)
{
    return QStringLiteral("%1 of %2 %3")
        .arg(field.valueHz)
        .arg(field.maximumHz)
        .arg(field.enabled ? "enabled" : "disabled");
}

QImage pictureOf(const QIcon& icon)
{
    return icon.pixmap(QSize(22, 22)).toImage();
}

} // namespace

class TestMonitorToolBar final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench = std::make_unique<MonitorBench>(); }
    void cleanup();

    void newToolBar();
    void equalValuesLeaveWhatIsTypedAlone();
    void otherRateIsShown();
    void maximumCutsTheRate();
    void maximumCutsBothRatesAndIsLiftedAgain();
    void updateRateFollowsTheSamplingRate();
    void runningStateHasItsTexts();
    void iconShowsTheStateBeforeTheCall();
    void runningDisablesTheSamplingRate_data();
    void runningDisablesTheSamplingRate();
    void samplesToTakeAreOfferedInPointingModeOnly();
    void typedSamplesCountBeforeTheyAreConfirmed();
    void startButtonIsTheStateOfTheAcquisition();
    void modesExcludeEachOther();

private:
    MonitorToolBar& toolBar() const { return bench->toolBar; }

    std::unique_ptr<MonitorBench> bench;
};

void TestMonitorToolBar::cleanup()
{
    bench.reset();
    QCOMPARE(leftWidgets(), QString());
}

void TestMonitorToolBar::newToolBar()
{
    QCOMPARE(shown(toolBar().rateField()), QString("100 of 430 enabled"));
    QCOMPARE(toolBar().samplingRateHz(), 100);
    QCOMPARE(toolBar().updateRateHz(), 100);
    QCOMPARE(toolBar().wantedSamples(), 1000000);
    QVERIFY(!toolBar().isRunning());
    QVERIFY(!toolBar().isPointing());
    QVERIFY(!bench->samplesToTake().isEnabled());
    QVERIFY(toolBar().startAction().isCheckable());
}

void TestMonitorToolBar::equalValuesLeaveWhatIsTypedAlone()
{
    QSpinBox& box = bench->samplingRate();
    bench->frame.show();
    QApplication::setActiveWindow(&bench->frame);
    box.setKeyboardTracking(false);
    box.setFocus();
    box.selectAll();
    QTest::keyClicks(&box, QStringLiteral("25"));
    const RateField present = toolBar().rateField();
    QCOMPARE(present.valueHz, 100);
    toolBar().showRateField(present);
    QCOMPARE(box.text(), QStringLiteral("25"));
    QTest::keyClicks(&box, QStringLiteral("0"));
    QTest::keyClick(&box, Qt::Key_Return);
    QCOMPARE(toolBar().samplingRateHz(), 250);
}

void TestMonitorToolBar::otherRateIsShown()
{
    toolBar().showRateField({1000, 1000, false});
    QCOMPARE(shown(toolBar().rateField()), QString("1000 of 1000 disabled"));
    toolBar().showRateField({500, 77, true});
    QCOMPARE(shown(toolBar().rateField()), QString("77 of 500 enabled"));
}

void TestMonitorToolBar::maximumCutsTheRate()
{
    toolBar().showRateField({500, 480, true});
    toolBar().showRateField({430, 480, true});
    QCOMPARE(shown(toolBar().rateField()), QString("430 of 430 enabled"));
}

void TestMonitorToolBar::maximumCutsBothRatesAndIsLiftedAgain()
{
    toolBar().setMaxRate(500);
    bench->samplingRate().setValue(490);
    bench->updateRate().setValue(480);
    bench->counter("updateRateCounter").wishedValue = 480;
    toolBar().setMaxRate(430);
    QCOMPARE(toolBar().samplingRateHz(), 430);
    QCOMPARE(toolBar().updateRateHz(), 430);
    toolBar().setMaxRate(500);
    QCOMPARE(bench->samplingRate().maximum(), 500);
    QCOMPARE(bench->updateRate().maximum(), 500);
    QCOMPARE(toolBar().samplingRateHz(), 430);
}

void TestMonitorToolBar::updateRateFollowsTheSamplingRate()
{
    bench->samplingRate().setValue(50);
    QCOMPARE(toolBar().updateRateHz(), 50);
    bench->samplingRate().setValue(200);
    QCOMPARE(toolBar().updateRateHz(), 100);
}

void TestMonitorToolBar::runningStateHasItsTexts()
{
    toolBar().showRunning(true, false);
    QCOMPARE(toolBar().startAction().text(), QStringLiteral("Stop"));
    QVERIFY(toolBar().isRunning());
    toolBar().showRunning(false, false);
    QCOMPARE(toolBar().startAction().text(), QStringLiteral("Start"));
    QVERIFY(!toolBar().isRunning());
}

void TestMonitorToolBar::iconShowsTheStateBeforeTheCall()
{
    const QImage go = pictureOf(QIcon(QStringLiteral(":/images/go.xpm")));
    const QImage stop = pictureOf(QIcon(QStringLiteral(":/images/stop.xpm")));
    QVERIFY(go != stop);
    const QAction& start = toolBar().startAction();
    toolBar().showRunning(true, false);
    QCOMPARE(pictureOf(start.icon()), go);
    toolBar().showRunning(true, false);
    QCOMPARE(pictureOf(start.icon()), stop);
    toolBar().showRunning(false, false);
    QCOMPARE(pictureOf(start.icon()), stop);
    toolBar().showRunning(false, false);
    QCOMPARE(pictureOf(start.icon()), go);
}

void TestMonitorToolBar::runningDisablesTheSamplingRate_data()
{
    QTest::addColumn<bool>("running");
    QTest::addColumn<bool>("locked");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("idle") << false << false << true;
    QTest::newRow("running") << true << false << false;
    QTest::newRow("idle, locked by pulses") << false << true << false;
    QTest::newRow("running, locked by pulses") << true << true << false;
}

void TestMonitorToolBar::runningDisablesTheSamplingRate()
{
    QFETCH(bool, running);
    QFETCH(bool, locked);
    toolBar().showRunning(!running, false);
    toolBar().showRunning(running, locked);
    QTEST(bench->samplingRate().isEnabled(), "enabled");
    QVERIFY(bench->updateRate().isEnabled());
}

void TestMonitorToolBar::samplesToTakeAreOfferedInPointingModeOnly()
{
    toolBar().showRunning(true, false);
    QVERIFY(!bench->samplesToTake().isEnabled());
    toolBar().pointingRadio().setChecked(true);
    toolBar().showRunning(true, false);
    QVERIFY(bench->samplesToTake().isEnabled());
    toolBar().enableSamplesToTake(false);
    QVERIFY(!bench->samplesToTake().isEnabled());
}

void TestMonitorToolBar::typedSamplesCountBeforeTheyAreConfirmed()
{
    toolBar().enableSamplesToTake(true);
    bench->samplesToTake().selectAll();
    QTest::keyClicks(&bench->samplesToTake(), QStringLiteral("2000"));
    QCOMPARE(bench->samplesToTake().value(), 1000000);
    QCOMPARE(toolBar().wantedSamples(), 2000);
}

void TestMonitorToolBar::startButtonIsTheStateOfTheAcquisition()
{
    toolBar().startAction().trigger();
    QVERIFY(toolBar().isRunning());
    toolBar().enableStart(false);
    QVERIFY(!toolBar().startAction().isEnabled());
    QVERIFY(toolBar().isRunning());
}

void TestMonitorToolBar::modesExcludeEachOther()
{
    auto* oscilloscope = bench->frame.findChild<QRadioButton*>(QStringLiteral("oscilloscopeRadio"));
    QVERIFY(oscilloscope && oscilloscope->isChecked());
    toolBar().pointingRadio().setChecked(true);
    QVERIFY(toolBar().isPointing());
    QVERIFY(!oscilloscope->isChecked());
}

QTEST_MAIN(TestMonitorToolBar)
#include "tst_monitortoolbar.moc"
