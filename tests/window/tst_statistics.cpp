#include "stagebench.h"
#include "systemsbench.h"
#include "window/statistics.h"

#include <QtTest>
#include <qwt_plot_shapeitem.h>
#include <qwt_plot_textlabel.h>

#include <limits>

namespace {

StagePositions both(double x, double y)
{
    return {QPointF(x, y), QPointF(x, y)};
}

} // namespace

class TestStatistics final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench = std::make_unique<Bench>(); }
    void cleanup() { bench.reset(); }

    void withoutALimitNothingIsCounted();
    void endOfARunShowsItsFigures();
    void onlyTheFirstSystemCounts();
    void nothingIsAddedBeforeTheFirstSystemHasDelivered();
    void onlyTheLastSystemEndsARun();
    void clearingForgetsTheSumsOfAllSystems();
    void textHasTheUnitOfTheSystem();
    void shownStatisticsAreBroughtUpToDate();
    void withoutASampleTheTextStaysEmpty();
    void withTwoSystemsShowingRefreshesNothing();
    void disablingUnchecksAndHides();
    void enablingShowsWhatIsChecked();
    void figuresWaitForTheLastSampleOfATick();
    void crossFollowsWhileTheTextWaits();
    void withoutANewSampleNothingIsShownAnew();
    void latestSampleCanBeAddedOnceMore();

private:
    struct Bench : SystemsBench, StageBench
    {
        Statistics statistics{systems, stages};
    };

    Statistics& statistics() const { return bench->statistics; }
    bool takeAlone(double x) const
    {
        return statistics().take(bench->systems.at(0), both(x, 0.0), true, true);
    }
    void letTextBeDue() const { statistics().run().startClock(-Run::textPeriodMs); }
    /// Null while it is not shown.
    QString text(std::size_t stageIndex = 0) const;
    QPointF crossCentre() const;

    std::unique_ptr<Bench> bench;
};

QString TestStatistics::text(std::size_t stageIndex) const
{
    const QwtPlotItemList items =
        bench->stages[stageIndex].plots().pointing().itemList(QwtPlotItem::Rtti_PlotTextLabel);
    return items.isEmpty() ? QString()
                           : static_cast<const QwtPlotTextLabel*>(items.first())->text().text();
}

QPointF TestStatistics::crossCentre() const
{
    for (const QwtPlotItem* item :
         bench->stages[0].plots().pointing().itemList(QwtPlotItem::Rtti_PlotShape)) {
        if (item->title().text().startsWith("Zielkreuz"))
            return static_cast<const QwtPlotShapeItem*>(item)->shape().boundingRect().center();
    }
    return {};
}

void TestStatistics::withoutALimitNothingIsCounted()
{
    bench->add();
    QVERIFY(takeAlone(1.0));
    QCOMPARE(statistics().run().samplesTaken(), 0);
    QCOMPARE(bench->systems.at(0).sums[0].x, 0.0);
}

void TestStatistics::endOfARunShowsItsFigures()
{
    bench->add();
    statistics().run().setLimit(2);
    statistics().startClock();
    bench->stages[0].statistics().show(true);
    QVERIFY(takeAlone(1.0));
    QVERIFY(!takeAlone(3.0));
    QCOMPARE(text(), QString("\nx=2.000 [V]\ny=0.000 [V]\n#samples=2\nRMS=0.7071 [V]"));
    QCOMPARE(statistics().run().samplesShown(), 2);
}

void TestStatistics::onlyTheFirstSystemCounts()
{
    bench->add();
    bench->add();
    statistics().run().setLimit(10);
    for (int i = 0; i < 3; ++i) {
        QVERIFY(statistics().take(bench->systems.at(0), both(1.0, 0.0), true, false));
        QVERIFY(statistics().take(bench->systems.at(1), both(5.0, 0.0), false, true));
    }
    QCOMPARE(statistics().run().samplesTaken(), 3);
    QCOMPARE(bench->systems.at(0).sums[0].x, 3.0);
    QCOMPARE(bench->systems.at(1).sums[0].x, 15.0);
}

void TestStatistics::nothingIsAddedBeforeTheFirstSystemHasDelivered()
{
    bench->add();
    bench->add();
    statistics().run().setLimit(10);
    QVERIFY(statistics().take(bench->systems.at(1), both(5.0, 0.0), false, true));
    QCOMPARE(bench->systems.at(1).sums[0].x, 0.0);
}

void TestStatistics::onlyTheLastSystemEndsARun()
{
    bench->add();
    bench->add();
    statistics().run().setLimit(1);
    QVERIFY(statistics().take(bench->systems.at(0), both(1.0, 0.0), true, false));
    QVERIFY(statistics().take(bench->systems.at(0), both(1.0, 0.0), true, false));
    QCOMPARE(statistics().run().samplesTaken(), 1);
    QVERIFY(!statistics().take(bench->systems.at(1), both(1.0, 0.0), false, true));
}

