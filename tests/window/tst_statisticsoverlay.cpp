#include "stagebench.h"

#include <QPaintEvent>
#include <QtTest>
#include <qwt_plot_shapeitem.h>
#include <qwt_plot_textlabel.h>

#include <functional>

namespace {

const QwtPlotItem* itemOf(const GenericPlot& plot, int kind, const QString& title = QString())
{
    for (const QwtPlotItem* item : plot.itemList(kind)) {
        if (title.isEmpty() || item->title().text() == title)
            return item;
    }
    return nullptr;
}

/// What is painted of a widget.
class PaintedRegion final : public QObject
{
public:
    explicit PaintedRegion(QWidget& widget) { widget.installEventFilter(this); }

    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            region += static_cast<QPaintEvent*>(event)->region();
        return QObject::eventFilter(object, event);
    }

    QRegion region;
};

} // namespace

Q_DECLARE_METATYPE(std::function<void(StatisticsOverlay&)>)

class TestStatisticsOverlay final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { bench.reset(); }

    void nothingShowsUnlessItIsWanted();
    void showingPutsTextAndCrossOnThePlot();
    void hidingTakesTextAndCrossAway();
    void textIsRedAndInTheCorner();
    void textIsTheOneSetLast();
    void crossStandsAroundTheMean();
    void crossLiesOverThePoints();
    void newFiguresPaintTheWholeCanvas_data();
    void newFiguresPaintTheWholeCanvas();
    void clearingShowsARunWithoutSamples();
    void disablingUnchecksTheBox();
    void enablingLeavesTheBoxAsItWas();
    void crossesOfTheStagesHaveTheirNames();

private:
    StatisticsOverlay& overlay() const { return bench->stages[0].statistics(); }
    const GenericPlot& plot() const { return bench->stages[0].plots().pointing(); }
    QCheckBox& box() const { return bench->forms[0].statisticsBox; }
    QwtText text() const;
    const QwtPlotItem* cross() const;

    std::unique_ptr<StageBench> bench;
};

void TestStatisticsOverlay::init()
{
    bench = std::make_unique<StageBench>();
}

/// The shown one. Empty if none is.
QwtText TestStatisticsOverlay::text() const
{
    const QwtPlotItem* item = itemOf(plot(), QwtPlotItem::Rtti_PlotTextLabel);
    return item ? static_cast<const QwtPlotTextLabel*>(item)->text() : QwtText();
}

/// The shown one; null if none is.
const QwtPlotItem* TestStatisticsOverlay::cross() const
{
    return itemOf(plot(), QwtPlotItem::Rtti_PlotShape,
                  QStringLiteral("Zielkreuz mit Varianz-Kreis"));
}

void TestStatisticsOverlay::nothingShowsUnlessItIsWanted()
{
    overlay().setText(QStringLiteral("text"));
    overlay().moveCross({QPointF(1.0, 1.0), 1.0});
    QVERIFY(!itemOf(plot(), QwtPlotItem::Rtti_PlotTextLabel));
    QVERIFY(!cross());
}

void TestStatisticsOverlay::showingPutsTextAndCrossOnThePlot()
{
    overlay().show(true);
    QVERIFY(itemOf(plot(), QwtPlotItem::Rtti_PlotTextLabel));
    QVERIFY(cross());
    QVERIFY(!itemOf(bench->stages[1].plots().pointing(), QwtPlotItem::Rtti_PlotTextLabel));
}

void TestStatisticsOverlay::hidingTakesTextAndCrossAway()
{
    overlay().show(true);
    overlay().show(false);
    QVERIFY(!itemOf(plot(), QwtPlotItem::Rtti_PlotTextLabel));
    QVERIFY(!cross());
}

void TestStatisticsOverlay::textIsRedAndInTheCorner()
{
    overlay().setText(QStringLiteral("text"));
    overlay().show(true);
    QCOMPARE(text().color(), QColor(Qt::red));
    QCOMPARE(text().renderFlags(), int(Qt::AlignLeft | Qt::AlignTop));
    QCOMPARE(text().font().pointSize(), 8);
}

void TestStatisticsOverlay::textIsTheOneSetLast()
{
    overlay().show(true);
    overlay().setText(QStringLiteral("first"));
    overlay().setText(QStringLiteral("second"));
    QCOMPARE(text().text(), QStringLiteral("second"));
}

