// What is on the stages for common detectors that are shown, beside displayed systems or instead
// of them.

#include "commonbench.h"

#include <QtTest>
#include <qwt_plot_textlabel.h>

namespace {

using Link = SystemsBench::Link;
using Mnemonics = QList<QByteArray>;

QColor colorOf(const QLabel& label)
{
    return label.palette().color(QPalette::WindowText);
}

} // namespace

class TestCommonDetectors final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench = std::make_unique<CommonBench>(); }
    void cleanup() { bench.reset(); }

    void curvesHaveTheColoursOfTheCommonDetector();
    void singleOneHasReadoutsInItsColours();
    void bothListsDecideWhetherThereAreReadouts();
    void withNoneLeftTheControlsAreDisabled();
    void colourOfASubsystemIsNotThatOfItsCommonDetector();
    void statisticsAreOfferedForASingleOne();
    void shownStatisticsOfASingleOneAreBroughtUpToDate();
    void startBeginsTheStreamsThatDoNotRunYet();
    void stopEndsTheStreamsOfDisplayedSystemsOnly();
    void switchesShowTheStateOfASingleOne();

private:
    bool showsSingle() const
    {
        return !bench->forms[0].singleFrame.isHidden() && !bench->forms[1].singleFrame.isHidden();
    }

    std::unique_ptr<CommonBench> bench;
};

void TestCommonDetectors::curvesHaveTheColoursOfTheCommonDetector()
{
    ScriptedConnection& connection = bench->addHidden();
    ConnectionStatus& status = bench->systems.at(0).status;
    status.commonColorX = Qt::red;
    status.commonColorY = Qt::green;
    status.commonColorI = Qt::yellow;
    bench->showCommon(connection);
    for (const int stage : {1, 2}) {
        QCOMPARE(bench->plots(stage).position().curveColor(2), QColor(Qt::red));
        QCOMPARE(bench->plots(stage).position().curveColor(3), QColor(Qt::green));
        QCOMPARE(bench->plots(stage).intensity().curveColor(1), QColor(Qt::yellow));
        QCOMPARE(bench->plots(stage).pointing().curveColor(1), QColor(Qt::yellow));
    }
}

void TestCommonDetectors::singleOneHasReadoutsInItsColours()
{
    ScriptedConnection& connection = bench->addHidden();
    QVERIFY(!bench->toolBar.startAction().isEnabled());
    for (StageView& stage : bench->stages)
        stage.setSingleSystemVisible(false);
    ConnectionStatus& status = bench->systems.at(0).status;
    status.commonColorX = Qt::red;
    status.commonColorY = Qt::green;
    status.commonColorI = Qt::blue;
    bench->stages[0].readouts().take(QPointF(1.0, 1.0), {});
    bench->stages[0].readouts().show(2);

    bench->showCommon(connection);
    QVERIFY(showsSingle());
    QVERIFY(bench->toolBar.startAction().isEnabled());
    QVERIFY(bench->forms[1].stabilisation.isEnabled());
    QCOMPARE(colorOf(bench->forms[0].xAxis), QColor(Qt::red));
    QCOMPARE(colorOf(bench->forms[1].yAxis), QColor(Qt::green));
    QCOMPARE(colorOf(bench->forms[1].intensityAxis), QColor(Qt::blue));
    bench->stages[0].readouts().take(QPointF(3.0, 3.0), {});
    bench->stages[0].readouts().show(2);
    QCOMPARE(bench->forms[0].lcdX.value(), 3.0);
}

void TestCommonDetectors::bothListsDecideWhetherThereAreReadouts()
{
    ScriptedConnection& first = bench->addHidden();
    ScriptedConnection& second = bench->addHidden();
    bench->systems.at(1).status.commonColorX = Qt::red;
    bench->systems.setColor(&first, Qt::green, Graph::X);
    const QLabel& label = bench->forms[0].xAxis;

    bench->show(first);
    QVERIFY(showsSingle());
    bench->showCommon(second);
    QVERIFY(!showsSingle());
    QCOMPARE(colorOf(label), QColor(Qt::black));
    bench->show(first, false);
    QVERIFY(showsSingle());
    QCOMPARE(colorOf(label), QColor(Qt::red));
    bench->show(first);
    QVERIFY(!showsSingle());
    bench->showCommon(second, false);
    QVERIFY(showsSingle());
    QCOMPARE(colorOf(label), QColor(Qt::green));
    // One system in both lists counts twice.
    bench->showCommon(first);
    QVERIFY(!showsSingle());
    bench->systems.close(&first);
    QVERIFY(!bench->toolBar.startAction().isEnabled());
}

