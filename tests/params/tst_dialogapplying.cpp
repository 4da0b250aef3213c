// Apply in the parameter dialog: what goes over the wire, what the form and the detectors become,
// and what is told of a failure.

#include "paramsbench.h"
#include "support/bytes.h"
#include "support/logcapture.h"

#include <QAbstractButton>
#include <QDoubleSpinBox>
#include <QMessageBox>
#include <QPushButton>
#include <QtTest>

using emulator::ControllerOptions;
using emulator::on;
using emulator::Rule;

Q_DECLARE_METATYPE(emulator::Rule)

namespace {

constexpr char apply[] = "pushButtonApply";
constexpr char triggers[] = "checkBoxDisplayLowRepetitionWithTriggers";
constexpr int rateHz = 300;

/// What Apply sends when everything comes from the external inputs.
QByteArrayList externalEverywhere()
{
    return {bytes("5350460100003b"),   bytes("5350460200003b"),   bytes("5344530100003b"),
            bytes("5344530200003b"),   bytes("534149017800003b"), bytes("534149017900003b"),
            bytes("534149027800003b"), bytes("534149027900003b")};
}

ControllerOptions externalController()
{
    ControllerOptions options;
    options.pFactorMv = 0;
    return options;
}

bool isChecked(const ParamsBench& bench, const QString& name)
{
    return bench.find<QAbstractButton>(name).isChecked();
}

/// Chooses software everywhere and types values. The dialog has to offer the sensitivity.
bool wishBySoftware(const ParamsBench& bench)
{
    return bench.click("radioButton_Adjust_intern") && bench.click("radioButton_Adjust_intern_2")
           && bench.click("radioButton_sensitivity_software")
           && bench.click("radioButton_sensitivity_software_2")
           && bench.type("doubleSpinBox_PFactor", "1.5")
           && bench.type("doubleSpinBox_PFactor_2", "0.29")
           && bench.type("doubleSpinBox_AdjustX", "-1")
           && bench.type("doubleSpinBox_AdjustY", "0.25")
           && bench.type("doubleSpinBox_AdjustX_2", "0")
           && bench.type("doubleSpinBox_AdjustY_2", "-5")
           && bench.type("doubleSpinBox_sens_1", "0.7") && bench.type("doubleSpinBox_sens_2", "5");
}

QByteArrayList softwareEverywhere()
{
    return {bytes("5350460105dc3b"),   bytes("5350460201223b"),   bytes("5344530102bc3b"),
            bytes("5344530213883b"),   bytes("5341490178fc183b"), bytes("534149017900fa3b"),
            bytes("534149027800003b"), bytes("5341490279ec783b")};
}

} // namespace

class TestDialogApplying : public QObject
{
    Q_OBJECT

private slots:
    void everythingBySoftwareIsSent();
    void everythingExternalIsSentAsZeros_data();
    void everythingExternalIsSentAsZeros();
    void runningStreamIsStartedAgain_data();
    void runningStreamIsStartedAgain();
    void valuesAreCutToMillivolts_data();
    void valuesAreCutToMillivolts();
    void valueThatIsStillBeingTypedCounts();
    void quadrantDetectorIsNotAdjusted();
    void detectorsBecomeWhatWasChosen();
    void diameterIsKeptByEveryType();
    void triggersBecomeWhatWasTicked();
    void streamByTriggersFollows();
    void failedPFactorSetsBothStagesExternal();
    void silenceForAnExternalPFactorIsTold();
    void lastFailureIsTheOneInTheBox();
    void boxOfFailuresStopsNobody();
    void failureOnceIsForgottenByTheNextApply();
    void systemThatIsDownIsLeftAlone();
};

void TestDialogApplying::everythingBySoftwareIsSent()
{
    const SensitivityOffered offered;
    ParamsBench bench({}, recordWithTypes(2, 5));
    QVERIFY(bench.open());
    QVERIFY(wishBySoftware(bench));
    QVERIFY(bench.clickAndWait(apply));
    QCOMPARE(bench.commands(), softwareEverywhere());
    QVERIFY(bench.failure().isNull());
    QVERIFY(!bench.link.client.isStreaming());
}

void TestDialogApplying::everythingExternalIsSentAsZeros_data()
{
    addControllerKinds();
}

void TestDialogApplying::everythingExternalIsSentAsZeros()
{
    QFETCH(ControllerKind, kind);
    kind.options.pFactorMv = 0;
    ParamsBench bench(kind.options, kind.record(2, 2));
    QVERIFY(bench.open());
    QVERIFY(bench.clickAndWait(apply));
    // The sensitivity is set whatever the firmware. Kept: one that does not know it refuses.
    QCOMPARE(bench.commands(), externalEverywhere());
    QVERIFY(bench.failure().isNull());
    QVERIFY(!bench.link.client.isStreaming());
}

