#include "window/unitchoice.h"

#include <QtTest>

Q_DECLARE_METATYPE(DetectorPair)

namespace {

constexpr int volts = 0;
constexpr int length = 1;

struct StageDetector
{
    int type = SelectDetector;
    int calculation = volts;
    double diameterUm = Detector::defaultBeamDiameterUm;
};

const StageDetector plain{};
const StageDetector psdVolts{PsdDetector, volts};
const StageDetector psdLength{PsdDetector, length};
const StageDetector uvLength{UvPsd10Detector, length};
const StageDetector quadrant50{QuadrantDetector, length, 50.0};
const StageDetector quadrant80{QuadrantDetector, length, 80.0};
const StageDetector wid60{WidDetector, length, 60.0};

DetectorPair system(const StageDetector& one, const StageDetector& two)
{
    return DetectorPair(one.type, one.calculation, two.type, two.calculation, 0, one.diameterUm,
                        two.diameterUm);
}

/// `displayed` are indices into `systems`, and so is `current`.
std::array<UnitChoice, 2> chosenUnits(const QList<DetectorPair>& systems,
                                      const QList<int>& displayed, int current)
{
    std::vector<const DetectorPair*> pairs;
    for (const int index : displayed)
        pairs.push_back(&systems[index]);
    return chooseUnits(pairs, &systems[current]);
}

QString shown(const UnitChoice& choice)
{
    return QStringLiteral("%1 %2 %3 %4")
        .arg(choice.unitsAgree ? "agree" : "differ", choice.unit())
        .arg(choice.minPosition())
        .arg(choice.maxPosition());
}

} // namespace

class TestUnitChoice final : public QObject
{
    Q_OBJECT

private slots:
    void unitOfAStage_data();
    void unitOfAStage();
    void unitCodeIsThatOfTheUnit();
    void nothingDisplayedIsShownInVolts();
    void agreementIsJudgedAgainstTheFirstDisplayed();
    void onlyDisplayedSystemsCount();
    void withoutDiameterTheCurrentSystemGivesTheRange();
    void aCurrentSystemThatIsNotDisplayedGivesNoUnit();
    void ofEqualDiametersTheFirstDisplayedCounts();
    void aStageThatDisagreesStaysPlainWhateverTheOtherDoes();
};

void TestUnitChoice::unitOfAStage_data()
{
    QTest::addColumn<QList<DetectorPair>>("systems");
    QTest::addColumn<QString>("stage1");
    QTest::addColumn<QString>("stage2");

    using Systems = QList<DetectorPair>;
    QTest::newRow("one without detectors") << Systems{system(plain, plain)} << "differ V -5 5"
                                           << "differ V -5 5";
    QTest::newRow("one in volts by choice")
        << Systems{system(psdVolts, psdLength)} << "differ V -5 5"
        << "agree mm -4.5 4.5";
    QTest::newRow("one with a stage of each kind")
        << Systems{system(psdLength, quadrant80)} << "agree mm -4.5 4.5"
        << QString::fromUtf8("agree µm -40 40");
    QTest::newRow("two that agree")
        << Systems{system(psdLength, psdLength), system(uvLength, psdLength)} << "agree mm -4.5 4.5"
        << "agree mm -4.5 4.5";
    QTest::newRow("two that differ on stage 1")
        << Systems{system(psdLength, psdLength), system(quadrant50, psdLength)} << "differ V -5 5"
        << "agree mm -4.5 4.5";
    QTest::newRow("length and volts")
        << Systems{system(psdLength, psdLength), system(psdLength, psdVolts)} << "agree mm -4.5 4.5"
        << "differ V -5 5";
    QTest::newRow("the largest beam gives the range")
        << Systems{system(quadrant50, quadrant80), system(quadrant80, wid60)}
        << QString::fromUtf8("agree µm -40 40") << QString::fromUtf8("agree µm -40 40");
}

void TestUnitChoice::unitOfAStage()
{
    QFETCH(QList<DetectorPair>, systems);
    QList<int> displayed;
    for (int i = 0; i < systems.size(); ++i)
        displayed.append(i);
    const std::array<UnitChoice, 2> choices = chosenUnits(systems, displayed, 0);
    QTEST(shown(choices[0]), "stage1");
    QTEST(shown(choices[1]), "stage2");
}

