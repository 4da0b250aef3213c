// What is set at a controller, on the wire, without a form.

#include "params/parameterapplying.h"
#include "support/bytes.h"
#include "support/emulatedlink.h"

#include <QtTest>

Q_DECLARE_METATYPE(ApplyFailure)
Q_DECLARE_METATYPE(emulator::Rule)
Q_DECLARE_METATYPE(std::vector<ApplyFailure>)

using emulator::on;
using emulator::Rule;
using What = ApplyFailure::What;
using Wishes = std::array<StageWishes, 2>;

namespace {

const ApplyFailure pFactor1{What::PFactor, Stage::One};
const ApplyFailure pFactor2{What::PFactor, Stage::Two};
const ApplyFailure external1{What::ExternalPFactor, Stage::One};
const ApplyFailure external2{What::ExternalPFactor, Stage::Two};

StageWishes allOf(int pFactorMv, int sensitivityMv, AxisValues adjustIn)
{
    StageWishes wishes;
    wishes.pFactorMv = pFactorMv;
    wishes.sensitivityMv = sensitivityMv;
    wishes.adjustIn = adjustIn;
    return wishes;
}

/// Everything by software.
Wishes bySoftware()
{
    return {allOf(1500, 700, {-1000, 250}), allOf(290, 5000, {0, -5000})};
}

} // namespace

class TestParameterApplying : public QObject
{
    Q_OBJECT

private slots:
    void everythingIsSetInItsOrder();
    void externalInputsAreZeros();
    void oldFirmwareIsToldTheSensitivityToo();
    void theControllerHasWhatWasSet();
    void failuresAreToldAndStopNothing_data();
    void failuresAreToldAndStopNothing();
    void aFailedPFactorSetsTheOtherStageExternal_data();
    void aFailedPFactorSetsTheOtherStageExternal();
    void aFailedAdjustOfXSetsYExternal();
    void onlySilenceFailsForAnExternalPFactor();
    void theReplyForAnExternalSensitivityIsIgnored();
    void everyFailureHasItsWords_data();
    void everyFailureHasItsWords();
    void voltsAreCutToMillivolts_data();
    void voltsAreCutToMillivolts();
};

void TestParameterApplying::everythingIsSetInItsOrder()
{
    EmulatedLink link;
    QVERIFY(link.connectAndIdentify());
    QVERIFY(applyParameters(link.client, bySoftware()).empty());
    QCOMPARE(link.controller.commands(),
             QByteArrayList({bytes("5350460105dc3b"), bytes("5350460201223b"),
                             bytes("5344530102bc3b"), bytes("5344530213883b"),
                             bytes("5341490178fc183b"), bytes("534149017900fa3b"),
                             bytes("534149027800003b"), bytes("5341490279ec783b")}));
}

void TestParameterApplying::externalInputsAreZeros()
{
    EmulatedLink link;
    QVERIFY(link.connectAndIdentify());
    QVERIFY(applyParameters(link.client, {}).empty());
    QCOMPARE(link.controller.commands(),
             QByteArrayList({bytes("5350460100003b"), bytes("5350460200003b"),
                             bytes("5344530100003b"), bytes("5344530200003b"),
                             bytes("534149017800003b"), bytes("534149017900003b"),
                             bytes("534149027800003b"), bytes("534149027900003b")}));
}

void TestParameterApplying::oldFirmwareIsToldTheSensitivityToo()
{
    emulator::ControllerOptions options;
    options.firmware = 30;
    EmulatedLink link(options);
    QVERIFY(link.connectAndIdentify());
    // It refuses that, which nobody minds as long as nobody wants one.
    QVERIFY(applyParameters(link.client, {}).empty());
    QCOMPARE(link.controller.count("SDS"), 2);
}

void TestParameterApplying::theControllerHasWhatWasSet()
{
    EmulatedLink link;
    QVERIFY(link.connectAndIdentify());
    QVERIFY(applyParameters(link.client, bySoftware()).empty());
    const emulator::StageState one = link.controller.stage(1);
    QCOMPARE(one.pFactorMv, 1500);
    QCOMPARE(one.sensitivityMv, 700);
    QCOMPARE(one.adjustInXMv, -1000);
    QCOMPARE(one.adjustInYMv, 250);
    const emulator::StageState two = link.controller.stage(2);
    QCOMPARE(two.pFactorMv, 290);
    QCOMPARE(two.sensitivityMv, 5000);
    QCOMPARE(two.adjustInXMv, 0);
    QCOMPARE(two.adjustInYMv, -5000);
}

void TestParameterApplying::failuresAreToldAndStopNothing_data()
{
    QTest::addColumn<QList<Rule>>("rules");
    QTest::addColumn<std::vector<ApplyFailure>>("failures");
    const auto row = [](const char* name, const Rule& rule, std::vector<ApplyFailure> failures) {
        QTest::newRow(name) << QList<Rule>{rule} << std::move(failures);
    };
    row("P-factor of stage 2 refused", on("SPF\2").refuse(), {pFactor2});
    row("sensitivity 1 silent", on("SDS\1").ignore(), {{What::Sensitivity, Stage::One}});
    row("sensitivity 2 cut", on("SDS\2").cutTo(1), {{What::Sensitivity, Stage::Two}});
    row("adjust x of stage 1 refused", on("SAI\1x").refuse(),
        {{What::AdjustIn, Stage::One, BeamAxis::X}});
    row("adjust of stage 2 refused", on("SAI\2").refuse(),
        {{What::AdjustIn, Stage::Two, BeamAxis::X}, {What::AdjustIn, Stage::Two, BeamAxis::Y}});
    row("another second byte", on("SAI\2y").reply(QByteArray("\0\0", 2)),
        {{What::AdjustIn, Stage::Two, BeamAxis::Y}});
}

