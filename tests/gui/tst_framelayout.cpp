// How the frame lays out plots and readouts, at any size, unit and number of systems.

#include "model/detector.h"
#include "plots/genericplot.h"
#include "setup/overviewwidget.h"
#include "support/samplefeed.h"
#include "support/userinput.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QCheckBox>
#include <QFrame>
#include <QLCDNumber>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QtTest>
#include <qwt_plot_canvas.h>

#include <utility>

namespace {

const QSize usualSize(1280, 960);

QVector<QRect> placesOfAllWidgets(const WindowFixture& fixture)
{
    QVector<QRect> places;
    for (const QWidget* widget : fixture.window().findChildren<QWidget*>())
        places.append(widget->geometry());
    return places;
}

/// Takes events until they move nothing any more.
bool settle(const WindowFixture& fixture)
{
    QVector<QRect> before;
    return QTest::qWaitFor([&] {
        const QVector<QRect> now = placesOfAllWidgets(fixture);
        return std::exchange(before, now) == now;
    });
}

bool resizeTo(const WindowFixture& fixture, const QSize& size)
{
    fixture.window().resize(size);
    return QTest::qWaitFor([&] { return fixture.window().size() == size; }) && settle(fixture);
}

/// Left edge and width within the scrolled contents.
QPair<int, int> column(const WindowFixture& fixture, const char* name)
{
    const auto* contents = fixture.find<QWidget>("scrollAreaWidgetContents");
    const auto* widget = fixture.find<QWidget>(name);
    return {widget->mapTo(contents, QPoint(0, 0)).x(), widget->width()};
}

/// What is wrong with the pointing plots' shape, or nothing: each canvas is square, and those of
/// both stages stand above each other in columns of one width.
QString misshapen(const WindowFixture& fixture)
{
    QStringList places;
    for (int stage = 1; stage <= 2; ++stage) {
        const QWidget& canvas = *fixture.pointingPlot(stage).canvas();
        const int left = canvas.mapTo(&fixture.window(), QPoint(0, 0)).x();
        places.append(QStringLiteral("at %1, %2 wide").arg(left).arg(canvas.width()));
        constexpr int roundingPx = 1;
        if (qAbs(canvas.width() - canvas.height()) > roundingPx)
            return QStringLiteral("%1 x %2").arg(canvas.width()).arg(canvas.height());
    }
    if (places[0] != places[1])
        return places.join(" over ");
    const bool sameColumns = column(fixture, "rescaler") == column(fixture, "rescaler_2")
                             && column(fixture, "osciPlot1") == column(fixture, "osciPlot2");
    return sameColumns ? QString() : QStringLiteral("columns differ");
}

/// A system with quadrants whose stages show lengths over that beam diameter, or volts for 0.
ConnectionSettings quadrants(const WindowFixture& fixture, double diameter1Um, double diameter2Um)
{
    ConnectionSettings record = fixture.record();
    record.model = {QuadrantDetector, QuadrantDetector};
    record.calculation = {diameter1Um > 0.0 ? 1 : 0, diameter2Um > 0.0 ? 1 : 0};
    record.beamDiameter = {diameter1Um, diameter2Um};
    return record;
}

/// Names of pairs of visible siblings that cover each other, anywhere below the parent.
QStringList overlaps(const QWidget& parent)
{
    QStringList found;
    QWidgetList children;
    for (QObject* child : parent.children()) {
        auto* widget = qobject_cast<QWidget*>(child);
        if (widget && widget->isVisible() && !widget->isWindow())
            children.append(widget);
    }
    for (int i = 0; i < children.size(); ++i) {
        for (int k = i + 1; k < children.size(); ++k) {
            if (children[i]->geometry().intersects(children[k]->geometry()))
                found.append(children[i]->objectName() + " and " + children[k]->objectName());
        }
        const bool paintsItself = children[i]->inherits("QwtPlot")
                                  || children[i]->inherits("QAbstractSpinBox")
                                  || children[i]->inherits("QLCDNumber");
        if (!paintsItself)
            found.append(overlaps(*children[i]));
    }
    return found;
}

/// Names of visible labels and buttons that have less room than their text needs.
QStringList squeezed(const QWidget& parent)
{
    QStringList found;
    const QWidgetList widgets = parent.findChildren<QWidget*>();
    for (const QWidget* widget : widgets) {
        const bool hasText = widget->inherits("QLabel") || widget->inherits("QAbstractButton");
        const QSize needed = widget->minimumSizeHint();
        if (hasText && widget->isVisible()
            && (widget->width() < needed.width() || widget->height() < needed.height()))
            found.append(widget->objectName());
    }
    return found;
}

} // namespace

