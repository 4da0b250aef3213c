#include "ordinarypicture.h"
#include "plots/dotlayer.h"
#include "support/widgetcheck.h"

#include <QPainter>
#include <QScopeGuard>
#include <QScreen>
#include <QTimer>
#include <qwt_plot_canvas.h>

#include <random>

namespace {

constexpr double range = 5.0;
/// More than a curve that does not keep all points may hold.
constexpr int someDots = 40;
constexpr int manyDots = 700;

const QList<QColor> colours = {Qt::red, Qt::darkGreen, QColor(0, 0, 254), Qt::magenta};

/// Points of which a third lies beyond the border, some exactly on it.
class Scatter
{
public:
    QPointF next()
    {
        ++count;
        if (count % 20 == 0)
            return {range, spread(generator)};
        if (count % 20 == 10)
            return {spread(generator), -range};
        return {spread(generator), spread(generator)};
    }

private:
    std::mt19937 generator{815};
    std::uniform_real_distribution<double> spread{-1.2 * range, 1.2 * range};
    int count = 0;
};

int pixelsOf(const QColor& colour, const QImage& picture)
{
    int count = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            count += picture.pixelColor(x, y) == colour ? 1 : 0;
    }
    return count;
}

} // namespace

/// What a plot shows, against the library's own drawing of the same points. Runs once for each of
/// several device pixel ratios.
class TestDotPictures final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void screenHasTheRatioThatIsAskedFor();
    void oneDotTooFarIsSeen();
    void curvesInTheWrongOrderAreSeen();

    void dotsOfAllSizesAreShown_data();
    void dotsOfAllSizesAreShown();
    void dotsAreShownWhereverTheCanvasLies_data();
    void dotsAreShownWhereverTheCanvasLies();
    void noDotsAreShown();
    void dotsThatAreAppendedBetweenPicturesAreShown();
    void dotsOfLowerCurvesStayBelowWhenTheyComeLater();
    void dotsFollowANewScale();
    void dotsFollowANewSize();
    void dotsTakeANewColour();
    void dotsTakeANewSymbolSize();
    void clearedCurveThatIsFilledAgainShowsItsNewDots();
    void asManyNewDotsAsWereClearedAreShown();
    void hiddenCurveIsNotShownAndComesBack();
    void curvesFollowANewOrder();
    void dotsStandOnANewBackground();
    void curveThatIsAddedBelowIsShown();
    void removedCurveLeavesTheOthers();
    void eachPictureAddsTheDotsAppendedSinceTheOneBefore();
    void longHistoryComesBackPieceByPiece();
    void curvesThatKeepFewDotsShowTheNewest();
    void itemBetweenTwoCurvesKeepsItsPlace();
    void softDotsAreShown();
    void translucentDotsAreShown();
    void twoColouredDotsAreShown();
    void stoppedPlotShowsTheSameFromItsBackingStore();
    void windowShowsWhatTheLibraryWouldShow_data();
    void windowShowsWhatTheLibraryWouldShow();
    void partOfTheCanvasIsPainted();
    void plotDrawnToAnotherSizeIsWhole();

private:
    void addCurves(int count);
    void appendDots(int curve, int count);
    void appendToAll(int count);
    void verifyPicture();
    void verifyAfterMoreDots();
    QwtPlotCurve& curve(int index) const { return const_cast<QwtPlotCurve&>(plot->curve(index)); }

    std::unique_ptr<IncrementalPlot> plot;
    Scatter scatter;
};

void TestDotPictures::init()
{
    scatter = Scatter();
    plot = std::make_unique<IncrementalPlot>(nullptr);
    plot->setKeepAllPoints(true);
    plot->setCanvasBackground(QColor("lightblue"));
    static_cast<QwtPlotCanvas*>(plot->canvas())
        ->setPaintAttribute(QwtPlotCanvas::BackingStore, false);
    for (const int axis : {QwtPlot::xBottom, QwtPlot::yLeft})
        plot->setAxisScale(axis, -range, range);
    plot->setSymbolSize(QSize(3, 3));
    plot->resize(240, 200);
    plot->replot();
}

