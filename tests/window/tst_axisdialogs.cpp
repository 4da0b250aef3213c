#include "plots/rescaledialog.h"
#include "plots/rescaletimeaxisdlg.h"
#include "stagebench.h"
#include "window/axisdialogs.h"
#include "window/plotframe.h"
#include "window/unitchoice.h"

#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QScrollArea>
#include <QSignalSpy>
#include <QtTest>
#include <qwt_scale_widget.h>

namespace {

struct Bench : StageBench
{
    /// The dialog that is open, and what its fields say.
    QString shown() const
    {
        const auto& values = *parent.findChild<RescaleDialog*>();
        const auto& times = *parent.findChild<RescaleTimeAxisDlg*>();
        QStringList texts;
        if (values.isVisible())
            texts << values.windowTitle()
                  << values.findChild<QDoubleSpinBox*>("doubleSpinBox_LowerBound")->text()
                  << values.findChild<QDoubleSpinBox*>("doubleSpinBox_UpperBound")->text();
        if (times.isVisible())
            texts << times.windowTitle()
                  << times.findChild<QLineEdit*>("lineEdit_LowerTime")->text()
                  << times.findChild<QLineEdit*>("lineEdit_UpperTime")->text();
        return texts.join(", ");
    }

    QWidget box1;
    QWidget box2;
    QScrollArea scrollArea;
    PlotFrame frame{stages, {box1, box2, scrollArea}};
    AxisDialogs dialogs{stages, frame, parent};
};

} // namespace

class TestAxisDialogs final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench = std::make_unique<Bench>(); }
    void cleanup() { bench.reset(); }

    void clickAsksForThePresentLimits_data();
    void clickAsksForThePresentLimits();
    void numberAsksForWhatItIsGiven_data();
    void numberAsksForWhatItIsGiven();
    void otherNumbersAskForNothing();
    void rangeIsSetBeforeTheNumbers();
    void unitsReachTheirStage();
    void answersAreTold();

private:
    std::unique_ptr<Bench> bench;
};

void TestAxisDialogs::clickAsksForThePresentLimits_data()
{
    QTest::addColumn<QString>("plotName");
    QTest::addColumn<int>("axis");
    QTest::addColumn<QString>("shown");
    QTest::newRow("position 1") << "positionPlot1" << int(QwtPlot::yLeft)
                                << "Stage 1: Rescale x/y axis, 1.00, 1.50";
    QTest::newRow("position 2") << "positionPlot2" << int(QwtPlot::yLeft)
                                << "Stage 2: Rescale x/y axis, 2.00, 2.50";
    QTest::newRow("intensity 1") << "intensityPlot1" << int(QwtPlot::yLeft)
                                 << "Stage 1: Rescale i axis, 5.00, 5.50";
    QTest::newRow("intensity 2") << "intensityPlot2" << int(QwtPlot::yLeft)
                                 << "Stage 2: Rescale i axis, 6.00, 6.50";
    for (const auto& [place, axis] : {std::pair{QStringLiteral("position"), QwtPlot::xTop},
                                      std::pair{QStringLiteral("intensity"), QwtPlot::xBottom}}) {
        QTest::newRow(qPrintable("time 1 at the " + place))
            << place + "Plot1" << int(axis) << "Stage 1:  Rescale Time Axis, 000:00:03, 000:00:30";
        QTest::newRow(qPrintable("time 2 at the " + place))
            << place + "Plot2" << int(axis) << "Stage 2:  Rescale Time Axis, 000:00:04, 000:00:40";
    }
}

void TestAxisDialogs::clickAsksForThePresentLimits()
{
    QFETCH(QString, plotName);
    QFETCH(int, axis);
    for (const int axisId : {1, 2, 5, 6})
        bench->frame.rescaleAxis(axisId, axisId, axisId + 0.5, false);
    bench->frame.rescaleTimeAxis(3, 3, 30, false);
    bench->frame.rescaleTimeAxis(4, 4, 40, false);
    QTest::mouseClick(bench->parent.findChild<GenericPlot*>(plotName)->axisWidget(axis),
                      Qt::LeftButton);
    QTEST(bench->shown(), "shown");
}

void TestAxisDialogs::numberAsksForWhatItIsGiven_data()
{
    QTest::addColumn<int>("axisId");
    QTest::addColumn<QString>("shown");
    QTest::newRow("1") << 1 << "Stage 1: Rescale x/y axis, 1.00, 3.00";
    QTest::newRow("2") << 2 << "Stage 2: Rescale x/y axis, 1.00, 3.00";
    QTest::newRow("3") << 3 << "Stage 1:  Rescale Time Axis, 000:00:01, 000:00:03";
    QTest::newRow("4") << 4 << "Stage 2:  Rescale Time Axis, 000:00:01, 000:00:03";
    QTest::newRow("5") << 5 << "Stage 1: Rescale i axis, 1.00, 3.00";
    QTest::newRow("6") << 6 << "Stage 2: Rescale i axis, 1.00, 3.00";
}

void TestAxisDialogs::numberAsksForWhatItIsGiven()
{
    QFETCH(int, axisId);
    bench->dialogs.askForValues(axisId, 3.0, 1.0);
    bench->dialogs.askForTimes(axisId, 1, 3);
    QTEST(bench->shown(), "shown");
}

void TestAxisDialogs::otherNumbersAskForNothing()
{
    for (const int axisId : {-1, 0, 7}) {
        bench->dialogs.askForValues(axisId, 3.0, 1.0);
        bench->dialogs.askForTimes(axisId, 1, 3);
    }
    QCOMPARE(bench->shown(), QString());
}

void TestAxisDialogs::rangeIsSetBeforeTheNumbers()
{
    bench->stages[0].plots().setPositionRange(4500.0, -4500.0);
    bench->dialogs.askForValues(1, 3000.0, -3000.0);
    QCOMPARE(bench->shown(), QString("Stage 1: Rescale x/y axis, -3000.00, 3000.00"));
    bench->dialogs.askForValues(2, 3000.0, -3000.0);
    QCOMPARE(bench->shown(), QString("Stage 2: Rescale x/y axis, -5.00, 5.00"));
}

void TestAxisDialogs::unitsReachTheirStage()
{
    bench->dialogs.showUnit(PositionUnit::Millimetre, Stage::One);
    bench->dialogs.showUnit(PositionUnit::Micrometre, Stage::Two);
    const auto& values = *bench->parent.findChild<RescaleDialog*>();
    QCOMPARE(values.unit(1), 2);
    QCOMPARE(values.unit(2), 1);
}

void TestAxisDialogs::answersAreTold()
{
    const QSignalSpy values(&bench->dialogs, &AxisDialogs::valuesChosen);
    const QSignalSpy times(&bench->dialogs, &AxisDialogs::timesChosen);
    emit bench->parent.findChild<RescaleDialog*>()->axisRescaled(2, 1.0, 3.0, true);
    emit bench->parent.findChild<RescaleTimeAxisDlg*>()->axisRescaled(4, 1, 20, true);
    QCOMPARE(values.count(), 1);
    QCOMPARE(values.first(), (QVariantList{2, 1.0, 3.0, true}));
    QCOMPARE(times.count(), 1);
    QCOMPARE(times.first(), (QVariantList{4, 1, 20, true}));
}

QTEST_MAIN(TestAxisDialogs)
#include "tst_axisdialogs.moc"
