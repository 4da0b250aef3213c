#include "plots/scrollticks.h"

#include <QtTest>

Q_DECLARE_METATYPE(PlotSpan)

namespace {

ScrollTicks ticksOver(double min, double max, bool inverted = false)
{
    ScrollTicks ticks;
    ticks.base = {min, max};
    ticks.inverted = inverted;
    return ticks;
}

} // namespace

class TestScrollTicks final : public QObject
{
    Q_OBJECT

private slots:
    void valueMapsToTheTickBelowTowardsZero_data();
    void valueMapsToTheTickBelowTowardsZero();
    void tickMapsToItsValue_data();
    void tickMapsToItsValue();
    void spanMapsToTheSlider_data();
    void spanMapsToTheSlider();
    void sliderMapsToItsSpan_data();
    void sliderMapsToItsSpan();
};

void TestScrollTicks::valueMapsToTheTickBelowTowardsZero_data()
{
    QTest::addColumn<double>("min");
    QTest::addColumn<double>("max");
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("tick");
    QTest::newRow("lower end") << -5.0 << 5.0 << -5.0 << 0;
    QTest::newRow("middle") << -5.0 << 5.0 << 0.0 << 500000;
    QTest::newRow("upper end") << -5.0 << 5.0 << 5.0 << 1000000;
    QTest::newRow("fraction is dropped") << 0.0 << 1.0 << 0.0000019 << 1;
    QTest::newRow("negative fraction is dropped") << 0.0 << 1.0 << -0.0000019 << -1;
    QTest::newRow("base that runs downwards") << 5.0 << -5.0 << 2.5 << 250000;
}

void TestScrollTicks::valueMapsToTheTickBelowTowardsZero()
{
    QFETCH(double, min);
    QFETCH(double, max);
    QFETCH(double, value);
    QTEST(ticksOver(min, max).mapToTick(value), "tick");
}

void TestScrollTicks::tickMapsToItsValue_data()
{
    QTest::addColumn<double>("min");
    QTest::addColumn<double>("max");
    QTest::addColumn<int>("tick");
    QTest::addColumn<double>("value");
    QTest::newRow("lower end") << -5.0 << 5.0 << 0 << -5.0;
    QTest::newRow("middle") << -5.0 << 5.0 << 500000 << 0.0;
    QTest::newRow("upper end") << -5.0 << 5.0 << 1000000 << 5.0;
    QTest::newRow("one tick") << 0.0 << 1.0 << 1 << 0.000001;
    QTest::newRow("base that runs downwards") << 5.0 << -5.0 << 250000 << 2.5;
}

void TestScrollTicks::tickMapsToItsValue()
{
    QFETCH(double, min);
    QFETCH(double, max);
    QFETCH(int, tick);
    QTEST(ticksOver(min, max).mapFromTick(tick), "value");
}

void TestScrollTicks::spanMapsToTheSlider_data()
{
    QTest::addColumn<PlotSpan>("base");
    QTest::addColumn<bool>("inverted");
    QTest::addColumn<PlotSpan>("visible");
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<int>("singleStep");
    QTest::addColumn<int>("pageStep");
    QTest::addColumn<int>("position");

    const PlotSpan full{-5.0, 5.0};
    const PlotSpan aMillion{0.0, 1000000.0};
    QTest::newRow("middle fifth") << full << false << PlotSpan{-1.0, 1.0} << 100000 << 900000
                                  << 1000 << 200000 << 500000;
    QTest::newRow("whole base") << full << false << full << 500000 << 500000 << 5000 << 1000000
                                << 500000;
    QTest::newRow("at the lower end")
        << full << false << PlotSpan{-5.0, -3.0} << 100000 << 900000 << 1000 << 200000 << 100000;
    QTest::newRow("at the lower end, inverted")
        << full << true << PlotSpan{-5.0, -3.0} << 100000 << 900000 << 1000 << 200000 << 900000;
    QTest::newRow("base that runs downwards") << PlotSpan{5.0, -5.0} << false << PlotSpan{4.0, 2.0}
                                              << 100000 << 900000 << 1000 << 200000 << 200000;
    QTest::newRow("thousandth of the base")
        << aMillion << false << PlotSpan{0.0, 1000.0} << 500 << 999500 << 5 << 1000 << 500;
    QTest::newRow("page of 200 ticks")
        << aMillion << false << PlotSpan{500000.0, 500200.0} << 100 << 999900 << 1 << 200 << 500100;
    QTest::newRow("page below 200 ticks")
        << aMillion << false << PlotSpan{500000.0, 500100.0} << 50 << 999950 << 1 << 100 << 500050;
    QTest::newRow("odd page") << aMillion << false << PlotSpan{0.0, 3.0} << 1 << 999999 << 1 << 3
                              << 1;
    QTest::newRow("page is rounded")
        << aMillion << false << PlotSpan{0.0, 2.6} << 1 << 999999 << 1 << 3 << 1;
    QTest::newRow("half a tick is rounded up")
        << aMillion << false << PlotSpan{0.0, 2.5} << 1 << 999999 << 1 << 3 << 1;
    QTest::newRow("less than half a tick is rounded down")
        << aMillion << false << PlotSpan{0.0, 2.4} << 1 << 999999 << 1 << 2 << 1;
}

void TestScrollTicks::spanMapsToTheSlider()
{
    QFETCH(PlotSpan, base);
    QFETCH(bool, inverted);
    QFETCH(PlotSpan, visible);
    const SliderTicks slider = ticksOver(base.min, base.max, inverted).sliderFor(visible);
    QTEST(slider.minimum, "minimum");
    QTEST(slider.maximum, "maximum");
    QTEST(slider.singleStep, "singleStep");
    QTEST(slider.pageStep, "pageStep");
    QTEST(slider.position, "position");
}

void TestScrollTicks::sliderMapsToItsSpan_data()
{
    QTest::addColumn<PlotSpan>("base");
    QTest::addColumn<bool>("inverted");
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("pageStep");
    QTest::addColumn<double>("min");
    QTest::addColumn<double>("max");
    const PlotSpan full{-5.0, 5.0};
    QTest::newRow("middle") << full << false << 500000 << 200000 << -1.0 << 1.0;
    QTest::newRow("lower end") << full << false << 100000 << 200000 << -5.0 << -3.0;
    QTest::newRow("lower end, inverted") << full << true << 100000 << 200000 << 3.0 << 5.0;
    QTest::newRow("odd page loses its half tick")
        << PlotSpan{0.0, 1000000.0} << false << 500000 << 3 << 499999.0 << 500001.0;
}

void TestScrollTicks::sliderMapsToItsSpan()
{
    QFETCH(PlotSpan, base);
    QFETCH(bool, inverted);
    QFETCH(int, value);
    QFETCH(int, pageStep);
    const PlotSpan span = ticksOver(base.min, base.max, inverted).sliderRange(value, pageStep);
    QTEST(span.min, "min");
    QTEST(span.max, "max");
}

QTEST_GUILESS_MAIN(TestScrollTicks)
#include "tst_scrollticks.moc"
