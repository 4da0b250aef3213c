// Opening the parameter dialog and refreshing it: what is asked, in which order, and what is shown.

#include "paramsbench.h"
#include "support/logcapture.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QtTest>

#include <memory>

using emulator::ControllerOptions;
using emulator::on;
using emulator::Rule;

Q_DECLARE_METATYPE(emulator::ControllerOptions)
Q_DECLARE_METATYPE(emulator::Rule)

namespace {

constexpr char refresh[] = "pushButtonRefresh";
constexpr char triggers[] = "checkBoxDisplayLowRepetitionWithTriggers";
constexpr int rateHz = 300;
/// Where nobody answers.
constexpr int silentTimeoutMs = 80;

/// All that is asked of firmware above 30.
QByteArrayList allQuestions()
{
    return {"GSF;",      "S1S;",     "GAI\x01x;", "GAI\x01y;", "GAI\x02x;",
            "GAI\x02y;", "GPF\x01;", "GPF\x02;",  "GDS\x01;",  "GDS\x02;"};
}

QByteArrayList questionsOf(int firmware)
{
    return firmware > 30 ? allQuestions() : allQuestions().mid(0, 8);
}

ControllerOptions withFirmware(int firmware)
{
    ControllerOptions options;
    options.firmware = firmware;
    return options;
}

ControllerOptions withTriggers(int firmware)
{
    ControllerOptions options = withFirmware(firmware);
    options.triggerCapable = true;
    return options;
}

QByteArray flagsReply(char flags)
{
    return QByteArray("\0;", 2).append(flags).append(';');
}

QByteArray valueReply(qint16 valueMv)
{
    return QByteArray("\0;", 2).append(char(valueMv >> 8)).append(char(valueMv & 0xFF)).append(';');
}

bool isChecked(const ParamsBench& bench, const QString& name)
{
    return bench.find<QAbstractButton>(name).isChecked();
}

double value(const ParamsBench& bench, const QString& name)
{
    return bench.find<QDoubleSpinBox>(name).value();
}

QStringList warningsIn(const LogCapture& log)
{
    return log.lines().filter(QRegularExpression("^warning: Not read"));
}

} // namespace

class TestDialogReading : public QObject
{
    Q_OBJECT

private slots:
    void openingReadsTwice_data();
    void openingReadsTwice();
    void openingWithARunningStreamStartsItAgainTwice_data();
    void openingWithARunningStreamStartsItAgainTwice();
    void openingReadsOnceIfNobodyAnswers();
    void openingAgainReadsAgain();
    void comingBackFromTheTaskBarReadsNothing();
    void systemThatIsDownIsShownAndNotAsked();
    void headerTellsTheSystem();
    void refreshAsksEverythingOnce_data();
    void refreshAsksEverythingOnce();
    void refreshWithARunningStreamStartsItAgain_data();
    void refreshWithARunningStreamStartsItAgain();
    void streamWithoutARateGetsThatOfTheToolBar();
    void streamThatDoesNotStartAgainIsTold_data();
    void streamThatDoesNotStartAgainIsTold();
    void flagsChooseTheSources_data();
    void flagsChooseTheSources();
    void damagedFlagsLeaveTheSources_data();
    void damagedFlagsLeaveTheSources();
    void valuesAreThoseOfTheController();
    void externalPFactorShowsTheLeastValue();
    void positionsAreThoseOfOnePacket();
    void sensitivityOtherThanZeroIsSoftware();
    void sensitivityZeroIsExternal();
    void sensitivityIsHiddenUnlessWanted_data();
    void sensitivityIsHiddenUnlessWanted();
    void triggersAreOfferedToThoseWhoKnowThem_data();
    void triggersAreOfferedToThoseWhoKnowThem();
    void triggersAreThoseOfTheDetectors();
    void triggersOfAnotherSystemAreUnticked();
    void nothingOfAnotherSystemIsLeft();
    void detectorsAreThoseOfTheSystem();
    void lengthWithoutADetectorIsVolts();
    void dialogHasTheSizeOfWhatItShows();
    void whatFailsIsZeroAndToldOnce_data();
    void whatFailsIsZeroAndToldOnce();
    void buttonsComeBackAndLoseClicksMadeMeanwhile();
};

