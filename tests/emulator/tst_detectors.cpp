#include "beamtools.h"
#include "emulator/detectormodel.h"
#include "emulator/portablemath.h"
#include "hostclient.h"
#include "model/detector.h"
#include "wiretools.h"

#include <QtTest>

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <utility>

using namespace wiretools;
using beamtools::isWithin;
using emulator::ControllerOptions;
using emulator::EmulatorHost;

namespace {

constexpr double stage1IntensityMv = 4000.0;
constexpr double stage2IntensityMv = 3500.0;
constexpr double greatestSignalMv = 5000.0;

/// What a stage reads, mV.
struct Reading
{
    double x = 0.0;
    double y = 0.0;
    double intensity = 0.0;
};

/// One sample of a controller whose beams stand still at `xUm` and `yUm` of both stages.
QByteArray sampleOf(emulator::DetectorKind kind, double spotDiameterUm, double xUm, double yUm)
{
    ControllerOptions options;
    options.preset = emulator::Preset::Still;
    for (emulator::StageOptions& stage : options.stages) {
        stage.detector = kind;
        stage.spotDiameterUm = spotDiameterUm;
        stage.offsetXUm = xUm;
        stage.offsetYUm = yUm;
    }
    EmulatorHost host;
    HostClient client(host.addTcp(options));
    return client.exchange("S1S;", packetBytes);
}

/// A still beam `xUm` beside the centre of a quadrant type on stage 1.
ControllerOptions quadrantTypeAt(double xUm)
{
    ControllerOptions options;
    options.preset = emulator::Preset::Still;
    options.stages[0].detector = emulator::DetectorKind::FourQuadrant;
    options.stages[0].offsetXUm = xUm;
    return options;
}

Reading readingOf(const QByteArray& packet, int stage)
{
    const int first = stage == 1 ? 4 : 10;
    return {double(wordAt(packet, first)), double(wordAt(packet, first + 2)),
            double(wordAt(packet, first + 4))};
}

/// Share of a Gaussian spot of radius `edgeRadius` whose centre is `position` off that lies within
/// `halfLength`, less what the optics lose towards the edge.
double lightAt(double position, double halfLength, double edgeRadius)
{
    const double place = position / halfLength;
    const double lost = 0.1 * place * place;
    const double inside =
        0.5 * (1.0 - std::erf(std::sqrt(2.0) * (std::fabs(position) - halfLength) / edgeRadius));
    return std::max(0.0, 1.0 - lost) * inside;
}

/// What a detector has to read. Data sheets give the signals and the lengths of the types in mm,
/// the spot its error function. Decisions of the emulator, which are only repeated here, are the
/// half lengths in diameters, all figures of the two general detectors but their 50 mV per
/// micrometre, and the tenth of the light that is lost at an edge.
Reading expectedReading(emulator::DetectorKind kind, double spotDiameterUm, double xUm, double yUm,
                        double fullIntensityMv)
{
    using emulator::DetectorKind;
    const double radius = spotDiameterUm / 2.0;
    double halfLength = 0.0;
    double mvPerMicrometre = 0.0;
    double edgeRadius = radius;
    constexpr double generalHalfLength = 120.0;
    constexpr double generalEdgeRadius = 15.0;
    switch (kind) {
    case DetectorKind::FourQuadrant:
        halfLength = 1.5 * spotDiameterUm;
        break;
    case DetectorKind::Psd:
        halfLength = 4500.0;
        mvPerMicrometre = 1.2;
        break;
    case DetectorKind::Wid:
        halfLength = 0.75 * spotDiameterUm;
        mvPerMicrometre = 6500.0 / spotDiameterUm;
        break;
    case DetectorKind::UvPsd4mm:
        halfLength = 2000.0;
        mvPerMicrometre = 2.9;
        break;
    case DetectorKind::UvPsd10mm:
        halfLength = 5000.0;
        mvPerMicrometre = 1.1;
        break;
    case DetectorKind::LateralEffect:
        halfLength = generalHalfLength;
        edgeRadius = generalEdgeRadius;
        mvPerMicrometre = 50.0;
        break;
    case DetectorKind::Quadrant:
        halfLength = generalHalfLength;
        edgeRadius = generalEdgeRadius;
        break;
    }
    const double intensity = fullIntensityMv * lightAt(xUm, halfLength, edgeRadius)
                             * lightAt(yUm, halfLength, edgeRadius);
    const auto ofQuadrants = [](double position, double full, double spotRadius) {
        return full * std::erf(std::sqrt(2.0) * position / spotRadius);
    };
    const auto signal = [&](double position) {
        // The spot on the general detector, and the signal of it all, which makes 50 mV per
        // micrometre at the centre.
        constexpr double generalRadius = 160.0;
        constexpr double generalFullMv = 5013.26;
        const double unclipped =
            kind == DetectorKind::FourQuadrant ? ofQuadrants(position, intensity, radius)
            : kind == DetectorKind::Quadrant   ? ofQuadrants(position, generalFullMv, generalRadius)
                                               : mvPerMicrometre * position;
        return std::clamp(unclipped, -greatestSignalMv, greatestSignalMv);
    };
    return {signal(xUm), signal(yUm), intensity};
}

/// A type as the application and the emulator know it.
struct Type
{
    const char* name;
    emulator::DetectorKind emulated;
    DetectorType shown;
    double spotDiameterUm;
    /// The application's unit of length.
    double unitUm;
    /// Nearer to the centre one millivolt of the wire is more than 2 % of the position.
    double leastUm;
    /// The end of the linear range: of the quadrant type the end of the application's axis, of the
    /// others the end of the detector or of the input range, whichever comes first.
    double linearUm;
};

const Type types[] = {
    {"4QD", emulator::DetectorKind::FourQuadrant, QuadrantDetector, 50.0, 1.0, 0.25, 25.0},
    {"4QD, large spot", emulator::DetectorKind::FourQuadrant, QuadrantDetector, 1000.0, 1.0, 5.0,
     500.0},
    {"PSD", emulator::DetectorKind::Psd, PsdDetector, 50.0, 1000.0, 42.0, 4160.0},
    {"WID", emulator::DetectorKind::Wid, WidDetector, 50.0, 1.0, 0.39, 37.5},
    {"WID, large spot", emulator::DetectorKind::Wid, WidDetector, 400.0, 1.0, 3.1, 300.0},
    {"UV PSD (4mm)", emulator::DetectorKind::UvPsd4mm, UvPsd4Detector, 50.0, 1000.0, 17.5, 1720.0},
    {"UV PSD (10mm)", emulator::DetectorKind::UvPsd10mm, UvPsd10Detector, 50.0, 1000.0, 46.0,
     4540.0},
};

void addTypeColumns()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<double>("positionUm");
}

