// Set & Hold in the parameter dialog: when it is offered, what goes over the wire, what the fields
// show, and what becomes of the detectors. tst_dialogholdfaults.cpp and
// tst_dialogholdstreamfaults.cpp have what goes wrong.

#include "holdexpectations.h"
#include "support/logcapture.h"

#include <QSignalSpy>
#include <QtTest>

using emulator::ControllerOptions;
using emulator::on;
using emulator::Rule;

Q_DECLARE_METATYPE(emulator::Rule)

namespace {

constexpr char triggers[] = "checkBoxDisplayLowRepetitionWithTriggers";
constexpr int rateHz = 300;
constexpr int psd = 2;

/// Clicks a Set button and waits until the dialog can be used again.
bool set(const ParamsBench& bench, Stage stage)
{
    return bench.clickAndWaitForEnd(setButton(stage));
}

QByteArrayList readingOf(int firmware)
{
    return firmware > 30 ? reading() : reading().mid(0, 8);
}

QByteArray flagsReply(char flags)
{
    return QByteArray("\0;", 2).append(flags).append(';');
}

/// Refuses the status, without the wait that a short reply takes: what was there before stays.
Rule noStatus()
{
    return on("GSF").reply(QByteArray("\1;\0;", 4));
}

/// A controller whose beams stand still here, millivolts.
ControllerOptions withPositions(qint16 x1, qint16 y1, qint16 x2, qint16 y2)
{
    emulator::PacketValues values{};
    values[0].x = x1;
    values[0].y = y1;
    values[1].x = x2;
    values[1].y = y2;
    ControllerOptions options;
    options.script = {values};
    options.scriptRepeats = true;
    return options;
}

QVector<QDoubleSpinBox*> positionFields(const ParamsBench& bench, Stage stage)
{
    return {&bench.find<QDoubleSpinBox>("doubleSpinBox_SetHoldX" + endingOf(stage)),
            &bench.find<QDoubleSpinBox>("doubleSpinBox_SetHoldY" + endingOf(stage))};
}

/// All values that a field of the position has shown since this was made.
class ShownValues final
{
public:
    ShownValues(const ParamsBench& bench, const QString& field)
        : changes(&bench.find<QDoubleSpinBox>(field),
                  qOverload<double>(&QDoubleSpinBox::valueChanged))
    {}

    QList<double> values() const
    {
        QList<double> all;
        for (const QList<QVariant>& change : changes)
            all.append(change.at(0).toDouble());
        return all;
    }

private:
    QSignalSpy changes;
};

void addStages()
{
    QTest::addColumn<Stage>("stage");
    for (const Stage stage : bothStages)
        QTest::addRow("stage %d", numberOf(stage)) << stage;
}

/// Each stage of each kind of controller.
void addStagesOfKinds()
{
    QTest::addColumn<Stage>("stage");
    QTest::addColumn<ControllerKind>("kind");
    for (const Stage stage : bothStages) {
        for (const ControllerKind& kind : controllerKinds())
            QTest::addRow("stage %d, %s", numberOf(stage), qPrintable(kind.name)) << stage << kind;
    }
}

} // namespace

Q_DECLARE_METATYPE(Stage)

class TestDialogHolding : public QObject
{
    Q_OBJECT

private slots:
    void setIsOfferedForAFreeBeamOnAPsd_data();
    void setIsOfferedForAFreeBeamOnAPsd();
    void typeOffersSetAsTheStatusSays_data();
    void typeOffersSetAsTheStatusSays();
    void damagedStatusLeavesSet_data();
    void damagedStatusLeavesSet();

    void setIsSentAndReadBack_data();
    void setIsSentAndReadBack();
    void runningStreamIsStartedAgain_data();
    void runningStreamIsStartedAgain();
    void controllerHoldsWhereTheBeamIs_data();
    void controllerHoldsWhereTheBeamIs();
    void onlyTheLowByteIsDividedUntilTheNextRead_data();
    void onlyTheLowByteIsDividedUntilTheNextRead();
    void shortPacketShowsNothing_data();
    void shortPacketShowsNothing();

