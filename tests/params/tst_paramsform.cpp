// The controls of the parameter dialog as a person uses them, by mouse and keyboard.

#include "paramsbench.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest>

namespace {

constexpr char type1[] = "comboBox_DetecType";
constexpr char type2[] = "comboBox_DetecType_2";
constexpr char apply[] = "pushButtonApply";

/// A dialog that was never opened.
struct NewDialog
{
    ParamsDialog dialog{{[](const Connection&) { return SystemState(); },
                         [](const Connection&, Stage, bool) {}, [] { return 100; }},
                        nullptr};

    template <typename Widget>
    Widget& find(const QString& name) const
    {
        auto* child = dialog.findChild<Widget*>(name);
        if (!child)
            qFatal("There is no %s", qPrintable(name));
        return *child;
    }
};

bool isChecked(const ParamsBench& bench, const QString& name)
{
    return bench.find<QAbstractButton>(name).isChecked();
}

bool isEnabled(const ParamsBench& bench, const QString& name)
{
    return bench.find<QWidget>(name).isEnabled();
}

} // namespace

class TestParamsForm : public QObject
{
    Q_OBJECT

private slots:
    void fieldsHaveTheirRanges_data();
    void fieldsHaveTheirRanges();
    void twinsHaveTheSameTips_data();
    void twinsHaveTheSameTips();
    void textsAreToTheLetter_data();
    void textsAreToTheLetter();
    void newFormIsExternalEverywhere();
    void newFormOffersNoGroups();
    void typesAreThoseOfTheDetectors();
    void buttonsAreNoDefaults();
    void withoutASystemNothingCanBeChosen();
    void sourcesOfAPairExcludeEachOther_data();
    void sourcesOfAPairExcludeEachOther();
    void clickOnACheckedSourceChoosesTheOther_data();
    void clickOnACheckedSourceChoosesTheOther();
    void pFactorsHaveOneSource_data();
    void pFactorsHaveOneSource();
    void adjustFollowsTheType_data();
    void adjustFollowsTheType();
    void quadrantDetectorEndsTheAdjustByUser();
    void diameterFollowsUnitAndType_data();
    void diameterFollowsUnitAndType();
    void withoutATypeThereIsNoLength();
    void stagesHaveUnitsOfTheirOwn();
    void keyboardReachesEverythingInReadingOrder();
    void keyboardOperatesTheForm();
    void enterAppliesNothing();
    void escapeCloses();
    void closeCloses();
};

void TestParamsForm::fieldsHaveTheirRanges_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<double>("least");
    QTest::addColumn<double>("most");
    QTest::addColumn<double>("step");
    QTest::addColumn<int>("decimals");
    QTest::addColumn<double>("value");
    const auto both = [](const char* name, const char* twin, double least, double most, double step,
                         int decimals, double value) {
        QTest::newRow(name) << name << least << most << step << decimals << value;
        QTest::newRow(twin) << twin << least << most << step << decimals << value;
    };
    both("beamDiameterSpinBox", "beamDiameterSpinBox_2", 0.1, 10000, 10, 1, 50);
    both("doubleSpinBox_PFactor", "doubleSpinBox_PFactor_2", 0.01, 5, 0.01, 2, 0.01);
    both("doubleSpinBox_AdjustX", "doubleSpinBox_AdjustX_2", -5, 5, 0.1, 3, 0);
    both("doubleSpinBox_AdjustY", "doubleSpinBox_AdjustY_2", -5, 5, 0.1, 3, 0);
    both("doubleSpinBox_sens_1", "doubleSpinBox_sens_2", 0, 5, 0.1, 2, 0);
    both("doubleSpinBox_SetHoldX", "doubleSpinBox_SetHoldX_2", -5, 5, 1, 3, 0);
    both("doubleSpinBox_SetHoldY", "doubleSpinBox_SetHoldY_2", -5, 5, 1, 3, 0);
}

void TestParamsForm::fieldsHaveTheirRanges()
{
    QFETCH(QString, name);
    const NewDialog bench;
    const auto& field = bench.find<QDoubleSpinBox>(name);
    QTEST(field.minimum(), "least");
    QTEST(field.maximum(), "most");
    QTEST(field.singleStep(), "step");
    QTEST(field.decimals(), "decimals");
    QTEST(field.value(), "value");
    const bool isHold = name.contains("SetHold");
    QCOMPARE(field.isReadOnly(), isHold);
    QCOMPARE(field.buttonSymbols() == QAbstractSpinBox::NoButtons, isHold);
}

