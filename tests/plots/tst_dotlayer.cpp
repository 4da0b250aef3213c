#include "plots/dotcurve.h"
#include "plots/dotlayer.h"

#include <QImage>
#include <QPainter>
#include <QPicture>
#include <QtTest>
#include <qwt_symbol.h>

#include <functional>
#include <limits>
#include <random>

namespace {

constexpr QSize canvasPlaces(120, 80);
constexpr std::size_t sliceLength = 100;
constexpr int manyDots = 450;

QwtScaleMap scale(double min, double max, double from, double to)
{
    QwtScaleMap map;
    map.setScaleInterval(min, max);
    map.setPaintInterval(from, to);
    return map;
}

/// A canvas of 120 x 80 places with curves on it. Its scales give each place a unit.
class Canvas
{
public:
    explicit Canvas(int curveCount, std::size_t slice = 100000)
        : layer(slice)
    {
        const QList<QColor> colours = {Qt::red, Qt::blue, Qt::darkGreen};
        for (int i = 0; i < curveCount; ++i)
            addCurve(colours.at(i % colours.size()));
    }

    void addCurve(const QColor& colour)
    {
        curves.push_back(std::make_unique<DotCurve>(QString(), layer));
        setColour(int(curves.size()) - 1, colour);
    }

    void setColour(int curve, const QColor& colour, const QSize& size = QSize(3, 3))
    {
        setSymbol(curve, new QwtSymbol(QwtSymbol::Ellipse, colour, QPen(colour), size));
    }
    void setSymbol(int curve, QwtSymbol* symbol) { at(curve).setSymbol(symbol); }

    DotCurve& at(int curve) { return *curves[std::size_t(curve)]; }
    void append(int curve, const QPointF& point) { at(curve).samples().append(point); }
    void appendDots(int curve, int count)
    {
        for (int i = 0; i < count; ++i)
            append(curve, {x(generator), y(generator)});
    }

    /// The picture that the layer leads to.
    QImage paint()
    {
        return painted([this](QPainter& painter) {
            std::vector<DotLayer::Member> members;
            for (const auto& curve : curves)
                members.push_back({curve.get(), xMap, yMap});
            layer.beginPicture(painter, rect, members);
            for (const auto& curve : curves)
                curve->drawSeries(&painter, xMap, yMap, rect, 0, -1);
            layer.endPicture();
        });
    }
    /// The library's own picture.
    QImage ordinary()
    {
        return painted([this](QPainter& painter) {
            for (const auto& curve : curves)
                curve->QwtPlotCurve::drawSeries(&painter, xMap, yMap, rect, 0, -1);
        });
    }

    DotLayer layer;
    double ratio = 1.0;
    QImage::Format format = QImage::Format_RGB32;
    std::function<void(QPainter&)> prepare = [](QPainter&) {};
    QwtScaleMap xMap = scale(0.0, canvasPlaces.width(), 0.0, canvasPlaces.width());
    QwtScaleMap yMap = scale(0.0, canvasPlaces.height(), canvasPlaces.height(), 0.0);
    QRectF rect{QPointF(0.0, 0.0), canvasPlaces};

private:
    template <typename Draw>
    QImage painted(const Draw& draw)
    {
        QImage image(canvasPlaces * ratio, format);
        image.setDevicePixelRatio(ratio);
        image.fill(Qt::white);
        QPainter painter(&image);
        prepare(painter);
        painter.setClipRect(rect);
        draw(painter);
        return image;
    }

    std::vector<std::unique_ptr<DotCurve>> curves;
    std::mt19937 generator{99};
    std::uniform_real_distribution<double> x{-10.0, canvasPlaces.width() + 10.0};
    std::uniform_real_distribution<double> y{-10.0, canvasPlaces.height() + 10.0};
};

constexpr QRgb white = 0xffffffff;

} // namespace

Q_DECLARE_METATYPE(std::function<void(Canvas&)>)