void TestDotPictures::cleanup()
{
    plot.reset();
    QCOMPARE(leftWidgets(), QString());
}

void TestDotPictures::addCurves(int count)
{
    for (int i = 0; i < count; ++i) {
        const int index = plot->curveCount();
        plot->addCurve(index);
        plot->setCurveColor(colours.at(index % colours.size()), index);
    }
}

void TestDotPictures::appendDots(int curve, int count)
{
    for (int i = 0; i < count; ++i)
        plot->appendData(curve, scatter.next());
}

void TestDotPictures::appendToAll(int count)
{
    for (int curve = 0; curve < plot->curveCount(); ++curve)
        appendDots(curve, count);
}

void TestDotPictures::verifyPicture()
{
    plot->replot();
    const QImage shown = pictureOf(*plot);
    const QImage expected = ordinaryPictureOf(*plot);
    const int differing = differingPixels(shown, expected);
    if (differing != 0)
        keepPictures(shown, expected);
    QCOMPARE(differing, 0);
}

// What is kept of the picture so far must fit what comes next.
void TestDotPictures::verifyAfterMoreDots()
{
    verifyPicture();
    appendToAll(someDots);
    verifyPicture();
}

void TestDotPictures::screenHasTheRatioThatIsAskedFor()
{
    QCOMPARE(plot->devicePixelRatioF(), qEnvironmentVariable("QT_SCALE_FACTOR").toDouble());
    QCOMPARE(plot->grab().width(), qRound(plot->width() * plot->devicePixelRatioF()));
}

void TestDotPictures::oneDotTooFarIsSeen()
{
    addCurves(1);
    appendDots(0, someDots);
    plot->appendData(0, QPointF(0.0, 0.0));
    plot->replot();
    OrdinaryPlot wrong(*plot);
    wrong.movePoint(0);
    QVERIFY(differingPixels(pictureOf(*plot), pictureOf(wrong)) > 0);
}

void TestDotPictures::curvesInTheWrongOrderAreSeen()
{
    addCurves(2);
    appendToAll(manyDots);
    plot->replot();
    OrdinaryPlot wrong(*plot);
    const QwtPlotItemList items = wrong.itemList(QwtPlotItem::Rtti_PlotCurve);
    items.first()->setZ(items.last()->z() + 1.0);
    QVERIFY(differingPixels(pictureOf(*plot), pictureOf(wrong)) > 0);
}

void TestDotPictures::dotsOfAllSizesAreShown_data()
{
    QTest::addColumn<QSize>("size");
    for (const int width : {1, 2, 3, 4, 5, 8})
        QTest::addRow("%d", width) << QSize(width, width);
    QTest::newRow("wide") << QSize(6, 2);
}

void TestDotPictures::dotsOfAllSizesAreShown()
{
    QFETCH(QSize, size);
    plot->setSymbolSize(size);
    addCurves(3);
    appendToAll(manyDots);
    verifyAfterMoreDots();
}

void TestDotPictures::dotsAreShownWhereverTheCanvasLies_data()
{
    QTest::addColumn<int>("margin");
    for (const int margin : {0, 1, 2, 3, 5})
        QTest::addRow("%d", margin) << margin;
}

void TestDotPictures::dotsAreShownWhereverTheCanvasLies()
{
    QFETCH(int, margin);
    addCurves(2);
    appendToAll(manyDots);
    verifyPicture();
    plot->setContentsMargins(margin, 2 * margin, 0, 0);
    verifyAfterMoreDots();
}

void TestDotPictures::noDotsAreShown()
{
    verifyPicture();
    addCurves(2);
    verifyPicture();
}

void TestDotPictures::dotsThatAreAppendedBetweenPicturesAreShown()
{
    addCurves(4);
    for (int count : {0, 1, 1, 30, 0, 5, 200, 5}) {
        appendToAll(count);
        verifyPicture();
    }
}

void TestDotPictures::dotsOfLowerCurvesStayBelowWhenTheyComeLater()
{
    addCurves(3);
    appendDots(2, manyDots);
    verifyPicture();
    appendDots(0, manyDots);
    verifyPicture();
    appendDots(1, manyDots);
    verifyPicture();
}

