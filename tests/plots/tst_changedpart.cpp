#include "ordinarypicture.h"
#include "plots/dotlayer.h"
#include "plots/genericplot.h"
#include "plots/zoomer.h"
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

    void screenHasTheRatioThatIsAskedFor();
    void changeThatIsNotPaintedIsSeen();
    void screenShowsTheWholePicture_data();
    void screenShowsTheWholePicture();
    void newPointPaintsItsSurroundings();
    void pointThatGoesIsPaintedOver();
    void pointBeyondTheBorderPaintsNothing();
    void manyPointsBeyondTheBorderPaintAll();
    void newColourPaintsAll();
    void changedItemPaintsAll();
    void changedItemWithoutNewPointsPaintsAll();
    void newScalePaintsAll();
    void canvasWithABackingStorePaintsAll();

private:
    void usePlot(IncrementalPlot* newPlot);
    void useStartedPlot(const QRectF& shownPart);
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
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    usePlot(new IncrementalPlot(window.get()));
    static_cast<QwtPlotCanvas*>(plot->canvas())
        ->setPaintAttribute(QwtPlotCanvas::BackingStore, false);
}

/// Instead of the one that was used before.
void TestChangedPart::usePlot(IncrementalPlot* newPlot)
{
    painted.reset();
    delete plot;
    plot = newPlot;
    plot->setCanvasBackground(QColor("lightblue"));
    plot->setKeepAllPoints(true);
    plot->setSymbolSize(QSize(3, 3));
    for (const int axis : {QwtPlot::xBottom, QwtPlot::yLeft})
        plot->setAxisScale(axis, -range, range);
    plot->addCurves(3);
    plot->setCurveColor(Qt::red, 0);
    plot->setCurveColor(Qt::darkGreen, 1);
    plot->resize(plotSize);
    plot->show();
    QCoreApplication::processEvents();
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
    plot = nullptr;
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

/// A plot of the window: with grid, lines through its middle, and, zoomed, scroll bars.
void TestChangedPart::useStartedPlot(const QRectF& shownPart)
{
    auto* started = new GenericPlot(window.get());
    started->drawCrossHairs();
    started->setKeepAllPoints(true);
    started->start();
    usePlot(started);
    if (!shownPart.isNull())
        started->canvas()->findChild<Zoomer*>()->zoom(shownPart);
    QCoreApplication::processEvents();
}

void TestChangedPart::screenHasTheRatioThatIsAskedFor()
{
    QCOMPARE(plot->devicePixelRatioF(), qEnvironmentVariable("QT_SCALE_FACTOR").toDouble());
}

void TestChangedPart::changeThatIsNotPaintedIsSeen()
{
    plot->appendData(0, QPointF(1.0, 1.0));
    const QImage before = screen();
    QVERIFY(differingPixels(before, screenPaintedAnew()) > 0);
}

void TestChangedPart::screenShowsTheWholePicture_data()
{
    QTest::addColumn<bool>("isStarted");
    QTest::addColumn<QRectF>("shownPart");
    QTest::addColumn<bool>("keepsAll");
    QTest::addColumn<double>("spread");
    const QRectF all;
    const QRectF part(-1.0, -0.5, 2.0, 2.0);
    for (const bool keepsAll : {true, false}) {
        for (const double spread : {0.3, 1.2 * range}) {
            const QByteArray name = QByteArray(keepsAll ? "all points" : "few points")
                                    + (spread < 1.0 ? ", near" : ", far");
            const auto row = [&](const char* kind, bool isStarted, const QRectF& shownPart) {
                QTest::addRow("%s, %s", name.constData(), kind)
                    << isStarted << shownPart << keepsAll << spread;
            };
            row("bare", false, all);
            row("started", true, all);
            row("zoomed", true, part);
        }
    }
}

void TestChangedPart::screenShowsTheWholePicture()
{
    QFETCH(bool, isStarted);
    QFETCH(QRectF, shownPart);
    QFETCH(bool, keepsAll);
    QFETCH(double, spread);
    constexpr int replots = 40;
    if (isStarted)
        useStartedPlot(shownPart);
    // Between two pixels the corners of frames look different after their first painting.
    screenPaintedAnew();
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

void TestChangedPart::changedItemWithoutNewPointsPaintsAll()
{
    plot->setItemsChanged();
    plot->replotIfChanged();
    QCOMPARE(painted->take().boundingRect(), plot->canvas()->contentsRect());
    plot->replotIfChanged();
    QVERIFY(painted->take().isEmpty());
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
