#include "plots/rescaledialog.h"
#include "rescalebench.h"
#include "support/widgetcheck.h"

#include <QDoubleSpinBox>
#include <QLocale>

namespace {

constexpr int volts = 0;
constexpr int micrometres = 1;
constexpr int millimetres = 2;

constexpr const char* upperBox = "doubleSpinBox_UpperBound";
constexpr const char* lowerBox = "doubleSpinBox_LowerBound";

} // namespace

class TestRescaleDialog final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench = std::make_unique<RescaleBench<RescaleDialog>>(); }
    void cleanup();

    void formIsThatOfPositionsInVolts();
    void okIsReachedByWheelAndKeys();
    void unitIsKeptPerStage();
    void labelsNameTheUnitOfTheStage_data();
    void labelsNameTheUnitOfTheStage();
    void intensityOfStage1IsInVolts();
    void intensityOfStage2KeepsTheUnitOfTheLastUse();
    void timesOfStage2AreLabelledInVolts();
    void otherAxesLeaveTheLabels_data();
    void otherAxesLeaveTheLabels();
    void unknownUnitsLeaveTheLabels();
    void unitThatChangesWhileOpenChangesTheLabelsAlone();
    void unitOfTheOtherStageChangesNothingThatIsSeen();
    void limitsHoldTheValues();
    void limitsMayDiffer();
    void valuesAreRoundedToTwoDecimals();
    void numbersReadTheSameInEveryLocale();
    void okTellsTheLimits_data();
    void okTellsTheLimits();
    void okTellsTheAxisAndTheBox();
    void enterPressesOk_data();
    void enterPressesOk();
    void typedCommaIsADecimalPoint();
    void fieldsAreTypedOverAtEachOpening();
    void dialogIsUsedByKeyboardAlone();
    void escapeAndCancelTellNothing_data();
    void escapeAndCancelTellNothing();
    void boxIsKeptBetweenOpenings();

private:
    QDoubleSpinBox& upper() const { return bench->find<QDoubleSpinBox>(upperBox); }
    QDoubleSpinBox& lower() const { return bench->find<QDoubleSpinBox>(lowerBox); }
    /// The unit in both labels, without brackets.
    QString unitShown() const;
    QString lastRescaled() const;

    std::unique_ptr<RescaleBench<RescaleDialog>> bench;
};

void TestRescaleDialog::cleanup()
{
    bench.reset();
    QCOMPARE(leftWidgets(), QString());
}

QString TestRescaleDialog::unitShown() const
{
    const QString upperText = bench->text("label_2");
    const QString unit = upperText.section('[', 1).section(']', 0, 0);
    const bool agree = upperText == QStringLiteral("Upper limit [%1]").arg(unit)
                       && bench->text("label") == QStringLiteral("Lower limit [%1]").arg(unit);
    return agree ? unit : QStringLiteral("differ");
}

/// "axis lower upper", and "both" with the tick.
QString TestRescaleDialog::lastRescaled() const
{
    if (bench->rescaled.isEmpty())
        return QStringLiteral("nothing");
    const QList<QVariant> told = bench->rescaled.last();
    const QString text = QStringLiteral("%1 %2 %3")
                             .arg(told[0].toInt())
                             .arg(told[1].toDouble())
                             .arg(told[2].toDouble());
    return told[3].toBool() ? text + QStringLiteral(" both") : text;
}

void TestRescaleDialog::formIsThatOfPositionsInVolts()
{
    QCOMPARE(unitShown(), QString("V"));
    for (const QDoubleSpinBox* box : {&upper(), &lower()}) {
        QCOMPARE(box->minimum(), -5.0);
        QCOMPARE(box->maximum(), 5.0);
        QCOMPARE(box->singleStep(), 0.1);
        QCOMPARE(box->decimals(), 2);
        QVERIFY(box->alignment().testFlag(Qt::AlignRight));
    }
    QCOMPARE(bench->find<QCheckBox>("checkBox").text(), QString("Apply also for other stage"));
    QVERIFY(!bench->find<QCheckBox>("checkBox").isChecked());
}

