// Where the emulated beam is, and where the window shows it: every type of detector, chosen in the
// parameter dialog, on both stages.

#include "emulator/stagestate.h"
#include "model/detector.h"
#include "params/paramsdialog.h"
#include "plots/genericplot.h"
#include "support/userinput.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "tcptab.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLCDNumber>
#include <QPushButton>
#include <QWindow>
#include <QtTest>

#include <array>
#include <cmath>

using emulator::ControllerOptions;

namespace {

constexpr int samplesPerRun = 200;
constexpr double tolerance = 0.01;

/// The spot of a stage: its diameter, and where it stands from the detector's centre.
struct Spot
{
    double diameterUm;
    double xUm;
    double yUm;
};

/// A type of detector in the application, and the kind that has it in the emulated controller.
struct Type
{
    DetectorType type;
    emulator::DetectorKind kind;
    double micrometresPerUnit;
    QString unit;
};

ControllerOptions controllerWith(emulator::DetectorKind kind, const std::array<Spot, 2>& spots)
{
    ControllerOptions options;
    options.preset = emulator::Preset::Still;
    for (std::size_t stage = 0; stage < spots.size(); ++stage) {
        options.stages[stage].detector = kind;
        options.stages[stage].spotDiameterUm = spots[stage].diameterUm;
        options.stages[stage].offsetXUm = spots[stage].xUm;
        options.stages[stage].offsetYUm = spots[stage].yUm;
    }
    return options;
}

/// A control of one stage.
template <typename T>
T& of(int stage, const ParamsDialog& dialog, const QByteArray& name)
{
    return in<T>(dialog, (stage == 1 ? name : name + "_2").constData());
}

bool choose(const ParamsDialog& dialog, QComboBox& box, int index)
{
    if (!box.isVisible() || !box.isEnabled())
        return false;
    box.setFocus();
    while (box.currentIndex() < index)
        QTest::keyClick(dialog.windowHandle(), Qt::Key_Down);
    return box.currentIndex() == index;
}

bool type(const ParamsDialog& dialog, QDoubleSpinBox& box, double value)
{
    if (!user::click(&box))
        return false;
    box.selectAll();
    const QByteArray digits = QByteArray::number(value);
    for (const char digit : digits)
        QTest::keyClick(dialog.windowHandle(), digit);
    QTest::keyClick(dialog.windowHandle(), Qt::Key_Tab);
    return box.value() == value;
}

/// Chooses the type of a stage and its length, and types the diameter if the type has one.
bool describeDetector(const ParamsDialog& dialog, int stage, DetectorType detector,
                      double diameterUm)
{
    return choose(dialog, of<QComboBox>(stage, dialog, "comboBox_DetecType"), detector)
           && user::click(&of<QWidget>(stage, dialog, "radioButtonPositionInLength"))
           && (!isQuadrantType(detector)
               || type(dialog, of<QDoubleSpinBox>(stage, dialog, "beamDiameterSpinBox"),
                       diameterUm));
}

bool apply(const ParamsDialog& dialog)
{
    auto& button = in<QPushButton>(dialog, "pushButtonApply");
    return user::click(&button) && QTest::qWaitFor([&] { return button.isEnabled(); });
}

bool describeDetectors(const WindowFixture& fixture, DetectorType detector,
                       const std::array<Spot, 2>& spots)
{
    auto& dialog = *fixture.window().findChild<ParamsDialog*>();
    dialog.openFor(&fixture.connection());
    QApplication::setActiveWindow(&dialog);
    return QTest::qWaitForWindowExposed(&dialog) && QTest::qWaitFor([&] {
               return in<QPushButton>(dialog, "pushButtonApply").isEnabled();
           })
           && describeDetector(dialog, 1, detector, spots[0].diameterUm)
           && describeDetector(dialog, 2, detector, spots[1].diameterUm) && apply(dialog);
}

/// A run in pointing mode with the statistics of both stages, to its end.
bool measure(const WindowFixture& fixture)
{
    QApplication::setActiveWindow(&fixture.window());
    const auto* start = fixture.find<QAction>("startAction");
    return fixture.type("samplingRateCounter", "500") && fixture.click("pointingRadio")
           && fixture.click("checkBox_Stats1") && fixture.click("checkBox_Stats2")
           && fixture.type("samplesToTakeCounter", QString::number(samplesPerRun))
           && fixture.clickAction("startAction")
           && QTest::qWaitFor([start] { return !start->isChecked(); }, 10000);
}

QPointF shownInPlot(const WindowFixture& fixture, int stage)
{
    const QVector<QPointF> points = pointsOf(fixture.pointingPlot(stage), 0);
    return points.isEmpty() ? QPointF(NAN, NAN) : points.last();
}

/// The last points of the two curves over time.
QPointF shownOverTime(const WindowFixture& fixture, int stage)
{
    const QVector<QPointF> x = pointsOf(fixture.positionPlot(stage), 0);
    const QVector<QPointF> y = pointsOf(fixture.positionPlot(stage), 1);
    return x.isEmpty() || y.isEmpty() ? QPointF(NAN, NAN) : QPointF(x.last().y(), y.last().y());
}

QPointF shownByReadouts(const WindowFixture& fixture, int stage)
{
    const auto readout = [&](char axis) {
        const QByteArray name = "lcd" + QByteArray::number(stage) + axis;
        return fixture.find<QLCDNumber>(name.constData())->value();
    };
    return {readout('x'), readout('y')};
}

/// The mean in the statistics' text, which has to be in this unit.
QPointF shownByStatistics(const WindowFixture& fixture, int stage, const QString& unit)
{
    const QString text = fixture.statisticsText(stage);
    const auto mean = [&](const char* axis) {
        const QString line = text.section(QStringLiteral("\n%1=").arg(axis), 1).section('\n', 0, 0);
        return line.endsWith(" [" + unit + ']') ? line.section(' ', 0, 0).toDouble() : NAN;
    };
    return {mean("x"), mean("y")};
}

bool isWithin(double shown, double actual)
{
    return std::abs(shown - actual) <= tolerance * std::abs(actual);
}

/// What is shown and is not where the beam is; empty if it is.
QString error(const char* what, const QPointF& shown, const QPointF& beam)
{
    if (isWithin(shown.x(), beam.x()) && isWithin(shown.y(), beam.y()))
        return {};
    return QStringLiteral("%1 show %2, %3, but the beam is at %4, %5; ")
        .arg(what)
        .arg(shown.x())
        .arg(shown.y())
        .arg(beam.x())
        .arg(beam.y());
}

} // namespace