void TestDialogReading::openingReadsTwice_data()
{
    addControllerKinds();
}

void TestDialogReading::openingReadsTwice()
{
    QFETCH(ControllerKind, kind);
    ParamsBench bench(kind.options, kind.record());
    QVERIFY(bench.link.connectAndIdentify());
    bench.dialog.openFor(&bench.link.client);
    const QByteArrayList questions = questionsOf(kind.options.firmware);
    QCOMPARE(bench.commands(), questions + questions);
}

void TestDialogReading::openingWithARunningStreamStartsItAgainTwice_data()
{
    addControllerKinds();
}

void TestDialogReading::openingWithARunningStreamStartsItAgainTwice()
{
    QFETCH(ControllerKind, kind);
    ParamsBench bench(kind.options, kind.record());
    QVERIFY(bench.startStream(rateHz));
    bench.dialog.openFor(&bench.link.client);
    const QByteArrayList reading = QByteArrayList{"CLS;"} + questionsOf(kind.options.firmware)
                                   + QByteArrayList{kind.start(rateHz)};
    QCOMPARE(bench.commands(), reading + reading);
    QVERIFY(bench.streamsAgain(rateHz));
    QCOMPARE(bench.streamErrors, 0);
}

void TestDialogReading::openingReadsOnceIfNobodyAnswers()
{
    ParamsBench bench(withFirmware(30));
    QVERIFY(bench.link.connectAndIdentify());
    emulator::Faults faults;
    faults.silent = {"GSF", "S1S", "GAI", "GPF"};
    bench.link.controller.setFaults(faults);
    bench.link.client.setTimeoutMs(silentTimeoutMs);
    bench.dialog.openFor(&bench.link.client);
    QCOMPARE(bench.commands(), questionsOf(30));
    QVERIFY(bench.dialog.isVisible());
}

void TestDialogReading::openingAgainReadsAgain()
{
    ParamsBench bench;
    QVERIFY(bench.open());
    bench.dialog.openDialog(bench.link.client.address());
    QCOMPARE(bench.commands(), allQuestions() + allQuestions());
}

void TestDialogReading::comingBackFromTheTaskBarReadsNothing()
{
    ParamsBench bench;
    QVERIFY(bench.open());
    // As the window system tells it; it sends this event itself.
    QShowEvent event;
    QSpontaneKeyEvent::setSpontaneous(&event);
    QCoreApplication::instance()->notify(&bench.dialog, &event);
    QVERIFY(bench.commands().isEmpty());
}

void TestDialogReading::systemThatIsDownIsShownAndNotAsked()
{
    ParamsBench bench;
    QVERIFY(bench.link.connectAndIdentify());
    bench.link.client.disconnectController();
    bench.dialog.openFor(&bench.link.client);
    QVERIFY(bench.dialog.isVisible());
    QVERIFY(bench.commands().isEmpty());
    QCOMPARE(bench.find<QLabel>("nameLabel").text(), bench.state.label);
    QVERIFY(bench.click(refresh));
    QVERIFY(bench.click("pushButtonApply"));
    QVERIFY(bench.click("pushButtonSave"));
    QVERIFY(bench.failure().isNull());
}

void TestDialogReading::headerTellsTheSystem()
{
    ParamsBench bench;
    bench.state.label = QStringLiteral("<b>1 & 2");
    bench.state.isOnCommonPath = {false, true};
    QVERIFY(bench.open());
    QCOMPARE(bench.find<QLabel>("nameLabel").text(), QString("<b>1 & 2"));
    QCOMPARE(bench.find<QLabel>("nameLabel").textFormat(), Qt::PlainText);
    QCOMPARE(bench.find<QLabel>("detectorLabel1").text(), QString("Subsystem"));
    QCOMPARE(bench.find<QLabel>("detectorLabel2").text(), QString("Common"));
}

void TestDialogReading::refreshAsksEverythingOnce_data()
{
    addControllerKinds();
}

void TestDialogReading::refreshAsksEverythingOnce()
{
    QFETCH(ControllerKind, kind);
    ParamsBench bench(kind.options, kind.record());
    QVERIFY(bench.open());
    QVERIFY(bench.clickAndWait(refresh));
    QCOMPARE(bench.commands(), questionsOf(kind.options.firmware));
    QVERIFY(!bench.link.client.isStreaming());
    QCOMPARE(bench.streamErrors, 0);
}