void TestDotPictures::dotsFollowANewScale()
{
    addCurves(3);
    appendToAll(manyDots);
    verifyPicture();
    plot->setAxisScale(QwtPlot::xBottom, -1.0, 2.5);
    verifyPicture();
    plot->setAxisScale(QwtPlot::yLeft, 2.0, -7.0);
    verifyAfterMoreDots();
}

void TestDotPictures::dotsFollowANewSize()
{
    addCurves(3);
    appendToAll(manyDots);
    verifyPicture();
    plot->resize(310, 180);
    verifyPicture();
    plot->enableAxis(QwtPlot::yLeft, false);
    verifyAfterMoreDots();
}

void TestDotPictures::dotsTakeANewColour()
{
    addCurves(3);
    appendToAll(manyDots);
    verifyPicture();
    plot->setCurveColor(Qt::yellow, 1);
    verifyPicture();
    appendDots(1, 1);
    verifyAfterMoreDots();
}

void TestDotPictures::dotsTakeANewSymbolSize()
{
    addCurves(3);
    appendToAll(manyDots);
    verifyPicture();
    plot->setSymbolSize(QSize(6, 6));
    appendDots(1, 1);
    verifyPicture();
    plot->setSymbolSize(QSize(1, 1));
    verifyAfterMoreDots();
}

void TestDotPictures::clearedCurveThatIsFilledAgainShowsItsNewDots()
{
    addCurves(3);
    appendToAll(manyDots);
    verifyPicture();
    plot->clearCurve(1);
    verifyPicture();
    appendDots(1, someDots);
    verifyPicture();
    plot->clearAllCurves();
    verifyAfterMoreDots();
}

// Nothing is painted between the clearing and the last of the new dots.
void TestDotPictures::asManyNewDotsAsWereClearedAreShown()
{
    addCurves(2);
    appendToAll(someDots);
    verifyPicture();
    plot->clearCurve(0);
    appendDots(0, someDots);
    verifyPicture();
    plot->clearAllCurves();
    appendToAll(someDots + 5);
    verifyAfterMoreDots();
}

void TestDotPictures::hiddenCurveIsNotShownAndComesBack()
{
    addCurves(3);
    appendToAll(manyDots);
    verifyPicture();
    curve(1).hide();
    verifyAfterMoreDots();
    curve(1).show();
    verifyAfterMoreDots();
}

void TestDotPictures::curvesFollowANewOrder()
{
    addCurves(3);
    appendToAll(manyDots);
    verifyPicture();
    curve(0).setZ(curve(2).z() + 1.0);
    verifyAfterMoreDots();
}

void TestDotPictures::dotsStandOnANewBackground()
{
    addCurves(2);
    appendToAll(manyDots);
    verifyPicture();
    plot->setCanvasBackground(QColor("azure"));
    verifyAfterMoreDots();
}

void TestDotPictures::curveThatIsAddedBelowIsShown()
{
    addCurves(2);
    appendToAll(manyDots);
    verifyPicture();
    addCurves(1);
    curve(2).setZ(curve(0).z() - 1.0);
    verifyAfterMoreDots();
}

void TestDotPictures::removedCurveLeavesTheOthers()
{
    addCurves(3);
    appendToAll(manyDots);
    verifyPicture();
    plot->clearCurve(1);
    plot->removeCurve(1);
    verifyAfterMoreDots();
}

void TestDotPictures::eachPictureAddsTheDotsAppendedSinceTheOneBefore()
{
    addCurves(3);
    appendToAll(manyDots);
    verifyPicture();
    for (const int count : {1, 0, 5, 50}) {
        appendToAll(count);
        plot->replotIfChanged();
        pictureOf(*plot);
        QCOMPARE(plot->dotLayer().dotsAdded(), std::size_t(3 * count));
    }
}