Q_DECLARE_METATYPE(Type)
using Spots = std::array<Spot, 2>;
Q_DECLARE_METATYPE(Spots)

class TestLengths final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void lengthsAreWhereTheBeamIs_data();
    void lengthsAreWhereTheBeamIs();
};

void TestLengths::lengthsAreWhereTheBeamIs_data()
{
    using emulator::DetectorKind;
    constexpr double umPerMm = 1000.0;
    const QString mm = QStringLiteral("mm");
    const QString um = QString::fromUtf8("µm");
    QTest::addColumn<Type>("type");
    QTest::addColumn<Spots>("spots");
    QTest::newRow("4QD") << Type{QuadrantDetector, DetectorKind::FourQuadrant, 1.0, um}
                         << Spots{{{400.0, 40.0, -30.0}, {250.0, -20.0, 25.0}}};
    QTest::newRow("PSD") << Type{PsdDetector, DetectorKind::Psd, umPerMm, mm}
                         << Spots{{{50.0, 1500.0, -800.0}, {50.0, -3000.0, 400.0}}};
    QTest::newRow("WID") << Type{WidDetector, DetectorKind::Wid, 1.0, um}
                         << Spots{{{200.0, 60.0, -35.0}, {120.0, -40.0, 50.0}}};
    QTest::newRow("UV PSD (4mm)") << Type{UvPsd4Detector, DetectorKind::UvPsd4mm, umPerMm, mm}
                                  << Spots{{{50.0, -900.0, 1400.0}, {50.0, 500.0, -1600.0}}};
    QTest::newRow("UV PSD (10mm)") << Type{UvPsd10Detector, DetectorKind::UvPsd10mm, umPerMm, mm}
                                   << Spots{{{50.0, 2500.0, -3500.0}, {50.0, -600.0, 4000.0}}};
}

void TestLengths::lengthsAreWhereTheBeamIs()
{
    QFETCH(Type, type);
    QFETCH(Spots, spots);
    WindowFixture fixture(1, controllerWith(type.kind, spots));
    QVERIFY(fixture.openWithSystems());
    QVERIFY(describeDetectors(fixture, type.type, spots));
    QVERIFY(measure(fixture));
    for (int stage = 1; stage <= 2; ++stage) {
        const emulator::StageState state = fixture.controller().stage(stage);
        QCOMPARE(QPointF(state.beamXUm, state.beamYUm),
                 QPointF(spots[std::size_t(stage - 1)].xUm, spots[std::size_t(stage - 1)].yUm));
        const QPointF beam = QPointF(state.beamXUm, state.beamYUm) / type.micrometresPerUnit;
        QCOMPARE(error("Pointing plots", shownInPlot(fixture, stage), beam), QString());
        QCOMPARE(error("Position plots", shownOverTime(fixture, stage), beam), QString());
        QCOMPARE(error("Readouts", shownByReadouts(fixture, stage), beam), QString());
        QCOMPARE(error("Statistics", shownByStatistics(fixture, stage, type.unit), beam),
                 QString());
    }
}

QTEST_MAIN(TestLengths)
#include "tst_lengths.moc"
