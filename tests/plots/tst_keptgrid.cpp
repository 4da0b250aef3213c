#include "ordinarypicture.h"
#include "plots/keptgrid.h"
#include "support/widgetcheck.h"

#include <QPainter>

#include <cmath>
#include <functional>

Q_DECLARE_METATYPE(std::function<void(QwtPlot&, QwtPlotGrid&)>)

/// What a grid shows, against the library's own. Runs once for each of several device pixel ratios.
class TestKeptGrid final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void gridLooksLikeThatOfTheLibrary();
    void missingLineIsSeen();
    void pictureIsMadeOnceWhileNothingChanges();
    void changeIsShown_data();
    void changeIsShown();
    void gridIsDrawnForItsScalesAndItsCanvas();
    void gridThatCanNotBeKeptIsDrawn_data();
    void gridThatCanNotBeKeptIsDrawn();

private:
    using Change = std::function<void(QwtPlot&, QwtPlotGrid&)>;

    /// Pictures are kept where device pixels and places meet everywhere alike.
    bool isKept() const
    {
        return std::floor(plot->devicePixelRatioF()) == plot->devicePixelRatioF();
    }
    QImage picture() const
    {
        plot->replot();
        return pictureOf(*plot);
    }

    void verifyPicture() const
    {
        const QImage shown = picture();
        QCOMPARE(differingPixels(shown, ordinaryPictureOf(*plot)), 0);
    }

    std::unique_ptr<QwtPlot> plot;
    /// Owned by the plot.
    KeptGrid* grid = nullptr;
};

void TestKeptGrid::init()
{
    plot = std::make_unique<QwtPlot>();
    static_cast<QwtPlotCanvas*>(plot->canvas())
        ->setPaintAttribute(QwtPlotCanvas::BackingStore, false);
    for (const int axis : {QwtPlot::xBottom, QwtPlot::yLeft})
        plot->setAxisScale(axis, -5.0, 5.0);
    plot->resize(260, 210);
    grid = new KeptGrid;
    grid->setPen(Qt::gray, 0.0, Qt::DotLine);
    grid->enableXMin(true);
    grid->enableYMin(true);
    grid->attach(plot.get());
}

void TestKeptGrid::cleanup()
{
    plot.reset();
    QCOMPARE(leftWidgets(), QString());
}

void TestKeptGrid::gridLooksLikeThatOfTheLibrary()
{
    for (int i = 0; i < 3; ++i)
        verifyPicture();
}

void TestKeptGrid::missingLineIsSeen()
{
    const QImage complete = picture();
    OrdinaryPlot other(*plot);
    other.setAxisScale(QwtPlot::xBottom, -5.0, 5.0, 4.0);
    other.replot();
    QVERIFY(differingPixels(complete, pictureOf(other)) > 0);
}

void TestKeptGrid::pictureIsMadeOnceWhileNothingChanges()
{
    picture();
    const int before = grid->picturesMade();
    QCOMPARE(before > 0, isKept());
    picture();
    picture();
    QCOMPARE(grid->picturesMade(), before);
}

void TestKeptGrid::changeIsShown_data()
{
    QTest::addColumn<Change>("change");
    const auto row = [](const char* name, const Change& change) { QTest::newRow(name) << change; };
    row("scale", [](QwtPlot& p, QwtPlotGrid&) { p.setAxisScale(QwtPlot::xBottom, 0.0, 3.0); });
    row("other scale", [](QwtPlot& p, QwtPlotGrid&) { p.setAxisScale(QwtPlot::yLeft, 7.0, 3.0); });
    row("ticks", [](QwtPlot& p, QwtPlotGrid&) { p.setAxisMaxMinor(QwtPlot::xBottom, 2); });
    row("size", [](QwtPlot& p, QwtPlotGrid&) { p.resize(320, 180); });
    row("place", [](QwtPlot& p, QwtPlotGrid&) { p.setContentsMargins(7, 3, 0, 0); });
    row("major pen", [](QwtPlot&, QwtPlotGrid& g) { g.setMajorPen(Qt::red, 0.0, Qt::DashLine); });
    row("minor pen", [](QwtPlot&, QwtPlotGrid& g) { g.setMinorPen(Qt::blue, 0.0, Qt::DashLine); });
    row("no x", [](QwtPlot&, QwtPlotGrid& g) { g.enableX(false); });
    row("no minor x", [](QwtPlot&, QwtPlotGrid& g) { g.enableXMin(false); });
    row("no y", [](QwtPlot&, QwtPlotGrid& g) { g.enableY(false); });
    row("no minor y", [](QwtPlot&, QwtPlotGrid& g) { g.enableYMin(false); });
    row("hidden", [](QwtPlot&, QwtPlotGrid& g) { g.hide(); });
}

void TestKeptGrid::changeIsShown()
{
    QFETCH(Change, change);
    const QImage before = picture();
    change(*plot, *grid);
    QVERIFY(differingPixels(picture(), before) != 0);
    verifyPicture();
}

// A plot that aligns its scales to the canvas moves their ends while ticks and canvas stay.
void TestKeptGrid::gridIsDrawnForItsScalesAndItsCanvas()
{
    picture();
    struct Scale
    {
        double begin;
        double end;
    };
    const auto drawn = [this](const Scale& x, const Scale& y, const QRectF& canvas, bool kept) {
        const auto mapOf = [](const Scale& scale) {
            QwtScaleMap map;
            map.setScaleInterval(-5.0, 5.0);
            map.setPaintInterval(scale.begin, scale.end);
            return map;
        };
        QImage image(120, 100, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        if (kept)
            grid->draw(&painter, mapOf(x), mapOf(y), canvas);
        else
            grid->QwtPlotGrid::draw(&painter, mapOf(x), mapOf(y), canvas);
        return image;
    };
    const QRectF canvas(0.0, 0.0, 120.0, 100.0);
    const auto verify = [&](const Scale& x, const Scale& y, const QRectF& rect) {
        QCOMPARE(drawn(x, y, rect, true), drawn(x, y, rect, false));
    };
    verify({0.0, 120.0}, {100.0, 0.0}, canvas);
    verify({5.0, 115.0}, {100.0, 0.0}, canvas);
    verify({5.0, 115.0}, {90.0, 10.0}, canvas);
    verify({5.0, 115.0}, {90.0, 10.0}, canvas.adjusted(20.0, 10.0, -30.0, -20.0));
}

void TestKeptGrid::gridThatCanNotBeKeptIsDrawn_data()
{
    QTest::addColumn<Change>("change");
    const auto row = [](const char* name, const Change& change) { QTest::newRow(name) << change; };
    row("translucent", [](QwtPlot&, QwtPlotGrid& g) { g.setPen(QColor(200, 0, 0, 90)); });
    row("soft", [](QwtPlot&, QwtPlotGrid& g) {
        g.setRenderHint(QwtPlotItem::RenderAntialiased);
        g.setPen(Qt::red, 1.6);
    });
}

void TestKeptGrid::gridThatCanNotBeKeptIsDrawn()
{
    QFETCH(Change, change);
    change(*plot, *grid);
    verifyPicture();
    QCOMPARE(grid->picturesMade(), 0);
}

QTEST_MAIN(TestKeptGrid)
#include "tst_keptgrid.moc"
