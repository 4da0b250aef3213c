#include "ordinarypicture.h"
#include "plots/dotlayer.h"
#include "support/widgetcheck.h"

#include <QPaintEvent>
#include <QScreen>
#include <QWindow>

#include <memory>
#include <random>

namespace {

constexpr double range = 5.0;
constexpr QSize plotSize(240, 200);
constexpr int greatestRatio = 2;

/// Keeps the parts of a widget that are painted.
class PaintedParts final : public QObject
{
public:
    explicit PaintedParts(QWidget& widget) { widget.installEventFilter(this); }

    QRegion take()
    {
        QCoreApplication::processEvents();
        return std::exchange(parts, QRegion());
    }

    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            parts += static_cast<QPaintEvent*>(event)->region();
        return QObject::eventFilter(object, event);
    }

private:
    QRegion parts;
};

} // namespace

/// What a replot of new points paints, and what is on the screen afterwards. Runs once for each of
/// several device pixel ratios.
class TestChangedPart final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void changeThatIsNotPaintedIsSeen();
    void screenShowsTheWholePicture_data();
    void screenShowsTheWholePicture();
    void newPointPaintsItsSurroundings();
    void pointThatGoesIsPaintedOver();
    void pointBeyondTheBorderPaintsNothing();
    void manyPointsBeyondTheBorderPaintAll();
    void newColourPaintsAll();
    void changedItemPaintsAll();
    void newScalePaintsAll();
    void canvasWithABackingStorePaintsAll();

private:
    QImage screen() const;
    QImage screenPaintedAnew() const;
    QPoint placeOf(double x, double y) const;

    std::unique_ptr<QWidget> window;
    IncrementalPlot* plot = nullptr;
    std::unique_ptr<PaintedParts> painted;
};

void TestChangedPart::init()
{
    window = std::make_unique<QWidget>();
    // As many device pixels of a window can be looked at as it has places.
    window->resize(greatestRatio * plotSize);
    plot = new IncrementalPlot(window.get());
    plot->setCanvasBackground(QColor("lightblue"));
    plot->setKeepAllPoints(true);
    plot->setSymbolSize(QSize(3, 3));
    static_cast<QwtPlotCanvas*>(plot->canvas())
        ->setPaintAttribute(QwtPlotCanvas::BackingStore, false);
    for (const int axis : {QwtPlot::xBottom, QwtPlot::yLeft})
        plot->setAxisScale(axis, -range, range);
    plot->addCurves(3);
    plot->setCurveColor(Qt::red, 0);
    plot->setCurveColor(Qt::darkGreen, 1);
    plot->resize(plotSize);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    painted = std::make_unique<PaintedParts>(*plot->canvas());
    // The first point of a curve gives it its colour.
    for (int curve = 0; curve < plot->curveCount(); ++curve)
        plot->appendData(curve, QPointF(-4.0, 4.0));
    plot->replot();
    painted->take();
}

void TestChangedPart::cleanup()
{
    painted.reset();
    window.reset();
    QCOMPARE(leftWidgets(), QString());
}

QImage TestChangedPart::screen() const
{
    QCoreApplication::processEvents();
    return window->screen()->grabWindow(window->winId()).toImage();
}

QImage TestChangedPart::screenPaintedAnew() const
{
    window->update();
    plot->update();
    plot->canvas()->update();
    return screen();
}

QPoint TestChangedPart::placeOf(double x, double y) const
{
    return QPoint(qRound(plot->transform(QwtPlot::xBottom, x)),
                  qRound(plot->transform(QwtPlot::yLeft, y)));
}

void TestChangedPart::changeThatIsNotPaintedIsSeen()
{
    plot->appendData(0, QPointF(1.0, 1.0));
    const QImage before = screen();
    QVERIFY(differingPixels(before, screenPaintedAnew()) > 0);
}

void TestChangedPart::screenShowsTheWholePicture_data()
{
    QTest::addColumn<bool>("keepsAll");
    QTest::addColumn<double>("spread");
    QTest::newRow("all points, near") << true << 0.3;
    QTest::newRow("all points, far") << true << 1.2 * range;
    QTest::newRow("few points, near") << false << 0.3;
    QTest::newRow("few points, far") << false << 1.2 * range;
}