// Whatever else waits in the event loop gets its turn between the pieces.
void TestDotPictures::longHistoryComesBackPieceByPiece()
{
    constexpr int pieces = 6;
    addCurves(2);
    appendToAll(pieces * int(DotLayer::usualDotsPerSlice) / 2);
    plot->show();
    QVERIFY(QTest::qWaitForWindowExposed(plot.get()));
    QTRY_VERIFY(plot->dotLayer().isComplete());

    const DotLayer& layer = plot->dotLayer();
    const QSignalSpy asked(&layer, &DotLayer::incomplete);
    bool wasCompleteBetween = true;
    connect(&layer, &DotLayer::incomplete, plot.get(), [&] {
        if (asked.count() == 1)
            QTimer::singleShot(0, plot.get(), [&] { wasCompleteBetween = layer.isComplete(); });
    });
    plot->resize(300, 220);
    QTRY_COMPARE(asked.count(), pieces - 1);
    QTRY_VERIFY(layer.isComplete());
    QVERIFY(!wasCompleteBetween);
    verifyPicture();
}

void TestDotPictures::curvesThatKeepFewDotsShowTheNewest()
{
    addCurves(3);
    appendToAll(manyDots);
    verifyPicture();
    plot->setKeepAllPoints(false);
    for (int count : {4, 6, 1, 5, 300}) {
        appendToAll(count);
        verifyPicture();
    }
    plot->setKeepAllPoints(true);
    verifyAfterMoreDots();
}

void TestDotPictures::itemBetweenTwoCurvesKeepsItsPlace()
{
    class Bar final : public QwtPlotItem
    {
    public:
        void draw(QPainter* painter, const QwtScaleMap&, const QwtScaleMap&,
                  const QRectF& canvas) const override
        {
            painter->fillRect(canvas.adjusted(30.0, 10.0, -30.0, -30.0), Qt::white);
        }
    };

    addCurves(2);
    appendToAll(manyDots);
    verifyPicture();
    const QColor lower = curve(0).symbol()->brush().color();
    Bar bar;
    bar.setZ(curve(0).z() + 1.0);
    bar.attach(plot.get());
    curve(1).setZ(bar.z() + 1.0);
    plot->replot();

    OrdinaryPlot ordinary(*plot);
    Bar ordinaryBar;
    ordinaryBar.setZ(bar.z());
    ordinaryBar.attach(&ordinary);
    QCOMPARE(differingPixels(pictureOf(*plot), pictureOf(ordinary)), 0);
    const QImage shown = pictureOf(*plot);
    QVERIFY(shown.pixelColor(shown.rect().center()) != lower);
    bar.detach();
    ordinaryBar.detach();
}

void TestDotPictures::softDotsAreShown()
{
    addCurves(3);
    curve(1).setRenderHint(QwtPlotItem::RenderAntialiased);
    appendToAll(manyDots);
    verifyAfterMoreDots();
}

void TestDotPictures::translucentDotsAreShown()
{
    addCurves(3);
    appendToAll(manyDots);
    verifyPicture();
    plot->setCurveColor(QColor(200, 0, 0, 90), 1);
    appendDots(1, 1);
    verifyAfterMoreDots();
}

void TestDotPictures::twoColouredDotsAreShown()
{
    addCurves(2);
    appendToAll(manyDots);
    verifyPicture();
    curve(1).setSymbol(
        new QwtSymbol(QwtSymbol::Ellipse, QBrush(Qt::white), QPen(Qt::black), QSize(7, 7)));
    verifyPicture();
    curve(0).setPen(QColor(Qt::white), 5.0);
    verifyPicture();
}

void TestDotPictures::stoppedPlotShowsTheSameFromItsBackingStore()
{
    addCurves(2);
    appendToAll(manyDots);
    verifyPicture();
    static_cast<QwtPlotCanvas*>(plot->canvas())
        ->setPaintAttribute(QwtPlotCanvas::BackingStore, true);
    plot->replot();
    verifyAfterMoreDots();
}

void TestDotPictures::windowShowsWhatTheLibraryWouldShow_data()
{
    QTest::addColumn<QPoint>("place");
    QTest::newRow("in the corner") << QPoint(0, 0);
    QTest::newRow("inside") << QPoint(7, 2);
    QTest::newRow("further inside") << QPoint(13, 21);
}