class TestFrameLayout final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void oneSystemShowsItsFramesAndSecondHidesThem();
    void namesAtTheAxesHaveTheColoursOfTheSystem();
    void pointingPlotsAreSquareAndColumnsEqual_data();
    void pointingPlotsAreSquareAndColumnsEqual();
    void pointingPlotsStaySquareInAnyUnit_data();
    void pointingPlotsStaySquareInAnyUnit();
    void pointingPlotsResizedWhileZoomedAreSquareAgain_data();
    void pointingPlotsResizedWhileZoomedAreSquareAgain();
    void nothingOverlaps_data();
    void nothingOverlaps();
    void theSmallestWindowScrolls();
    void numbersOfAnyWidthMoveNothing();
    void aLongLabelScrollsInTheOverviewAndWidensNothing();

private:
    std::unique_ptr<WindowFixture> fixture;
};

void TestFrameLayout::init()
{
    fixture = std::make_unique<WindowFixture>(2);
    QVERIFY(fixture->open());
}

void TestFrameLayout::cleanup()
{
    fixture.reset();
    QCOMPARE(leftWidgets(), QString());
}

void TestFrameLayout::oneSystemShowsItsFramesAndSecondHidesThem()
{
    const auto shown = [this] {
        int visible = 0;
        const char* const names[] = {
            "stage1Frame_2", "stage2Frame", "frame_rightTop", "frame_rightBottom",
            "lcd1x",         "lcd1y",       "lcd1i",          "lcd2x",
            "lcd2y",         "lcd2i",       "label_42",       "label_44",
            "label_43",      "label_17",    "label_11",       "label_14",
            "push_Stab1",    "push_Stab2"};
        for (const char* name : names)
            visible += fixture->find<QWidget>(name)->isVisible() ? 1 : 0;
        return visible == 0                       ? QStringLiteral("none")
               : visible == int(std::size(names)) ? QStringLiteral("all")
                                                  : QString::number(visible);
    };
    QVERIFY(fixture->registerSystem(0));
    QCOMPARE(shown(), QString("all"));
    QVERIFY(fixture->registerSystem(1));
    QCOMPARE(shown(), QString("none"));
    fixture->window().showConnection(fixture->controller(0).address(), false);
    QCOMPARE(shown(), QString("all"));
}

void TestFrameLayout::namesAtTheAxesHaveTheColoursOfTheSystem()
{
    const auto colors = [this] {
        QStringList names;
        for (const char* name : {"x_axis_label", "y_axis_label", "i_axis_label", "x_axis_label2",
                                 "y_axis_label2", "i_axis_label2"})
            names.append(fixture->find<QLabel>(name)->palette().color(QPalette::WindowText).name());
        return names;
    };
    const QString red = QColor(Qt::red).name();
    const QString green = QColor(Qt::darkGreen).name();
    const QString blue = QColor(Qt::blue).name();
    const QStringList colored{red, green, blue, red, green, blue};
    const QStringList black(QVector<QString>(6, QColor(Qt::black).name()).toList());
    QCOMPARE(colors(), black);
    QVERIFY(fixture->registerSystem(0));
    QCOMPARE(colors(), colored);
    QVERIFY(fixture->registerSystem(1));
    QCOMPARE(colors(), black);
    fixture->window().showConnection(fixture->controller(1).address(), false);
    QCOMPARE(colors(), colored);
    fixture->window().showConnection(fixture->controller(0).address(), false);
    QCOMPARE(colors(), black);
}

void TestFrameLayout::pointingPlotsAreSquareAndColumnsEqual_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("systems");
    for (const QSize& size : {usualSize, QSize(900, 700), QSize(1900, 1000), QSize(600, 450)}) {
        for (int systems = 0; systems <= 2; ++systems)
            QTest::addRow("%d x %d, %d systems", size.width(), size.height(), systems)
                << size << systems;
    }
}