class TestDotLayer final : public QObject
{
    Q_OBJECT

private slots:
    void pictureIsThatOfTheLibrary_data();
    void pictureIsThatOfTheLibrary();
    void dotsAtTheBorderAreThoseOfTheLibrary_data();
    void dotsAtTheBorderAreThoseOfTheLibrary();
    void dotThatIsNoPlaceIsLeftOut_data();
    void dotThatIsNoPlaceIsLeftOut();

    void eachPictureAddsTheDotsAppendedSinceTheOneBefore();
    void curveAboveTheOthersIsAddedToThem();
    void changeBeginsThePictureAnew_data();
    void changeBeginsThePictureAnew();
    void marksAloneAreThoseOfTheLibrary_data();
    void marksAloneAreThoseOfTheLibrary();
    void pictureFollowsAPlaceBetweenPixels();
    void curveWithoutEllipsesShowsItsMarks();
    void fewDotsAreDrawnByTheCurves();
    void curvesDrawThemselvesWhereTheLayerIsNotExact_data();
    void curvesDrawThemselvesWhereTheLayerIsNotExact();
    void anotherPaintEngineIsLeftToTheCurves();
    void partOfACurveIsDrawnByTheCurve();
    void curveDrawsItselfOutsideOfAPicture();

    void longHistoryIsAddedInSlices();
    void newestDotsComeFirst();
    void curvesShareASlice();
    void newDotsAreAddedBesideAHistory();
    void moreNewDotsThanASliceAreAddedInSlices();
    void picturesWithoutMissingDotsAskForNothing();
};

void TestDotLayer::pictureIsThatOfTheLibrary_data()
{
    QTest::addColumn<double>("ratio");
    QTest::addColumn<QSize>("size");
    for (const double ratio : {1.0, 1.25, 1.5, 1.75, 2.0}) {
        for (const QSize size : {QSize(1, 1), QSize(2, 2), QSize(3, 3), QSize(7, 4)})
            QTest::addRow("%g, %d x %d", ratio, size.width(), size.height()) << ratio << size;
    }
    QTest::newRow("3, 3 x 3") << 3.0 << QSize(3, 3);
}

void TestDotLayer::pictureIsThatOfTheLibrary()
{
    QFETCH(double, ratio);
    QFETCH(QSize, size);
    Canvas canvas(3);
    canvas.ratio = ratio;
    for (int curve = 0; curve < 3; ++curve) {
        canvas.setColour(curve, canvas.at(curve).symbol()->brush().color(), size);
        canvas.appendDots(curve, manyDots);
    }
    QCOMPARE(canvas.paint(), canvas.ordinary());
    QCOMPARE(canvas.layer.dotsAdded(), std::size_t(3 * manyDots));
}

void TestDotLayer::dotsAtTheBorderAreThoseOfTheLibrary_data()
{
    QTest::addColumn<double>("offset");
    for (const double offset : {-1.0, -0.51, -0.5, -0.49, 0.0, 0.49, 0.5, 0.51, 1.0})
        QTest::addRow("%g", offset) << offset;
}

void TestDotLayer::dotsAtTheBorderAreThoseOfTheLibrary()
{
    QFETCH(double, offset);
    Canvas canvas(1);
    for (int i = 0; i < 20; ++i) {
        canvas.append(0, {offset, 4.0 * i});
        canvas.append(0, {canvasPlaces.width() + offset, 4.0 * i});
        canvas.append(0, {6.0 * i, offset});
        canvas.append(0, {6.0 * i, canvasPlaces.height() + offset});
    }
    QCOMPARE(canvas.paint(), canvas.ordinary());
    QVERIFY(canvas.layer.dotsAdded() > 0);
}

void TestDotLayer::dotThatIsNoPlaceIsLeftOut_data()
{
    QTest::addColumn<double>("value");
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity();
    QTest::newRow("far away") << 1e18;
    QTest::newRow("far below") << -1e18;
}