void TestDialogReading::refreshWithARunningStreamStartsItAgain_data()
{
    addControllerKinds();
}

void TestDialogReading::refreshWithARunningStreamStartsItAgain()
{
    QFETCH(ControllerKind, kind);
    ParamsBench bench(kind.options, kind.record());
    QVERIFY(bench.openStreaming(rateHz));
    QVERIFY(bench.clickAndWait(refresh));
    QCOMPARE(bench.commands(), QByteArrayList{"CLS;"} + questionsOf(kind.options.firmware)
                                   + QByteArrayList{kind.start(rateHz)});
    QVERIFY(bench.streamsAgain(rateHz));
    QCOMPARE(bench.streamErrors, 0);
}

void TestDialogReading::streamWithoutARateGetsThatOfTheToolBar()
{
    ParamsBench bench;
    QVERIFY(bench.link.connectAndIdentify());
    // The stream is started with a rate that the connection never stored.
    bench.link.client.startStream(command::streamArgument(rateHz));
    QByteArray reply;
    QVERIFY(bench.link.client.fetchReply(reply));
    QCOMPARE(bench.link.client.samplingRate(), -1);
    QVERIFY(bench.open());
    QCOMPARE(bench.link.controller.streamRate(), ParamsBench::toolBarRateHz);
}

void TestDialogReading::streamThatDoesNotStartAgainIsTold_data()
{
    QTest::addColumn<Rule>("rule");
    QTest::newRow("refused") << Rule(on("SLS").refuse());
    QTest::newRow("silent") << Rule(on("SLS").ignore());
    QTest::newRow("too short to be a packet") << Rule(on("SLS").reply(QByteArray("\0;\0", 3)));
}

void TestDialogReading::streamThatDoesNotStartAgainIsTold()
{
    QFETCH(Rule, rule);
    ParamsBench bench;
    QVERIFY(bench.openStreaming(rateHz));
    bench.link.controller.setRules({rule});
    QVERIFY(bench.clickAndWait(refresh));
    QCOMPARE(bench.streamErrors, 1);
    QVERIFY(!bench.link.client.isStreaming());
}

void TestDialogReading::flagsChooseTheSources_data()
{
    QTest::addColumn<char>("flags");
    QTest::addColumn<bool>("pFactor");
    QTest::addColumn<bool>("adjust1");
    QTest::addColumn<bool>("adjust2");
    QTest::newRow("none") << '\x00' << false << false << false;
    QTest::newRow("P-factor") << '\x01' << true << false << false;
    QTest::newRow("adjust 1") << '\x02' << false << true << false;
    QTest::newRow("adjust 2") << '\x04' << false << false << true;
    QTest::newRow("all") << '\x07' << true << true << true;
    QTest::newRow("others only") << '\x78' << false << false << false;
}

void TestDialogReading::flagsChooseTheSources()
{
    QFETCH(char, flags);
    QFETCH(bool, pFactor);
    QFETCH(bool, adjust1);
    QFETCH(bool, adjust2);
    ParamsBench bench({}, recordWithTypes(2, 5));
    QVERIFY(bench.open());
    bench.link.controller.setRules({on("GSF").reply(flagsReply(char(~flags & 0x7F))).once(),
                                    on("GSF").reply(flagsReply(flags))});
    QVERIFY(bench.clickAndWait(refresh));
    QVERIFY(bench.clickAndWait(refresh));
    for (const QString stage : {"", "_2"}) {
        QCOMPARE(isChecked(bench, "radioButton_PFactor_intern" + stage), pFactor);
        QCOMPARE(isChecked(bench, "radioButton_PFactor_extern" + stage), !pFactor);
        QCOMPARE(bench.find<QWidget>("doubleSpinBox_PFactor" + stage).isEnabled(), pFactor);
        const bool adjust = stage.isEmpty() ? adjust1 : adjust2;
        QCOMPARE(isChecked(bench, "radioButton_Adjust_intern" + stage), adjust);
        QCOMPARE(isChecked(bench, "radioButton_Adjust_extern" + stage), !adjust);
        QCOMPARE(bench.find<QWidget>("doubleSpinBox_AdjustX" + stage).isEnabled(), adjust);
        QCOMPARE(bench.find<QWidget>("doubleSpinBox_AdjustY" + stage).isEnabled(), adjust);
    }
}