void addRow(int type, const char* place, double positionUm)
{
    QTest::newRow(qPrintable(QString("%1, %2").arg(types[type].name, place))) << type << positionUm;
}

void addRowsOverTheLinearRange()
{
    for (int type = 0; type < int(std::size(types)); ++type) {
        addRow(type, "near the centre", types[type].leastUm);
        addRow(type, "a tenth", 0.1 * types[type].linearUm);
        addRow(type, "a quarter, other side", -0.25 * types[type].linearUm);
        addRow(type, "half", 0.5 * types[type].linearUm);
        addRow(type, "three quarters, other side", -0.75 * types[type].linearUm);
        addRow(type, "the end", types[type].linearUm);
        addRow(type, "the end, other side", -types[type].linearUm);
    }
}

/// The length that the application shows for a position and an intensity signal in mV, µm.
double shownMicrometres(const Type& type, double signalMv, double intensityMv)
{
    constexpr double voltPerMv = 0.001;
    const auto detector = makeDetector(type.shown, Detector(type.spotDiameterUm, 1));
    return type.unitUm * detector->calculatePosition(signalMv * voltPerMv, intensityMv * voltPerMv);
}

} // namespace

Q_DECLARE_METATYPE(emulator::DetectorKind)

class TestDetectors final : public QObject
{
    Q_OBJECT

private slots:
    void wireCarriesVoltsAndIntensityOfTheBeam_data();
    void wireCarriesVoltsAndIntensityOfTheBeam();
    void lengthThatIsShownIsWhereTheBeamIs_data();
    void lengthThatIsShownIsWhereTheBeamIs();
    void nothingIsReadFarBesideAQuadrantType();
    void stagesHaveDetectorsOfTheirOwn();
    void sensitivityLeavesTheLengthOfAQuadrantTypeAlone_data();
    void sensitivityLeavesTheLengthOfAQuadrantTypeAlone();
    void amplifiedSignalsEndBeforeTheIntensityDoes();
    void tabulatedErrorFunctionIsRight();
};