void TestRescaleDialog::okIsReachedByWheelAndKeys()
{
    const auto& ok = bench->find<QPushButton>("okPushButton");
    QVERIFY(ok.autoDefault());
    QCOMPARE(ok.focusPolicy(), Qt::WheelFocus);
}

void TestRescaleDialog::unitIsKeptPerStage()
{
    QCOMPARE(bench->dialog.unit(1), volts);
    bench->dialog.setUnit(millimetres, 1);
    bench->dialog.setUnit(micrometres, 2);
    QCOMPARE(bench->dialog.unit(1), millimetres);
    QCOMPARE(bench->dialog.unit(2), micrometres);
}

void TestRescaleDialog::labelsNameTheUnitOfTheStage_data()
{
    QTest::addColumn<int>("axis");
    QTest::addColumn<int>("unit");
    QTest::addColumn<QString>("shown");
    for (const int axis : {1, 2}) {
        QTest::addRow("stage %d in volts", axis) << axis << volts << "V";
        QTest::addRow("stage %d in micrometres", axis)
            << axis << micrometres << QString::fromUtf8("\xCE\xBCm");
        QTest::addRow("stage %d in millimetres", axis) << axis << millimetres << "mm";
    }
}

void TestRescaleDialog::labelsNameTheUnitOfTheStage()
{
    QFETCH(int, axis);
    QFETCH(int, unit);
    const int stage = axis;
    const int otherStage = 3 - stage;
    bench->dialog.setUnit(unit, stage);
    bench->dialog.setUnit(unit == volts ? millimetres : volts, otherStage);
    bench->dialog.setAxis(axis);
    QTEST(unitShown(), "shown");
}

void TestRescaleDialog::intensityOfStage1IsInVolts()
{
    bench->dialog.setUnit(micrometres, 1);
    bench->dialog.setAxis(1);
    bench->dialog.setAxis(5);
    QCOMPARE(unitShown(), QString("V"));
}

void TestRescaleDialog::intensityOfStage2KeepsTheUnitOfTheLastUse()
{
    bench->dialog.setUnit(micrometres, 1);
    bench->dialog.setAxis(1);
    bench->dialog.setAxis(6);
    QCOMPARE(unitShown(), QString::fromUtf8("\xCE\xBCm"));
    bench->dialog.setAxis(5);
    bench->dialog.setAxis(6);
    QCOMPARE(unitShown(), QString("V"));
}

void TestRescaleDialog::timesOfStage2AreLabelledInVolts()
{
    bench->dialog.setUnit(millimetres, 2);
    bench->dialog.setAxis(2);
    bench->dialog.setAxis(4);
    QCOMPARE(unitShown(), QString("V"));
}

void TestRescaleDialog::otherAxesLeaveTheLabels_data()
{
    QTest::addColumn<int>("axis");
    for (const int axis : {-1, 0, 3, 6, 7})
        QTest::addRow("axis %d", axis) << axis;
}

void TestRescaleDialog::otherAxesLeaveTheLabels()
{
    QFETCH(int, axis);
    bench->dialog.setUnit(millimetres, 2);
    bench->dialog.setAxis(2);
    bench->dialog.setAxis(axis);
    QCOMPARE(bench->dialog.axis(), axis);
    QCOMPARE(unitShown(), QString("mm"));
    bench->dialog.setUnit(micrometres, 2);
    QCOMPARE(unitShown(), QString("mm"));
}

void TestRescaleDialog::unknownUnitsLeaveTheLabels()
{
    bench->dialog.setAxis(1);
    bench->dialog.setUnit(millimetres, 1);
    for (const int unit : {-1, 3}) {
        bench->dialog.setUnit(unit, 1);
        QCOMPARE(unitShown(), QString("mm"));
    }
}