void TestChangedPart::screenShowsTheWholePicture()
{
    QFETCH(bool, keepsAll);
    QFETCH(double, spread);
    constexpr int replots = 60;
    plot->setKeepAllPoints(keepsAll);
    std::mt19937 generator(815);
    std::uniform_real_distribution<double> place(-spread, spread);
    std::uniform_int_distribution<int> count(0, 4);
    for (int i = 0; i < replots; ++i) {
        for (int curve = 0; curve < plot->curveCount(); ++curve) {
            for (int left = count(generator); left > 0; --left)
                plot->appendData(curve, QPointF(place(generator), place(generator)));
        }
        plot->replotIfChanged();
        const QImage shown = screen();
        QVERIFY(!shown.isNull());
        const QImage expected = screenPaintedAnew();
        if (differingPixels(shown, expected) != 0)
            keepPictures(shown, expected);
        QCOMPARE(differingPixels(shown, expected), 0);
    }
}

void TestChangedPart::newPointPaintsItsSurroundings()
{
    plot->appendData(0, QPointF(1.0, 1.0));
    plot->replotIfChanged();
    const QRect part = painted->take().boundingRect();
    constexpr int dot = 2;
    constexpr int surroundings = 8;
    const QRect place(placeOf(1.0, 1.0), QSize(1, 1));
    QVERIFY(part.contains(place.adjusted(-dot, -dot, dot, dot)));
    QVERIFY(
        place.adjusted(-surroundings, -surroundings, surroundings, surroundings).contains(part));
}

void TestChangedPart::pointThatGoesIsPaintedOver()
{
    plot->setKeepAllPoints(false);
    for (int i = 0; i < IncrementalPlot::maxPoints; ++i)
        plot->appendData(0, QPointF(-3.0 + 0.1 * i, 2.0));
    plot->replot();
    painted->take();
    plot->appendData(0, QPointF(-2.0, 2.0));
    plot->replotIfChanged();
    const QRect part = painted->take().boundingRect();
    QVERIFY(part.contains(placeOf(-3.0, 2.0)));
    QVERIFY(part.contains(placeOf(-2.0, 2.0)));
    QVERIFY(!part.contains(placeOf(-2.0, 0.0)));
}

void TestChangedPart::pointBeyondTheBorderPaintsNothing()
{
    plot->appendData(0, QPointF(0.0, 2.0 * range));
    plot->replotIfChanged();
    QVERIFY(painted->take().isEmpty());
}

/// Otherwise all of them would have to be taken into the picture when one can be seen again.
void TestChangedPart::manyPointsBeyondTheBorderPaintAll()
{
    constexpr std::size_t half = IncrementalPlot::mostUnpainted / 2;
    const auto appendHalf = [this] {
        for (std::size_t i = 0; i < half; ++i)
            plot->appendData(0, QPointF(0.0, 2.0 * range));
        plot->replotIfChanged();
        return painted->take().boundingRect();
    };
    QVERIFY(appendHalf().isEmpty());
    QVERIFY(appendHalf().isEmpty());
    plot->appendData(0, QPointF(0.0, 2.0 * range));
    QCOMPARE(appendHalf(), plot->canvas()->contentsRect());
    // The first one of each curve among them.
    QCOMPARE(plot->dotLayer().dotsAdded(), 3 * half + 4);
    QVERIFY(appendHalf().isEmpty());
}

void TestChangedPart::newColourPaintsAll()
{
    plot->setCurveColor(Qt::magenta, 0);
    plot->appendData(0, QPointF(1.0, 1.0));
    plot->replotIfChanged();
    QCOMPARE(painted->take().boundingRect(), plot->canvas()->contentsRect());
    plot->appendData(0, QPointF(1.0, 1.0));
    plot->replotIfChanged();
    QVERIFY(painted->take().boundingRect() != plot->canvas()->contentsRect());
}

void TestChangedPart::changedItemPaintsAll()
{
    plot->setItemsChanged();
    plot->appendData(0, QPointF(1.0, 1.0));
    plot->replotIfChanged();
    QCOMPARE(painted->take().boundingRect(), plot->canvas()->contentsRect());
}

void TestChangedPart::newScalePaintsAll()
{
    plot->setAxisScale(QwtPlot::xBottom, -2.0 * range, range);
    plot->appendData(0, QPointF(1.0, 1.0));
    plot->replotIfChanged();
    QCOMPARE(painted->take().boundingRect(), plot->canvas()->contentsRect());
}

void TestChangedPart::canvasWithABackingStorePaintsAll()
{
    static_cast<QwtPlotCanvas*>(plot->canvas())
        ->setPaintAttribute(QwtPlotCanvas::BackingStore, true);
    plot->appendData(0, QPointF(1.0, 1.0));
    plot->replotIfChanged();
    QCOMPARE(painted->take().boundingRect(), plot->canvas()->rect());
}

QTEST_MAIN(TestChangedPart)
#include "tst_changedpart.moc"