void TestDialogReading::damagedFlagsLeaveTheSources_data()
{
    QTest::addColumn<Rule>("rule");
    QTest::newRow("refused") << Rule(on("GSF").refuse());
    QTest::newRow("silent") << Rule(on("GSF").ignore());
    QTest::newRow("cut") << Rule(on("GSF").cutTo(3));
}

void TestDialogReading::damagedFlagsLeaveTheSources()
{
    QFETCH(Rule, rule);
    ParamsBench bench({}, recordWithTypes(2, 2));
    QVERIFY(bench.open());
    QVERIFY(isChecked(bench, "radioButton_PFactor_intern"));
    QVERIFY(bench.click("radioButton_Adjust_intern"));
    bench.link.controller.setRules({rule});
    QVERIFY(bench.clickAndWait(refresh));
    QVERIFY(isChecked(bench, "radioButton_PFactor_intern"));
    QVERIFY(isChecked(bench, "radioButton_Adjust_intern"));
    QVERIFY(isChecked(bench, "radioButton_Adjust_extern_2"));
}

void TestDialogReading::valuesAreThoseOfTheController()
{
    ParamsBench bench;
    QVERIFY(bench.open());
    bench.link.controller.setRules(
        {on("GAI\1x").reply(valueReply(-1000)), on("GAI\1y").reply(valueReply(256)),
         on("GAI\2x").reply(valueReply(3)), on("GAI\2y").reply(valueReply(-4999)),
         on("GPF\1").reply(valueReply(1500)), on("GPF\2").reply(valueReply(290))});
    QVERIFY(bench.clickAndWait(refresh));
    QCOMPARE(value(bench, "doubleSpinBox_AdjustX"), -1.0);
    QCOMPARE(value(bench, "doubleSpinBox_AdjustY"), 0.256);
    QCOMPARE(value(bench, "doubleSpinBox_AdjustX_2"), 0.003);
    QCOMPARE(value(bench, "doubleSpinBox_AdjustY_2"), -4.999);
    QCOMPARE(value(bench, "doubleSpinBox_PFactor"), 1.5);
    QCOMPARE(value(bench, "doubleSpinBox_PFactor_2"), 0.29);
}

void TestDialogReading::externalPFactorShowsTheLeastValue()
{
    ControllerOptions options;
    options.pFactorMv = 0;
    ParamsBench bench(options);
    QVERIFY(bench.open());
    for (const char* field : {"doubleSpinBox_PFactor", "doubleSpinBox_PFactor_2"})
        bench.find<QDoubleSpinBox>(field).setValue(1.5);
    QVERIFY(bench.clickAndWait(refresh));
    QCOMPARE(value(bench, "doubleSpinBox_PFactor"), 0.01);
    QCOMPARE(value(bench, "doubleSpinBox_PFactor_2"), 0.01);
    QVERIFY(isChecked(bench, "radioButton_PFactor_extern"));
}

void TestDialogReading::positionsAreThoseOfOnePacket()
{
    ControllerOptions options;
    emulator::PacketValues values{};
    values[0].x = 250;
    values[0].y = -1;
    values[1].x = -4000;
    values[1].y = 1000;
    options.script = {values};
    options.scriptRepeats = true;
    ParamsBench bench(options);
    QVERIFY(bench.open());
    QCOMPARE(value(bench, "doubleSpinBox_SetHoldX"), 0.25);
    QCOMPARE(value(bench, "doubleSpinBox_SetHoldY"), -0.001);
    QCOMPARE(value(bench, "doubleSpinBox_SetHoldX_2"), -4.0);
    QCOMPARE(value(bench, "doubleSpinBox_SetHoldY_2"), 1.0);
    // Where a packet is cut short, the fields stay.
    bench.link.controller.setRules({on("S1S").cutTo(24)});
    QVERIFY(bench.clickAndWait(refresh));
    QCOMPARE(value(bench, "doubleSpinBox_SetHoldX"), 0.25);
}