// The other pictures are painted for the test. This one is what painting left on the screen, after
// points came one replot after the other.
void TestDotPictures::windowShowsWhatTheLibraryWouldShow()
{
    QFETCH(QPoint, place);
    addCurves(3);
    const auto shown = [place](QwtPlot& subject) {
        auto window = std::make_unique<QWidget>();
        // As many device pixels of a window can be looked at as it has places.
        window->resize(600, 520);
        subject.setParent(window.get());
        subject.move(place);
        subject.show();
        window->show();
        return window;
    };
    const auto screenOf = [](QWidget& window) {
        QCoreApplication::processEvents();
        return window.screen()->grabWindow(window.winId()).toImage();
    };

    const auto window = shown(*plot);
    const auto leaveWindow = qScopeGuard([this] { plot->setParent(nullptr); });
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    for (const int count : {manyDots, 1, 5, 5}) {
        appendToAll(count);
        plot->replotIfChanged();
        QCoreApplication::processEvents();
    }
    const QImage picture = screenOf(*window);

    auto ordinary = std::make_unique<OrdinaryPlot>(*plot);
    const auto ordinaryWindow = shown(*ordinary);
    const auto leaveOrdinaryWindow = qScopeGuard([&ordinary] { ordinary->setParent(nullptr); });
    QVERIFY(QTest::qWaitForWindowExposed(ordinaryWindow.get()));
    const QImage expected = screenOf(*ordinaryWindow);
    QVERIFY(!picture.isNull());
    QCOMPARE(plot->dotLayer().dotsAdded(), std::size_t(15));
    const QRect canvas(plot->canvas()->mapTo(window.get(), QPoint(0, 0))
                           * plot->devicePixelRatioF(),
                       plot->canvas()->size() * plot->devicePixelRatioF());
    QVERIFY(pixelsOf(colours.first(), expected.copy(canvas)) > someDots);
    QCOMPARE(differingPixels(picture.copy(canvas), expected.copy(canvas)), 0);
}

// As after another window covered a part of it. The library leaves out dots whose middle is not
// painted, so that the edge of the part is not looked at.
void TestDotPictures::partOfTheCanvasIsPainted()
{
    addCurves(2);
    appendToAll(manyDots);
    plot->grab();
    const auto painted = [this](const QRect& part) {
        QImage image(plot->canvas()->size() * plot->devicePixelRatioF(), QImage::Format_RGB32);
        image.setDevicePixelRatio(plot->devicePixelRatioF());
        image.fill(Qt::white);
        plot->canvas()->render(&image, part.topLeft(), part);
        image.setDevicePixelRatio(1.0);
        return image;
    };
    const QRect part(20, 30, 60, 44);
    constexpr int edge = 4;
    const QRect inner = part.adjusted(edge, edge, -edge, -edge);
    const auto innerOf = [this, inner](const QImage& image) {
        const double ratio = plot->devicePixelRatioF();
        return image.copy(QRect(inner.topLeft() * ratio, inner.size() * ratio));
    };

    const QImage whole = painted(plot->canvas()->rect());
    QCOMPARE(differingPixels(innerOf(painted(part)), innerOf(whole)), 0);
    appendToAll(someDots);
    painted(part);
    verifyPicture();
}

// As an export draws it: onto a larger picture, scaled.
void TestDotPictures::plotDrawnToAnotherSizeIsWhole()
{
    addCurves(2);
    appendToAll(manyDots);
    verifyPicture();
    const auto drawn = [](QwtPlot& subject) {
        QImage image(subject.canvas()->size() * 3, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.scale(3.0, 3.0);
        subject.drawCanvas(&painter);
        return image;
    };
    OrdinaryPlot ordinary(*plot);
    ordinary.grab();
    QCOMPARE(differingPixels(drawn(*plot), drawn(ordinary)), 0);
    verifyPicture();
}

QTEST_MAIN(TestDotPictures)
#include "tst_dotpictures.moc"