void TestDetectors::wireCarriesVoltsAndIntensityOfTheBeam_data()
{
    QTest::addColumn<emulator::DetectorKind>("kind");
    QTest::addColumn<double>("spotDiameterUm");
    QTest::addColumn<double>("positionUm");

    const auto rows = [](const char* name, emulator::DetectorKind kind, double spotDiameterUm,
                         double linearUm, std::initializer_list<double> shares) {
        for (const double share : shares) {
            const double positionUm = share * linearUm;
            QTest::newRow(qPrintable(QString("%1, %2 µm").arg(name).arg(positionUm)))
                << kind << spotDiameterUm << positionUm;
        }
    };
    for (const Type& type : types) {
        rows(type.name, type.emulated, type.spotDiameterUm, type.linearUm,
             {type.leastUm / type.linearUm, 0.1, -0.25, 0.5, -0.75, 1.0, -1.0, 1.15, -3.0});
    }
    // Neither has a spot to be told.
    constexpr double anyDiameterUm = 1.0;
    for (const auto& [name, kind] : {std::pair("lateral", emulator::DetectorKind::LateralEffect),
                                     std::pair("quadrant", emulator::DetectorKind::Quadrant)}) {
        rows(name, kind, anyDiameterUm, 100.0,
             {0.01, 0.1, -0.25, 0.5, -0.75, 1.0, -1.0, 1.15, -3.0});
    }
}

void TestDetectors::wireCarriesVoltsAndIntensityOfTheBeam()
{
    QFETCH(emulator::DetectorKind, kind);
    QFETCH(double, spotDiameterUm);
    QFETCH(double, positionUm);
    const double otherUm = -0.5 * positionUm;

    const QByteArray packet = sampleOf(kind, spotDiameterUm, positionUm, otherUm);

    for (const int stage : {1, 2}) {
        const Reading read = readingOf(packet, stage);
        const Reading expected =
            expectedReading(kind, spotDiameterUm, positionUm, otherUm,
                            stage == 1 ? stage1IntensityMv : stage2IntensityMv);
        // Half a millivolt by rounding, and a little for the emulator's own error function.
        constexpr double roundingMv = 0.51;
        QVERIFY2(std::fabs(read.x - expected.x) <= roundingMv,
                 qPrintable(QString("x %1, not %2").arg(read.x).arg(expected.x)));
        QVERIFY2(std::fabs(read.y - expected.y) <= roundingMv,
                 qPrintable(QString("y %1, not %2").arg(read.y).arg(expected.y)));
        QVERIFY2(std::fabs(read.intensity - expected.intensity) <= roundingMv,
                 qPrintable(
                     QString("intensity %1, not %2").arg(read.intensity).arg(expected.intensity)));
    }
}

void TestDetectors::lengthThatIsShownIsWhereTheBeamIs_data()
{
    addTypeColumns();
    addRowsOverTheLinearRange();
}

