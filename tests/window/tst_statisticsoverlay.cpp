#include "stagebench.h"

#include <QtTest>
#include <qwt_plot_shapeitem.h>
#include <qwt_plot_textlabel.h>

namespace {

const QwtPlotItem* itemOf(const GenericPlot& plot, int kind, const QString& title = QString())
{
    for (const QwtPlotItem* item : plot.itemList(kind)) {
        if (title.isEmpty() || item->title().text() == title)
            return item;
    }
    return nullptr;
}

} // namespace

class TestStatisticsOverlay final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { bench.reset(); }

    void nothingShowsUnlessItIsWanted();
    void showingPutsTextAndCrossOnThePlot();
    void hidingTakesThemAway();
    void textIsRedAndInTheCorner();
    void textIsTheOneSetLast();
    void crossStandsAroundTheMean();
    void crossLiesOverThePoints();
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

void TestStatisticsOverlay::hidingTakesThemAway()
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