void TestDialogReading::sensitivityOtherThanZeroIsSoftware()
{
    const SensitivityOffered offered;
    ParamsBench bench;
    QVERIFY(bench.open());
    bench.link.controller.setRules(
        {on("GDS\1").reply(valueReply(700)), on("GDS\2").reply(valueReply(10))});
    QVERIFY(bench.clickAndWait(refresh));
    QCOMPARE(value(bench, "doubleSpinBox_sens_1"), 0.7);
    QCOMPARE(value(bench, "doubleSpinBox_sens_2"), 0.01);
    for (const QString stage : {"", "_2"}) {
        QVERIFY(isChecked(bench, "radioButton_sensitivity_software" + stage));
        QVERIFY(!isChecked(bench, "radioButton_sensitivity_extern" + stage));
    }
    QVERIFY(bench.find<QWidget>("doubleSpinBox_sens_1").isEnabled());
}

void TestDialogReading::sensitivityZeroIsExternal()
{
    const SensitivityOffered offered;
    ParamsBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.click("radioButton_sensitivity_software_2"));
    QVERIFY(bench.type("doubleSpinBox_sens_2", "1.5"));
    QVERIFY(bench.clickAndWait(refresh));
    QVERIFY(isChecked(bench, "radioButton_sensitivity_extern_2"));
    QVERIFY(!isChecked(bench, "radioButton_sensitivity_software_2"));
    QCOMPARE(bench.find<QDoubleSpinBox>("doubleSpinBox_sens_2").text(), QString("0.00"));
}

void TestDialogReading::sensitivityIsHiddenUnlessWanted_data()
{
    QTest::addColumn<bool>("isWanted");
    QTest::addColumn<int>("firmware");
    QTest::addColumn<bool>("isShown");
    QTest::newRow("wanted, 31") << true << 31 << true;
    QTest::newRow("wanted, 30") << true << 30 << false;
    QTest::newRow("not wanted, 31") << false << 31 << false;
}

void TestDialogReading::sensitivityIsHiddenUnlessWanted()
{
    QFETCH(bool, isWanted);
    QFETCH(int, firmware);
    QFETCH(bool, isShown);
    const std::unique_ptr<SensitivityOffered> offered(isWanted ? new SensitivityOffered : nullptr);
    ParamsBench bench(withFirmware(firmware));
    QVERIFY(bench.link.connectAndIdentify());
    bench.link.controller.setRules({on("GDS").reply(valueReply(700))});
    QVERIFY(bench.open());
    for (const char* name :
         {"label_15", "doubleSpinBox_sens_1", "doubleSpinBox_sens_2",
          "radioButton_sensitivity_software", "radioButton_sensitivity_software_2",
          "radioButton_sensitivity_extern", "radioButton_sensitivity_extern_2"})
        QCOMPARE(bench.find<QWidget>(name).isVisible(), isShown);
    // What is not offered stays external, whatever the controller has.
    QCOMPARE(isChecked(bench, "radioButton_sensitivity_software"), isShown);
    QCOMPARE(isChecked(bench, "radioButton_sensitivity_extern_2"), !isShown);
}

void TestDialogReading::triggersAreOfferedToThoseWhoKnowThem_data()
{
    QTest::addColumn<int>("firmware");
    QTest::addColumn<bool>("isCapable");
    QTest::addColumn<bool>("isShown");
    QTest::newRow("31, capable") << 31 << true << true;
    QTest::newRow("30, capable") << 30 << true << false;
    QTest::newRow("31, not capable") << 31 << false << false;
}

void TestDialogReading::triggersAreOfferedToThoseWhoKnowThem()
{
    QFETCH(int, firmware);
    QFETCH(bool, isCapable);
    QFETCH(bool, isShown);
    ParamsBench bench(isCapable ? withTriggers(firmware) : withFirmware(firmware));
    QVERIFY(bench.open());
    QCOMPARE(bench.find<QCheckBox>(triggers).isVisible(), isShown);
    QCOMPARE(bench.find<QFrame>("frame").isVisible(), isShown);
    QCOMPARE(bench.find<QFrame>("frame_4").isVisible(), isShown);
}