void TestParamsForm::twinsHaveTheSameTips_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("twin");
    QTest::addColumn<QString>("tip");
    const auto row = [](const char* name, const char* tip, const char* twin = nullptr) {
        const QString other = twin ? QString(twin) : QString(name) + "_2";
        QTest::newRow(name) << name << other << tip;
    };
    row("beamDiameterSpinBox", "Needed for the calculation of the position on 4QD and WID.");
    row("radioButtonPositionInLength",
        "Select unit used to display the position of the beam on the detector in the application "
        "and for data recording.\nDefaults to V for the plots when choosing different units for "
        "the same stage for multiple connected systems.");
    row("doubleSpinBox_PFactor", "Adjustment of the control speed.");
    row("radioButton_PFactor_intern", "The software-defined value is applied.");
    row("radioButton_PFactor_extern", "The value of the external analog input is applied.");
    row("doubleSpinBox_AdjustX", "Move target position on the PSD.");
    row("doubleSpinBox_AdjustY", "Move target position on the PSD.");
    row("doubleSpinBox_sens_1",
        "Define sensitivity of detectors via software or external analog input.\nOnly has an "
        "effect if controller and detectors support this functionality.",
        "doubleSpinBox_sens_2");
    row("radioButtonPositionInVolt",
        "Select unit used to display the position of the beam on the detector in the application "
        "and for data recording.\nDefaults to V for the plots when choosing different units for "
        "the same stage for multiple connected systems.");
    row("doubleSpinBox_SetHoldX", "Stabilize beam to currently detected location.");
    row("doubleSpinBox_SetHoldY", "Stabilize beam to currently detected location.");
    row("checkBoxDisplayLowRepetitionWithTriggers",
        "A trigger pulse detected at the controller leads to transmission of a data packet. The "
        "sampling rate is no longer considered.",
        "checkBoxDisplayLowRepetitionWithTriggers");
    row("pushButton_SetHold",
        "The unstabilized position on the detector is used as the new target position.\nOnly "
        "available for PSD.");
}

void TestParamsForm::twinsHaveTheSameTips()
{
    QFETCH(QString, name);
    QFETCH(QString, twin);
    const NewDialog bench;
    QTEST(bench.find<QWidget>(name).toolTip(), "tip");
    QTEST(bench.find<QWidget>(twin).toolTip(), "tip");
}

void TestParamsForm::textsAreToTheLetter_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("times");
    const auto row = [](const char* text, int times) {
        QTest::newRow(text) << QString::fromUtf8(text) << times;
    };
    // The stages head two columns, and name the two buttons of a group.
    row("Stage 1", 2);
    row("Stage 2", 2);
    row("Type", 1);
    row("Beam diameter", 1);
    // The Greek letter, where the files of recordings have the micro sign. Kept.
    row("[\xce\xbcm]", 1);
    row("in [mm/\xce\xbcm]", 2);
    row("in [V]", 2);
    // Kept as it is known to those who use it.
    row("Calculate postion", 1);
    row("P-Factor", 1);
    row("Adjust-In", 1);
    row("Sensitivity in [V]", 1);
    row("Set & Hold ", 1);
    row("X in [V]", 2);
    row("Y in [V]", 2);
    row("software", 6);
    row("external", 6);
    row("Set", 2);
    row("Display low repetition rates with triggers", 1);
    row("Activate", 1);
    for (const char* button :
         {"Save", "Refresh", "Apply", "Close", "Apply positions", "Lock 2nd subsystem"})
        row(button, 1);
    row("Lock subsystem on path of common detectors", 1);
    row("Beam Overlay", 1);
    row("2nd subsystem of group: ", 1);
}

void TestParamsForm::textsAreToTheLetter()
{
    QFETCH(QString, text);
    const NewDialog bench;
    int found = 0;
    for (const auto* label : bench.dialog.findChildren<QLabel*>())
        found += label->text() == text ? 1 : 0;
    for (const auto* button : bench.dialog.findChildren<QAbstractButton*>())
        found += button->text() == text ? 1 : 0;
    QTEST(found, "times");
}