void TestStatisticsOverlay::crossStandsAroundTheMean()
{
    overlay().show(true);
    overlay().moveCross({QPointF(1.0, -2.0), 0.5});
    const auto* shape = static_cast<const QwtPlotShapeItem*>(cross());
    QVERIFY(shape);
    QCOMPARE(shape->shape().boundingRect(), QRectF(0.35, -2.65, 1.3, 1.3));
}

void TestStatisticsOverlay::crossLiesOverThePoints()
{
    bench->stages[0].plots().addCurves(0);
    overlay().show(true);
    const QwtPlotItem* curve = itemOf(plot(), QwtPlotItem::Rtti_PlotCurve);
    QVERIFY(curve);
    QVERIFY(cross()->z() > curve->z());
}

void TestStatisticsOverlay::newFiguresPaintTheWholeCanvas_data()
{
    using Change = std::function<void(StatisticsOverlay&)>;
    QTest::addColumn<Change>("change");
    QTest::addColumn<bool>("isShown");
    QTest::addColumn<bool>("whole");
    const auto row = [](const char* name, const Change& change, bool isShown, bool whole) {
        QTest::newRow(name) << change << isShown << whole;
    };
    const Change text = [](StatisticsOverlay& overlay) {
        overlay.setText(QStringLiteral("some text"));
    };
    row("text", text, true, true);
    row(
        "cross",
        [](StatisticsOverlay& overlay) {
            overlay.moveCross({{3.0, 3.0}, 0.5});
        },
        true, true);
    row(
        "nothing", [](StatisticsOverlay&) {}, true, false);
    row("text that is not shown", text, false, false);
}

/// Of a replot that new points alone would not take there.
void TestStatisticsOverlay::newFiguresPaintTheWholeCanvas()
{
    QFETCH(std::function<void(StatisticsOverlay&)>, change);
    QFETCH(bool, isShown);
    StagePlots& plots = bench->stages[0].plots();
    GenericPlot& pointing = plots.pointing();
    plots.addCurves(0);
    pointing.start();
    pointing.resize(300, 300);
    pointing.window()->show();
    // Nothing places the plots of this bench: others lie over it.
    pointing.raise();
    pointing.show();
    QVERIFY(QTest::qWaitForWindowExposed(pointing.window()));
    overlay().show(isShown);
    plots.appendPointingPoint(0, QPointF(-1.0, -1.0));
    plots.replot();
    QCoreApplication::processEvents();

    PaintedRegion painted(*pointing.canvas());
    change(overlay());
    plots.appendPointingPoint(0, QPointF(-1.0, -1.0));
    plots.replot();
    QCoreApplication::processEvents();
    QVERIFY(!painted.region.isEmpty());
    QTEST(painted.region.boundingRect() == pointing.canvas()->contentsRect(), "whole");
}

void TestStatisticsOverlay::clearingShowsARunWithoutSamples()
{
    overlay().show(true);
    overlay().setText(QStringLiteral("text"));
    overlay().moveCross({QPointF(1.0, -2.0), 0.5});
    overlay().clear();
    QCOMPARE(text().text(), emptyStatisticsText());
    const auto* shape = static_cast<const QwtPlotShapeItem*>(cross());
    QVERIFY(shape);
    QCOMPARE(shape->shape().boundingRect(), QRectF(-0.75, -0.75, 1.5, 1.5));
}

void TestStatisticsOverlay::disablingUnchecksTheBox()
{
    box().setChecked(true);
    overlay().enable(false);
    QVERIFY(!box().isEnabled());
    QVERIFY(!box().isChecked());
    QVERIFY(!overlay().isWanted());
}

void TestStatisticsOverlay::enablingLeavesTheBoxAsItWas()
{
    box().setEnabled(false);
    box().setChecked(true);
    overlay().enable(true);
    QVERIFY(box().isEnabled());
    QVERIFY(overlay().isWanted());
}

void TestStatisticsOverlay::crossesOfTheStagesHaveTheirNames()
{
    bench->stages[1].statistics().show(true);
    QVERIFY(itemOf(bench->stages[1].plots().pointing(), QwtPlotItem::Rtti_PlotShape,
                   QStringLiteral("Zielkreuz2 mit Varianz-Kreis")));
}

QTEST_MAIN(TestStatisticsOverlay)
#include "tst_statisticsoverlay.moc"
