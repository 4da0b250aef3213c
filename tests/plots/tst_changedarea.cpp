#include "plots/changedarea.h"

#include <QtTest>
#include <qwt_scale_map.h>

#include <limits>

namespace {

constexpr int reach = 3;
const QRect canvas(10, 20, 100, 200);

QwtScaleMap mapOf(double from, double to, double begin, double end)
{
    QwtScaleMap map;
    map.setScaleInterval(from, to);
    map.setPaintInterval(begin, end);
    return map;
}

} // namespace

/// Scales from 0 to 10 over the canvas, y upwards: a unit is 10 places wide and 20 high.
class TestChangedArea final : public QObject
{
    Q_OBJECT

private slots:
    void placesAreThoseOfThePointsAndAround_data();
    void placesAreThoseOfThePointsAndAround();
    void clearedAreaHasNoPlaces();
};

void TestChangedArea::placesAreThoseOfThePointsAndAround_data()
{
    QTest::addColumn<QVector<QPointF>>("points");
    QTest::addColumn<QRect>("places");
    using Points = QVector<QPointF>;
    const auto row = [](const char* name, const Points& points, const QRect& places) {
        QTest::newRow(name) << points << places;
    };
    const auto corners = [](int left, int top, int right, int bottom) {
        return QRect(QPoint(left, top), QPoint(right, bottom));
    };
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    row("nothing", {}, QRect());
    row("one point", {{5.0, 5.0}}, corners(57, 117, 63, 123));
    row("between two places", {{5.04, 5.01}}, corners(57, 116, 64, 123));
    row("several", {{5.0, 5.0}, {6.0, 4.0}, {5.5, 4.5}}, corners(57, 117, 73, 143));
    row("at the corner", {{0.0, 10.0}}, corners(10, 20, 13, 23));
    row("just beyond", {{-0.2, 5.0}}, corners(10, 117, 11, 123));
    row("too far to the left", {{-1.0, 5.0}}, QRect());
    row("too far down", {{5.0, -1.0}}, QRect());
    row("across", {{-1e9, 5.0}, {1e9, 5.0}}, corners(10, 117, 109, 123));
    row("without end", {{5.0, 5.0}, {infinity, 5.0}}, corners(57, 117, 109, 123));
    row("no number", {{nan, 5.0}}, QRect());
    row("no number among others", {{5.0, 5.0}, {nan, nan}}, corners(57, 117, 63, 123));
}

void TestChangedArea::placesAreThoseOfThePointsAndAround()
{
    QFETCH(QVector<QPointF>, points);
    ChangedArea area;
    for (const QPointF& point : points)
        area.include(point);
    const QwtScaleMap x = mapOf(0.0, 10.0, 10.0, 110.0);
    const QwtScaleMap y = mapOf(0.0, 10.0, 220.0, 20.0);
    QTEST(area.places(x, y, reach, canvas), "places");
}

void TestChangedArea::clearedAreaHasNoPlaces()
{
    ChangedArea area;
    area.include({5.0, 5.0});
    area.clear();
    const QwtScaleMap map = mapOf(0.0, 10.0, 10.0, 110.0);
    QCOMPARE(area.places(map, map, reach, canvas), QRect());
}

QTEST_APPLESS_MAIN(TestChangedArea)
#include "tst_changedarea.moc"