void TestDotLayer::dotThatIsNoPlaceIsLeftOut()
{
    QFETCH(double, value);
    Canvas canvas(1);
    canvas.appendDots(0, manyDots);
    const QImage before = canvas.paint();
    canvas.append(0, {value, 40.0});
    canvas.append(0, {40.0, value});
    QCOMPARE(canvas.paint(), before);
    QCOMPARE(canvas.layer.dotsAdded(), std::size_t(2));
}

void TestDotLayer::eachPictureAddsTheDotsAppendedSinceTheOneBefore()
{
    Canvas canvas(3);
    for (int curve = 0; curve < 3; ++curve)
        canvas.appendDots(curve, manyDots);
    canvas.paint();
    for (const int count : {1, 0, 5, 80}) {
        canvas.appendDots(0, count);
        canvas.appendDots(2, 2 * count);
        QCOMPARE(canvas.paint(), canvas.ordinary());
        QCOMPARE(canvas.layer.dotsAdded(), std::size_t(3 * count));
    }
}

void TestDotLayer::curveAboveTheOthersIsAddedToThem()
{
    Canvas canvas(2);
    canvas.appendDots(0, manyDots);
    canvas.appendDots(1, manyDots);
    canvas.paint();
    canvas.addCurve(Qt::magenta);
    canvas.appendDots(2, 30);
    QCOMPARE(canvas.paint(), canvas.ordinary());
    QCOMPARE(canvas.layer.dotsAdded(), std::size_t(30));
}

void TestDotLayer::changeBeginsThePictureAnew_data()
{
    using Change = std::function<void(Canvas&)>;
    QTest::addColumn<Change>("change");
    const auto row = [](const char* name, const Change& change) { QTest::newRow(name) << change; };
    row("x scale", [](Canvas& canvas) { canvas.xMap = scale(10.0, 90.0, 0.0, 120.0); });
    row("y scale", [](Canvas& canvas) { canvas.yMap = scale(0.0, 80.0, 0.0, 80.0); });
    row("density", [](Canvas& canvas) { canvas.ratio = 1.5; });
    row("place", [](Canvas& canvas) {
        canvas.ratio = 1.25;
        canvas.prepare = [](QPainter& painter) { painter.translate(3.0, 1.0); };
    });
    row("canvas", [](Canvas& canvas) { canvas.rect = QRectF(10.0, 10.0, 80.0, 60.0); });
    row("colour", [](Canvas& canvas) { canvas.setColour(1, Qt::magenta); });
    row("symbol size", [](Canvas& canvas) { canvas.setColour(1, Qt::blue, QSize(5, 5)); });
    row("no ellipse", [](Canvas& canvas) { canvas.at(0).setSymbol(nullptr); });
    row("other samples", [](Canvas& canvas) {
        canvas.at(1).samples().clear();
        canvas.appendDots(1, manyDots);
    });
    row("oldest sample", [](Canvas& canvas) {
        canvas.at(1).samples().removeOldest();
        canvas.appendDots(1, 1);
    });
}

void TestDotLayer::changeBeginsThePictureAnew()
{
    using Change = std::function<void(Canvas&)>;
    QFETCH(Change, change);
    Canvas canvas(2);
    canvas.appendDots(0, manyDots);
    canvas.appendDots(1, manyDots);
    const QImage before = canvas.paint();
    change(canvas);
    const QImage after = canvas.paint();
    QCOMPARE(after, canvas.ordinary());
    QVERIFY(after != before);
    QCOMPARE(canvas.layer.dotsAdded(), std::size_t(2 * manyDots));
}

void TestDotLayer::marksAloneAreThoseOfTheLibrary_data()
{
    QTest::addColumn<double>("ratio");
    for (const double ratio : {1.0, 1.25, 1.5, 1.75, 2.0, 2.5, 3.0, 4.0})
        QTest::addRow("%g", ratio) << ratio;
}