void TestDialogApplying::runningStreamIsStartedAgain_data()
{
    addControllerKinds();
}

void TestDialogApplying::runningStreamIsStartedAgain()
{
    QFETCH(ControllerKind, kind);
    kind.options.pFactorMv = 0;
    ParamsBench bench(kind.options, kind.record());
    QVERIFY(bench.openStreaming(rateHz));
    QVERIFY(bench.clickAndWait(apply));
    QCOMPARE(bench.commands(),
             QByteArrayList{"CLS;"} + externalEverywhere() + QByteArrayList{kind.start(rateHz)});
    QVERIFY(bench.streamsAgain(rateHz));
    QCOMPARE(bench.streamErrors, 0);
}

void TestDialogApplying::valuesAreCutToMillivolts_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QByteArray>("sent");
    QTest::newRow("as it is") << "0.29" << bytes("5350460101223b");
    QTest::newRow("stored a little below") << "2.01" << bytes("5350460107d93b");
    QTest::newRow("with a comma") << "1,5" << bytes("5350460105dc3b");
}

void TestDialogApplying::valuesAreCutToMillivolts()
{
    QFETCH(QString, typed);
    ParamsBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.type("doubleSpinBox_PFactor", typed));
    QVERIFY(bench.clickAndWait(apply));
    QTEST(bench.commands().value(0), "sent");
}

void TestDialogApplying::valueThatIsStillBeingTypedCounts()
{
    ParamsBench bench({}, recordWithTypes(2, 0));
    QVERIFY(bench.open());
    QVERIFY(bench.click("radioButton_Adjust_intern"));
    auto& field = bench.find<QDoubleSpinBox>("doubleSpinBox_AdjustX");
    field.setKeyboardTracking(false);
    field.setFocus();
    field.selectAll();
    QTest::keyClicks(&field, "1.001");
    bench.find<QPushButton>(apply).click();
    QCOMPARE(bench.commands().value(4), bytes("534149017803e83b"));
}

void TestDialogApplying::quadrantDetectorIsNotAdjusted()
{
    ParamsBench bench({}, recordWithTypes(2, 2));
    QVERIFY(bench.open());
    QVERIFY(bench.click("radioButton_Adjust_intern"));
    QVERIFY(bench.type("doubleSpinBox_AdjustX", "1"));
    QVERIFY(bench.type("doubleSpinBox_AdjustY", "-1"));
    QVERIFY(bench.choose("comboBox_DetecType", 1));
    QVERIFY(bench.clickAndWait(apply));
    QCOMPARE(bench.commands().mid(4, 2), externalEverywhere().mid(4, 2));
}

void TestDialogApplying::detectorsBecomeWhatWasChosen()
{
    ParamsBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.choose("comboBox_DetecType", 1));
    QVERIFY(bench.click("radioButtonPositionInLength"));
    QVERIFY(bench.type("beamDiameterSpinBox", "123.4"));
    QVERIFY(bench.choose("comboBox_DetecType_2", 5));
    QVERIFY(bench.clickAndWait(apply));
    QCOMPARE(bench.detectors[0]->typeCode(), int(QuadrantDetector));
    QCOMPARE(bench.detectors[0]->calculation, 1);
    QCOMPARE(bench.detectors[0]->beamDiameter, 123.4);
    QCOMPARE(bench.detectors[1]->typeCode(), int(UvPsd10Detector));
    QCOMPARE(bench.detectors[1]->calculation, 0);
    QCOMPARE(bench.detectors[1]->beamDiameter, 50.0);
}

void TestDialogApplying::diameterIsKeptByEveryType()
{
    ConnectionSettings record = recordWithTypes(1, 1);
    record.beamDiameter = {70, 80};
    ParamsBench bench({}, record);
    QVERIFY(bench.open());
    QVERIFY(bench.choose("comboBox_DetecType", 2));
    QVERIFY(bench.clickAndWait(apply));
    QVERIFY(bench.choose("comboBox_DetecType", 0));
    QVERIFY(bench.clickAndWait(apply));
    QCOMPARE(bench.detectors[0]->typeCode(), int(SelectDetector));
    QCOMPARE(bench.detectors[0]->beamDiameter, 70.0);
    QCOMPARE(bench.detectors[1]->beamDiameter, 80.0);
}

