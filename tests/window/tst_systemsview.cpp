#include "monitorbench.h"
#include "window/systemsview.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

QColor colorOf(const QLabel& label)
{
    return label.palette().color(QPalette::WindowText);
}

ConnectionSettings colored(const QString& x, const QString& y, const QString& intensity)
{
    ConnectionSettings settings;
    settings.colorX = x;
    settings.colorY = y;
    settings.colorI = intensity;
    return settings;
}

} // namespace

class TestSystemsView final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench = std::make_unique<Bench>(); }
    void cleanup() { bench.reset(); }

    void registeredSystemHasCurvesInItsColours();
    void closedSystemTakesItsCurvesAlong();
    void firstDisplayedSystemBringsUpItsReadouts();
    void secondDisplayedSystemHidesReadoutsAndAxisColour();
    void thirdDisplayedSystemChangesNothing();
    void lastOneLeftBringsReadoutsAndAxisColourBack();
    void withNoneDisplayedTheControlsAreDisabled();
    void hiddenSystemLosesItsPoints();
    void newColourGoesToCurvesAndAxisNames();
    void colourOfOneOfTwoGoesToItsCurvesOnly();
    void colourOfTheOnlyDisplayedOneGoesToTheAxisNames();
    void statisticsAreOfferedForASingleSystemInPointingMode();
    void axisNamesCanBeReadOnADarkDesktop();

private:
    struct Bench : MonitorBench
    {
        SystemsView view{systems, stages, toolBar, statistics, parent};
    };

    bool showsSingle() const
    {
        return !bench->forms[0].singleFrame.isHidden() && !bench->forms[1].singleFrame.isHidden();
    }
    QColor axisColor() const { return colorOf(bench->forms[1].xAxis); }

    std::unique_ptr<Bench> bench;
};

void TestSystemsView::registeredSystemHasCurvesInItsColours()
{
    bench->add();
    bench->add(SystemsBench::Link::Down, QStringLiteral("ttyUSB1"),
               colored("#ff0000", "#00ff00", "#0000ff"));
    for (StageView& stage : bench->stages) {
        QCOMPARE(stage.plots().position().curveCount(), 4);
        QCOMPARE(stage.plots().pointing().curveCount(), 2);
        QCOMPARE(stage.plots().position().curveColor(2), QColor(Qt::red));
        QCOMPARE(stage.plots().position().curveColor(3), QColor(Qt::green));
        QCOMPARE(stage.plots().pointing().curveColor(1), QColor(Qt::blue));
        QCOMPARE(stage.plots().intensity().curveColor(1), QColor(Qt::blue));
    }
}

void TestSystemsView::closedSystemTakesItsCurvesAlong()
{
    for (int i = 0; i < 3; ++i) {
        bench->add();
        bench->stages[0].plots().appendPointingPoint(i, QPointF(i, i));
    }
    bench->systems.close(&bench->connection(1));
    const GenericPlot& plot = bench->stages[0].plots().pointing();
    QCOMPARE(plot.curveCount(), 2);
    QCOMPARE(pointsOf(plot, 1), QVector<QPointF>{QPointF(2.0, 2.0)});
    QCOMPARE(bench->stages[1].plots().position().curveCount(), 4);
}

void TestSystemsView::firstDisplayedSystemBringsUpItsReadouts()
{
    bench->view.enableControls(false);
    for (StageView& stage : bench->stages)
        stage.setSingleSystemVisible(false);
    const QSignalSpy enabled(&bench->view, &SystemsView::controlsEnabled);
    bench->stages[0].readouts().take(QPointF(1.0, 1.0), {});
    bench->add(SystemsBench::Link::Up, QStringLiteral("ttyUSB1"),
               colored("#ff0000", "#00ff00", "#0000ff"));
    QVERIFY(showsSingle());
    QCOMPARE(enabled, QList<QVariantList>{{true}});
    QVERIFY(bench->toolBar.startAction().isEnabled());
    QVERIFY(bench->forms[0].stabilisation.isEnabled());
    QCOMPARE(axisColor(), QColor(Qt::red));
    QCOMPARE(colorOf(bench->forms[0].yAxis), QColor(Qt::green));
    QCOMPARE(colorOf(bench->forms[0].intensityAxis), QColor(Qt::blue));
    bench->stages[0].readouts().take(QPointF(3.0, 3.0), {});
    bench->stages[0].readouts().show(2);
    QCOMPARE(bench->forms[0].lcdX.value(), 3.0);
}

void TestSystemsView::secondDisplayedSystemHidesReadoutsAndAxisColour()
{
    const ConnectionSettings red = colored("#ff0000", "#ff0000", "#ff0000");
    bench->add(SystemsBench::Link::Up, QStringLiteral("ttyUSB1"), red);
    bench->add(SystemsBench::Link::Up, QStringLiteral("ttyUSB2"), red);
    QVERIFY(bench->forms[0].singleFrame.isHidden());
    QVERIFY(bench->forms[1].otherSingleFrame.isHidden());
    QVERIFY(axisColor() != QColor(Qt::red));
    QVERIFY(bench->toolBar.startAction().isEnabled());
}