void TestParameterApplying::failuresAreToldAndStopNothing()
{
    QFETCH(QList<Rule>, rules);
    QFETCH(std::vector<ApplyFailure>, failures);
    EmulatedLink link;
    QVERIFY(link.connectAndIdentify());
    link.controller.setRules(rules);
    QVERIFY(applyParameters(link.client, bySoftware()) == failures);
    QCOMPARE(link.controller.commands().size(), 8);
    QVERIFY(link.controller.unplayedRules().isEmpty());
}

void TestParameterApplying::aFailedPFactorSetsTheOtherStageExternal_data()
{
    QTest::addColumn<QList<Rule>>("rules");
    QTest::addColumn<std::vector<ApplyFailure>>("failures");
    QTest::newRow("stage 1 refused")
        << QList<Rule>{on("SPF\1").refuse()} << std::vector<ApplyFailure>{pFactor1};
    QTest::newRow("both silent") << QList<Rule>{on("SPF").ignore()}
                                 << std::vector<ApplyFailure>{pFactor1, external2};
}

void TestParameterApplying::aFailedPFactorSetsTheOtherStageExternal()
{
    QFETCH(QList<Rule>, rules);
    QFETCH(std::vector<ApplyFailure>, failures);
    EmulatedLink link;
    QVERIFY(link.connectAndIdentify());
    link.controller.setRules(rules);
    QVERIFY(applyParameters(link.client, bySoftware()) == failures);
    QCOMPARE(link.controller.commands().mid(0, 2),
             QByteArrayList({bytes("5350460105dc3b"), bytes("5350460200003b")}));
}

void TestParameterApplying::aFailedAdjustOfXSetsYExternal()
{
    EmulatedLink link;
    QVERIFY(link.connectAndIdentify());
    link.controller.setRules({on("SAI\1x").refuse()});
    applyParameters(link.client, bySoftware());
    QCOMPARE(link.controller.commands().mid(4, 3),
             QByteArrayList({bytes("5341490178fc183b"), bytes("534149017900003b"),
                             bytes("534149027800003b")}));
}

void TestParameterApplying::onlySilenceFailsForAnExternalPFactor()
{
    EmulatedLink link;
    QVERIFY(link.connectAndIdentify());
    link.controller.setRules({on("SPF").refuse()});
    QVERIFY(applyParameters(link.client, {}).empty());
    link.controller.setRules({on("SPF\1").ignore()});
    QVERIFY(applyParameters(link.client, {}) == std::vector<ApplyFailure>{external1});
}

void TestParameterApplying::theReplyForAnExternalSensitivityIsIgnored()
{
    EmulatedLink link;
    QVERIFY(link.connectAndIdentify());
    link.controller.setRules({on("SDS\1").ignore(), on("SDS\2").refuse()});
    QVERIFY(applyParameters(link.client, {}).empty());
    QVERIFY(link.controller.unplayedRules().isEmpty());
}

void TestParameterApplying::everyFailureHasItsWords_data()
{
    QTest::addColumn<ApplyFailure>("failure");
    QTest::addColumn<QString>("words");
    QTest::newRow("P-factor") << pFactor1 << "P-Factor of stage 1 wasn't set!";
    QTest::newRow("external") << external2 << "P-Factor of stage 2 wasn't set external!";
    QTest::newRow("sensitivity") << ApplyFailure{What::Sensitivity, Stage::Two}
                                 << "Sensitivity cable of detector 2 is not connected!";
    QTest::newRow("adjust") << ApplyFailure{What::AdjustIn, Stage::One, BeamAxis::Y}
                            << "y-adjust value of stage 1 has not been accepted ";
}

void TestParameterApplying::everyFailureHasItsWords()
{
    QFETCH(ApplyFailure, failure);
    QTEST(messageOf(failure), "words");
}

void TestParameterApplying::voltsAreCutToMillivolts_data()
{
    QTest::addColumn<double>("volts");
    QTest::addColumn<int>("millivolts");
    QTest::newRow("as it is") << 0.29 << 290;
    QTest::newRow("stored a little below") << 2.01 << 2009;
    QTest::newRow("three decimals") << 1.001 << 1000;
    QTest::newRow("negative, towards zero") << -1.001 << -1000;
    QTest::newRow("lowest") << -5.0 << -5000;
    QTest::newRow("zero") << 0.0 << 0;
}

void TestParameterApplying::voltsAreCutToMillivolts()
{
    QFETCH(double, volts);
    QTEST(int(toMillivolts(volts)), "millivolts");
}

QTEST_GUILESS_MAIN(TestParameterApplying)
#include "tst_parameterapplying.moc"