void TestRescaleDialog::unitThatChangesWhileOpenChangesTheLabelsAlone()
{
    bench->dialog.setAxis(1);
    bench->dialog.setLimits(4.0, -4.0, 4.0, -4.0);
    bench->dialog.setUpperValue(3.0);
    bench->dialog.setLowerValue(-2.0);
    QVERIFY(bench->open());
    bench->dialog.setUnit(millimetres, 1);
    QCOMPARE(unitShown(), QString("mm"));
    QVERIFY(bench->dialog.isVisible());
    QCOMPARE(upper().maximum(), 4.0);
    QCOMPARE(lower().minimum(), -4.0);
    QVERIFY(bench->click("okPushButton"));
    QCOMPARE(lastRescaled(), QString("1 -2 3"));
}

void TestRescaleDialog::unitOfTheOtherStageChangesNothingThatIsSeen()
{
    bench->dialog.setAxis(1);
    bench->dialog.setUnit(millimetres, 2);
    QCOMPARE(unitShown(), QString("V"));
}

void TestRescaleDialog::limitsHoldTheValues()
{
    bench->dialog.setLimits(8.0, 0.0, 8.0, 0.0);
    bench->dialog.setUpperValue(12.5);
    bench->dialog.setLowerValue(-3.0);
    QCOMPARE(upper().value(), 8.0);
    QCOMPARE(lower().value(), 0.0);
}

void TestRescaleDialog::limitsMayDiffer()
{
    bench->dialog.setLimits(4.0, 3.0, 2.0, 1.0);
    QCOMPARE(upper().maximum(), 4.0);
    QCOMPARE(upper().minimum(), 3.0);
    QCOMPARE(lower().maximum(), 2.0);
    QCOMPARE(lower().minimum(), 1.0);
}

void TestRescaleDialog::valuesAreRoundedToTwoDecimals()
{
    bench->dialog.setUpperValue(1.006);
    bench->dialog.setLowerValue(-1.234);
    QCOMPARE(upper().text(), QString("1.01"));
    QCOMPARE(lower().text(), QString("-1.23"));
}

void TestRescaleDialog::numbersReadTheSameInEveryLocale()
{
    QLocale::setDefault(QLocale(QLocale::German));
    RescaleDialog dialog;
    dialog.setUpperValue(1.5);
    QCOMPARE(dialog.findChild<QDoubleSpinBox*>(upperBox)->text(), QString("1.50"));
    QLocale::setDefault(QLocale::c());
}

void TestRescaleDialog::okTellsTheLimits_data()
{
    QTest::addColumn<double>("upperValue");
    QTest::addColumn<double>("lowerValue");
    QTest::addColumn<QString>("told");
    QTest::newRow("in order") << 3.25 << -2.5 << "1 -2.5 3.25";
    QTest::newRow("crossed") << 1.0 << 2.0 << "1 1 2";
    QTest::newRow("equal") << 1.0 << 1.0 << "1 1 1.001";
    QTest::newRow("equal at the upper end") << 5.0 << 5.0 << "1 5 5.001";
}

void TestRescaleDialog::okTellsTheLimits()
{
    QFETCH(double, upperValue);
    QFETCH(double, lowerValue);
    bench->dialog.setAxis(1);
    bench->dialog.setUpperValue(upperValue);
    bench->dialog.setLowerValue(lowerValue);
    QVERIFY(bench->open());
    QVERIFY(bench->click("okPushButton"));
    QTEST(lastRescaled(), "told");
    QCOMPARE(bench->rescaled.count(), 1);
    QVERIFY(!bench->dialog.isVisible());
}

void TestRescaleDialog::okTellsTheAxisAndTheBox()
{
    bench->dialog.setAxis(6);
    bench->dialog.setUpperValue(4.0);
    QVERIFY(bench->open());
    QVERIFY(bench->click("checkBox"));
    QVERIFY(bench->click("okPushButton"));
    QCOMPARE(lastRescaled(), QString("6 0 4 both"));
}

void TestRescaleDialog::enterPressesOk_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<QString>("where");
    for (const char* where : {upperBox, lowerBox, "checkBox", "okPushButton"}) {
        QTest::addRow("Return in %s", where) << Qt::Key_Return << where;
        QTest::addRow("Enter in %s", where) << Qt::Key_Enter << where;
    }
}