void TestFrameLayout::pointingPlotsAreSquareAndColumnsEqual()
{
    QFETCH(QSize, size);
    QFETCH(int, systems);
    for (int number = 0; number < systems; ++number)
        QVERIFY(fixture->registerSystem(number));
    QVERIFY(resizeTo(*fixture, size));

    QTRY_COMPARE(misshapen(*fixture), QString());
    QVERIFY(fixture->pointingPlot(1).canvas()->width() > 50);
    QCOMPARE(column(*fixture, "positionPlot2"), column(*fixture, "positionPlot1"));
    QCOMPARE(column(*fixture, "intensityPlot2"), column(*fixture, "intensityPlot1"));
    QCOMPARE(column(*fixture, "intensityPlot1"), column(*fixture, "positionPlot1"));
    if (systems == 1) {
        QCOMPARE(column(*fixture, "stage2Frame"), column(*fixture, "stage1Frame_2"));
        QCOMPARE(column(*fixture, "frame_rightBottom"), column(*fixture, "frame_rightTop"));
    }
    // The canvases of a stage stand above each other.
    const auto left = [this](const GenericPlot& plot) {
        return plot.canvas()->mapTo(&fixture->window(), QPoint(0, 0)).x();
    };
    for (int stage = 1; stage <= 2; ++stage)
        QCOMPARE(left(fixture->intensityPlot(stage)), left(fixture->positionPlot(stage)));
}

void TestFrameLayout::pointingPlotsStaySquareInAnyUnit_data()
{
    QTest::addColumn<double>("diameter1Um");
    QTest::addColumn<double>("diameter2Um");
    QTest::newRow("short numbers") << 50.0 << 50.0;
    QTest::newRow("long numbers") << 10000.0 << 10000.0;
    QTest::newRow("stage 1 has longer ones") << 10000.0 << 0.0;
    QTest::newRow("stage 2 has longer ones") << 0.0 << 10000.0;
}

void TestFrameLayout::pointingPlotsStaySquareInAnyUnit()
{
    QFETCH(double, diameter1Um);
    QFETCH(double, diameter2Um);
    QTRY_COMPARE(misshapen(*fixture), QString());
    QVERIFY(fixture->registerSystem(quadrants(*fixture, diameter1Um, diameter2Um), 0));
    fixture->tick();
    const double reach1 = diameter1Um > 0.0 ? diameter1Um / 2.0 : 5.0;
    QCOMPARE(fixture->pointingPlot(1).maxRange(), reach1);
    const auto* contents = fixture->find<QWidget>("scrollAreaWidgetContents");
    QTRY_COMPARE(overlaps(*contents), QStringList());
    QTRY_COMPARE(misshapen(*fixture), QString());

    // And back to volts.
    fixture->window().closedConnection(fixture->controller().address());
    QVERIFY(fixture->registerSystem(0));
    fixture->tick();
    QCOMPARE(fixture->pointingPlot(1).maxRange(), 5.0);
    QTRY_COMPARE(misshapen(*fixture), QString());
}

void TestFrameLayout::pointingPlotsResizedWhileZoomedAreSquareAgain_data()
{
    QTest::addColumn<QVector<int>>("zoomedStages");
    QTest::newRow("stage 1") << QVector<int>{1};
    QTest::newRow("stage 2") << QVector<int>{2};
    QTest::newRow("both") << QVector<int>{1, 2};
}

void TestFrameLayout::pointingPlotsResizedWhileZoomedAreSquareAgain()
{
    QFETCH(QVector<int>, zoomedStages);
    for (const int stage : zoomedStages) {
        user::dragBand(fixture->pointingPlot(stage));
        QTRY_VERIFY(!fixture->pointingPlot(stage).axisEnabled(QwtPlot::yRight));
    }
    QVERIFY(resizeTo(*fixture, QSize(1900, 1000)));
    for (const int stage : zoomedStages)
        QVERIFY(fixture->click(stage == 1 ? "pushButton_Zoom1" : "pushButton_Zoom2"));
    QTRY_COMPARE(misshapen(*fixture), QString());
}

void TestFrameLayout::nothingOverlaps_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("systems");
    QTest::addColumn<bool>("pointing");
    for (const QSize& size : {usualSize, QSize(900, 700), QSize(600, 450)}) {
        for (int systems = 0; systems <= 2; ++systems) {
            for (const bool pointing : {false, true})
                QTest::addRow("%d x %d, %d systems, %s", size.width(), size.height(), systems,
                              pointing ? "pointing" : "oscilloscope")
                    << size << systems << pointing;
        }
    }
}