void TestDialogReading::triggersAreThoseOfTheDetectors()
{
    ConnectionSettings record;
    record.pulsedLaser = true;
    ParamsBench bench(withTriggers(31), record);
    QVERIFY(bench.open());
    QVERIFY(isChecked(bench, triggers));
    // What was not applied does not outlive a reading.
    QVERIFY(bench.click(triggers));
    QVERIFY(bench.clickAndWait(refresh));
    QVERIFY(isChecked(bench, triggers));
}

void TestDialogReading::triggersOfAnotherSystemAreUnticked()
{
    ConnectionSettings record;
    record.pulsedLaser = true;
    ParamsBench bench(withTriggers(31), record);
    QVERIFY(bench.open());
    QVERIFY(isChecked(bench, triggers));
    EmulatedLink old(withFirmware(30));
    QVERIFY(old.connectAndIdentify());
    bench.dialog.addDetectors(old.client, {});
    bench.dialog.openFor(&old.client);
    QVERIFY(!isChecked(bench, triggers));
    bench.dialog.removeDetectors(&old.client);
}

void TestDialogReading::nothingOfAnotherSystemIsLeft()
{
    const SensitivityOffered offered;
    ControllerOptions options;
    emulator::PacketValues values{};
    values[0].x = 250;
    options.script = {values};
    options.scriptRepeats = true;
    ParamsBench bench(options, recordWithTypes(2, 2));
    QVERIFY(bench.open());
    bench.link.controller.setRules({on("GDS").reply(valueReply(700))});
    QVERIFY(bench.clickAndWait(refresh));
    QVERIFY(bench.find<QPushButton>("pushButton_SetHold").isEnabled());

    EmulatedLink other;
    QVERIFY(other.connectAndIdentify());
    other.controller.setRules({on("S1S").refuse(), on("GSF").refuse(), on("GDS").refuse()});
    bench.dialog.addDetectors(other.client, recordWithTypes(4, 2));
    bench.dialog.openFor(&other.client);
    QTRY_VERIFY(bench.find<QPushButton>(refresh).isEnabled());
    QCOMPARE(value(bench, "doubleSpinBox_SetHoldX"), 0.0);
    QCOMPARE(bench.find<QDoubleSpinBox>("doubleSpinBox_sens_1").text(), QString("0.00"));
    QVERIFY(isChecked(bench, "radioButton_sensitivity_extern"));
    QVERIFY(!bench.find<QPushButton>("pushButton_SetHold_2").isEnabled());

    // One that is down is not asked, and shown all the same.
    other.client.disconnectController();
    bench.dialog.openFor(&bench.link.client);
    bench.dialog.openFor(&other.client);
    QCOMPARE(bench.find<QComboBox>("comboBox_DetecType").currentIndex(), 4);
    QCOMPARE(bench.find<QDoubleSpinBox>("doubleSpinBox_sens_1").text(), QString("0.00"));
    bench.dialog.removeDetectors(&other.client);
}

void TestDialogReading::detectorsAreThoseOfTheSystem()
{
    ConnectionSettings record = recordWithTypes(1, 4);
    record.beamDiameter = {12.5, 700};
    record.calculation = {1, 0};
    ParamsBench bench({}, record);
    QVERIFY(bench.open());
    QCOMPARE(bench.find<QComboBox>("comboBox_DetecType").currentText(), QString("4QD"));
    QCOMPARE(bench.find<QComboBox>("comboBox_DetecType_2").currentText(), QString("UV PSD (4mm)"));
    QCOMPARE(value(bench, "beamDiameterSpinBox"), 12.5);
    QCOMPARE(value(bench, "beamDiameterSpinBox_2"), 700.0);
    QVERIFY(isChecked(bench, "radioButtonPositionInLength"));
    QVERIFY(isChecked(bench, "radioButtonPositionInVolt_2"));
    QVERIFY(bench.find<QWidget>("beamDiameterSpinBox").isEnabled());
    // What was not applied does not outlive a reading.
    QVERIFY(bench.choose("comboBox_DetecType_2", 3));
    QVERIFY(bench.click("radioButtonPositionInLength_2"));
    QVERIFY(bench.click("radioButtonPositionInVolt"));
    QVERIFY(bench.clickAndWait(refresh));
    QCOMPARE(bench.find<QComboBox>("comboBox_DetecType_2").currentText(), QString("UV PSD (4mm)"));
    QVERIFY(isChecked(bench, "radioButtonPositionInLength"));
    QVERIFY(isChecked(bench, "radioButtonPositionInVolt_2"));
}