// On a sparse grid that meets every place of the canvas in turn.
void TestDotLayer::marksAloneAreThoseOfTheLibrary()
{
    QFETCH(double, ratio);
    constexpr int spacing = 4;
    for (int turn = 0; turn < spacing * spacing; ++turn) {
        Canvas canvas(1);
        canvas.ratio = ratio;
        canvas.setSymbol(0, nullptr);
        for (int x = turn % spacing; x <= canvasPlaces.width(); x += spacing) {
            for (int y = turn / spacing; y <= canvasPlaces.height(); y += spacing)
                canvas.append(0, QPointF(x, y));
        }
        QCOMPARE(canvas.paint(), canvas.ordinary());
    }
}

// A step aside by one place is a step by a pixel and a quarter.
void TestDotLayer::pictureFollowsAPlaceBetweenPixels()
{
    Canvas canvas(2);
    canvas.ratio = 1.25;
    canvas.appendDots(0, manyDots);
    canvas.appendDots(1, manyDots);
    canvas.paint();
    for (const QPointF& step :
         {QPointF(1.0, 0.0), QPointF(2.0, 0.0), QPointF(2.0, 1.0), QPointF(2.0, 2.0)}) {
        canvas.prepare = [step](QPainter& painter) { painter.translate(step); };
        QCOMPARE(canvas.paint(), canvas.ordinary());
        QCOMPARE(canvas.layer.dotsAdded(), std::size_t(2 * manyDots));
    }
}

void TestDotLayer::curveWithoutEllipsesShowsItsMarks()
{
    Canvas canvas(2);
    canvas.setSymbol(1, nullptr);
    canvas.appendDots(0, manyDots);
    canvas.appendDots(1, manyDots);
    const QImage before = canvas.paint();
    QCOMPARE(before, canvas.ordinary());
    canvas.at(1).setPen(Qt::yellow);
    const QImage after = canvas.paint();
    QCOMPARE(after, canvas.ordinary());
    QVERIFY(after != before);
}

void TestDotLayer::fewDotsAreDrawnByTheCurves()
{
    Canvas canvas(2);
    for (int curve = 0; curve < 2; ++curve)
        canvas.appendDots(curve, int(DotLayer::fewDots));
    QCOMPARE(canvas.paint(), canvas.ordinary());
    QCOMPARE(canvas.layer.dotsAdded(), std::size_t(0));

    canvas.appendDots(1, 1);
    QCOMPARE(canvas.paint(), canvas.ordinary());
    QCOMPARE(canvas.layer.dotsAdded(), 2 * DotLayer::fewDots + 1);
}

void TestDotLayer::curvesDrawThemselvesWhereTheLayerIsNotExact_data()
{
    using Change = std::function<void(Canvas&)>;
    QTest::addColumn<Change>("change");
    const auto row = [](const char* name, const Change& change) { QTest::newRow(name) << change; };
    row("translucent", [](Canvas& canvas) { canvas.setColour(0, QColor(255, 0, 0, 100)); });
    row("translucent mark", [](Canvas& canvas) { canvas.at(0).setPen(QColor(0, 0, 0, 100)); });
    row("two colours", [](Canvas& canvas) {
        canvas.setSymbol(
            0, new QwtSymbol(QwtSymbol::Ellipse, QBrush(Qt::yellow), QPen(Qt::black), QSize(7, 7)));
    });
    row("another symbol", [](Canvas& canvas) {
        canvas.setSymbol(
            0, new QwtSymbol(QwtSymbol::Cross, QBrush(Qt::red), QPen(Qt::red), QSize(7, 7)));
    });
    row("another style", [](Canvas& canvas) { canvas.at(0).setStyle(QwtPlotCurve::Lines); });
    row("wide marks", [](Canvas& canvas) { canvas.at(0).setPen(Qt::black, 9.0); });
    row("filled", [](Canvas& canvas) { canvas.at(0).setBrush(Qt::yellow); });
    row("unfiltered",
        [](Canvas& canvas) { canvas.at(0).setPaintAttribute(QwtPlotCurve::FilterPoints, false); });
    row("scaled", [](Canvas& canvas) {
        canvas.prepare = [](QPainter& painter) { painter.scale(1.5, 1.5); };
    });
    row("turned",
        [](Canvas& canvas) { canvas.prepare = [](QPainter& painter) { painter.rotate(20.0); }; });
    row("half a place aside", [](Canvas& canvas) {
        canvas.prepare = [](QPainter& painter) { painter.translate(0.5, 0.0); };
    });
    row("half a place below", [](Canvas& canvas) {
        canvas.prepare = [](QPainter& painter) { painter.translate(0.0, 0.5); };
    });
    row("faded", [](Canvas& canvas) {
        canvas.prepare = [](QPainter& painter) { painter.setOpacity(0.5); };
    });
    row("other composition", [](Canvas& canvas) {
        canvas.prepare = [](QPainter& painter) {
            painter.setCompositionMode(QPainter::CompositionMode_Multiply);
        };
    });
    row("unusual density", [](Canvas& canvas) { canvas.ratio = 1.1; });
}