    void stageThatIsHeldCanNotBeSetAgain_data();
    void stageThatIsHeldCanNotBeSetAgain();
    void stageThatDidNotGoOnHoldCanBeSetAgain_data();
    void stageThatDidNotGoOnHoldCanBeSetAgain();
    void acceptedByAnySecondByte_data();
    void acceptedByAnySecondByte();
    void refusedHoldLeavesTheButton_data();
    void refusedHoldLeavesTheButton();
    void holdWhoseReplyIsCutIsKnownFromTheStatus_data();
    void holdWhoseReplyIsCutIsKnownFromTheStatus();

    void detectorBecomesWhatWasChosen_data();
    void detectorBecomesWhatWasChosen();
    void otherStageKeepsItsDetector_data();
    void otherStageKeepsItsDetector();
    void onlyTheSecondStageTakesTheTriggers_data();
    void onlyTheSecondStageTakesTheTriggers();

    void clicksMadeMeanwhileAreLost_data();
    void clicksMadeMeanwhileAreLost();
    void setShutsTheFieldsOfItsStage_data();
    void setShutsTheFieldsOfItsStage();
    void withoutASystemOnlyTheSecondStageShutsItsFields();
};

void TestDialogHolding::setIsOfferedForAFreeBeamOnAPsd_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<char>("flags");
    QTest::addColumn<bool>("first");
    QTest::addColumn<bool>("second");
    for (const int type : {2, 4, 5}) {
        QTest::addRow("type %d, free", type) << type << '\x00' << true << true;
        QTest::addRow("type %d, first held", type) << type << '\x08' << false << true;
        QTest::addRow("type %d, second held", type) << type << '\x10' << true << false;
    }
    for (const int type : {0, 1, 3})
        QTest::addRow("type %d, free", type) << type << '\x00' << false << false;
    QTest::newRow("other flags") << psd << '\x67' << true << true;
}

void TestDialogHolding::setIsOfferedForAFreeBeamOnAPsd()
{
    QFETCH(int, type);
    QFETCH(char, flags);
    ParamsBench bench({}, recordWithTypes(type, type));
    QVERIFY(bench.open());
    bench.link.controller.setRules({on("GSF").reply(flagsReply(char(~flags & 0x7F))).once(),
                                    on("GSF").reply(flagsReply(flags))});
    QVERIFY(bench.clickAndWait("pushButtonRefresh"));
    QVERIFY(bench.clickAndWait("pushButtonRefresh"));
    QTEST(isSetEnabled(bench, Stage::One), "first");
    QTEST(isSetEnabled(bench, Stage::Two), "second");
}

void TestDialogHolding::typeOffersSetAsTheStatusSays_data()
{
    QTest::addColumn<Stage>("stage");
    QTest::addColumn<bool>("isStabilised");
    for (const Stage stage : bothStages) {
        QTest::addRow("stage %d, free", numberOf(stage)) << stage << false;
        QTest::addRow("stage %d, stabilised", numberOf(stage)) << stage << true;
    }
}

void TestDialogHolding::typeOffersSetAsTheStatusSays()
{
    QFETCH(Stage, stage);
    QFETCH(bool, isStabilised);
    ParamsBench bench({}, recordWithTypes(1, 1));
    QVERIFY(bench.open());
    // The status is that of the latest tick, not that of the opening.
    bench.state.isStabilised = {!isStabilised, !isStabilised};
    bench.state.isStabilised[indexOf(stage)] = isStabilised;
    const QString type = "comboBox_DetecType" + endingOf(stage);
    QVERIFY(bench.choose(type, psd));
    QCOMPARE(isSetEnabled(bench, stage), !isStabilised);
    QVERIFY(bench.choose(type, 1));
    QVERIFY(!isSetEnabled(bench, stage));
    QVERIFY(bench.choose(type, 0));
    QVERIFY(!isSetEnabled(bench, stage));
}

void TestDialogHolding::damagedStatusLeavesSet_data()
{
    QTest::addColumn<bool>("isHeld");
    QTest::addColumn<Rule>("rule");
    for (const bool isHeld : {false, true}) {
        const char* before = isHeld ? "held" : "free";
        QTest::addRow("%s, refused", before) << isHeld << Rule(on("GSF").refuse());
        QTest::addRow("%s, silent", before) << isHeld << Rule(on("GSF").ignore());
        QTest::addRow("%s, cut", before) << isHeld << Rule(on("GSF").cutTo(2));
    }
}