void TestDialogReading::lengthWithoutADetectorIsVolts()
{
    ConnectionSettings record;
    record.calculation = {1, 1};
    ParamsBench bench({}, record);
    QVERIFY(bench.open());
    QVERIFY(isChecked(bench, "radioButtonPositionInVolt"));
    QVERIFY(isChecked(bench, "radioButtonPositionInVolt_2"));
    QVERIFY(bench.clickAndWait("pushButtonApply"));
    QCOMPARE(bench.detectors[0]->calculation, 0);
    QCOMPARE(bench.detectors[1]->calculation, 0);
}

void TestDialogReading::dialogHasTheSizeOfWhatItShows()
{
    ParamsBench plain;
    QVERIFY(plain.open());
    QCOMPARE(plain.dialog.size(), plain.dialog.minimumSize());
    QCOMPARE(plain.dialog.size(), plain.dialog.maximumSize());
    const SensitivityOffered offered;
    ParamsBench full(withTriggers(31));
    QVERIFY(full.open());
    QCOMPARE(full.dialog.size(), full.dialog.maximumSize());
    QVERIFY(full.dialog.height() > plain.dialog.height());
    QCOMPARE(full.dialog.width(), plain.dialog.width());
    // Nothing is cut off.
    for (const QWidget* widget : full.dialog.findChildren<QWidget*>()) {
        if (widget->isVisible() && widget->window() == &full.dialog)
            QVERIFY2(widget->width() >= widget->minimumSizeHint().width(),
                     qPrintable(widget->objectName()));
    }
}

void TestDialogReading::whatFailsIsZeroAndToldOnce_data()
{
    QTest::addColumn<Rule>("rule");
    QTest::addColumn<QString>("unread");
    QTest::newRow("refused") << Rule(on("GAI\1").refuse()) << "GAI 1x, GAI 1y";
    QTest::newRow("silent") << Rule(on("GPF\1").ignore()) << "GPF 1";
    QTest::newRow("cut") << Rule(on("GDS").cutTo(3)) << "GDS 1, GDS 2";
}

void TestDialogReading::whatFailsIsZeroAndToldOnce()
{
    QFETCH(Rule, rule);
    QFETCH(QString, unread);
    ParamsBench bench({}, recordWithTypes(2, 2));
    QVERIFY(bench.openStreaming(rateHz));
    bench.find<QDoubleSpinBox>("doubleSpinBox_AdjustX").setValue(1);
    bench.find<QDoubleSpinBox>("doubleSpinBox_sens_1").setValue(1);
    bench.link.controller.setRules({rule});
    const LogCapture log;
    QVERIFY(bench.clickAndWait(refresh));
    QCOMPARE(warningsIn(log).size(), 1);
    QVERIFY2(warningsIn(log).at(0).contains(unread), qPrintable(warningsIn(log).at(0)));
    QVERIFY(bench.failure().isNull());
    QCOMPARE(value(bench, "doubleSpinBox_AdjustX"), 0.0);
    QCOMPARE(value(bench, "doubleSpinBox_PFactor"), unread.contains("GPF 1") ? 0.01 : 1.0);
    QVERIFY(bench.link.client.isStreaming());
}

void TestDialogReading::buttonsComeBackAndLoseClicksMadeMeanwhile()
{
    ParamsBench bench;
    QVERIFY(bench.open());
    auto& button = bench.find<QPushButton>(refresh);
    // These wait in the queue while the click before them is carried out.
    const QPointF middle = QRectF(button.rect()).center();
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QCoreApplication::postEvent(
            &button,
            new QMouseEvent(type, middle, Qt::LeftButton,
                            type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton,
                            Qt::NoModifier));
    }
    button.click();
    QVERIFY(!button.isEnabled());
    QTRY_VERIFY(button.isEnabled());
    QCOMPARE(bench.commands(), allQuestions());
}

QTEST_MAIN(TestDialogReading)
#include "tst_dialogreading.moc"