void TestStatistics::clearingForgetsTheSumsOfAllSystems()
{
    bench->add();
    bench->add();
    statistics().run().setLimit(10);
    bench->stages[0].statistics().show(true);
    statistics().take(bench->systems.at(0), both(1.0, 0.0), true, false);
    statistics().take(bench->systems.at(1), both(1.0, 0.0), false, true);
    statistics().clear();
    QCOMPARE(bench->systems.at(0).sums[0].x, 0.0);
    QCOMPARE(bench->systems.at(1).sums[1].x, 0.0);
    QCOMPARE(statistics().run().samplesTaken(), 0);
    QCOMPARE(text(), emptyStatisticsText());
    QVERIFY(statistics().run().isCounting());
}

void TestStatistics::textHasTheUnitOfTheSystem()
{
    bench->add();
    bench->detectors[0] = DetectorPair(PsdDetector, 1, SelectDetector, 0, 0, 50.0, 50.0);
    statistics().run().setLimit(1);
    bench->stages[0].statistics().show(true);
    bench->stages[1].statistics().show(true);
    takeAlone(1.0);
    QVERIFY(text(0).contains("x=1.000 [mm]"));
    QVERIFY(text(1).contains("x=1.000 [V]"));
}

void TestStatistics::shownStatisticsAreBroughtUpToDate()
{
    bench->add();
    statistics().run().setLimit(2);
    takeAlone(1.0);
    takeAlone(3.0);
    bench->stages[0].statistics().setText(QStringLiteral("old"));
    statistics().show(bench->stages[0], true);
    QVERIFY(text().contains("#samples=2"));
}

void TestStatistics::withoutASampleTheTextStaysEmpty()
{
    bench->add();
    statistics().clear();
    statistics().show(bench->stages[0], true);
    QCOMPARE(text(), emptyStatisticsText());
}

void TestStatistics::withTwoSystemsShowingRefreshesNothing()
{
    bench->add();
    bench->add();
    statistics().run().setLimit(1);
    takeAlone(1.0);
    bench->stages[0].statistics().setText(QStringLiteral("old"));
    statistics().show(bench->stages[0], true);
    QCOMPARE(text(), QStringLiteral("old"));
}

void TestStatistics::disablingUnchecksAndHides()
{
    bench->add();
    statistics().clear();
    for (StageForm& form : bench->forms)
        form.statisticsBox.setChecked(true);
    statistics().enable(true);
    QVERIFY(!text(0).isNull() && !text(1).isNull());
    statistics().enable(false);
    QVERIFY(text(0).isNull() && text(1).isNull());
    QVERIFY(!bench->forms[0].statisticsBox.isEnabled());
    QVERIFY(!bench->forms[1].statisticsBox.isChecked());
}

void TestStatistics::enablingShowsWhatIsChecked()
{
    bench->add();
    bench->forms[1].statisticsBox.setChecked(true);
    statistics().clear();
    statistics().enable(true);
    QVERIFY(text(0).isNull());
    QCOMPARE(text(1), emptyStatisticsText());
    QVERIFY(bench->forms[0].statisticsBox.isEnabled());
}

void TestStatistics::figuresWaitForTheLastSampleOfATick()
{
    bench->add();
    statistics().run().setLimit(5);
    letTextBeDue();
    bench->stages[0].statistics().show(true);
    for (const double x : {1.0, 2.0, 3.0})
        QVERIFY(takeAlone(x));
    QCOMPARE(text(), QString());
    statistics().showTaken();
    QVERIFY(text().contains("x=2.000 [V]"));
    QVERIFY(text().contains("#samples=3"));
}

void TestStatistics::crossFollowsWhileTheTextWaits()
{
    bench->add();
    statistics().run().setLimit(5);
    letTextBeDue();
    bench->stages[0].statistics().show(true);
    takeAlone(1.0);
    takeAlone(3.0);
    statistics().showTaken();
    // As if the text had been built in the time to come.
    statistics().run().startClock(std::numeric_limits<int>::max());
    takeAlone(8.0);
    statistics().showTaken();
    QVERIFY(text().contains("#samples=2"));
    QCOMPARE(crossCentre(), QPointF(4.0, 0.0));
}

void TestStatistics::withoutANewSampleNothingIsShownAnew()
{
    bench->add();
    statistics().run().setLimit(5);
    letTextBeDue();
    takeAlone(1.0);
    statistics().showTaken();
    bench->stages[0].statistics().setText(QStringLiteral("old"));
    bench->stages[0].statistics().show(true);
    letTextBeDue();
    statistics().showTaken();
    QCOMPARE(text(), QStringLiteral("old"));
}

void TestStatistics::latestSampleCanBeAddedOnceMore()
{
    bench->add();
    statistics().run().setLimit(5);
    takeAlone(2.0);
    statistics().addLatest(bench->systems.at(0), 1);
    QCOMPARE(bench->systems.at(0).sums[0].x, 4.0);
    QCOMPARE(statistics().run().samplesTaken(), 1);
}

QTEST_MAIN(TestStatistics)
#include "tst_statistics.moc"