void TestDialogApplying::triggersBecomeWhatWasTicked()
{
    ControllerOptions options;
    options.triggerCapable = true;
    ParamsBench bench(options);
    QVERIFY(bench.open());
    QVERIFY(bench.click(triggers));
    QVERIFY(!bench.link.client.triggerMode());
    QVERIFY(bench.clickAndWait(apply));
    QVERIFY(bench.link.client.triggerMode());
    QCOMPARE(bench.detectors.pulsedLaser, 1);
    QVERIFY(bench.click(triggers));
    QVERIFY(bench.clickAndWait(apply));
    QVERIFY(!bench.link.client.triggerMode());
    QCOMPARE(bench.detectors.pulsedLaser, 0);
}

void TestDialogApplying::streamByTriggersFollows()
{
    ControllerOptions options;
    options.triggerCapable = true;
    ParamsBench bench(options);
    QVERIFY(bench.openStreaming(rateHz));
    QVERIFY(bench.click(triggers));
    QVERIFY(bench.clickAndWait(apply));
    QCOMPARE(bench.commands().last(), QByteArray("SPS\0\0;", 6));
    QVERIFY(bench.link.client.isStreaming());
}

void TestDialogApplying::failedPFactorSetsBothStagesExternal()
{
    ParamsBench bench;
    QVERIFY(bench.open());
    bench.link.controller.setRules({on("SPF\1").refuse()});
    QVERIFY(bench.clickAndWait(apply));
    QCOMPARE(bench.commands().value(1), bytes("5350460200003b"));
    QVERIFY(isChecked(bench, "radioButton_PFactor_extern"));
    QVERIFY(isChecked(bench, "radioButton_PFactor_extern_2"));
    QVERIFY(!bench.find<QWidget>("doubleSpinBox_PFactor_2").isEnabled());
}

void TestDialogApplying::silenceForAnExternalPFactorIsTold()
{
    ParamsBench bench(externalController());
    QVERIFY(bench.open());
    bench.link.controller.setRules({on("SPF").refuse().once(), on("SPF\2").ignore()});
    QVERIFY(bench.clickAndWait(apply));
    QCOMPARE(bench.failure(), QString("P-Factor of stage 2 wasn't set external!"));
}

void TestDialogApplying::lastFailureIsTheOneInTheBox()
{
    const SensitivityOffered offered;
    ParamsBench bench({}, recordWithTypes(2, 2));
    QVERIFY(bench.open());
    QVERIFY(wishBySoftware(bench));
    bench.link.controller.setRules({on("SPF\2").refuse(), on("SDS\1").refuse()});
    const LogCapture log;
    QVERIFY(bench.clickAndWait(apply));
    QCOMPARE(bench.failure(), QString("Sensitivity cable of detector 1 is not connected!"));
    QCOMPARE(log.lines().filter("P-Factor of stage 2 wasn't set!").size(), 1);
}

void TestDialogApplying::boxOfFailuresStopsNobody()
{
    ParamsBench bench;
    QVERIFY(bench.open());
    bench.link.controller.setRules({on("SPF\1").refuse().once()});
    QVERIFY(bench.clickAndWait(apply));
    const auto& box = bench.find<QMessageBox>("errorBox");
    QVERIFY(box.isVisible());
    QVERIFY(!box.isModal());
    QCOMPARE(box.windowTitle(), QString("Information"));
    QCOMPARE(box.text(), QString("An error has occurred."));
    QCOMPARE(box.standardButtons(), QMessageBox::Ok);
    QVERIFY(bench.clickAndWait("pushButtonRefresh"));
}

void TestDialogApplying::failureOnceIsForgottenByTheNextApply()
{
    ParamsBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.type("doubleSpinBox_PFactor", "1.5"));
    bench.link.controller.setRules({on("SPF\1").refuse().once()});
    QVERIFY(bench.clickAndWait(apply));
    QVERIFY(bench.click("radioButton_PFactor_intern"));
    bench.link.controller.clearWire();
    const LogCapture log;
    QVERIFY(bench.clickAndWait(apply));
    QCOMPARE(bench.commands().value(0), bytes("5350460105dc3b"));
    QCOMPARE(bench.link.controller.stage(1).pFactorMv, 1500);
    QVERIFY(log.lines().filter("warning").isEmpty());
}

void TestDialogApplying::systemThatIsDownIsLeftAlone()
{
    ParamsBench bench;
    QVERIFY(bench.open());
    bench.link.client.disconnectController();
    QVERIFY(bench.choose("comboBox_DetecType", 2));
    QVERIFY(bench.click(apply));
    QCOMPARE(bench.detectors[0]->typeCode(), int(SelectDetector));
    QVERIFY(bench.failure().isNull());
}

QTEST_MAIN(TestDialogApplying)
#include "tst_dialogapplying.moc"