void TestDialogHolding::damagedStatusLeavesSet()
{
    QFETCH(bool, isHeld);
    QFETCH(Rule, rule);
    ParamsBench bench({}, recordWithTypes(psd, psd));
    QVERIFY(bench.open());
    const Rule before = on("GSF").reply(flagsReply(isHeld ? '\x18' : '\x00')).once();
    bench.link.controller.setRules({before, rule});
    QVERIFY(bench.clickAndWait("pushButtonRefresh"));
    QVERIFY(bench.clickAndWait("pushButtonRefresh"));
    for (const Stage stage : bothStages)
        QCOMPARE(isSetEnabled(bench, stage), !isHeld);
}

void TestDialogHolding::setIsSentAndReadBack_data()
{
    addStagesOfKinds();
}

void TestDialogHolding::setIsSentAndReadBack()
{
    QFETCH(Stage, stage);
    QFETCH(ControllerKind, kind);
    ParamsBench bench(kind.options, kind.record(psd, psd));
    QVERIFY(bench.open());
    QVERIFY(set(bench, stage));
    QCOMPARE(bench.commands(), holding(stage) + readingOf(kind.options.firmware));
    QVERIFY(!bench.link.client.isStreaming());
    QVERIFY(bench.failure().isNull());
}

void TestDialogHolding::runningStreamIsStartedAgain_data()
{
    addStagesOfKinds();
}

void TestDialogHolding::runningStreamIsStartedAgain()
{
    QFETCH(Stage, stage);
    QFETCH(ControllerKind, kind);
    ParamsBench bench(kind.options, kind.record(psd, psd));
    QVERIFY(bench.openStreaming(rateHz));
    QVERIFY(set(bench, stage));
    const QByteArrayList stop{"CLS;"};
    const QByteArrayList start{kind.start(rateHz)};
    QCOMPARE(bench.commands(),
             stop + holding(stage) + start + stop + readingOf(kind.options.firmware) + start);
    QVERIFY(bench.streamsAgain(rateHz));
    QCOMPARE(bench.streamErrors, 0);
}

void TestDialogHolding::controllerHoldsWhereTheBeamIs_data()
{
    addStages();
}

void TestDialogHolding::controllerHoldsWhereTheBeamIs()
{
    QFETCH(Stage, stage);
    ParamsBench bench({}, recordWithTypes(psd, psd));
    QVERIFY(bench.open());
    QVERIFY(set(bench, stage));
    for (const Stage each : bothStages)
        QCOMPARE(bench.link.controller.stage(numberOf(each)).held, each == stage);
}

void TestDialogHolding::onlyTheLowByteIsDividedUntilTheNextRead_data()
{
    QTest::addColumn<Stage>("stage");
    QTest::addColumn<int>("positionMv");
    QTest::addColumn<QList<double>>("shown");
    for (const Stage stage : bothStages) {
        const auto row = [&](int positionMv, const QList<double>& shown) {
            QTest::addRow("stage %d, %d mV", numberOf(stage), positionMv)
                << stage << positionMv << shown;
        };
        row(250, {0.25});
        row(1000, {5.0, 1.0});
        row(-1, {-5.0, -0.001});
    }
}

void TestDialogHolding::onlyTheLowByteIsDividedUntilTheNextRead()
{
    QFETCH(Stage, stage);
    QFETCH(int, positionMv);
    QFETCH(QList<double>, shown);
    ParamsBench bench(withPositions(0, 0, 0, 0), recordWithTypes(psd, psd));
    QVERIFY(bench.open());
    const auto position = qint16(positionMv);
    const ControllerOptions moved = stage == Stage::One ? withPositions(position, position, 7, 7)
                                                        : withPositions(7, 7, position, position);
    bench.link.controller.setScript(moved.script, true);
    const ShownValues x(bench, "doubleSpinBox_SetHoldX" + endingOf(stage));
    const ShownValues y(bench, "doubleSpinBox_SetHoldY" + endingOf(stage));
    QVERIFY(set(bench, stage));
    QCOMPARE(x.values(), shown);
    QCOMPARE(y.values(), shown);
}