void TestDetectors::lengthThatIsShownIsWhereTheBeamIs()
{
    QFETCH(int, type);
    QFETCH(double, positionUm);
    const Type& of = types[type];

    const QByteArray packet = sampleOf(of.emulated, of.spotDiameterUm, positionUm, -positionUm);

    for (const int stage : {1, 2}) {
        const Reading read = readingOf(packet, stage);
        const double x = shownMicrometres(of, read.x, read.intensity);
        const double y = shownMicrometres(of, read.y, read.intensity);
        QVERIFY2(isWithin(x, positionUm, 0.01), qPrintable(QString("%1 µm shown").arg(x)));
        QVERIFY2(isWithin(y, -positionUm, 0.01), qPrintable(QString("%1 µm shown").arg(y)));
    }
}

void TestDetectors::nothingIsReadFarBesideAQuadrantType()
{
    const QByteArray packet = sampleOf(emulator::DetectorKind::FourQuadrant, 50.0, 160.0, 0.0);

    QCOMPARE(packet.mid(4, 12), QByteArray(12, '\0'));
}

void TestDetectors::stagesHaveDetectorsOfTheirOwn()
{
    ControllerOptions options;
    options.preset = emulator::Preset::Still;
    options.stages[0].detector = emulator::DetectorKind::Psd;
    options.stages[0].offsetXUm = 1000.0;
    options.stages[1].detector = emulator::DetectorKind::UvPsd4mm;
    options.stages[1].offsetYUm = -1000.0;
    EmulatorHost host;
    HostClient client(host.addTcp(options));

    const QByteArray positions = client.exchange("GCA;", 11);

    // 1200, 0, 0 and -2900 mV.
    QCOMPARE(positions, hex("00 3b 04b0 0000 0000 f4ac 3b"));
}

void TestDetectors::sensitivityLeavesTheLengthOfAQuadrantTypeAlone_data()
{
    QTest::addColumn<QByteArray>("sensitivity");
    QTest::addColumn<double>("gain");

    QTest::newRow("0.5 V") << hex("01f4") << 0.5;
    // Position signal and intensity just stay below the ends of their ranges.
    QTest::newRow("2 V") << hex("07d0") << 2.0;
}

void TestDetectors::sensitivityLeavesTheLengthOfAQuadrantTypeAlone()
{
    QFETCH(QByteArray, sensitivity);
    QFETCH(double, gain);
    EmulatorHost host;
    HostClient client(host.addTcp(quadrantTypeAt(10.0)));
    const Reading nominal = readingOf(client.exchange("S1S;", packetBytes), 1);

    QCOMPARE(client.exchange("SDS" + hex("01") + sensitivity + ';', 2), accepted());
    const Reading changed = readingOf(client.exchange("S1S;", packetBytes), 1);

    QVERIFY(std::fabs(changed.x - gain * nominal.x) <= 1.0);
    QVERIFY(std::fabs(changed.intensity - gain * nominal.intensity) <= 1.0);
    QVERIFY(isWithin(shownMicrometres(types[0], changed.x, changed.intensity), 10.0, 0.01));
}

void TestDetectors::amplifiedSignalsEndBeforeTheIntensityDoes()
{
    EmulatorHost host;
    HostClient client(host.addTcp(quadrantTypeAt(20.0)));

    QCOMPARE(client.exchange("SDS" + hex("01 07d0 3b"), 2), accepted());
    const Reading read = readingOf(client.exchange("S1S;", packetBytes), 1);

    QCOMPARE(read.x, greatestSignalMv);
    QVERIFY(read.intensity > 1.9 * stage1IntensityMv);
    // The application shows the beam too near to the centre.
    QVERIFY(shownMicrometres(types[0], read.x, read.intensity) < 15.0);
}

void TestDetectors::tabulatedErrorFunctionIsRight()
{
    for (double x = -6.0; x <= 6.0; x += 0.00037)
        QVERIFY(std::fabs(emulator::portable::tabulatedErrorFunction(x) - std::erf(x)) < 1e-6);
}

QTEST_GUILESS_MAIN(TestDetectors)
#include "tst_detectors.moc"