void TestParamsForm::newFormIsExternalEverywhere()
{
    const NewDialog bench;
    for (const QString stage : {"", "_2"}) {
        for (const char* source : {"radioButton_PFactor_extern", "radioButton_Adjust_extern",
                                   "radioButton_sensitivity_extern", "radioButtonPositionInVolt"})
            QVERIFY2(bench.find<QRadioButton>(source + stage).isChecked(), source);
        for (const char* field :
             {"doubleSpinBox_PFactor", "doubleSpinBox_AdjustX", "doubleSpinBox_AdjustY",
              "beamDiameterSpinBox", "radioButtonPositionInVolt", "radioButtonPositionInLength",
              "pushButton_SetHold"})
            QVERIFY2(!bench.find<QWidget>(field + stage).isEnabled(), field);
    }
    QVERIFY(!bench.find<QWidget>("doubleSpinBox_sens_1").isEnabled());
    QVERIFY(!bench.find<QWidget>("doubleSpinBox_sens_2").isEnabled());
    QCOMPARE(bench.dialog.windowTitle(), QString("Parameters"));
}

void TestParamsForm::newFormOffersNoGroups()
{
    const NewDialog bench;
    for (const char* name :
         {"frame_2", "multiLine", "lockSubsystemButton", "detectorLabel1", "detectorLabel2"})
        QVERIFY2(bench.find<QWidget>(name).isHidden(), name);
    const auto& groupFrame = bench.find<QFrame>("frame_2");
    for (const char* name : {"stabPushButton", "stab2PushButton", "label_29", "label_30",
                             "label_31", "partnerLabel", "alignPushButton"})
        QVERIFY2(groupFrame.isAncestorOf(&bench.find<QWidget>(name)), name);
}

void TestParamsForm::typesAreThoseOfTheDetectors()
{
    const NewDialog bench;
    for (const char* name : {type1, type2}) {
        const auto& types = bench.find<QComboBox>(name);
        QStringList texts;
        for (int i = 0; i < types.count(); ++i)
            texts.append(types.itemText(i));
        QCOMPARE(texts,
                 QStringList({"select", "4QD", "PSD", "WID", "UV PSD (4mm)", "UV PSD (10mm)"}));
        QCOMPARE(types.currentIndex(), 0);
    }
}

void TestParamsForm::buttonsAreNoDefaults()
{
    const NewDialog bench;
    for (const char* name :
         {"pushButtonSave", "pushButtonRefresh", "pushButtonApply", "pushButtonCloseParams",
          "pushButton_SetHold", "pushButton_SetHold_2"}) {
        const auto& button = bench.find<QPushButton>(name);
        QVERIFY2(!button.autoDefault() && !button.isDefault() && !button.isCheckable(), name);
    }
}

void TestParamsForm::withoutASystemNothingCanBeChosen()
{
    ParamsBench bench;
    bench.dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&bench.dialog));
    QVERIFY(bench.click("radioButton_PFactor_intern"));
    QVERIFY(isChecked(bench, "radioButton_PFactor_extern"));
    QVERIFY(!isChecked(bench, "radioButton_PFactor_intern"));
    QVERIFY(!bench.choose(type1, 2));
    QCOMPARE(bench.find<QComboBox>(type1).currentIndex(), 0);
    QVERIFY(!isEnabled(bench, "radioButton_Adjust_intern"));
}

void TestParamsForm::sourcesOfAPairExcludeEachOther_data()
{
    QTest::addColumn<QString>("software");
    QTest::addColumn<QString>("external");
    QTest::addColumn<QString>("field");
    const auto row = [](const char* software, const char* external, const char* field) {
        QTest::newRow(software) << QString(software) << QString(external) << QString(field);
    };
    row("radioButton_PFactor_intern", "radioButton_PFactor_extern", "doubleSpinBox_PFactor");
    row("radioButton_PFactor_intern_2", "radioButton_PFactor_extern_2", "doubleSpinBox_PFactor_2");
    row("radioButton_Adjust_intern", "radioButton_Adjust_extern", "doubleSpinBox_AdjustX");
    row("radioButton_Adjust_intern_2", "radioButton_Adjust_extern_2", "doubleSpinBox_AdjustY_2");
    row("radioButton_sensitivity_software", "radioButton_sensitivity_extern",
        "doubleSpinBox_sens_1");
    row("radioButton_sensitivity_software_2", "radioButton_sensitivity_extern_2",
        "doubleSpinBox_sens_2");
}