void TestDialogHolding::shortPacketShowsNothing_data()
{
    addStages();
}

void TestDialogHolding::shortPacketShowsNothing()
{
    QFETCH(Stage, stage);
    ParamsBench bench(withPositions(250, 250, 250, 250), recordWithTypes(psd, psd));
    QVERIFY(bench.open());
    const ControllerOptions moved = withPositions(1000, 1000, 1000, 1000);
    bench.link.controller.setScript(moved.script, true);
    bench.link.controller.setRules({on("S1S").cutTo(24).once()});
    const ShownValues x(bench, "doubleSpinBox_SetHoldX" + endingOf(stage));
    QVERIFY(set(bench, stage));
    QCOMPARE(x.values(), QList<double>{1.0});
}

void TestDialogHolding::stageThatIsHeldCanNotBeSetAgain_data()
{
    addStages();
}

void TestDialogHolding::stageThatIsHeldCanNotBeSetAgain()
{
    QFETCH(Stage, stage);
    ParamsBench bench({}, recordWithTypes(psd, psd));
    QVERIFY(bench.open());
    QVERIFY(set(bench, stage));
    for (const Stage each : bothStages)
        QCOMPARE(isSetEnabled(bench, each), each != stage);
    // Somebody else frees it.
    bench.link.controller.setStage(numberOf(stage), false);
    QVERIFY(bench.clickAndWait("pushButtonRefresh"));
    QVERIFY(isSetEnabled(bench, stage));
}

void TestDialogHolding::stageThatDidNotGoOnHoldCanBeSetAgain_data()
{
    addStages();
}

void TestDialogHolding::stageThatDidNotGoOnHoldCanBeSetAgain()
{
    QFETCH(Stage, stage);
    ParamsBench bench({}, recordWithTypes(psd, psd));
    QVERIFY(bench.open());
    bench.link.controller.setRules({on("GSF").reply(flagsReply('\x00'))});
    QVERIFY(set(bench, stage));
    QVERIFY(isSetEnabled(bench, stage));
}

void TestDialogHolding::acceptedByAnySecondByte_data()
{
    addStages();
}

void TestDialogHolding::acceptedByAnySecondByte()
{
    QFETCH(Stage, stage);
    ParamsBench bench({}, recordWithTypes(psd, psd));
    QVERIFY(bench.open());
    bench.link.controller.setRules({on("SSH").reply(QByteArray("\0x", 2)), noStatus()});
    QVERIFY(set(bench, stage));
    for (const Stage each : bothStages)
        QCOMPARE(isSetEnabled(bench, each), each != stage);
}

void TestDialogHolding::refusedHoldLeavesTheButton_data()
{
    addStages();
}

void TestDialogHolding::refusedHoldLeavesTheButton()
{
    QFETCH(Stage, stage);
    ParamsBench bench({}, recordWithTypes(psd, psd));
    QVERIFY(bench.open());
    bench.link.controller.setRules({on("SSH").refuse(), noStatus()});
    QVERIFY(set(bench, stage));
    QVERIFY(isSetEnabled(bench, stage));
    QVERIFY(bench.failure().isNull());
}

void TestDialogHolding::holdWhoseReplyIsCutIsKnownFromTheStatus_data()
{
    addStages();
}

void TestDialogHolding::holdWhoseReplyIsCutIsKnownFromTheStatus()
{
    QFETCH(Stage, stage);
    ParamsBench bench({}, recordWithTypes(psd, psd));
    QVERIFY(bench.open());
    bench.link.controller.setRules({on("SSH").cutTo(1)});
    QVERIFY(set(bench, stage));
    QVERIFY(bench.link.controller.stage(numberOf(stage)).held);
    QVERIFY(!isSetEnabled(bench, stage));
    QVERIFY(bench.failure().isNull());
}

void TestDialogHolding::detectorBecomesWhatWasChosen_data()
{
    addStages();
}