void TestDotLayer::curvesDrawThemselvesWhereTheLayerIsNotExact()
{
    using Change = std::function<void(Canvas&)>;
    QFETCH(Change, change);
    Canvas canvas(2);
    change(canvas);
    canvas.appendDots(0, manyDots);
    canvas.appendDots(1, manyDots);
    QCOMPARE(canvas.paint(), canvas.ordinary());
    QCOMPARE(canvas.layer.dotsAdded(), std::size_t(0));
}

/// As in printing and in export to a document.
void TestDotLayer::anotherPaintEngineIsLeftToTheCurves()
{
    Canvas canvas(1);
    canvas.appendDots(0, manyDots);
    const auto drawn = [&canvas](auto&& draw) {
        QPicture drawing;
        QPainter recording(&drawing);
        draw(recording);
        recording.end();
        QImage image(canvasPlaces, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter(&image).drawPicture(0, 0, drawing);
        return image;
    };
    const QImage picture = drawn([&canvas](QPainter& painter) {
        canvas.layer.beginPicture(painter, canvas.rect,
                                  {{&canvas.at(0), canvas.xMap, canvas.yMap}});
        canvas.at(0).drawSeries(&painter, canvas.xMap, canvas.yMap, canvas.rect, 0, -1);
        canvas.layer.endPicture();
    });
    const QImage expected = drawn([&canvas](QPainter& painter) {
        canvas.at(0).QwtPlotCurve::drawSeries(&painter, canvas.xMap, canvas.yMap, canvas.rect, 0,
                                              -1);
    });
    QCOMPARE(picture, expected);
    QCOMPARE(canvas.layer.dotsAdded(), std::size_t(0));
    QVERIFY(picture != drawn([](QPainter&) {}));
}

void TestDotLayer::partOfACurveIsDrawnByTheCurve()
{
    Canvas canvas(1);
    canvas.appendDots(0, manyDots);
    canvas.paint();
    QImage image(canvasPlaces, QImage::Format_RGB32);
    image.fill(Qt::white);
    QImage expected = image;
    const auto draw = [&](QImage& target, auto&& drawSeries) {
        QPainter painter(&target);
        canvas.layer.beginPicture(painter, canvas.rect,
                                  {{&canvas.at(0), canvas.xMap, canvas.yMap}});
        drawSeries(painter);
        canvas.layer.endPicture();
    };
    draw(image, [&](QPainter& painter) {
        canvas.at(0).drawSeries(&painter, canvas.xMap, canvas.yMap, canvas.rect, 5, 9);
    });
    draw(expected, [&](QPainter& painter) {
        canvas.at(0).QwtPlotCurve::drawSeries(&painter, canvas.xMap, canvas.yMap, canvas.rect, 5,
                                              9);
    });
    QCOMPARE(image, expected);
}

void TestDotLayer::curveDrawsItselfOutsideOfAPicture()
{
    Canvas canvas(2);
    canvas.appendDots(0, manyDots);
    canvas.appendDots(1, manyDots);
    canvas.paint();
    QImage image(canvasPlaces, QImage::Format_RGB32);
    image.fill(Qt::white);
    QImage expected = image;
    QPainter painter(&image);
    canvas.at(1).drawSeries(&painter, canvas.xMap, canvas.yMap, canvas.rect, 0, -1);
    QPainter ordinary(&expected);
    canvas.at(1).QwtPlotCurve::drawSeries(&ordinary, canvas.xMap, canvas.yMap, canvas.rect, 0, -1);
    QCOMPARE(image, expected);
}

void TestDotLayer::longHistoryIsAddedInSlices()
{
    Canvas canvas(1, sliceLength);
    canvas.appendDots(0, 2 * int(sliceLength) + 30);
    QSignalSpy asked(&canvas.layer, &DotLayer::incomplete);
    for (const std::size_t added : {sliceLength, sliceLength, std::size_t(30)}) {
        canvas.paint();
        QCOMPARE(canvas.layer.dotsAdded(), added);
    }
    QVERIFY(canvas.layer.isComplete());
    QCOMPARE(asked.count(), 2);
    QCOMPARE(canvas.paint(), canvas.ordinary());
    QCOMPARE(canvas.layer.dotsAdded(), std::size_t(0));
}

void TestDotLayer::newestDotsComeFirst()
{
    Canvas canvas(1, sliceLength);
    const QPoint oldest(10, 10);
    const QPoint newest(90, 60);
    const auto sampleAt = [](const QPoint& place) {
        return QPointF(place.x(), canvasPlaces.height() - place.y());
    };
    canvas.append(0, sampleAt(oldest));
    for (std::size_t i = 0; i < sliceLength; ++i)
        canvas.append(0, sampleAt(newest));
    QImage picture = canvas.paint();
    QVERIFY(picture.pixel(newest) != white);
    QCOMPARE(picture.pixel(oldest), white);
    picture = canvas.paint();
    QVERIFY(picture.pixel(oldest) != white);
}

void TestDotLayer::curvesShareASlice()
{
    Canvas canvas(2, sliceLength);
    canvas.appendDots(0, 10);
    canvas.appendDots(1, 150);
    canvas.paint();
    QCOMPARE(canvas.layer.dotsAdded(), sliceLength);
    canvas.paint();
    QCOMPARE(canvas.layer.dotsAdded(), std::size_t(60));
    QCOMPARE(canvas.paint(), canvas.ordinary());
}

void TestDotLayer::newDotsAreAddedBesideAHistory()
{
    Canvas canvas(2, sliceLength);
    canvas.appendDots(0, 170);
    canvas.appendDots(1, 170);
    canvas.paint();
    canvas.appendDots(0, 40);
    canvas.paint();
    QCOMPARE(canvas.layer.dotsAdded(), sliceLength);
    while (!canvas.layer.isComplete())
        canvas.paint();
    QCOMPARE(canvas.paint(), canvas.ordinary());
}

void TestDotLayer::moreNewDotsThanASliceAreAddedInSlices()
{
    Canvas canvas(1, sliceLength);
    canvas.appendDots(0, 50);
    canvas.paint();
    canvas.appendDots(0, 3 * int(sliceLength));
    canvas.paint();
    QCOMPARE(canvas.layer.dotsAdded(), sliceLength);
    QVERIFY(!canvas.layer.isComplete());
    while (!canvas.layer.isComplete())
        canvas.paint();
    QCOMPARE(canvas.paint(), canvas.ordinary());
}

void TestDotLayer::picturesWithoutMissingDotsAskForNothing()
{
    Canvas canvas(1, sliceLength);
    QSignalSpy asked(&canvas.layer, &DotLayer::incomplete);
    canvas.appendDots(0, int(sliceLength));
    canvas.paint();
    canvas.appendDots(0, 5);
    canvas.paint();
    QCOMPARE(asked.count(), 0);
}

QTEST_MAIN(TestDotLayer)
#include "tst_dotlayer.moc"
