#include "stagebench.h"
#include "window/axisclicks.h"

#include <QSignalSpy>
#include <QtTest>
#include <qwt_plot_canvas.h>
#include <qwt_scale_widget.h>

namespace {

struct Bench : StageBench
{
    QwtScaleWidget* scale(const QString& plotName, int axis) const
    {
        return parent.findChild<GenericPlot*>(plotName)->axisWidget(axis);
    }

    AxisClicks clicks{stages};
    QSignalSpy clicked{&clicks, &AxisClicks::clicked};
};

/// Takes the events that no axis took.
class Underground final : public QWidget
{
public:
    int presses = 0;

protected:
    void mousePressEvent(QMouseEvent*) override { ++presses; }
};

void addAxes(const char* plotName, std::initializer_list<std::pair<const char*, int>> axes)
{
    for (const auto& [name, axis] : axes)
        QTest::addRow("%s %s", plotName, name) << QString(plotName) << axis;
}

} // namespace

Q_DECLARE_METATYPE(Qt::MouseButton)

class TestAxisClicks final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench = std::make_unique<Bench>(); }
    void cleanup() { bench.reset(); }

    void pressTellsTheAxis_data();
    void pressTellsTheAxis();
    void pressIsTakenAndTheReleaseIsNot();
    void bothPressesOfADoubleClickAreTold();
    void otherButtonsAreLeftAlone_data();
    void otherButtonsAreLeftAlone();
    void otherAxesAreLeftAlone_data();
    void otherAxesAreLeftAlone();
    void canvasesAreLeftAlone();

private:
    std::unique_ptr<Bench> bench;
};

void TestAxisClicks::pressTellsTheAxis_data()
{
    QTest::addColumn<QString>("plotName");
    QTest::addColumn<int>("axis");
    QTest::addColumn<int>("axisId");
    for (const int stage : {1, 2}) {
        const QString position = QStringLiteral("positionPlot%1").arg(stage);
        const QString intensity = QStringLiteral("intensityPlot%1").arg(stage);
        QTest::addRow("position %d", stage) << position << int(QwtPlot::yLeft) << stage;
        QTest::addRow("time above position %d", stage)
            << position << int(QwtPlot::xTop) << 2 + stage;
        QTest::addRow("intensity %d", stage) << intensity << int(QwtPlot::yLeft) << 4 + stage;
        QTest::addRow("time below intensity %d", stage)
            << intensity << int(QwtPlot::xBottom) << 2 + stage;
    }
}

void TestAxisClicks::pressTellsTheAxis()
{
    QFETCH(QString, plotName);
    QFETCH(int, axis);
    QwtScaleWidget* scale = bench->scale(plotName, axis);
    QCOMPARE(scale->cursor().shape(), Qt::PointingHandCursor);
    QTest::mousePress(scale, Qt::LeftButton);
    QCOMPARE(bench->clicked.count(), 1);
    QTEST(bench->clicked.first().first().toInt(), "axisId");
}

void TestAxisClicks::pressIsTakenAndTheReleaseIsNot()
{
    Underground underground;
    QwtScaleWidget* scale = bench->scale("positionPlot1", QwtPlot::yLeft);
    scale->setParent(&underground);
    QTest::mousePress(scale, Qt::RightButton);
    QCOMPARE(underground.presses, 1);
    QTest::mousePress(scale, Qt::LeftButton);
    QTest::mouseRelease(scale, Qt::LeftButton);
    QCOMPARE(underground.presses, 1);
    QCOMPARE(bench->clicked.count(), 1);
    scale->setParent(bench->parent.findChild<GenericPlot*>("positionPlot1"));
}

void TestAxisClicks::bothPressesOfADoubleClickAreTold()
{
    QwtScaleWidget* scale = bench->scale("intensityPlot2", QwtPlot::yLeft);
    QTest::mouseClick(scale, Qt::LeftButton);
    // The second press of two, which comes as an event of its own kind.
    QTest::mouseDClick(scale, Qt::LeftButton);
    QCOMPARE(bench->clicked.count(), 2);
}

void TestAxisClicks::otherButtonsAreLeftAlone_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::newRow("right") << Qt::RightButton;
    QTest::newRow("middle") << Qt::MiddleButton;
    QTest::newRow("back") << Qt::BackButton;
}

void TestAxisClicks::otherButtonsAreLeftAlone()
{
    QFETCH(Qt::MouseButton, button);
    QwtScaleWidget* scale = bench->scale("positionPlot1", QwtPlot::yLeft);
    QTest::mouseClick(scale, button);
    QTest::mouseDClick(scale, button);
    QCOMPARE(bench->clicked.count(), 0);
}

void TestAxisClicks::otherAxesAreLeftAlone_data()
{
    QTest::addColumn<QString>("plotName");
    QTest::addColumn<int>("axis");
    addAxes("positionPlot1", {{"bottom", QwtPlot::xBottom}, {"right", QwtPlot::yRight}});
    addAxes("intensityPlot2", {{"top", QwtPlot::xTop}, {"right", QwtPlot::yRight}});
    addAxes("osciPlot1", {{"left", QwtPlot::yLeft},
                          {"bottom", QwtPlot::xBottom},
                          {"right", QwtPlot::yRight},
                          {"top", QwtPlot::xTop}});
}

void TestAxisClicks::otherAxesAreLeftAlone()
{
    QFETCH(QString, plotName);
    QFETCH(int, axis);
    QwtScaleWidget* scale = bench->scale(plotName, axis);
    QVERIFY(scale->cursor().shape() != Qt::PointingHandCursor);
    QTest::mouseClick(scale, Qt::LeftButton);
    QCOMPARE(bench->clicked.count(), 0);
}

void TestAxisClicks::canvasesAreLeftAlone()
{
    for (const char* name : {"osciPlot1", "positionPlot1", "intensityPlot1"}) {
        QWidget* canvas = bench->parent.findChild<GenericPlot*>(name)->canvas();
        QVERIFY(canvas->cursor().shape() != Qt::PointingHandCursor);
        QTest::mouseClick(canvas, Qt::LeftButton);
    }
    QCOMPARE(bench->clicked.count(), 0);
}

QTEST_MAIN(TestAxisClicks)
#include "tst_axisclicks.moc"