void TestFrameLayout::nothingOverlaps()
{
    QFETCH(QSize, size);
    QFETCH(int, systems);
    QFETCH(bool, pointing);
    for (int number = 0; number < systems; ++number)
        QVERIFY(fixture->registerSystem(number));
    if (pointing)
        QVERIFY(fixture->click("pointingRadio"));
    QVERIFY(resizeTo(*fixture, size));
    const auto* contents = fixture->find<QWidget>("scrollAreaWidgetContents");
    QCOMPARE(overlaps(*contents), QStringList());
    QCOMPARE(squeezed(*contents), QStringList());
    QCOMPARE(overlaps(fixture->window()), QStringList());
}

void TestFrameLayout::theSmallestWindowScrolls()
{
    QVERIFY(fixture->registerSystem(0));
    QVERIFY(resizeTo(*fixture, QSize(600, 450)));
    const auto* area = fixture->find<QScrollArea>("scrollArea");
    QTRY_VERIFY(area->verticalScrollBar()->maximum() > 0);
    QVERIFY(area->horizontalScrollBar()->maximum() > 0);
    // What lies at the far end can be brought to the front.
    auto* far = fixture->find<QWidget>("lcd2i");
    QVERIFY(far->visibleRegion().isEmpty());
    fixture->find<QScrollArea>("scrollArea")->ensureWidgetVisible(far);
    QTRY_VERIFY(!far->visibleRegion().isEmpty());
}

void TestFrameLayout::numbersOfAnyWidthMoveNothing()
{
    QVERIFY(fixture->registerSystem(0));
    QVERIFY(resizeTo(*fixture, usualSize));
    const auto places = [this] {
        QStringList found;
        for (const char* name : {"osciPlot1", "stage1Frame_2", "positionPlot1", "frame_rightTop"}) {
            const QPair<int, int> place = column(*fixture, name);
            found.append(QStringLiteral("%1 %2 %3").arg(name).arg(place.first).arg(place.second));
        }
        const QRect canvas = fixture->positionPlot(1).canvas()->geometry();
        found.append(QStringLiteral("canvas %1 %2").arg(canvas.x()).arg(canvas.width()));
        return found.join(", ");
    };
    const QString before = places();
    const SampleFeed feed(*fixture);
    QVERIFY(feed.start());
    emulator::PacketValues values;
    values[0].x = values[0].y = values[1].x = values[1].y = -32768;
    values[0].intensity = values[1].intensity = 65535;
    QVERIFY(feed.show({values}));
    QCOMPARE(places(), before);
    for (const double reach : {0.05, 30.0, 5000.0}) {
        fixture->window().rescaleAxis(1, -reach, reach, true);
        QVERIFY(settle(*fixture));
        QCOMPARE(places(), before);
    }
}

void TestFrameLayout::aLongLabelScrollsInTheOverviewAndWidensNothing()
{
    QVERIFY(fixture->registerSystem(0));
    fixture->find<QAction>("actionConfiguration")->trigger();
    fixture->tick();
    const auto* overview = fixture->find<QDialog>("ConnectionOverviewDialog");
    QVERIFY(overview && overview->isVisible());
    QScrollBar& across = *overview->findChild<QListWidget*>("listWidget")->horizontalScrollBar();
    QTRY_COMPARE(across.maximum(), 0);
    const QSize overviewSize = overview->size();
    const QSize windowNeeds = fixture->window().minimumSizeHint();

    const QString longest(63, 'W');
    fixture->window().changeLabel(fixture->controller().address(), longest);
    fixture->tick();
    QTRY_VERIFY(across.maximum() > 0);
    QCOMPARE(overview->size(), overviewSize);
    QCOMPARE(fixture->window().minimumSizeHint(), windowNeeds);
    QCOMPARE(fixture->window().size(), usualSize);

    // The label is whole, and what stands behind it can be scrolled to.
    const QWidget* row = overview->findChildren<OverviewWidget*>().last();
    const auto* label = row->findChild<QLabel*>("label");
    QCOMPARE(label->text(), longest);
    QVERIFY(label->width() >= label->fontMetrics().horizontalAdvance(longest));
    const auto* lastOfRow = row->findChild<QCheckBox*>("showCheckBox");
    QVERIFY(lastOfRow->visibleRegion().isEmpty());
    across.setValue(across.maximum());
    QCOMPARE(lastOfRow->visibleRegion().boundingRect(), lastOfRow->rect());
}

QTEST_MAIN(TestFrameLayout)
#include "tst_framelayout.moc"