void TestRescaleDialog::enterPressesOk()
{
    QFETCH(Qt::Key, key);
    QFETCH(QString, where);
    bench->dialog.setAxis(2);
    bench->dialog.setUpperValue(1.0);
    QVERIFY(bench->open());
    bench->find(where).setFocus();
    bench->press(key);
    QCOMPARE(lastRescaled(), QString("2 0 1"));
    QCOMPARE(bench->rescaled.count(), 1);
    QVERIFY(!bench->dialog.isVisible());
}

void TestRescaleDialog::typedCommaIsADecimalPoint()
{
    bench->dialog.setAxis(1);
    QVERIFY(bench->open());
    bench->type("2,5");
    bench->press(Qt::Key_Enter);
    QCOMPARE(lastRescaled(), QString("1 0 2.5"));
}

void TestRescaleDialog::fieldsAreTypedOverAtEachOpening()
{
    bench->dialog.setAxis(1);
    for (int opening = 0; opening < 2; ++opening) {
        bench->dialog.setUpperValue(3.0);
        bench->dialog.setLowerValue(-3.0);
        QVERIFY(bench->open());
        QCOMPARE(bench->focused(), QString(upperBox));
        QCOMPARE(upper().findChild<QLineEdit*>()->selectedText(), QString("3.00"));
        bench->press(Qt::Key_Tab);
        QCOMPARE(bench->focused(), QString(lowerBox));
        bench->press(Qt::Key_Escape);
        QVERIFY(!bench->dialog.isVisible());
    }
    // Opened again for another axis while it is open.
    QVERIFY(bench->open());
    bench->press(Qt::Key_Tab);
    bench->dialog.setUpperValue(4.0);
    QVERIFY(bench->open());
    QCOMPARE(bench->focused(), QString(upperBox));
    QCOMPARE(upper().findChild<QLineEdit*>()->selectedText(), QString("4.00"));
}

void TestRescaleDialog::dialogIsUsedByKeyboardAlone()
{
    bench->dialog.setAxis(1);
    QVERIFY(bench->open());
    bench->type("4");
    bench->press(Qt::Key_Tab);
    bench->type("-1.5");
    bench->press(Qt::Key_Tab);
    QCOMPARE(bench->focused(), QString("checkBox"));
    bench->press(Qt::Key_Space);
    bench->press(Qt::Key_Tab);
    bench->press(Qt::Key_Tab);
    QVERIFY(bench->focused().contains("PushButton"));
    bench->press(Qt::Key_Tab);
    QCOMPARE(bench->focused(), QString(upperBox));
    bench->press(Qt::Key_Enter);
    QCOMPARE(lastRescaled(), QString("1 -1.5 4 both"));
}

void TestRescaleDialog::escapeAndCancelTellNothing_data()
{
    QTest::addColumn<bool>("byKey");
    QTest::newRow("Escape") << true;
    QTest::newRow("Cancel") << false;
}

void TestRescaleDialog::escapeAndCancelTellNothing()
{
    QFETCH(bool, byKey);
    bench->dialog.setAxis(1);
    QVERIFY(bench->open());
    bench->type("4");
    if (byKey)
        bench->press(Qt::Key_Escape);
    else
        QVERIFY(bench->click("cancelPushButton"));
    QVERIFY(!bench->dialog.isVisible());
    QCOMPARE(bench->rescaled.count(), 0);
}

void TestRescaleDialog::boxIsKeptBetweenOpenings()
{
    bench->dialog.setAxis(1);
    QVERIFY(bench->open());
    QVERIFY(bench->click("checkBox"));
    bench->press(Qt::Key_Escape);
    bench->dialog.setAxis(5);
    QVERIFY(bench->open());
    QVERIFY(bench->find<QCheckBox>("checkBox").isChecked());
}

QTEST_MAIN(TestRescaleDialog)
#include "tst_rescaledialog.moc"