void TestCommonDetectors::withNoneLeftTheControlsAreDisabled()
{
    ScriptedConnection& connection = bench->addCommon();
    bench->systems.at(0).status.commonColorX = Qt::red;
    bench->showCommon(connection, false);
    QVERIFY(!bench->toolBar.startAction().isEnabled());
    for (const StageForm& form : bench->forms)
        QVERIFY(!form.stabilisation.isEnabled());
    QCOMPARE(colorOf(bench->forms[0].xAxis), QColor(Qt::black));
}

void TestCommonDetectors::colourOfASubsystemIsNotThatOfItsCommonDetector()
{
    ScriptedConnection& connection = bench->addHidden();
    bench->systems.at(0).status.commonColorX = Qt::red;
    bench->showCommon(connection);
    bench->systems.setColor(&connection, Qt::green, Graph::X);
    QCOMPARE(colorOf(bench->forms[0].xAxis), QColor(Qt::red));
    QCOMPARE(bench->plots().position().curveColor(0), QColor(Qt::green));
    QCOMPARE(bench->plots().position().curveColor(2), QColor(Qt::red));

    // Beside a displayed system the names stay black.
    bench->show(connection);
    bench->systems.setColor(&connection, Qt::blue, Graph::X);
    QCOMPARE(colorOf(bench->forms[0].xAxis), QColor(Qt::black));
}

void TestCommonDetectors::statisticsAreOfferedForASingleOne()
{
    const QCheckBox& box = bench->forms[0].statisticsBox;
    bench->statistics.enable(false);
    bench->toolBar.pointingRadio().setChecked(true);
    ScriptedConnection& first = bench->addCommon();
    QVERIFY(box.isEnabled());
    ScriptedConnection& second = bench->addHidden();
    bench->show(second);
    QVERIFY(!box.isEnabled());
    bench->show(second, false);
    QVERIFY(box.isEnabled());
    bench->showCommon(first, false);
    QVERIFY(!box.isEnabled());
}

void TestCommonDetectors::shownStatisticsOfASingleOneAreBroughtUpToDate()
{
    ScriptedConnection& connection = bench->addCommon();
    bench->statistics.run().setLimit(2);
    connection.storeCommonSamples(std::vector<MeasureSample>(2));
    bench->tick.showCommonSamples();
    StatisticsOverlay& overlay = bench->stages[0].statistics();
    overlay.setText(QStringLiteral("old"));
    bench->statistics.show(bench->stages[0], true);
    const QwtPlotItemList texts =
        bench->plots().pointing().itemList(QwtPlotItem::Rtti_PlotTextLabel);
    QCOMPARE(texts.size(), 1);
    const auto* text = static_cast<const QwtPlotTextLabel*>(texts.first());
    QVERIFY(text->text().text().contains(QStringLiteral("#samples=2")));
}

void TestCommonDetectors::startBeginsTheStreamsThatDoNotRunYet()
{
    ScriptedConnection& idle = bench->addCommon(Link::Running);
    ScriptedConnection& streaming = bench->addStreamingCommon();
    ScriptedConnection& both = bench->add(Link::Running);
    bench->showCommon(both);
    const QSignalSpy failed(&bench->acquisition, &Acquisition::streamFailed);
    bench->acquisition.startOrStop();
    QCOMPARE(failed.count(), 0);

    const QByteArray start("SLS\x00\x00\x01\xF4;", 8);
    QCOMPARE(idle.controller().messages(), QList<QByteArray>{start});
    QVERIFY(idle.isStreaming());
    QCOMPARE(idle.samplingRate(), CommonBench::rateHz);
    QCOMPARE(streaming.controller().messages(), QList<QByteArray>());
    QCOMPARE(both.controller().messages(), QList<QByteArray>{start});
}

void TestCommonDetectors::stopEndsTheStreamsOfDisplayedSystemsOnly()
{
    ScriptedConnection& common = bench->addStreamingCommon();
    ScriptedConnection& displayed = bench->addStreaming();
    bench->acquisition.stop();
    QCOMPARE(displayed.controller().mnemonics(), Mnemonics{"CLS"});
    QCOMPARE(common.controller().mnemonics(), Mnemonics());
    QVERIFY(common.isStreaming());
}

void TestCommonDetectors::switchesShowTheStateOfASingleOne()
{
    bench->addCommon();
    // A stream whose samples nobody takes: nothing else changes the record.
    bench->addStreamingCommon();
    bench->systems.at(1).status.stabilised1 = true;
    bench->systems.at(1).status.active2 = true;
    bench->tick.run();
    QCOMPARE(bench->forms[0].stabilisation.text(), QStringLiteral("OFF"));
    bench->showCommon(bench->connection(0), false);
    bench->tick.run();
    QCOMPARE(bench->forms[0].stabilisation.text(), QStringLiteral("ON"));
    QCOMPARE(bench->forms[1].stabilisation.text(), QStringLiteral("OFF"));
    QCOMPARE(bench->forms[1].activeText.text(), QStringLiteral("Active"));
}

QTEST_MAIN(TestCommonDetectors)
#include "tst_commondetectors.moc"