void TestSystemsView::thirdDisplayedSystemChangesNothing()
{
    for (int i = 0; i < 3; ++i)
        bench->add();
    QVERIFY(!showsSingle());
    bench->systems.show(&bench->connection(2), false);
    QVERIFY(!showsSingle());
}

void TestSystemsView::lastOneLeftBringsReadoutsAndAxisColourBack()
{
    bench->add();
    bench->add(SystemsBench::Link::Up, QStringLiteral("ttyUSB2"),
               colored("#ff0000", "#ff0000", "#ff0000"));
    bench->systems.show(&bench->connection(0), false);
    QVERIFY(showsSingle());
    QCOMPARE(axisColor(), QColor(Qt::red));
}

void TestSystemsView::withNoneDisplayedTheControlsAreDisabled()
{
    bench->add(SystemsBench::Link::Up, QStringLiteral("ttyUSB1"),
               colored("#ff0000", "#ff0000", "#ff0000"));
    const QSignalSpy enabled(&bench->view, &SystemsView::controlsEnabled);
    bench->systems.show(&bench->connection(0), false);
    QCOMPARE(enabled, QList<QVariantList>{{false}});
    QVERIFY(!bench->toolBar.startAction().isEnabled());
    for (const StageForm& form : bench->forms)
        QVERIFY(!form.stabilisation.isEnabled());
    QVERIFY(axisColor() != QColor(Qt::red));
}

void TestSystemsView::hiddenSystemLosesItsPoints()
{
    bench->add();
    bench->add();
    for (int i = 0; i < 2; ++i)
        bench->stages[1].plots().appendPointingPoint(i, QPointF(1.0, 1.0));
    bench->systems.show(&bench->connection(1), false);
    const GenericPlot& plot = bench->stages[1].plots().pointing();
    QVERIFY(pointsOf(plot, 1).isEmpty());
    QCOMPARE(pointsOf(plot, 0).size(), 1);
}

void TestSystemsView::newColourGoesToCurvesAndAxisNames()
{
    bench->add();
    bench->systems.setColor(&bench->connection(0), Qt::magenta, Graph::X);
    QCOMPARE(bench->stages[1].plots().position().curveColor(0), QColor(Qt::magenta));
    QCOMPARE(axisColor(), QColor(Qt::magenta));
}

void TestSystemsView::colourOfOneOfTwoGoesToItsCurvesOnly()
{
    bench->add();
    bench->add();
    bench->systems.setColor(&bench->connection(1), Qt::magenta, Graph::X);
    QCOMPARE(bench->stages[0].plots().position().curveColor(2), QColor(Qt::magenta));
    QVERIFY(bench->stages[0].plots().position().curveColor(0) != QColor(Qt::magenta));
    QVERIFY(axisColor() != QColor(Qt::magenta));
}

void TestSystemsView::colourOfTheOnlyDisplayedOneGoesToTheAxisNames()
{
    bench->add();
    bench->add();
    bench->systems.show(&bench->connection(0), false);
    bench->systems.setColor(&bench->connection(1), Qt::magenta, Graph::X);
    QCOMPARE(axisColor(), QColor(Qt::magenta));
}

void TestSystemsView::statisticsAreOfferedForASingleSystemInPointingMode()
{
    const QCheckBox& box = bench->forms[0].statisticsBox;
    bench->statistics.enable(false);
    bench->add();
    QVERIFY(!box.isEnabled());
    bench->systems.show(&bench->connection(0), false);
    bench->toolBar.pointingRadio().setChecked(true);
    bench->systems.show(&bench->connection(0), true);
    QVERIFY(box.isEnabled());
    bench->add();
    QVERIFY(!box.isEnabled());
    bench->systems.show(&bench->connection(1), false);
    QVERIFY(box.isEnabled());
    bench->systems.show(&bench->connection(0), false);
    QVERIFY(!box.isEnabled());
}

void TestSystemsView::axisNamesCanBeReadOnADarkDesktop()
{
    QCOMPARE(axisColor(), QColor(Qt::black));
    QPalette dark;
    dark.setColor(QPalette::Window, QColor(20, 20, 20));
    dark.setColor(QPalette::WindowText, QColor(240, 240, 240));
    bench->parent.setPalette(dark);
    const SystemsView view(bench->systems, bench->stages, bench->toolBar, bench->statistics,
                           bench->parent);
    QCOMPARE(axisColor(), QColor(240, 240, 240));
}

QTEST_MAIN(TestSystemsView)
#include "tst_systemsview.moc"