void TestUnitChoice::unitCodeIsThatOfTheUnit()
{
    QCOMPARE(UnitChoice().unitCode(), PositionUnit::Volt);
    const QList<DetectorPair> systems{system(quadrant50, psdLength)};
    const std::array<UnitChoice, 2> choices = chosenUnits(systems, {0}, 0);
    QCOMPARE(choices[0].unitCode(), PositionUnit::Micrometre);
    QCOMPARE(choices[1].unitCode(), PositionUnit::Millimetre);
}

void TestUnitChoice::nothingDisplayedIsShownInVolts()
{
    const std::array<UnitChoice, 2> choices = chosenUnits({system(psdLength, quadrant50)}, {}, 0);
    QCOMPARE(shown(choices[0]), QString("agree V -5 5"));
    QCOMPARE(shown(choices[1]), QString("agree V -5 5"));
}

void TestUnitChoice::agreementIsJudgedAgainstTheFirstDisplayed()
{
    const QList<DetectorPair> systems{system(psdLength, psdLength), system(quadrant50, quadrant50)};
    QVERIFY(!chosenUnits(systems, {0, 1}, 0)[0].unitsAgree);
    QVERIFY(!chosenUnits(systems, {1, 0}, 1)[0].unitsAgree);
}

void TestUnitChoice::onlyDisplayedSystemsCount()
{
    const QList<DetectorPair> systems{system(plain, plain), system(psdLength, quadrant50)};
    const std::array<UnitChoice, 2> choices = chosenUnits(systems, {1}, 1);
    QCOMPARE(shown(choices[0]), QString("agree mm -4.5 4.5"));
    QCOMPARE(shown(choices[1]), QString::fromUtf8("agree µm -25 25"));
}

void TestUnitChoice::withoutDiameterTheCurrentSystemGivesTheRange()
{
    const QList<DetectorPair> systems{system(psdLength, psdLength), system(uvLength, uvLength)};
    QCOMPARE(chosenUnits(systems, {0, 1}, 1)[0].detector, systems[1][0]);
    QCOMPARE(chosenUnits(systems, {1, 0}, 0)[0].detector, systems[0][0]);
}

void TestUnitChoice::aCurrentSystemThatIsNotDisplayedGivesNoUnit()
{
    const QList<DetectorPair> systems{system(psdLength, psdLength), system(quadrant50, psdLength),
                                      system(quadrant50, uvLength)};
    const std::array<UnitChoice, 2> choices = chosenUnits(systems, {1, 2}, 0);
    QCOMPARE(shown(choices[0]), QString::fromUtf8("agree µm -25 25"));
    QCOMPARE(shown(choices[1]), QString("agree mm -4.5 4.5"));
}

void TestUnitChoice::ofEqualDiametersTheFirstDisplayedCounts()
{
    const QList<DetectorPair> systems{system(quadrant50, quadrant50), system(quadrant80, plain),
                                      system(quadrant80, quadrant50)};
    QCOMPARE(chosenUnits(systems, {0, 2, 1}, 0)[0].detector, systems[2][0]);
    QCOMPARE(chosenUnits(systems, {0, 1, 2}, 0)[0].detector, systems[1][0]);
}

void TestUnitChoice::aStageThatDisagreesStaysPlainWhateverTheOtherDoes()
{
    // Stage 1 depends on the beam diameter; the curves of stage 2 are in volts.
    const QList<DetectorPair> systems{system(quadrant50, psdLength), system(quadrant80, plain)};
    const std::array<UnitChoice, 2> choices = chosenUnits(systems, {0, 1}, 0);
    QCOMPARE(shown(choices[0]), QString::fromUtf8("agree µm -40 40"));
    QVERIFY(!choices[1].detector);
    QCOMPARE(shown(choices[1]), QString("differ V -5 5"));
}

QTEST_GUILESS_MAIN(TestUnitChoice)
#include "tst_unitchoice.moc"