void TestDialogHolding::detectorBecomesWhatWasChosen()
{
    QFETCH(Stage, stage);
    ParamsBench bench({}, recordWithTypes(1, 1));
    QVERIFY(bench.open());
    QVERIFY(bench.click("radioButtonPositionInLength" + endingOf(stage)));
    QVERIFY(bench.type("beamDiameterSpinBox" + endingOf(stage), "123.4"));
    QVERIFY(bench.choose("comboBox_DetecType" + endingOf(stage), psd));
    QVERIFY(set(bench, stage));
    const Detector& detector = *bench.detectors[indexOf(stage)];
    QCOMPARE(detector.typeCode(), psd);
    QCOMPARE(detector.calculation, 1);
    QCOMPARE(detector.beamDiameter, 123.4);
}

void TestDialogHolding::otherStageKeepsItsDetector_data()
{
    addStages();
}

void TestDialogHolding::otherStageKeepsItsDetector()
{
    QFETCH(Stage, stage);
    const Stage other = stage == Stage::One ? Stage::Two : Stage::One;
    ParamsBench bench({}, recordWithTypes(psd, psd));
    QVERIFY(bench.open());
    QVERIFY(bench.choose("comboBox_DetecType" + endingOf(other), 1));
    QVERIFY(set(bench, stage));
    QCOMPARE(bench.detectors[indexOf(other)]->typeCode(), psd);
}

void TestDialogHolding::onlyTheSecondStageTakesTheTriggers_data()
{
    addStages();
}

void TestDialogHolding::onlyTheSecondStageTakesTheTriggers()
{
    QFETCH(Stage, stage);
    ControllerOptions options;
    options.triggerCapable = true;
    ParamsBench bench(options, recordWithTypes(psd, psd));
    QVERIFY(bench.open());
    QVERIFY(bench.click(triggers));
    QVERIFY(set(bench, stage));
    QCOMPARE(bench.detectors.pulsedLaser, stage == Stage::Two ? 1 : 0);
    QVERIFY(!bench.link.client.triggerMode());
}

void TestDialogHolding::clicksMadeMeanwhileAreLost_data()
{
    addStages();
}

void TestDialogHolding::clicksMadeMeanwhileAreLost()
{
    QFETCH(Stage, stage);
    ParamsBench bench({}, recordWithTypes(psd, psd));
    QVERIFY(bench.open());
    bench.link.controller.setRules({on("GSF").reply(flagsReply('\x00'))});
    auto& button = bench.find<QPushButton>(setButton(stage));
    button.click();
    QVERIFY(!button.isEnabled());
    QTest::mouseClick(&button, Qt::LeftButton);
    QTRY_VERIFY(button.isEnabled());
    QCOMPARE(bench.link.controller.count("SSH"), 1);
}

void TestDialogHolding::setShutsTheFieldsOfItsStage_data()
{
    addStages();
}

void TestDialogHolding::setShutsTheFieldsOfItsStage()
{
    QFETCH(Stage, stage);
    ParamsBench bench({}, recordWithTypes(psd, psd));
    QVERIFY(bench.open());
    for (const Stage each : bothStages) {
        for (QDoubleSpinBox* field : positionFields(bench, each))
            field->setReadOnly(false);
    }
    QVERIFY(set(bench, stage));
    for (const Stage each : bothStages) {
        for (const QDoubleSpinBox* field : positionFields(bench, each))
            QCOMPARE(field->isReadOnly(), each == stage);
    }
}

void TestDialogHolding::withoutASystemOnlyTheSecondStageShutsItsFields()
{
    ParamsBench bench({}, recordWithTypes(psd, psd));
    QVERIFY(bench.open());
    bench.dialog.removeDetectors(&bench.link.client);
    for (const Stage stage : bothStages) {
        for (QDoubleSpinBox* field : positionFields(bench, stage))
            field->setReadOnly(false);
        const QString slot = "on_" + setButton(stage) + "_clicked";
        QVERIFY(QMetaObject::invokeMethod(&bench.dialog, qPrintable(slot)));
        for (const QDoubleSpinBox* field : positionFields(bench, stage))
            QCOMPARE(field->isReadOnly(), stage == Stage::Two);
    }
    QVERIFY(bench.commands().isEmpty());
}

QTEST_MAIN(TestDialogHolding)
#include "tst_dialogholding.moc"