void TestParamsForm::sourcesOfAPairExcludeEachOther()
{
    QFETCH(QString, software);
    QFETCH(QString, external);
    QFETCH(QString, field);
    const SensitivityOffered offered;
    ParamsBench bench({}, recordWithTypes(2, 2));
    QVERIFY(bench.open());
    if (isChecked(bench, software))
        QVERIFY(bench.click(external));
    QVERIFY(isChecked(bench, external) && !isChecked(bench, software));
    QVERIFY(!isEnabled(bench, field));
    QVERIFY(bench.click(software));
    QVERIFY(isChecked(bench, software) && !isChecked(bench, external));
    QVERIFY(isEnabled(bench, field));
    QVERIFY(bench.click(external));
    QVERIFY(isChecked(bench, external) && !isChecked(bench, software));
    QVERIFY(!isEnabled(bench, field));
}

void TestParamsForm::clickOnACheckedSourceChoosesTheOther_data()
{
    sourcesOfAPairExcludeEachOther_data();
}

void TestParamsForm::clickOnACheckedSourceChoosesTheOther()
{
    QFETCH(QString, software);
    QFETCH(QString, external);
    QFETCH(QString, field);
    const SensitivityOffered offered;
    ParamsBench bench({}, recordWithTypes(2, 2));
    QVERIFY(bench.open());
    if (isChecked(bench, software))
        QVERIFY(bench.click(external));
    QVERIFY(bench.click(external));
    QVERIFY(isChecked(bench, software) && !isChecked(bench, external));
    QVERIFY(isEnabled(bench, field));
    QVERIFY(bench.click(software));
    QVERIFY(isChecked(bench, external) && !isChecked(bench, software));
    QVERIFY(!isEnabled(bench, field));
}

void TestParamsForm::pFactorsHaveOneSource_data()
{
    QTest::addColumn<QString>("stage");
    QTest::addColumn<QString>("twin");
    QTest::newRow("clicked in stage 1") << QString() << QString("_2");
    QTest::newRow("clicked in stage 2") << QString("_2") << QString();
}

void TestParamsForm::pFactorsHaveOneSource()
{
    QFETCH(QString, stage);
    QFETCH(QString, twin);
    ParamsBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.click("radioButton_PFactor_extern" + stage));
    QVERIFY(isChecked(bench, "radioButton_PFactor_extern" + twin));
    QVERIFY(!isChecked(bench, "radioButton_PFactor_intern" + twin));
    QVERIFY(!isEnabled(bench, "doubleSpinBox_PFactor" + twin));
    QVERIFY(bench.click("radioButton_PFactor_intern" + stage));
    QVERIFY(isChecked(bench, "radioButton_PFactor_intern" + twin));
    QVERIFY(!isChecked(bench, "radioButton_PFactor_extern" + twin));
    QVERIFY(isEnabled(bench, "doubleSpinBox_PFactor" + twin));
}

void TestParamsForm::adjustFollowsTheType_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("canAdjust");
    QTest::newRow("select") << 0 << false;
    QTest::newRow("4QD") << 1 << false;
    QTest::newRow("PSD") << 2 << true;
    QTest::newRow("WID") << 3 << false;
    QTest::newRow("UV 4 mm") << 4 << true;
    QTest::newRow("UV 10 mm") << 5 << true;
}

void TestParamsForm::adjustFollowsTheType()
{
    QFETCH(int, type);
    QFETCH(bool, canAdjust);
    const int another = canAdjust ? 1 : 2;
    ParamsBench bench({}, recordWithTypes(another, another));
    QVERIFY(bench.open());
    for (const QString stage : {"", "_2"}) {
        QCOMPARE(isEnabled(bench, "radioButton_Adjust_intern" + stage), !canAdjust);
        QCOMPARE(isEnabled(bench, "pushButton_SetHold" + stage), !canAdjust);
        QVERIFY(bench.choose("comboBox_DetecType" + stage, type));
        QCOMPARE(isEnabled(bench, "radioButton_Adjust_intern" + stage), canAdjust);
        QCOMPARE(isEnabled(bench, "radioButton_Adjust_extern" + stage), canAdjust);
        QVERIFY(!isEnabled(bench, "doubleSpinBox_AdjustX" + stage));
        QVERIFY(!isEnabled(bench, "doubleSpinBox_AdjustY" + stage));
        QCOMPARE(isEnabled(bench, "pushButton_SetHold" + stage), canAdjust);
    }
}

void TestParamsForm::quadrantDetectorEndsTheAdjustByUser()
{
    ParamsBench bench({}, recordWithTypes(2, 2));
    QVERIFY(bench.open());
    QVERIFY(bench.click("radioButton_Adjust_intern"));
    QVERIFY(isEnabled(bench, "doubleSpinBox_AdjustX"));
    QVERIFY(bench.choose(type1, 1));
    QVERIFY(!isEnabled(bench, "doubleSpinBox_AdjustX"));
    QVERIFY(!isEnabled(bench, "doubleSpinBox_AdjustY"));
    // The choice itself stays for a detector that can be adjusted.
    QVERIFY(bench.choose(type1, 4));
    QVERIFY(isChecked(bench, "radioButton_Adjust_intern"));
    QVERIFY(isEnabled(bench, "doubleSpinBox_AdjustX"));
    QVERIFY(isEnabled(bench, "doubleSpinBox_AdjustY"));
}

void TestParamsForm::diameterFollowsUnitAndType_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("usesDiameter");
    QTest::newRow("4QD") << 1 << true;
    QTest::newRow("PSD") << 2 << false;
    QTest::newRow("WID") << 3 << true;
    QTest::newRow("UV 10 mm") << 5 << false;
}

void TestParamsForm::diameterFollowsUnitAndType()
{
    QFETCH(int, type);
    QFETCH(bool, usesDiameter);
    ParamsBench bench;
    QVERIFY(bench.open());
    for (const QString stage : {"", "_2"}) {
        const QString diameter = "beamDiameterSpinBox" + stage;
        QVERIFY(bench.choose("comboBox_DetecType" + stage, type));
        QVERIFY(!isEnabled(bench, diameter));
        QVERIFY(bench.click("radioButtonPositionInLength" + stage));
        QCOMPARE(isEnabled(bench, diameter), usesDiameter);
        // Over a detector without a diameter, and back.
        QVERIFY(bench.choose("comboBox_DetecType" + stage, 4));
        QVERIFY(!isEnabled(bench, diameter));
        QVERIFY(bench.choose("comboBox_DetecType" + stage, type));
        QCOMPARE(isEnabled(bench, diameter), usesDiameter);
        QVERIFY(bench.click("radioButtonPositionInVolt" + stage));
        QVERIFY(!isEnabled(bench, diameter));
    }
}

void TestParamsForm::withoutATypeThereIsNoLength()
{
    ParamsBench bench({}, recordWithTypes(1, 1));
    QVERIFY(bench.open());
    for (const QString stage : {"", "_2"}) {
        QVERIFY(bench.click("radioButtonPositionInLength" + stage));
        QVERIFY(bench.choose("comboBox_DetecType" + stage, 0));
        QVERIFY(isChecked(bench, "radioButtonPositionInVolt" + stage));
        QVERIFY(!isChecked(bench, "radioButtonPositionInLength" + stage));
        QVERIFY(!isEnabled(bench, "radioButtonPositionInLength" + stage));
        QVERIFY(!isEnabled(bench, "radioButtonPositionInVolt" + stage));
        QVERIFY(!isEnabled(bench, "beamDiameterSpinBox" + stage));
    }
    QVERIFY(bench.clickAndWait(apply));
    QCOMPARE(bench.detectors[0]->calculation, 0);
    QCOMPARE(bench.detectors[1]->calculation, 0);
}

void TestParamsForm::stagesHaveUnitsOfTheirOwn()
{
    ParamsBench bench({}, recordWithTypes(2, 2));
    QVERIFY(bench.open());
    QVERIFY(bench.click("radioButtonPositionInLength_2"));
    QVERIFY(isChecked(bench, "radioButtonPositionInVolt"));
    QVERIFY(isChecked(bench, "radioButtonPositionInLength_2"));
    // A click on the checked one leaves it.
    QVERIFY(bench.click("radioButtonPositionInLength_2"));
    QVERIFY(isChecked(bench, "radioButtonPositionInLength_2"));
}

void TestParamsForm::keyboardReachesEverythingInReadingOrder()
{
    const SensitivityOffered offered;
    emulator::ControllerOptions options;
    options.triggerCapable = true;
    ParamsBench bench(options, recordWithTypes(1, 2));
    QVERIFY(bench.open());
    QVERIFY(bench.click("radioButtonPositionInLength"));
    QVERIFY(bench.click("radioButton_Adjust_intern_2"));
    QVERIFY(bench.click("radioButton_sensitivity_software"));
    const QStringList order{"comboBox_DetecType",
                            "comboBox_DetecType_2",
                            "beamDiameterSpinBox",
                            "radioButtonPositionInLength",
                            "radioButtonPositionInVolt_2",
                            "doubleSpinBox_PFactor",
                            "radioButton_PFactor_intern",
                            "radioButton_PFactor_extern",
                            "doubleSpinBox_PFactor_2",
                            "radioButton_PFactor_intern_2",
                            "radioButton_PFactor_extern_2",
                            "doubleSpinBox_AdjustX_2",
                            "radioButton_Adjust_intern_2",
                            "radioButton_Adjust_extern_2",
                            "doubleSpinBox_AdjustY_2",
                            "doubleSpinBox_sens_1",
                            "radioButton_sensitivity_software",
                            "radioButton_sensitivity_extern",
                            "radioButton_sensitivity_software_2",
                            "radioButton_sensitivity_extern_2",
                            "doubleSpinBox_SetHoldX",
                            "doubleSpinBox_SetHoldY",
                            "doubleSpinBox_SetHoldX_2",
                            "pushButton_SetHold_2",
                            "doubleSpinBox_SetHoldY_2",
                            "checkBoxDisplayLowRepetitionWithTriggers",
                            "pushButtonSave",
                            "pushButtonRefresh",
                            "pushButtonApply",
                            "pushButtonCloseParams",
                            "comboBox_DetecType"};
    bench.find<QWidget>("comboBox_DetecType").setFocus();
    QStringList reached;
    while (reached.size() < order.size()) {
        const QWidget* focused = bench.dialog.focusWidget();
        reached.append(focused ? focused->objectName() : QString());
        QTest::keyClick(bench.dialog.windowHandle(), Qt::Key_Tab);
    }
    QCOMPARE(reached, order);
}

void TestParamsForm::keyboardOperatesTheForm()
{
    ParamsBench bench({}, recordWithTypes(1, 2));
    QVERIFY(bench.open());
    QWindow* window = bench.dialog.windowHandle();
    bench.find<QWidget>("radioButtonPositionInVolt").setFocus();
    QTest::keyClick(window, Qt::Key_Right);
    QVERIFY(isChecked(bench, "radioButtonPositionInLength"));
    QVERIFY(isEnabled(bench, "beamDiameterSpinBox"));
    bench.find<QWidget>("radioButton_PFactor_extern").setFocus();
    QTest::keyClick(window, Qt::Key_Space);
    QVERIFY(isChecked(bench, "radioButton_PFactor_extern_2"));
    bench.find<QWidget>("pushButtonRefresh").setFocus();
    bench.link.controller.clearWire();
    QTest::keyClick(window, Qt::Key_Space);
    QCOMPARE(bench.commands().value(0), QByteArray("GSF;"));
    QTRY_VERIFY(isEnabled(bench, "pushButtonRefresh"));
    QVERIFY(bench.find<QWidget>("pushButtonRefresh").hasFocus());
}

void TestParamsForm::enterAppliesNothing()
{
    ParamsBench bench;
    QVERIFY(bench.open());
    bench.find<QWidget>("doubleSpinBox_PFactor").setFocus();
    QTest::keyClick(bench.dialog.windowHandle(), Qt::Key_Return);
    QVERIFY(bench.commands().isEmpty());
    QVERIFY(bench.dialog.isVisible());
}

void TestParamsForm::escapeCloses()
{
    ParamsBench bench;
    QVERIFY(bench.open());
    QTest::keyClick(bench.dialog.windowHandle(), Qt::Key_Escape);
    QVERIFY(!bench.dialog.isVisible());
}

void TestParamsForm::closeCloses()
{
    ParamsBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.click("pushButtonCloseParams"));
    QVERIFY(!bench.dialog.isVisible());
}

QTEST_MAIN(TestParamsForm)
#include "tst_paramsform.moc"
